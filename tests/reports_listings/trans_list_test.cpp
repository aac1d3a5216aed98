#include "reports/trans_list.h"

#include <gtest/gtest.h>

#include <utility>

#include "app/app_state.h"
#include "app/number_text.h"
#include "data/transaction_store.h"
#include "reports_listings/listing_fixture.h"

namespace lotwise::testing {
namespace {

// Portfolios Bonds (VBTLX), Growth (IBM, MSFT) and Income (empty). IBM's
// two blocks carry a transaction of every kind; the sale and the
// adjustment entered after it share a day.
class TransListTest : public ReportTest {
 protected:
  void SetUp() override {
    ReportTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    app_->current.client_2nd_line = "& Jane Doe ";
    for (const char* port : {"Growth", "Income", "Bonds"}) Portfolio(port);
    for (const char* symbol : {"IBM", "MSFT", "VBTLX"})
      SecurityName(symbol, symbol + std::string(" Corp"));
    const int64_t ibm = Security("IBM", "Growth");
    const int64_t a = Buy(ibm, "01/02/2024", 100, "1000", "5");
    const int64_t b = Buy(ibm, "03/01/2024", 10, "120", "0", kTypeReinvest);
    Sell(a, "06/03/2024", 40, "500", "7");
    Split(a, "07/01/2024", 1, 2, 60);
    Adjust(a, "06/03/2024", 0, "-25.5");
    Split(b, "08/01/2024", 1, 10, 1, kTypeDividend);
    Buy(Security("MSFT", "Growth"), "12/31/2024", 5, "2000");
    Buy(Security("VBTLX", "Bonds"), "01/01/2024", 50, "500");
    app_->window.state = kClientOpen;
  }

