#pragma once

#include <string>
#include <string_view>

#include "ground/currency.h"
#include "ground/date.h"
#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The dialog dlgAdjustBlock: a signed correction of the current block's
// shares and cost basis.
struct AdjustBlockForm : DialogForm {
  std::string date = kEmptyDateText;  // dtDate, as typed
  double num_shares = 0;              // DblNumShares, added to the block (may be negative)
  Currency cost_basis;                // CurrCostBasis, added to the basis (may be negative)
  std::string notes;                  // txtNotes
  std::string security;               // pnlSecurity, ampersands doubled
  std::string block;                  // pnlBlock: the current block id
  bool accepted = false;              // set only when OK stored the adjustment

  std::string_view Name() const override { return "dlgAdjustBlock"; }
};

// Shows the dialog for the open security's current block, modally; with no
// block, only tells the user.
void ShowAdjustBlock(Application& app);
// Leaving the date: warns about an implausible date, then tells the user
// when the text is no date and sends the focus back to it.
void DateLostFocusAB(Application& app, AdjustBlockForm& form);
// Files the adjustment under the current block. Refuses a date that is no
// date or lies before the block's purchase (the purchase date itself is
// allowed). Closes the form on success; otherwise it stays open as typed.
void AdjustBlock_OK(Application& app, AdjustBlockForm& form);
// Closes the form; nothing is stored.
void AdjustBlock_Cancel(Application& app, AdjustBlockForm& form);

// Returns the help-bar text of `control`, empty for a control without one.
std::string HelpText(const AdjustBlockForm& form, std::string_view control);

}  // namespace lotwise
