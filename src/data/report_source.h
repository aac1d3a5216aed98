#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/currency.h"
#include "ground/date.h"

namespace lotwise {

class Database;

// What the reports read of the Taxpayer File: the rows they walk, one
// statement per security or block however many rows it returns.

// A date in its storage form ("yyyy-mm-dd") read without the formatted I/O
// Date::ParseIso uses: the basis walk reads a few for every transaction of
// a taxpayer. Other text is left to Date::ParseIso; what is no date at all
// gives the empty date.
Date StoredDate(std::string_view text);

// One row of a security's walk in one portfolio: a block's header, or one
// of its transactions in the shape of a block's transaction listing (a
// sale's cost is 0, split and dividend texts are built from the ratios).
struct WalkSourceRow {
  bool header = false;
  std::string block_id;  // header rows
  Date block_date;       // header rows
  std::string transaction;
  int16_t prec_sort = 0;
  Date date;
  double shares = 0;
  Currency sale_price;
  Currency cost;
  Currency fee;
};

// Calls `each` with the blocks of security `sec_id`, each block's header
// followed by its transactions dated on or before `year_end`, oldest block
// first and each block's rows in date and same-date order. `each` may move
// from the row; it is refilled for the next one.
void ReadWalkRows(Database& client, int64_t sec_id, Date year_end,
                  const std::function<void(WalkSourceRow&)>& each);

// One row of a transaction table as the Transaction Listing reads it; the
// fields its table lacks are 0.
struct TransOnFile {
  int64_t block_no = 0;
  int64_t unique_id = 0;
  int64_t prec_sort = 0;
  Date date;
  int64_t type = 0;
  double shares = 0;
  Currency cost;
  Currency fee;
  Currency sale_price;
  double pre_ratio = 0;
  double post_ratio = 0;
};

std::vector<TransOnFile> BuysInSecurity(Database& client, int64_t sec_id);
std::vector<TransOnFile> SellsInBlock(Database& client, int64_t block_no);
std::vector<TransOnFile> SplitsInBlock(Database& client, int64_t block_no);
std::vector<TransOnFile> AdjustsInBlock(Database& client, int64_t block_no);

}  // namespace lotwise
