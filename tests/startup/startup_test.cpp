#include "app/startup.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "app/file_location_dialog.h"
#include "app/taxpayer_dialog.h"
#include "data/application.h"
#include "data/central_file.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "ground/ini_file.h"
#include "ground/lw_error.h"
#include "ground/paths.h"
#include "ground/program_ended.h"
#include "support/app_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

namespace fs = std::filesystem;

void WriteText(const std::string& path, const std::string& text) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

// The start-up tests read and write the INI file and the settings store as
// text, and name files under the test's own root.
class StartupTest : public AppTest {
 protected:
  IniFile Store() const { return IniFile(app_->settings_store_path); }
  // Replaces every "@" with the test's root folder.
  std::string Rooted(const std::string& text) const {
    std::string result;
    for (char c : text) result += c == '@' ? root_ : std::string(1, c);
    return result;
  }
  std::string DefaultSsf() const { return program_folder_ + "/DATA/CENTRAL/"; }
  std::string DefaultClient() const { return program_folder_ + "/DATA/CLIENT/"; }
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

// A start against a fresh program folder makes its data folders and the
// central file, counts the start, and leaves the scratch
// report database until EndProgram removes it with its journal. A second
// start meanwhile, in the same second, gets a report database of its own.
TEST_F(StartupTest, Main_FreshProgramFolderStartsAndEnds) {
  ASSERT_NO_THROW(Main(*app_));
  const std::string report = root_ + "tmp/~LW0703.MDB";
  EXPECT_EQ(app_->window.state, kClientClosed);
  EXPECT_EQ(app_->ini_path + "|" + app_->help_path + "|" + app_->central_path + "|" +
                app_->report_db_path,
            program_folder_ + "/lotwise.INI|" + program_folder_ + "/help/index.html|" +
                DefaultSsf() + "CENTRAL.MDB|" + report);
  EXPECT_TRUE(fs::is_directory(DefaultClient()));
  EXPECT_TRUE(FileExists(report));
  EXPECT_EQ(GetUsageCount(*app_), 1);

  Application second(ui_, *env_, program_folder_, "lotwise");
  second.settings_store_path = app_->settings_store_path;
  ASSERT_NO_THROW(Main(second));
  EXPECT_NE(second.report_db_path, report);
  EXPECT_EQ(GetUsageCount(second), 2);
  EndProgram(second);

  WriteText(report + "-journal", "");
  EndProgram(*app_);
  EXPECT_FALSE(fs::exists(report) || fs::exists(report + "-journal"));
  EXPECT_FALSE(app_->central);
  EXPECT_TRUE(FileExists(app_->ini_path));
  EndProgram(*app_);
  EXPECT_EQ(env_->end_calls(), 2) << "one end per program; a second EndProgram does nothing";
}

// The report database name: "~LW", the minute taken once, the second taken
// anew on each pass until a name is free. With every second of the minute
// taken the wait would never end: the program says so and ends instead.
TEST_F(StartupTest, GetUniqueReportName_FirstFreeName) {
  struct Case {
    const char *taken, *expected;  // taken: "" for none
    int minute, second;
  };
  for (const Case& c : {Case{"", "~LW0703.MDB", 7, 3}, Case{"~LW0703.MDB", "~LW0704.MDB", 7, 3},
                        Case{"~LW0759.MDB", "~LW0700.MDB", 7, 59}}) {
    SCOPED_TRACE(c.expected);
    env_->SetNow({2026, 11, 22, 10, c.minute, c.second});
    if (*c.taken) WriteText(root_ + "tmp/" + c.taken, "");
    EXPECT_EQ(GetUniqueReportName(*app_), root_ + "tmp/" + c.expected);
  }
  env_->SetNow({2026, 11, 22, 10, 7, 3});
  for (int s = 0; s < 60; ++s) {
    WriteText(root_ + "tmp/~LW07" + (s < 10 ? "0" : "") + std::to_string(s) + ".MDB", "");
  }
  std::string text = "Path/File access error: every name " + root_ + "tmp/~LW07??.MDB is taken";
  ExpectSaid(ui_, __FILE__, "names taken", Answer::kOk,
             {ErrorHeader(75, text, "GetUniqueReportName")});
  EXPECT_THROW(GetUniqueReportName(*app_), ProgramEnded);
}

// A data folder that cannot be used brings the "WARNING" and the
// data-location dialog. Cancelled, the handler's message follows and the
// program ends. OK stores the folders as typed, tells the user and ends at
// once: no handler message, no INI write-back, and the scratch report
// database stays.
struct BrokenFolderCase {
  const char *label, *blocker;  // blocker: a regular file in the way, "" for none
  const char* store;            // the store's SSF Path, "" for none
  const char* failing;          // the path in the error text; "" to designate folders
};

class BrokenDataFolder : public StartupTest,
                         public ::testing::WithParamInterface<BrokenFolderCase> {};

TEST_P(BrokenDataFolder, Main_WarnsOffersLocationsAndEnds) {
  const BrokenFolderCase& c = GetParam();
  const bool designate = !*c.failing;
  if (*c.blocker) WriteText(Rooted(c.blocker), "in the way");
  if (*c.store) {
    WriteText(app_->settings_store_path,
              Rooted(std::string("[File Options]\nSSF Path=") + c.store + "\n"));
  }
  ExpectSaid(ui_, __FILE__, "no data folder");
  ui_.ExpectDialog("dlgFileLoc", [&](DialogForm& form) {
    auto& f = dynamic_cast<FileLocForm&>(form);
    EXPECT_EQ(f.ssf_folder + "|" + f.client_folder, app_->ssf_folder + "|" + DefaultClient());
    if (!designate) return PressCancelFileLoc(f);
    f.ssf_folder = root_ + "new central";
    f.client_folder = root_ + "new client";
    PressOkFileLoc(*app_, f);
  });
  if (designate) {
    ExpectSaid(ui_, __FILE__, "closing down");
  } else {
    ExpectSaid(ui_, __FILE__, "path not found", Answer::kOk,
               {ErrorHeader(76, "Path not found: " + Rooted(c.failing), "Main")});
  }
  EXPECT_THROW(Main(*app_), ProgramEnded);
  EndProgram(*app_);
  EXPECT_EQ(env_->end_calls(), 1);
  EXPECT_EQ(FileExists(app_->ProgramFile("LWERR.LOG")), !designate);
  EXPECT_EQ(FileExists(app_->ini_path), !designate) << "EndProgram ran";
  EXPECT_EQ(FileExists(app_->report_db_path), designate);
  if (designate) {
    EXPECT_EQ(Store().ReadText("File Options", "SSF Path", "") + "|" +
                  Store().ReadText("File Options", "Taxpayer Path", ""),
              root_ + "new central|" + root_ + "new client");
  }
}

const BrokenFolderCase kBrokenFolders[] = {
    {"SsfFolderIsAFile", "@blocked", "@blocked/central", "@blocked/central/CENTRAL.MDB"},
    {"DesignatedFolderMissing", "", "@gone/central/", "@gone/central/CENTRAL.MDB"},
    {"DefaultFolderCannotBeMade", "@program/DATA", "", "@program/DATA/CENTRAL/"},
    {"FoldersDesignated", "", "@gone/", ""}};
INSTANTIATE_TEST_SUITE_P(Table, BrokenDataFolder, ::testing::ValuesIn(kBrokenFolders),
                         [](const auto& info) { return std::string(info.param.label); });

// The folder picker answers the chosen path up to its last separator of
// either kind; a cancelled pick leaves the dialog's box as it was.
TEST_F(StartupTest, PressClientFileLoc_FillsTheBox) {
  for (const auto& [picked, box_after] :
       {std::pair{"C:\\LW\\DATA\\x.mdb", "C:\\LW\\DATA\\"}, std::pair{"", "/old/"}}) {
    ui_.ExpectPick("Designate Folder For Data", picked);
    FileLocForm form;
    form.client_folder = "/old/";
    PressClientFileLoc(*app_, form);
    EXPECT_EQ(form.client_folder, box_after);
  }
}

// An index row without its file and Taxpayer Files without an index row,
// all answered alike. Delete removes the row or the file; Create removes
// the row and opens the new-taxpayer dialog filled from it, or indexes a
// file from its own Client row; Ignore changes nothing. A file that cannot
// say whose it is (no Client table, or no row in it) can only be deleted
// or ignored: its Create button is disabled. Never offered: the central
// file's name in any case, and an indexed file whatever the case of its
// name; "~" scratch files are removed.
struct ChoiceCase {
  const char* label;
  ChkFilesChoice choice;
  std::string index_after;  // "name|sort|code|file;" of every index row, in code order
};

class CheckDBFilesChoice : public StartupTest, public ::testing::WithParamInterface<ChoiceCase> {
 protected:
  std::string IndexRows() {
    Query q = app_->central->Select(R"(SELECT * FROM "Clients" ORDER BY "Client Code")");
    std::string rows;
    while (q.Next()) {
      rows += q.Text("Client Name") + "|" + q.Text("Sort Name") + "|" + q.Text("Client Code") +
              "|" + q.Text("File Name") + ";";
    }
    return rows;
  }
};

const std::string kDoe = "John Doe|John Doe|DOE01|DOE0101.mdb;";

TEST_P(CheckDBFilesChoice, CheckDBFiles_ActsOnEachChoice) {
  const ChkFilesChoice choice = GetParam().choice;
  OpenFreshCentral();
  TaxpayerIndex("JONES1", "Jones & Sons", "Jones & Sons", "JONE01.mdb");
  fs::copy_file(app_->ProgramFile(kCentralTemplateName), app_->taxpayer_folder + "ODD1.mdb");
  fs::copy_file(app_->ProgramFile(kClientTemplateName), app_->taxpayer_folder + "ODD2.mdb");
  WriteTaxpayerFile("SMIT01.mdb", "SMITH1", "John Smith");
  for (const char* name : {"central.mdb", "CENTRAL.MDB", "Central.Mdb", "~LW1234.mdb"}) {
    WriteText(app_->taxpayer_folder + name, "not a taxpayer file");
  }
  WriteTaxpayerFile("doe0101.MDB", "DOE01", "John Doe");
  TaxpayerIndex("DOE01", "John Doe", "John Doe", "DOE0101.mdb");
  auto expect_choice = [&](const char* key, bool create, std::vector<std::string> values = {}) {
    const Said said = ReadSaid(__FILE__, key, values);
    ui_.ExpectChkFiles(said.title, said.text, create, choice);
  };
  expect_choice("file missing", true);
  if (choice == ChkFilesChoice::kCreate) {
    ui_.ExpectDialog("dlgNewModClient", [this](DialogForm& form) {
      auto& f = dynamic_cast<NewModClientForm&>(form);
      EXPECT_EQ(f.caption + "|" + f.client_name + "|" + f.sort_name + "|" + f.client_code,
                "New Taxpayer|Jones & Sons|Jones & Sons|JONES1");
      EXPECT_EQ(IndexRows(), kDoe) << "the row goes before the dialog shows";
      EXPECT_EQ(app_->chk_files_result, static_cast<int>(ChkFilesChoice::kCreate));
    });
  }
  for (const char* odd : {"ODD1.mdb", "ODD2.mdb"}) {
    expect_choice("record unreadable", false, {odd});
  }
  expect_choice("record missing", true);
  CheckDBFiles(*app_, *app_->central);
  ASSERT_EQ(env_->end_calls(), 0);
  EXPECT_EQ(app_->central->IntegrityCheck(), "ok");
  EXPECT_EQ(app_->chk_files_result, static_cast<int>(choice));
  for (const char* file : {"ODD1.mdb", "ODD2.mdb", "SMIT01.mdb"}) {
    EXPECT_EQ(fs::exists(app_->taxpayer_folder + file), choice != ChkFilesChoice::kDelete) << file;
  }
  for (const char* file : {"central.mdb", "CENTRAL.MDB", "Central.Mdb", "doe0101.MDB"}) {
    EXPECT_TRUE(fs::exists(app_->taxpayer_folder + file)) << file;
  }
  EXPECT_FALSE(fs::exists(app_->taxpayer_folder + "~LW1234.mdb"));
  EXPECT_EQ(IndexRows(), GetParam().index_after);
}

const ChoiceCase kChoices[] = {
    {"Delete", ChkFilesChoice::kDelete, kDoe},
    {"Create", ChkFilesChoice::kCreate, kDoe + "John Smith|Smith, John|SMITH1|SMIT01.mdb;"},
    {"Ignore", ChkFilesChoice::kIgnore, kDoe + "Jones & Sons|Jones & Sons|JONES1|JONE01.mdb;"}};
INSTANTIATE_TEST_SUITE_P(Choices, CheckDBFilesChoice, ::testing::ValuesIn(kChoices),
                         [](const auto& info) { return std::string(info.param.label); });

// With neither an INI file nor a settings store, every option is on, the
// preferences take their defaults, and the data folders lie under the
// program folder's "DATA" folder and are written to the store. The option
// keys: a zero bar is hidden through its toggle, the other marks follow
// zero / non-zero.
TEST_F(StartupTest, GetINISettings_DefaultsAndOptions) {
  GetINISettings(*app_, app_->ini_path);
  EXPECT_EQ(Options(), "11111110");
  EXPECT_EQ(app_->prefs.basis_ye + "|" + std::to_string(app_->prefs.client_order) + "|" +
                app_->prefs.exp_path,
            "  /  /    |1|" + program_folder_);
  EXPECT_EQ(app_->taxpayer_folder + "|" + app_->central_path,
            DefaultClient() + "|" + DefaultSsf() + "CENTRAL.MDB");
  EXPECT_EQ(ReadText(app_->settings_store_path), "[File Options]\nSSF Path=" + DefaultSsf() +
                                                     "\nTaxpayer Path=" + DefaultClient() + "\n");
  EXPECT_FALSE(fs::exists(app_->ini_path)) << "reading never writes the INI file";
  for (const auto& [ini, marks] :
       {std::pair{"ToolBar=0\nToolTips=0\nHelpBar=0\nRecalc Shares=0\nOpenOnlyPort=0\n",
                  "00000000"},
        std::pair{"ToolBar=-1\nToolTips=1\nHelpBar=0\nRecalc Shares=0\nOpenOnlyPort=5\n"
                  "[LW Update Options]\nUpdate All=-1\n",
                  "11001101"}}) {
    WriteText(app_->ini_path, std::string("[LW Options]\n") + ini);
    GetINISettings(*app_, app_->ini_path);
    EXPECT_EQ(Options(), marks);
  }
}

// The store wins when it holds a folder, else the INI file; the folder is
// given its trailing separator ("\" counts as one) and the store is written
// again, the INI file never.
TEST_F(StartupTest, SetDBPathsAndNames_StoreThenIniThenDefault) {
  // Both folders under `base`, keys without values for "", no file for nullptr.
  auto folders = [&](const char* base) -> std::string {
    if (!base) return "";
    const std::string b = base, ssf = *base ? b + "central" : "",
                      client = *base ? b + "client" : "";
    return Rooted("[File Options]\nSSF Path=" + ssf + "\nTaxpayer Path=" + client + "\n");
  };
  struct Case {
    const char *ini, *store, *expected;
  };
  for (const Case& c : {Case{"@ini/", nullptr, "@ini/"}, Case{nullptr, "@srv/", "@srv/"},
                        Case{"@ini/", "@srv/", "@srv/"}, Case{"@ini/", "", "@ini/"}}) {
    SCOPED_TRACE(std::string(c.ini ? c.ini : "-") + " " + (c.store ? c.store : "-"));
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
TEST_F(StartupTest, ForcedDataFolder_TouchesNoSettings) {
  app_->forced_data_folder = root_ + "elsewhere";
  GetINISettings(*app_, app_->ini_path);
  EXPECT_EQ(app_->ssf_folder + "|" + app_->taxpayer_folder,
            root_ + "elsewhere/|" + root_ + "elsewhere/");
  EndProgram(*app_);
  EXPECT_FALSE(fs::exists(app_->settings_store_path) || fs::exists(app_->ini_path));
  EXPECT_EQ(env_->end_calls(), 1);
}

// What EndProgram writes, in its order, with check states as "-1"/"0";
// never "LW Update Options" nor "File Options". An INI file read at
// start-up and written back is unchanged, the keys the program never
// writes included.
TEST_F(StartupTest, EndProgram_WritesOptionsAndPrefs) {
  GetINISettings(*app_, app_->ini_path);
  app_->window.options.show_tool_tips = false;
  app_->prefs.remove_0_sec = true;
  app_->prefs.sec_order = 2;
  app_->prefs.xact_end = "12/31/2025";
  EndProgram(*app_);
  EXPECT_EQ(ReadText(app_->ini_path), Rooted(ReadText(GoldenPath(__FILE__, "end_program.ini"))));
}

TEST_F(StartupTest, EndProgram_RoundTripKeepsIniExactly) {
  const std::string ini = Rooted(ReadText(GoldenPath(__FILE__, "round_trip.ini")));
  WriteText(app_->ini_path, ini);
  GetINISettings(*app_, app_->ini_path);
  EXPECT_EQ(app_->prefs.xact_start + "|" + app_->prefs.exp_path + "|" + app_->ssf_folder,
            "  /  /    |/home/tp/exports dir/|" + root_ + "ini central/");
  EndProgram(*app_);
  EXPECT_EQ(ReadText(app_->ini_path), ini);
}

// An INI file alone: absent file, section or key read as the default, a
// present key never does, whatever its text; names match without case.
TEST_F(StartupTest, IniFile_ReadDefaultOnlyWhenAbsent) {
  IniFile ini(root_ + "ini/lotwise.INI");
  EXPECT_EQ(ini.ReadInt("LW Options", "ToolBar", -1), -1);
  EXPECT_EQ(ini.ReadText("Prefs", "Basis YE", "x"), "x");
  WriteText(ini.path(), "[LW Options]\nToolBar = 0\nToolTips=abc\nHelpBar=\n[Prefs]\nExp Path=\n");
  EXPECT_EQ(ini.ReadInt("lw options", "TOOLBAR", -1), 0);
  EXPECT_EQ(ini.ReadInt("LW Options", "ToolTips", -1), 0);
  EXPECT_EQ(ini.ReadInt("LW Options", "HelpBar", -1), 0);
  EXPECT_EQ(ini.ReadInt("LW Options", "Recalc Shares", -1), -1);
  EXPECT_EQ(ini.ReadInt("Prefs", "ToolBar", 7), 7) << "a key of another section";
  EXPECT_EQ(ini.ReadText("Prefs", "Exp Path", "/default"), "");
}

// What is written reads back exactly, blanks at the ends included; every
// other line keeps its text and place and the file its line ends, no
// scratch copy stays behind, and missing folders are made. Cases:
// golden/ini_writes.txt. A line break is refused and writes nothing.
TEST_F(StartupTest, IniFile_WritesChangeOnlyTheirLine) {
  int folder = 0;
  for (const GoldenCase& c : ReadCases(__FILE__, "ini_writes.txt")) {
    SCOPED_TRACE(c.name);
    const std::string dir = root_ + "ini/" + std::to_string(++folder);
    IniFile ini(dir + "/deeper/lotwise.INI");
    if (!c.Lines("before").empty()) WriteText(ini.path(), c.Text("before"));
    for (const GoldenSection& write : c.sections) {
      if (write.key != "write") continue;
      const size_t bar = write.args.find('|'), last = write.args.rfind('|');
      const std::string section = write.args.substr(0, bar),
                        key = write.args.substr(bar + 1, last - bar - 1),
                        value = write.args.substr(last + 1);
      ini.WriteText(section, key, value);
      EXPECT_EQ(ini.ReadText(section, key, "absent"), value);
    }
    EXPECT_EQ(ReadText(ini.path()), c.Text("after"));
    EXPECT_EQ(std::distance(fs::directory_iterator(dir + "/deeper"), fs::directory_iterator()), 1);
  }
  IniFile ini(root_ + "ini/lotwise.INI");
  EXPECT_THROW(ini.WriteText("Prefs", "Exp Path", "a\nb"), LwError);
  EXPECT_FALSE(fs::exists(ini.path()));
}

}  // namespace
}  // namespace lotwise::testing