  // "symbol|date|transaction|shares|cost|fee|sale price" in the order written.
  Rows Trans() {
    auto report = Report();
    Query q = report->Select(R"(SELECT S."Sec Symbol", T.* FROM "TL Trans" AS T JOIN "TL Sec" )"
                             R"(AS S ON S."Sec ID" = T."Sec ID" ORDER BY T.rowid)");
    Rows rows;
    while (q.Next()) {
      rows.push_back(q.Text("Sec Symbol") + "|" + q.DateValue("Date").ToString() + "|" +
                     q.Text("Transaction") + "|" + NumberText(q.Double("Shares")) + "|" +
                     q.Money("Cost").ToString() + "|" + q.Money("Fee").ToString() + "|" +
                     (q.IsNull("Sale Price") ? "-" : q.Money("Sale Price").ToString()));
    }
    return rows;
  }
};

const Rows kIbm = {
    "IBM|01/02/2024|Buy|100|1000|5|-",
    "IBM|03/01/2024|Reinvestment|10|120|0|-",
    "IBM|06/03/2024|Adjustment|0|-25.5|0|-",
    "IBM|06/03/2024|Sell|-40|0|7|500",
    "IBM|07/01/2024|Stock Split 1 for 2|60|0|0|-",
    "IBM|08/01/2024|Stock Div. 1 per 10|1|0|0|-",
};
const std::string kMsft = "MSFT|12/31/2024|Buy|5|2000|0|-";
const Rows kAllPorts = {"Bonds", "Growth", "Income"};
const Rows kAllSecs = {"Bonds|VBTLX Corp|VBTLX", "Growth|IBM Corp|IBM", "Growth|MSFT Corp|MSFT"};

// Each scope and range lists its portfolios (even one without securities),
// their securities, and the transactions with both bounds included, per
// security in the order the Basis Analysis applies them (a day's
// adjustment before its sale).
// Run twice, the tables hold one run.
struct ScopeCase {
  const char *name, *port, *sec, *begin, *end;
  Rows ports, secs, trans;
  const char* type;
};

class TransListScopeTest : public TransListTest, public ::testing::WithParamInterface<ScopeCase> {};

TEST_P(TransListScopeTest, CalcTransListRpt_FillsScope) {
  const ScopeCase& c = GetParam();
  for (int run = 0; run < 2; ++run) {
    ASSERT_TRUE(CalcTransListRpt(*app_, c.port, c.sec, D(c.begin), D(c.end)));
  }
  EXPECT_EQ(ReportRows(R"(SELECT "Port Name" FROM "TL Port" ORDER BY rowid)"), c.ports);
  EXPECT_EQ(
      ReportRows(R"(SELECT "Port Name", "Sec Name", "Sec Symbol" FROM "TL Sec" ORDER BY rowid)"),
      c.secs);
  EXPECT_EQ(Trans(), c.trans);
  EXPECT_EQ(ReportRows(R"(SELECT * FROM "TL Info")"),
            Rows{std::string("John Doe|DOE01|John Doe & Jane Doe|") + D(c.begin).ToIso() + "|" +
                 D(c.end).ToIso() + "|" + c.type});
  EXPECT_EQ(Count("Usage"), "1");
  EXPECT_EQ(Report()->IntegrityCheck(), "ok");
}

Rows Growth() {
  Rows growth = kIbm;
  growth.push_back(kMsft);
  return growth;
}
Rows All() {
  Rows all = Growth();
  all.insert(all.begin(), "VBTLX|01/01/2024|Buy|50|500|0|-");
  return all;
}

const Rows kNone;
const Rows kGrowthPort = {"Growth"};
const Rows kGrowthSecs = {kAllSecs[1], kAllSecs[2]};
const Rows kMsftSec = {kAllSecs[2]};
const Rows kOnBounds = {kIbm[2], kIbm[3], kIbm[4]};

INSTANTIATE_TEST_SUITE_P(
    Scopes, TransListScopeTest,
    ::testing::Values(ScopeCase{"Taxpayer", "*", "*", "01/01/1900", "12/31/9999", kAllPorts,
                                kAllSecs, All(), "Taxpayer"},
                      ScopeCase{"Portfolio", "Growth", "*", "01/01/1900", "12/31/9999", kGrowthPort,
                                kGrowthSecs, Growth(), "Portfolio"},
                      ScopeCase{"Security", "Growth", "MSFT", "01/01/1900", "12/31/9999",
                                kGrowthPort, kMsftSec, Rows{kMsft}, "Security"},
                      ScopeCase{"BoundsIncluded", "*", "*", "06/03/2024", "07/01/2024", kAllPorts,
                                kAllSecs, kOnBounds, "Taxpayer"},
                      ScopeCase{"PortfolioWithoutSecurities", "Income", "*", "01/01/1900",
                                "12/31/9999", Rows{"Income"}, kNone, kNone, "Portfolio"}),
    [](const ::testing::TestParamInfo<ScopeCase>& info) { return info.param.name; });

// The run is refused, touching no table, for a bad range (both texts
// checked and named), then for a scope above the open state.
struct RefusalCase {
  const char* name;
  ReportScope scope;
  int16_t state;
  const char *begin, *end;
  std::vector<std::pair<const char*, std::vector<std::string>>> messages;  // key, values
};

class TransListRefusalTest : public TransListTest,
                             public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(TransListRefusalTest, RunTransListRpt_Refused) {
  const RefusalCase& c = GetParam();
  app_->window.state = c.state;
  app_->current.port_name = "Growth";
  for (const auto& [key, values] : c.messages) {
    ExpectSaid(ui_, kListingsSource, key, Answer::kOk, values);
  }
  EXPECT_FALSE(RunTransListRpt(*app_, c.scope, c.begin, c.end, ReportDestination::kScreen));
  EXPECT_EQ(Count("TL Info") + Count("Usage"), "00");
  EXPECT_TRUE(ui_.reports_shown().empty());
}

using Said = std::vector<std::pair<const char*, std::vector<std::string>>>;
const Said kBothBad = {{"bad_date", {"Beginning Date", "02/30/2024", "Beginning Date"}},
                       {"bad_date", {"Ending Date", "  /  /    ", "Ending Date"}}};

INSTANTIATE_TEST_SUITE_P(
    Refusals, TransListRefusalTest,
    ::testing::Values(RefusalCase{"BothDatesBad", ReportScope::kSecurity, kClientOpen, "02/30/2024",
                                  "  /  /    ", kBothBad},
                      RefusalCase{"SecurityNotOpen", ReportScope::kSecurity, kPortOpen,
                                  "01/01/2024", "01/02/2024", Said{{"need_security", {}}}},
                      RefusalCase{"PortfolioNotOpen", ReportScope::kPortfolio, kClientOpen,
                                  "01/01/2024", "01/02/2024", Said{{"need_portfolio", {}}}}),
    [](const ::testing::TestParamInfo<RefusalCase>& info) { return info.param.name; });

}  // namespace
}  // namespace lotwise::testing
