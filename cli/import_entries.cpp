#include "import_entries.h"

#include <cstdint>

#include "app/app_state.h"
#include "data/application.h"
#include "data/database.h"
#include "ground/date.h"
#include "ground/number_text.h"
#include "ground/value_helpers.h"
#include "import_forms.h"
#include "lots/adjust_block.h"
#include "lots/buy_reinvest.h"
#include "lots/security_display.h"
#include "lots/sell_shares.h"
#include "lots/sell_specific.h"
#include "lots/split_dividend.h"

namespace lotwise::cli {

namespace {

// Types `value` into a field and leaves it. Returns true iff the field's
// check let the value stand: a check that refuses a value puts another in
// its place (or sends the focus back), having told the user why.
template <class T, class Check>
bool TypeField(T& field, T value, Check&& check) {
  field = value;
  check();
  return field == value;
}

// A date check that refused the text has told the user so; the dialog
// would not be accepted with it.
bool DateStands(const std::string& text) { return Date::Parse(text).has_value(); }

// Clicks the row of block `block_id` in the security's blocks grid, making
// it the current block. Returns false, telling the user, when there is none.
bool SelectBlockId(Session& session, const std::string& block_id) {
  const std::vector<BlockRow>& blocks = session.app.window.display.blocks;
  for (size_t i = 0; i < blocks.size(); ++i) {
    if (blocks[i].block_id == block_id) {
      SelectBlock(session.app, static_cast<int>(i));
      return session.app.current.block_id == block_id;
    }
  }
  session.ui.Note("there is no block " + block_id + " in " + session.app.current.sec_symbol);
  return false;
}

bool FillBuy(Application& app, BuyReinvestForm& form, const LedgerEntry& entry) {
  form.date = entry.date;
  DateLostFocusBR(app, form);
  if (!DateStands(form.date)) return false;
  if (!TypeField(form.num_shares, entry.shares, [&] { CheckNumSharesBR(app, form); })) return false;
  if (!TypeField(form.cost_of_shares, entry.amount, [&] { CostSharesLostFocusBR(app, form); })) {
    return false;
  }
  if (!TypeField(form.fee, entry.fee, [&] { FeeLostFocusBR(app, form); })) return false;
  form.notes = entry.notes;
  return true;
}

bool EnterBuy(Session& session, const LedgerEntry& entry) {
  Application& app = session.app;
  bool accepted = false;
  DialogPlay play(session.ui, [&](DialogForm& dialog) {
    auto* form = dynamic_cast<BuyReinvestForm*>(&dialog);
    if (form == nullptr) return false;
    if (FillBuy(app, *form, entry)) {
      BuyReinvest_OK(app, *form, false);
      accepted = form->accepted;
    }
    if (!form->closed) BuyReinvest_Cancel(app, *form);
    return true;
  });
  if (entry.action == LedgerAction::kReinvest) {
    ShowReinvest(app);
  } else {
    ShowBuyShares(app);
  }
  return accepted;
}

// The user's part in a sale: the sale dialog, its block selection and the
// selection's number prompt.
class SalePlay {
 public:
  SalePlay(Session& session, const LedgerEntry& entry) : session_(session), entry_(entry) {}

  bool Play(DialogForm& dialog) {
    if (auto* form = dynamic_cast<SellSharesForm*>(&dialog)) {
      if (FillSale(*form)) {
        SellShares_OK(app(), *form, false);
        accepted_ = form->accepted;
      }
      if (!form->closed) SellShares_Cancel(app(), *form);
      return true;
    }
    if (auto* form = dynamic_cast<SellSpecificForm*>(&dialog)) {
      PickShares(*form);
      return true;
    }
    if (auto* form = dynamic_cast<NumSharesForm*>(&dialog)) {
      form->num_shares = prompt_answer_;
      NumShares_OK(app(), *form);
      pick_accepted_ = form->accepted;
      if (!form->closed) NumShares_Cancel(app(), *form);
      return true;
    }
    return false;
  }

  bool accepted() const { return accepted_; }

 private:
  Application& app() { return session_.app; }

  bool FillSale(SellSharesForm& form) {
    form.date = entry_.date;
    CheckDateSS(app(), form);
    if (!DateStands(form.date)) return false;
    if (!entry_.method.empty()) {
      form.sell_method = entry_.method;
      SellMethodChange(app(), form);
      // A change the user declined puts the method in force back.
      if (form.sell_method != entry_.method) return false;
    }
    const SellMethod method = GetSellMethod(app(), form.sell_method);
    if (UserSelectsShares(method)) {
      if (!SelectShares(form)) return false;
    } else {
      if (!entry_.picks.empty()) {
        session_.ui.Note("blocks are picked only under Specific or AvgDouble, not under " +
                         form.sell_method);
        return false;
      }
      if (!TypeField(form.num_shares, entry_.shares, [&] { CheckNumSharesSS(app(), form); })) {
        return false;
      }
    }
    if (!TypeField(form.sale_price, entry_.amount, [&] { CheckSalePriceSS(app(), form); })) {
      return false;
    }
    if (!TypeField(form.fee, entry_.fee, [&] { CheckFeeSS(app(), form); })) return false;
    form.notes = entry_.notes;
    return true;
  }

