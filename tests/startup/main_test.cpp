#include <gtest/gtest.h>

#include <filesystem>

#include "app/application.h"
#include "app/error_handler.h"
#include "app/file_location_dialog.h"
#include "app/paths.h"
#include "app/startup.h"
#include "data/central_file.h"
#include "startup_fixture.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;
using testing::StartupTest;

// A start against a fresh program folder makes its data folders and the
// central file, counts the start, and leaves the scratch report database
// until EndProgram removes it with its journal. A second start meanwhile,
// in the same second, gets a report database of its own.
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
    const char *label, *taken, *expected;  // taken: "" for none
    int minute, second;
  };
  const Case cases[] = {{"Free", "", "~LW0703.MDB", 7, 3},
                        {"SameSecondTaken", "~LW0703.MDB", "~LW0704.MDB", 7, 3},
                        {"MinuteKeptAcrossItsEnd", "~LW0759.MDB", "~LW0700.MDB", 7, 59}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    env_->SetNow({2026, 11, 22, 10, c.minute, c.second});
    if (*c.taken) WriteText(root_ + "tmp/" + c.taken, "");
    EXPECT_EQ(GetUniqueReportName(*app_), root_ + "tmp/" + c.expected);
  }
  env_->SetNow({2026, 11, 22, 10, 7, 3});
  for (int s = 0; s < 60; ++s) {
    WriteText(root_ + "tmp/~LW07" + (s < 10 ? "0" : "") + std::to_string(s) + ".MDB", "");
  }
  std::string text = "Path/File access error: every name " + root_ + "tmp/~LW07??.MDB is taken";
  ui_.Expect(ErrorHeader(75, text, "GetUniqueReportName") +
                 " This error usually occurs when a file, needed by Lotwise has been opened by "
                 "another program, or is missing. Please make sure you have not opened any Lotwise "
                 "files before starting this program again.",
             "Error!", Icon::kCritical, Buttons::kOk);
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
  ui_.Expect(
      "You need to specify where you want the program to look for your data files. Client files "
      "are usually in C:\\LW\\DATA\\CLIENT and CENTRAL.MDB is usually located in "
      "C:\\LW\\DATA\\CENTRAL. Please make sure either these folders exist.",
      "WARNING", Icon::kCritical, Buttons::kOk);
  ui_.ExpectDialog("dlgFileLoc", [&](DialogForm& form) {
    auto& f = dynamic_cast<FileLocForm&>(form);
    EXPECT_EQ(f.ssf_folder + "|" + f.client_folder, app_->ssf_folder + "|" + DefaultClient());
    if (!designate) return PressCancelFileLoc(f);
    f.ssf_folder = root_ + "new central";
    f.client_folder = root_ + "new client";
    PressOkFileLoc(*app_, f);
  });
  if (designate) {
    ui_.Expect("The program will now close down so the changes can be registered by the system.",
               "Notice", Icon::kInformation, Buttons::kOk);
  } else {
    ui_.Expect(ErrorHeader(76, "Path not found: " + Rooted(c.failing), "Main") +
                   " This is usually due to a directory path in the .ini file being invalid. If "
                   "you have added any path information to the .ini file, please verify that it "
                   "is correct, and the directory exists.",
               "Error!", Icon::kCritical, Buttons::kOk);
  }
  EXPECT_THROW(Main(*app_), ProgramEnded);
  EndProgram(*app_);
  EXPECT_EQ(env_->end_calls(), 1);
  EXPECT_EQ(FileExists(app_->ProgramFile("LWERR.LOG")), !designate);
  EXPECT_EQ(FileExists(app_->ini_path), !designate) << "EndProgram ran";
  EXPECT_EQ(FileExists(app_->report_db_path), designate);
  if (designate) {
    EXPECT_EQ(Store().ReadText("File Options", "SSF Path", ""), root_ + "new central");
    EXPECT_EQ(Store().ReadText("File Options", "Taxpayer Path", ""), root_ + "new client");
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
  const std::pair<const char*, const char*> picks[] = {
      {"/srv/lw/NO FILENAME NEEDED - CHOOSE FOLDER", "/srv/lw/"},
      {"C:\\LW\\DATA\\x.mdb", "C:\\LW\\DATA\\"},
      {"", "/old/"}};
  for (const auto& [picked, box_after] : picks) {
    SCOPED_TRACE(picked);
    ui_.ExpectPick("Designate Folder For Data", picked);
    FileLocForm form;
    form.client_folder = "/old/";
    PressClientFileLoc(*app_, form);
    EXPECT_EQ(form.client_folder, box_after);
  }
}

}  // namespace
}  // namespace lotwise
