#include "app/app_state.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "app/main_window_commands.h"
#include "app/security_commands.h"
#include "app_state/window_fixture.h"
#include "ground/program_ended.h"
#include "lots/security_display.h"
#include "lots/security_list.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

// The cases "=== kind STATE name value..." of golden/states.txt.
struct StateCase {
  int16_t state;
  std::string name, value, more;
};
std::vector<StateCase> StateCases(const std::string& kind) {
  const std::vector<std::string> states = {"", "CLIENTCLOSED", "CLIENTOPEN", "PORTOPEN", "SECOPEN"};
  std::vector<StateCase> cases;
  for (const GoldenCase& c : ReadCases(__FILE__, "states.txt")) {
    std::istringstream words(c.name);
    std::string case_kind, state;
    StateCase row;
    words >> case_kind >> state >> row.name >> row.value >> row.more;
    row.state =
        static_cast<int16_t>(std::find(states.begin(), states.end(), state) - states.begin());
    if (case_kind == kind) cases.push_back(row);
  }
  EXPECT_FALSE(cases.empty()) << kind;
  return cases;
}

// Each move sets exactly what its state allows: off and on whatever the
// element was before, "keep" cells keep either previous value, and names
// the state does not govern are never touched.
TEST_F(WindowTest, State_SetsEachElement) {
  for (const auto& [state, name, kind, expected] : StateCases("set")) {
    for (bool before : {false, true}) {
      SCOPED_TRACE(name + " in " + std::to_string(state) + " was " + std::to_string(before));
      const bool menu = kind == "menu";
      (menu ? app_->window.visible : app_->window.enabled)[name] = before;
      EXPECT_EQ(State(*app_, state), state);
      const bool after = menu ? app_->window.IsVisible(name) : app_->window.IsEnabled(name);
      EXPECT_EQ(after, expected == "keep" ? before : expected == "on");
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
  for (const auto& [state, name, runs, unused] : StateCases("run")) {
    SCOPED_TRACE(name);
    Enter(state);
    EXPECT_EQ(CanRunMenuCommand(*app_, name), runs == "yes");
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
