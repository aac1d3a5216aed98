#include "ground/currency.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "ground/lw_error.h"
#include "ground/number_text.h"

namespace lotwise {

int64_t DivideHalfEven(int64_t a, int64_t b) {
  int64_t q = a / b;
  int64_t r = a % b;
  if (r == 0) return q;
  // Compare 2|r| with |b| without overflow.
  uint64_t twice_r = 2 * static_cast<uint64_t>(r < 0 ? -r : r);
  uint64_t abs_b = static_cast<uint64_t>(b < 0 ? -b : b);
  bool negative = (a < 0) != (b < 0);
  if (twice_r > abs_b || (twice_r == abs_b && (q % 2 != 0))) q += negative ? -1 : 1;
  return q;
}

namespace {

// The largest whole part of an amount, one below Currency::kLimitText.
constexpr int64_t kMaxWholeUnits = 922337203685476;

// Rounds a plain decimal text ("-12.345678") half to even at four decimals.
std::optional<int64_t> DecimalTextToUnits(std::string_view text) {
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  int64_t whole = 0;
  size_t i = 0;
  bool any = false;
  for (; i < text.size() && text[i] != '.'; ++i) {
    if (text[i] < '0' || text[i] > '9') return std::nullopt;
    whole = whole * 10 + (text[i] - '0');
    // Checked at each digit, before the next could overflow: a larger whole
    // part leaves no room for the four decimals in 64 bits.
    if (whole > kMaxWholeUnits) return std::nullopt;
    any = true;
  }
  int64_t frac = 0;
  int frac_digits = 0;
  int first_dropped = -1;
  bool more_dropped = false;
  if (i < text.size()) {
    for (++i; i < text.size(); ++i) {
      char c = text[i];
      if (c < '0' || c > '9') return std::nullopt;
      any = true;
      if (frac_digits < 4) {
        frac = frac * 10 + (c - '0');
        ++frac_digits;
      } else if (first_dropped < 0) {
        first_dropped = c - '0';
      } else if (c != '0') {
        more_dropped = true;
      }
    }
  }
  if (!any) return std::nullopt;
  while (frac_digits < 4) {
    frac *= 10;
    ++frac_digits;
  }
  int64_t units = whole * 10000 + frac;
  if (first_dropped > 5 || (first_dropped == 5 && (more_dropped || units % 2 != 0))) ++units;
  return negative ? -units : units;
}

}  // namespace

Currency Currency::FromDouble(double value) {
  if (value == 0 || !std::isfinite(value)) return Currency();
  // Fixed notation with exactly 15 significant digits: the digits the default
  // text form shows, without an exponent.
  int magnitude = static_cast<int>(std::floor(std::log10(std::fabs(value))));
  int decimals = std::clamp(14 - magnitude, 0, 30);
  char buf[96];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, value);
  auto units = DecimalTextToUnits(buf);
  if (!units) throw LwError(err::kOverflow, "Overflow");
  return Currency(*units);
}

namespace {

NumberFault ParseUnits(std::string_view text, int64_t& units) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  if (!text.empty() && text.front() == '$') text.remove_prefix(1);
  std::string plain;
  const NumberFault fault = ReadNumberText(text, plain);
  if (fault != NumberFault::kNone) return fault;
  // The text is a number now: only its size can make it no amount.
  std::optional<int64_t> read = DecimalTextToUnits(plain);
  if (!read) return NumberFault::kTooLarge;
  units = *read;
  return NumberFault::kNone;
}

}  // namespace

std::optional<Currency> Currency::Parse(std::string_view text) {
  int64_t units = 0;
  if (ParseUnits(text, units) != NumberFault::kNone) return std::nullopt;
  return Currency(units);
}

NumberFault Currency::ParseFault(std::string_view text) {
  int64_t units = 0;
  return ParseUnits(text, units);
}

Currency Currency::RoundedToCent() const { return Currency(DivideHalfEven(units_, 100) * 100); }

std::string Currency::ToString() const {
  int64_t abs = units_ < 0 ? -units_ : units_;
  std::string text = std::to_string(abs / 10000);
  int64_t frac = abs % 10000;
  if (frac != 0) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "%04lld", static_cast<long long>(frac));
    std::string f = buf;
    while (f.back() == '0') f.pop_back();
    text += "." + f;
  }
  return units_ < 0 ? "-" + text : text;
}

std::string Currency::ToCentsText() const {
  int64_t abs = units_ < 0 ? -units_ : units_;
  int64_t cents = abs / 100;
  std::string whole = std::to_string(cents / 100);
  std::string grouped;
  int count = 0;
  for (auto it = whole.rbegin(); it != whole.rend(); ++it) {
    if (count > 0 && count % 3 == 0) grouped.insert(grouped.begin(), ',');
    grouped.insert(grouped.begin(), *it);
    ++count;
  }
  char buf[8];
  std::snprintf(buf, sizeof buf, ".%02lld", static_cast<long long>(cents % 100));
  return (units_ < 0 ? "-" : "") + grouped + buf;
}

}  // namespace lotwise
