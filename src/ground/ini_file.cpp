// Written here rather than taken from a Debian INI library: inih only reads,
// iniparser folds keys to lower case, and SimpleIni and Boost.PropertyTree
// rewrite the whole file from their own model (respacing it and dropping
// lines they do not understand) and write it in place. What the program
// needs is a line editor that changes one line, keeps every other line as it
// is, and replaces the file only with a finished copy.
#include "ground/ini_file.h"

#include <charconv>
#include <climits>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <sstream>
#include <system_error>
#include <vector>

#if __has_include(<unistd.h>)
#include <fcntl.h>
#include <unistd.h>
#endif

#include "ground/lw_error.h"
#include "ground/paths.h"
#include "ground/text.h"

namespace lotwise {

namespace fs = std::filesystem;

namespace {

bool SameName(std::string_view a, std::string_view b) { return ToUpperAscii(a) == ToUpperAscii(b); }

// The file as lines without their line ends, and the line end it uses.
struct IniLines {
  std::vector<std::string> lines;
  std::string eol = "\n";
};

std::optional<IniLines> ReadLines(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::stringstream buffer;
  buffer << in.rdbuf();
  std::string text = buffer.str();
  IniLines result;
  size_t start = 0;
  bool eol_known = false;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    std::string line =
        text.substr(start, end == std::string::npos ? std::string::npos : end - start);
    bool had_cr = !line.empty() && line.back() == '\r';
    if (had_cr) line.pop_back();
    if (!eol_known && end != std::string::npos) {
      result.eol = had_cr ? "\r\n" : "\n";
      eol_known = true;
    }
    result.lines.push_back(std::move(line));
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return result;
}

// Returns the section name of a "[Section]" line.
std::optional<std::string_view> SectionOf(std::string_view line) {
  std::string_view trimmed = Trim(line);
  if (trimmed.empty() || trimmed.front() != '[') return std::nullopt;
  trimmed.remove_prefix(1);
  size_t close = trimmed.find(']');
  return Trim(trimmed.substr(0, close));
}

struct KeyLine {
  std::string_view key;
  std::string_view raw_value;  // trimmed, quotes still on
};

std::optional<KeyLine> KeyOf(std::string_view line) {
  std::string_view trimmed = Trim(line);
  if (trimmed.empty() || trimmed.front() == ';' || trimmed.front() == '#') return std::nullopt;
  size_t equals = trimmed.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  return KeyLine{Trim(trimmed.substr(0, equals)), Trim(trimmed.substr(equals + 1))};
}

std::string Unquoted(std::string_view value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front()) {
    value = value.substr(1, value.size() - 2);
  }
  return std::string(value);
}

std::string Encoded(std::string_view value) {
  if (value.empty()) return {};
  bool edge_blank = Trim(value).size() != value.size();
  bool looks_quoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
                      value.back() == value.front();
  if (edge_blank || looks_quoted) return "\"" + std::string(value) + "\"";
  return std::string(value);
}

// Where a key lives in the lines: the index of its line, or of the last
// line of its section, or nothing when the section is absent.
struct Location {
  std::optional<size_t> key_line;
  std::optional<size_t> section_end;  // the section's last non-blank line
};

Location Find(const std::vector<std::string>& lines, std::string_view section,
              std::string_view key) {
  Location found;
  bool inside = false;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (auto name = SectionOf(lines[i])) {
      // The first section of a name is the one that counts.
      if (found.section_end) break;
      inside = SameName(*name, section);
      if (inside) found.section_end = i;
      continue;
    }
    if (!inside) continue;
    if (!Trim(lines[i]).empty()) found.section_end = i;
    if (auto entry = KeyOf(lines[i]); entry && SameName(entry->key, key)) {
      found.key_line = i;
      return found;
    }
  }
  return found;
}

std::optional<std::string> RawValue(const std::string& path, std::string_view section,
                                    std::string_view key) {
  auto file = ReadLines(path);
  if (!file) return std::nullopt;
  Location at = Find(file->lines, section, key);
  if (!at.key_line) return std::nullopt;
  return std::string(KeyOf(file->lines[*at.key_line])->raw_value);
}

void FlushToDisk([[maybe_unused]] const std::string& path) {
#if __has_include(<unistd.h>)
  int fd = ::open(path.c_str(), O_RDONLY);
  if (fd >= 0) {
    ::fsync(fd);
    ::close(fd);
  }
#endif
}

// Writes `text` beside `path` and renames it over `path`.
void ReplaceFile(const std::string& path, const std::string& text) {
  static std::mt19937_64 random(std::random_device{}());
  std::string scratch = path + ".~" + std::to_string(random() % 1000000000ULL);
  {
    std::ofstream out(scratch, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out) {
      std::error_code ignored;
      fs::remove(scratch, ignored);
      throw LwError(err::kPathFileAccess, "Path/File access error: " + path);
    }
  }
  FlushToDisk(scratch);
  std::error_code ec;
  fs::rename(scratch, path, ec);
  if (ec) {
    std::error_code ignored;
    fs::remove(scratch, ignored);
    throw fs::filesystem_error("cannot replace settings file", path, ec);
  }
}

}  // namespace

int IniFile::ReadInt(std::string_view section, std::string_view key, int default_value) const {
  auto raw = RawValue(path_, section, key);
  if (!raw) return default_value;
  std::string value = Unquoted(*raw);
  std::string_view digits = Trim(value);
  if (!digits.empty() && digits.front() == '+') digits.remove_prefix(1);
  long long number = 0;
  auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  (void)end;
  if (ec == std::errc::result_out_of_range) {
    return digits.front() == '-' ? INT_MIN : INT_MAX;
  }
  if (ec != std::errc()) return 0;
  if (number < INT_MIN) return INT_MIN;
  if (number > INT_MAX) return INT_MAX;
  return static_cast<int>(number);
}

std::string IniFile::ReadText(std::string_view section, std::string_view key,
                              std::string_view default_value) const {
  auto raw = RawValue(path_, section, key);
  if (!raw) return std::string(default_value);
  return Unquoted(*raw);
}

void IniFile::WriteText(std::string_view section, std::string_view key,
                        std::string_view value) const {
  if (value.find_first_of("\r\n") != std::string_view::npos) {
    throw LwError(err::kUnexpected,
                  "A setting cannot hold a line break: " + std::string(key) + " in " + path_);
  }
  fs::path parent = fs::path(path_).parent_path();
  if (!parent.empty()) fs::create_directories(parent);

  IniLines file = ReadLines(path_).value_or(IniLines{});
  Location at = Find(file.lines, section, key);
  std::string encoded = Encoded(value);
  if (at.key_line) {
    // Keep the key as the file spells it and anything before it on the line.
    std::string& line = file.lines[*at.key_line];
    line = line.substr(0, line.find('=') + 1) + encoded;
  } else if (at.section_end) {
    file.lines.insert(file.lines.begin() + static_cast<std::ptrdiff_t>(*at.section_end + 1),
                      std::string(key) + "=" + encoded);
  } else {
    if (!file.lines.empty() && !Trim(file.lines.back()).empty()) file.lines.emplace_back();
    file.lines.push_back("[" + std::string(section) + "]");
    file.lines.push_back(std::string(key) + "=" + encoded);
  }

  std::string text;
  for (const std::string& line : file.lines) text += line + file.eol;
  ReplaceFile(path_, text);
}

}  // namespace lotwise
