#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "app/lw_error.h"

namespace lotwise::testing {

// The file `name` in the folder "golden" beside the test source `source`
// (pass __FILE__; a relative one is relative to the build folder, which
// holds the test program's folder).
inline std::string GoldenPath(const char* source, const std::string& name) {
  std::filesystem::path path(source);
  if (path.is_relative()) {
    path = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / path;
  }
  return (path.parent_path() / "golden" / name).lexically_normal().string();
}

inline std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in.is_open()) << path;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Compares a long text with its golden file; with LOTWISE_UPDATE_GOLDEN set
// in the environment, writes the file instead (read the diff before
// committing it).
inline void ExpectGolden(const char* source, const std::string& name, const std::string& actual) {
  const std::string path = GoldenPath(source, name);
  if (std::getenv("LOTWISE_UPDATE_GOLDEN")) {
    std::ofstream(path, std::ios::binary) << actual;
    return;
  }
  EXPECT_EQ(actual, ReadText(path)) << "golden file " << path;
}

// A case file: "=== name" starts a case, "--- key args" a section of it;
// the lines after either belong to it (the case's own lines come first, as
// a section with an empty key). Lines starting with "#" are comments.
struct GoldenSection {
  std::string key, args;
  std::vector<std::string> lines;
};
struct GoldenCase {
  std::string name;
  std::vector<GoldenSection> sections;
  // The lines of the first section `key`, or none.
  std::vector<std::string> Lines(const std::string& key) const {
    for (const GoldenSection& section : sections) {
      if (section.key == key) return section.lines;
    }
    return {};
  }
  // The lines joined by "\n", each ended by it.
  std::string Text(const std::string& key) const {
    std::string text;
    for (const std::string& line : Lines(key)) text += line + "\n";
    return text;
  }
  friend void PrintTo(const GoldenCase& c, std::ostream* os) { *os << c.name; }
};

inline std::vector<GoldenCase> ReadCases(const char* source, const std::string& name) {
  std::vector<GoldenCase> cases;
  std::istringstream in(ReadText(GoldenPath(source, name)));
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("#", 0) == 0) continue;
    if (line.rfind("=== ", 0) == 0) {
      cases.push_back({line.substr(4), {GoldenSection{}}});
    } else if (cases.empty()) {
      continue;
    } else if (line.rfind("--- ", 0) == 0) {
      const size_t space = line.find(' ', 4);
      cases.back().sections.push_back({line.substr(4, space - 4),
                                       space == std::string::npos ? "" : line.substr(space + 1),
                                       {}});
    } else {
      cases.back().sections.back().lines.push_back(line);
    }
  }
  EXPECT_FALSE(cases.empty()) << GoldenPath(source, name);
  return cases;
}

// "number: text" of the error `run` throws, or "no error".
inline std::string ErrorOf(const std::function<void()>& run) {
  try {
    run();
  } catch (const LwError& e) {
    return std::to_string(e.number()) + ": " + e.text();
  }
  return "no error";
}

}  // namespace lotwise::testing
