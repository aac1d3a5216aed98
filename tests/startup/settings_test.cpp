#include <gtest/gtest.h>

#include <filesystem>

#include "app/startup.h"
#include "data/application.h"
#include "ground/ini_file.h"
#include "ground/lw_error.h"
#include "startup_fixture.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;

class SettingsTest : public testing::StartupTest {
 protected:
  // The five option marks, then whether the tool bar and the help bar show
  // and Update All, as "1"/"0".
  std::string Options() const {
    const OptionMarks& o = app_->window.options;
    std::string marks;
    for (bool mark :
         {o.show_tool_bar, o.show_tool_tips, o.show_help_bar, o.recalc_shares, o.open_only_port,
          app_->window.tool_bar_visible, app_->window.help_bar_visible, app_->update_all}) {
      marks += mark ? "1" : "0";
    }
    return marks;
  }
};

// With neither an INI file nor a settings store, every option is on, the
// preferences take their defaults, and the data folders lie under the
// program folder's "DATA" folder and are written to the store.
TEST_F(SettingsTest, GetINISettings_NothingStoredGivesDefaults) {
  GetINISettings(*app_, app_->ini_path);
  EXPECT_EQ(Options(), "11111110");
  EXPECT_EQ(app_->prefs.basis_ye, "  /  /    ");
  EXPECT_EQ(app_->prefs.client_order, 1);
  EXPECT_EQ(app_->prefs.exp_path, program_folder_);
  EXPECT_EQ(app_->taxpayer_folder + "|" + app_->central_path,
            DefaultClient() + "|" + DefaultSsf() + "CENTRAL.MDB");
  EXPECT_EQ(ReadText(app_->settings_store_path), "[File Options]\nSSF Path=" + DefaultSsf() +
                                                     "\nTaxpayer Path=" + DefaultClient() + "\n");
  EXPECT_FALSE(fs::exists(app_->ini_path)) << "reading never writes the INI file";
}

// The option keys: a zero bar is hidden through its toggle, the other marks
// follow zero / non-zero.
TEST_F(SettingsTest, GetINISettings_OptionsFromIni) {
  WriteText(app_->ini_path,
            "[LW Options]\nToolBar=0\nToolTips=0\nHelpBar=0\nRecalc Shares=0\nOpenOnlyPort=0\n");
  GetINISettings(*app_, app_->ini_path);
  EXPECT_EQ(Options(), "00000000");
  WriteText(app_->ini_path,
            "[LW Options]\nToolBar=-1\nToolTips=1\nHelpBar=0\nRecalc Shares=0\nOpenOnlyPort=5\n"
            "[LW Update Options]\nUpdate All=-1\n");
  GetINISettings(*app_, app_->ini_path);
  EXPECT_EQ(Options(), "11001101");
}

