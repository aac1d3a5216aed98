#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "data/database.h"
#include "reports/report_document.h"
#include "reports/report_engine.h"
#include "reports/report_runner.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

// Money in the report tables: whole ten-thousandths.
inline int64_t Units(double amount) { return Currency::FromDouble(amount).units(); }

// A report database filled row by row with plain SQL, as the report
// procedures leave it, and the definitions of the program folder.
class ReportTest : public AppTest {
 public:
  void SetUp() override {
    AppTest::SetUp();
    db_ = Database::OpenScratch(app_->report_db_path);
  }
  void TearDown() override {
    db_.reset();
    AppTest::TearDown();
  }

  void Sql(const std::string& sql, const Params& params = {}) { db_->Execute(sql, params); }

  void Usage(int count) { Sql(R"(INSERT INTO "Usage" VALUES (:n))", {{"n", count}}); }
  void BAInfo(const std::string& name, const std::string& code, const std::string& second,
              const std::string& year_end, const std::string& type) {
    Sql(R"(INSERT INTO "BA Info" VALUES (:name, :code, :second, :ye, :type))",
        {{"name", name}, {"code", code}, {"second", second}, {"ye", year_end}, {"type", type}});
  }
  void BASec(const std::string& symbol, const std::string& name, const std::string& sell,
             double shares, double cost, double basis) {
    Sql(R"(INSERT INTO "BA Secs" VALUES (:s, :n, :m, :sh, :c, :b))", {{"s", symbol},
                                                                      {"n", name},
                                                                      {"m", sell},
                                                                      {"sh", shares},
                                                                      {"c", Units(cost)},
                                                                      {"b", basis}});
  }
  int64_t BABlock(const std::string& symbol, const std::string& port, const std::string& id,
                  const std::string& acquired) {
    Sql(R"(INSERT INTO "BA Blocks" ("Sec Symbol", "Port Name", "Block ID", "Date Acqrd")
           VALUES (:s, :p, :id, :d))",
        {{"s", symbol}, {"p", port}, {"id", id}, {"d", acquired}});
    return db_->LastInsertId();
  }
  struct Trans {
    int trans_no;
    std::string transaction;
    std::string date;
    double shares;
    double sale_price;
    double total_shares;
    double cost;
    double total_cost;
    double fee;
    double basis;
  };
  void BATrans(int64_t block, const Trans& t) {
    Sql(R"(INSERT INTO "BA Trans" ("Block No", "TransNo", "Transaction", "Date", "Date Acqrd",
           "Shares", "Sale Price", "Total Shares", "Cost", "Total Cost", "Fee", "Basis Per Share")
           VALUES (:b, :n, :t, :d, :d, :sh, :sp, :ts, :c, :tc, :f, :bps))",
        {{"b", block},
         {"n", t.trans_no},
         {"t", t.transaction},
         {"d", t.date},
         {"sh", t.shares},
         {"sp", Units(t.sale_price)},
         {"ts", t.total_shares},
         {"c", Units(t.cost)},
         {"tc", Units(t.total_cost)},
         {"f", Units(t.fee)},
         {"bps", t.basis}});
  }
  void SchedD(const std::string& acquired, const std::string& sold, double shares,
              const std::string& symbol, double price, double cost, bool long_term) {
    Sql(R"(INSERT INTO "Sched D" VALUES (:a, :s, :sh, :sym, :p, :c, :g, :lt))",
        {{"a", acquired},
         {"s", sold},
         {"sh", shares},
         {"sym", symbol},
         {"p", Units(price)},
         {"c", Units(cost)},
         {"g", Units(price) - Units(cost)},
         {"lt", long_term}});
  }

  // The basis run of John Doe for 2023: ABC (FIFO, one lot, part sold long
  // term), XYZ (single-category average, sold out short term, with its
  // pool) and MMM (double-category average, no rows of its own).
  void FillBasisRun() {
    Usage(12);
    BAInfo("John Doe", "DOE01", "John Doe Family Trust", "2023-12-31", "Taxpayer");
    BASec("ABC", "Abc Growth Fund", "FIFO", 60, 606, 10.1);
    BASec("XYZ", "Xyz Income Fund", "Average Cost - Single Cat.", 0, 0, 0);
    BASec("MMM", "Mmm Money Fund", "Average Cost - Double Cat.", 1234.56789, 12345.67, 10.0000081);
    int64_t pool = BABlock("XYZ", "ZZZZZZZZZZZZZZZZZZZZ", "Average Cost", "1900-01-01");
    int64_t abc = BABlock("ABC", "Growth", "01/03/2022-1", "2022-01-03");
    int64_t xyz = BABlock("XYZ", "Growth", "02/01/2023-1", "2023-02-01");
    BABlock("ABC", "Income", "05/05/2023-1", "2023-05-05");  // no rows: not shown
    BATrans(abc, {0, "Buy", "2022-01-03", 100, 0, 100, 1010, 1010, 10, 10.1});
    BATrans(abc, {1, "Sell", "2023-06-01", -40, 600, 60, -404, 606, 5, 10.1});
    BATrans(xyz, {0, "Buy", "2023-02-01", 50, 0, 50, 500, 500, 0, 10});
    BATrans(xyz, {1, "Sell", "2023-09-01", -50, 450, 0, -500, 0, 5, 0});
    BATrans(pool, {10, "Buy", "2023-02-01", 50, 0, 50, 500, 500, 0, 10});
    BATrans(pool, {40, "Sell", "2023-09-01", -50, 450, 0, -500, 0, 5, 0});
    SchedD("2022-01-03", "2023-06-01", 40, "ABC", 600, 409, true);
    SchedD("2023-02-01", "2023-09-01", 30, "XYZ", 270, 303, false);
    SchedD("2023-02-01", "2023-09-15", 20, "XYZ", 180, 202, false);
  }

  void FillTransList() {
    Usage(7);
    Sql(R"(INSERT INTO "TL Info" VALUES ('Jane Roe', 'ROE01', 'Jane Roe', '2023-01-01', '2023-12-31',
           'Portfolio'))");
    Sql(R"(INSERT INTO "TL Port" VALUES ('Income'))");
    Sql(R"(INSERT INTO "TL Port" VALUES ('bonds'))");
    Sql(R"(INSERT INTO "TL Sec" VALUES ('Income', 'Def | Co "Class A"', 'DEF', 42))");
    Sql(R"(INSERT INTO "TL Sec" VALUES ('Income', 'Abd Old Fund', 'abd', 43))");
    Sql(R"(INSERT INTO "TL Sec" VALUES ('Income', 'Abc Growth Fund', 'ABC', 41))");
    Sql(R"(INSERT INTO "TL Trans" VALUES (41, '2023-07-01', 'Sell', -10, 0, 50000, 1500000))");
    Sql(R"(INSERT INTO "TL Trans" VALUES (41, '2023-03-01', 'Buy', 25.5, 2550000, 0, NULL))");
    Sql(R"(INSERT INTO "TL Trans" VALUES (41, '2023-08-01', 'Stock Split (1 to 2)', 15.5, 0, 0,
           NULL))");
    Sql(R"(INSERT INTO "TL Trans" VALUES (99, '2023-08-01', 'Buy', 1, 10000, 0, NULL))");
  }

  void FillListings() {
    Usage(3);
    Sql(R"(INSERT INTO "Client Report" VALUES ('Zed Adams', 'Adams, Zed', 'ADA01', 'Zed Adams',
           '2023-12-31', 'ADA0101.mdb', NULL))");
    Sql(R"(INSERT INTO "Client Report" VALUES ('Bob Brown', 'Brown, Bob', 'BRO01', 'Bob Brown Estate',
           NULL, 'BRO0101.mdb', 'Taxpayer File Missing'))");
    Sql(R"(INSERT INTO "Portfolio Report" VALUES ('Retirement', 'IRA account ', 'ADA01'))");
    Sql(R"(INSERT INTO "Portfolio Report" VALUES ('Brokerage', ' ', 'ADA01'))");
    Sql(R"(INSERT INTO "Sec List Report" VALUES ('Retirement', 'XYZ', 'Xyz Income Fund',
           '123456789', ' ', '2'))");
    Sql(R"(INSERT INTO "Sec List Report" VALUES ('Brokerage', 'XYZ', 'Xyz Income Fund',
           '123456789', 'held in street name ', 'FIFO'))");
    Sql(R"(INSERT INTO "Sec List Report" VALUES ('Brokerage', 'ABC', 'Abc Growth Fund',
           'NO CUSIP', ' ', '255'))");
  }

  ReportDocument Render(const std::string& file, const std::string& title = "Caption") {
    return RenderReport(ReportFilePath(*app_, file), *db_, title);
  }

  // The lines of the document's plain text, pages run together.
  static std::vector<std::string> Lines(const ReportDocument& document) {
    std::vector<std::string> lines;
    std::string line;
    for (char c : document.PlainText()) {
      if (c == '\n' || c == '\f') {
        if (!line.empty()) lines.push_back(line);
        line.clear();
      } else {
        line += c;
      }
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
  }

  // Writes a definition file into the program folder.
  std::string WriteDefinition(const std::string& name, const std::string& text);

  std::unique_ptr<Database> db_;
};

}  // namespace lotwise::testing
