#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/query_builders.h"
#include "data/transaction_store.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "ground/window_state.h"

namespace lotwise {

class Database;

// Readers and writers of the rows that make up one entry as the user sees
// it: a sale or a split entered once over several blocks, a block's own
// transactions. The lots procedures work through these; the SQL stays here.

// One Sell row of a sale, with its block.
struct SaleRowOnFile {
  int64_t block_no = 0;
  std::string block_id;
  double shares = 0;  // as stored: negative
  Currency sale_price;
  Currency fee;
  std::string notes;
};

// One Split row of a split or stock dividend, with its block.
struct SplitRowOnFile {
  int64_t block_no = 0;
  double pre_ratio = 0;
  double post_ratio = 0;
  double shares = 0;  // added to the block
  std::string notes;
};

// The block itself: its id and acquisition date.
using BlockOnFile = BlockRow;

// Every Sell row of security `sec_id` dated `date`, oldest block first.
std::vector<SaleRowOnFile> EntireSell(Database& client, int64_t sec_id, Date date);
// Every Split row of `type` (11 split, 21 dividend) of the security on that
// date, oldest block first.
std::vector<SplitRowOnFile> EntireSplitDiv(Database& client, int64_t sec_id, Date date,
                                           int16_t type);
// Deletes the rows that EntireSell / EntireSplitDiv return for `replaced`.
void DeleteEntireSell(Database& client, const ReplacedEntry& replaced);
void DeleteEntireSplitDiv(Database& client, const ReplacedEntry& replaced, int16_t type);

// True iff the security has a block / a block with any transaction.
bool SecurityHasBlocks(Database& client, int64_t sec_id);
bool SecurityHasTransactions(Database& client, int64_t sec_id);
// True iff the block has no transaction of any kind left.
bool BlockHasNoTransactions(Database& client, int64_t block_no);
// The block numbered `block_no`, if there is one.
std::optional<BlockOnFile> FindBlock(Database& client, int64_t block_no);
// The date of the block's first transaction (its purchase), if it has one.
std::optional<Date> FirstTransactionDate(Database& client, int64_t block_no);

// The security's blocks, oldest first (date, then block id).
std::vector<BlockOnFile> BlocksOfSecurity(Database& client, int64_t sec_id);

// The block's transactions of one kind (kAll: every kind), in the order of
// Query_TransInBlock.
std::vector<TransactionRow> TransactionsInBlock(Database& client, int64_t block_no, TransKind kind);

// Deletes one row of `table` (one of the program's transaction tables) /
// the block's own row, inside the caller's unit of work if any.
void DeleteTransactionRow(Database& client, std::string_view table, int64_t unique_id);
void DeleteBlockRow(Database& client, int64_t block_no);

}  // namespace lotwise