// The store wins when it holds a folder, else the INI file; the folder is
// given its trailing separator ("\" counts as one) and the store is written
// again, the INI file never.
TEST_F(SettingsTest, SetDBPathsAndNames_StoreThenIniThenDefault) {
  // Both folders under `base`, keys without values for "", no file for nullptr.
  auto folders = [&](const char* base) -> std::string {
    if (!base) return "";
    const std::string b = base, ssf = *base ? b + "central" : "",
                      client = *base ? b + "client" : "";
    return Rooted("[File Options]\nSSF Path=" + ssf + "\nTaxpayer Path=" + client + "\n");
  };
  struct Case {
    const char *label, *ini, *store, *expected;
  };
  const Case cases[] = {{"IniOnly", "@ini/", nullptr, "@ini/"},
                        {"StoreWithoutSeparator", nullptr, "@srv/", "@srv/"},
                        {"StoreWinsOverIni", "@ini/", "@srv/", "@srv/"},
                        {"EmptyStoreFallsBackToIni", "@ini/", "", "@ini/"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    WriteText(app_->ini_path, folders(c.ini));
    WriteText(app_->settings_store_path, folders(c.store));
    SetDBPathsAndNames(*app_, app_->ini_path);
    const std::string ssf = Rooted(c.expected + std::string("central/"));
    const std::string client = Rooted(c.expected + std::string("client/"));
    EXPECT_EQ(app_->ssf_folder + "|" + app_->taxpayer_folder, ssf + "|" + client);
    EXPECT_EQ(ReadText(app_->settings_store_path),
              "[File Options]\nSSF Path=" + ssf + "\nTaxpayer Path=" + client + "\n");
    EXPECT_EQ(ReadText(app_->ini_path), folders(c.ini));
  }
  WriteText(app_->settings_store_path, "[File Options]\nSSF Path=C:\\LW\\DATA\\CENTRAL\\\n");
  SetDBPathsAndNames(*app_, app_->ini_path);
  EXPECT_EQ(app_->ssf_folder, "C:\\LW\\DATA\\CENTRAL\\");
}

// A forced data folder serves both kinds of file for the run and leaves
// the settings store and the INI file alone.
TEST_F(SettingsTest, ForcedDataFolder_TouchesNoSettings) {
  app_->forced_data_folder = root_ + "elsewhere";
  GetINISettings(*app_, app_->ini_path);
  EXPECT_EQ(app_->ssf_folder + "|" + app_->taxpayer_folder,
            root_ + "elsewhere/|" + root_ + "elsewhere/");
  EndProgram(*app_);
  EXPECT_FALSE(fs::exists(app_->settings_store_path) || fs::exists(app_->ini_path));
  EXPECT_EQ(env_->end_calls(), 1);
}

// What EndProgram writes, in its order, with check states as "-1"/"0";
// never "LW Update Options" nor "File Options".
TEST_F(SettingsTest, EndProgram_WritesOptionsAndPrefs) {
  GetINISettings(*app_, app_->ini_path);
  app_->window.options.show_tool_tips = false;
  app_->prefs.remove_0_sec = true;
  app_->prefs.sec_order = 2;
  app_->prefs.xact_end = "12/31/2025";
  EndProgram(*app_);
  EXPECT_EQ(ReadText(app_->ini_path),
            "[LW Options]\nHelpBar=-1\nOpenOnlyPort=-1\nToolBar=-1\nToolTips=0\n"
            "Recalc Shares=-1\n\n[Prefs]\nBasis YE=\"  /  /    \"\nRemove 0 Sec=-1\n"
            "Add Sch D Rpt=0\nClient order=1\nSec order=2\nXact Scope=0\n"
            "Xact Start=\"  /  /    \"\nXact End=12/31/2025\nSch D fye=\"  /  /    \"\n"
            "Exp Path=" +
                program_folder_ + "\n");
}

// An INI file read at start-up and written back at the end is unchanged,
// the keys the program never writes included.
TEST_F(SettingsTest, EndProgram_RoundTripKeepsIniExactly) {
  const std::string ini =
      "[LW Options]\r\nToolBar=0\r\nToolTips=-1\r\nHelpBar=0\r\nRecalc Shares=0\r\n"
      "OpenOnlyPort=-1\r\n\r\n[LW Update Options]\r\nUpdate All=1\r\n\r\n[File Options]\r\n"
      "SSF Path=" +
      root_ + "ini central\r\nTaxpayer Path=" + root_ +
      "ini client\r\n\r\n"
      "[Prefs]\r\nRemove 0 Sec=-1\r\nBasis YE=12/31/2024\r\nAdd Sch D Rpt=0\r\n"
      "Client order=2\r\nSec order=1\r\nXact Scope=3\r\nXact Start=\"  /  /    \"\r\n"
      "Xact End=06/30/2025\r\nSch D fye=\"  /  /    \"\r\nExp Path=/home/tp/exports dir/\r\n";
  WriteText(app_->ini_path, ini);
  GetINISettings(*app_, app_->ini_path);
  EXPECT_EQ(app_->prefs.xact_start, "  /  /    ");
  EXPECT_EQ(app_->prefs.exp_path, "/home/tp/exports dir/");
  EXPECT_EQ(app_->ssf_folder, root_ + "ini central/");
  EndProgram(*app_);
  EXPECT_EQ(ReadText(app_->ini_path), ini);
}

// An INI file alone in a folder of its own.
class IniFileTest : public testing::StartupTest {
 protected:
  void SetUp() override {
    StartupTest::SetUp();
    ini_.SetPath(root_ + "ini/lotwise.INI");
  }
  void Put(const std::string& text) { WriteText(ini_.path(), text); }
  std::string Get() { return ReadText(ini_.path()); }
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

// What is written reads back exactly, blanks at the ends included; a line
// break is refused and writes nothing.
TEST_F(IniFileTest, Write_ReadsBackExactly) {
  struct Case {
    const char *label, *key, *value, *line;  // line: how the file holds it
  };
  const Case cases[] = {
      {"CheckedState", "Remove 0 Sec", "-1", "Remove 0 Sec=-1"},
      {"EmptyDateMask", "Basis YE", "  /  /    ", "Basis YE=\"  /  /    \""},
      {"Date", "Xact Start", "01/02/2025", "Xact Start=01/02/2025"},
      {"Empty", "Exp Path", "", "Exp Path="},
      {"FolderWithBlanks", "Exp Path", "/home/a b/", "Exp Path=/home/a b/"},
      {"QuotedText", "Exp Path", "\"x\"", "Exp Path=\"\"x\"\""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    fs::remove(ini_.path());
    ini_.WriteText("Prefs", c.key, c.value);
    EXPECT_EQ(ini_.ReadText("Prefs", c.key, "absent"), c.value);
    EXPECT_EQ(Get(), std::string("[Prefs]\n") + c.line + "\n");
  }
  fs::remove(ini_.path());
  EXPECT_THROW(ini_.WriteText("Prefs", "Exp Path", "a\nb"), LwError);
  EXPECT_FALSE(fs::exists(ini_.path()));
}

// A write changes one line or adds one; every other line keeps its text and
// place, the file's line ends are kept, and no scratch copy stays behind.
// The folders are made when missing.
TEST_F(IniFileTest, Write_KeepsOtherLines) {
  Put("; settings\r\n[LW Options]\r\nToolBar = 0\r\nToolTips=-1\r\n\r\n[Prefs]\r\nSec order=1\r\n");
  ini_.WriteText("LW Options", "toolbar", "-1");
  ini_.WriteText("LW Options", "Recalc Shares", "0");
  ini_.WriteText("File Options", "SSF Path", "/data/");
  EXPECT_EQ(Get(),
            "; settings\r\n[LW Options]\r\nToolBar =-1\r\nToolTips=-1\r\nRecalc Shares=0\r\n\r\n"
            "[Prefs]\r\nSec order=1\r\n\r\n[File Options]\r\nSSF Path=/data/\r\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(root_ + "ini"), fs::directory_iterator()), 1);

  IniFile store(root_ + "new/deeper/Lw.ini");
  store.WriteText("File Options", "SSF Path", "/srv/lw/");
  EXPECT_EQ(store.ReadText("File Options", "SSF Path", ""), "/srv/lw/");
}

}  // namespace
}  // namespace lotwise
