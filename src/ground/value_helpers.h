#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ground/date.h"
#include "ground/field_sizes.h"

namespace lotwise {

class UiPort;

// Returns the sort name of a full name: the last word, ", ", then the rest
// ("John Q Public" -> "Public, John Q"); a name without a blank unchanged.
std::string CalcSortName(std::string_view full_name);

// Returns true iff `text` is a date, storing it in `out`. Otherwise stores
// the empty date, tells the user (naming the field by `label`) and returns
// false.
bool DateValid(UiPort& ui, std::string_view text, std::string_view label, Date& out);

// Returns the text with every "&" doubled, for captions that read "&" as an
// access-key mark.
std::string FixAmpersand(std::string_view text);

// Returns true iff the code is an ASCII digit or letter.
bool IsAlphaNum(int16_t code);

// Returns what follows the last "\" or "/" of the path: the whole path when
// it has none, empty text when it ends in one.
std::string GetFileNameFromPath(std::string_view path);

// The program's only rounding of money and share amounts: adds half a unit
// of the last kept digit and cuts the rest off on the value's decimal text.
// Positive halves round up, negative values move toward zero
// (RoundDouble(-2.345, 2) == -2.34). A negative `digits` gives 0.
// Throws LwError 6 (overflow) when 10^digits exceeds a 32-bit integer.
double RoundDouble(double value, int16_t digits);

// The number of characters (UTF-8 code points) of `text`.
size_t CharacterCount(std::string_view text);

// The most characters a security symbol may have: the key it is stored
// under holds no more, and a key is never cut.
inline constexpr int kMaxSymbolCharacters = DefinedTextSize("Securities", "Sec Symbol");

// Returns true iff `symbol` has at most kMaxSymbolCharacters characters;
// otherwise tells the user the limit and returns false.
bool SymbolLengthValid(UiPort& ui, std::string_view symbol);

// The most decimals a number of shares may have: the book keeps no more.
inline constexpr int kShareDecimals = 5;

// A number of shares as the book keeps them: RoundDouble to kShareDecimals.
inline double RoundShares(double shares) { return RoundDouble(shares, kShareDecimals); }

// Returns the number of decimals of `value` as its 15-significant-digit
// decimal text shows them, so that a double read from "0.33333" has 5
// whatever its binary noise (1e-5 -> 5, 100 -> 0, 0.333333 -> 6).
int DecimalPlaces(double value);

// Returns true iff `shares` has at most kShareDecimals decimals; otherwise
// tells the user, naming the field by `label` ("Number of Shares"), and
// returns false.
bool ShareDecimalsValid(UiPort& ui, double shares, std::string_view label);

}  // namespace lotwise
