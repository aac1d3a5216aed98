#include "app/number_text.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace lotwise {

std::string NumberText(double value) {
  if (value == 0) return "0";  // also folds -0
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.15G", value);
  return buf;
}

std::optional<double> ParseNumber(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  std::string clean;
  bool digits = false;
  bool point = false;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if ((c == '-' || c == '+') && i == 0) {
      clean += c;
    } else if (std::isdigit(static_cast<unsigned char>(c))) {
      clean += c;
      digits = true;
    } else if (c == ',' && !point && digits) {
      continue;
    } else if (c == '.' && !point) {
      clean += c;
      point = true;
    } else {
      return std::nullopt;
    }
  }
  if (!digits) return std::nullopt;
  return std::strtod(clean.c_str(), nullptr);
}

}  // namespace lotwise
