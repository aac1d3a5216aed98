#include "lots/sell_specific.h"

#include "data/application.h"
#include "data/block_shares.h"
#include "data/entry_rows.h"
#include "data/error_handler.h"
#include "ground/number_text.h"
#include "ground/value_helpers.h"
#include "lots/sell_shares_form.h"

namespace lotwise {

namespace {

void Tell(Application& app, const std::string& text, const char* title) {
  app.ui().MessageBox(text, title, Icon::kInformation, Buttons::kOk);
}

std::string RowText(const ShareEntry& entry) {
  return entry.block_id + "\t" + NumberText(entry.shares) + "\t" + std::to_string(entry.block_no);
}

std::vector<std::string> GridRows(const ShareList& list) {
  std::vector<std::string> rows;
  if (list.empty) return rows;
  rows.reserve(list.entries.size());
  for (const ShareEntry& entry : list.entries) rows.push_back(RowText(entry));
  return rows;
}

// The grid's current row kept inside its rows; -1 for an empty grid.
int ClampRow(int row, size_t rows) {
  if (rows == 0) return -1;
  if (row < 0) return 0;
  if (static_cast<size_t>(row) >= rows) return static_cast<int>(rows) - 1;
  return row;
}

void ShowLeftGrid(Application& app, SellSpecificForm& form) {
  form.shares_left_rows = GridRows(app.sale_lists.left);
  form.left_row = ClampRow(form.left_row, form.shares_left_rows.size());
}

void ShowSoldGrid(Application& app, SellSpecificForm& form) {
  form.shares_sold_rows = GridRows(app.sale_lists.selected);
  form.sold_row = ClampRow(form.sold_row, form.shares_sold_rows.size());
}

void ShowListsAndTotals(Application& app, SellSpecificForm& form) {
  ShowLeftGrid(app, form);
  ShowSoldGrid(app, form);
  ComputeSharesLeft(app, &form);
  ComputeSharesSold(app, &form);
}

double ListTotal(const ShareList& list) {
  if (list.empty) return 0;
  double total = 0;
  for (const ShareEntry& entry : list.entries) total += entry.shares;
  return RoundShares(total);
}

// Asks for a number of shares between 0 and `max` through dlgNumShares,
// preset to `max`. Returns 0 when the prompt is cancelled.
double AskShares(Application& app, const char* caption, const std::string& prompt, double max) {
  NumSharesForm form;
  form.caption = caption;
  form.note = prompt + "\n(0 - " + NumberText(max) + ")";
  form.num_shares = max;
  form.max_shares = max;
  app.ui().RunModal(form);
  return form.accepted ? form.num_shares : 0;
}

ShareEntry* FindBlock(ShareList& list, int64_t block_no, int* index = nullptr) {
  for (size_t i = 0; i < list.entries.size(); ++i) {
    if (list.entries[i].block_no == block_no) {
      if (index != nullptr) *index = static_cast<int>(i);
      return &list.entries[i];
    }
  }
  return nullptr;
}

}  // namespace

void ShowSellSpecific(Application& app, SellSharesForm& sale_form) {
  TrapVoid(app, "ShowSellSpecific", [&] {
    SellSpecificForm form;
    form.sale_form = &sale_form;
    form.security = sale_form.security;
    SaleLists& lists = app.sale_lists;
    if (lists.left.empty && lists.selected.empty) {
      if (!ResetShareLists(app, form)) {
        app.ui().MessageBox(
            "There are no shares in this security to sell. You may want to verify your "
            "transactions for this security if you think this is a mistake. You will not be able "
            "to make a sale.",
            "No shares", Icon::kExclamation, Buttons::kOk);
        return;
      }
    } else {
      ShowListsAndTotals(app, form);
    }
    app.ui().RunModal(form);
  });
}

bool ResetShareLists(Application& app, SellSpecificForm& form) {
  return Trap(app, "ResetShareLists", false, [&] {
    app.ui().SetHelpBarText("Please be patient, it may take a while to calculate the blocks");
    app.sale_lists.selected.Clear();
    const int count = BuildSharesLeftList(app, &form);
    if (form.sale_form != nullptr) form.security = form.sale_form->security;
    ShowListsAndTotals(app, form);
    return count > 0;
  });
}

int BuildSharesLeftList(Application& app, SellSpecificForm* form) {
  return Trap(app, "BuildSharesLeftList", 0, [&] {
    UiPort& ui = app.ui();
    ShareList& left = app.sale_lists.left;
    left.Clear();
    GaugeGuard gauge(ui);
    const std::vector<BlockShares> blocks = OpenBlocks(*app.client, app.current.sec_id);
    left.entries.reserve(blocks.size());
    for (size_t row = 0; row < blocks.size(); ++row) {
      const BlockShares& block = blocks[row];
      left.entries.push_back({block.block_id, block.block_no, block.shares});
      left.empty = false;
      ui.SetGauge(static_cast<int>((row + 1) * 95 / blocks.size()));
    }
    ui.SetGauge(100);
    if (form != nullptr) ShowLeftGrid(app, *form);
    return static_cast<int>(left.entries.size());
  });
}

double ComputeSharesLeft(Application& app, SellSpecificForm* form) {
  return Trap(app, "ComputeSharesLeft", 0.0, [&] {
    const double total = ListTotal(app.sale_lists.left);
    if (form != nullptr) form->shares_left_total = total;
    return total;
  });
}

double ComputeSharesSold(Application& app, SellSpecificForm* form) {
  return Trap(app, "ComputeSharesSold", 0.0, [&] {
    const double total = ListTotal(app.sale_lists.selected);
    if (form != nullptr) form->shares_sold_total = total;
    return total;
  });
}

void SellSpecific_Add(Application& app, SellSpecificForm& form) {
  TrapVoid(app, "SellSpecific_Add", [&] {
    ShareList& left = app.sale_lists.left;
    ShareList& selected = app.sale_lists.selected;
    if (left.empty || left.entries.empty()) {
      Tell(app, "There are no more Blocks to sell shares from.", "No more Blocks");
      return;
    }
    const int row = ClampRow(form.left_row, left.entries.size());
    const ShareEntry chosen = left.entries[static_cast<size_t>(row)];
    if (chosen.shares <= 0) {
      Tell(app,
           "There are no more shares in this block. Please select another block to sell shares "
           "from.",
           "No shares");
      return;
    }
    const double n =
        AskShares(app, "Add Shares", "Enter the number of shares you want to Add", chosen.shares);
    if (n == 0) return;
    HourglassGuard hourglass(app.ui());
    left.entries[static_cast<size_t>(row)].shares = RoundShares(chosen.shares - n);
    int sold_row = -1;
    if (ShareEntry* entry = FindBlock(selected, chosen.block_no, &sold_row)) {
      entry->shares = RoundShares(entry->shares + n);
    } else {
      selected.entries.push_back({chosen.block_id, chosen.block_no, RoundShares(n)});
      selected.empty = false;
      sold_row = static_cast<int>(selected.entries.size()) - 1;
    }
    form.left_row = row;
    form.sold_row = sold_row;
    ShowListsAndTotals(app, form);
  });
}

void SellSpecific_Remove(Application& app, SellSpecificForm& form) {
  TrapVoid(app, "SellSpecific_Remove", [&] {
    ShareList& left = app.sale_lists.left;
    ShareList& selected = app.sale_lists.selected;
    if (selected.empty || selected.entries.empty()) {
      Tell(app,
           "There are no shares to remove from the sale. To add shares to the sale select a Block "
           "and then click on the 'Add' button.",
           "Can't remove shares");
      return;
    }
    const int row = ClampRow(form.sold_row, selected.entries.size());
    const ShareEntry chosen = selected.entries[static_cast<size_t>(row)];
    const double n =
        AskShares(app, "Remove Shares", "Enter the number of shares to remove", chosen.shares);
    if (n == 0) return;
    HourglassGuard hourglass(app.ui());
    const double rest = RoundShares(chosen.shares - n);
    if (rest <= 0) {
      selected.entries.erase(selected.entries.begin() + row);
      if (selected.entries.empty()) selected.Clear();
    } else {
      selected.entries[static_cast<size_t>(row)].shares = rest;
    }
    // A block that the sale being modified had emptied has no left entry.
    if (ShareEntry* entry = FindBlock(left, chosen.block_no)) {
      entry->shares = RoundShares(entry->shares + n);
    } else {
      left.entries.push_back({chosen.block_id, chosen.block_no, RoundShares(n)});
      left.empty = false;
    }
    form.sold_row = row;
    ShowListsAndTotals(app, form);
  });
}

bool SelectionPrecedesSale(Application& app, Date date) {
  return Trap(app, "SelectionPrecedesSale", false, [&] {
    const ShareList& selected = app.sale_lists.selected;
    if (selected.empty) return true;
    for (const ShareEntry& entry : selected.entries) {
      const std::optional<BlockOnFile> block = FindBlock(*app.client, entry.block_no);
      if (!block || !(date < block->date)) continue;
      app.ui().MessageBox("Block " + block->block_id + " was acquired on " +
                              block->date.ToString() + ", after the sale date " + date.ToString() +
                              ". A sale can only take shares from blocks acquired on or before "
                              "its date. Please remove this block from the selection or correct "
                              "the Date.",
                          "Block acquired after the sale", Icon::kExclamation, Buttons::kOk);
      return false;
    }
    return true;
  });
}

void SellSpecific_OK(Application& app, SellSpecificForm& form) {
  TrapVoid(app, "SellSpecific_OK", [&] {
    const double total = ComputeSharesSold(app, &form);
    if (total == 0 && app.ui().MessageBox(
                          "You have not selected any shares to sell. This could be a mistake.\n"
                          "Do you still want to exit?",
                          "No shares selected", Icon::kQuestion, Buttons::kYesNo) != Answer::kYes) {
      return;
    }
    if (form.sale_form != nullptr) form.sale_form->num_shares = total;
    form.accepted = form.closed = true;
  });
}

void SellSpecific_Cancel(Application& app, SellSpecificForm& form) {
  TrapVoid(app, "SellSpecific_Cancel", [&] {
    app.sale_lists.Clear();
    if (form.sale_form != nullptr) form.sale_form->num_shares = 0;
    form.closed = true;
  });
}

void NumShares_OK(Application& app, NumSharesForm& form) {
  TrapVoid(app, "NumShares_OK", [&] {
    if (form.num_shares < 0) {
      Tell(app,
           "You cannot sell a negative number of shares. Please enter the number of shares as a "
           "positive number.",
           "Invalid number of shares");
      return;
    }
    if (!ShareDecimalsValid(app.ui(), form.num_shares, "Number of Shares")) {
      form.focus = "DblNumShares";
      return;
    }
    // The maximum itself is allowed, whatever the message says.
    if (form.num_shares <= form.max_shares) {
      form.accepted = true;
      form.closed = true;
      return;
    }
    Tell(app,
         "The Block you are selecting shares from only has " + NumberText(form.max_shares) +
             " shares in it. The number you select must be less than this amount. Please "
             "re-enter the number of shares",
         "Too many shares");
  });
}

void NumShares_Cancel(Application&, NumSharesForm& form) {
  form.accepted = false;
  form.closed = true;
}

std::string HelpText(const SellSpecificForm&, std::string_view control) {
  if (control == "SSdgSharesLeft")
    return "This is a list of all the blocks and shares that you can sell";
  if (control == "SSdgSharesSold") {
    return "This is a list of all the blocks and shares that you have selected to sell";
  }
  if (control == "pnlSharesLeft")
    return "This is the number of shares you have left that can be sold";
  if (control == "pnlSharesSold") return "This is the number of shares you have selected to sell";
  if (control == "lblSecurity" || control == "pnlSecurity") {
    return "This is the Security that you are selling shares from";
  }
  if (control == "btnAdd") return "Click here to add shares from the selected block to the sale";
  if (control == "btnRemove") {
    return "Click here to remove shares from the selected block from the sale";
  }
  if (control == "btnReset") return "Click here to clear this selection of shares";
  if (control == "btnOK") return "Click here to accept the selected shares for sale";
  if (control == "btnCancel") return "Click here to cancel this selection of shares";
  return {};
}

std::string HelpText(const NumSharesForm& form, std::string_view control) {
  const bool adding = form.caption != "Remove Shares";
  if (control == "DblNumShares") return "Enter the number of shares here";
  if (control == "btnOK")
    return adding ? "Click here to add the shares" : "Click here to remove the shares";
  if (control == "btnCancel") {
    return adding ? "Click here to cancel adding these shares"
                  : "Click here to cancel removing these shares";
  }
  return {};
}

}  // namespace lotwise
