#include <gtest/gtest.h>

#include <filesystem>

#include "app/application.h"
#include "app/startup.h"
#include "data/database.h"
#include "data/taxpayer_dialog.h"
#include "startup_fixture.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;
using testing::StartupTest;

class CheckDBFilesTest : public StartupTest {
 protected:
  void SetUp() override {
    StartupTest::SetUp();
    OpenFreshCentral();
  }
  void Index(const std::string& code, const std::string& name, const std::string& sort,
             const std::string& file) {
    app_->central->Execute(
        R"(INSERT INTO "Clients" ("Client Code", "Client Name", "Sort Name", "File Name") )"
        R"(VALUES (:code, :name, :sort, :file))",
        {{"code", code}, {"name", name}, {"sort", sort}, {"file", file}});
  }
  bool Indexed(const std::string& code) {
    Query q = app_->central->Select(
        R"(SELECT count(*) AS n FROM "Clients" WHERE "Client Code" = :c)", {{"c", code}});
    q.Next();
    return q.Int("n") == 1;
  }
  void Run() {
    CheckDBFiles(*app_, *app_->central);
    ASSERT_EQ(env_->end_calls(), 0);
    EXPECT_EQ(app_->central->IntegrityCheck(), "ok");
  }
};

const char* const kNoFileText =
    "There is no Taxpayer File for Jones && Sons. You can:\r\n"
    "        'Delete' this Taxpayer.\r\n"
    "        'Create' a Taxpayer File for this Taxpayer.\r\n"
    "        'Ignore' this Taxpayer for now.";
const char* const kNoClientText =
    "The Taxpayer File for John Smith exists, but there is no Taxpayer record. You can:\r\n"
    "        'Delete' this Taxpayer File.\r\n"
    "        'Create' a Taxpayer for this Taxpayer File.\r\n"
    "        'Ignore' this Taxpayer File for now.";

// An index row without its file: Delete removes the row, Ignore keeps it,
// Create removes it and opens the new-taxpayer dialog filled from it.
class OrphanRecord : public CheckDBFilesTest,
                     public ::testing::WithParamInterface<ChkFilesChoice> {};

TEST_P(OrphanRecord, ActsOnTheChoice) {
  const ChkFilesChoice choice = GetParam();
  Index("JONES1", "Jones & Sons", "Jones & Sons", "JONE01.mdb");
  ui_.ExpectChkFiles("Taxpayer File Missing...", kNoFileText, true, choice);
  if (choice == ChkFilesChoice::kCreate) {
    ui_.ExpectDialog("dlgNewModClient", [this](DialogForm& form) {
      auto& f = dynamic_cast<NewModClientForm&>(form);
      EXPECT_EQ(f.caption, "New Taxpayer");
      EXPECT_EQ(f.client_name, "Jones & Sons");
      EXPECT_EQ(f.sort_name, "Jones & Sons");
      EXPECT_EQ(f.client_code, "JONES1");
      EXPECT_FALSE(Indexed("JONES1")) << "the row goes before the dialog shows";
    });
  }
  ASSERT_NO_FATAL_FAILURE(Run());
  EXPECT_EQ(Indexed("JONES1"), choice == ChkFilesChoice::kIgnore);
  EXPECT_EQ(app_->chk_files_result, static_cast<int>(choice));
}

INSTANTIATE_TEST_SUITE_P(Choices, OrphanRecord,
                         ::testing::Values(ChkFilesChoice::kDelete, ChkFilesChoice::kCreate,
                                           ChkFilesChoice::kIgnore),
                         [](const auto& info) {
                           return std::string(info.param == ChkFilesChoice::kDelete   ? "Delete"
                                              : info.param == ChkFilesChoice::kCreate ? "Create"
                                                                                      : "Ignore");
                         });

// A Taxpayer File without its index row: Create indexes it from the file's
// own Client row, Delete removes the file, Ignore changes nothing.
class OrphanFile : public CheckDBFilesTest, public ::testing::WithParamInterface<ChkFilesChoice> {};

