#pragma once

#include <string_view>

namespace lotwise {

class Application;

// The main window's commands by the name of the control that runs them: menu
// items ("mnuFileOpenClient"), tool-bar keys ("OpenPort") and the security
// panel's buttons ("btnSell").

// Returns true iff `name` is a command that runs now: it is known, its
// command is built, it is enabled in the current state, and the menu, tool
// bar or panel holding it is shown.
bool CanRunMenuCommand(const Application& app, std::string_view name);

// Runs the command of `name` and returns true, or returns false without any
// effect when CanRunMenuCommand says it cannot run.
bool RunMenuCommand(Application& app, std::string_view name);

// Closes the main window (mnuFileExit, the "Exit" key): says goodbye on the
// help bar and ends the program (throws ProgramEnded).
void CloseMainWindow(Application& app);

}  // namespace lotwise
