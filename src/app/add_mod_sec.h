#pragma once

#include <string>
#include <string_view>

#include "app/add_mod_sec_form.h"

namespace lotwise {

class Application;

// "Add a Security": adds a security to the open portfolio.
void ShowAddSec(Application& app);
// "Add a Security (SSF)": adds a symbol to the Security Symbols File.
void ShowAddSecToCDB(Application& app);
// "Modify a Security (SSF)": changes the name and CUSIP of `symbol`, filled
// in from the Security Symbols File.
void ShowModSecInCDB(Application& app, const std::string& symbol);

// Returns true iff the entry may be written: a symbol is required, and a
// missing name or CUSIP needs the user's Yes.
bool VerifyAddModSec(Application& app, AddModSecForm& form);
// The OK button: checks the entry and writes it as the caption says. The
// dialog closes when the write succeeded; otherwise it is shown again with
// the user's values.
void AddModSec_Ok(Application& app, AddModSecForm& form);
// The Cancel button: closes the dialog without writing.
void AddModSec_Cancel(Application& app, AddModSecForm& form);
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
