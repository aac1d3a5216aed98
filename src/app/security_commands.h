#pragma once

#include <string>

namespace lotwise {

class Application;

// The main window's commands on the open portfolio's securities: open one
// in the security panel (app.window.display), delete one, re-enter a symbol
// that the Security Symbols File lost. They sit above the panel and the list
// (src/lots) because opening a security may change the application state
// and show the security dialog. Every procedure traps its own errors
// (reported under its own name).

// Fills app.window.display for the security `symbol` of the current
// portfolio and shows it: name and CUSIP from the Security Symbols File
// (offering to re-enter a deleted symbol), second line and sell method
// (giving the security "NOT SELECTED" when it has none), blocks oldest first
// with the first selected, its transactions under the filter "All", and the
// total shares. Sets app.current.sec_id/sec_symbol and block_no/block_id.
void ShowSecDisplay(Application& app, const std::string& symbol);
// Reloads the security list, selects the row of `symbol` (or keeps the
// current row when empty text) and opens it through SecList_Select.
void DisplaySecurity(Application& app, const std::string& symbol = "");

// Opens the security of row `index` (-1: the selected row) in the security
// display and enters SECOPEN. With an empty list tells the user how to add
// a security instead.
void SecList_Select(Application& app, int index = -1);
// Deletes the selected security, with its blocks and transactions, from the
// portfolio after the user confirms; hides the display and returns to
// PORTOPEN with the list reloaded.
void SecList_Delete(Application& app);
// "Re-enter a Security (SSF)": puts `symbol`, deleted from the Security
// Symbols File, back into it.
void ShowReplaceSecInCDB(Application& app, const std::string& symbol);

}  // namespace lotwise
