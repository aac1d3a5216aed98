#pragma once

#include <string>
#include <string_view>

#include "app/ui_port.h"

namespace lotwise {

class Application;

// The captions of dlgAddModSec, one per mode.
inline constexpr const char* kAddSecCaption = "Add a Security";
inline constexpr const char* kAddSecToCdbCaption = "Add a Security (SSF)";
inline constexpr const char* kModSecInCdbCaption = "Modify a Security (SSF)";
inline constexpr const char* kReplaceSecInCdbCaption = "Re-enter a Security (SSF)";

// The add/modify security dialog dlgAddModSec. "Add a Security" adds a
// security to the open portfolio; the three "(SSF)" modes add, modify or
// re-enter a symbol of the Security Symbols File.
struct AddModSecForm : DialogForm {
  std::string symbol;       // txtSymbol
  std::string sec_name;     // txtSecName
  std::string cusip;        // txtCusip
  std::string second_line;  // txt2ndLine
  // pnlPortfolio: the open portfolio (ampersands doubled), shown only when a
  // security is added to it.
  std::string portfolio;
  bool portfolio_visible = false;
  // In the modify and re-enter modes the symbol is fixed to this value;
  // empty when the user may type one.
  std::string fixed_symbol;
  // btnFind: picking a symbol from the Security Symbols File.
  bool find_enabled = true;
  // The symbol whose name and CUSIP were last filled in, so that leaving the
  // symbol box again does not overwrite what the user has typed since.
  std::string filled_for_symbol;
  // True while the dialog is hidden during its write.
  bool hidden = false;
  // closed: set when the dialog unloads: a write that succeeded, or Cancel.
  bool accepted = false;  // set only when OK's write succeeded

  std::string_view Name() const override { return "dlgAddModSec"; }
};

// "Add a Security": adds a security to the open portfolio.
void ShowAddSec(Application& app);
// "Add a Security (SSF)": adds a symbol to the Security Symbols File.
void ShowAddSecToCDB(Application& app);
// "Modify a Security (SSF)": changes the name and CUSIP of `symbol`, filled
// in from the Security Symbols File.
void ShowModSecInCDB(Application& app, const std::string& symbol);
// "Re-enter a Security (SSF)": puts `symbol`, deleted from the Security
// Symbols File, back into it.
void ShowReplaceSecInCDB(Application& app, const std::string& symbol);

// Returns true iff the entry may be written: a symbol is required, and a
// missing name or CUSIP needs the user's Yes.
bool VerifyAddModSec(Application& app, AddModSecForm& form);
// The OK button: checks the entry and writes it as the caption says. The
// dialog closes when the write succeeded; otherwise it is shown again with
// the user's values.
void AddModSec_Ok(Application& app, AddModSecForm& form);
// The Cancel button: closes the dialog without writing.
void AddModSec_Cancel(Application& app, AddModSecForm& form);
// The Find button: lets the user pick a symbol of the Security Symbols File
// and fills the symbol, name and CUSIP from it.
void AddModSec_Find(Application& app, AddModSecForm& form);
// An attempt to edit the symbol. Returns true iff the mode lets the symbol
// change; in the modify and re-enter modes tells the user "Can't modify
// Symbol!" and puts the fixed symbol back.
bool AddModSec_SymbolWarn(Application& app, AddModSecForm& form);
// The symbol box lost the focus: fills name and CUSIP from the Security
// Symbols File when it knows the symbol (not when adding a new symbol to it).
void FillInNameCusip(Application& app, AddModSecForm& form);

// The help-bar text of a control of the dialog ("txtSymbol", "btnOK").
std::string HelpText(const AddModSecForm& form, std::string_view control);

}  // namespace lotwise
