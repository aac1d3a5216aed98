#include "lots/sell_shares.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "data/application.h"
#include "data/block_shares.h"
#include "data/database.h"
#include "data/entry_rows.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "data/upgrades.h"
#include "ground/environment.h"
#include "ground/number_text.h"
#include "ground/value_helpers.h"
#include "lots/rebook.h"
#include "lots/security_display.h"
#include "lots/sell_specific.h"
#include "lots/share_rules.h"

namespace lotwise {

namespace {

struct MethodName {
  SellMethod code;
  const char* name;
};

constexpr std::array<MethodName, 5> kMethodNames = {{
    {SellMethod::kSpecificId, "Specific Identification"},
    {SellMethod::kFifo, "FIFO"},
    {SellMethod::kAvgSingle, "Average Cost - Single Cat."},
    {SellMethod::kAvgDouble, "Average Cost - Double Cat."},
    {SellMethod::kNotSelected, "NOT SELECTED"},
}};

std::optional<SellMethod> MethodCode(std::string_view name) {
  for (const MethodName& method : kMethodNames) {
    if (name == method.name) return method.code;
  }
  return std::nullopt;
}

const char* MethodText(SellMethod code) {
  for (const MethodName& method : kMethodNames) {
    if (code == method.code) return method.name;
  }
  return nullptr;
}

void Tell(Application& app, const std::string& text, const char* title, Icon icon) {
  app.ui().MessageBox(text, title, icon, Buttons::kOk);
}

bool AskYesNo(Application& app, const std::string& text, const char* title) {
  return app.ui().MessageBox(text, title, Icon::kQuestion, Buttons::kYesNo) == Answer::kYes;
}

// Where the user picks the blocks the shares come only from the selection,
// so the field shows the selection's total; the others have the shares typed.
void ApplyMethodMode(Application& app, SellSharesForm& form, SellMethod code) {
  if (UserSelectsShares(code)) {
    form.select_enabled = true;
    form.num_shares_locked = true;
    form.num_shares = ComputeSharesSold(app);
    form.focus = "btnSelect";
  } else {
    form.select_enabled = false;
    form.num_shares_locked = false;
    form.focus = "DblNumShares";
  }
}

// Fills what both modes of the sale dialog show of the current security.
void PrepareSaleForm(Application& app, SellSharesForm& form) {
  const SecurityDisplay& display = app.window.display;
  form.security = FixAmpersand(display.sec_name);
  form.sell_methods.clear();
  for (SellMethod code : {SellMethod::kSpecificId, SellMethod::kFifo, SellMethod::kAvgSingle,
                          SellMethod::kAvgDouble}) {
    form.sell_methods.emplace_back(MethodText(code));
  }
  form.sell_method = GetSellName(app, display.sell_method);
  form.select_enabled = UserSelectsShares(display.sell_method);
  form.num_shares_locked = form.select_enabled;
}

// The warnings of the shares, price and fee checks for values below zero,
// which they reset. Returns true iff one was found.
bool ResetNegativeShares(Application& app, SellSharesForm& form) {
  if (form.num_shares >= 0) return false;
  Tell(app, "The Number Of Shares can not be less than zero. Please re-enter the Number of Shares",
       "Warning", Icon::kExclamation);
  form.num_shares = 0;
  return true;
}

bool ResetNegativePrice(Application& app, SellSharesForm& form) {
  if (form.sale_price >= Currency()) return false;
  Tell(app, "The Sale Price can not be less than zero. Please re-enter the Sale Price", "Warning",
       Icon::kExclamation);
  form.sale_price = Currency();
  return true;
}

bool ResetNegativeFee(Application& app, SellSharesForm& form) {
  if (form.fee >= Currency()) return false;
  Tell(app, "The Fee can not be less than zero. Please re-enter the Fee", "Warning",
       Icon::kExclamation);
  form.fee = Currency();
  return true;
}

}  // namespace

SellMethod GetSellMethod(Application& app, std::string_view name) {
  return Trap(app, "GetSellMethod", SellMethod::kNotSelected, [&]() -> SellMethod {
    if (auto code = MethodCode(name)) return *code;
    Tell(app, "Incorrect parameter passed to GetSellMethod", "Error!", Icon::kCritical);
    return SellMethod::kNotSelected;
  });
}

std::string GetSellName(Application& app, SellMethod code) {
  return Trap(app, "GetSellName", std::string(), [&]() -> std::string {
    if (const char* name = MethodText(code)) return name;
    Tell(app, "Incorrect parameter passed to GetSellName", "Error!", Icon::kCritical);
    return {};
  });
}

void ShowSellShares(Application& app) {
  TrapVoid(app, "ShowSellShares", [&] {
    if (!SecurityHasBlocks(*app.client, app.current.sec_id)) {
      Tell(app,
           "There are no Blocks to Sell shares from. To enter a purchase of Shares click on the "
           "Buy button.",
           "No Blocks", Icon::kInformation);
      return;
    }
    SellSharesForm form;
    form.caption = kSellSharesCaption;
    PrepareSaleForm(app, form);
    // The lists live exactly as long as the dialog: a sale never starts from
    // another sale's selection.
    app.sale_lists.Clear();
    app.ui().RunModal(form);
    app.sale_lists.Clear();
  });
}

void ShowModEntireSell(Application& app, int64_t sec_id, Date date) {
  TrapVoid(app, "ShowModEntireSell", [&] {
    if (!SecurityHasBlocks(*app.client, sec_id)) {
      Tell(app,
           "There are no Blocks in this Security. To enter a purchase of Shares click on the Buy "
           "button.",
           "No Blocks", Icon::kInformation);
      return;
    }
    if (!AskYesNo(app,
                  "In-order for the program to modify an entire sell it must assume that any sell "
                  "transaction in the security with the same date is part of the original sell on "
                  "that date. Therefore, if you entered two separate sells that were on the same "
                  "date as the sell you are modifying, it will consider them to be one sell. If "
                  "this is the case, you will need to adjust each sell transaction separately.\n\n"
                  "Do you want to continue?",
                  "Modify Entire Sell?")) {
      return;
    }
    SellSharesForm form;
    form.caption = kModEntireSellCaption;
    form.mod_sec_id = sec_id;
    form.mod_date = date;

    app.sale_lists.Clear();
    ShareList& selected = app.sale_lists.selected;
    Currency price_total;
    Currency fee_total;
    double shares_total = 0;
    // Read whole before the dialog opens: a reading statement left open
    // would keep other users from writing the file.
    for (const SaleRowOnFile& row : EntireSell(*app.client, sec_id, date)) {
      price_total += row.sale_price;
      fee_total += row.fee;
      // Made positive before adding up: rounding moves a negative total
      // toward zero, which would lose a share fraction.
      const double shares = std::fabs(row.shares);
      shares_total += shares;
      form.notes = row.notes;
      // Two rows of one block on that day become one entry: the selection
      // works per block, and the new sale writes one row per block.
      bool merged = false;
      for (ShareEntry& entry : selected.entries) {
        if (entry.block_no == row.block_no) {
          entry.shares = RoundShares(entry.shares + shares);
          merged = true;
          break;
        }
      }
      if (!merged) selected.entries.push_back({row.block_id, row.block_no, shares});
    }
    selected.empty = selected.entries.empty();
    BuildSharesLeftList(app);
    ComputeSharesLeft(app);
    ComputeSharesSold(app);

    PrepareSaleForm(app, form);
    form.date = date.ToString();
    form.num_shares = RoundShares(shares_total);
    form.sale_price = price_total;
    form.fee = fee_total;
    form.total_sale = price_total - fee_total;
    app.ui().RunModal(form);
    app.sale_lists.Clear();
  });
}

void CheckDateSS(Application& app, SellSharesForm& form) {
  TrapVoid(app, "CheckDateSS", [&] {
    Date date;
    DateValid(app.ui(), form.date, "Date", date);
    ChkTransDate(app, form.date);
  });
}

void CheckNumSharesSS(Application& app, SellSharesForm& form) {
  TrapVoid(app, "CheckNumSharesSS", [&] {
    if (form.num_shares == 0) {
      const SellMethod code = GetSellMethod(app, form.sell_method);
      if (code == SellMethod::kFifo || code == SellMethod::kAvgSingle) {
        Tell(app, "The Number of Shares entered is zero. This is probably a mistake.", "Warning!",
             Icon::kExclamation);
      }
      return;
    }
    ResetNegativeShares(app, form);
  });
}

void CheckSalePriceSS(Application& app, SellSharesForm& form) {
  TrapVoid(app, "CheckSalePriceSS", [&] {
    if (form.sale_price == Currency()) {
      Tell(app, "The Sale Price entered is zero. This is probably a mistake.", "Warning!",
           Icon::kExclamation);
    } else {
      ResetNegativePrice(app, form);
    }
    form.total_sale = form.sale_price - form.fee;
  });
}

void CheckFeeSS(Application& app, SellSharesForm& form) {
  TrapVoid(app, "CheckFeeSS", [&] {
    ResetNegativeFee(app, form);
    form.total_sale = form.sale_price - form.fee;
  });
}

void NumSharesSS_Click(Application& app, SellSharesForm& form) {
  TrapVoid(app, "NumSharesSS_Click", [&] {
    auto code = MethodCode(form.sell_method);
    if (code && UserSelectsShares(*code)) ShowSellSpecific(app, form);
  });
}

void SellMethodChange(Application& app, SellSharesForm& form) {
  TrapVoid(app, "SellMethodChange", [&] {
    SecurityDisplay& display = app.window.display;
    const SellMethod old_code = display.sell_method;
    SellMethod new_code = GetSellMethod(app, form.sell_method);
    if (new_code == SellMethod::kNotSelected) {
      // Not a method the list offers: whatever was in force stays.
      new_code = old_code;
      form.sell_method = GetSellName(app, old_code);
    } else if (old_code != SellMethod::kNotSelected && new_code != old_code) {
      const std::string old_name = GetSellName(app, old_code);
      const std::string new_name = GetSellName(app, new_code);
      if (AskYesNo(app,
                   "You have changed the Sell Method for this Security. Once a Sell Method is used "
                   "to sell shares, it must be used for all additional sales from that security. "
                   "\nAre you sure you want to change the Sell Method for this security?",
                   "Sell Method changed!")) {
        Tell(app, "Sell Method changed from \n" + old_name + "\n to \n" + new_name + ".",
             "Sell Method Changed", Icon::kInformation);
        // The method is kept per symbol, not per portfolio security.
        if (AddSellMethod(app, app.current.sec_symbol, new_code, true)) {
          // The window holds the method now in force, so that a sale under
          // it does not store it again and a second change compares with it.
          display.sell_method = new_code;
          LogChange(app, app.current.port_name, app.current.sec_id, Today(app.env()),
                    "Changed Sell Method from " + old_name + " to " + new_name);
        }
      } else {
        form.sell_method = old_name;
        new_code = old_code;
      }
    }
    ApplyMethodMode(app, form, new_code);
  });
}

void SellShares_OK(Application& app, SellSharesForm& form, bool modify) {
  TrapVoid(app, "SellShares_OK", [&] {
    if (form.caption != kSellSharesCaption && form.caption != kModEntireSellCaption) {
      Tell(app, "dlgSellShares has incorrect caption!", "Error", Icon::kCritical);
      return;
    }
    form.accepted = false;
    HourglassGuard hourglass(app.ui());
    Date date;
    if (!DateValid(app.ui(), form.date, "Date", date)) return;
    const SellMethod method = GetSellMethod(app, form.sell_method);
    if (method == SellMethod::kNotSelected) {
      Tell(app,
           "You must specify a Sell Method to use when selling shares from this security. Please "
           "select one.",
           "No Sell Method", Icon::kInformation);
      return;
    }
    // A value below zero can reach here only when its field check did not
    // run; it is refused as that check would refuse it.
    if (ResetNegativeShares(app, form) || ResetNegativePrice(app, form) ||
        ResetNegativeFee(app, form)) {
      return;
    }
    if (!ShareDecimalsValid(app.ui(), form.num_shares, "Number of Shares")) {
      form.focus = "DblNumShares";
      return;
    }
    const double shares = form.num_shares;
    const Currency sale_price = form.sale_price;
    const Currency fee = form.fee;
    if (shares == 0) {
      std::string text =
          "The Number of Shares is equal to zero. To make a sale you must have shares to sell. ";
      if (UserSelectsShares(method)) text += "To select shares click on the 'Select' button.";
      Tell(app, text, "No Shares", Icon::kExclamation);
      return;
    }
    if (sale_price == Currency() &&
        !AskYesNo(app,
                  "The Sale Price is equal to zero, this is probably a mistake. \nDo still want "
                  "to enter this sale?",
                  "Sale Price is zero")) {
      return;
    }
    const ReplacedEntry replaced{form.mod_sec_id, form.mod_date};
    const ReplacedEntry* replacing = modify ? &replaced : nullptr;
    if (UserSelectsShares(method) ? !SelectionPrecedesSale(app, date)
                                  : !SelectSharesByFIFO(app, shares, date, replacing)) {
      return;
    }
    bool committed = false;
    const bool added = AddAllSales(app, app.sale_lists.selected, date, shares, sale_price, fee,
                                   form.notes, replacing, &committed);
    if (modify && !committed) {
      // The old rows are deleted only in the unit that stores the new ones.
      Tell(app,
           "The Sale was not changed: the original sale of " + form.mod_date.ToString() +
               " is kept as it was. If there was an error message you should correct that "
               "problem first, if possible, then click the OK button again.",
           "Sale not changed", added ? Icon::kExclamation : Icon::kCritical);
      return;
    }
    if (!added) {
      Tell(app,
           "The Sale of Shares was not completed. If there was an error message you should "
           "correct that problem first, if possible. You will need to add this Sale again by "
           "clicking the OK button.",
           "Sale not completed!", Icon::kCritical);
      return;
    }
    // Declined at a question or rolled back after a reported error: the
    // dialog stays open with the user's values.
    if (!committed) return;
    form.accepted = true;
    if (modify) {
      app.ui().ProcessEvents();
      DisplayBlock(app);
    }
    UpdateSharesInSec(app);
    SecurityDisplay& display = app.window.display;
    if (method != display.sell_method) {
      // The first sale fixes the security's method. The method is kept per
      // symbol, not per portfolio security.
      display.sell_method = method;
      AddSellMethod(app, app.current.sec_symbol, method, true);
    }
    OfferRebookLaterSales(app, app.current.sec_id, modify ? std::min(date, form.mod_date) : date,
                          kPrecSell);
    app.sale_lists.Clear();
    form.closed = true;
  });
}

void SellShares_Cancel(Application& app, SellSharesForm& form) {
  app.sale_lists.Clear();
  form.closed = true;
}

bool SelectSharesByFIFO(Application& app, double to_sell, Date date,
                        const ReplacedEntry* replaced) {
  return Trap(app, "SelectSharesByFIFO", false, [&] {
    UiPort& ui = app.ui();
    ui.SetHelpBarText("Selecting shares for the sale");
    ShareList& selected = app.sale_lists.selected;
    app.sale_lists.Clear();
    bool has_block = false;
    double still_to_sell = to_sell;
    bool found_shares = false;
    {
      // A sale being replaced must not count against its successor: the
      // selection looks at the file without it, in a trial unit that is
      // always rolled back. No question is asked inside it.
      std::optional<Database::Transaction> trial;
      if (replaced != nullptr) {
        trial.emplace(*app.client);
        DeleteEntireSell(*app.client, *replaced);
      }
      has_block = HasBlockOnOrBefore(*app.client, app.current.sec_id, date);
      GaugeGuard gauge(ui);
      // Only blocks that still hold shares come back (already rounded to
      // five decimals), oldest first, and none after the sale is covered:
      // the blocks emptied by earlier sales and the lots that stay open are
      // never read. The gauge follows the shares found, the block count
      // being unknown until the end.
      if (has_block) {
        ForEachBlockHeldOn(*app.client, app.current.sec_id, date, [&](const BlockShares& block) {
          double taken = still_to_sell;
          if (block.shares <= still_to_sell) {
            taken = block.shares;
            still_to_sell = RoundShares(still_to_sell - block.shares);
          } else {
            still_to_sell = 0;
          }
          selected.entries.push_back({"", block.block_no, taken});
          selected.empty = false;
          found_shares = true;
          if (still_to_sell <= 0) {
            ui.SetGauge(100);
            return false;
          }
          ui.SetGauge(static_cast<int>((to_sell - still_to_sell) * 100 / to_sell));
          return true;
        });
      }
    }
    if (!has_block) {
      Tell(app,
           "This sale can't be made. There are no blocks in this Security acquired on or before "
           "the sale date " +
               date.ToString() +
               ". A sale can only take shares from blocks acquired on or before its date. Please "
               "correct the Date.",
           "No Shares on that Date", Icon::kExclamation);
      return false;
    }
    if (still_to_sell > 0) {
      // A selection that cannot cover the sale must not linger for a later
      // visit to the selection dialog.
      app.sale_lists.Clear();
      if (found_shares) {
        Tell(app,
             "There are " + NumberText(RoundShares(to_sell - still_to_sell)) +
                 " shares in this security. There are not enough shares to make the sale. If you "
                 "think this is incorrect, please review your security for any incorrect, or "
                 "missing transactions.",
             "Not enough shares", Icon::kExclamation);
      } else {
        Tell(app,
             "This sale can't be made. There are no shares in this Security. If you think this is "
             "incorrect, please review your security for any incorrect, or missing transactions.",
             "No Shares", Icon::kInformation);
      }
      return false;
    }
    return true;
  });
}

bool AddAllSales(Application& app, const ShareList& selected, Date date, double shares,
                 Currency sale_price, Currency fee, const std::string& notes,
                 const ReplacedEntry* replaced, bool* committed) {
  if (committed != nullptr) *committed = false;
  return Trap(app, "AddAllSales", false, [&] {
    UiPort& ui = app.ui();
    ui.SetHelpBarText("Adding Sales, Please wait");
    const std::vector<ShareEntry>& entries = selected.entries;
    // Asked before the unit begins, never while holding the file's write
    // lock. The rows of a replaced sale on the same date are about to go,
    // and they are all the security's sales of that day.
    if (replaced == nullptr || replaced->date != date) {
      for (const ShareEntry& entry : entries) {
        if (!ConfirmSellOn(app, entry.block_no, date)) return true;
      }
    }
    const std::vector<SaleRow> rows = ApportionSale(entries, shares, sale_price, fee);
    {
      Database::Transaction unit(*app.client);
      if (replaced != nullptr) {
        DeleteEntireSell(*app.client, *replaced);
      }
      GaugeGuard gauge(ui);
      bool all_written = true;
      for (size_t i = 0; i < rows.size(); ++i) {
        const SaleRow& row = rows[i];
        if (!AddSell(app, row.block_no, date, row.price, row.fee, -row.shares, notes)) {
          all_written = false;
          break;
        }
        if (rows.size() > 1) ui.SetGauge(static_cast<int>(i * 100 / (rows.size() - 1)));
      }
      if (all_written) {
        unit.Commit();
        if (committed != nullptr) *committed = true;
      }
    }
    UpdateTransInBlock(app, app.window.display.trans_filter);
    return true;
  });
}

std::string HelpText(const SellSharesForm& form, std::string_view control) {
  const auto code = MethodCode(form.sell_method);
  if (control == "dtDate") return "Enter the date the shares were sold";
  if (control == "DblNumShares") {
    if (code && UserSelectsShares(*code)) {
      return "This is the number of shares you have selected for sale";
    }
    return "Enter the Number of Shares that are being sold";
  }
  if (control == "CurrSalePrice") return "Enter the Sale Price of the shares";
  if (control == "CurrFee") return "Enter any Fees that were charged to make the Sale";
  if (control == "CurrTotalSale") return "This is the total amount of the sale";
  if (control == "SScboSellMethod") {
    if (code == SellMethod::kNotSelected)
      return "Click the button to the right to select the Sell Method";
    return "This is the Sell Method for this security";
  }
  if (control == "btnSelect") return "Click here to select which shares to sell";
  if (control == "txtNotes") return "Enter any additional information about the sale here";
  if (control == "lblSecurity") return "This is the Security you are selling shares from";
  if (control == "btnOK") return "Click here to enter the sale for this security";
  if (control == "btnCancel") return "Click here to cancel entering this sale";
  return {};
}

}  // namespace lotwise
