#include "support/scenario.h"

#include <utility>

namespace lotwise::testing {

namespace {

// Notes left empty stay null, as the entry windows leave them.
Value NotesValue(const std::string& notes) { return notes.empty() ? Value() : Value(notes); }

}  // namespace

Day::Day(const char* text) : value(*Date::Parse(text)) {}
Amount::Amount(const char* text) : value(*Currency::Parse(text)) {}

Scenario::Scenario(Database& client, Database* central)
    : client_([&client]() -> Database& { return client; }),
      central_([central] { return central; }) {}

Scenario::Scenario(std::function<Database&()> client, std::function<Database*()> central)
    : client_(std::move(client)), central_(std::move(central)) {}

void Scenario::Taxpayer(const std::string& code, const std::string& name,
                        const std::string& second_line) {
  client_().Execute(
      R"(INSERT INTO "Client" ("Client Name", "Sort Name", "Client Code", "2nd Line", "Year End") )"
      R"(VALUES (:name, :name, :code, :line, :ye))",
      {{"name", name}, {"code", code}, {"line", second_line}, {"ye", Date::FromYmd(2025, 12, 31)}});
}

void Scenario::TaxpayerIndex(const std::string& code, const std::string& name,
                             const std::string& sort_name, const std::string& file_name) {
  central_()->Execute(
      R"(INSERT INTO "Clients" ("Client Code", "Client Name", "Sort Name", "File Name") )"
      R"(VALUES (:code, :name, :sort, :file))",
      {{"code", code}, {"name", name}, {"sort", sort_name}, {"file", file_name}});
}

void Scenario::Portfolio(const std::string& name, const std::string& second_line,
                         const std::string& code) {
  client_().Execute(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line", "Client Code") )"
                    R"(VALUES (:p, :line, :code) ON CONFLICT DO NOTHING)",
                    {{"p", name}, {"line", second_line}, {"code", code}});
}

int64_t Scenario::Security(const std::string& symbol, const std::string& port,
                           const char* second_line) {
  Database& db = client_();
  db.Execute(
      R"(INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line") VALUES (:s, :p, :l))",
      {{"s", symbol}, {"p", port}, {"l", second_line ? Value(std::string(second_line)) : Value()}});
  return db.LastInsertId();
}

void Scenario::SecurityName(const std::string& symbol, const std::string& name,
                            const std::string& cusip) {
  central_()->Execute(R"(INSERT OR IGNORE INTO "Securities" ("Sec Symbol", "Sec Name", "CUSIP") )"
                      R"(VALUES (:s, :n, :c))",
                      {{"s", symbol}, {"n", name}, {"c", cusip}});
}

void Scenario::SellMethod(const std::string& symbol, int method) {
  client_().Execute(
      R"(INSERT OR REPLACE INTO "Sell Method" ("Sec Symbol", "Sell Method") VALUES (:s, :m))",
      {{"s", symbol}, {"m", method}});
}

int64_t Scenario::Buy(int64_t sec_id, Day date, double shares, Amount cost, Amount fee,
                      int16_t type, const std::string& block_id, const std::string& notes) {
  Database& db = client_();
  std::string id = block_id;
  if (id.empty()) {
    Query q =
        db.Select(R"(SELECT count(*) AS n FROM "Blocks" WHERE "Date" = :d)", {{"d", date.value}});
    q.Next();
    id = date.value.ToString() + "-" + std::to_string(q.Int("n") + 1);
  }
  db.Execute(R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, :id, :d))",
             {{"s", sec_id}, {"id", id}, {"d", date.value}});
  const int64_t block_no = db.LastInsertId();
  db.Execute(R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Cost", "Shares", "Fee", "Notes", )"
             R"("Prec Sort") VALUES (:n, :d, :t, :c, :sh, :f, :notes, :p))",
             {{"n", block_no},
              {"d", date.value},
              {"t", type},
              {"c", cost.value},
              {"sh", shares},
              {"f", fee.value},
              {"notes", NotesValue(notes)},
              {"p", type == kTypeReinvest ? kPrecReinvest : kPrecBuy}});
  return block_no;
}

void Scenario::Sell(int64_t block_no, Day date, double shares, Amount price, Amount fee,
                    const std::string& notes) {
  client_().Execute(
      R"(INSERT INTO "Sell" ("Block No", "Date", "Sale Price", "Fee", "Shares", "Notes", )"
      R"("Prec Sort") VALUES (:n, :d, :p, :f, :sh, :notes, :prec))",
      {{"n", block_no},
       {"d", date.value},
       {"p", price.value},
       {"f", fee.value},
       {"sh", -shares},
       {"notes", NotesValue(notes)},
       {"prec", kPrecSell}});
}

void Scenario::Split(int64_t block_no, Day date, double pre, double post, double shares,
                     int16_t type) {
  client_().Execute(
      R"(INSERT INTO "Split" ("Block No", "Date", "Type", "Pre Ratio", "Post Ratio", "Shares", )"
      R"("Prec Sort") VALUES (:n, :d, :t, :pre, :post, :sh, :p))",
      {{"n", block_no},
       {"d", date.value},
       {"t", type},
       {"pre", pre},
       {"post", post},
       {"sh", shares},
       {"p", type == kTypeDividend ? kPrecDividend : kPrecSplit}});
}

void Scenario::Adjust(int64_t block_no, Day date, double shares, Amount cost) {
  client_().Execute(
      R"(INSERT INTO "Adjust" ("Block No", "Date", "Shares", "Cost", "Prec Sort") )"
      R"(VALUES (:n, :d, :sh, :c, :p))",
      {{"n", block_no}, {"d", date.value}, {"sh", shares}, {"c", cost.value}, {"p", kPrecAdjust}});
}

}  // namespace lotwise::testing
