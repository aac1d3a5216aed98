#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ground/currency.h"
#include "ground/date.h"
#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The captions of dlgModifyTrans: one per kind of stored transaction.
inline constexpr const char* kModifyBuyCaption = "Modify Buy";
inline constexpr const char* kModifyReinvestCaption = "Modify Reinvestment";
inline constexpr const char* kModifySellCaption = "Modify Sell";
inline constexpr const char* kModifyAdjustCaption = "Modify Adjustment";
inline constexpr const char* kModifySplitCaption = "Modify Stock Split";
inline constexpr const char* kModifyDividendCaption = "Modify Stock Dividend";

// The dialog dlgModifyTrans, which rewrites one stored transaction of the
// current block. Its caption ("Modify Buy", "Modify Sell", ...) is its mode.
struct ModifyTransForm : DialogForm {
  std::string date = kEmptyDateText;  // dtDate, as typed
  double num_shares = 0;              // DblNumShares; a sale's shares are negative
  Currency cost_of_shares;            // CurrCostOfShares: the cost, or a sale's sale price
  Currency fee;                       // CurrFee
  std::string notes;                  // txtNotes
  // Display only.
  std::string cost_label;    // the label of CurrCostOfShares: "Sale Price:" for a sale
  bool cost_enabled = true;  // false for splits and dividends, which have no cost
  bool fee_enabled = true;   // false for adjustments, splits and dividends
  std::string block;         // lblBlock: the block id
  std::string security;      // lblSecurity: the security's name
  int64_t unique_id = 0;     // lblUniqueID (hidden): the row being modified
  Date original_date;        // the row's date when the dialog opened
  bool accepted = false;     // set only when OK stored the modification

  std::string_view Name() const override { return "dlgModifyTrans"; }
};

// Opens dlgModifyTrans on the selected row of the current block's
// transaction list, its caption chosen by the row's kind and its fields
// filled from the row. Tells the user when the list is empty or the kind is
// unknown, and then opens nothing.
void ShowModifyTrans(Application& app);

// Field checks, run when the field loses the focus. Each returns true iff
// the field is acceptable for the form's caption; otherwise it has told the
// user why and moved the focus back to the field.
bool CheckDateMT(Application& app, ModifyTransForm& form);
// Buys and reinvestments need positive shares, a sale negative shares;
// adjustments, splits and dividends take either sign.
bool CheckNumSharesMT(Application& app, ModifyTransForm& form);
// Cost (sale price for a sale) of a buy, reinvestment or sale must not be negative.
bool CheckCostOfSharesMT(Application& app, ModifyTransForm& form);
bool CheckFeeMT(Application& app, ModifyTransForm& form);

// The OK button: runs the four checks, confirms zero shares and (except for
// splits and dividends) a zero cost, and rewrites the row through the store
// operation of its kind. On success refreshes the block's transactions and
// the share total and sets form.closed; otherwise the dialog stays open with
// the user's values.
void ModifyTrans_OK(Application& app, ModifyTransForm& form);
// The Cancel button: closes the dialog; nothing is written.
void ModifyTrans_Cancel(Application& app, ModifyTransForm& form);

// Deletes the selected row of the current block's transaction list after the
// user confirms; a block left without any transaction is deleted with it.
void DeleteTransaction(Application& app);

// Returns the help-bar text of a control of dlgModifyTrans ("dtDate",
// "btnOK"), worded for the form's kind; empty text for an unknown control.
std::string HelpText(const ModifyTransForm& form, std::string_view control);

}  // namespace lotwise
