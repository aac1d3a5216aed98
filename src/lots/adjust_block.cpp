#include "lots/adjust_block.h"

#include <cstdint>
#include <optional>

#include "data/application.h"
#include "data/database.h"
#include "data/entry_rows.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "ground/date.h"
#include "ground/lw_error.h"
#include "ground/value_helpers.h"
#include "lots/rebook.h"
#include "lots/security_display.h"

namespace lotwise {

namespace {

// The open Taxpayer File; a command reached without one is a fault of the
// program, reported like any other rather than dereferenced.
}  // namespace

void ShowAdjustBlock(Application& app) {
  TrapVoid(app, "ShowAdjustBlock", [&] {
    if (app.window.display.blocks.empty()) {
      app.ui().MessageBox(
          "There are no Blocks to make an Adjustment to. To enter a purchase of Shares click on "
          "the Buy button.",
          "No Blocks to add to", Icon::kInformation, Buttons::kOk);
      return;
    }
    AdjustBlockForm form;
    {
      HourglassGuard hourglass(app.ui());
      form.security = FixAmpersand(app.window.display.sec_name);
      form.block = app.current.block_id;
    }
    app.ui().RunModal(form);
  });
}

void DateLostFocusAB(Application& app, AdjustBlockForm& form) {
  ChkTransDate(app, form.date);
  TrapVoid(app, "DateLostFocusAB", [&] {
    Date date;
    if (!DateValid(app.ui(), form.date, "date", date)) form.focus = "dtDate";
  });
}

void AdjustBlock_OK(Application& app, AdjustBlockForm& form) {
  form.accepted = false;
  TrapVoid(app, "AdjustBlock_OK", [&] {
    Date date;
    if (!DateValid(app.ui(), form.date, "date", date)) return;
    if (!ShareDecimalsValid(app.ui(), form.num_shares, "Number of Shares")) {
      form.focus = "DblNumShares";
      return;
    }
    const int64_t block_no = app.current.block_no;
    // The purchase is read from the file rather than from the transactions
    // grid: the grid may be filtered to a type that hides it.
    std::optional<Date> purchase = FirstTransactionDate(app.ClientFile(), block_no);
    if (purchase && date < *purchase) {
      app.ui().MessageBox(
          "You can't enter an Adjustment that is before the original purchase of this block of "
          "shares. Please correct the date, and make sure you are adding this to the correct "
          "block.",
          "Incorrect Date", Icon::kExclamation, Buttons::kOk);
      form.focus = "dtDate";
      return;
    }
    HourglassGuard hourglass(app.ui());
    if (!AddAdjust(app, block_no, date, form.num_shares, form.cost_basis, form.notes)) {
      app.ui().MessageBox(
          "The Adjustment was not added. If an error message was displayed you should try to "
          "correc the error first. You will need to add this Adjustment again.",
          "Error!", Icon::kCritical, Buttons::kOk);
      return;
    }
    form.accepted = true;
    OfferRebookLaterSales(app, app.current.sec_id, date, kPrecAdjust);
    form.closed = true;
    UpdateTransInBlock(app, app.window.display.trans_filter);
    UpdateSharesInSec(app);
  });
}

void AdjustBlock_Cancel(Application&, AdjustBlockForm& form) { form.closed = true; }

std::string HelpText(const AdjustBlockForm&, std::string_view control) {
  if (control == "dtDate") return "Enter the Date this adjustment was made";
  if (control == "DblNumShares")
    return "Enter the adjustment to the number of Shares in this Block";
  if (control == "CurrCostBasis") return "Enter the adjustment to the Cost Basis for this Block";
  if (control == "txtNotes") return "Enter any additional information about this adjustment here";
  if (control == "pnlSecurity") return "This is the Security you are making an Adjustment to";
  if (control == "pnlBlock") return "This is the Block you are making an Adjustment to";
  if (control == "btnOK") return "Click here to enter this adjustment";
  if (control == "btnCancel") return "Click here to cancel this adjustment";
  return {};
}

}  // namespace lotwise
