#include "lots/buy_reinvest.h"

#include <cstdint>

#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "ground/date.h"
#include "ground/lw_error.h"
#include "ground/value_helpers.h"
#include "lots/rebook.h"
#include "lots/security_display.h"

namespace lotwise {

namespace {

void Warn(Application& app, const char* text, const char* title) {
  app.ui().MessageBox(text, title, Icon::kExclamation, Buttons::kOk);
}

bool StillAdd(Application& app, const char* what) {
  return app.ui().MessageBox(std::string("The ") + what +
                                 " entered is zero. This is probably a mistake. Do you still "
                                 "want to add this transaction?",
                             "Warning!", Icon::kQuestion, Buttons::kYesNo) == Answer::kYes;
}

void ShowForm(Application& app, const char* caption) {
  BuyReinvestForm form;
  {
    HourglassGuard hourglass(app.ui());
    form.caption = caption;
    form.security = FixAmpersand(app.window.display.sec_name);
  }
  app.ui().RunModal(form);
}

void ClearForNext(BuyReinvestForm& form) {
  form.date = kEmptyDateText;
  form.cost_of_shares = Currency();
  form.num_shares = 0;
  form.fee = Currency();
  form.total_cost = Currency();
  form.notes.clear();
  form.focus = "dtDate";
}

}  // namespace

void ShowBuyShares(Application& app) {
  TrapVoid(app, "ShowBuyShares", [&] { ShowForm(app, BuyReinvestForm::kBuyCaption); });
}

void ShowReinvest(Application& app) {
  TrapVoid(app, "ShowReinvest", [&] {
    if (app.window.display.blocks.empty()) {
      app.ui().MessageBox(
          "There are no Blocks to enter a Reinvestment into. To enter a purchase of Shares click "
          "on the Buy button.",
          "No Blocks to add to", Icon::kInformation, Buttons::kOk);
      return;
    }
    ShowForm(app, BuyReinvestForm::kReinvestCaption);
  });
}

void CheckDateBR(Application& app, BuyReinvestForm& form) {
  TrapVoid(app, "CheckDateBR", [&] {
    Date date;
    if (!DateValid(app.ui(), form.date, "date", date)) form.focus = "dtDate";
  });
}

void CheckNumSharesBR(Application& app, BuyReinvestForm& form) {
  TrapVoid(app, "CheckNumSharesBR", [&] {
    if (form.num_shares == 0) {
      Warn(app, "The Number of Shares entered is zero. This is probably a mistake.", "Warning!");
    } else if (form.num_shares < 0) {
      Warn(app,
           "The Number Of Shares can not be less than zero. Please re-enter the Number of Shares",
           "Warning");
      form.num_shares = 0;
      form.focus = "DblNumShares";
    }
  });
}

void CheckCostSharesBR(Application& app, BuyReinvestForm& form) {
  TrapVoid(app, "CheckCostSharesBR", [&] {
    if (form.cost_of_shares == Currency()) {
      Warn(app, "The Cost of Shares entered is zero. This is probably a mistake.", "Warning!");
    } else if (form.cost_of_shares < Currency()) {
      Warn(app, "The Cost Of Shares can not be less than zero. Please re-enter the Cost of Shares",
           "Warning");
      form.cost_of_shares = Currency();
      form.focus = "CurrCostOfShares";
    }
  });
}

void CheckFeeBR(Application& app, BuyReinvestForm& form) {
  TrapVoid(app, "CheckFeeBR", [&] {
    // A zero fee is normal and draws no message.
    if (form.fee < Currency()) {
      Warn(app, "The Fee can not be less than zero. Please re-enter the Fee", "Warning");
      form.fee = Currency();
      form.focus = "CurrFee";
    }
  });
}

void DateLostFocusBR(Application& app, BuyReinvestForm& form) {
  ChkTransDate(app, form.date);
  CheckDateBR(app, form);
}

void CostSharesLostFocusBR(Application& app, BuyReinvestForm& form) {
  CheckCostSharesBR(app, form);
  UpdateTotalCostBR(form);
}

void FeeLostFocusBR(Application& app, BuyReinvestForm& form) {
  CheckFeeBR(app, form);
  UpdateTotalCostBR(form);
}

void UpdateTotalCostBR(BuyReinvestForm& form) { form.total_cost = form.cost_of_shares + form.fee; }

void BuyReinvest_OK(Application& app, BuyReinvestForm& form, bool next_flag) {
  form.accepted = false;
  TrapVoid(app, "BuyReinvest_OK", [&] {
    Date date;
    if (!DateValid(app.ui(), form.date, "date", date)) return;
    if (!ShareDecimalsValid(app.ui(), form.num_shares, "Number of Shares")) {
      form.focus = "DblNumShares";
      return;
    }
    HourglassGuard hourglass(app.ui());
    app.ui().SetHelpBarText("Verifying Information");
    const int64_t sec_id = app.current.sec_id;
    const Currency cost = form.cost_of_shares;
    const double shares = form.num_shares;
    const Currency fee = form.fee;
    const std::string notes = form.notes;
    if (cost == Currency() && !StillAdd(app, "Cost of Shares")) return;
    if (shares == 0 && !StillAdd(app, "Number of Shares")) return;

    int16_t type = 0;
    if (form.caption == BuyReinvestForm::kBuyCaption) {
      app.ui().SetHelpBarText("Adding Buy");
      type = kTypeBuy;
    } else if (form.caption == BuyReinvestForm::kReinvestCaption) {
      app.ui().SetHelpBarText("Adding Reinvestment");
      type = kTypeReinvest;
    } else {
      app.ui().MessageBox("Incorrect caption on dlgBuyReinvest", "Error", Icon::kExclamation,
                          Buttons::kOk);
      return;
    }

    // A command reached without an open file is a fault of the program,
    // reported like any other rather than dereferenced by the store.
    if (!app.client) throw LwError(err::kUnexpected, "No Taxpayer File is open");
    std::string block_id;
    if (!AddBuy(app, sec_id, block_id, type, date, cost, shares, fee, notes)) {
      app.ui().MessageBox(
          "This transaction was not added. If an error message was displayed you should try to "
          "correct the error first. you will need to add this transaction again.",
          "Error!", Icon::kCritical, Buttons::kOk);
      return;
    }
    OfferRebookLaterSales(app, sec_id, date, type == kTypeReinvest ? kPrecReinvest : kPrecBuy);
    // The entry is stored: from here on the form must not invite the user to
    // enter it again, whatever the refresh of the display does.
    form.accepted = true;
    if (next_flag) {
      ClearForNext(form);
    } else {
      form.closed = true;
    }
    DisplayBlock(app, block_id);
    if (app.window.options.recalc_shares) {
      UpdateSharesInSec(app);
    } else {
      app.window.display.total_shares = "Recalculate";
    }
    if (!next_flag) app.ui().ProcessEvents();
  });
}

void BuyReinvest_Cancel(Application&, BuyReinvestForm& form) { form.closed = true; }

std::string HelpText(const BuyReinvestForm& form, std::string_view control) {
  if (control == "dtDate") return "Enter the date that this transaction was made";
  if (control == "DblNumShares") return "Enter the Number of Shares added to this Security";
  if (control == "CurrCostOfShares") return "Enter the Cost of the Shares, not including the Fee";
  if (control == "CurrFee") return "Enter the Fee charged for this transaction";
  if (control == "CurrTotalCost") return "This is the Total Cost of this transaction";
  if (control == "txtNotes") return "Enter any additional information about this transaction here";
  if (control == "lblSecurity" || control == "pnlSecurity") {
    return form.caption == BuyReinvestForm::kReinvestCaption
               ? "This is the Security that you are entering a Reinvestment for"
               : "This is the Security that you are entering a Buy for";
  }
  if (control == "btnOK") return "Click here to Enter this transaction";
  if (control == "btnNext") return "Click here to Enter this transaction, and then enter another.";
  if (control == "btnCancel") return "Click here to Cancel this transaction";
  return {};
}

}  // namespace lotwise
