#pragma once

#include <string>
#include <string_view>

namespace lotwise {

// One plain INI file: "[Section]" lines and "key=value" lines beneath them.
// Sections and keys match without regard to ASCII case, and keys may hold
// blanks ("Recalc Shares"). A value is read trimmed, with one pair of
// enclosing quotes removed; a value whose blanks at either end matter is
// written enclosed in double quotes, so that it reads back exactly. Every
// call reads the file anew, so that another copy of the program sees the
// latest values. The per-user settings store is a file of the same kind.
class IniFile {
 public:
  IniFile() = default;
  explicit IniFile(std::string path) : path_(std::move(path)) {}

  void SetPath(std::string path) { path_ = std::move(path); }
  const std::string& path() const { return path_; }

  // Returns the integer that the key's value starts with (0 when it starts
  // with no number), or `default_value` iff the file, the section or the key
  // is absent.
  int ReadInt(std::string_view section, std::string_view key, int default_value) const;

  // Returns the key's value, or `default_value` iff the file, the section or
  // the key is absent.
  std::string ReadText(std::string_view section, std::string_view key,
                       std::string_view default_value) const;

  // Sets the key's value, creating the file, its folders, the section and
  // the key as needed; every other line keeps its text and its place. The
  // file is replaced whole by a finished copy, so that a failure never
  // leaves it half written. Throws LwError or a filesystem error on failure;
  // a value holding a line break is refused.
  void WriteText(std::string_view section, std::string_view key, std::string_view value) const;

 private:
  std::string path_;
};

}  // namespace lotwise
