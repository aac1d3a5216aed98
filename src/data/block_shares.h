#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/date.h"

namespace lotwise {

class Database;

// A block and the shares it holds.
struct BlockShares {
  int64_t block_no = 0;
  std::string block_id;
  Date date;
  double shares = 0;  // rounded to five decimals
};

// Returns the blocks of security `sec_id` that still hold shares (their
// transactions' shares summed and rounded to five decimals, greater than 0),
// oldest first: by date, then by block id. Reads only the open blocks, so
// its cost does not grow with the sales already made.
std::vector<BlockShares> OpenBlocks(Database& client, int64_t sec_id);

// Calls `visit` with the blocks OpenBlocks returns, in the same order, until
// it returns false; the blocks after that are not read. A FIFO sale thus
// reads only the oldest blocks it takes shares from, however many lots stay
// open.
void ForEachOpenBlock(Database& client, int64_t sec_id,
                      const std::function<bool(const BlockShares&)>& visit);

// Returns every block of security `sec_id`, oldest first, with the shares
// of its transactions dated on or before `as_of` summed and rounded to five
// decimals (0 for a block without any). One query serves the security.
std::vector<BlockShares> BlockSharesAsOf(Database& client, int64_t sec_id, Date as_of);

// Returns block `block_no` with the shares it holds now (rounded to five
// decimals, possibly 0), or a block numbered 0 when there is no such block.
BlockShares BlockSharesNow(Database& client, int64_t block_no);

}  // namespace lotwise
