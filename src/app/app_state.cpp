#include "app/app_state.h"

#include <array>
#include <string_view>

#include "data/application.h"
#include "data/error_handler.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"
#include "lots/security_display.h"
#include "lots/security_list.h"

namespace lotwise {

namespace {

// What a state does to one element: switch it off (disable or hide), on
// (enable or show), or leave it as the previous state left it.
enum class Cell { kOff, kOn, kKeep };
enum class Switch { kEnabled, kVisible };

struct StateRow {
  std::string_view name;
  Switch what;
  // By state: CLIENTCLOSED, CLIENTOPEN, PORTOPEN, SECOPEN.
  std::array<Cell, 4> cells;
};

using enum Cell;

constexpr StateRow kStateTable[] = {
    {"mnuPortfolio", Switch::kVisible, {kOff, kOn, kOn, kOn}},
    {"mnuSecurity", Switch::kVisible, {kOff, kOff, kOn, kOn}},
    {"mnuActions", Switch::kVisible, {kOff, kOff, kOff, kOn}},
    {"mnuFileModifyClient", Switch::kEnabled, {kOff, kOn, kOn, kOn}},
    {"mnuFileCloseClient", Switch::kEnabled, {kOff, kOn, kOn, kOn}},
    {"mnuPortfolioModify", Switch::kEnabled, {kKeep, kOff, kOn, kOn}},
    {"mnuPortfolioClose", Switch::kEnabled, {kKeep, kOff, kOn, kOn}},
    {"mnuSecurityDelete", Switch::kEnabled, {kKeep, kKeep, kOff, kOn}},
    {"mnuChangeMethod", Switch::kEnabled, {kKeep, kKeep, kOff, kOn}},
    {"mnuDeleteBlock", Switch::kEnabled, {kOff, kOff, kOff, kOn}},
    {"mnuModifyTrans", Switch::kEnabled, {kOff, kOff, kOff, kOn}},
    {"mnuDeleteTrans", Switch::kEnabled, {kOff, kOff, kOff, kOn}},
    {"mnuTransListing", Switch::kEnabled, {kOff, kOn, kOn, kOn}},
    {"mnuBasisAnalysis", Switch::kEnabled, {kOff, kOn, kOn, kOn}},
    {"mnuScheduleD", Switch::kEnabled, {kOff, kOn, kOn, kOn}},
    {"mnuSecListing", Switch::kEnabled, {kOff, kOn, kOn, kOn}},
    {"NewPort", Switch::kEnabled, {kOff, kOn, kOn, kOn}},
    {"OpenPort", Switch::kEnabled, {kOff, kOn, kOn, kOn}},
    {"AddSec", Switch::kEnabled, {kOff, kOff, kOn, kOn}},
};

// The caption panels and the two security views of each state.
struct StatePanels {
  bool client_caption;
  bool portfolio_caption;
  Cell sec_list;
  Cell sec_display;
};

constexpr StatePanels kStatePanels[] = {
    {false, false, kOff, kOff},  // CLIENTCLOSED
    {true, false, kOff, kOff},   // CLIENTOPEN
    {true, true, kOn, kOff},     // PORTOPEN
    {true, true, kKeep, kKeep},  // SECOPEN: the caller has just shown the security
};

void ApplyState(Application& app, int16_t state) {
  const size_t column = static_cast<size_t>(state - kClientClosed);
  MainWindowState& window = app.window;
  for (const StateRow& row : kStateTable) {
    const Cell cell = row.cells[column];
    if (cell == Cell::kKeep) continue;
    auto& values = row.what == Switch::kEnabled ? window.enabled : window.visible;
    values[std::string(row.name)] = cell == Cell::kOn;
  }

  const StatePanels& panels = kStatePanels[column];
  window.client_panel = panels.client_caption ? FixAmpersand(app.current.client_name) : "";
  window.portfolio_panel = panels.portfolio_caption ? FixAmpersand(app.current.port_name) : "";
  if (panels.sec_list == Cell::kOn) ShowSecList(app);
  if (panels.sec_list == Cell::kOff) HideSecList(app);
  if (panels.sec_display == Cell::kOff) HideSecDisplay(app);
}

void StateToCLIENTCLOSED(Application& app) {
  TrapVoid(app, "StateToCLIENTCLOSED", [&] {
    ApplyState(app, kClientClosed);
    // Without a taxpayer the lists keep nothing of the closed file.
    app.window.securities.clear();
    app.window.selected_security = -1;
    app.window.display = SecurityDisplay{};
  });
}

void StateToCLIENTOPEN(Application& app) {
  TrapVoid(app, "StateToCLIENTOPEN", [&] { ApplyState(app, kClientOpen); });
}

void StateToPORTOPEN(Application& app) {
  TrapVoid(app, "StateToPORTOPEN", [&] { ApplyState(app, kPortOpen); });
}

void StateToSECOPEN(Application& app) {
  TrapVoid(app, "StateToSECOPEN", [&] { ApplyState(app, kSecOpen); });
}

}  // namespace

bool MainWindowState::IsEnabled(const std::string& name) const {
  auto it = enabled.find(name);
  return it == enabled.end() || it->second;
}

bool MainWindowState::IsVisible(const std::string& name) const {
  auto it = visible.find(name);
  return it == visible.end() || it->second;
}

int16_t State(Application& app, int16_t new_state) {
  HourglassGuard hourglass(app.ui());
  switch (new_state) {
    case kStateNone:
      app.window.state = kStateNone;
      break;
    case kClientClosed:
      app.window.state = new_state;
      StateToCLIENTCLOSED(app);
      break;
    case kClientOpen:
      app.window.state = new_state;
      StateToCLIENTOPEN(app);
      break;
    case kPortOpen:
      app.window.state = new_state;
      StateToPORTOPEN(app);
      break;
    case kSecOpen:
      app.window.state = new_state;
      StateToSECOPEN(app);
      break;
    case kStateQuery:
      break;
    default:
      app.ui().MessageBox("Incorrect usage of function State", "Incorrect Usage!",
                          Icon::kExclamation, Buttons::kOk);
      break;
  }
  return app.window.state;
}

void ToggleToolBar(Application& app) {
  TrapVoid(app, "ToggleToolBar", [&] {
    app.window.options.show_tool_bar = !app.window.options.show_tool_bar;
    app.window.tool_bar_visible = app.window.options.show_tool_bar;
  });
}

void ToggleHelpBar(Application& app) {
  TrapVoid(app, "ToggleHelpBar", [&] {
    app.window.options.show_help_bar = !app.window.options.show_help_bar;
    app.window.help_bar_visible = app.window.options.show_help_bar;
  });
}

void ToggleToolTips(Application& app) {
  TrapVoid(app, "ToggleToolTips",
           [&] { app.window.options.show_tool_tips = !app.window.options.show_tool_tips; });
}

void ToggleOpenOnlyPort(Application& app) {
  TrapVoid(app, "ToggleOpenOnlyPort",
           [&] { app.window.options.open_only_port = !app.window.options.open_only_port; });
}

void ToggleRecalcShares(Application& app) {
  TrapVoid(app, "ToggleRecalcShares", [&] {
    app.window.options.recalc_shares = !app.window.options.recalc_shares;
    if (app.window.options.recalc_shares && app.window.display.visible) UpdateSharesInSec(app);
  });
}

}  // namespace lotwise
