#include "ground/paths.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

namespace lotwise {

std::string WithTrailingSeparator(std::string_view folder) {
  std::string result(folder);
  if (result.empty() || (result.back() != '/' && result.back() != '\\')) result += kSeparator;
  return result;
}

std::string JoinPath(std::string_view folder, std::string_view name) {
  if (folder.empty()) return std::string(name);
  return WithTrailingSeparator(folder) + std::string(name);
}

std::string ToUpperAscii(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return result;
}

bool FileExists(const std::string& path) {
  std::error_code ec;
  return std::filesystem::is_regular_file(path, ec);
}

namespace {

bool Matches(std::string_view pattern, std::string_view name) {
  if (pattern.empty()) return name.empty();
  if (pattern.front() == '*') {
    for (size_t i = 0; i <= name.size(); ++i) {
      if (Matches(pattern.substr(1), name.substr(i))) return true;
    }
    return false;
  }
  if (name.empty()) return false;
  bool same = pattern.front() == '?' || std::toupper(static_cast<unsigned char>(pattern.front())) ==
                                            std::toupper(static_cast<unsigned char>(name.front()));
  return same && Matches(pattern.substr(1), name.substr(1));
}

}  // namespace

std::vector<std::string> ListFiles(const std::string& folder, std::string_view pattern) {
  std::vector<std::string> names;
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ec)) {
    std::error_code type_ec;
    if (!entry.is_regular_file(type_ec)) continue;
    std::string name = entry.path().filename().string();
    if (Matches(pattern, name)) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace lotwise
