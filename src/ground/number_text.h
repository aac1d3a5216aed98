#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lotwise {

// The default text form of a number: the shortest decimal text of at most
// 15 significant digits, "." as decimal point, no trailing zeros
// (2 -> "2", 0.1 -> "0.1", 1.5 -> "1.5", 1e20 -> "1E+20").
std::string NumberText(double value);

// The number in fixed notation as a user types it: at most 15 significant
// digits, no exponent, no trailing zeros (1e-5 -> "0.00001", 2 -> "2").
std::string PlainNumberText(double value);

// Why a typed number was refused.
enum class NumberFault { kNone, kNotANumber, kTooLarge };

// The most digits before the decimal point of a number field (shares,
// ratios): with the five decimals the book keeps, that is the 15
// significant digits a double holds exactly.
inline constexpr int kMaxWholeDigits = 10;

// Reads a number as a user types it: blanks around it, an optional sign,
// digits, an optional "." and fraction. A "," is a thousands separator
// only: between groups of exactly three digits before the decimal point,
// after a first group of one to three digits that does not start with 0
// ("1,234.50", "12,345,678"); "0,5", "1,2" and "1234,567" are no numbers.
// On success stores the number without blanks and separators ("-1234.50")
// in `plain`.
NumberFault ReadNumberText(std::string_view text, std::string& plain);

// The number typed, or nullopt when ReadNumberText refuses the text or its
// whole part has more than kMaxWholeDigits digits.
std::optional<double> ParseNumber(std::string_view text);
// Why ParseNumber refuses `text` (kNone when it does not).
NumberFault ParseNumberFault(std::string_view text);

}  // namespace lotwise
