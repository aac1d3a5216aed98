#include "app/main_window_commands.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "app/program_ended.h"
#include "app/security_display.h"
#include "app_state/window_fixture.h"
#include "data/transaction_store.h"
#include "lots/security_list.h"

namespace lotwise::testing {
namespace {

// The window as the user sees it in each state: PORTOPEN and SECOPEN have
// the portfolio "Growth" with IBM open, SECOPEN its panel shown.
class CommandTest : public WindowTest {
 protected:
  void Enter(int16_t state) {
    if (state == kClientClosed) {
      State(*app_, kClientClosed);
      return;
    }
    ibm_ = AddSecurity("IBM", "Intl Business Machines");
    block_ = Buy(ibm_, "01/15/2024", 100);
    State(*app_, state == kSecOpen ? kPortOpen : state);
    if (state == kSecOpen) SecList_Select(*app_, 0);
  }

  int64_t ibm_ = 0;
  int64_t block_ = 0;
};

// A command runs only when it is known and built, enabled in the state, and
// its menu, the tool bar or the security panel is shown.
struct AvailabilityCase {
  const char* label;
  int16_t state;
  const char* name;
  bool runs;
};

void PrintTo(const AvailabilityCase& c, std::ostream* os) { *os << c.label; }

class AvailabilityTest : public CommandTest,
                         public ::testing::WithParamInterface<AvailabilityCase> {};

TEST_P(AvailabilityTest, CanRunMenuCommand_FollowsState) {
  const AvailabilityCase& c = GetParam();
  Enter(c.state);
  EXPECT_EQ(CanRunMenuCommand(*app_, c.name), c.runs);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, AvailabilityTest,
    ::testing::Values(
        AvailabilityCase{"Closed_NewClient", kClientClosed, "mnuFileNewClient", true},
        AvailabilityCase{"Closed_CloseClientDisabled", kClientClosed, "mnuFileCloseClient", false},
        AvailabilityCase{"Closed_NewPortKeyDisabled", kClientClosed, "NewPort", false},
        AvailabilityCase{"Open_PortfolioCloseDisabled", kClientOpen, "mnuPortfolioClose", false},
        AvailabilityCase{"Open_SecurityMenuHidden", kClientOpen, "mnuSecurityAdd", false},
        AvailabilityCase{"Port_ActionsMenuHidden", kPortOpen, "mnuBuyShares", false},
        AvailabilityCase{"Port_PanelHidden", kPortOpen, "btnSell", false},
        AvailabilityCase{"Sec_BuyButton", kSecOpen, "btnBuy", true},
        AvailabilityCase{"Closed_BasisReportDisabled", kClientClosed, "mnuBasisAnalysis", false},
        AvailabilityCase{"Sec_BasisReport", kSecOpen, "mnuBasisAnalysis", true},
        AvailabilityCase{"Closed_HelpKey", kClientClosed, "Help", true},
        AvailabilityCase{"Sec_Unknown", kSecOpen, "mnuNoSuchItem", false}),
    [](const ::testing::TestParamInfo<AvailabilityCase>& info) {
      return std::string(info.param.label);
    });

// A refused command does nothing at all; an available one runs its
// procedure (here the security's deletion, which first asks).
TEST_F(CommandTest, RunMenuCommand_RefusesDisabled) {
  Enter(kPortOpen);
  EXPECT_FALSE(RunMenuCommand(*app_, "mnuSecurityDelete"));
  EXPECT_FALSE(RunMenuCommand(*app_, "btnRollback"));
  EXPECT_EQ(State(*app_, kStateQuery), kPortOpen);

  SecList_Select(*app_, 0);
  ui_.Expect(
      "You are about to delete Security: IBM. The Security will be removed from the Portfolio and "
      "all blocks in it will be deleted. Are you sure you want to do this?",
      "Delete Security?", Answer::kNo);
  EXPECT_TRUE(RunMenuCommand(*app_, "mnuSecurityDelete"));
  EXPECT_EQ(CountClientRows("Security"), 1);
}

// Turning recalculation back on while a security is shown computes its
// total at once.
TEST_F(CommandTest, RunMenuCommand_RecalcSharesToggle) {
  app_->window.options.recalc_shares = false;
  Enter(kSecOpen);
  EXPECT_EQ(app_->window.display.total_shares, "Recalculate");
  EXPECT_TRUE(RunMenuCommand(*app_, "mnuRecalcShares"));
  EXPECT_TRUE(app_->window.options.recalc_shares);
  EXPECT_EQ(app_->window.display.total_shares, "100");
  EXPECT_TRUE(RunMenuCommand(*app_, "mnuOpenOnlyPort"));
  EXPECT_FALSE(app_->window.options.open_only_port);
}

// "Modify Entire Sell" without a sale selected says what to do.
TEST_F(CommandTest, RunMenuCommand_ModifyEntireSellNeedsSale) {
  Enter(kSecOpen);
  ui_.Expect(
      "Please click on a Sell transaction in the Transaction List first. Every Sell transaction "
      "of the Security on its date will be modified together.",
      "No Sell Selected");
  EXPECT_TRUE(RunMenuCommand(*app_, "mnuModEntireSell"));
}

// Exit says goodbye on the help bar and ends the program.
TEST_F(CommandTest, RunMenuCommand_Exit) {
  Enter(kClientClosed);
  EXPECT_THROW(RunMenuCommand(*app_, "Exit"), ProgramEnded);
  EXPECT_EQ(ui_.help_texts().back(), "Thank you for using the Tarnwick Software - Lotwise");
}

}  // namespace
}  // namespace lotwise::testing
