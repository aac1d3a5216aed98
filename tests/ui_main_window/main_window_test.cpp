#include "ui/main_window.h"

#include <gtest/gtest.h>

#include <QEnterEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <ostream>
#include <string>
#include <vector>

#include "data/database.h"
#include "data/transaction_store.h"
#include "lots/security_display.h"
#include "ui/grid_models.h"
#include "ui_main_window/main_window_fixture.h"

namespace lotwise::testing {
namespace {

using Texts = std::vector<std::string>;

Date D(const char* text) { return *Date::Parse(text); }

// After every move between states each menu, item, tool-bar key and panel
// button shows exactly what the core's state table says; a few cells are
// also spelled out, so that an empty table cannot pass.
struct StateCase {
  const char* label;
  int16_t state;
  // Spelled-out cells: a menu's visibility or an item's / key's enabling.
  std::vector<std::pair<const char*, bool>> cells;
  bool sec_list;
  bool sec_display;
  const char* client_panel;
  const char* portfolio_panel;
};

void PrintTo(const StateCase& c, std::ostream* os) { *os << c.label; }

class StateMirrorTest : public MainWindowTest, public ::testing::WithParamInterface<StateCase> {
 protected:
  // Whether the menu named `name` is shown, or the item or key enabled.
  bool Shown(const std::string& name) {
    if (auto* menu = window_->findChild<QMenu*>(name.c_str())) {
      return menu->menuAction()->isVisible();
    }
    if (auto* button = window_->findChild<QPushButton*>(name.c_str())) return button->isEnabled();
    return Action(name)->isEnabled();
  }
};

TEST_P(StateMirrorTest, Refresh_MatchesCoreStateTable) {
  const StateCase& c = GetParam();
  // Every state is entered from another one, so that what a state keeps
  // from its predecessor shows as well.
  Enter(kSecOpen);
  Enter(c.state);

  for (const auto& [name, enabled] : app_->window.enabled) EXPECT_EQ(Shown(name), enabled) << name;
  for (const auto& [name, visible] : app_->window.visible) EXPECT_EQ(Shown(name), visible) << name;
  for (const auto& [name, expected] : c.cells) EXPECT_EQ(Shown(name), expected) << name;
  EXPECT_EQ(Find("SSdgSecList")->isVisible(), c.sec_list);
  EXPECT_EQ(Find("pnlSecDisplay")->isVisible(), c.sec_display);
  EXPECT_EQ(Find<QLabel>("pnlClient")->text(), c.client_panel);
  EXPECT_EQ(Find<QLabel>("pnlPortfolio")->text(), c.portfolio_panel);
}

INSTANTIATE_TEST_SUITE_P(
    States, StateMirrorTest,
    ::testing::Values(
        StateCase{"ClientClosed",
                  kClientClosed,
                  {{"mnuFileCloseClient", false}, {"AddSec", false}, {"mnuPortfolio", false}},
                  false,
                  false,
                  "",
                  ""},
        StateCase{"ClientOpen",
                  kClientOpen,
                  {{"mnuPortfolioClose", false}, {"NewPort", true}, {"mnuSecurity", false}},
                  false,
                  false,
                  "John Doe",
                  ""},
        StateCase{"PortOpen",
                  kPortOpen,
                  {{"mnuDeleteBlock", false}, {"AddSec", true}, {"mnuActions", false}},
                  true,
                  false,
                  "John Doe",
                  "Growth"},
        StateCase{"SecOpen",
                  kSecOpen,
                  {{"mnuModifyTrans", true}, {"mnuSecurityDelete", true}, {"mnuActions", true}},
                  true,
                  true,
                  "John Doe",
                  "Growth"}),
    [](const auto& info) { return std::string(info.param.label); });

// Commands run from the window go through the core and the window follows:
// closing the portfolio and the taxpayer from the menus, and a command the
// state does not allow doing nothing.
TEST_F(MainWindowTest, RunCommand_ClosesPortfolioAndTaxpayer) {
  Enter(kSecOpen);
  Action("mnuPortfolioClose")->trigger();
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_FALSE(Find("SSdgSecList")->isVisible());
  EXPECT_FALSE(Find("pnlSecDisplay")->isVisible());
  EXPECT_FALSE(Menu("mnuSecurity")->menuAction()->isVisible());

  Action("mnuFileCloseClient")->trigger();
  EXPECT_EQ(app_->window.state, kClientClosed);
  EXPECT_EQ(Find<QLabel>("pnlClient")->text(), "");
  EXPECT_FALSE(window_->RunCommand("mnuPortfolioClose"));
  EXPECT_EQ(app_->window.state, kClientClosed);
}

// Option items flip their check marks in the core, and the tool bar and
// help bar follow theirs.
TEST_F(MainWindowTest, OptionItems_ToggleMarksAndBars) {
  Action("mnuShowToolbar")->trigger();
  Action("mnuHelpBar")->trigger();
  Action("mnuRecalcShares")->trigger();
  EXPECT_FALSE(Find("pnlToolbar")->isVisible());
  EXPECT_FALSE(Find("pnlHelpBar")->isVisible());
  EXPECT_FALSE(app_->window.options.recalc_shares);
  EXPECT_FALSE(Action("mnuRecalcShares")->isChecked());

  Action("mnuHelpBar")->trigger();
  EXPECT_TRUE(Find("pnlHelpBar")->isVisible());
  EXPECT_TRUE(Action("mnuHelpBar")->isChecked());
  EXPECT_FALSE(Action("mnuShowToolbar")->isChecked());
}

// The help bar explains each control the mouse moves over or the focus
// enters, with the window's own texts.
struct HelpCase {
  const char* control;
  const char* text;
};

void PrintTo(const HelpCase& c, std::ostream* os) { *os << c.control; }

class HoverHelpTest : public MainWindowTest, public ::testing::WithParamInterface<HelpCase> {};

TEST_P(HoverHelpTest, MouseOver_ShowsHelpText) {
  Enter(kSecOpen);
  QWidget* control = Find(GetParam().control);
  QEnterEvent enter(QPointF(2, 2), QPointF(2, 2), QPointF(2, 2));
  QCoreApplication::sendEvent(control, &enter);
  ASSERT_FALSE(ui_.help_texts().empty());
  EXPECT_EQ(ui_.help_texts().back(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Controls, HoverHelpTest,
    ::testing::Values(
        HelpCase{"btnBuy", "Click here to enter a new purchase of shares for this Security"},
        HelpCase{"lblDisplayTrans",
                 "This shows the type of Transaction that is listed below, for the current Block"},
        HelpCase{"pnlPortfolio",
                 "This shows the name of the Portfolio you are currently working on"},
        HelpCase{"pnlTotalShares", "This is the total number of shares in this Portfolio"},
        HelpCase{"txt2ndLine",
                 "Use this for any extra information you want to keep about the Security"}),
    [](const auto& info) { return std::string(info.param.control); });

TEST_F(MainWindowTest, Focus_ShowsHelpText) {
  Enter(kSecOpen);
  window_->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
  Find("txtSecCusip")->setFocus(Qt::TabFocusReason);
  EXPECT_EQ(ui_.help_texts().back(), "The CUSIP of the Security you are viewing");
}

// The window refuses a size too small for its lists: it says so and takes
// its last good size back; any larger size becomes the new good size.
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

// Enter in the security's text boxes moves on and never runs a command;
// a changed name is stored through the core when the box is left (or put
// back when the user keeps the old one), and so is the second line.
TEST_F(MainWindowTest, SecFields_EnterMovesOnAndLeavingStores) {
  const std::string question =
      "You have changed the Security Name. This will change it for all Securities in all "
      "Taxpayer Files.\nIf you want to do this click YES, otherwise click NO and the Name will "
      "be left as it was.";
  Enter(kSecOpen);
  window_->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
  QLineEdit* name = Find<QLineEdit>("txtSecName");
  name->setFocus(Qt::TabFocusReason);
  QTest::keyClick(name, Qt::Key_Return);
  EXPECT_TRUE(Find("txtSecCusip")->hasFocus());

  name->setFocus(Qt::TabFocusReason);
  name->selectAll();
  QTest::keyClicks(name, "Wrong");
  ui_.Expect(question, "Name has been changed!", Answer::kNo);
  QTest::keyClick(name, Qt::Key_Tab);
  EXPECT_EQ(name->text(), "Intl Business Machines");

  name->setFocus(Qt::TabFocusReason);
  name->selectAll();
  QTest::keyClicks(name, "IBM Corp");
  ui_.Expect(question, "Name has been changed!", Icon::kExclamation, Buttons::kYesNo, Answer::kYes);
  QTest::keyClick(name, Qt::Key_Enter);
  EXPECT_TRUE(ui_.Done());
  EXPECT_EQ(app_->window.display.sec_name, "IBM Corp");
  Query central = app_->central->Select(R"(SELECT "Sec Name" FROM "Securities")");
  ASSERT_TRUE(central.Next());
  EXPECT_EQ(central.Text("Sec Name"), "IBM Corp");

  QLineEdit* line = Find<QLineEdit>("txt2ndLine");
  line->setFocus(Qt::TabFocusReason);
  QTest::keyClicks(line, "held since 1999");
  QTest::keyClick(line, Qt::Key_Return);
  Query client = app_->client->Select(R"(SELECT "2nd Line" FROM "Security")");
  ASSERT_TRUE(client.Next());
  EXPECT_EQ(client.Text("2nd Line"), "held since 1999 ");
}

// The grids show the rows the core holds for the open security: its blocks
// oldest first, the selected block's transactions under the chosen type,
// and the security's total shares; clicking a block or the total goes
// through the core.
class GridsTest : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    ibm_ = AddSecurity("IBM", "Intl Business Machines", "459200101");
    first_ = Buy(ibm_, "01/15/2024", 100);
    second_ = Buy(ibm_, "02/20/2024", 50.5);
    EXPECT_TRUE(AddSell(*app_, first_, D("03/01/2024"), Currency::FromCents(123456),
                        Currency::FromCents(995), -40, "part"));
    Enter(kSecOpen);
  }

  int64_t first_ = 0;
  int64_t second_ = 0;
};

TEST_F(GridsTest, SecOpen_ShowsBlocksTransactionsAndTotal) {
  auto* blocks = Find<QTableView>("SSdgBlocks");
  auto* transactions = Find<QTableView>("SSdgTransactions");
  EXPECT_EQ(Column(blocks, 0), (Texts{"01/15/2024-1", "02/20/2024-1"}));
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kTransaction), (Texts{"Buy", "Sell"}));
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kDate),
            (Texts{"01/15/2024", "03/01/2024"}));
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kShares), (Texts{"100", "-40"}));
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kCost), (Texts{"1,000.00", "0.00"}));
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kSalePrice), (Texts{"0.00", "1,234.56"}));
  EXPECT_EQ(Column(transactions, ui::TransactionsModel::kFee), (Texts{"0.00", "9.95"}));
  EXPECT_EQ(Find<QLabel>("pnlTotalShares")->text(), "110.5");
  EXPECT_EQ(Find<QLabel>("lblTransList")->text(),
            "Transaction List for Block - " + QString::number(first_));
  EXPECT_EQ(Find<QLabel>("lblSellMethod")->text(), "Sell Method: NOT SELECTED");
  EXPECT_EQ(Find<QLineEdit>("txtSecCusip")->text(), "459200101");
}

