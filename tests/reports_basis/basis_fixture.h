#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "data/application.h"
#include "data/database.h"
#include "data/transaction_store.h"
#include "ground/number_text.h"
#include "reports/basis_report.h"
#include "support/app_fixture.h"
#include "support/golden.h"
#include "support/values.h"

namespace lotwise::testing {

using Rows = std::vector<std::string>;

// The report messages are in this folder's golden/messages.txt.
inline const char* const kReportsSource = __FILE__;

// A taxpayer with the portfolio "Growth", and helpers that run the
// computation and read the report tables back as text rows.
class BasisTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    Portfolio("Growth");
  }

  // The symbol held in `port`; its sell method row when `method` >= 0 (the
  // security has none otherwise, which reads as 255).
  int64_t AddSecurity(const std::string& symbol, int method, const std::string& port = "Growth") {
    const int64_t sec_id = Security(symbol, port);
    if (method >= 0) SellMethod(symbol, method);
    SecurityName(symbol, symbol + " Corp");
    return sec_id;
  }
  int64_t AddSecurity(const std::string& symbol, lotwise::SellMethod method,
                      const std::string& port = "Growth") {
    return AddSecurity(symbol, int{CodeOf(method)}, port);
  }

  bool Run(BasisKind kind = BasisKind::kBoth, const char* year_end = "12/31/2025",
           ReportScope scope = ReportScope::kTaxpayer) {
    return CalcBasisSchedDRpt(*app_, scope, D(year_end), kind);
  }

  std::unique_ptr<Database> Report() { return Database::Open(app_->report_db_path); }

  // The rows of `sql` on the report database, each the named columns as
  // text joined by `separator`; `columns` is "kind:name,kind:name...", the
  // kinds: i integer, t text, d date, n number, m money, b long/short term.
  Rows ReportRows(const std::string& sql, const std::string& columns, const char* separator = " ",
                  const Params& params = {}) {
    auto db = Report();
    Query q = db->Select(sql, params);
    Rows rows;
    while (q.Next()) {
      std::string line;
      std::istringstream list(columns);
      for (std::string column, sep; std::getline(list, column, ','); sep = separator) {
        const char* name = column.c_str() + 2;
        line += sep;
        line += column[0] == 'i'   ? std::to_string(q.Int(name))
                : column[0] == 'd' ? q.DateValue(name).ToString()
                : column[0] == 'n' ? NumberText(q.Double(name))
                : column[0] == 'm' ? q.Money(name).ToString()
                : column[0] == 'b' ? (q.Bool(name) ? "LT" : "ST")
                                   : q.Text(name);
      }
      rows.push_back(line);
    }
    return rows;
  }
  // The "BA Trans" rows of the blocks with this Block ID (real blocks by
  // their id, pools by theirs), of one security when `symbol` is given, in
  // the order the pools apply them:
  // "TransNo Transaction Date Acquired Shares Sale Cost TotalShares TotalCost Fee Basis".
  Rows TransRows(const std::string& block_id, const std::string& symbol = "") {
    return ReportRows(
        R"(SELECT T.* FROM "BA Trans" AS T JOIN "BA Blocks" AS B ON B."Block No" = T."Block No" )"
        R"(WHERE B."Block ID" = :id AND :sym IN ('', B."Sec Symbol") )"
        R"(ORDER BY T."Date", T."TransNo", T."Trans Row")",
        "i:TransNo,t:Transaction,d:Date,d:Date Acqrd,n:Shares,m:Sale Price,m:Cost,n:Total Shares,"
        "m:Total Cost,m:Fee,n:Basis Per Share",
        " ", {{"id", block_id}, {"sym", symbol}});
  }
  // "Acquired Sold Shares Symbol Price Cost Gain LT|ST", in the order written.
  Rows SchedDRows() {
    return ReportRows(R"(SELECT * FROM "Sched D" ORDER BY rowid)",
                      "d:Date Acqrd,d:Date Sold,n:Shares,t:Sec Symbol,m:Sale Price,m:Cost,"
                      "m:GainLoss,b:Long Term");
  }
  // "Symbol|Name|Method|Shares|Cost|Basis", in the order written.
  Rows SecsRows() {
    return ReportRows(R"(SELECT * FROM "BA Secs" ORDER BY rowid)",
                      "t:Sec Symbol,t:Sec Name,t:Sell Name,n:Total Shares,m:Total Cost,"
                      "n:Basis Per Share",
                      "|");
  }
  long long CountReportRows(const std::string& table) {
    return std::stoll(ReportRows("SELECT count(*) AS n FROM \"" + table + "\"", "i:n").at(0));
  }
  // The walk's tables (of the report database at `path`, by default the
  // run's) hold nothing.
  void ExpectNoWalkRows(const std::string& path = "") {
    auto db = Database::Open(path.empty() ? app_->report_db_path : path);
    for (const char* table : {"BA Trans", "BA Blocks", "Sched D", "BA Secs"}) {
      Query q = db->Select("SELECT count(*) AS n FROM \"" + std::string(table) + "\"");
      EXPECT_TRUE(q.Next() && q.Int("n") == 0) << table;
    }
    EXPECT_EQ(db->IntegrityCheck(), "ok");
  }
};

}  // namespace lotwise::testing
