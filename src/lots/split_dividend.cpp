#include "lots/split_dividend.h"

#include <algorithm>
#include <optional>
#include <set>
#include <vector>

#include "data/application.h"
#include "data/block_shares.h"
#include "data/database.h"
#include "data/entry_rows.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "ground/lw_error.h"
#include "ground/value_helpers.h"
#include "lots/rebook.h"
#include "lots/security_display.h"

namespace lotwise {

namespace {

// The open Taxpayer File; a command reached without one is a fault of the
// program, reported like any other rather than dereferenced.
const char* const kSplitExplanation =
    "For a 2 to 1 Stock Split, 'Ratio of Number of New Shares:' would be 2, and 'To Number of Old "
    "Shares:' would be 1.";
const char* const kDividendExplanation =
    "For a .1 to 1 Stock Dividend, 'Ratio of Number of New Shares:' would be .1, and 'To Number "
    "of Old Shares:' would be 1.";

bool IsSplit(std::string_view caption) { return SplitDivType(caption) == kTypeSplit; }

// Fills what the dialog shows of the open security and its current block.
void FillSecurity(Application& app, SplitDivForm& form) {
  form.security = FixAmpersand(app.window.display.sec_name);
  form.block = app.current.block_id;
  form.explanation = IsSplit(form.caption) ? kSplitExplanation : kDividendExplanation;
}

bool CheckRatio(Application& app, SplitDivForm& form, double ratio, const char* text,
                const char* control) {
  if (ratio > 0) return true;
  app.ui().MessageBox(text, "Please Re-enter", Icon::kInformation, Buttons::kOk);
  form.focus = control;
  return false;
}

// The gauge position after step `done` of `count`, within [from, from + span].
int GaugeAt(int from, int span, size_t done, size_t count) {
  return from + static_cast<int>(span * done / (count == 0 ? 1 : count));
}

}  // namespace

int16_t SplitDivType(std::string_view caption) {
  return caption == SplitDivForm::kSplitCaption || caption == SplitDivForm::kModifySplitCaption
             ? kTypeSplit
             : kTypeDividend;
}

bool IsModifyEntireCaption(std::string_view caption) {
  return caption == SplitDivForm::kModifySplitCaption ||
         caption == SplitDivForm::kModifyDividendCaption;
}

void ShowSplit(Application& app, const std::string& caption) {
  TrapVoid(app, "ShowSplit", [&] {
    if (app.window.display.blocks.empty()) {
      app.ui().MessageBox(
          "There are no Blocks to enter a Stock Split or Stock Dividend for. To enter a purchase "
          "of Shares click on the Buy button.",
          "No Blocks", Icon::kInformation, Buttons::kOk);
      return;
    }
    SplitDivForm form;
    {
      HourglassGuard hourglass(app.ui());
      form.caption = caption;
      FillSecurity(app, form);
    }
    app.ui().RunModal(form);
  });
}

void ShowModEntSplitDiv(Application& app, int64_t sec_id, Date date, int16_t type) {
  TrapVoid(app, "ShowModEntSplitDiv", [&] {
    if (app.window.display.blocks.empty()) {
      app.ui().MessageBox(
          "There are no Blocks to enter a Stock Split for. To enter a purchase of Shares click on "
          "the Buy button.",
          "No Blocks", Icon::kInformation, Buttons::kOk);
      return;
    }
    const bool split = type == kTypeSplit;
    const std::string w = split ? "stock split" : "stock dividend";
    const std::string question =
        "In-order for the program to modify an entire " + w + " it must assume that any " + w +
        " transaction in the security with the same date is part of the original " + w +
        " on that date.  Therefore, if you entered two separate " + w +
        "s that were on the same date as the " + w +
        " you are modifying, it will consider them "
        "to be one " +
        w + ". If this is the case, you will need to adjust each " + w +
        " transaction separately.\n\nDo you want to continue?";
    // The sale's title serves here too.
    if (app.ui().MessageBox(question, "Modify Entire Sell?", Icon::kQuestion, Buttons::kYesNo) !=
        Answer::kYes) {
      return;
    }
    SplitDivForm form;
    {
      HourglassGuard hourglass(app.ui());
      form.caption =
          split ? SplitDivForm::kModifySplitCaption : SplitDivForm::kModifyDividendCaption;
      form.modify_sec_id = sec_id;
      form.modify_date = date;
      const std::vector<SplitRowOnFile> rows =
          EntireSplitDiv(app.ClientFile(), sec_id, date, split ? kTypeSplit : kTypeDividend);
      if (!rows.empty()) {
        form.pre_ratio = rows.front().pre_ratio;
        form.post_ratio = rows.front().post_ratio;
        form.notes = rows.front().notes;
      }
      std::set<int64_t> blocks_replaced;
      for (const SplitRowOnFile& row : rows) blocks_replaced.insert(row.block_no);
      form.date = date.ToString();
      // A correction starts on the scope of the entry it replaces.
      form.blocks = blocks_replaced.size() == 1 && blocks_replaced.contains(app.current.block_no)
                        ? SplitDivForm::kCurrentBlock
                        : SplitDivForm::kAllBlocks;
      FillSecurity(app, form);
    }
    app.ui().RunModal(form);
  });
}

bool CheckDateSD(Application& app, SplitDivForm& form) {
  return Trap(app, "CheckDateSD", false, [&] {
    Date date;
    if (DateValid(app.ui(), form.date, "Date", date)) return true;
    form.focus = "dtDate";
    return false;
  });
}

bool CheckPreRatioSD(Application& app, SplitDivForm& form) {
  return Trap(app, "CheckPreRatioSD", false, [&] {
    return CheckRatio(app, form, form.pre_ratio,
                      "The first part of the Ratio is either negative or zero. Please re-enter "
                      "the first part of the ratio.",
                      "DblPreRatio");
  });
}

bool CheckPostRatioSD(Application& app, SplitDivForm& form) {
  return Trap(app, "CheckPostRatioSD", false, [&] {
    return CheckRatio(app, form, form.post_ratio,
                      "The second part of the Ratio is either negative or zero. Please re-enter "
                      "the second part of the ratio.",
                      "DblPostRatio");
  });
}

void DateLostFocusSD(Application& app, SplitDivForm& form) {
  ChkTransDate(app, form.date);
  CheckDateSD(app, form);
}

void SplitDiv_OK(Application& app, SplitDivForm& form, bool modify_flag) {
  TrapVoid(app, "SplitDiv_OK", [&] {
    if (!CheckPreRatioSD(app, form) || !CheckPostRatioSD(app, form)) return;
    Date date;
    if (!DateValid(app.ui(), form.date, "Date", date)) return;
    const int16_t type = SplitDivType(form.caption);
    form.accepted = false;
    const ReplacedEntry replaced{form.modify_sec_id, form.modify_date};
    int added = 0;
    if (AddAllSplitDivs(app, type, date, form.pre_ratio, form.post_ratio, form.notes, form.blocks,
                        modify_flag ? &replaced : nullptr, &added)) {
      form.accepted = added > 0;
      form.closed = true;
      OfferRebookLaterSales(app, app.current.sec_id,
                            modify_flag ? std::min(date, form.modify_date) : date,
                            type == kTypeSplit ? kPrecSplit : kPrecDividend);
      UpdateSharesInSec(app);
      return;
    }
    if (modify_flag) {
      app.ui().MessageBox(
          "The transaction was not changed: the original one of " + form.modify_date.ToString() +
              " is kept as it was. If an error message was displayed the error will need to be "
              "corrected before you click the OK button again.",
          "Transaction not changed", Icon::kExclamation, Buttons::kOk);
      return;
    }
    app.ui().MessageBox(
        "The transaction was not made. If an error message was displayed the error will need to "
        "be corrected. You will have to add this transaction again.",
        "Transaction not completed", Icon::kExclamation, Buttons::kOk);
  });
}

void PressOkSplitDiv(Application& app, SplitDivForm& form) {
  SplitDiv_OK(app, form, IsModifyEntireCaption(form.caption));
}

void SplitDiv_Cancel(Application&, SplitDivForm& form) { form.closed = true; }

bool AddAllSplitDivs(Application& app, int16_t type, Date date, double pre, double post,
                     const std::string& notes, int blocks, const ReplacedEntry* replaced,
                     int* rows_added) {
  const std::string grid_block = app.current.block_id;
  if (rows_added != nullptr) *rows_added = 0;
  bool committed = Trap(app, "AddAllSplitDivs", false, [&] {
    UiPort& ui = app.ui();
    ui.SetHelpBarText(type == kTypeSplit ? "Calculating and adding Stock Split"
                                         : "Calculating and adding Stock Dividend");
    GaugeGuard gauge(ui);
    Database& client = app.ClientFile();

    // Phase one: the shares of each block treated, as of the split date,
    // without the rows being replaced.
    std::vector<BlockShares> work = BlockSharesAsOf(client, app.current.sec_id, date);
    if (blocks != SplitDivForm::kAllBlocks) {
      std::erase_if(work, [&](const BlockShares& b) { return b.block_no != app.current.block_no; });
    }
    if (replaced != nullptr && replaced->date <= date) {
      for (const SplitRowOnFile& old :
           EntireSplitDiv(client, replaced->sec_id, replaced->date, type)) {
        for (BlockShares& block : work) {
          if (block.block_no == old.block_no) block.shares = RoundShares(block.shares - old.shares);
        }
      }
    }
    for (size_t i = 0; i < work.size(); ++i) {
      ui.SetGauge(GaugeAt(0, 50, i + 1, work.size()));
      ui.ProcessEvents();
    }
    // Every question before the unit begins, never while holding the
    // file's write lock.
    const std::optional<int16_t> type_replaced =
        replaced != nullptr && replaced->date == date ? std::optional<int16_t>(type) : std::nullopt;
    for (const BlockShares& block : work) {
      if (block.shares > 0 && !ConfirmSplitOn(app, block.block_no, type, date, type_replaced)) {
        return false;
      }
    }

    // Phase two: one row per block still holding shares, all or none.
    bool all_added = true;
    int added = 0;
    {
      Database::Transaction unit(client);
      if (replaced != nullptr) {
        DeleteEntireSplitDiv(client, *replaced, type);
      }
      for (size_t i = 0; i < work.size(); ++i) {
        if (work[i].shares > 0) {
          if (!AddSplit(app, work[i].block_no, type, date, pre, post,
                        SplitSharesAdded(type, pre, post, work[i].shares), notes)) {
            all_added = false;
            break;
          }
          ++added;
        }
        ui.SetGauge(GaugeAt(50, 50, i + 1, work.size()));
        ui.ProcessEvents();
      }
      // A replacement that stores nothing would only delete the entry.
      if (replaced != nullptr && added == 0) all_added = false;
      if (all_added) unit.Commit();
    }
    if (added == 0) {
      ui.MessageBox(
          "No Stock Splits (or Dividends) were added. If you think this is incorrect you should "
          "check your data, and try this again.",
          "Please Note!", Icon::kInformation, Buttons::kOk);
    }
    if (all_added && rows_added != nullptr) *rows_added = added;
    return all_added;
  });
  if (app.client) {
    TrapVoid(app, "AddAllSplitDivs", [&] { DisplayBlock(app, grid_block); });
  }
  return committed;
}

std::string HelpText(const SplitDivForm& form, std::string_view control) {
  const bool split = IsSplit(form.caption);
  if (control == "dtDate") {
    return split ? "Enter the date this Stock Split occurred on."
                 : "Enter the date this Stock Dividend occurred on.";
  }
  if (control == "DblPreRatio") {
    return split ? "Enter the first part of the Split ratio (2 if split is 2 for 1)"
                 : "Enter the first part of the Dividend ratio (.1 if dividend is .1 per 1)";
  }
  if (control == "DblPostRatio") {
    return split ? "Enter the second part of the Split ratio (1 if split is 2 for 1)"
                 : "Enter the second part of the Dividend ratio (1 if dividend is .1 per 1)";
  }
  if (control == "CSoptBlocks") {
    return split ? "Select whether you want to add a Split to the current Block, or all Blocks"
                 : "Select whether you want to add a Stock Dividend to the current Block, or all "
                   "Blocks";
  }
  if (control == "lblSecurity" || control == "pnlSecurity") {
    return split ? "This is the Security you are entering a Stock Split for"
                 : "This is the Security you are entering a Stock Dividend for";
  }
  if (control == "btnOK") {
    return split ? "Click here to enter this Stock Split"
                 : "Click here to enter this Stock Dividend";
  }
  if (control == "btnCancel") {
    return split ? "Click here to cancel this Stock Split"
                 : "Click here to cancel this Stock Dividend";
  }
  if (control == "txtNotes") return "Enter any additional information here";
  return {};
}

}  // namespace lotwise
