#include "ui/main_window.h"

#include <gtest/gtest.h>

#include <QEnterEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <string>
#include <vector>

#include "data/database.h"
#include "data/transaction_store.h"
#include "lots/security_display.h"
#include "support/golden.h"
#include "support/values.h"
#include "ui/grid_models.h"
#include "ui_main_window/main_window_fixture.h"

namespace lotwise::testing {
namespace {

using Texts = std::vector<std::string>;

std::string FirstText(Database& db, const char* sql) {
  Query q = db.Select(sql);
  return q.Next() ? q.Text(q.ColumnName(0).c_str()) : "-";
}

// After every move between states each menu, item, tool-bar key and panel
// button shows exactly what the core's state table says (a few cells
// spelled out, so that an empty table cannot pass), and so do the lists and
// the caption panels. Each state is entered from SECOPEN, so that what a
// state keeps from its predecessor shows as well.
TEST_F(MainWindowTest, Refresh_MirrorsCoreState) {
  struct Case {
    int16_t state;
    std::vector<std::pair<const char*, bool>> cells;
    bool sec_list, sec_display;
    const char *client, *portfolio;
  };
  const Case cases[] = {
      {kClientClosed, {{"mnuFileCloseClient", false}, {"mnuPortfolio", false}}, 0, 0, "", ""},
      {kClientOpen, {{"NewPort", true}, {"mnuSecurity", false}}, 0, 0, "John Doe", ""},
      {kPortOpen, {{"AddSec", true}, {"mnuActions", false}}, 1, 0, "John Doe", "Growth"},
      {kSecOpen, {{"mnuSecurityDelete", true}, {"mnuActions", true}}, 1, 1, "John Doe", "Growth"}};
  // Whether the menu named `name` is shown, or the item, key or button enabled.
  auto shown = [this](const std::string& name) {
    if (auto* menu = window_->findChild<QMenu*>(name.c_str())) {
      return menu->menuAction()->isVisible();
    }
    if (auto* button = window_->findChild<QPushButton*>(name.c_str())) return button->isEnabled();
    return Action(name.c_str())->isEnabled();
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.state);
    Enter(kSecOpen);
    Enter(c.state);
    for (const auto& [name, on] : app_->window.enabled) EXPECT_EQ(shown(name), on) << name;
    for (const auto& [name, on] : app_->window.visible) EXPECT_EQ(shown(name), on) << name;
    for (const auto& [name, on] : c.cells) EXPECT_EQ(shown(name), on) << name;
    EXPECT_EQ(Find("SSdgSecList")->isVisible(), c.sec_list);
    EXPECT_EQ(Find("pnlSecDisplay")->isVisible(), c.sec_display);
    EXPECT_EQ(Label("pnlClient") + "|" + Label("pnlPortfolio"),
              std::string(c.client) + "|" + c.portfolio);
  }
}

// Menu commands go through the core and the window follows; a command the
// state does not allow does nothing.
TEST_F(MainWindowTest, RunCommand_ClosesPortfolioAndTaxpayer) {
  Enter(kSecOpen);
  Action("mnuPortfolioClose")->trigger();
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_FALSE(Find("SSdgSecList")->isVisible() || Find("pnlSecDisplay")->isVisible());
  Action("mnuFileCloseClient")->trigger();
  EXPECT_EQ(app_->window.state, kClientClosed);
  EXPECT_EQ(Label("pnlClient"), "");
  EXPECT_FALSE(window_->RunCommand("mnuPortfolioClose"));
}

// The help bar first welcomes the user. Option items flip their check
// marks in the core, and the bars follow.
TEST_F(MainWindowTest, OptionItems_ToggleMarksAndBars) {
  EXPECT_EQ(Label("pnlHelpBar"), "Welcome to Lotwise!");
  for (const char* item : {"mnuShowToolbar", "mnuHelpBar", "mnuRecalcShares"}) {
    Action(item)->trigger();
  }
  EXPECT_FALSE(Find("pnlToolbar")->isVisible() || Find("pnlHelpBar")->isVisible());
  EXPECT_FALSE(app_->window.options.recalc_shares || Action("mnuRecalcShares")->isChecked());
  Action("mnuHelpBar")->trigger();
  EXPECT_TRUE(Find("pnlHelpBar")->isVisible() && Action("mnuHelpBar")->isChecked());
  EXPECT_FALSE(Action("mnuShowToolbar")->isChecked());
}

// The help bar explains the control the mouse moves over or the focus
// enters.
TEST_F(MainWindowTest, HoverAndFocus_ShowHelpText) {
  Enter(kSecOpen);
  for (const auto& [control, text] :
       {std::pair{"btnBuy", "Click here to enter a new purchase of shares for this Security"},
        std::pair{"pnlTotalShares", "This is the total number of shares in this Portfolio"}}) {
    QEnterEvent enter(QPointF(2, 2), QPointF(2, 2), QPointF(2, 2));
    QCoreApplication::sendEvent(Find(control), &enter);
    EXPECT_EQ(ui_.help_texts().back(), text);
  }
  window_->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
  Find("txtSecCusip")->setFocus(Qt::TabFocusReason);
  EXPECT_EQ(ui_.help_texts().back(), "The CUSIP of the Security you are viewing");
}

// A size too small for the lists is refused with a message and the last
// good size comes back.
TEST_F(MainWindowTest, Resize_TooSmallRestoresLastGoodSize) {
  window_->resize(900, 600);
  QTest::qWait(20);
  ASSERT_EQ(window_->last_good_size(), QSize(900, 600));
  ui_.Expect(ui::MainWindow::kTooSmallText, "Invalid Size", Icon::kExclamation, Buttons::kOk);
  window_->resize(500, 300);
  QTest::qWait(50);
  EXPECT_TRUE(ui_.Done());
  EXPECT_EQ(window_->size(), QSize(900, 600));
}

// Enter in the security's text boxes moves on and never runs a command; a
// changed name is stored through the core when the box is left (or put
// back when the user keeps the old one), and so is the second line.
TEST_F(MainWindowTest, SecFields_EnterMovesOnAndLeavingStores) {
  Enter(kSecOpen);
  window_->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
  auto* name = Find<QLineEdit>("txtSecName");
  name->setFocus(Qt::TabFocusReason);
  QTest::keyClick(name, Qt::Key_Return);
  EXPECT_TRUE(Find("txtSecCusip")->hasFocus());
  for (const auto& [typed, answer] :
       {std::pair{"Wrong", Answer::kNo}, {"IBM Corp", Answer::kYes}}) {
    name->setFocus(Qt::TabFocusReason);
    name->selectAll();
    QTest::keyClicks(name, typed);
    ExpectSaid(ui_, __FILE__, "name changed", answer);
    QTest::keyClick(name, answer == Answer::kNo ? Qt::Key_Tab : Qt::Key_Enter);
  }
  EXPECT_TRUE(ui_.Done());
  EXPECT_EQ(app_->window.display.sec_name, "IBM Corp");
  EXPECT_EQ(FirstText(*app_->central, R"(SELECT "Sec Name" FROM "Securities")"), "IBM Corp");
  auto* line = Find<QLineEdit>("txt2ndLine");
  line->setFocus(Qt::TabFocusReason);
  QTest::keyClicks(line, "held since 1999");
  QTest::keyClick(line, Qt::Key_Return);
  EXPECT_EQ(FirstText(*app_->client, R"(SELECT "2nd Line" FROM "Security")"), "held since 1999 ");
  EXPECT_EQ(app_->window.display.second_line, "held since 1999 ");
}

// The grids show what the core holds for the open security: blocks oldest
// first, the selected block's transactions under the chosen type, and the
// total; clicks on a block, the type choice and the total go through the
// core.
TEST_F(MainWindowTest, Grids_ShowRowsAndFollowClicks) {
  ibm_ = AddSecurity("IBM", "Intl Business Machines", "459200101");
  const int64_t first = Buy(ibm_, "01/15/2024", 100);
  const int64_t second = Buy(ibm_, "02/20/2024", 50.5);
  EXPECT_TRUE(AddSell(*app_, first, D("03/01/2024"), Money("1234.56"), Money("9.95"), -40, ""));
  Enter(kSecOpen);
  auto* blocks = Find<QTableView>("SSdgBlocks");
  auto* transactions = Find<QTableView>("SSdgTransactions");
  using M = ui::TransactionsModel;
  EXPECT_EQ(Column(blocks, 0), (Texts{"01/15/2024-1", "02/20/2024-1"}));
  const std::vector<std::pair<int, Texts>> columns = {
      {M::kTransaction, {"Buy", "Sell"}},    {M::kDate, {"01/15/2024", "03/01/2024"}},
      {M::kShares, {"100", "-40"}},          {M::kCost, {"1,000.00", "0.00"}},
      {M::kSalePrice, {"0.00", "1,234.56"}}, {M::kFee, {"0.00", "9.95"}}};
  for (const auto& [column, texts] : columns) EXPECT_EQ(Column(transactions, column), texts);
  EXPECT_EQ(Label("pnlTotalShares"), "110.5");
  EXPECT_EQ(Label("lblTransList"), "Transaction List for Block - " + std::to_string(first));
  EXPECT_EQ(Label("lblSellMethod"), "Sell Method: NOT SELECTED");
  EXPECT_EQ(Find<QLineEdit>("txtSecCusip")->text(), "459200101");

  ClickRow(blocks, 1);
  EXPECT_EQ(app_->current.block_no, second);
  EXPECT_EQ(Column(transactions, M::kShares), (Texts{"50.5"}));
  EXPECT_EQ(ui_.help_texts().back(), "Loading Transactions");
  ClickRow(blocks, 0);
  QTest::mouseClick(Find<QPushButton>("btnTransSelect"), Qt::LeftButton);
  ASSERT_TRUE(Find("CSoptDisplayTrans")->isVisible());
  Find<QRadioButton>("optDisplayTrans3")->click();
  EXPECT_EQ(Column(transactions, M::kTransaction), (Texts{"Sell"}));
  EXPECT_EQ(Label("lblDisplayTrans"), "Sell");
  EXPECT_FALSE(Find("CSoptDisplayTrans")->isVisible());

  Action("mnuRecalcShares")->trigger();
  EXPECT_TRUE(AddAdjust(*app_, second, D("04/01/2024"), 4.5, {}, ""));
  SecList_Select(*app_, 0);
  window_->Refresh();
  EXPECT_EQ(Label("pnlTotalShares"), "Recalculate");
  QTest::mouseClick(Find("pnlTotalShares"), Qt::LeftButton);
  EXPECT_EQ(Label("pnlTotalShares"), "115");
}

// Closing the window says goodbye and ends the program once.
TEST_F(MainWindowTest, Close_SaysGoodbyeAndEndsProgram) {
  EXPECT_TRUE(window_->close());
  EXPECT_EQ(ui_.help_texts().back(), "Thank you for using the Tarnwick Software - Lotwise");
  EXPECT_EQ(env_->end_calls(), 1);
}

}  // namespace
}  // namespace lotwise::testing
