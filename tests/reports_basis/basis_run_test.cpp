#include <gtest/gtest.h>

#include <filesystem>

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
struct FaultCase {
  const char* name;
  SellMethod method;
  int failing_write;  // 8 writes clear and head the tables before the walk
  const char* location;
};

class BasisFaultTest : public BasisTest, public ::testing::WithParamInterface<FaultCase> {};

TEST_P(BasisFaultTest, CalcBasisSchedDRpt_WriteFails_WalkRolledBack) {
  const FaultCase& c = GetParam();
  Sell(Buy(AddSecurity("IBM", c.method), "01/05/2024", 10, "100"), "06/03/2025", 4, "60");
  const std::string kept = root_ + "kept.MDB";
  std::filesystem::create_hard_link(app_->report_db_path, kept);
  StorageFaults faults;
  app_->storage_faults = &faults;
  faults.FailWriteNumber(c.failing_write);
  ui_.Expect(ErrorHeader(31010, "disk I/O error (injected)", c.location) +
                 " The program will now shut down to prevent errors in your data and calculations.",
             "Warning!", Icon::kCritical, Buttons::kOk);
  EXPECT_THROW(Run(), ProgramEnded);
  app_->storage_faults = nullptr;
  auto db = Database::Open(kept);
  for (const char* table : {"BA Trans", "BA Blocks", "Sched D", "BA Secs"}) {
    Query q = db->Select("SELECT count(*) AS n FROM \"" + std::string(table) + "\"");
    ASSERT_TRUE(q.Next());
    EXPECT_EQ(q.Int("n"), 0) << table;
  }
  EXPECT_EQ(db->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(
    Writes, BasisFaultTest,
    ::testing::Values(FaultCase{"FirstBlock", SellMethod::kFifo, 9, "AddBABlock"},
                      FaultCase{"ScheduleDRow", SellMethod::kFifo, 12, "AddSchedD"},
                      FaultCase{"SecurityRow", SellMethod::kFifo, 13, "CalcSecurities"},
                      // pool, block, buy + copy, sale + copy, then the pool's rows
                      FaultCase{"PoolRewrite", SellMethod::kAvgSingle, 15, "UpdateAvgBlockRpt"}),
    [](const auto& info) { return info.param.name; });

// The whole report: refusals before anything is computed.
struct RefusalCase {
  const char* name;
  ReportScope scope;
  int16_t state;
  const char* year_end;
  const char* message;
  Answer answer = Answer::kOk;
};

class BasisRefusalTest : public BasisTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(BasisRefusalTest, RunBasisSchedDReport_Refused) {
  const RefusalCase& c = GetParam();
  app_->window.state = c.state;
  ExpectSaid(ui_, kReportsSource, c.message, c.answer);
  BasisReportRequest request;
  request.scope = c.scope;
  request.year_end = c.year_end;
  EXPECT_FALSE(RunBasisSchedDReport(*app_, request));
  EXPECT_EQ(CountReportRows("Usage"), 0);
  EXPECT_TRUE(ui_.reports_shown().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Checks, BasisRefusalTest,
    ::testing::Values(RefusalCase{"InvalidYearEnd", ReportScope::kTaxpayer, kClientOpen,
                                  "13/45/2025", "invalid_year_end"},
                      RefusalCase{"SecurityNotOpen", ReportScope::kSecurity, kPortOpen,
                                  "12/31/2025", "security_not_open"},
                      RefusalCase{"PortfolioNotOpen", ReportScope::kPortfolio, kClientOpen,
                                  "12/31/2025", "portfolio_not_open"},
                      RefusalCase{"PortfolioWarningCancelled", ReportScope::kPortfolio, kPortOpen,
                                  "12/31/2025", "portfolio_warning", Answer::kCancel}),
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
