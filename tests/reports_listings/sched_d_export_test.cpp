#include "reports/sched_d_export.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/error_handler.h"
#include "reports_listings/listing_fixture.h"

namespace lotwise::testing {
namespace {

namespace fs = std::filesystem;

const std::string kQuestion =
    "This program can create a file that can be used to export the Schedule D information from the "
    "Lotwise into the better tax software programs. We recommend choosing Detailed as the Report "
    "Type in the Schedule D Options screen.\r\n\r\nDo you want to create a Schedule D export file?";
const std::string kHeader = "\"DESC\",\"DATE ACQUIRED\",\"DATE SOLD\",\"SALES PRICE\",\"COST\"\r\n";
const char* const kInfo = "Export File Information";

// A report database as the Schedule D run leaves it, and the dialogue.
class ExportTest : public ReportTest {
 protected:
  void SetUp() override {
    ReportTest::SetUp();
    fs::create_directories(root_ + "export");
    file_ = root_ + "export/taxes.csv";
    app_->prefs.exp_path = root_ + "start/";
  }

  void Sale(const char* symbol, double shares, const char* price, const char* cost, bool dates) {
    const Value acquired = dates ? Value(D("02/29/2020")) : Value();
    const Value sold = dates ? Value(D("12/31/2024")) : Value();
    Report()->Execute(
        R"(INSERT INTO "Sched D" ("Date Acqrd", "Date Sold", "Shares", "Sec Symbol", )"
        R"("Sale Price", "Cost") VALUES (:a, :d, :sh, :s, :p, :c))",
        {{"a", acquired},
         {"d", sold},
         {"sh", shares},
         {"s", symbol},
         {"p", Money(price)},
         {"c", Money(cost)}});
  }
  void Security(const char* symbol, const char* name) {
    Report()->Execute(R"(INSERT INTO "BA Secs" ("Sec Symbol", "Sec Name") VALUES (:s, :n))",
                      {{"s", symbol}, {"n", name}});
  }

  void ExpectDialogue(const std::string& picked) {
    ui_.Expect(kQuestion, "Schedule D Export File", Icon::kQuestion, Buttons::kYesNo, Answer::kYes);
    ui_.ExpectPick("Select An Export Filename", picked);
  }
  void ExpectWritten() {
    ui_.Expect("The export file, " + file_ +
                   ", is a csv file. You may be able to import the csv directly into your tax "
                   "software program. If your tax software program requires an Excel spreadsheet "
                   "file (which ends in .xls), open " +
                   file_ +
                   " in Excel. From Excel you can create an .xls file.\r\n\r\nThe first row of the "
                   "export file contains column labels.  Do not export that row into your tax "
                   "preparation software!",
               kInfo, Icon::kInformation, Buttons::kOk);
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
// dates empty; a symbol without a "BA Secs" row is left out, one listed
// twice still gives one line per sale.
struct LineCase {
  const char* symbol;
  const char* name;  // nullptr: no "BA Secs" row added
  double shares;
  const char* price;
  const char* cost;
  bool dates;
  const char* line;  // nullptr: not exported
};

TEST_F(ExportTest, Export_LinesInOrder) {
  const LineCase cases[] = {
      {"ACME", "ACME FUND", 100, "1234.5", "1000.25", true,
       R"("100 ACME FUND","02/29/2020","12/31/2024","1234.5","1000.25")"},
      {"GONE", nullptr, 2, "10", "5", true, nullptr},
      {"XYZ", "", 12.5, "99.99", "100", true,
       R"("12.5 XYZ","02/29/2020","12/31/2024","99.99","100")"},
      {"", "", 7, "1", "2", true, R"("7","02/29/2020","12/31/2024","1","2")"},
      {"Q", "ACME \"A\" CLASS  ", 3, "0", "-0.01", false,
       R"("3 ACME ""A"" CLASS","","","0","-0.01")"},
      {"ACME", nullptr, 0.33333, "1.0001", "0.5", true,
       R"("0.33333 ACME FUND","02/29/2020","12/31/2024","1.0001","0.5")"},
  };
  std::string expected = kHeader;
  for (const LineCase& c : cases) {
    if (c.name) Security(c.symbol, c.name);
    Sale(c.symbol, c.shares, c.price, c.cost, c.dates);
    if (c.line) expected += std::string(c.line) + "\r\n";
  }
  Security("ACME", "ACME FUND");
  ExpectDialogue(file_);
  ExpectWritten();
  EXPECT_TRUE(CreateSchDExportFile(*app_));
  EXPECT_EQ(FileText(), expected);
  EXPECT_EQ(app_->prefs.exp_path, root_ + "export/");
}

// An old file of that name is replaced, never appended to; with no sales
// the file holds the labels alone and the user is told it was empty.
TEST_F(ExportTest, Export_ReplacesOldFile) {
  std::ofstream(file_, std::ios::binary) << std::string(500, 'x');
  ExpectDialogue(file_);
  ui_.Expect("The Schedule D information was empty.", kInfo, Icon::kInformation, Buttons::kOk);
  EXPECT_TRUE(CreateSchDExportFile(*app_));
  EXPECT_EQ(FileText(), kHeader);
  Security("ACME", "ACME FUND");
  Sale("ACME", 100, "1", "2", true);
  ExpectDialogue(file_);
  ExpectWritten();
  CreateSchDExportFile(*app_);
  EXPECT_EQ(FileText(), kHeader + R"("100 ACME FUND","02/29/2020","12/31/2024","1","2")"
                                  "\r\n");
}

// Declining, cancelling the file dialog, or a folder that cannot be written
// leaves no file and no closing message; the last is a reported file error.
TEST_F(ExportTest, Export_NothingWritten) {
  Security("ACME", "ACME FUND");
  Sale("ACME", 100, "1", "2", true);
  ui_.Expect(kQuestion, "Schedule D Export File", Icon::kQuestion, Buttons::kYesNo, Answer::kNo);
  EXPECT_FALSE(CreateSchDExportFile(*app_));
  ExpectDialogue("");
  EXPECT_FALSE(CreateSchDExportFile(*app_));
  EXPECT_TRUE(fs::is_empty(root_ + "export"));
  EXPECT_EQ(app_->prefs.exp_path, root_ + "start/");

  const std::string bad = root_ + "no such folder/taxes.csv";
  ExpectDialogue(bad);
  ui_.Expect(ErrorHeader(75, "Path/File access error: " + bad, "MakeExportHeader") +
                 " This error usually occurs when a file, needed by Lotwise has been opened by "
                 "another program, or is missing. Please make sure you have not opened any "
                 "Lotwise files before starting this program again.",
             "Error!", Icon::kCritical, Buttons::kOk);
  EXPECT_THROW(CreateSchDExportFile(*app_), ProgramEnded);
  EXPECT_FALSE(fs::exists(bad));
}

}  // namespace
}  // namespace lotwise::testing
