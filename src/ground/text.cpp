#include "ground/text.h"

#include <algorithm>
#include <cctype>

namespace lotwise {

namespace {
constexpr std::string_view kBlanks = " \t";
}  // namespace

std::string_view Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return TrimEnd(text.substr(first));
}

std::string_view TrimEnd(std::string_view text) {
  const size_t last = text.find_last_not_of(kBlanks);
  return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

std::string TruncateUtf8(const std::string& text, size_t size) {
  if (text.size() <= size) return text;
  size_t cut = size;
  while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
  return text.substr(0, cut);
}

bool SameSymbol(std::string_view a, std::string_view b) {
  return std::ranges::equal(
      a, b, [](unsigned char x, unsigned char y) { return std::toupper(x) == std::toupper(y); });
}

}  // namespace lotwise
