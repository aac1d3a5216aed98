#pragma once

#include <cstdint>
#include <string>

namespace lotwise {

class Application;

// Application states.
inline constexpr int16_t kStateNone = 0;
inline constexpr int16_t kClientClosed = 1;
inline constexpr int16_t kClientOpen = 2;
inline constexpr int16_t kPortOpen = 3;
inline constexpr int16_t kSecOpen = 4;
inline constexpr int16_t kStateQuery = -4000;

// Check marks of the Options menu, as the INI file sets them.
struct OptionMarks {
  bool show_tool_bar = true;     // mnuShowToolbar
  bool show_tool_tips = true;    // mnuShowToolTips
  bool show_help_bar = true;     // mnuHelpBar
  bool recalc_shares = true;     // mnuRecalcShares
  bool open_only_port = true;    // mnuOpenOnlyPort
};

// The main window's state, kept in the core so that the window only mirrors
// it: the application state, the option check marks and the caption panels.
struct MainWindowState {
  int16_t state = kStateNone;
  OptionMarks options;
  std::string client_panel;     // pnlClient caption (ampersands doubled)
  std::string portfolio_panel;  // pnlPortfolio caption (ampersands doubled)
  bool tool_bar_visible = true;
  bool help_bar_visible = true;
};

// Moves the application to `new_state` (1 to 4), or sets 0 without any
// display change, or (kStateQuery) only reads it. Any other value is refused
// with the "Incorrect Usage!" message. Returns the state after the call.
int16_t State(Application& app, int16_t new_state);

// Flip the tool bar's / help bar's check mark and show or hide the bar.
void ToggleToolBar(Application& app);
void ToggleHelpBar(Application& app);

}  // namespace lotwise
