#pragma once

#include <string_view>

namespace lotwise {

// `text` without the blanks (spaces and tabs) at both ends / at its end.
// Blanks around a typed value are never meant: " IBM" would be a second
// symbol that looks like the first.
std::string_view Trim(std::string_view text);
std::string_view TrimEnd(std::string_view text);

}  // namespace lotwise
