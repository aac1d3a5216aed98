#include "ground/number_text.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "ground/text.h"

namespace lotwise {

std::string NumberText(double value) {
  if (value == 0) return "0";  // also folds -0
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.15G", value);
  return buf;
}

std::string PlainNumberText(double value) {
  if (value == 0 || !std::isfinite(value)) return NumberText(value);
  const int magnitude = static_cast<int>(std::floor(std::log10(std::fabs(value))));
  const int decimals = std::clamp(14 - magnitude, 0, 30);
  char buf[96];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, value);
  std::string text = buf;
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text;
}

namespace {

bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// The digits of `text` from `at` on; moves `at` past them.
size_t SkipDigits(std::string_view text, size_t& at) {
  const size_t start = at;
  while (at < text.size() && IsDigit(text[at])) ++at;
  return at - start;
}

// The digits of the whole part of a plain number, leading zeros aside.
size_t WholeDigits(std::string_view plain) {
  size_t at = (!plain.empty() && (plain[0] == '-' || plain[0] == '+')) ? 1 : 0;
  while (at < plain.size() && plain[at] == '0') ++at;
  return SkipDigits(plain, at);
}

NumberFault ReadNumberField(std::string_view text, std::string& plain) {
  const NumberFault fault = ReadNumberText(text, plain);
  if (fault != NumberFault::kNone) return fault;
  return WholeDigits(plain) > static_cast<size_t>(kMaxWholeDigits) ? NumberFault::kTooLarge
                                                                   : NumberFault::kNone;
}

}  // namespace

NumberFault ReadNumberText(std::string_view text, std::string& plain) {
  text = Trim(text);
  plain.clear();
  size_t at = 0;
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) plain += text[at++];
  const size_t whole_start = at;
  size_t whole = SkipDigits(text, at);
  plain += text.substr(whole_start, whole);
  if (at < text.size() && text[at] == ',') {
    // A separated number: a first group of one to three digits, then
    // groups of three. A separator after a leading 0 marks a decimal comma.
    if (whole == 0 || whole > 3 || text[whole_start] == '0') return NumberFault::kNotANumber;
    while (at < text.size() && text[at] == ',') {
      ++at;
      const size_t group_start = at;
      if (SkipDigits(text, at) != 3) return NumberFault::kNotANumber;
      plain += text.substr(group_start, 3);
      whole += 3;
    }
  }
  size_t fraction = 0;
  if (at < text.size() && text[at] == '.') {
    plain += text[at++];
    const size_t fraction_start = at;
    fraction = SkipDigits(text, at);
    plain += text.substr(fraction_start, fraction);
  }
  if (at != text.size() || whole + fraction == 0) {
    plain.clear();
    return NumberFault::kNotANumber;
  }
  return NumberFault::kNone;
}

NumberFault ParseNumberFault(std::string_view text) {
  std::string plain;
  return ReadNumberField(text, plain);
}

std::optional<double> ParseNumber(std::string_view text) {
  std::string plain;
  if (ReadNumberField(text, plain) != NumberFault::kNone) return std::nullopt;
  return std::strtod(plain.c_str(), nullptr);
}

}  // namespace lotwise
