#include "lots/modify_trans.h"

#include <algorithm>
#include <optional>

#include "data/application.h"
#include "data/database.h"
#include "data/entry_rows.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "data/transaction_store.h"
#include "ground/date.h"
#include "ground/value_helpers.h"
#include "lots/rebook.h"
#include "lots/rollback.h"
#include "lots/security_display.h"

namespace lotwise {

namespace {

enum class Kind { kBuy, kReinvest, kSell, kAdjust, kSplit, kDividend };

struct KindInfo {
  Kind kind;
  const char* caption;
  const char* table;
};

constexpr KindInfo kKinds[] = {
    {Kind::kBuy, kModifyBuyCaption, "Buy"},
    {Kind::kReinvest, kModifyReinvestCaption, "Buy"},
    {Kind::kSell, kModifySellCaption, "Sell"},
    {Kind::kAdjust, kModifyAdjustCaption, "Adjust"},
    {Kind::kSplit, kModifySplitCaption, "Split"},
    {Kind::kDividend, kModifyDividendCaption, "Split"},
};

const KindInfo& Info(Kind kind) {
  for (const KindInfo& info : kKinds) {
    if (info.kind == kind) return info;
  }
  return kKinds[0];
}

// The kind of a row as the transaction list names it. Splits and dividends
// carry their ratio after the name ("Stock Split (1 to 2)").
std::optional<Kind> KindOfListed(std::string_view listed) {
  if (listed == "Buy") return Kind::kBuy;
  if (listed == "Reinvestment") return Kind::kReinvest;
  if (listed == "Sell") return Kind::kSell;
  if (listed == "Adjustment") return Kind::kAdjust;
  if (listed.starts_with("Stock Split")) return Kind::kSplit;
  if (listed.starts_with("Stock Div.")) return Kind::kDividend;
  return std::nullopt;
}

std::optional<Kind> KindOfCaption(std::string_view caption) {
  for (const KindInfo& info : kKinds) {
    if (caption == info.caption) return info.kind;
  }
  return std::nullopt;
}

bool IsAcquisition(std::optional<Kind> kind) {
  return kind == Kind::kBuy || kind == Kind::kReinvest;
}

bool IsSplitOrDividend(std::optional<Kind> kind) {
  return kind == Kind::kSplit || kind == Kind::kDividend;
}

// The selected row of the transaction list; the grid's first row while none
// is marked, as the grid itself shows it; nullopt when the list is empty.
std::optional<TransactionRow> SelectedTransaction(const Application& app) {
  const SecurityDisplay& display = app.window.display;
  if (display.transactions.empty()) return std::nullopt;
  const int index = display.selected_transaction;
  if (index < 0 || index >= static_cast<int>(display.transactions.size())) {
    return display.transactions.front();
  }
  return display.transactions[index];
}

// Refuses a field: tells the user why and gives the field the focus back.
bool Refuse(Application& app, ModifyTransForm& form, const char* control, const char* text,
            const char* title) {
  app.ui().MessageBox(text, title, Icon::kExclamation, Buttons::kOk);
  form.focus = control;
  return false;
}

bool AskModify(Application& app, const std::string& text) {
  return app.ui().MessageBox(text, "Modify Transaction?", Icon::kQuestion, Buttons::kYesNo) ==
         Answer::kYes;
}

// The kind as the help texts name it: the caption after "Modify ".
std::string KindWord(const ModifyTransForm& form) {
  constexpr std::string_view prefix = "Modify ";
  std::string_view caption = form.caption;
  if (caption.starts_with(prefix)) caption.remove_prefix(prefix.size());
  return std::string(caption);
}

}  // namespace

void ShowModifyTrans(Application& app) {
  TrapVoid(app, "ShowModifyTrans", [&] {
    const std::optional<TransactionRow> row = SelectedTransaction(app);
    if (!row) {
      app.ui().MessageBox(
          "There are no transactions to modify. To Buy shares click on the 'Buy' button.",
          "No Transactions", Icon::kInformation, Buttons::kOk);
      return;
    }
    const std::optional<Kind> kind = KindOfListed(row->transaction);
    if (!kind) {
      app.ui().MessageBox("Error in caption on dlgModifyTrans in ShowModifyTrans", "Error!",
                          Icon::kExclamation, Buttons::kOk);
      return;
    }
    ModifyTransForm form;
    form.caption = Info(*kind).caption;
    form.date = row->date.ToString();
    form.num_shares = row->shares;
    form.cost_of_shares = *kind == Kind::kSell ? row->sale_price : row->cost;
    form.fee = row->fee;
    form.notes = row->notes;
    form.cost_label = *kind == Kind::kSell ? "Sale Price:" : "Cost of Shares:";
    form.cost_enabled = !IsSplitOrDividend(kind);
    form.fee_enabled = IsAcquisition(kind) || *kind == Kind::kSell;
    form.block = app.current.block_id;
    form.security = FixAmpersand(app.window.display.sec_name);
    form.unique_id = row->unique_id;
    form.original_date = row->date;
    app.ui().RunModal(form);
  });
}

bool CheckDateMT(Application& app, ModifyTransForm& form) {
  return Trap(app, "CheckDateMT", false, [&] {
    if (Date::Parse(form.date)) return true;
    return Refuse(app, form, "dtDate",
                  "The date you have entered is invalid. Please correct the date. If you are "
                  "cancelling, click on OK, and then click on Cancel again.",
                  "Warning");
  });
}

bool CheckNumSharesMT(Application& app, ModifyTransForm& form) {
  return Trap(app, "CheckNumSharesMT", false, [&] {
    const std::optional<Kind> kind = KindOfCaption(form.caption);
    if (IsAcquisition(kind) && form.num_shares <= 0) {
      return Refuse(app, form, "DblNumShares",
                    "The Number of Shares can not be less than or equal to zero. Please correct "
                    "this.",
                    "Invalid Number of Shares");
    }
    if (kind == Kind::kSell && form.num_shares > 0) {
      return Refuse(app, form, "DblNumShares",
                    "The Number of Shares can not be greater than zero. Because this is a sale, "
                    "the shares sold should be listed as a negative amount. (if 100 shares were "
                    "sold then enter -100.) Please correct this.",
                    "Invalid Number of Shares");
    }
    if (!ShareDecimalsValid(app.ui(), form.num_shares, "Number of Shares")) {
      form.focus = "DblNumShares";
      return false;
    }
    return true;
  });
}

bool CheckCostOfSharesMT(Application& app, ModifyTransForm& form) {
  return Trap(app, "CheckCostOfSharesMT", false, [&] {
    if (form.cost_of_shares >= Currency()) return true;
    const std::optional<Kind> kind = KindOfCaption(form.caption);
    if (kind == Kind::kSell) {
      return Refuse(app, form, "CurrCostOfShares",
                    "The Sale Price can not be less than zero. Please correct this.",
                    "Invalid Sale Price");
    }
    if (IsAcquisition(kind)) {
      return Refuse(app, form, "CurrCostOfShares",
                    "The Cost of Shares can not be less than zero. Please correct this.",
                    "Invalid Cost of Shares");
    }
    return true;
  });
}

bool CheckFeeMT(Application& app, ModifyTransForm& form) {
  return Trap(app, "CheckFeeMT", false, [&] {
    const std::optional<Kind> kind = KindOfCaption(form.caption);
    if (form.fee < Currency() && (IsAcquisition(kind) || kind == Kind::kSell)) {
      return Refuse(app, form, "CurrFee", "The Fee can not be less than zero. Please correct this.",
                    "Invalid Fee");
    }
    return true;
  });
}

void ModifyTrans_OK(Application& app, ModifyTransForm& form) {
  form.accepted = false;
  TrapVoid(app, "ModifyTrans_OK", [&] {
    if (!CheckDateMT(app, form) || !CheckNumSharesMT(app, form) ||
        !CheckCostOfSharesMT(app, form) || !CheckFeeMT(app, form)) {
      return;
    }
    const std::optional<Kind> kind = KindOfCaption(form.caption);
    if (form.num_shares == 0 &&
        !AskModify(app,
                   "The Number of Shares is zero. This is could be a mistake. Do you still want to "
                   "add this modification?")) {
      return;
    }
    if (!IsSplitOrDividend(kind) && form.cost_of_shares == Currency() &&
        !AskModify(app,
                   std::string(kind == Kind::kSell ? "The Sale Price " : "The Cost of Shares ") +
                       "is zero. This could be a mistake. Do you still want to add this "
                       "modification?")) {
      return;
    }

    const Date date = *Date::Parse(form.date);
    const int64_t id = form.unique_id;
    bool ok = false;
    if (!kind) {
      app.ui().MessageBox("Error in caption on dlgModifyTrans in ModifyTrans_OK", "Error!",
                          Icon::kExclamation, Buttons::kOk);
    } else if (IsAcquisition(kind)) {
      ok = ModifyBuy(app, id, date, form.cost_of_shares, form.fee, form.num_shares, form.notes);
    } else if (*kind == Kind::kSell) {
      ok = ModifySell(app, id, date, form.cost_of_shares, form.fee, form.num_shares, form.notes);
    } else if (*kind == Kind::kAdjust) {
      ok = ModifyAdjust(app, id, date, form.cost_of_shares, form.num_shares, form.notes);
    } else {
      ok = ModifySplit(app, id, date, form.num_shares, form.notes);
    }
    if (!ok) {
      app.ui().MessageBox(
          "The modification was not completed successfully. If an error message was displayed "
          "you should try to correct the error first. You will need to enter this modification "
          "again.",
          "Error!", Icon::kCritical, Buttons::kOk);
      return;
    }
    // The change is stored: the dialog closes even if the display cannot follow.
    form.accepted = true;
    form.closed = true;
    OfferRebookLaterSales(app, app.current.sec_id, std::min(date, form.original_date), kPrecBuy);
    if (IsAcquisition(kind)) {
      // A re-dated buy renames its block, which the blocks grid must show.
      DisplayBlock(app, app.current.block_id);
    } else {
      UpdateTransInBlock(app, app.window.display.trans_filter);
    }
    UpdateSharesInSec(app);
  });
}

void ModifyTrans_Cancel(Application&, ModifyTransForm& form) { form.closed = true; }

void DeleteTransaction(Application& app) {
  TrapVoid(app, "DeleteTransaction", [&] {
    const std::optional<TransactionRow> row = SelectedTransaction(app);
    if (!row) {
      app.ui().MessageBox(
          "There is no Transaction to delete. To show All transactions for this Block click on "
          "the '...' button and select All.",
          "No Transactions!", Icon::kInformation, Buttons::kOk);
      return;
    }
    if (app.ui().MessageBox(
            "You are about to delete the " + row->transaction + " on " + row->date.ToString() +
                " from Block " + app.current.block_id + ". Are you sure you want to do this? ",
            "Delete Transaction?", Icon::kQuestion, Buttons::kYesNo) != Answer::kYes) {
      return;
    }
    const std::optional<Kind> kind = KindOfListed(row->transaction);
    if (!kind) {
      app.ui().MessageBox("Error in transaction type on SSdgTransactions in DeleteTransaction",
                          "Error!", Icon::kExclamation, Buttons::kOk);
      return;
    }
    DeleteTransactionRow(*app.client, Info(*kind).table, row->unique_id);

    // The data first, then the display: an emptied block must go even when
    // the display cannot be refreshed.
    const int64_t block_no = app.current.block_no;
    const bool block_removed = BlockIsEmpty(app, block_no);
    if (block_removed) {
      DeleteBlockRow(*app.client, block_no);
      app.current.block_no = 0;
      app.current.block_id.clear();
    }
    OfferRebookLaterSales(app, app.current.sec_id, row->date, kPrecBuy);
    SecurityDisplay& display = app.window.display;
    display.trans_filter = 0;
    if (block_removed) {
      display.trans_filter_caption = kTransFilterCaptions[0];
      DisplayBlock(app);
    } else {
      SetDisplayTrans(app);
    }
    UpdateSharesInSec(app);
  });
}

std::string HelpText(const ModifyTransForm& form, std::string_view control) {
  const std::string kind = KindWord(form);
  if (control == "dtDate") return "Enter the correct Date for this " + kind;
  if (control == "DblNumShares") return "Enter the correct Number of Shares for this " + kind;
  if (control == "CurrCostOfShares") {
    if (form.caption == kModifySellCaption) return "Enter the correct Sale Price for this " + kind;
    return "Enter the correct Cost of Shares for this " + kind;
  }
  if (control == "CurrFee") return "Enter the correct Fee for this " + kind;
  if (control == "txtNotes") return "Enter any additional information about this transaction here";
  if (control == "lblBlock" || control == "pnlBlock") {
    return "This is the Block that you are modifying a transaction in";
  }
  if (control == "lblSecurity")
    return "This is the Security that you are modifying a transaction in";
  if (control == "btnOK") return "Click here to enter this modification";
  if (control == "btnCancel") return "Click here to cancel this modification";
  return {};
}

}  // namespace lotwise
