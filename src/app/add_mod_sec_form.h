#pragma once

#include <string>
#include <string_view>

#include "ground/ui_port.h"

namespace lotwise {

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

// Shows the dialog until the user closes it.
inline void RunAddModSec(UiPort& ui, AddModSecForm& form) {
  form.hidden = false;
  ui.RunModal(form);
}

}  // namespace lotwise
