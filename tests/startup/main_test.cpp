#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

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

class MainTest : public StartupTest {};

const char* const kMissingFoldersWarning =
    "You need to specify where you want the program to look for your data files. Client files are "
    "usually in C:\\LW\\DATA\\CLIENT and CENTRAL.MDB is usually located in C:\\LW\\DATA\\CENTRAL. "
    "Please make sure either these folders exist.";
const char* const kPathAdvice =
    " This is usually due to a directory path in the .ini file being invalid. If you have added "
    "any path information to the .ini file, please verify that it is correct, and the directory "
    "exists.";

// A start against a fresh program folder makes its data folders and the
// central file, counts the start, and leaves the scratch report database
// until EndProgram removes it with its journal. A second start meanwhile,
// in the same second, gets a report database of its own.
TEST_F(MainTest, Main_FreshProgramFolderStartsAndEnds) {
  ASSERT_TRUE(Main(*app_));
  EXPECT_EQ(app_->window.state, kClientClosed);
  EXPECT_EQ(app_->ini_path, program_folder_ + "/lotwise.INI");
  EXPECT_EQ(app_->help_path, program_folder_ + "/lotwise.HLP");
  EXPECT_EQ(app_->central_path, DefaultSsf() + "CENTRAL.MDB");
  EXPECT_TRUE(FileExists(app_->central_path));
  EXPECT_TRUE(fs::is_directory(DefaultClient()));
  const std::string report = root_ + "tmp/~LW0703.MDB";
  EXPECT_EQ(app_->report_db_path, report);
  EXPECT_TRUE(FileExists(report));
  EXPECT_EQ(GetUsageCount(*app_), 1);

  Application second(ui_, *env_, program_folder_, "lotwise");
  second.settings_store_path = app_->settings_store_path;
  ASSERT_TRUE(Main(second));
  EXPECT_NE(second.report_db_path, report);
  EXPECT_EQ(GetUsageCount(second), 2);
  EndProgram(second);

  WriteText(report + "-journal", "");
  EndProgram(*app_);
  EXPECT_FALSE(fs::exists(report));
  EXPECT_FALSE(fs::exists(report + "-journal"));
  EXPECT_FALSE(app_->central);
  EXPECT_TRUE(FileExists(app_->ini_path));
  EndProgram(*app_);
  EXPECT_EQ(env_->end_calls(), 2) << "one end per program; a second EndProgram does nothing";
}

// The report database name: "~LW", the minute taken once, the second taken
// anew on each pass until a name is free.
struct ReportNameCase {
  const char* name;
  int minute;
  int second;
  std::vector<const char*> taken;
  const char* expected;
};

class ReportName : public MainTest, public ::testing::WithParamInterface<ReportNameCase> {};

