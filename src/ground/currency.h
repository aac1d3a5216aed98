#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ground/number_text.h"

namespace lotwise {

// A money amount: 64-bit fixed point with four decimals (ten-thousandths).
// Nothing rounds implicitly: every conversion that can lose digits names its
// rounding at the call site.
class Currency {
 public:
  constexpr Currency() = default;
  static constexpr Currency FromUnits(int64_t ten_thousandths) { return Currency(ten_thousandths); }
  static constexpr Currency FromCents(int64_t cents) { return Currency(cents * 100); }
  // Rounds half to even at the fourth decimal. The double is read as its
  // 15-significant-digit decimal text, so 1.00005 is the half it looks like
  // and goes to 1.0000, not up as its binary value would.
  static Currency FromDouble(double value);
  // Parses "1234.5", "-1,234.56", "$12.5" (the number as ReadNumberText
  // reads it, "," only between groups of three); more than four decimals
  // round half to even. Nullopt for no number or one beyond the range.
  static std::optional<Currency> Parse(std::string_view text);
  // Why Parse refuses `text`: kNone when it does not, kTooLarge beyond the
  // range (an amount must be less than kLimitText).
  static NumberFault ParseFault(std::string_view text);
  static constexpr const char* kLimitText = "922,337,203,685,477";

  constexpr int64_t units() const { return units_; }
  double ToDouble() const { return static_cast<double>(units_) / 10000.0; }
  // Rounds to the cent, half to even.
  Currency RoundedToCent() const;

  // The default text form: "1234.5", "-0.01", "0".
  std::string ToString() const;
  // Fixed two decimals with thousands separators: "1,234.50". Requires an
  // amount already rounded to the cent (the caller picks the rounding).
  std::string ToCentsText() const;

  constexpr Currency operator-() const { return Currency(-units_); }
  constexpr Currency operator+(Currency o) const { return Currency(units_ + o.units_); }
  constexpr Currency operator-(Currency o) const { return Currency(units_ - o.units_); }
  Currency& operator+=(Currency o) {
    units_ += o.units_;
    return *this;
  }
  Currency& operator-=(Currency o) {
    units_ -= o.units_;
    return *this;
  }
  friend constexpr auto operator<=>(Currency, Currency) = default;

 private:
  constexpr explicit Currency(int64_t units) : units_(units) {}
  int64_t units_ = 0;
};

// Divides a by b and rounds half to even; b must not be 0.
int64_t DivideHalfEven(int64_t a, int64_t b);

}  // namespace lotwise
