#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lotwise {

// `text` without the blanks (spaces and tabs) at both ends / at its end.
// Blanks around a typed value are never meant: " IBM" would be a second
// symbol that looks like the first.
std::string_view Trim(std::string_view text);
std::string_view TrimEnd(std::string_view text);

// Symbols are keys without regard to (ASCII) case in every file.
bool SameSymbol(std::string_view a, std::string_view b);

// `text` cut to at most `size` bytes without splitting a UTF-8 character.
std::string TruncateUtf8(const std::string& text, size_t size);

}  // namespace lotwise
