#include <gtest/gtest.h>

#include <filesystem>

#include "app/app_state.h"
#include "app/error_handler.h"
#include "lots/sell_method.h"
#include "lots/sell_shares.h"
#include "reports/report_runner.h"
#include "reports_basis/basis_fixture.h"

namespace lotwise::testing {
namespace {

const char* const kCantCreate =
    "The Report can not be generated. If an error message was displayed you should try to correct "
    "the error first.You will need to run the report again.";

// Answers dlgMethod for the security `symbol` with `method`, ticking "Use
// for all" when asked; 255 cancels.
void AnswerMethod(ScriptedUi& ui, Application& app, std::string symbol, int16_t method,
                  bool for_all = false) {
  ui.ExpectDialog("dlgMethod", [&app, symbol, method, for_all](DialogForm& f) {
    auto& form = static_cast<MethodForm&>(f);
    EXPECT_EQ(form.message_line, "Security: " + symbol);
    EXPECT_EQ(form.option_caption, "Use for all Securities without Sells");
    form.method = method;
    form.option1 = for_all;
    if (method == kSellNotSelected) {
      Method_Cancel(app, form);
    } else {
      Method_OK(app, form);
    }
  });
}

// Securities never sold (no method): a Schedule D run passes them over; a
// Basis run asks for each one unless "Use for all" was ticked, and skips
// one whose question was cancelled. Sales whose method was kept under a
// shortened symbol by an older version are asked about, not dropped.
TEST_F(BasisTest, CalcSecurities_NoMethod_ScheduleDSkipsIt) {
  Buy(AddSecurity("AAA", -1), "01/05/2024", 10, "100");
  Buy(AddSecurity("BBB", kSellFifo), "01/05/2024", 10, "100");
  AddSecurity("US03783310", kSellFifo);
  Sell(Buy(AddSecurity("US0378331005", -1), "01/05/2024", 10, "100"), "03/05/2025", 4, "60");
  AnswerMethod(ui_, *app_, "US0378331005", kSellFifo);
  ASSERT_TRUE(Run(BasisKind::kScheduleD));
  EXPECT_EQ(SecsRows(),
            (Rows{"BBB|BBB Corp|FIFO|10|100|10", "US0378331005|US0378331005 Corp|FIFO|6|60|10"}));
}

TEST_F(BasisTest, CalcSecurities_NoMethod_AskedPerSecurity) {
  for (const char* symbol : {"AAA", "BBB", "CCC"}) {
    Buy(AddSecurity(symbol, -1), "01/05/2024", 10, "100");
  }
  AnswerMethod(ui_, *app_, "AAA", kSellFifo);
  AnswerMethod(ui_, *app_, "BBB", kSellNotSelected);
  AnswerMethod(ui_, *app_, "CCC", kSellAvgSingle);
  ASSERT_TRUE(Run(BasisKind::kBasis));
  EXPECT_EQ(SecsRows(), (Rows{"AAA|AAA Corp|FIFO|10|100|10",
                              "CCC|CCC Corp|Average Cost - Single Cat.|10|100|10"}));
}

TEST_F(BasisTest, CalcSecurities_NoMethod_UseForAllAskedOnce) {
  for (const char* symbol : {"AAA", "BBB"}) Buy(AddSecurity(symbol, -1), "01/05/2024", 10, "100");
  AnswerMethod(ui_, *app_, "AAA", kSellAvgSingle, true);
  ASSERT_TRUE(Run(BasisKind::kBoth));
  EXPECT_EQ(SecsRows(), (Rows{"AAA|AAA Corp|Average Cost - Single Cat.|10|100|10",
                              "BBB|BBB Corp|Average Cost - Single Cat.|10|100|10"}));
}

// A portfolio run takes only the securities of the open portfolio: one
// held elsewhere is neither asked about nor reported.
TEST_F(BasisTest, CalcBasisSchedDRpt_PortfolioScope_OnlyItsSecurities) {
  Portfolio("Income");
  Buy(AddSecurity("AAA", -1, "Income"), "01/05/2024", 10, "100");
  Buy(AddSecurity("BBB", kSellFifo), "01/05/2024", 10, "100");
  app_->current.port_name = "Growth";
  ASSERT_TRUE(Run(BasisKind::kBasis, "12/31/2025", ReportScope::kPortfolio));
  EXPECT_EQ(SecsRows(), Rows{"BBB|BBB Corp|FIFO|10|100|10"});
  EXPECT_EQ(ReportRows(R"(SELECT "Type" FROM "BA Info")", {{'t', "Type"}}), Rows{"Portfolio"});
}

// Nothing to report fails the run with the "No Securities" text of its
// kind: one set when the file holds no security, another when none
// qualified (never sold on a Schedule D run, or nothing by the year end).
struct NoSecCase {
  const char* name;
  BasisKind kind;
  int method;  // of the one security bought in 2026; 0 for an empty file
  const char* text;
  bool empty_portfolio = false;  // run on a portfolio holding none of it
};

class NoSecuritiesTest : public BasisTest, public ::testing::WithParamInterface<NoSecCase> {};

TEST_P(NoSecuritiesTest, CalcBasisSchedDRpt_NothingToReport) {
  const NoSecCase& c = GetParam();
  if (c.method != 0) Buy(AddSecurity("IBM", c.method), "01/05/2026", 10, "100");
  ReportScope scope = ReportScope::kTaxpayer;
  if (c.empty_portfolio) {
    Portfolio("Empty");
    app_->current.port_name = "Empty";
    scope = ReportScope::kPortfolio;
  }
  ui_.Expect(c.text, "No Securities", Icon::kInformation, Buttons::kOk);
  EXPECT_FALSE(Run(c.kind, "12/31/2025", scope));
  ExpectNoWalkRows();
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, NoSecuritiesTest,
    ::testing::Values(
        NoSecCase{"EmptyFileScheduleD", BasisKind::kScheduleD, 0,
                  "There are no Securities in this Client File to run a Schedule D Report for."},
        NoSecCase{"EmptyFileBasis", BasisKind::kBasis, 0,
                  "There are no Securities in this Client File to run a Basis Report for."},
        NoSecCase{"EmptyFileBoth", BasisKind::kBoth, 0,
                  "There are no Securities in this Client File to run a Basis or Schedule D "
                  "report for."},
        NoSecCase{"EmptyPortfolioBasis", BasisKind::kBasis, kSellFifo,
                  "There are no Securities in this Client File to run a Basis Report for.", true},
        NoSecCase{"EmptyPortfolioScheduleD", BasisKind::kScheduleD, kSellFifo,
                  "There are no Securities in this Client File to run a Schedule D Report for.",
                  true},
        NoSecCase{"NeverSoldScheduleD", BasisKind::kScheduleD, -1,
                  "There are no securities, that have Sales, to run a Schedule D Report for."},
        NoSecCase{"AfterYearEndBasis", BasisKind::kBasis, kSellFifo,
                  "There are no securities to run a Basis Report for."},
        NoSecCase{"AfterYearEndBoth", BasisKind::kBoth, kSellFifo,
                  "There are no securities to run a Basis or Schedule D report for."}),
    [](const auto& info) { return info.param.name; });

TEST_F(BasisTest, CalcTransactions_UnknownMethod_InvalidSellMethod) {
  Buy(AddSecurity("IBM", 7), "01/05/2024", 10, "100");
  ui_.Expect("Invalid Sell Method(7) in CalcTransactions", "Error!", Icon::kCritical, Buttons::kOk);
  EXPECT_FALSE(Run());
  ExpectNoWalkRows();
}

// Each run empties the tables first: two runs leave one "Usage" and one
// heading row, whose second line is joined to the name.
TEST_F(BasisTest, CalcBasisSchedDRpt_TwoRuns_OneHeading) {
  app_->current.client_2nd_line = "Trust ";
  app_->current.sec_symbol = "IBM";
  Sell(Buy(AddSecurity("IBM", kSellFifo), "01/05/2024", 10, "100"), "06/03/2025", 4, "60");
  ASSERT_TRUE(Run());
  ASSERT_TRUE(Run(BasisKind::kBoth, "12/31/2025", ReportScope::kSecurity));
  EXPECT_EQ(CountReportRows("Usage"), 1);
  EXPECT_EQ(CountReportRows("BA Trans"), 2);
  EXPECT_EQ(SchedDRows().size(), 1u);
  EXPECT_EQ(ReportRows(R"(SELECT * FROM "BA Info")",
                       {{'t', "Client Name"},
                        {'t', "Client Code"},
                        {'t', "2nd Line"},
                        {'d', "Year End"},
                        {'t', "Type"}},
                       "|"),
            Rows{"John Doe|DOE01|John Doe Trust|12/31/2025|Security"});
}

// A write that fails anywhere in the walk leaves none of the walk's rows.
// The fatal error removes the scratch file, so a second name of the same
// file is kept to look into it.
struct FaultCase {
  const char* name;
  int method;
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
    ::testing::Values(FaultCase{"FirstBlock", kSellFifo, 9, "AddBABlock"},
                      FaultCase{"ScheduleDRow", kSellFifo, 12, "AddSchedD"},
                      FaultCase{"SecurityRow", kSellFifo, 13, "CalcSecurities"},
                      // pool, block, buy + copy, sale + copy, then the pool's rows
                      FaultCase{"PoolRewrite", kSellAvgSingle, 15, "UpdateAvgBlockRpt"}),
    [](const auto& info) { return info.param.name; });

// The whole report: refusals before anything is computed.
struct RefusalCase {
  const char* name;
  ReportScope scope;
  int16_t state;
  const char* year_end;
  const char* text;
  const char* title;
  Answer answer = Answer::kOk;
};

class BasisRefusalTest : public BasisTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(BasisRefusalTest, RunBasisSchedDReport_Refused) {
  const RefusalCase& c = GetParam();
  app_->window.state = c.state;
  ui_.Expect(c.text, c.title, c.answer);
  BasisReportRequest request;
  request.scope = c.scope;
  request.year_end = c.year_end;
  EXPECT_FALSE(RunBasisSchedDReport(*app_, request));
  EXPECT_EQ(CountReportRows("Usage"), 0);
  EXPECT_TRUE(ui_.reports_shown().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Checks, BasisRefusalTest,
    ::testing::Values(
        RefusalCase{
            "InvalidYearEnd", ReportScope::kTaxpayer, kClientOpen, "13/45/2025",
            "The Year End Date entered as 13/45/2025 is not valid.  Please re-enter the Year "
            "End Date. If you are cancelling, click OK, and then click Cancel again.",
            "Invalid Date"},
        RefusalCase{"SecurityNotOpen", ReportScope::kSecurity, kPortOpen, "12/31/2025",
                    "You must have a security open to do a Basis Analysis or Schedule D attachment "
                    "on one.",
                    "Invalid Input"},
        RefusalCase{"PortfolioNotOpen", ReportScope::kPortfolio, kClientOpen, "12/31/2025",
                    "You must have a portfolio open that has at least one security in it to do a "
                    "Basis Analysis or Schedule D attachment on it.",
                    "Invalid Input"},
        RefusalCase{"PortfolioWarningCancelled", ReportScope::kPortfolio, kPortOpen, "12/31/2025",
                    "Basis for a security, for U.S. tax purposes, should be determined without "
                    "regard to portfolio.  If a security is held in more than one portfolio, we "
                    "recommend that you use the Taxpayer or Security option instead of the "
                    "Portfolio option. \n\nClick CANCEL to cancel the report\nClick OK to proceed, "
                    "knowing that if one security is owned in more than one portfolio (for a "
                    "Taxpayer) the report might not be correct for tax purposes.",
                    "Warning!", Answer::kCancel}),
    [](const auto& info) { return info.param.name; });

TEST_F(BasisTest, RunBasisSchedDReport_NothingComputed_CantCreateReport) {
  ui_.Expect("There are no Securities in this Client File to run a Basis Report for.",
             "No Securities");
  ui_.Expect(kCantCreate, "Can't create Report", Icon::kExclamation, Buttons::kOk);
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
  Sell(Buy(AddSecurity("IBM", kSellFifo), "01/05/2024", 10, "100"), "06/03/2025", 4, "60");
  const char* const export_question =
      "This program can create a file that can be used to export the Schedule D information from "
      "the Lotwise into the better tax software programs. We recommend choosing Detailed as the "
      "Report Type in the Schedule D Options screen.\r\n\r\nDo you want to create a Schedule D "
      "export file?";
  BasisReportRequest request;
  request.kind = BasisKind::kBoth;
  request.year_end = "12/31/2025";
  request.elections = true;
  request.exclude_empty = true;
  ui_.Expect(export_question, "Schedule D Export File", Answer::kNo);
  EXPECT_TRUE(RunBasisSchedDReport(*app_, request));
  EXPECT_EQ(ui_.help_texts(), (Rows{"Preparing to calculate...", "Preparing report, Please wait...",
                                    "Preparing Schedule D Elections, please wait...",
                                    "Preparing Schedule D attachment, please wait...",
                                    "Preparing Basis Analysis, please wait..."}));

  const std::string missing = ReportFilePath(*app_, "SCHED_D1.RPT");
  std::filesystem::remove(missing);
  ui_.Expect(ErrorHeader(20504, "Report file not found: " + missing, "RunReport") +
                 " Report File not located in default directory. This error indicates that a "
                 "report file that Lotwise needs is missing. Please contact technical support.",
             "Report File Missing");
  ui_.Expect(export_question, "Schedule D Export File", Answer::kNo);
  EXPECT_FALSE(RunBasisSchedDReport(*app_, request));
  Rows titles;
  for (const ReportDocument& report : ui_.reports_shown()) titles.push_back(report.title);
  EXPECT_EQ(titles, (Rows{"Schedule D Elections", "Schedule D Attachment", "Basis Analysis Report",
                          "Schedule D Elections", "Basis Analysis Report"}));
}

}  // namespace
}  // namespace lotwise::testing
