#include "app/app_state.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "app/security_commands.h"
#include "app_state/window_fixture.h"
#include "lots/security_display.h"

namespace lotwise::testing {
namespace {

enum class Cell { kOff, kOn, kKeep };

struct StateCase {
  const char* label;
  int16_t state;
  const char* name;
  bool is_menu;  // a menu's visibility rather than an item's or key's enabling
  Cell expected;
};

void PrintTo(const StateCase& c, std::ostream* os) { *os << c.label; }

// Each move sets exactly what its state allows: off and on whatever the
// element was before, "(unchanged)" cells keep either previous value, and
// names the state does not govern are never touched.
class StateTableTest : public WindowTest, public ::testing::WithParamInterface<StateCase> {};

TEST_P(StateTableTest, State_SetsElement) {
  const StateCase& c = GetParam();
  for (bool before : {false, true}) {
    auto& values = c.is_menu ? app_->window.visible : app_->window.enabled;
    values[c.name] = before;
    EXPECT_EQ(State(*app_, c.state), c.state);
    const bool after = c.is_menu ? app_->window.IsVisible(c.name) : app_->window.IsEnabled(c.name);
    const bool expected = c.expected == Cell::kKeep ? before : c.expected == Cell::kOn;
    EXPECT_EQ(after, expected) << c.name << " was " << before;
  }
}

constexpr int16_t kClosed = kClientClosed;
constexpr int16_t kOpen = kClientOpen;
constexpr int16_t kPort = kPortOpen;
constexpr int16_t kSec = kSecOpen;

INSTANTIATE_TEST_SUITE_P(
    States, StateTableTest,
    ::testing::Values(
        StateCase{"Closed_PortfolioMenu", kClosed, "mnuPortfolio", true, Cell::kOff},
        StateCase{"Open_SecurityMenu", kOpen, "mnuSecurity", true, Cell::kOff},
        StateCase{"Port_SecurityMenu", kPort, "mnuSecurity", true, Cell::kOn},
        StateCase{"Sec_ActionsMenu", kSec, "mnuActions", true, Cell::kOn},
        StateCase{"Closed_CloseClient", kClosed, "mnuFileCloseClient", false, Cell::kOff},
        StateCase{"Closed_PortfolioModify", kClosed, "mnuPortfolioModify", false, Cell::kKeep},
        StateCase{"Open_PortfolioClose", kOpen, "mnuPortfolioClose", false, Cell::kOff},
        StateCase{"Open_ChangeMethod", kOpen, "mnuChangeMethod", false, Cell::kKeep},
        StateCase{"Port_SecurityDelete", kPort, "mnuSecurityDelete", false, Cell::kOff},
        StateCase{"Sec_ChangeMethod", kSec, "mnuChangeMethod", false, Cell::kOn},
        StateCase{"Port_DeleteBlock", kPort, "mnuDeleteBlock", false, Cell::kOff},
        StateCase{"Closed_ScheduleD", kClosed, "mnuScheduleD", false, Cell::kOff},
        StateCase{"Open_SecListing", kOpen, "mnuSecListing", false, Cell::kOn},
        StateCase{"Closed_NewPortKey", kClosed, "NewPort", false, Cell::kOff},
        StateCase{"Open_AddSecKey", kOpen, "AddSec", false, Cell::kOff},
        StateCase{"Port_AddSecKey", kPort, "AddSec", false, Cell::kOn},
        StateCase{"Sec_NewClientUngoverned", kSec, "mnuFileNewClient", false, Cell::kKeep},
        StateCase{"Closed_ModEntireSellUngoverned", kClosed, "mnuModEntireSell", false,
                  Cell::kKeep}),
    [](const ::testing::TestParamInfo<StateCase>& info) { return std::string(info.param.label); });

// The caption panels show the open taxpayer and portfolio with every "&"
// doubled, and only in the states that have them.
TEST_F(WindowTest, State_PanelsDoubleAmpersands) {
  app_->current.client_name = "Smith & Jones";
  Portfolio("R&D");
  app_->current.port_name = "R&D";

  State(*app_, kClientOpen);
  EXPECT_EQ(app_->window.client_panel, "Smith && Jones");
  EXPECT_EQ(app_->window.portfolio_panel, "");
  State(*app_, kPortOpen);
  EXPECT_EQ(app_->window.client_panel, "Smith && Jones");
  EXPECT_EQ(app_->window.portfolio_panel, "R&&D");
  State(*app_, kSecOpen);
  EXPECT_EQ(app_->window.portfolio_panel, "R&&D");
  State(*app_, kClientClosed);
  EXPECT_EQ(app_->window.client_panel, "");
  EXPECT_EQ(app_->window.portfolio_panel, "");
}

// The security list and the display follow the state: the portfolio's list
// is loaded on PORTOPEN, SECOPEN leaves both as its caller set them, and
// closing the taxpayer drops every row the lists held.
TEST_F(WindowTest, State_ShowsAndDropsSecurityViews) {
  AddSecurity("MSFT", "Microsoft");
  const int64_t ibm = AddSecurity("IBM", "Intl Business Machines");
  Buy(ibm, "01/15/2024", 10);
  Portfolio("Income");
  AddSecurity("OTHER", "Other", "NO CUSIP", " ", "Income");

  State(*app_, kPortOpen);
  EXPECT_TRUE(app_->window.sec_list_visible);
  EXPECT_EQ(ListedSymbols(), (std::vector<std::string>{"IBM", "MSFT"}));
  EXPECT_EQ(app_->window.selected_security, 0);
  EXPECT_FALSE(app_->window.display.visible);

  ShowSecDisplay(*app_, "IBM");
  State(*app_, kSecOpen);
  EXPECT_TRUE(app_->window.sec_list_visible);
  EXPECT_TRUE(app_->window.display.visible);

  State(*app_, kPortOpen);
  EXPECT_TRUE(app_->window.sec_list_visible);
  EXPECT_FALSE(app_->window.display.visible);

  State(*app_, kClientOpen);
  EXPECT_FALSE(app_->window.sec_list_visible);
  EXPECT_FALSE(app_->window.display.visible);
  EXPECT_EQ(app_->window.securities.size(), 2u);

  State(*app_, kClientClosed);
  EXPECT_FALSE(app_->window.sec_list_visible);
  EXPECT_TRUE(app_->window.securities.empty());
  EXPECT_EQ(app_->window.selected_security, -1);
  EXPECT_TRUE(app_->window.display.blocks.empty());
  EXPECT_TRUE(app_->window.display.transactions.empty());
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
  EXPECT_EQ(app_->window.enabled, enabled);
  EXPECT_EQ(app_->window.visible, visible);

  ui_.Expect("Incorrect usage of function State", "Incorrect Usage!", Icon::kExclamation,
             Buttons::kOk);
  EXPECT_EQ(State(*app_, 5), kPortOpen);
  EXPECT_EQ(app_->window.enabled, enabled);

  EXPECT_EQ(State(*app_, kStateNone), kStateNone);
  EXPECT_EQ(app_->window.enabled, enabled);
  EXPECT_EQ(app_->window.portfolio_panel, "Growth");
  EXPECT_EQ(ui_.hourglass_depth(), 0);
}

}  // namespace
}  // namespace lotwise::testing
