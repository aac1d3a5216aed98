#include <QComboBox>
#include <QLabel>
#include <QTableView>
#include <QToolBar>

#include "app/app_state.h"
#include "ui/grid_models.h"
#include "ui/main_window.h"
#include "ui_taxpayer_dialogs/window_fixture.h"

namespace lotwise::testing {
namespace {

using Texts = std::vector<std::string>;

// The main window over a fresh central file with no taxpayer open, every
// dialog a real window.
class FlowTest : public DialogWindowTest {
 protected:
  void SetUp() override {
    DialogWindowTest::SetUp();
    window_ui_.Use(ui::AllDialogs());
    State(*app_, kClientClosed);
    window_ = std::make_unique<ui::MainWindow>(*app_);
    window_->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
  }
  void TearDown() override {
    window_.reset();
    DialogWindowTest::TearDown();
  }

  void ClickTool(const char* key) {
    QWidget* button =
        window_->findChild<QToolBar*>("tbMain")->widgetForAction(window_->findChild<QAction*>(key));
    ASSERT_TRUE(button != nullptr && button->isEnabled()) << key;
    QTest::mouseClick(button, Qt::LeftButton);
  }
  void ClickButton(const char* name) {
    auto* button = window_->findChild<QPushButton*>(name);
    ASSERT_TRUE(button != nullptr && button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
  }
  std::string Panel(const char* name) {
    return window_->findChild<QLabel*>(name)->text().toStdString();
  }
  // The texts of `column` of the main window's grid `name`, row by row.
  Texts Column(const char* name, int column) {
    const QAbstractItemModel* model = window_->findChild<QTableView*>(name)->model();
    Texts texts;
    for (int row = 0; row < model->rowCount(); ++row) {
      texts.push_back(model->index(row, column).data().toString().toStdString());
    }
    return texts;
  }
  void ClickRow(const char* name, int row) {
    auto* grid = window_->findChild<QTableView*>(name);
    const QModelIndex index = grid->model()->index(row, 0);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(index).center());
  }
  // Types "field=keys;..." into the window's fields, leaving each with Tab.
  static void Fill(QDialog& window, const char* entries) {
    for (const QString& entry : QString(entries).split(';')) {
      QLineEdit* field = Get(window, entry.section('=', 0, 0).toLatin1());
      field->setFocus(Qt::TabFocusReason);
      field->selectAll();
      QTest::keyClick(field, Qt::Key_Backspace);
      QTest::keyClick(field, Qt::Key_Home);
      QTest::keyClicks(field, entry.section('=', 1));
      QTest::keyClick(field, Qt::Key_Tab);
    }
  }
  void Buy(const char* entries) {
    WhenShown("dlgBuyReinvest", [entries](QDialog& window) {
      Fill(window, entries);
      Click(window, "btnOK");
    });
    ClickButton("btnBuy");
  }

  std::unique_ptr<ui::MainWindow> window_;
};

// A preparer's first session through the tool bar, the panel's buttons and
// the real dialog windows: new taxpayer, new portfolio, a security, two
// buys and a FIFO sale; the grids and the total then show what was stored.
TEST_F(FlowTest, NewTaxpayerToFifoSale_GridsShowNewRows) {
  WhenShown("dlgNewModClient", [](QDialog& window) {
    Fill(window, "txtClientName=Jane Roe;txtClientCode=ROE01;dtYearEnd=12312024");
    Click(window, "btnOK");
  });
  ClickTool("NewTP");
  ASSERT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(Panel("pnlClient"), "Jane Roe");

  WhenShown("dlgNewModPort", [](QDialog& window) {
    Fill(window, "txtPortName=Growth");
    Click(window, "btnOK");
  });
  ClickTool("NewPort");
  ASSERT_EQ(app_->window.state, kPortOpen);
  EXPECT_EQ(Panel("pnlPortfolio"), "Growth");

  WhenShown("dlgAddModSec", [](QDialog& window) {
    Fill(window, "txtSymbol=IBM;txtSecName=Intl Business Machines;txtCusip=459200101");
    Click(window, "btnOK");
  });
  ClickTool("AddSec");
  ASSERT_EQ(app_->window.state, kSecOpen);
  EXPECT_EQ(Column("SSdgSecList", 0), (Texts{"IBM"}));

  Buy("dtDate=01152024;DblNumShares=100;CurrCostOfShares=1500");
  Buy("dtDate=02152024;DblNumShares=50;CurrCostOfShares=900");
  EXPECT_EQ(Column("SSdgBlocks", 0), (Texts{"01/15/2024-1", "02/15/2024-1"}));
  EXPECT_EQ(Panel("pnlTotalShares"), "150");

  WhenShown("dlgSellShares", [](QDialog& window) {
    Fill(window, "dtDate=03012024;DblNumShares=120;CurrSalePrice=2400");
    auto* methods = Get<QComboBox>(window, "SScboSellMethod");
    methods->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(methods, "F");
    EXPECT_EQ(methods->currentText().toStdString(), "FIFO");
    Click(window, "btnOK");
  });
  ClickButton("btnSell");

  EXPECT_EQ(Panel("pnlTotalShares"), "30");
  ClickRow("SSdgBlocks", 0);
  EXPECT_EQ(Column("SSdgTransactions", ui::TransactionsModel::kTransaction),
            (Texts{"Buy", "Sell"}));
  EXPECT_EQ(Column("SSdgTransactions", ui::TransactionsModel::kShares), (Texts{"100", "-100"}));
  ClickRow("SSdgBlocks", 1);
  EXPECT_EQ(Column("SSdgTransactions", ui::TransactionsModel::kShares), (Texts{"50", "-20"}));
  EXPECT_EQ(Column("SSdgTransactions", ui::TransactionsModel::kSalePrice),
            (Texts{"0.00", "400.00"}));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
