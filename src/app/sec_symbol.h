#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ground/ui_port.h"

namespace lotwise {

class Application;
struct AddModSecForm;

// The captions of dlgSecSymbol, one per mode: managing the symbols of the
// Security Symbols File, or picking one for the add/modify dialog.
inline constexpr const char* kSecSymbolCaption = "Security Symbols File";
inline constexpr const char* kFindSecSymbolCaption = "Select a Security";

// One symbol of the Security Symbols File as its list shows it.
struct SecSymbolRow {
  std::string symbol;
  std::string name;
  std::string cusip;
};

// The Security Symbols dialog dlgSecSymbol: the central list of symbols with
// Add, Modify, Delete and Close, or (picking) Select and Cancel.
struct SecSymbolForm : DialogForm {
  // The grid of the central securities, ordered by symbol.
  std::vector<SecSymbolRow> securities;
  int selected = -1;  // index into securities, -1 when the list is empty
  // The instruction the dialog shows for its mode.
  std::string instructions;
  // Picking mode: the dialog that receives the chosen symbol.
  AddModSecForm* target = nullptr;

  bool picking() const { return caption == kFindSecSymbolCaption; }
  std::string_view Name() const override { return "dlgSecSymbol"; }
};

// The Security Symbols dialog for managing the central symbols.
void ShowSecSymbol(Application& app);
// The same list for picking a symbol into `target`'s symbol box.
void ShowFindSecSymbol(Application& app, AddModSecForm& target);

// Reloads the list from the Security Symbols File, keeping the selected
// symbol selected when it is still there (else the first row).
void LoadSecSymbols(Application& app, SecSymbolForm& form);

// Add: the "Add a Security (SSF)" dialog, then the list again.
void SecSymbol_Add(Application& app, SecSymbolForm& form);
// Modify: after the user confirms, the "Modify a Security (SSF)" dialog
// for the selected symbol.
void SecSymbol_Modify(Application& app, SecSymbolForm& form);
// Delete: after the user confirms, removes the selected symbol from the
// Security Symbols File; Taxpayer Files keep their securities and
// transactions.
void SecSymbol_Delete(Application& app, SecSymbolForm& form);
// Select (picking mode): hands the selected symbol to the target dialog
// and closes.
void SecSymbol_Select(Application& app, SecSymbolForm& form);
// Close / Cancel.
void SecSymbol_Close(Application& app, SecSymbolForm& form);

// The help-bar text of a control of the dialog.
std::string HelpText(const SecSymbolForm& form, std::string_view control);

// The Find button: lets the user pick a symbol of the Security Symbols File
// and fills the symbol, name and CUSIP from it.
void AddModSec_Find(Application& app, AddModSecForm& form);

}  // namespace lotwise
