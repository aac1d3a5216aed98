#pragma once

#include <string>
#include <vector>

#include "ground/currency.h"
#include "session.h"

namespace lotwise::cli {

enum class LedgerAction { kBuy, kReinvest, kSell, kSplit, kDividend, kAdjust };

// Shares of one block picked for a sale.
struct BlockPick {
  std::string block_id;
  double shares = 0;
};

// One transaction as the user would type it into its dialog.
struct LedgerEntry {
  LedgerAction action = LedgerAction::kBuy;
  std::string date;  // as typed
  // Buy, reinvestment, sale: shares acquired or sold; adjustment: signed.
  double shares = 0;
  // A sale by picked blocks takes its shares from the picks; when shares
  // are given as well, they must agree.
  bool shares_given = false;
  // Cost (buy, reinvestment), sale proceeds (sale), cost adjustment (signed).
  Currency amount;
  Currency fee;
  // Split or stock dividend: new shares to old shares (2:1, 0.1:1).
  double new_shares = 0;
  double old_shares = 0;
  // Adjustment: the block corrected; split or dividend: the one block, or
  // empty for every block.
  std::string block;
  // Sale under a method that picks the blocks.
  std::vector<BlockPick> picks;
  // The sale dialog's method as its drop-down names it; empty leaves the
  // drop-down showing the security's method.
  std::string method;
  std::string notes;
};

// Enters `entry` into the open security (SECOPEN) through its dialog: fills
// the fields in the dialog's order, running the check each field runs when
// the user leaves it, and presses OK. A value a field check refused, a
// question answered No, a block that is not there, or a selection that does
// not match refuses the entry, and the user has been told why. Returns true
// iff the dialog accepted the entry and its rows were written.
bool EnterTransaction(Session& session, const LedgerEntry& entry);

}  // namespace lotwise::cli
