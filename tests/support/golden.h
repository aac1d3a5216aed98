#pragma once

// Golden files of the tests: long expected texts, case files ("=== name"
// cases of "--- section" lines) read by one loop, and a folder's messages
// (golden/messages.txt) that the scripted UI expects exactly. Setting
// LOTWISE_UPDATE_GOLDEN=1 rewrites the expected texts instead of comparing.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "ground/lw_error.h"
#include "support/scripted_ui.h"

namespace lotwise::testing {

// The file `name` in the folder "golden" beside the test source `source`
// (pass __FILE__; a relative one is relative to the build folder, which
// holds the test program's folder).
inline std::string GoldenPath(const std::string& source, const std::string& name) {
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
inline void ExpectGolden(const std::string& source, const std::string& name,
                         const std::string& actual) {
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
  // The arguments of the first section `key` (its header after the key), or
  // empty text.
  std::string Args(const std::string& key) const {
    for (const GoldenSection& section : sections) {
      if (section.key == key) return section.args;
    }
    return "";
  }
  // The lines joined by "\n", each ended by it.
  std::string Text(const std::string& key) const {
    std::string text;
    for (const std::string& line : Lines(key)) text += line + "\n";
    return text;
  }
  friend void PrintTo(const GoldenCase& c, std::ostream* os) { *os << c.name; }
};

inline std::vector<GoldenCase> ReadCases(const std::string& source, const std::string& name) {
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

// The message `key` of the folder's golden/messages.txt: "=== key", the
// title, the icon and buttons ("critical ok", "question yesno"; "-" when
// not checked), then the text's lines, joined by "\n"; "\r" stands for a
// carriage return and each "{}" (title first) for the next of `values`.
struct Said {
  std::string text, title, look;
};
inline Said ReadSaid(const std::string& source, const std::string& key,
                     const std::vector<std::string>& values = {}) {
  for (const GoldenCase& c : ReadCases(source, "messages.txt")) {
    if (c.name != key) continue;
    std::vector<std::string> lines = c.Lines("");
    Said said{"", lines.at(0), lines.at(1)};
    size_t value = 0;
    for (size_t i = 2; i < lines.size(); ++i) {
      said.text += (i > 2 ? "\n" : "") + lines[i];
    }
    for (size_t at; (at = said.text.find("\\r")) != std::string::npos;)
      said.text.replace(at, 2, "\r");
    for (std::string* part : {&said.title, &said.text}) {
      for (size_t at; (at = part->find("{}")) != std::string::npos;) {
        part->replace(at, 2, values.at(value++));
      }
    }
    return said;
  }
  ADD_FAILURE() << "no message " << key;
  return {};
}

// Expects the message `key` (see ReadSaid) on the scripted UI.
inline void ExpectSaid(ScriptedUi& ui, const std::string& source, const std::string& key,
                       Answer answer = Answer::kOk, const std::vector<std::string>& values = {}) {
  const Said said = ReadSaid(source, key, values);
  if (said.look == "-") {
    ui.Expect(said.text, said.title, answer);
    return;
  }
  const std::string icon = said.look.substr(0, said.look.find(' '));
  const std::string buttons = said.look.substr(said.look.find(' ') + 1);
  const Icon icons[] = {Icon::kCritical, Icon::kQuestion, Icon::kExclamation, Icon::kInformation};
  const Buttons choices[] = {Buttons::kOk, Buttons::kOkCancel, Buttons::kYesNo};
  const char* icon_names[] = {"critical", "question", "exclamation", "information"};
  const char* button_names[] = {"ok", "okcancel", "yesno"};
  size_t i = 0, b = 0;
  while (i < 4 && icon != icon_names[i]) ++i;
  while (b < 3 && buttons != button_names[b]) ++b;
  EXPECT_TRUE(i < 4 && b < 3) << "message " << key << ": " << said.look;
  ui.Expect(said.text, said.title, icons[i % 4], choices[b % 3], answer);
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
