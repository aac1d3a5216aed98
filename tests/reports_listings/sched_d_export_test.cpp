#include "reports/sched_d_export.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "data/error_handler.h"
#include "reports_listings/listing_fixture.h"

namespace lotwise::testing {
namespace {

namespace fs = std::filesystem;

const std::string kHeader = "\"DESC\",\"DATE ACQUIRED\",\"DATE SOLD\",\"SALES PRICE\",\"COST\"\r\n";
// A report database as the Schedule D run leaves it, and the dialogue.
class ExportTest : public ReportTest {
 protected:
  void SetUp() override {
    ReportTest::SetUp();
    fs::create_directories(root_ + "export");
    file_ = root_ + "export/taxes.csv";
    app_->prefs.exp_path = root_ + "start/";
  }

  // One sale of ACME.
  void OneSale() {
    Report()->ExecuteScript(
        R"(INSERT INTO "BA Secs" ("Sec Symbol", "Sec Name") VALUES ('ACME', 'ACME FUND');
INSERT INTO "Sched D" ("Date Acqrd", "Date Sold", "Shares", "Sec Symbol", "Sale Price", "Cost")
VALUES ('2020-02-29', '2024-12-31', 100, 'ACME', 10000, 20000);)");
  }

  void ExpectDialogue(const std::string& picked) {
    ExpectSaid(ui_, kReportsSource, "export_question", Answer::kYes);
    ui_.ExpectPick("Select An Export Filename", picked);
  }
  void ExpectWritten() {
    ExpectSaid(ui_, kListingsSource, "export_written", Answer::kOk, {file_, file_});
  }
  std::string FileText() {
    std::ostringstream text;
    text << std::ifstream(file_, std::ios::binary).rdbuf();
    return text.str();
  }

  std::string file_;
};

// One line per sale in the Schedule D's order: the description's three
// forms, quotes doubled, blanks trimmed, money in its plain form, missing
// dates empty; a symbol without a "BA Secs" row is left out, one listed twice
// still gives one line per sale (golden/export_sales.sql, export_lines.csv).
TEST_F(ExportTest, Export_LinesInOrder) {
  Report()->ExecuteScript(ReadText(GoldenPath(__FILE__, "export_sales.sql")));
  ExpectDialogue(file_);
  ExpectWritten();
  EXPECT_TRUE(CreateSchDExportFile(*app_));
  ExpectGolden(__FILE__, "export_lines.csv", FileText());
  EXPECT_EQ(app_->prefs.exp_path, root_ + "export/");
}

// An old file of that name is replaced, never appended to; with no sales
// the file holds the labels alone and the user is told it was empty.
TEST_F(ExportTest, Export_ReplacesOldFile) {
  std::ofstream(file_, std::ios::binary) << std::string(500, 'x');
  ExpectDialogue(file_);
  ui_.Expect("The Schedule D information was empty.", "Export File Information", Icon::kInformation,
             Buttons::kOk);
  EXPECT_TRUE(CreateSchDExportFile(*app_));
  EXPECT_EQ(FileText(), kHeader);
  OneSale();
  ExpectDialogue(file_);
  ExpectWritten();
  CreateSchDExportFile(*app_);
  EXPECT_EQ(FileText(), kHeader + R"("100 ACME FUND","02/29/2020","12/31/2024","1","2")"
                                  "\r\n");
}

// Declining, cancelling the file dialog, or a folder that cannot be written
// leaves no file and no closing message; the last is a reported file error.
TEST_F(ExportTest, Export_NothingWritten) {
  OneSale();
  ExpectSaid(ui_, kReportsSource, "export_question", Answer::kNo);
  EXPECT_FALSE(CreateSchDExportFile(*app_));
  ExpectDialogue("");
  EXPECT_FALSE(CreateSchDExportFile(*app_));
  EXPECT_TRUE(fs::is_empty(root_ + "export"));
  EXPECT_EQ(app_->prefs.exp_path, root_ + "start/");

  const std::string bad = root_ + "no such folder/taxes.csv";
  ExpectDialogue(bad);
  ExpectSaid(ui_, kListingsSource, "export_path", Answer::kOk,
             {ErrorHeader(75, "Path/File access error: " + bad, "MakeExportHeader")});
  EXPECT_THROW(CreateSchDExportFile(*app_), ProgramEnded);
  EXPECT_FALSE(fs::exists(bad));
}

}  // namespace
}  // namespace lotwise::testing