  // The Select button, then the picks in the selection dialog.
  bool SelectShares(SellSharesForm& form) {
    if (entry_.picks.empty()) {
      session_.ui.Note("a sale under " + form.sell_method +
                       " names its blocks in Block: BLOCKID=SHARES;BLOCKID=SHARES");
      return false;
    }
    NumSharesSS_Click(app(), form);
    if (!selection_made_) return false;
    if (entry_.shares_given && RoundShares(entry_.shares) != form.num_shares) {
      session_.ui.Note("Shares " + NumberText(entry_.shares) + " differ from the " +
                       NumberText(form.num_shares) + " shares picked in Block");
      return false;
    }
    return true;
  }

  void PickShares(SellSpecificForm& form) {
    for (const BlockPick& pick : entry_.picks) {
      if (!PickOne(form, pick)) {
        SellSpecific_Cancel(app(), form);
        return;
      }
    }
    SellSpecific_OK(app(), form);
    selection_made_ = form.accepted;
    if (!form.closed) SellSpecific_Cancel(app(), form);
  }

  // Chooses the block's row of the shares-left grid and presses Add.
  bool PickOne(SellSpecificForm& form, const BlockPick& pick) {
    const std::vector<ShareEntry>& left = app().sale_lists.left.entries;
    int row = -1;
    for (size_t i = 0; i < left.size(); ++i) {
      if (left[i].block_id == pick.block_id) row = static_cast<int>(i);
    }
    if (row < 0) {
      session_.ui.Note("block " + pick.block_id + " has no shares to sell");
      return false;
    }
    form.left_row = row;
    prompt_answer_ = pick.shares;
    pick_accepted_ = false;
    SellSpecific_Add(app(), form);
    // The dialog may have refused without asking (a block already empty).
    return pick_accepted_;
  }

  Session& session_;
  const LedgerEntry& entry_;
  double prompt_answer_ = 0;
  // The number prompt took the pick's shares.
  bool pick_accepted_ = false;
  bool selection_made_ = false;
  bool accepted_ = false;
};

bool EnterSale(Session& session, const LedgerEntry& entry) {
  SalePlay sale(session, entry);
  DialogPlay play(session.ui, [&](DialogForm& dialog) { return sale.Play(dialog); });
  ShowSellShares(session.app);
  return sale.accepted();
}

bool FillSplit(Application& app, SplitDivForm& form, const LedgerEntry& entry) {
  form.date = entry.date;
  DateLostFocusSD(app, form);
  if (!DateStands(form.date)) return false;
  form.pre_ratio = entry.new_shares;
  if (!CheckPreRatioSD(app, form)) return false;
  form.post_ratio = entry.old_shares;
  if (!CheckPostRatioSD(app, form)) return false;
  form.blocks = entry.block.empty() ? SplitDivForm::kAllBlocks : SplitDivForm::kCurrentBlock;
  form.notes = entry.notes;
  return true;
}

bool EnterSplit(Session& session, const LedgerEntry& entry) {
  Application& app = session.app;
  if (!entry.block.empty() && !SelectBlockId(session, entry.block)) return false;
  bool accepted = false;
  DialogPlay play(session.ui, [&](DialogForm& dialog) {
    auto* form = dynamic_cast<SplitDivForm*>(&dialog);
    if (form == nullptr) return false;
    if (FillSplit(app, *form, entry)) {
      PressOkSplitDiv(app, *form);
      accepted = form->accepted;
    }
    if (!form->closed) SplitDiv_Cancel(app, *form);
    return true;
  });
  ShowSplit(app, entry.action == LedgerAction::kSplit ? SplitDivForm::kSplitCaption
                                                      : SplitDivForm::kDividendCaption);
  return accepted;
}

bool EnterAdjust(Session& session, const LedgerEntry& entry) {
  Application& app = session.app;
  if (!SelectBlockId(session, entry.block)) return false;
  bool accepted = false;
  DialogPlay play(session.ui, [&](DialogForm& dialog) {
    auto* form = dynamic_cast<AdjustBlockForm*>(&dialog);
    if (form == nullptr) return false;
    form->date = entry.date;
    DateLostFocusAB(app, *form);
    if (DateStands(form->date)) {
      form->num_shares = entry.shares;
      form->cost_basis = entry.amount;
      form->notes = entry.notes;
      AdjustBlock_OK(app, *form);
      accepted = form->accepted;
    }
    if (!form->closed) AdjustBlock_Cancel(app, *form);
    return true;
  });
  ShowAdjustBlock(app);
  return accepted;
}

}  // namespace

bool EnterTransaction(Session& session, const LedgerEntry& entry) {
  bool accepted = false;
  switch (entry.action) {
    case LedgerAction::kBuy:
    case LedgerAction::kReinvest:
      accepted = EnterBuy(session, entry);
      break;
    case LedgerAction::kSell:
      accepted = EnterSale(session, entry);
      break;
    case LedgerAction::kSplit:
    case LedgerAction::kDividend:
      accepted = EnterSplit(session, entry);
      break;
    case LedgerAction::kAdjust:
      accepted = EnterAdjust(session, entry);
      break;
  }
  return accepted;
}

}  // namespace lotwise::cli
