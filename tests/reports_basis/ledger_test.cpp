#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "lots/sell_method.h"
#include "lots/sell_shares.h"
#include "reports/basis_walk.h"
#include "reports/report_db.h"
#include "reports_basis/basis_fixture.h"

namespace lotwise::testing {
namespace {

// Answers dlgMethod for the security `symbol` with `method`, ticking "Use
// for all" when asked; 255 cancels.
void AnswerMethod(ScriptedUi& ui, Application& app, std::string symbol, int16_t method,
                  bool for_all = false) {
  ui.ExpectDialog("dlgMethod", [&app, symbol, method, for_all](DialogForm& f) {
    auto& form = static_cast<MethodForm&>(f);
    EXPECT_EQ(form.message_line, "Security: " + symbol);
    EXPECT_EQ(form.option_caption, "Use for all Securities without Sells");
    form.method = SellMethodAsStored(method);
    form.option1 = for_all;
    if (form.method == SellMethod::kNotSelected) {
      Method_Cancel(app, form);
    } else {
      Method_OK(app, form);
    }
  });
}

// golden/ledgers.txt: each case a ledger and the report rows it must give.
class LedgerTest : public BasisTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(LedgerTest, CalcBasisSchedDRpt_Golden) {
  int64_t sec = 0;
  std::vector<int64_t> blocks;
  std::string year_end = "12/31/2025";
  BasisKind kind = BasisKind::kBoth;
  ReportScope scope = ReportScope::kTaxpayer;
  bool refused = false;
  for (const std::string& line : GetParam().Lines("")) {
    std::istringstream words(line);
    std::string op, a, b, c, d, e;
    words >> op >> a >> b >> c >> d >> e;
    const auto block = [&] { return blocks.at(std::stoul(a) - 1); };
    const auto fee = [](const std::string& text) { return text.empty() ? "0" : text.c_str(); };
    if (op == "port") {
      Portfolio(a);
    } else if (op == "sec") {
      sec = AddSecurity(a, std::stoi(b), c.empty() ? "Growth" : c);
    } else if (op == "buy") {
      blocks.push_back(Buy(sec, a.c_str(), std::stod(b), c.c_str(), fee(d)));
    } else if (op == "sell") {
      Sell(block(), b.c_str(), std::stod(c), d.c_str(), fee(e));
    } else if (op == "split" || op == "div") {
      Split(block(), b.c_str(), 1, op == "split" ? 2 : 10, std::stod(c),
            op == "split" ? kTypeSplit : kTypeDividend);
    } else if (op == "adjust") {
      Adjust(block(), b.c_str(), std::stod(c), d.c_str());
    } else if (op == "yearend") {
      year_end = a;
    } else if (op == "ask") {
      AnswerMethod(ui_, *app_, a, static_cast<int16_t>(std::stoi(b)), c == "all");
    } else if (op == "kind") {
      kind = a == "basis" ? BasisKind::kBasis : BasisKind::kScheduleD;
    } else if (op == "scope") {
      app_->current.port_name = a;
      scope = ReportScope::kPortfolio;
    } else if (op == "say") {
      ExpectSaid(ui_, kReportsSource, a);
    } else if (op == "refused") {
      refused = true;
    } else {
      FAIL() << "unknown step: " << line;
    }
  }
  ASSERT_EQ(Run(kind, year_end.c_str(), scope), !refused);
  if (refused) ExpectNoWalkRows();
  for (const GoldenSection& section : GetParam().sections) {
    const size_t bar = section.args.find('|');
    if (section.key == "trans") {
      EXPECT_EQ(TransRows(section.args.substr(0, bar),
                          bar == std::string::npos ? "" : section.args.substr(bar + 1)),
                section.lines)
          << section.args;
    } else if (section.key == "sched_d") {
      EXPECT_EQ(SchedDRows(), section.lines);
    } else if (section.key == "secs") {
      EXPECT_EQ(SecsRows(), section.lines);
    } else if (section.key == "type") {
      EXPECT_EQ(ReportRows(R"(SELECT "Type" FROM "BA Info")", "t:Type"), section.lines);
    } else if (section.key == "blocks") {
      EXPECT_EQ(CountReportRows("BA Blocks"), std::stoi(section.args));
    } else if (!section.key.empty()) {
      ADD_FAILURE() << "unknown section: " << section.key;
    }
  }
  EXPECT_EQ(Report()->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(Ledgers, LedgerTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "ledgers.txt")),
                         [](const auto& info) { return info.param.name; });

// A pool that does not belong to the method is an internal error.
TEST_F(BasisTest, CalcAvgBlock_ForeignPool_ErrorInBlockId) {
  for (const auto& [method, pool] : {std::pair{SellMethod::kAvgSingle, "Bogus"},
                                     {SellMethod::kAvgSingle, "Long Term Cost"},
                                     {SellMethod::kAvgDouble, "Average Cost"}}) {
    auto report = OpenReportDb(*app_);
    BasisRun run{.app = *app_, .client = *app_->client, .report = *report};
    BlockTotals totals;
    ui_.Expect(std::string("Error in BlockID(") + pool + ") in CalcAvgBlock", "Error!",
               Icon::kCritical, Buttons::kOk);
    EXPECT_FALSE(CalcAvgBlock(run, method, "IBM", pool, totals));
  }
}

// The dates of a tax year and of a lot's long-term start, month ends
// clamped; the report tables' date text reads and writes as the storage
// layer's.
TEST(BasisDates, YearStartLongTermDateAndText) {
  EXPECT_EQ(YearStart(D("12/31/2025")).ToString(), "01/01/2025");
  EXPECT_EQ(YearStart(D("06/30/2025")).ToString(), "07/01/2024");
  EXPECT_EQ(YearStart(D("02/29/2024")).ToString(), "03/01/2023");
  EXPECT_EQ(LongTermDate(D("02/29/2024")).ToString(), "03/01/2025");
  EXPECT_EQ(LongTermDate(D("12/31/2024")).ToString(), "01/01/2026");
  for (const char* date : {"01/01/1900", "02/29/2024", "12/31/9999", "07/04/0100"}) {
    EXPECT_EQ(ReportDateText(D(date)), D(date).ToIso());
    EXPECT_EQ(ReportDate(D(date).ToIso()), D(date));
  }
  for (const char* bad : {"", "2024-02-30", "2024-1-05", "20x4-01-05"}) {
    EXPECT_EQ(ReportDate(bad), Date()) << bad;
  }
}

}  // namespace
}  // namespace lotwise::testing
