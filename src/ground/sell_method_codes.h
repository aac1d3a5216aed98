#pragma once

#include <cstdint>
#include <optional>

namespace lotwise {

// Sell methods, stored per symbol in the "Sell Method" table under these
// numbers.
enum class SellMethod : int16_t {
  kSpecificId = 0,
  kFifo = 1,
  kAvgSingle = 2,
  kAvgDouble = 3,
  kNotSelected = 255,
};

// The method stored as `code`; none for a number that is not one of the five.
constexpr std::optional<SellMethod> SellMethodFromCode(int64_t code) {
  switch (code) {
    case 0:
    case 1:
    case 2:
    case 3:
    case 255:
      return static_cast<SellMethod>(code);
    default:
      return std::nullopt;
  }
}

// The number `method` is stored under.
constexpr int16_t CodeOf(SellMethod method) { return static_cast<int16_t>(method); }

// A stored number as the readers hand it up. A number outside the five is
// carried unchanged, so that the name lookup and the basis walk report it
// with its number instead of silently treating it as some method.
constexpr SellMethod SellMethodAsStored(int64_t code) {
  return SellMethodFromCode(code).value_or(static_cast<SellMethod>(static_cast<int16_t>(code)));
}

// Returns true iff under `method` the user picks the blocks (Specific
// Identification and Average Cost - Double Cat.); the other methods take them
// oldest first.
constexpr bool UserSelectsShares(SellMethod method) {
  return method == SellMethod::kSpecificId || method == SellMethod::kAvgDouble;
}

}  // namespace lotwise
