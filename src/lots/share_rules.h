#pragma once

#include <cstdint>
#include <vector>

#include "ground/currency.h"
#include "ground/sale_lists.h"

namespace lotwise {

// One Sell row of a sale spread over its blocks.
struct SaleRow {
  int64_t block_no = 0;
  double shares = 0;  // positive: the shares taken from the block
  Currency price;
  Currency fee;
};

// Spreads a sale's price and fee over the blocks of `entries` by shares:
// each amount to the currency, then to the cent, the last row taking the
// rounding so that the rows add up exactly to what was entered.
std::vector<SaleRow> ApportionSale(const std::vector<ShareEntry>& entries, double shares,
                                   Currency sale_price, Currency fee);

// The shares a split (11) or dividend (21) of pre:post adds to a block of
// `shares`, rounded to five decimals; 0 when `post` is 0.
double SplitSharesAdded(int16_t type, double pre, double post, double shares);

}  // namespace lotwise
