#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "app/app_state.h"
#include "data/error_handler.h"
#include "lots/sell_method.h"
#include "lots/sell_shares.h"
#include "reports/report_runner.h"
#include "reports_basis/basis_fixture.h"

namespace lotwise::testing {
namespace {

// Each run empties the tables first: two runs leave one "Usage" and one
// heading row, whose second line is joined to the name.
TEST_F(BasisTest, CalcBasisSchedDRpt_TwoRuns_OneHeading) {
  app_->current.client_2nd_line = "Trust ";
  app_->current.sec_symbol = "IBM";
  Sell(Buy(AddSecurity("IBM", SellMethod::kFifo), "01/05/2024", 10, "100"), "06/03/2025", 4, "60");
  ASSERT_TRUE(Run());
  ASSERT_TRUE(Run(BasisKind::kBoth, "12/31/2025", ReportScope::kSecurity));
  EXPECT_EQ(CountReportRows("Usage"), 1);
  EXPECT_EQ(CountReportRows("BA Trans"), 2);
  EXPECT_EQ(SchedDRows().size(), 1u);
  EXPECT_EQ(ReportRows(R"(SELECT * FROM "BA Info")",
                       "t:Client Name,t:Client Code,t:2nd Line,d:Year End,t:Type", "|"),
            Rows{"John Doe|DOE01|John Doe Trust|12/31/2025|Security"});
}

// A write that fails anywhere in the walk leaves none of the walk's rows.
// The fatal error removes the scratch file, so a second name of the same
// file is kept to look into it.
class BasisFaultTest : public BasisTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(BasisFaultTest, CalcBasisSchedDRpt_WriteFails_WalkRolledBack) {
  // "method failing-write location": 8 writes clear and head the tables
  // before the walk.
  std::istringstream words(GetParam().Lines("").at(0));
  int method = 0, failing_write = 0;
  std::string location;
  words >> method >> failing_write >> location;
  Sell(Buy(AddSecurity("IBM", method), "01/05/2024", 10, "100"), "06/03/2025", 4, "60");
  const std::string kept = root_ + "kept.MDB";
  std::filesystem::create_hard_link(app_->report_db_path, kept);
  StorageFaults faults;
  app_->storage_faults = &faults;
  faults.FailWriteNumber(failing_write);
  ExpectFatal(31010, "disk I/O error (injected)", location);
  EXPECT_THROW(Run(), ProgramEnded);
  app_->storage_faults = nullptr;
  ExpectNoWalkRows(kept);
}

INSTANTIATE_TEST_SUITE_P(Writes, BasisFaultTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "write_faults.txt")),
                         [](const auto& info) { return info.param.name; });

// The whole report: refusals before anything is computed.
class BasisRefusalTest : public BasisTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(BasisRefusalTest, RunBasisSchedDReport_Refused) {
  // "scope open-state year-end message answer".
  std::istringstream words(GetParam().Lines("").at(0));
  std::string scope, state, message, answer;
  BasisReportRequest request;
  words >> scope >> state >> request.year_end >> message >> answer;
  request.scope = scope == "security"    ? ReportScope::kSecurity
                  : scope == "portfolio" ? ReportScope::kPortfolio
                                         : ReportScope::kTaxpayer;
  app_->window.state = state == "portfolio" ? kPortOpen : kClientOpen;
  ExpectSaid(ui_, kReportsSource, message, answer == "cancel" ? Answer::kCancel : Answer::kOk);
  EXPECT_FALSE(RunBasisSchedDReport(*app_, request));
  EXPECT_EQ(CountReportRows("Usage"), 0);
  EXPECT_TRUE(ui_.reports_shown().empty());
}

INSTANTIATE_TEST_SUITE_P(Checks, BasisRefusalTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "refusals.txt")),
                         [](const auto& info) { return info.param.name; });

TEST_F(BasisTest, RunBasisSchedDReport_NothingComputed_CantCreateReport) {
  ExpectSaid(ui_, kReportsSource, "no_secs_file_basis");
  ExpectSaid(ui_, kReportsSource, "cant_create");
  BasisReportRequest request;
  request.year_end = "12/31/2025";
  EXPECT_FALSE(RunBasisSchedDReport(*app_, request));
  EXPECT_EQ(ui_.help_texts(),
            (Rows{"Preparing to calculate...", "Preparing report, Please wait..."}));
}

// Schedule D outputs first (elections, attachment, then the export file's
// question), the Basis Analysis last, each announced on the help bar. A
// report whose definition is missing is reported and the run goes on.
TEST_F(BasisTest, RunBasisSchedDReport_Both_ReportsInOrder) {
  Sell(Buy(AddSecurity("IBM", SellMethod::kFifo), "01/05/2024", 10, "100"), "06/03/2025", 4, "60");
  BasisReportRequest request;
  request.kind = BasisKind::kBoth;
  request.year_end = "12/31/2025";
  request.elections = true;
  request.exclude_empty = true;
  ExpectSaid(ui_, kReportsSource, "export_question", Answer::kNo);
  EXPECT_TRUE(RunBasisSchedDReport(*app_, request));
  EXPECT_EQ(ui_.help_texts(), (Rows{"Preparing to calculate...", "Preparing report, Please wait...",
                                    "Preparing Schedule D Elections, please wait...",
                                    "Preparing Schedule D attachment, please wait...",
                                    "Preparing Basis Analysis, please wait..."}));

  const std::string missing = ReportFilePath(*app_, "SCHED_D1.RPT");
  std::filesystem::remove(missing);
  ExpectSaid(ui_, kReportsSource, "report_missing", Answer::kOk,
             {ErrorHeader(20504, "Report file not found: " + missing, "RunReport")});
  ExpectSaid(ui_, kReportsSource, "export_question", Answer::kNo);
  EXPECT_FALSE(RunBasisSchedDReport(*app_, request));
  Rows titles;
  for (const ReportDocument& report : ui_.reports_shown()) titles.push_back(report.title);
  EXPECT_EQ(titles, (Rows{"Schedule D Elections", "Schedule D Attachment", "Basis Analysis Report",
                          "Schedule D Elections", "Basis Analysis Report"}));
}

}  // namespace
}  // namespace lotwise::testing
