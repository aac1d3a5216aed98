#include "ground/value_helpers.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "ground/lw_error.h"
#include "ground/number_text.h"
#include "ground/ui_port.h"

namespace lotwise {

std::string CalcSortName(std::string_view full_name) {
  size_t blank = full_name.rfind(' ');
  if (blank == std::string_view::npos) return std::string(full_name);
  return std::string(full_name.substr(blank + 1)) + ", " + std::string(full_name.substr(0, blank));
}

bool DateValid(UiPort& ui, std::string_view text, std::string_view label, Date& out) {
  if (auto date = Date::Parse(text)) {
    out = *date;
    return true;
  }
  out = Date();
  std::string message = "The " + std::string(label) + " entered as " + std::string(text) +
                        " is not valid.  Please re-enter the " + std::string(label) +
                        ". If you are cancelling, click OK, and then click Cancel again.";
  ui.MessageBox(message, "Invalid Date", Icon::kExclamation, Buttons::kOk);
  return false;
}

std::string FixAmpersand(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (char c : text) {
    result += c;
    if (c == '&') result += '&';
  }
  return result;
}

bool IsAlphaNum(int16_t code) {
  return (code >= 48 && code <= 57) || (code >= 65 && code <= 90) || (code >= 97 && code <= 122);
}

std::string GetFileNameFromPath(std::string_view path) {
  size_t cut = path.find_last_of("\\/");
  if (cut == std::string_view::npos) return std::string(path);
  return std::string(path.substr(cut + 1));
}

double RoundDouble(double value, int16_t digits) {
  double power = std::pow(10.0, digits);
  if (power > 2147483647.0) throw LwError(err::kOverflow, "Overflow");
  // The factor is an integer: a negative number of digits makes it 0.
  auto factor = static_cast<int32_t>(std::nearbyint(power));
  if (factor == 0) return 0;
  double x = (value + 0.5 / factor) * factor;
  // Cut the fraction off the 15-significant-digit decimal text of x. In
  // that text form values under 1E-4 in size show an exponent; their cut is 0.
  // Values of 1E15 and more have no fraction digits left to cut.
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.15G", x);
  std::string text = buf;
  size_t exponent = text.find('E');
  if (exponent != std::string::npos) {
    x = std::strtod(buf, nullptr);
    if (std::fabs(x) < 1) x = 0;
  } else {
    size_t point = text.find('.');
    if (point != std::string::npos) text.resize(point);
    x = (text.empty() || text == "-") ? 0 : std::strtod(text.c_str(), nullptr);
  }
  return x / factor;
}

size_t CharacterCount(std::string_view text) {
  // Every byte but a continuation byte (10xxxxxx) starts a character.
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

bool SymbolLengthValid(UiPort& ui, std::string_view symbol) {
  if (CharacterCount(symbol) <= static_cast<size_t>(kMaxSymbolCharacters)) return true;
  ui.MessageBox("The Symbol " + std::string(symbol) + " is too long. A Symbol can be at most " +
                    std::to_string(kMaxSymbolCharacters) +
                    " characters long. Please enter a shorter Symbol.",
                "Symbol too long", Icon::kExclamation, Buttons::kOk);
  return false;
}

int DecimalPlaces(double value) {
  const std::string text = PlainNumberText(value);
  const size_t point = text.find('.');
  return point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

bool ShareDecimalsValid(UiPort& ui, double shares, std::string_view label) {
  if (DecimalPlaces(shares) <= kShareDecimals) return true;
  const std::string field(label);
  const std::string most = std::to_string(kShareDecimals);
  ui.MessageBox("The " + field + " entered as " + NumberText(shares) + " has more than " + most +
                    " decimal places. Please re-enter the " + field + " with at most " + most +
                    " decimal places.",
                "Too many decimal places", Icon::kExclamation, Buttons::kOk);
  return false;
}

}  // namespace lotwise
