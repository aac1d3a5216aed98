#include "lots/rollback.h"

#include "data/application.h"
#include "data/current_context.h"
#include "data/database.h"
#include "data/entry_rows.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "data/transaction_store.h"
#include "ground/value_helpers.h"
#include "lots/rebook.h"
#include "lots/security_display.h"

namespace lotwise {

namespace {

// The type code of the tables whose rows have no type: every row counts.
constexpr int16_t kAnyType = 99;

// The kinds a roll-back can remove, in the order it removes them.
struct RollbackKind {
  bool RollbackForm::*ticked;
  const char* table;
  int16_t type;
};

constexpr RollbackKind kRollbackKinds[] = {
    {&RollbackForm::buys, "Buy", kTypeBuy},
    {&RollbackForm::reinvests, "Buy", kTypeReinvest},
    {&RollbackForm::sells, "Sell", kAnyType},
    {&RollbackForm::splits, "Split", kTypeSplit},
    {&RollbackForm::dividends, "Split", kTypeDividend},
    {&RollbackForm::adjusts, "Adjust", kAnyType},
};

// The gauge's share of a roll-back: the deletes fill it to 70, the removal
// of emptied blocks to 100.
constexpr int kGaugeStart = 6;
constexpr int kGaugeDeleted = 70;
constexpr int kGaugeDone = 100;

}  // namespace

bool BlockIsEmpty(Application& app, int64_t block_no) {
  return BlockHasNoTransactions(*app.client, block_no);
}

void ShowRollBack(Application& app) {
  TrapVoid(app, "ShowRollBack", [&] {
    if (!SecurityHasTransactions(*app.client, app.current.sec_id)) {
      app.ui().MessageBox(
          "There are no transactions to rollback. To buy shares click on the 'Buy' button.",
          "No transactions", Icon::kInformation, Buttons::kOk);
      return;
    }
    if (app.ui().MessageBox(
            "When transactions are rolled back, they are removed from the file. Also, any blocks "
            "that have no transactions after a rollback will be removed from the file. For this "
            "reason, it is recommended that you backup your files before doing a rollback. By "
            "making a backup, you will be able to retrieve your original file if you rollback the "
            "wrong, or too many, transactions.",
            "Warning!", Icon::kExclamation, Buttons::kOkCancel) != Answer::kOk) {
      return;
    }
    RollbackForm form;
    form.block = app.current.block_id;
    app.ui().RunModal(form);
  });
}

bool CheckdateRB(Application& app, RollbackForm& form) {
  return Trap(app, "CheckdateRB", false, [&] {
    Date date;
    if (DateValid(app.ui(), form.date, "date", date)) return true;
    form.focus = "dtDate";
    return false;
  });
}

int TransForRollBack(Application& app, const RollbackForm& form) {
  return Trap(app, "TransForRollBack", 0, [&] {
    int ticked = 0;
    for (const RollbackKind& kind : kRollbackKinds) {
      if (form.*kind.ticked) ++ticked;
    }
    return ticked;
  });
}

void RollBack_OK(Application& app, RollbackForm& form) {
  form.accepted = false;
  TrapVoid(app, "RollBack_OK", [&] {
    Date date;
    if (!DateValid(app.ui(), form.date, "date", date)) {
      form.focus = "dtDate";
      return;
    }
    if (TransForRollBack(app, form) == 0) {
      app.ui().MessageBox(
          "You must select the transaction types you would like to Rollback. To do this, click on "
          "the box next to the type of transaction so that an X appears in it.",
          "No Transactions selected", Icon::kExclamation, Buttons::kOk);
      return;
    }
    if (form.blocks == kRollbackAllBlocks &&
        app.ui().MessageBox("You are about to Rollback transactions in all blocks in this "
                            "security! Are you sure you want to do this?",
                            "Are you sure?", Icon::kQuestion, Buttons::kYesNo) != Answer::kYes) {
      return;
    }
    app.ui().SetHelpBarText("Rolling Back Transactions");
    if (!RollBackTrans(app, form, date)) {
      app.ui().MessageBox(
          "The RollBack was not completed. If an error message was displayed you will need to "
          "correct that first. Please do the RollBack again.",
          "Error!", Icon::kCritical, Buttons::kOk);
      return;
    }
    form.accepted = true;
    form.closed = true;
    OfferRebookLaterSales(app, app.current.sec_id, date, kPrecSplit);
    UpdateSharesInSec(app);
  });
}

void RollBack_Cancel(Application&, RollbackForm& form) { form.closed = true; }

bool RollBackTrans(Application& app, const RollbackForm& form, Date date) {
  return Trap(app, "RollBackTrans", false, [&] {
    GaugeGuard gauge(app.ui());
    if (form.blocks != kRollbackAllBlocks && form.blocks != kRollbackCurrentBlock) {
      app.ui().MessageBox(
          "You need to select either All Blocks, or the Current Block to rollback. ",
          "No blocks selected", Icon::kExclamation, Buttons::kOk);
      return false;
    }
    std::vector<int64_t> blocks;
    if (form.blocks == kRollbackAllBlocks) {
      for (const BlockRow& row : app.window.display.blocks) blocks.push_back(row.block_no);
    } else {
      blocks.push_back(app.current.block_no);
    }
    app.ui().SetGauge(kGaugeStart);

    {
      Database::Transaction unit(*app.client);
      const int count = static_cast<int>(blocks.size());
      for (int b = 0; b < count; ++b) {
        int step = 0;
        for (const RollbackKind& kind : kRollbackKinds) {
          ++step;
          if (count == 1) app.ui().SetGauge(10 * step);
          if (!(form.*kind.ticked)) continue;
          // A failed delete was reported by RollBackTable; leaving the unit
          // uncommitted undoes every delete of this roll-back. The file may
          // have been closed by then, so nothing else is touched.
          if (!RollBackTable(app, kind.table, blocks[b], kind.type, date)) return false;
        }
        if (count > 1) {
          app.ui().SetGauge(kGaugeStart + (kGaugeDeleted - kGaugeStart) * (b + 1) / count);
        }
        app.ui().ProcessEvents();
      }
      unit.Commit();
    }
    app.ui().SetGauge(kGaugeDeleted);

    UpdateTransInBlock(app, app.window.display.trans_filter);
    RemoveEmptyBlocks(app);
    return true;
  });
}

void RemoveEmptyBlocks(Application& app) {
  TrapVoid(app, "RemoveEmptyBlocks", [&] {
    // A copy: the redisplay below replaces the grid's rows.
    const std::vector<BlockRow> blocks = app.window.display.blocks;
    std::vector<std::string> removed;
    {
      Database::Transaction unit(*app.client);
      const int count = static_cast<int>(blocks.size());
      for (int i = 0; i < count; ++i) {
        if (BlockIsEmpty(app, blocks[i].block_no)) {
          DeleteBlockRow(*app.client, blocks[i].block_no);
          removed.push_back(blocks[i].block_id);
        }
        app.ui().SetGauge(kGaugeDeleted + (kGaugeDone - kGaugeDeleted) * (i + 1) / count);
      }
      unit.Commit();
    }
    app.ui().SetGauge(kGaugeDone);
    for (const std::string& block_id : removed) {
      if (block_id == app.current.block_id) {
        app.current.block_no = 0;
        app.current.block_id.clear();
      }
    }

    HideSecDisplay(app);
    FillSecDisplay(app, app.current.sec_id);
    if (!removed.empty()) {
      RemBlocksForm list;
      list.removed = std::move(removed);
      app.ui().RunModal(list);
    }
  });
}

void PrintREmovedBlocks(Application& app, const RemBlocksForm& form) {
  TrapVoid(app, "PrintREmovedBlocks", [&] {
    app.ui().SetHelpBarText("Printing removed blocks");
    std::vector<std::string> lines = {
        "Taxpayer Name: " + GetCurrClientInfo(app, "[Client Name]"),
        "Portfolio:     " + GetCurrPortInfo(app, "[Port Name]"),
        "Security:      " + app.current.sec_symbol,
    };
    std::string lead = "Blocks:  ";
    for (const std::string& block_id : form.removed) {
      lines.push_back(lead + block_id);
      lead = std::string(8, ' ');
    }
    if (form.removed.empty()) lines.push_back(lead);
    app.ui().PrintLines("Listing of Blocks that have been removed", lines);
  });
}

void RemBlocks_Close(Application&, RemBlocksForm& form) { form.closed = true; }

std::string HelpText(const RollbackForm&, std::string_view control) {
  if (control == "dtDate") {
    return "Enter the date to Rollback to. This date will be the last date left intact.";
  }
  if (control == "chkBuys") return "Click here to Rollback Buys";
  if (control == "chkReinvests") return "Click here to Rollback Reinvestments";
  if (control == "chkSells") return "Click here to Rollback Sells";
  if (control == "chkSplits") return "Click here to Rollback Stock Splits";
  if (control == "chkDividends") return "Click here to Rollback Stock Dividends";
  if (control == "chkAdjusts") return "Click here to Rollback Adjustments";
  if (control == "CSoptBlocks") {
    return "Indicate whether you want to rollback all blocks or the current block";
  }
  if (control == "lblBlock") return "This is the current Block";
  if (control == "btnOK") return "Click here to Rollback the selected transactions";
  if (control == "btnCancel") return "Click here to cancel this Rollback";
  return {};
}

std::string HelpText(const RemBlocksForm&, std::string_view control) {
  if (control == "SSdgRemBlocks") return "These are the blocks that were removed";
  if (control == "btnPrint") return "Click here to print the list of removed blocks";
  if (control == "btnClose") return "Click here to close this form";
  return {};
}

}  // namespace lotwise