TEST_F(GridsTest, ClickBlock_ShowsItsTransactions) {
  auto* blocks = Find<QTableView>("SSdgBlocks");
  ClickRow(blocks, 1);
  EXPECT_EQ(app_->window.display.selected_block, 1);
  EXPECT_EQ(app_->current.block_no, second_);
  EXPECT_EQ(Column(Find<QTableView>("SSdgTransactions"), ui::TransactionsModel::kShares),
            (Texts{"50.5"}));
  EXPECT_EQ(ui_.help_texts().back(), "Loading Transactions");
}

TEST_F(GridsTest, TypeChoice_FiltersTransactions) {
  QTest::mouseClick(Find<QPushButton>("btnTransSelect"), Qt::LeftButton);
  ASSERT_TRUE(Find("CSoptDisplayTrans")->isVisible());
  Find<QRadioButton>("optDisplayTrans3")->click();
  EXPECT_EQ(Column(Find<QTableView>("SSdgTransactions"), ui::TransactionsModel::kTransaction),
            (Texts{"Sell"}));
  EXPECT_EQ(Find<QLabel>("lblDisplayTrans")->text(), "Sell");
  EXPECT_FALSE(Find("CSoptDisplayTrans")->isVisible());
}

TEST_F(GridsTest, TotalSharesClick_RecalculatesWhenOptionOff) {
  Action("mnuRecalcShares")->trigger();
  EXPECT_TRUE(AddAdjust(*app_, second_, D("04/01/2024"), 4.5, {}, ""));
  SecList_Select(*app_, 0);
  window_->Refresh();
  EXPECT_EQ(Find<QLabel>("pnlTotalShares")->text(), "Recalculate");
  QTest::mouseClick(Find("pnlTotalShares"), Qt::LeftButton);
  EXPECT_EQ(Find<QLabel>("pnlTotalShares")->text(), "115");
}

// Closing the window says goodbye and ends the program once.
TEST_F(MainWindowTest, Close_SaysGoodbyeAndEndsProgram) {
  EXPECT_TRUE(window_->close());
  EXPECT_EQ(ui_.help_texts().back(), "Thank you for using the Tarnwick Software - Lotwise");
  EXPECT_TRUE(app_->ended);
  EXPECT_EQ(env_->end_calls(), 1);
}

}  // namespace
}  // namespace lotwise::testing
