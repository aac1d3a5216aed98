#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ground/currency.h"
#include "ground/date.h"

namespace lotwise {

class Application;
class Database;

// Transaction types and their same-date ranks ("Prec Sort").
inline constexpr int16_t kTypeBuy = 10;
inline constexpr int16_t kTypeReinvest = 20;
inline constexpr int16_t kTypeSplit = 11;
inline constexpr int16_t kTypeDividend = 21;
inline constexpr int16_t kPrecBuy = 10;
inline constexpr int16_t kPrecReinvest = 20;
inline constexpr int16_t kPrecAdjust = 30;
inline constexpr int16_t kPrecSell = 40;
inline constexpr int16_t kPrecDividend = 50;
inline constexpr int16_t kPrecSplit = 60;

// Opens a new block for security `sec_id` with its Buy (type 10) or
// Reinvestment (type 20) row, both in one unit of work. Asks first when the
// security already has an acquisition of that type on that date. Stores the
// new block's id ("01/15/1998-2") in `block_id`. Returns true iff written.
bool AddBuy(Application& app, int64_t sec_id, std::string& block_id, int16_t type, Date date,
            Currency cost, double shares, Currency fee, const std::string& notes);
// What a "Modify Entire" entry replaces: every row of its own kind (sales;
// splits or dividends of its type) of security `sec_id` dated `date`. The
// replaced rows are deleted in the unit of work that stores the new entry.
struct ReplacedEntry {
  int64_t sec_id = 0;
  Date date;
};

// The same-date questions of sales, splits and dividends. A sale, split or
// dividend is entered over several blocks in one unit of work, and a user
// who leaves a question open must not hold the file's write lock, so the
// caller asks for every block before its unit begins. ConfirmSellOn asks
// when block `block_no` already has a sale on `date`; ConfirmSplitOn when it
// has a split or dividend of any type there, other than rows of
// `replaced_type` that the entry is about to replace. Each returns true when
// there is nothing to ask or the user answered Yes.
bool ConfirmSellOn(Application& app, int64_t block_no, Date date);
bool ConfirmSplitOn(Application& app, int64_t block_no, int16_t type, Date date,
                    std::optional<int16_t> replaced_type = std::nullopt);
// The bare writes of a Sell and a Split row, for callers inside a unit of
// work of their own that handle its errors.
void InsertSellRow(Database& client, int64_t block_no, Date date, Currency sale_price, Currency fee,
                   double shares, const std::string& notes);
void InsertSplitRow(Database& client, int64_t block_no, int16_t type, Date date, double pre_ratio,
                    double post_ratio, double shares, const std::string& notes);
// Files a sale row (shares negative) under block `block_no`; asks nothing.
bool AddSell(Application& app, int64_t block_no, Date date, Currency sale_price, Currency fee,
             double shares, const std::string& notes);
// Files a split (type 11) or stock dividend (type 21) row; asks nothing.
bool AddSplit(Application& app, int64_t block_no, int16_t type, Date date, double pre_ratio,
              double post_ratio, double shares, const std::string& notes);
// Files an adjustment of shares and cost.
bool AddAdjust(Application& app, int64_t block_no, Date date, double shares, Currency cost,
               const std::string& notes);

// Rewrite the row `unique_id` of the kind's table, logging each changed
// field (notes are not logged). A buy whose date changes re-dates its block.
bool ModifyBuy(Application& app, int64_t unique_id, Date date, Currency cost, Currency fee,
               double shares, const std::string& notes);
bool ModifySell(Application& app, int64_t unique_id, Date date, Currency sale_price, Currency fee,
                double shares, const std::string& notes);
bool ModifySplit(Application& app, int64_t unique_id, Date date, double shares,
                 const std::string& notes);
bool ModifyAdjust(Application& app, int64_t unique_id, Date date, Currency cost, double shares,
                  const std::string& notes);

// Deletes the table's rows of the block of that type (99: any) dated after
// `date`. Returns true iff the delete ran (false after a reported error, so
// that the caller's roll-back unit is not committed).
bool RollBackTable(Application& app, std::string_view table, int64_t block_no, int16_t type,
                   Date date);

// Appends one change-log row; a too-long description is cut to the field's
// size and reported as a non-fatal error.
void LogChange(Application& app, const std::string& port_name, int64_t sec_id, Date date,
               const std::string& description);

// Asks, when another buy of security `sec_id` is dated `date`, whether block
// `block_no` may move there; then moves it to `date` under the next free
// block id of that date, in one unit of work. Returns true iff it moved.
// Throws LwError on a storage failure (callers trap it).
bool ConfirmAndRedateBlock(Application& app, int64_t sec_id, int64_t block_no, Date date);
// True iff block `block_no` is one of security `sec_id`'s blocks.
bool SecurityHoldsBlock(Application& app, int64_t sec_id, int64_t block_no);
// Deletes the block with all its transactions.
void DeleteBlockRows(Application& app, int64_t block_no);

}  // namespace lotwise
