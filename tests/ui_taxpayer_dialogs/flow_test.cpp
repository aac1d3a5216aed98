#include <QComboBox>
#include <QLabel>
#include <QToolBar>

#include "app/app_state.h"
#include "ui/grid_models.h"
#include "ui/main_window.h"
#include "ui_taxpayer_dialogs/window_fixture.h"

namespace lotwise::testing {
namespace {

using Texts = std::vector<std::string>;

// A preparer's first session through the main window's tool bar, the
// panel's buttons and every dialog a real window: new taxpayer, new
// portfolio, a security, two buys and a FIFO sale; the grids and the total
// then show what was stored.
TEST_F(DialogWindowTest, Flow_NewTaxpayerToFifoSale) {
  State(*app_, kClientClosed);
  ui::MainWindow main(*app_);
  main.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&main));
  auto click = [this, &main](const char* name, const char* window, const char* entries) {
    OnWindow(window, [entries](QDialog& dialog) {
      Fill(dialog, entries);
      if (auto* methods = dialog.findChild<QComboBox*>("SScboSellMethod")) {
        methods->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(methods, "F");
        EXPECT_EQ(methods->currentText().toStdString(), "FIFO");
      }
      Click(dialog, "btnOK");
    });
    QWidget* button = main.findChild<QPushButton*>(name);
    if (button == nullptr) {
      button = main.findChild<QToolBar*>("tbMain")->widgetForAction(main.findChild<QAction*>(name));
    }
    ASSERT_TRUE(button != nullptr && button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
  };
  auto panel = [&main](const char* name) {
    return main.findChild<QLabel*>(name)->text().toStdString();
  };
  auto grid = [&main](const char* name) { return main.findChild<QTableView*>(name); };

  click("NewTP", "dlgNewModClient",
        "txtClientName=Jane Roe;txtClientCode=ROE01;dtYearEnd=12312024");
  ASSERT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(panel("pnlClient"), "Jane Roe");
  click("NewPort", "dlgNewModPort", "txtPortName=Growth");
  ASSERT_EQ(app_->window.state, kPortOpen);
  EXPECT_EQ(panel("pnlPortfolio"), "Growth");
  click("AddSec", "dlgAddModSec",
        "txtSymbol=IBM;txtSecName=Intl Business Machines;txtCusip=459200101");
  ASSERT_EQ(app_->window.state, kSecOpen);
  EXPECT_EQ(Column(grid("SSdgSecList"), 0), (Texts{"IBM"}));
  click("btnBuy", "dlgBuyReinvest", "dtDate=01152024;DblNumShares=100;CurrCostOfShares=1500");
  click("btnBuy", "dlgBuyReinvest", "dtDate=02152024;DblNumShares=50;CurrCostOfShares=900");
  EXPECT_EQ(Column(grid("SSdgBlocks"), 0), (Texts{"01/15/2024-1", "02/15/2024-1"}));
  EXPECT_EQ(panel("pnlTotalShares"), "150");
  click("btnSell", "dlgSellShares", "dtDate=03012024;DblNumShares=120;CurrSalePrice=2400");

  EXPECT_EQ(panel("pnlTotalShares") + "|" + panel("lblSellMethod"), "30|Sell Method: FIFO");
  using M = ui::TransactionsModel;
  ClickRow(grid("SSdgBlocks"), 0);
  EXPECT_EQ(Column(grid("SSdgTransactions"), M::kTransaction), (Texts{"Buy", "Sell"}));
  EXPECT_EQ(Column(grid("SSdgTransactions"), M::kShares), (Texts{"100", "-100"}));
  EXPECT_EQ(Column(grid("SSdgTransactions"), M::kSalePrice), (Texts{"0.00", "2,000.00"}));
  ClickRow(grid("SSdgBlocks"), 1);
  EXPECT_EQ(Column(grid("SSdgTransactions"), M::kShares), (Texts{"50", "-20"}));
  EXPECT_EQ(Column(grid("SSdgTransactions"), M::kSalePrice), (Texts{"0.00", "400.00"}));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
