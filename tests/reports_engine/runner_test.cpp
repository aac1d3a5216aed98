#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <tuple>

#include "data/error_handler.h"
#include "ground/lw_error.h"
#include "reports/pdf_writer.h"
#include "reports_engine/report_fixture.h"

namespace lotwise::testing {
namespace {

// A report shown on screen reaches the viewer under the runner's title;
// one printed reaches the printer; the hourglass is back afterwards and
// the report database is left as it was.
TEST_F(ReportTest, RunReport_ScreenAndPrinter_Delivered) {
  Fill("basis_run.sql");
  std::string path = ReportFilePath(*app_, "BASIS_SM.RPT");
  EXPECT_EQ(RunReport(*app_, path, app_->report_db_path, ReportDestination::kScreen,
                      "Basis Analysis Report"),
            0);
  EXPECT_EQ(RunReport(*app_, ReportFilePath(*app_, "SCHED_D1.RPT"), app_->report_db_path,
                      ReportDestination::kPrinter, "Schedule D Attachment"),
            0);
  ASSERT_EQ(ui_.reports_shown().size(), 1u);
  ASSERT_EQ(ui_.reports_printed().size(), 1u);
  EXPECT_EQ(ui_.reports_shown()[0].title, "Basis Analysis Report");
  EXPECT_NE(ui_.reports_shown()[0].PlainText().find("Total cost of 3 securities 12,951.67"),
            std::string::npos);
  EXPECT_EQ(ui_.reports_printed()[0].title, "Schedule D Attachment");
  EXPECT_NE(ui_.reports_printed()[0].PlainText().find("Total Part II 600.00 409.00 191.00"),
            std::string::npos);
  EXPECT_EQ(ui_.hourglass_depth(), 0);
  EXPECT_EQ(db_->IntegrityCheck(), "ok");
  EXPECT_EQ(env_->end_calls(), 0);
}

// A missing definition and a failed print are told through the central
// handler under "RunReport" with their own messages; the program carries
// on, the runner answers the error number and nothing reaches the viewer.
TEST_F(ReportTest, RunReport_Failure_ReportedAndNumbered) {
  const std::tuple<int, const char*, const char*> cases[] = {
      {20504, "NOSUCH.RPT", "report_missing"},
      {20513, "TAXPAYER.RPT", "print_cancelled"},
      {20526, "TAXPAYER.RPT", "no_printer"}};
  Fill("listings.sql");
  for (const auto& [number, file, key] : cases) {
    ui_.SetPrintResult(number == 20504 ? 0 : number);
    const std::string path = ReportFilePath(*app_, file);
    const std::string text = number == 20504   ? "Report file not found: " + path
                             : number == 20513 ? "Print job cancelled"
                                               : "No default printer";
    ExpectSaid(ui_, kReportsSource, key, Answer::kOk, {ErrorHeader(number, text, "RunReport")});
    EXPECT_EQ(RunReport(*app_, path, app_->report_db_path, ReportDestination::kPrinter, "T"),
              number);
  }
  EXPECT_TRUE(ui_.reports_printed().empty());
  EXPECT_TRUE(ui_.reports_shown().empty());
  EXPECT_EQ(ui_.hourglass_depth(), 0);
  EXPECT_EQ(env_->end_calls(), 0);
}

// The printer set-up asks the port once; a cancel ends the command without a
// word.
TEST_F(ReportTest, PrintSetup_Cancelled_Silent) {
  PrintSetup(*app_);
  EXPECT_TRUE(ui_.shown().empty());
}

// Returns what pdftotext reads from the file, or nullopt when it cannot run.
std::optional<std::string> PdfText(const std::string& path) {
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(
      popen(("pdftotext -layout '" + path + "' - 2>/dev/null").c_str(), "r"), pclose);
  if (!pipe) return std::nullopt;
  std::string text;
  char buffer[4096];
  size_t read = 0;
  while ((read = fread(buffer, 1, sizeof buffer, pipe.get())) > 0) text.append(buffer, read);
  return text;
}

// Several reports go into one PDF, one after another, with their texts and
// totals readable; characters beyond ASCII survive in the WinAnsi fonts.
TEST_F(ReportTest, WriteReportPdf_TwoReports_TextExtractable) {
  if (std::system("command -v pdftotext > /dev/null 2>&1") != 0) GTEST_SKIP() << "no pdftotext";
  Fill("basis_run.sql");
  Fill("trans_list.sql");
  Sql(R"(UPDATE "BA Secs" SET "Sec Name" = 'Café Fund – “Blue”' WHERE "Sec Symbol" = 'MMM')");
  std::string path = root_ + "reports.pdf";
  WriteReportPdf({Render("BASIS_DT.RPT", "Basis Analysis Report"),
                  Render("TRNSLIST.RPT", "Transaction Listing Report")},
                 path);
  if (const char* keep = std::getenv("LOTWISE_KEEP_PDF")) std::filesystem::copy_file(path, keep);
  std::optional<std::string> text = PdfText(path);
  ASSERT_TRUE(text.has_value());
  for (const char* expected :
       {"Basis Analysis Report", "Family Trust", "Total cost of all securities", "12,951.67",
        "06/01/2023", "-404.00", "Café Fund – “Blue”", "Page 1 of 1", "Transaction Listing Report",
        "Def | Co \"Class A\"", "150.00"}) {
    EXPECT_NE(text->find(expected), std::string::npos) << expected << "\n" << *text;
  }
  EXPECT_LT(text->find("12,951.67"), text->find("Transaction Listing Report"));
  EXPECT_EQ(std::count(text->begin(), text->end(), '\f'), 2);
}

TEST_F(ReportTest, WriteReportPdf_UnwritablePath_75) {
  Fill("listings.sql");
  EXPECT_EQ(ErrorOf([&] { WriteReportPdf({Render("TAXPAYER.RPT")}, root_ + "no/dir/out.pdf"); }),
            "75: Path/File access error");
}

}  // namespace
}  // namespace lotwise::testing
