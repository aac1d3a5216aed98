#pragma once

#include <string>

namespace lotwise {

class Application;

// The open portfolio's security list (SSdgSecList), kept in
// app.window.securities / selected_security.

// Fills the list with the current portfolio's securities, by symbol, selects
// the first row and shows the list.
void ShowSecList(Application& app);
// Hides the list; its rows stay.
void HideSecList(Application& app);

// Reloads the list's rows from the open Taxpayer File. Selects the row of
// `symbol` when it is given and present (compared without regard to case);
// otherwise the row that was selected, found by its symbol, or failing that
// the same position, or the first row. Throws LwError on a storage failure
// (callers trap it).
void ReloadSecList(Application& app, const std::string& symbol = "");

}  // namespace lotwise
