#pragma once

#include <cstdint>

namespace lotwise {

// Sell method codes, as stored per symbol in the "Sell Method" table.
inline constexpr int16_t kSellSpecificId = 0;
inline constexpr int16_t kSellFifo = 1;
inline constexpr int16_t kSellAvgSingle = 2;
inline constexpr int16_t kSellAvgDouble = 3;
inline constexpr int16_t kSellNotSelected = 255;

// Returns true iff under method `code` the user picks the blocks (codes 0
// and 3); the other methods take them oldest first.
constexpr bool UserSelectsShares(int16_t code) {
  return code == kSellSpecificId || code == kSellAvgDouble;
}

}  // namespace lotwise
