#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QToolBar>
#include <string>
#include <vector>

#include "app/startup.h"
#include "data/database.h"
#include "data/portfolio_dialogs.h"
#include "data/taxpayer_dialog.h"
#include "lots/add_mod_sec.h"
#include "lots/buy_reinvest.h"
#include "lots/sell_shares.h"
#include "ui/grid_models.h"
#include "ui_main_window/main_window_fixture.h"

namespace lotwise::testing {
namespace {

using Texts = std::vector<std::string>;

// A preparer's first session, driven through the window's tool bar and
// buttons: start-up to CLIENTCLOSED, new taxpayer, new portfolio, a security, two buys and a FIFO
// sale. The dialogs' parts are played on their forms; what the window must
// get right is that each command reaches the core and that every grid and
// panel then shows the stored result.
class WorkflowTest : public AppTest {
 protected:
  void SetUp() override {
    QtApp();
    AppTest::SetUp();
    ASSERT_NO_THROW(Main(*app_));
    window_ = std::make_unique<ui::MainWindow>(*app_);
    window_->show();
  }
  void TearDown() override {
    window_.reset();
    AppTest::TearDown();
  }

  void ClickTool(const char* key) {
    auto* tool_bar = window_->findChild<QToolBar*>("tbMain");
    QWidget* button = tool_bar->widgetForAction(window_->findChild<QAction*>(key));
    ASSERT_NE(button, nullptr) << key;
    ASSERT_TRUE(button->isEnabled()) << key;
    QTest::mouseClick(button, Qt::LeftButton);
  }

  void ClickButton(const char* name) {
    auto* button = window_->findChild<QPushButton*>(name);
    ASSERT_TRUE(button != nullptr && button->isVisible() && button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
  }

  void ExpectBuy(const char* date, double shares, int64_t cost_cents) {
    ui_.ExpectDialog("dlgBuyReinvest", [=, this](DialogForm& f) {
      auto& form = static_cast<BuyReinvestForm&>(f);
      EXPECT_EQ(form.caption, "Buy Shares");
      form.date = date;
      form.num_shares = shares;
      form.cost_of_shares = Currency::FromCents(cost_cents);
      BuyReinvest_OK(*app_, form, false);
    });
  }

  std::string PanelText(const char* name) {
    return ui::FromQ(window_->findChild<QLabel*>(name)->text());
  }
  QTableView* Grid(const char* name) { return window_->findChild<QTableView*>(name); }

  std::unique_ptr<ui::MainWindow> window_;
};

TEST_F(WorkflowTest, StartToFifoSale_GridsShowStoredRows) {
  ASSERT_EQ(app_->window.state, kClientClosed);
  EXPECT_EQ(PanelText("pnlHelpBar"), "Welcome to Lotwise!");
  EXPECT_FALSE(window_->findChild<QAction*>("NewPort")->isEnabled());
  EXPECT_FALSE(window_->findChild<QMenu*>("mnuPortfolio")->menuAction()->isVisible());

  ui_.ExpectDialog("dlgNewModClient", [this](DialogForm& f) {
    auto& form = static_cast<NewModClientForm&>(f);
    form.client_name = "Jane Roe";
    form.client_code = "ROE01";
    form.year_end = "12/31/2024";
    PressOkNewModClient(*app_, form);
  });
  ClickTool("NewTP");
  ASSERT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(PanelText("pnlClient"), "Jane Roe");

  ui_.ExpectDialog("dlgNewModPort", [this](DialogForm& f) {
    auto& form = static_cast<NewModPortForm&>(f);
    form.port_name = "Growth";
    NewModPort_OK(*app_, form);
  });
  ClickTool("NewPort");
  ASSERT_EQ(app_->window.state, kPortOpen);
  EXPECT_EQ(PanelText("pnlPortfolio"), "Growth");

  ui_.ExpectDialog("dlgAddModSec", [this](DialogForm& f) {
    auto& form = static_cast<AddModSecForm&>(f);
    form.symbol = "IBM";
    form.sec_name = "Intl Business Machines";
    form.cusip = "459200101";
    AddModSec_Ok(*app_, form);
  });
  ClickTool("AddSec");
  EXPECT_EQ(Column(Grid("SSdgSecList"), 0), (Texts{"IBM"}));
  if (app_->window.state != kSecOpen) ClickRow(Grid("SSdgSecList"), 0);
  ASSERT_EQ(app_->window.state, kSecOpen);

  ExpectBuy("01/15/2024", 100, 150000);
  ClickButton("btnBuy");
  ExpectBuy("02/15/2024", 50, 90000);
  ClickButton("btnBuy");
  EXPECT_EQ(Column(Grid("SSdgBlocks"), 0), (Texts{"01/15/2024-1", "02/15/2024-1"}));
  EXPECT_EQ(PanelText("pnlTotalShares"), "150");

  ui_.ExpectDialog("dlgSellShares", [this](DialogForm& f) {
    auto& form = static_cast<SellSharesForm&>(f);
    form.date = "03/01/2024";
    form.num_shares = 120;
    form.sale_price = Currency::FromCents(240000);
    form.sell_method = "FIFO";
    SellMethodChange(*app_, form);
    SellShares_OK(*app_, form, false);
  });
  ClickButton("btnSell");
  EXPECT_TRUE(ui_.Done());

  EXPECT_EQ(PanelText("pnlTotalShares"), "30");
  EXPECT_EQ(PanelText("lblSellMethod"), "Sell Method: FIFO");
  ClickRow(Grid("SSdgBlocks"), 0);
  QTableView* transactions = Grid("SSdgTransactions");
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kTransaction), (Texts{"Buy", "Sell"}));
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kShares), (Texts{"100", "-100"}));
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kSalePrice), (Texts{"0.00", "2,000.00"}));
  ClickRow(Grid("SSdgBlocks"), 1);
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kShares), (Texts{"50", "-20"}));
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kSalePrice), (Texts{"0.00", "400.00"}));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
