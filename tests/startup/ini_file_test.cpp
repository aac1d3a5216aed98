#include "app/ini_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/lw_error.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;

class IniFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    for (char& c : test) c = c == '/' ? '_' : c;
    folder_ =
        fs::temp_directory_path() / ("lotwise-ini-" + std::to_string(::getpid()) + "-" + test);
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    ini_.SetPath((folder_ / "lotwise.INI").string());
  }
  void TearDown() override { fs::remove_all(folder_); }

  void Put(const std::string& text) { std::ofstream(ini_.path(), std::ios::binary) << text; }
  std::string Get() {
    std::ifstream in(ini_.path(), std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }

  fs::path folder_;
  IniFile ini_;
};

// Absent file, section or key read as the default; a present key never
// does, whatever its text.
TEST_F(IniFileTest, Read_DefaultOnlyWhenAbsent) {
  EXPECT_EQ(ini_.ReadInt("LW Options", "ToolBar", -1), -1);
  EXPECT_EQ(ini_.ReadText("Prefs", "Basis YE", "x"), "x");
  Put("[LW Options]\nToolBar = 0\nToolTips=abc\nHelpBar=\n[Prefs]\nExp Path=\n");
  EXPECT_EQ(ini_.ReadInt("LW Options", "ToolBar", -1), 0);
  EXPECT_EQ(ini_.ReadInt("lw options", "TOOLBAR", -1), 0) << "names match without case";
  EXPECT_EQ(ini_.ReadInt("LW Options", "ToolTips", -1), 0);
  EXPECT_EQ(ini_.ReadInt("LW Options", "HelpBar", -1), 0);
  EXPECT_EQ(ini_.ReadInt("LW Options", "Recalc Shares", -1), -1);
  EXPECT_EQ(ini_.ReadInt("Prefs", "ToolBar", 7), 7) << "a key of another section";
  EXPECT_EQ(ini_.ReadText("Prefs", "Exp Path", "/default"), "");
}

// What is written reads back exactly, blanks at the ends included.
struct RoundTrip {
  const char* name;
  const char* key;
  const char* value;
  const char* line;  // how the file holds it
};

class IniRoundTrip : public IniFileTest, public ::testing::WithParamInterface<RoundTrip> {};

TEST_P(IniRoundTrip, WritesAndReadsBackExactly) {
  const RoundTrip& c = GetParam();
  ini_.WriteText("Prefs", c.key, c.value);
  EXPECT_EQ(ini_.ReadText("Prefs", c.key, "absent"), c.value);
  EXPECT_EQ(Get(), std::string("[Prefs]\n") + c.line + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Values, IniRoundTrip,
    ::testing::Values(
        RoundTrip{"CheckedState", "Remove 0 Sec", "-1", "Remove 0 Sec=-1"},
        RoundTrip{"EmptyDateMask", "Basis YE", "  /  /    ", "Basis YE=\"  /  /    \""},
        RoundTrip{"Date", "Xact Start", "01/02/2025", "Xact Start=01/02/2025"},
        RoundTrip{"Empty", "Exp Path", "", "Exp Path="},
        RoundTrip{"FolderWithBlanks", "Exp Path", "/home/a b/", "Exp Path=/home/a b/"},
        RoundTrip{"QuotedText", "Exp Path", "\"x\"", "Exp Path=\"\"x\"\""}),
    [](const auto& info) { return std::string(info.param.name); });

// A write changes one line or adds one; every other line keeps its text and
// place, the file's line ends are kept, and no scratch copy stays behind.
TEST_F(IniFileTest, Write_KeepsOtherLines) {
  Put("; settings\r\n[LW Options]\r\nToolBar = 0\r\nToolTips=-1\r\n\r\n[Prefs]\r\nSec order=1\r\n");
  ini_.WriteText("LW Options", "toolbar", "-1");
  ini_.WriteText("LW Options", "Recalc Shares", "0");
  ini_.WriteText("File Options", "SSF Path", "/data/");
  EXPECT_EQ(Get(),
            "; settings\r\n[LW Options]\r\nToolBar =-1\r\nToolTips=-1\r\nRecalc Shares=0\r\n\r\n"
            "[Prefs]\r\nSec order=1\r\n\r\n[File Options]\r\nSSF Path=/data/\r\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

// The settings store lives in folders that may not exist yet.
TEST_F(IniFileTest, Write_CreatesFolders) {
  IniFile store((folder_ / "config" / "Tarnwick" / "Lw.ini").string());
  store.WriteText("File Options", "SSF Path", "/srv/lw/");
  EXPECT_EQ(store.ReadText("File Options", "SSF Path", ""), "/srv/lw/");
}

TEST_F(IniFileTest, Write_LineBreakRefused) {
  EXPECT_THROW(ini_.WriteText("Prefs", "Exp Path", "a\nb"), LwError);
  EXPECT_FALSE(fs::exists(ini_.path()));
}

}  // namespace
}  // namespace lotwise