TEST_P(ReportName, FirstFreeName) {
  const ReportNameCase& c = GetParam();
  env_->SetNow({2026, 11, 22, 10, c.minute, c.second});
  for (const char* name : c.taken) WriteText(root_ + "tmp/" + name, "");
  EXPECT_EQ(GetUniqueReportName(*app_), root_ + "tmp/" + c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ReportName,
    ::testing::Values(ReportNameCase{"Free", 7, 3, {}, "~LW0703.MDB"},
                      ReportNameCase{"SameSecondTaken", 7, 3, {"~LW0703.MDB"}, "~LW0704.MDB"},
                      ReportNameCase{
                          "MinuteKeptAcrossItsEnd", 7, 59, {"~LW0759.MDB"}, "~LW0700.MDB"}),
    [](const auto& info) { return std::string(info.param.name); });

// With every second of the minute taken the wait would never end: the
// program says so and ends instead.
TEST_F(MainTest, GetUniqueReportName_AllNamesTakenEnds) {
  for (int s = 0; s < 60; ++s) {
    WriteText(root_ + "tmp/~LW07" + (s < 10 ? "0" : "") + std::to_string(s) + ".MDB", "");
  }
  std::string text = "Path/File access error: every name " + root_ + "tmp/~LW07??.MDB is taken";
  ui_.Expect(ErrorHeader(75, text, "GetUniqueReportName") +
                 " This error usually occurs when a file, needed by Lotwise has been opened by "
                 "another program, or is missing. Please make sure you have not opened any Lotwise "
                 "files before starting this program again.",
             "Error!", Icon::kCritical, Buttons::kOk);
  EXPECT_EQ(GetUniqueReportName(*app_), "");
  EXPECT_EQ(env_->end_calls(), 1);
}

// A data folder that cannot be used: the "WARNING" and the data-location
// dialog (cancelled), then the handler's message, and the program ends.
struct BrokenFolderCase {
  const char* name;
  const char* blocker;  // a regular file in the way, "" for none
  const char* store;    // the store's SSF Path, "" for none
  const char* failing;  // the path in the error text
};

class BrokenDataFolder : public MainTest, public ::testing::WithParamInterface<BrokenFolderCase> {};

TEST_P(BrokenDataFolder, WarnsOffersLocationsAndEnds) {
  const BrokenFolderCase& c = GetParam();
  if (*c.blocker) WriteText(Rooted(c.blocker), "in the way");
  if (*c.store)
    WriteText(app_->settings_store_path,
              Rooted(std::string("[File Options]\nSSF Path=") + c.store + "\n"));
  ui_.Expect(kMissingFoldersWarning, "WARNING", Icon::kCritical, Buttons::kOk);
  ui_.ExpectDialog("dlgFileLoc", [this](DialogForm& form) {
    auto& f = dynamic_cast<FileLocForm&>(form);
    EXPECT_EQ(f.ssf_folder, app_->ssf_folder);
    EXPECT_EQ(f.client_folder, DefaultClient());
    EXPECT_EQ(f.ssf_note, kSsfLocationNote);
    EXPECT_EQ(f.client_note, kClientLocationNote);
    PressCancelFileLoc(f);
  });
  ui_.Expect(ErrorHeader(76, "Path not found: " + Rooted(c.failing), "Main") + kPathAdvice,
             "Error!", Icon::kCritical, Buttons::kOk);
  EXPECT_FALSE(Main(*app_));
  EXPECT_EQ(env_->end_calls(), 1);
  EXPECT_TRUE(FileExists(app_->ProgramFile("LWERR.LOG")));
  EXPECT_TRUE(FileExists(app_->ini_path)) << "EndProgram ran";
  EXPECT_FALSE(fs::exists(app_->report_db_path));
}

INSTANTIATE_TEST_SUITE_P(
    Table, BrokenDataFolder,
    ::testing::Values(BrokenFolderCase{"SsfFolderIsAFile", "@blocked", "@blocked/central",
                                       "@blocked/central/CENTRAL.MDB"},
                      BrokenFolderCase{"DesignatedFolderMissing", "", "@gone/central/",
                                       "@gone/central/CENTRAL.MDB"},
                      BrokenFolderCase{"DefaultFolderCannotBeMade", "@program/DATA", "",
                                       "@program/DATA/CENTRAL/"}),
    [](const auto& info) { return std::string(info.param.name); });

// OK in the data-location dialog stores the folders as typed, tells the
// user and ends at once: no handler message, no INI write-back, and the
// scratch report database stays.
TEST_F(MainTest, SetFileLoc_StoresFoldersAndEndsAtOnce) {
  WriteText(app_->settings_store_path, Rooted("[File Options]\nSSF Path=@gone/\n"));
  ui_.Expect(kMissingFoldersWarning, "WARNING", Icon::kCritical, Buttons::kOk);
  ui_.ExpectDialog("dlgFileLoc", [this](DialogForm& form) {
    auto& f = dynamic_cast<FileLocForm&>(form);
    f.ssf_folder = root_ + "new central";
    f.client_folder = root_ + "new client";
    PressOkFileLoc(*app_, f);
  });
  ui_.Expect("The program will now close down so the changes can be registered by the system.",
             "Notice", Icon::kInformation, Buttons::kOk);
  EXPECT_FALSE(Main(*app_));
  EXPECT_EQ(Store().ReadText("File Options", "SSF Path", ""), root_ + "new central");
  EXPECT_EQ(Store().ReadText("File Options", "Taxpayer Path", ""), root_ + "new client");
  EXPECT_FALSE(fs::exists(app_->ini_path));
  EXPECT_TRUE(FileExists(app_->report_db_path));
  EXPECT_EQ(env_->end_calls(), 1);
}

// The folder picker answers the chosen path up to its last separator of
// either kind; a cancelled pick leaves the dialog's box as it was.
struct PickCase {
  const char* name;
  const char* picked;
  const char* box_after;
};

class FolderPick : public MainTest, public ::testing::WithParamInterface<PickCase> {};

TEST_P(FolderPick, FillsTheBox) {
  const PickCase& c = GetParam();
  ui_.ExpectPick("Designate Folder For Data", c.picked);
  FileLocForm form;
  form.client_folder = "/old/";
  PressClientFileLoc(*app_, form);
  EXPECT_EQ(form.client_folder, c.box_after);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FolderPick,
    ::testing::Values(PickCase{"Slash", "/srv/lw/NO FILENAME NEEDED - CHOOSE FOLDER", "/srv/lw/"},
                      PickCase{"Backslash", "C:\\LW\\DATA\\x.mdb", "C:\\LW\\DATA\\"},
                      PickCase{"Cancelled", "", "/old/"}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace lotwise
