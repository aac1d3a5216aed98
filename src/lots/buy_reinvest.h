#pragma once

#include <string>
#include <string_view>

#include "ground/currency.h"
#include "ground/date.h"
#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The dialog dlgBuyReinvest: a purchase or a reinvestment, each opening a
// block of its own in the open security.
struct BuyReinvestForm : DialogForm {
  // The captions that switch the dialog between its two modes.
  static constexpr const char* kBuyCaption = "Buy Shares";
  static constexpr const char* kReinvestCaption = "Reinvestment";

  // caption: "Buy Shares" or "Reinvestment"
  std::string date = kEmptyDateText;  // dtDate, as typed
  double num_shares = 0;              // DblNumShares
  Currency cost_of_shares;            // CurrCostOfShares, without the fee
  Currency fee;                       // CurrFee
  Currency total_cost;                // CurrTotalCost, display only
  std::string notes;                  // txtNotes
  std::string security;               // lblSecurity, ampersands doubled
  // closed: set when the dialog unloads (an accepted entry without Next, Cancel).
  // Set only when the last OK or Next stored its entry.
  bool accepted = false;

  std::string_view Name() const override { return "dlgBuyReinvest"; }
};

// Shows the dialog as "Buy Shares" for the open security, modally.
void ShowBuyShares(Application& app);
// Shows it as "Reinvestment"; with no block in the security, only tells the
// user that there is nothing to reinvest into.
void ShowReinvest(Application& app);

// Field checks, run when their field loses the focus. The date check tells
// the user when the text is no date and sends the focus back to it; the
// amount checks warn about a zero and reset a negative value to 0.
void CheckDateBR(Application& app, BuyReinvestForm& form);
void CheckNumSharesBR(Application& app, BuyReinvestForm& form);
void CheckCostSharesBR(Application& app, BuyReinvestForm& form);
void CheckFeeBR(Application& app, BuyReinvestForm& form);

// What the window runs when a field loses the focus: the date warns about
// an implausible date and then checks it; cost and fee are checked and the
// total cost recomputed.
void DateLostFocusBR(Application& app, BuyReinvestForm& form);
void CostSharesLostFocusBR(Application& app, BuyReinvestForm& form);
void FeeLostFocusBR(Application& app, BuyReinvestForm& form);
// Total Cost = Cost of Shares + Fee, exactly.
void UpdateTotalCostBR(BuyReinvestForm& form);

// Enters the transaction (OK: `next_flag` false; Next: true). A refused or
// failed entry leaves the form as typed and open. After an entry the new
// block is shown and the share total refreshed (or marked stale); OK closes
// the form, Next clears it for another entry in the same mode.
void BuyReinvest_OK(Application& app, BuyReinvestForm& form, bool next_flag);
// Closes the form; nothing is stored.
void BuyReinvest_Cancel(Application& app, BuyReinvestForm& form);

// Returns the help-bar text of `control` ("dtDate", "btnOK"), empty for a
// control without one.
std::string HelpText(const BuyReinvestForm& form, std::string_view control);

}  // namespace lotwise
