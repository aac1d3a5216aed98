#include <gtest/gtest.h>

#include <filesystem>

#include "app/startup.h"
#include "app/taxpayer_dialog.h"
#include "data/application.h"
#include "data/database.h"
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
  void Index(const std::string& code, const std::string& name, const std::string& file) {
    TaxpayerIndex(code, name, name, file);
  }
  // "name|sort|code|file" of every index row, in code order.
  std::string IndexRows() {
    Query q = app_->central->Select(R"(SELECT * FROM "Clients" ORDER BY "Client Code")");
    std::string rows;
    while (q.Next()) {
      rows += q.Text("Client Name") + "|" + q.Text("Sort Name") + "|" + q.Text("Client Code") +
              "|" + q.Text("File Name") + ";";
    }
    return rows;
  }
  void Run() {
    CheckDBFiles(*app_, *app_->central);
    ASSERT_EQ(env_->end_calls(), 0);
    EXPECT_EQ(app_->central->IntegrityCheck(), "ok");
  }
};

// An index row without its file and Taxpayer Files without an index row,
// all answered alike. Delete removes the row or the file; Create removes
// the row and opens the new-taxpayer dialog filled from it, or indexes a
// file from its own Client row; Ignore changes nothing. A file that cannot
// say whose it is (no Client table, or no row in it) can only be deleted
// or ignored: its Create button is disabled. Never offered: the central
// file's name in any case, and an indexed file whatever the case of its
// name; "~" scratch files are removed.
const std::string kDoe = "John Doe|John Doe|DOE01|DOE0101.mdb;";

struct ChoiceCase {
  const char* label;
  ChkFilesChoice choice;
  std::string index_after;
};

class CheckDBFilesChoice : public CheckDBFilesTest,
                           public ::testing::WithParamInterface<ChoiceCase> {};

TEST_P(CheckDBFilesChoice, CheckDBFiles_ActsOnEachChoice) {
  const ChkFilesChoice choice = GetParam().choice;
  Index("JONES1", "Jones & Sons", "JONE01.mdb");
  fs::copy_file(app_->ProgramFile(kCentralTemplateName), app_->taxpayer_folder + "ODD1.mdb");
  fs::copy_file(app_->ProgramFile(kClientTemplateName), app_->taxpayer_folder + "ODD2.mdb");
  WriteTaxpayerFile("SMIT01.mdb", "SMITH1", "John Smith");
  for (const char* name : {"central.mdb", "CENTRAL.MDB", "Central.Mdb", "~LW1234.mdb"}) {
    WriteText(app_->taxpayer_folder + name, "not a taxpayer file");
  }
  WriteTaxpayerFile("doe0101.MDB", "DOE01", "John Doe");
  Index("DOE01", "John Doe", "DOE0101.mdb");
  ui_.ExpectChkFiles("Taxpayer File Missing...",
                     "There is no Taxpayer File for Jones && Sons. You can:\r\n"
                     "        'Delete' this Taxpayer.\r\n"
                     "        'Create' a Taxpayer File for this Taxpayer.\r\n"
                     "        'Ignore' this Taxpayer for now.",
                     true, choice);
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
    ui_.ExpectChkFiles("Taxpayer Record Missing...",
                       std::string("A Taxpayer File (") + odd +
                           ") has been located. Due to missing information in the Taxpayer File "
                           "it can only be 'Deleted' or 'Ignored'.",
                       false, choice);
  }
  ui_.ExpectChkFiles("Taxpayer Record Missing...",
                     "The Taxpayer File for John Smith exists, but there is no Taxpayer record. "
                     "You can:\r\n"
                     "        'Delete' this Taxpayer File.\r\n"
                     "        'Create' a Taxpayer for this Taxpayer File.\r\n"
                     "        'Ignore' this Taxpayer File for now.",
                     true, choice);
  ASSERT_NO_FATAL_FAILURE(Run());
  EXPECT_EQ(app_->chk_files_result, static_cast<int>(choice));
  const bool kept = choice != ChkFilesChoice::kDelete;
  for (const char* file : {"ODD1.mdb", "ODD2.mdb", "SMIT01.mdb"}) {
    EXPECT_EQ(fs::exists(app_->taxpayer_folder + file), kept) << file;
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

}  // namespace
}  // namespace lotwise
