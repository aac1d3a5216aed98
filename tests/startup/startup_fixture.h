#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "ground/ini_file.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

// The start-up tests read and write the INI file and the settings store as
// text, and name files under the test's own root.
class StartupTest : public AppTest {
 protected:
  static void WriteText(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
  }
  static std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  IniFile Store() const { return IniFile(app_->settings_store_path); }
  // Replaces every "@" with the test's root folder.
  std::string Rooted(const std::string& text) const {
    std::string result;
    for (char c : text) result += c == '@' ? root_ : std::string(1, c);
    return result;
  }
  std::string DefaultSsf() const { return program_folder_ + "/DATA/CENTRAL/"; }
  std::string DefaultClient() const { return program_folder_ + "/DATA/CLIENT/"; }
};

}  // namespace lotwise::testing
