#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ground/date.h"

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

// As ForEachOpenBlock, for a sale dated `date`: only the blocks acquired on
// or before that date, each with what a sale then may take from it: what it
// held that day (the day's acquisitions, adjustments and sales counted),
// bounded by what it holds after each later transaction, so that a
// back-dated sale never takes shares a later sale already took. A block
// empty today thus gives nothing, and only open blocks are read.
void ForEachBlockHeldOn(Database& client, int64_t sec_id, Date date,
                        const std::function<bool(const BlockShares&)>& visit);
// Returns true iff security `sec_id` has a block acquired on or before `date`.
bool HasBlockOnOrBefore(Database& client, int64_t sec_id, Date date);

// Returns every block of security `sec_id`, oldest first, with the shares
// of its transactions dated on or before `as_of` summed and rounded to five
// decimals (0 for a block without any). One query serves the security.
std::vector<BlockShares> BlockSharesAsOf(Database& client, int64_t sec_id, Date as_of);

}  // namespace lotwise