TEST_P(OrphanFile, ActsOnTheChoice) {
  const ChkFilesChoice choice = GetParam();
  WriteTaxpayerFile("SMIT01.mdb", "SMITH1", "John Smith");
  ui_.ExpectChkFiles("Taxpayer Record Missing...", kNoClientText, true, choice);
  ASSERT_NO_FATAL_FAILURE(Run());
  EXPECT_EQ(fs::exists(app_->taxpayer_folder + "SMIT01.mdb"), choice != ChkFilesChoice::kDelete);
  if (choice == ChkFilesChoice::kCreate) {
    Query q = app_->central->Select(R"(SELECT * FROM "Clients")");
    ASSERT_TRUE(q.Next());
    EXPECT_EQ(q.Text("Client Name"), "John Smith");
    EXPECT_EQ(q.Text("Sort Name"), "Smith, John");
    EXPECT_EQ(q.Text("Client Code"), "SMITH1");
    EXPECT_EQ(q.Text("File Name"), "SMIT01.mdb");
    EXPECT_FALSE(q.Next());
  } else {
    EXPECT_EQ(CountCentralRows("Clients"), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Choices, OrphanFile,
                         ::testing::Values(ChkFilesChoice::kDelete, ChkFilesChoice::kCreate,
                                           ChkFilesChoice::kIgnore),
                         [](const auto& info) {
                           return std::string(info.param == ChkFilesChoice::kDelete   ? "Delete"
                                              : info.param == ChkFilesChoice::kCreate ? "Create"
                                                                                      : "Ignore");
                         });

// A file that cannot say whose it is (no Client table, or no row in it) can
// only be deleted or ignored.
struct NoInfoCase {
  const char* name;
  const char* template_name;
};

class FileWithoutClientInfo : public CheckDBFilesTest,
                              public ::testing::WithParamInterface<NoInfoCase> {};

TEST_P(FileWithoutClientInfo, OffersDeleteOrIgnoreOnly) {
  fs::copy_file(app_->ProgramFile(GetParam().template_name), app_->taxpayer_folder + "ODD1.mdb");
  ui_.ExpectChkFiles("Taxpayer Record Missing...",
                     "A Taxpayer File (ODD1.mdb) has been located. Due to missing information in "
                     "the Taxpayer File it can only be 'Deleted' or 'Ignored'.",
                     false, ChkFilesChoice::kDelete);
  ASSERT_NO_FATAL_FAILURE(Run());
  EXPECT_FALSE(fs::exists(app_->taxpayer_folder + "ODD1.mdb"));
}

INSTANTIATE_TEST_SUITE_P(Table, FileWithoutClientInfo,
                         ::testing::Values(NoInfoCase{"NoClientTable", "LW_CENT.MDB"},
                                           NoInfoCase{"NoClientRow", "LW_CLNT.MDB"}),
                         [](const auto& info) { return std::string(info.param.name); });

// The central file's name in any case is never a Taxpayer File; an indexed
// file matches its row whatever the case; "~" scratch files are removed.
TEST_F(CheckDBFilesTest, CentralNamesAndCaseNeverOffered) {
  for (const char* name : {"central.mdb", "CENTRAL.MDB", "Central.Mdb"}) {
    WriteText(app_->taxpayer_folder + name, "not a taxpayer file");
  }
  WriteTaxpayerFile("doe0101.MDB", "DOE01", "John Doe");
  Index("DOE01", "John Doe", "Doe, John", "DOE0101.mdb");
  WriteText(app_->taxpayer_folder + "~LW1234.mdb", "scratch");
  ASSERT_NO_FATAL_FAILURE(Run());
  EXPECT_TRUE(Indexed("DOE01"));
  EXPECT_FALSE(fs::exists(app_->taxpayer_folder + "~LW1234.mdb"));
  EXPECT_TRUE(fs::exists(app_->taxpayer_folder + "Central.Mdb"));
}

}  // namespace
}  // namespace lotwise
