#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/application.h"
#include "app/number_text.h"
#include "data/database.h"
#include "data/transaction_store.h"
#include "reports/basis_report.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

using Rows = std::vector<std::string>;

inline Date D(const char* text) { return *Date::Parse(text); }
inline Currency Money(const char* text) { return *Currency::Parse(text); }

// A taxpayer with the portfolio "Growth", and helpers that write ledgers
// straight into the Taxpayer File, run the computation and read the report
// tables back as text rows.
class BasisTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    AddPortfolio("Growth");
  }

  void AddPortfolio(const std::string& name) {
    app_->client->Execute(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line", "Client Code") )"
                          R"(VALUES (:p, ' ', 'DOE01'))",
                          {{"p", name}});
  }

  // The symbol held in `port`; its sell method row when `method` >= 0 (the
  // security has none otherwise, which reads as 255).
  int64_t AddSecurity(const std::string& symbol, int method, const std::string& port = "Growth") {
    Database& db = *app_->client;
    db.Execute(R"(INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line") )"
               R"(VALUES (:s, :p, ' '))",
               {{"s", symbol}, {"p", port}});
    const int64_t sec_id = db.LastInsertId();
    if (method >= 0) {
      db.Execute(R"(INSERT OR REPLACE INTO "Sell Method" ("Sec Symbol", "Sell Method") )"
                 R"(VALUES (:s, :m))",
                 {{"s", symbol}, {"m", method}});
    }
    app_->central->Execute(R"(INSERT OR IGNORE INTO "Securities" ("Sec Symbol", "Sec Name", )"
                           R"("CUSIP") VALUES (:s, :n, 'NO CUSIP'))",
                           {{"s", symbol}, {"n", symbol + " Corp"}});
    return sec_id;
  }

  // A new block with its Buy (type 10) or Reinvestment (type 20) row.
  int64_t Buy(int64_t sec_id, const char* date, double shares, const char* cost,
              const char* fee = "0", int type = kTypeBuy) {
    Database& db = *app_->client;
    const std::string block_id = std::string(date) + "-" + std::to_string(++block_seq_[date]);
    db.Execute(R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, :id, :d))",
               {{"s", sec_id}, {"id", block_id}, {"d", D(date)}});
    const int64_t block_no = db.LastInsertId();
    db.Execute(R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Cost", "Shares", "Fee", )"
               R"("Prec Sort") VALUES (:n, :d, :t, :c, :sh, :f, :p))",
               {{"n", block_no},
                {"d", D(date)},
                {"t", type},
                {"c", Money(cost)},
                {"sh", shares},
                {"f", Money(fee)},
                {"p", type == kTypeBuy ? kPrecBuy : kPrecReinvest}});
    return block_no;
  }
  // A sale of `shares` (positive) from the block.
  void Sell(int64_t block_no, const char* date, double shares, const char* price,
            const char* fee = "0") {
    app_->client->Execute(
        R"(INSERT INTO "Sell" ("Block No", "Date", "Sale Price", "Fee", "Shares", "Prec Sort") )"
        R"(VALUES (:n, :d, :p, :f, :sh, 40))",
        {{"n", block_no}, {"d", D(date)}, {"p", Money(price)}, {"f", Money(fee)}, {"sh", -shares}});
  }
  // A split (type 11) or stock dividend (type 21) adding `shares`.
  void Split(int64_t block_no, const char* date, double pre, double post, double shares,
             int type = kTypeSplit) {
    app_->client->Execute(
        R"(INSERT INTO "Split" ("Block No", "Date", "Type", "Pre Ratio", "Post Ratio", "Shares", )"
        R"("Prec Sort") VALUES (:n, :d, :t, :pre, :post, :sh, :p))",
        {{"n", block_no},
         {"d", D(date)},
         {"t", type},
         {"pre", pre},
         {"post", post},
         {"sh", shares},
         {"p", type == kTypeSplit ? kPrecSplit : kPrecDividend}});
  }
  void Adjust(int64_t block_no, const char* date, double shares, const char* cost) {
    app_->client->Execute(
        R"(INSERT INTO "Adjust" ("Block No", "Date", "Shares", "Cost", "Prec Sort") )"
        R"(VALUES (:n, :d, :sh, :c, 30))",
        {{"n", block_no}, {"d", D(date)}, {"sh", shares}, {"c", Money(cost)}});
  }

  bool Run(BasisKind kind = BasisKind::kBoth, const char* year_end = "12/31/2025",
           ReportScope scope = ReportScope::kTaxpayer) {
    return CalcBasisSchedDRpt(*app_, scope, D(year_end), kind);
  }

  std::unique_ptr<Database> Report() { return Database::Open(app_->report_db_path); }

  // The rows of `sql` on the report database, each the named columns as
  // text joined by `separator`; the kinds: i integer, t text, d date,
  // n number, m money, b long/short term.
  Rows ReportRows(const std::string& sql, const std::vector<std::pair<char, const char*>>& columns,
                  const char* separator = " ", const Params& params = {}) {
    auto db = Report();
    Query q = db->Select(sql, params);
    Rows rows;
    while (q.Next()) {
      std::string line;
      for (size_t i = 0; i < columns.size(); ++i) {
        const auto& [kind, name] = columns[i];
        if (i > 0) line += separator;
        switch (kind) {
          case 'i':
            line += std::to_string(q.Int(name));
            break;
          case 'd':
            line += q.DateValue(name).ToString();
            break;
          case 'n':
            line += NumberText(q.Double(name));
            break;
          case 'm':
            line += q.Money(name).ToString();
            break;
          case 'b':
            line += q.Bool(name) ? "LT" : "ST";
            break;
          default:
            line += q.Text(name);
            break;
        }
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
        {{'i', "TransNo"},
         {'t', "Transaction"},
         {'d', "Date"},
         {'d', "Date Acqrd"},
         {'n', "Shares"},
         {'m', "Sale Price"},
         {'m', "Cost"},
         {'n', "Total Shares"},
         {'m', "Total Cost"},
         {'m', "Fee"},
         {'n', "Basis Per Share"}},
        " ", {{"id", block_id}, {"sym", symbol}});
  }
  // "Acquired Sold Shares Symbol Price Cost Gain LT|ST", in the order written.
  Rows SchedDRows() {
    return ReportRows(R"(SELECT * FROM "Sched D" ORDER BY rowid)", {{'d', "Date Acqrd"},
                                                                    {'d', "Date Sold"},
                                                                    {'n', "Shares"},
                                                                    {'t', "Sec Symbol"},
                                                                    {'m', "Sale Price"},
                                                                    {'m', "Cost"},
                                                                    {'m', "GainLoss"},
                                                                    {'b', "Long Term"}});
  }
  // "Symbol|Name|Method|Shares|Cost|Basis", in the order written.
  Rows SecsRows() {
    return ReportRows(R"(SELECT * FROM "BA Secs" ORDER BY rowid)",
                      {{'t', "Sec Symbol"},
                       {'t', "Sec Name"},
                       {'t', "Sell Name"},
                       {'n', "Total Shares"},
                       {'m', "Total Cost"},
                       {'n', "Basis Per Share"}},
                      "|");
  }
  long long CountReportRows(const std::string& table) {
    auto db = Report();
    Query q = db->Select("SELECT count(*) AS n FROM \"" + table + "\"");
    q.Next();
    return q.Int("n");
  }
  // The walk's tables hold nothing.
  void ExpectNoWalkRows() {
    for (const char* table : {"BA Trans", "BA Blocks", "Sched D", "BA Secs"}) {
      EXPECT_EQ(CountReportRows(table), 0) << table;
    }
  }

 private:
  std::map<std::string, int> block_seq_;
};

}  // namespace lotwise::testing
