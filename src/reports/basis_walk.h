#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "data/database.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "ground/sell_method_codes.h"
#include "reports/basis_request.h"
#include "reports/report_db.h"

namespace lotwise {

class Application;

// The walk behind the Basis Analysis and the Schedule D attachment: every
// security of the scope, every portfolio holding it, every block, every
// transaction, each applied to running totals and written to the report
// database. Every routine returns true iff it did its whole part; a false
// has already been reported to the user, and the caller stops at once.

// The pool blocks of the average methods, filed under a portfolio name that
// sorts after every real one.
inline constexpr const char* kPoolPortName = "ZZZZZZZZZZZZZZZZZZZZ";
inline constexpr const char* kPoolAverage = "Average Cost";
inline constexpr const char* kPoolShortTerm = "Short Term Cost";
inline constexpr const char* kPoolLongTerm = "Long Term Cost";
inline constexpr const char* kXferTo = "Xfer to Block:";
inline constexpr const char* kXferFrom = "Xfer from Block:";
// TransNo of the moves out of "Short Term Cost" and into "Long Term Cost":
// before the day's transactions on both pools. A lot is long term from the
// start of its long-term day, so it leaves the short-term pool at the
// average that pool had before anything else happened that day (another
// lot bought or split that day must not change the cost moved), and a sale
// on that very day finds it in "Long Term Cost".
inline constexpr int kXferToTransNo = 0;
inline constexpr int kXferFromTransNo = 0;

// Shares, cost and basis per share of a block, a pool or a security.
// Basis per share is cost / shares, and 0 when shares is 0.
struct BlockTotals {
  double shares = 0;
  Currency cost;
  double basis_per_share = 0;
};

// One transaction as the walk reads it (the row shape of a block's
// transaction listing): a sale's Cost is 0, its Shares negative.
struct BasisTrans {
  std::string transaction;
  int16_t prec_sort = 0;
  Date date;
  double shares = 0;
  Currency sale_price;
  Currency cost;
  Currency fee;
};

// One row of a security's walk in one portfolio: a block's header, or one
// of the block's transactions.
struct WalkRow {
  bool header = false;
  std::string block_id;  // header rows
  Date block_date;       // header rows
  BasisTrans trans;      // transaction rows
};

// One run: its fixed values and what the walk holds open.
struct BasisRun {
  Application& app;
  Database& client;
  Database& report;
  BasisKind kind = BasisKind::kBasis;
  Date year_end{};
  Date year_start{};
  std::string port_filter = "*";  // "*": every portfolio
  std::string sec_filter = "*";   // "*": every security
  // The method chosen "for all" securities without one.
  SellMethod method_for_all = SellMethod::kNotSelected;
  // Blocks in the scope and walked so far, for the gauge.
  int64_t blocks_total = 0;
  int64_t blocks_done = 0;
  int gauge_percent = 0;
  // The blocks and transactions of the security in one portfolio, each
  // block's header row followed by its transactions, read before the walk
  // writes so that no read of the Taxpayer File is open when a write
  // fails; `next_row` is the next one to walk.
  std::vector<WalkRow> block_rows{};
  size_t next_row = 0;
  // The rows of the pool being averaged, and the text of the saved query
  // that reads them.
  std::optional<PoolRows> pool_rows{};
  std::string pool_rows_sql{};
  // The report blocks GetCreateBlockNum has given out in this run, by
  // security, portfolio and block ID (the run starts from empty tables).
  std::map<std::string, int64_t> created_blocks{};
};

// One security being walked.
struct SecurityWalk {
  std::string symbol;
  SellMethod method = SellMethod::kNotSelected;
  // Report block numbers of its pools (0 when the method has none).
  int64_t pool_average = 0;
  int64_t pool_short = 0;
  int64_t pool_long = 0;
  // The sum of its real blocks' final totals.
  BlockTotals totals;
  // True once any transaction of it has been applied.
  bool applied = false;
};

// One block being walked.
struct BlockWalk {
  int64_t report_block_no = 0;
  std::string block_id;
  Date date_acqrd;
  Date long_term_date;
  BlockTotals totals;
  // Transactions applied so far: the TransNo of the next one.
  int applied = 0;
  // Average Cost - Double Cat.: the block's shares have left "Short Term
  // Cost" for "Long Term Cost".
  bool moved = false;
};

// The cost taken out of a holding of `before` by `shares` (negative)
// leaving it: shares x basis per share, rounded to the cent half to even,
// exact on share counts as stored (to the billionth of a share). 0 when
// nothing is held.
Currency SaleCost(double shares, const BlockTotals& before);

// Adds a transaction's shares and cost to `totals`: shares kept as stored
// (floating residue rounded off at the billionth), and 0 below
// `share_floor` in size; a cost under one cent in size
// becomes 0; with no shares left, cost and basis are 0 too.
void ApplyToTotals(BlockTotals& totals, double shares, Currency cost, double share_floor);

// One pass over the distinct securities of the scope: resolves each one's
// method (asking for the securities without one, except on a Schedule D
// only run, which skips them), walks it and writes its "BA Secs" row. Shows
// "No Securities" when the scope holds none or none qualified.
bool CalcSecurities(BasisRun& run);
// Walks every portfolio of the scope that holds the security.
bool CalcPortfolios(BasisRun& run, SecurityWalk& sec);
// Walks the security's blocks in one portfolio, oldest first, writing one
// "BA Blocks" row per block and adding each block's final totals to the
// security's.
bool CalcBlocks(BasisRun& run, SecurityWalk& sec, const std::string& port_name, int64_t sec_id);
// Applies the block's transactions dated on or before the year end (the
// rows of run.block_rows up to the next block's header row) and
// leaves the final totals in `block`. Under Average Cost - Double Cat. a
// block that turned long term by the year end without a later transaction
// still moves to "Long Term Cost".
bool CalcTransactions(BasisRun& run, SecurityWalk& sec, BlockWalk& block);
// Apply one transaction to the block and write its rows: lot by lot with
// its Schedule D row; or on the block and mirrored onto the average pool
// that holds the lot.
bool ComputeTrans_FIFO_SpecID(BasisRun& run, SecurityWalk& sec, BlockWalk& block,
                              const BasisTrans& trans);
bool ComputeTrans_Avg_Sng(BasisRun& run, SecurityWalk& sec, BlockWalk& block,
                          const BasisTrans& trans);
bool ComputeTrans_Avg_Dbl(BasisRun& run, SecurityWalk& sec, BlockWalk& block,
                          const BasisTrans& trans);
// Averages the pool `pool_id` of the security after all its real blocks:
// applies its rows in date order, rewrites their totals, writes a Schedule
// D row per sale from the year start on and, for each move out of "Short
// Term Cost", the matching move into "Long Term Cost". Sets `totals` to the
// pool's final totals. Any other pool ID is refused as "Error in BlockID".
bool CalcAvgBlock(BasisRun& run, SellMethod method, const std::string& symbol,
                  const std::string& pool_id, BlockTotals& totals);
// Sets `block_no` to the report block of (security, portfolio, block ID),
// adding its "BA Blocks" row dated `date_acqrd` when there is none yet.
bool GetCreateBlockNum(BasisRun& run, const std::string& symbol, const std::string& port_name,
                       const std::string& block_id, Date date_acqrd, int64_t& block_no);
// Closes every query the walk holds open and drops the rows read.
void CloseBasisRecordsets(BasisRun& run);

}  // namespace lotwise
