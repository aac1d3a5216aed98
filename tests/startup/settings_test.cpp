#include <gtest/gtest.h>

#include <filesystem>

#include "app/application.h"
#include "app/startup.h"
#include "startup_fixture.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;
using testing::StartupTest;

class SettingsTest : public StartupTest {};

// With neither an INI file nor a settings store, every option is on, the
// preferences take their defaults, and the data folders lie under the
// program folder's "DATA" folder and are written to the store.
TEST_F(SettingsTest, GetINISettings_NothingStoredGivesDefaults) {
  GetINISettings(*app_, app_->ini_path);
  const OptionMarks& o = app_->window.options;
  EXPECT_TRUE(o.show_tool_bar && o.show_tool_tips && o.show_help_bar && o.recalc_shares &&
              o.open_only_port);
  EXPECT_TRUE(app_->window.tool_bar_visible && app_->window.help_bar_visible);
  EXPECT_FALSE(app_->update_all);
  EXPECT_EQ(app_->prefs.basis_ye, "  /  /    ");
  EXPECT_EQ(app_->prefs.client_order, 1);
  EXPECT_EQ(app_->prefs.exp_path, program_folder_);
  EXPECT_EQ(app_->ssf_folder, DefaultSsf());
  EXPECT_EQ(app_->taxpayer_folder, DefaultClient());
  EXPECT_EQ(app_->central_path, DefaultSsf() + "CENTRAL.MDB");
  EXPECT_EQ(ReadText(app_->settings_store_path), "[File Options]\nSSF Path=" + DefaultSsf() +
                                                     "\nTaxpayer Path=" + DefaultClient() + "\n");
  EXPECT_FALSE(fs::exists(app_->ini_path)) << "reading never writes the INI file";
}

// The store wins when it holds a folder, else the INI file; the folder is
// given its trailing separator and the store is written again.
struct FolderCase {
  const char* name;
  const char* ini;    // both INI folders, nullptr: absent
  const char* store;  // both store folders, nullptr: absent
  const char* expected;
};

class SettleFolders : public SettingsTest, public ::testing::WithParamInterface<FolderCase> {};

TEST_P(SettleFolders, StoreThenIniThenDefault) {
  const FolderCase& c = GetParam();
  if (c.ini) {
    WriteText(app_->ini_path, Rooted(std::string("[File Options]\nSSF Path=") + c.ini +
                                     "central\nTaxpayer Path=" + c.ini + "client\n"));
  }
  if (c.store) {
    std::string store = c.store;
    std::string client = store.empty() ? "" : store + "client";
    std::string ssf = store.empty() ? "" : store + "central";
    WriteText(app_->settings_store_path,
              Rooted("[File Options]\nTaxpayer Path=" + client + "\nSSF Path=" + ssf + "\n"));
  }
  std::string ini_before = ReadText(app_->ini_path);
  SetDBPathsAndNames(*app_, app_->ini_path);
  std::string ssf = Rooted(std::string(c.expected) + "central/");
  std::string client = Rooted(std::string(c.expected) + "client/");
  EXPECT_EQ(app_->ssf_folder, ssf);
  EXPECT_EQ(app_->taxpayer_folder, client);
  EXPECT_EQ(Store().ReadText("File Options", "SSF Path", "absent"), ssf);
  EXPECT_EQ(Store().ReadText("File Options", "Taxpayer Path", "absent"), client);
  EXPECT_EQ(ReadText(app_->ini_path), ini_before) << "the INI file's folders are never written";
}

INSTANTIATE_TEST_SUITE_P(
    Table, SettleFolders,
    ::testing::Values(FolderCase{"IniOnly", "@ini/", nullptr, "@ini/"},
                      FolderCase{"StoreWithoutSeparator", nullptr, "@srv/", "@srv/"},
                      FolderCase{"StoreWinsOverIni", "@ini/", "@srv/", "@srv/"},
                      FolderCase{"EmptyStoreFallsBackToIni", "@ini/", "", "@ini/"}),
    [](const auto& info) { return std::string(info.param.name); });

// A folder ending in "\" already ends in a separator.
TEST_F(SettingsTest, SetDBPathsAndNames_BackslashCountsAsSeparator) {
  WriteText(app_->settings_store_path, "[File Options]\nSSF Path=C:\\LW\\DATA\\CENTRAL\\\n");
  SetDBPathsAndNames(*app_, app_->ini_path);
  EXPECT_EQ(app_->ssf_folder, "C:\\LW\\DATA\\CENTRAL\\");
}

// A forced data folder serves both kinds of file for the run and leaves
// the settings store and the INI file alone.
TEST_F(SettingsTest, ForcedDataFolder_TouchesNoSettings) {
  app_->forced_data_folder = root_ + "elsewhere";
  GetINISettings(*app_, app_->ini_path);
  EXPECT_EQ(app_->ssf_folder, root_ + "elsewhere/");
  EXPECT_EQ(app_->taxpayer_folder, root_ + "elsewhere/");
  EndProgram(*app_);
  EXPECT_FALSE(fs::exists(app_->settings_store_path));
  EXPECT_FALSE(fs::exists(app_->ini_path));
  EXPECT_EQ(env_->end_calls(), 1);
}

// The option keys: a zero bar is hidden through its toggle, the other
// marks follow zero / non-zero.
struct OptionsCase {
  const char* name;
  const char* ini;
  OptionMarks marks;
  bool update_all;
};

class OptionsFromIni : public SettingsTest, public ::testing::WithParamInterface<OptionsCase> {};

TEST_P(OptionsFromIni, AppliedToMarksAndBars) {
  const OptionsCase& c = GetParam();
  WriteText(app_->ini_path, c.ini);
  GetINISettings(*app_, app_->ini_path);
  const OptionMarks& o = app_->window.options;
  EXPECT_EQ(o.show_tool_bar, c.marks.show_tool_bar);
  EXPECT_EQ(o.show_tool_tips, c.marks.show_tool_tips);
  EXPECT_EQ(o.show_help_bar, c.marks.show_help_bar);
  EXPECT_EQ(o.recalc_shares, c.marks.recalc_shares);
  EXPECT_EQ(o.open_only_port, c.marks.open_only_port);
  EXPECT_EQ(app_->window.tool_bar_visible, c.marks.show_tool_bar);
  EXPECT_EQ(app_->window.help_bar_visible, c.marks.show_help_bar);
  EXPECT_EQ(app_->update_all, c.update_all);
}

INSTANTIATE_TEST_SUITE_P(
    Table, OptionsFromIni,
    ::testing::Values(
        OptionsCase{"AllOff",
                    "[LW Options]\nToolBar=0\nToolTips=0\nHelpBar=0\nRecalc Shares=0\n"
                    "OpenOnlyPort=0\n",
                    {false, false, false, false, false},
                    false},
        OptionsCase{"Mixed",
                    "[LW Options]\nToolBar=-1\nToolTips=1\nHelpBar=0\nRecalc Shares=0\n"
                    "OpenOnlyPort=5\n[LW Update Options]\nUpdate All=-1\n",
                    {true, true, false, false, true},
                    true}),
    [](const auto& info) { return std::string(info.param.name); });

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

}  // namespace
}  // namespace lotwise
