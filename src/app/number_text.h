#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lotwise {

// The default text form of a number: the shortest decimal text of at most
// 15 significant digits, "." as decimal point, no trailing zeros
// (2 -> "2", 0.1 -> "0.1", 1.5 -> "1.5", 1e20 -> "1E+20").
std::string NumberText(double value);

// Parses a number as a user types it: optional sign, digits with optional
// "," thousands separators, optional "." fraction. Nullopt when it is not one.
std::optional<double> ParseNumber(std::string_view text);

}  // namespace lotwise
