#include "reports/trans_list.h"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

#include "app/app_state.h"
#include "app/taxpayer_file.h"
#include "data/central_file.h"
#include "data/transaction_store.h"
#include "ground/number_text.h"
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

// Each scope and range (golden/scopes.txt) lists its portfolios (even one
// without securities), their securities, and the transactions with both
// bounds included, per security in the order the Basis Analysis applies
// them (a day's adjustment before its sale). Run twice, the tables hold one
// run.
class TransListScopeTest : public TransListTest,
                           public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(TransListScopeTest, CalcTransListRpt_FillsScope) {
  std::istringstream args(GetParam().Lines("").at(0));
  std::string port, sec, begin, end, type;
  args >> port >> sec >> begin >> end >> type;
  for (int run = 0; run < 2; ++run) {
    ASSERT_TRUE(CalcTransListRpt(*app_, port, sec, D(begin.c_str()), D(end.c_str())));
  }
  EXPECT_EQ(ReportRows(R"(SELECT "Port Name" FROM "TL Port" ORDER BY rowid)"),
            GetParam().Lines("ports"));
  EXPECT_EQ(
      ReportRows(R"(SELECT "Port Name", "Sec Name", "Sec Symbol" FROM "TL Sec" ORDER BY rowid)"),
      GetParam().Lines("secs"));
  EXPECT_EQ(Trans(), GetParam().Lines("trans"));
  EXPECT_EQ(ReportRows(R"(SELECT * FROM "TL Info")"),
            Rows{"John Doe|DOE01|John Doe & Jane Doe|" + D(begin.c_str()).ToIso() + "|" +
                 D(end.c_str()).ToIso() + "|" + type});
  EXPECT_EQ(Count("Usage"), "1");
  EXPECT_EQ(Report()->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(Scopes, TransListScopeTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "scopes.txt")),
                         [](const auto& info) { return info.param.name; });

// The run is refused, touching no table, for a bad range (both texts
// checked and named), then for a scope above the open state.
class TransListRefusalTest : public TransListTest,
                             public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(TransListRefusalTest, RunTransListRpt_Refused) {
  // "scope|open state|begin|end|", then "say key [value|value...]" lines.
  const std::vector<std::string> lines = GetParam().Lines("");
  std::istringstream fields(lines.at(0));
  std::string scope, state, begin, end;
  for (std::string* field : {&scope, &state, &begin, &end}) std::getline(fields, *field, '|');
  app_->window.state = state == "portfolio" ? kPortOpen : kClientOpen;
  app_->current.port_name = "Growth";
  for (size_t i = 1; i < lines.size(); ++i) {
    std::istringstream words(lines[i].substr(4));
    std::string key, value;
    std::vector<std::string> values;
    words >> key >> std::ws;
    while (std::getline(words, value, '|')) values.push_back(value);
    ExpectSaid(ui_, kListingsSource, key, Answer::kOk, values);
  }
  EXPECT_FALSE(
      RunTransListRpt(*app_, scope == "security" ? ReportScope::kSecurity : ReportScope::kPortfolio,
                      begin, end, ReportDestination::kScreen));
  EXPECT_EQ(Count("TL Info") + Count("Usage"), "00");
  EXPECT_TRUE(ui_.reports_shown().empty());
}

INSTANTIATE_TEST_SUITE_P(Refusals, TransListRefusalTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "refusals.txt")),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace lotwise::testing
