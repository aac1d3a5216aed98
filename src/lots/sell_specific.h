#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ground/date.h"
#include "ground/ui_port.h"

namespace lotwise {

class Application;
struct SellSharesForm;

// The selection dialog dlgSellSpecific: the shares left per block and the
// shares selected per block of the sale being entered. The lists themselves
// are app.sale_lists; the grids show them.
struct SellSpecificForm : DialogForm {
  std::string security;  // lblSecurity
  // SSdgSharesLeft and SSdgSharesSold: one row per list entry, "block id",
  // Tab, shares, Tab, block number; and each grid's current row.
  std::vector<std::string> shares_left_rows;
  int left_row = -1;
  std::vector<std::string> shares_sold_rows;
  int sold_row = -1;
  double shares_left_total = 0;  // pnlSharesLeft
  double shares_sold_total = 0;  // pnlSharesSold
  // The sale dialog that opened this one; OK and Cancel set its shares.
  SellSharesForm* sale_form = nullptr;
  bool accepted = false;  // set only when OK took the selection

  std::string_view Name() const override { return "dlgSellSpecific"; }
};

// The number prompt dlgNumShares. Its caption is "Add Shares" or "Remove
// Shares".
struct NumSharesForm : DialogForm {
  std::string note;       // lblNote
  double num_shares = 0;  // DblNumShares
  double max_shares = 0;  // lblMaxShares, the largest number allowed
  // Set by NumShares_OK when the number is accepted; the caller reads
  // num_shares then, and 0 otherwise.
  bool accepted = false;

  std::string_view Name() const override { return "dlgNumShares"; }
};

// Opens the selection for the sale dialog `sale_form`. The lists are built
// from the blocks on the first visit (both flagged empty) and kept on later
// ones; a security without shares gets the "No shares" message instead.
void ShowSellSpecific(Application& app, SellSharesForm& sale_form);

// Rebuilds the lists from the blocks with nothing selected (also the Reset
// button). Returns true iff any block has shares.
bool ResetShareLists(Application& app, SellSpecificForm& form);
// Fills the shares-left list with the security's blocks that hold shares,
// oldest first, and shows it in `form` when given. Returns the number of
// entries (a count that may exceed 16 bits in a long-held fund).
int BuildSharesLeftList(Application& app, SellSpecificForm* form = nullptr);
// Return the total of the shares-left / selected list (0 while it is flagged
// empty), rounded to five decimals, and show it in `form` when given.
double ComputeSharesLeft(Application& app, SellSpecificForm* form = nullptr);
double ComputeSharesSold(Application& app, SellSpecificForm* form = nullptr);

// The buttons. Add moves shares of the current left row's block into the
// selection, Remove moves shares of the current selected row back; each
// asks for the number through dlgNumShares.
void SellSpecific_Add(Application& app, SellSpecificForm& form);
void SellSpecific_Remove(Application& app, SellSpecificForm& form);
// Returns true iff every block of the selection was acquired on or before
// `date`, the sale's date; otherwise tells the user which block is younger
// than the sale, leaving the selection to be corrected.
bool SelectionPrecedesSale(Application& app, Date date);
// Puts the selected total into the sale dialog's shares and closes; asks
// first when nothing is selected.
void SellSpecific_OK(Application& app, SellSpecificForm& form);
// Forgets the selection (the next visit rebuilds it), sets the sale
// dialog's shares to 0 and closes.
void SellSpecific_Cancel(Application& app, SellSpecificForm& form);

// The number prompt's OK: refuses a negative number and one above the
// maximum (the maximum itself is accepted); otherwise accepts and closes.
void NumShares_OK(Application& app, NumSharesForm& form);
void NumShares_Cancel(Application& app, NumSharesForm& form);

// The help-bar texts of the two dialogs.
std::string HelpText(const SellSpecificForm& form, std::string_view control);
std::string HelpText(const NumSharesForm& form, std::string_view control);

}  // namespace lotwise
