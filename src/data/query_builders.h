#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "data/database.h"
#include "ground/date.h"

namespace lotwise {

class Application;

// One statement and the values bound to it. Builders only assemble; none
// touches a database. Every value is a bound parameter; table names come
// only from the program's own fixed set.
struct SqlStatement {
  std::string sql;
  Params params;
};

// Runs a builder's statement.
inline Query Select(Database& db, const SqlStatement& s) { return db.Select(s.sql, s.params); }
inline int64_t Execute(Database& db, const SqlStatement& s) { return db.Execute(s.sql, s.params); }

// The transaction-type filter of the security display, 0 (all) to 6.
enum class TransKind : int16_t {
  kAll = 0,
  kBuy = 1,
  kReinvestment = 2,
  kSell = 3,
  kStockSplit = 4,
  kStockDividend = 5,
  kAdjustment = 6,
};

// Deletes every row of a table. `table` must be one of the program's tables.
SqlStatement Query_ClearTable(std::string_view table);
SqlStatement Query_DeleteBlock(int64_t block_no);
SqlStatement Query_DeleteTrans(std::string_view table, int64_t unique_id);
// The security's blocks, oldest first (Date, then Block ID).
SqlStatement Query_GetBlocksInSec(int64_t sec_id);
SqlStatement Query_GetBlocksInSecWithDate(int64_t sec_id, Date date);
// The Client row of the open Taxpayer File with that code.
SqlStatement Query_GetClient(std::string_view code);
// The central Clients row with that code.
SqlStatement Query_GetClientCDB(std::string_view code);
// All central Clients rows sorted by 0 name, 1 sort name, 2 code. Any other
// key shows "Incorrect value to Sort Clients by" and leaves them unsorted.
SqlStatement Query_GetClientCDBSorted(Application& app, int sort_key);
// The portfolio of that name (compared without regard to case).
SqlStatement Query_GetPort(std::string_view name);
SqlStatement Query_GetTransaction(std::string_view table, int64_t unique_id);
// Deletes the block's rows of the table of that type dated after `date`;
// type 99 leaves the type out (tables without one).
SqlStatement Query_RollBack(std::string_view table, int16_t type, int64_t block_no, Date date);
SqlStatement Query_SecsInPort(std::string_view port_name);
// The block's transactions of one kind, or of all kinds (kAll) in date and
// same-date order, in one row shape: Date, Transaction (display text), Cost,
// "Sale Price", Shares, Fee, Notes, "Unique ID", "Prec Sort".
SqlStatement Query_TransInBlock(int64_t block_no, TransKind kind);

}  // namespace lotwise
