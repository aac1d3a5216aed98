#include "app/app_state.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/main_window_commands.h"
#include "app/security_commands.h"
#include "app_state/window_fixture.h"
#include "ground/program_ended.h"
#include "lots/security_display.h"
#include "lots/security_list.h"
#include "support/tests_a_helpers.h"

namespace lotwise::testing {
namespace {

// Each move sets exactly what its state allows: off and on whatever the
// element was before, "keep" cells keep either previous value, and names
// the state does not govern are never touched.
TEST_F(WindowTest, State_SetsEachElement) {
  enum Cell { kOff, kOn, kKeep };
  struct Case {
    int16_t state;
    const char* name;
    bool is_menu;  // a menu's visibility rather than an item's or key's enabling
    Cell expected;
  };
  const Case cases[] = {{kClientClosed, "mnuPortfolio", true, kOff},
                        {kPortOpen, "mnuSecurity", true, kOn},
                        {kSecOpen, "mnuActions", true, kOn},
                        {kClientClosed, "mnuFileCloseClient", false, kOff},
                        {kClientClosed, "mnuPortfolioModify", false, kKeep},
                        {kClientOpen, "mnuChangeMethod", false, kKeep},
                        {kSecOpen, "mnuChangeMethod", false, kOn},
                        {kPortOpen, "mnuDeleteBlock", false, kOff},
                        {kClientOpen, "mnuSecListing", false, kOn},
                        {kClientClosed, "NewPort", false, kOff},
                        {kPortOpen, "AddSec", false, kOn},
                        {kSecOpen, "mnuFileNewClient", false, kKeep}};
  for (const Case& c : cases) {
    for (bool before : {false, true}) {
      SCOPED_TRACE(std::string(c.name) + " in " + std::to_string(c.state) + " was " +
                   std::to_string(before));
      (c.is_menu ? app_->window.visible : app_->window.enabled)[c.name] = before;
      EXPECT_EQ(State(*app_, c.state), c.state);
      const bool after =
          c.is_menu ? app_->window.IsVisible(c.name) : app_->window.IsEnabled(c.name);
      EXPECT_EQ(after, c.expected == kKeep ? before : c.expected == kOn);
    }
  }
}

// The caption panels show the open taxpayer and portfolio with every "&"
// doubled, and only in the states that have them; the security list and
// the display follow the state: the portfolio's list is loaded on PORTOPEN,
// SECOPEN leaves both as its caller set them, and closing the taxpayer
// drops every row the lists held.
TEST_F(WindowTest, State_PanelsAndSecurityViews) {
  app_->current.client_name = "Smith & Jones";
  Portfolio("R&D");
  app_->current.port_name = "R&D";
  AddSecurity("MSFT", "Microsoft", "NO CUSIP", " ", "R&D");
  Buy(AddSecurity("IBM", "Intl Business Machines", "NO CUSIP", " ", "R&D"), "01/15/2024", 10);
  AddSecurity("OTHER", "Other");
  auto shown = [this] {
    std::string text = app_->window.client_panel + "|" + app_->window.portfolio_panel + "|";
    for (const SecurityRow& row : app_->window.securities) text += row.symbol + ",";
    return text + (app_->window.sec_list_visible ? "|list" : "|") +
           (app_->window.display.visible ? "|display" : "|");
  };
  State(*app_, kClientOpen);
  EXPECT_EQ(shown(), "Smith && Jones||||");
  State(*app_, kPortOpen);
  EXPECT_EQ(shown(), "Smith && Jones|R&&D|IBM,MSFT,|list|");
  EXPECT_EQ(app_->window.selected_security, 0);
  ShowSecDisplay(*app_, "IBM");
  State(*app_, kSecOpen);
  EXPECT_EQ(shown(), "Smith && Jones|R&&D|IBM,MSFT,|list|display");
  State(*app_, kPortOpen);
  EXPECT_EQ(shown(), "Smith && Jones|R&&D|IBM,MSFT,|list|");
  State(*app_, kClientOpen);
  EXPECT_EQ(shown(), "Smith && Jones||IBM,MSFT,||");
  ShowSecDisplay(*app_, "IBM");
  State(*app_, kClientClosed);
  EXPECT_EQ(shown(), "||||");
  EXPECT_EQ(app_->window.selected_security, -1);
  EXPECT_TRUE(app_->window.display.blocks.empty() && app_->window.display.transactions.empty());
  EXPECT_EQ(app_->window.display.selected_block, -1);
}

// The query argument and state 0 change nothing on the window; a value out
// of range is refused with the misuse message; every call restores the
// pointer.
TEST_F(WindowTest, State_QueryNoneAndMisuse) {
  State(*app_, kPortOpen);
  const auto enabled = app_->window.enabled;
  const auto visible = app_->window.visible;
  EXPECT_EQ(State(*app_, kStateQuery), kPortOpen);
  EXPECT_EQ(app_->window.visible, visible);
  ExpectSaid(ui_, __FILE__, "misuse");
  EXPECT_EQ(State(*app_, 5), kPortOpen);
  EXPECT_EQ(State(*app_, kStateNone), kStateNone);
  EXPECT_EQ(app_->window.enabled, enabled);
  EXPECT_EQ(app_->window.portfolio_panel, "Growth");
  EXPECT_EQ(ui_.hourglass_depth(), 0);
}

// The window as the user sees it in each state: from PORTOPEN on the
// portfolio "Growth" holds IBM (100 shares), SECOPEN with its panel shown.
class CommandTest : public WindowTest {
 protected:
  void Enter(int16_t state) {
    if (state >= kPortOpen && ibm_ == 0) {
      ibm_ = AddSecurity("IBM", "Intl Business Machines");
      Buy(ibm_, "01/15/2024", 100);
    }
    State(*app_, state == kSecOpen ? kPortOpen : state);
    if (state == kSecOpen) SecList_Select(*app_, 0);
  }
  int64_t ibm_ = 0;
};

// A command runs only when it is known and built, enabled in the state, and
// its menu, the tool bar or the security panel is shown.
TEST_F(CommandTest, CanRunMenuCommand_FollowsState) {
  struct Case {
    int16_t state;
    const char* name;
    bool runs;
  };
  const Case cases[] = {{kClientClosed, "mnuFileNewClient", true},
                        {kClientClosed, "mnuFileCloseClient", false},
                        {kClientClosed, "NewPort", false},
                        {kClientClosed, "Help", true},
                        {kClientOpen, "mnuSecurityAdd", false},  // its menu hidden
                        {kPortOpen, "mnuBuyShares", false},
                        {kPortOpen, "btnSell", false},  // the panel hidden
                        {kSecOpen, "btnBuy", true},
                        {kSecOpen, "mnuBasisAnalysis", true},
                        {kSecOpen, "mnuNoSuchItem", false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Enter(c.state);
    EXPECT_EQ(CanRunMenuCommand(*app_, c.name), c.runs);
  }
}

// A refused command does nothing at all; an available one runs its
// procedure (here the security's deletion, which first asks).
TEST_F(CommandTest, RunMenuCommand_RefusesDisabled) {
  Enter(kPortOpen);
  EXPECT_FALSE(RunMenuCommand(*app_, "mnuSecurityDelete"));
  EXPECT_FALSE(RunMenuCommand(*app_, "btnRollback"));
  EXPECT_EQ(State(*app_, kStateQuery), kPortOpen);
  SecList_Select(*app_, 0);
  ExpectSaid(ui_, __FILE__, "delete security", Answer::kNo);
  EXPECT_TRUE(RunMenuCommand(*app_, "mnuSecurityDelete"));
  EXPECT_EQ(CountClientRows("Security"), 1);
}

// Turning recalculation back on while a security is shown computes its
// total at once; "Modify Entire Sell" without a sale selected says what to
// do; Exit says goodbye on the help bar and ends the program.
TEST_F(CommandTest, RunMenuCommand_OptionsModifySellAndExit) {
  app_->window.options.recalc_shares = false;
  Enter(kSecOpen);
  EXPECT_EQ(app_->window.display.total_shares, "Recalculate");
  EXPECT_TRUE(RunMenuCommand(*app_, "mnuRecalcShares"));
  EXPECT_TRUE(app_->window.options.recalc_shares);
  EXPECT_EQ(app_->window.display.total_shares, "100");
  EXPECT_TRUE(RunMenuCommand(*app_, "mnuOpenOnlyPort"));
  EXPECT_FALSE(app_->window.options.open_only_port);
  ExpectSaid(ui_, __FILE__, "no sell selected");
  EXPECT_TRUE(RunMenuCommand(*app_, "mnuModEntireSell"));
  EXPECT_THROW(RunMenuCommand(*app_, "Exit"), ProgramEnded);
  EXPECT_EQ(ui_.help_texts().back(), "Thank you for using the Tarnwick Software - Lotwise");
}

}  // namespace
}  // namespace lotwise::testing
