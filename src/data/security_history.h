#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <vector>

#include "data/entry_rows.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "ground/sell_method_codes.h"

namespace lotwise {

class Database;

// Where a row falls in its block's history: its date, then its same-date
// rank ("Prec Sort"), so that a day's buys count for that day's sales and
// its sales for that day's splits.
struct HistoryKey {
  Date date;
  int64_t prec = 0;
  friend auto operator<=>(const HistoryKey&, const HistoryKey&) = default;
};

enum class HistoryTable { kBuy, kSell, kSplit, kAdjust };

// One transaction row of any of the four tables, in one shape; the fields
// its table lacks are 0.
struct HistoryRow {
  HistoryTable table = HistoryTable::kBuy;
  int64_t unique_id = 0;  // 0 for a row not yet written
  int64_t block_no = 0;
  HistoryKey key;
  double shares = 0;
  int64_t type = 0;
  double pre = 0;
  double post = 0;
  Currency price;  // a sale's proceeds
  Currency fee;
  std::string notes;
};

// The blocks of one security, oldest first, and every row filed under them
// in the order they were written.
struct SecurityHistory {
  std::vector<BlockOnFile> blocks;
  std::vector<HistoryRow> rows;

  // The id of block `block_no`, empty when it is not one of these.
  const std::string& BlockId(int64_t block_no) const;
};

SecurityHistory ReadSecurityHistory(Database& client, int64_t sec_id);

// True iff security `sec_id` has a sale that comes after `entry` in its
// history.
bool HasSaleAfter(Database& client, int64_t sec_id, HistoryKey entry);
// The sell method kept for the security's symbol (kNotSelected when none;
// a number outside the five as SellMethodAsStored carries it).
SellMethod SellMethodOfSecurity(Database& client, int64_t sec_id);

// Single-row writes of a re-booking, inside the caller's unit of work.
void DeleteSellRow(Database& client, int64_t unique_id);
void DeleteSplitRow(Database& client, int64_t unique_id);
void SetSplitShares(Database& client, int64_t unique_id, double shares);

}  // namespace lotwise
