#include "app/app_state.h"

#include "app/application.h"
#include "app/error_handler.h"
#include "app/ui_port.h"
#include "app/value_helpers.h"

namespace lotwise {

namespace {

void StateToCLIENTCLOSED(Application& app) {
  TrapVoid(app, "StateToCLIENTCLOSED", [&] {
    app.window.client_panel.clear();
    app.window.portfolio_panel.clear();
  });
}

void StateToCLIENTOPEN(Application& app) {
  TrapVoid(app, "StateToCLIENTOPEN", [&] {
    app.window.client_panel = FixAmpersand(app.current.client_name);
    app.window.portfolio_panel.clear();
  });
}

void StateToPORTOPEN(Application& app) {
  TrapVoid(app, "StateToPORTOPEN", [&] {
    app.window.client_panel = FixAmpersand(app.current.client_name);
    app.window.portfolio_panel = FixAmpersand(app.current.port_name);
  });
}

void StateToSECOPEN(Application& app) {
  TrapVoid(app, "StateToSECOPEN", [&] {
    app.window.client_panel = FixAmpersand(app.current.client_name);
    app.window.portfolio_panel = FixAmpersand(app.current.port_name);
  });
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

}  // namespace lotwise
