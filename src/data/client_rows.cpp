#include "data/client_rows.h"

#include "data/database.h"

namespace lotwise {

namespace {

// A Client row's values; a missing year end is stored as NULL.
Params ClientValues(const ClientOnFile& row) {
  return {{"name", row.name},
          {"sort", row.sort_name},
          {"code", row.code},
          {"line", row.second_line},
          {"year_end", row.year_end ? Value{*row.year_end} : Value{}}};
}

}  // namespace

void InsertClientRow(Database& client, const ClientOnFile& row) {
  client.Execute(
      R"(INSERT INTO "Client" ("Client Name", "Sort Name", "Client Code", "2nd Line", "Year End") )"
      R"(VALUES (:name, :sort, :code, :line, :year_end))",
      ClientValues(row));
}

void WriteClientRow(Database& client, const ClientOnFile& row) {
  if (client.Execute(R"(UPDATE "Client" SET "Client Name" = :name, "Sort Name" = :sort, )"
                     R"("Client Code" = :code, "2nd Line" = :line, "Year End" = :year_end)",
                     ClientValues(row)) == 0) {
    InsertClientRow(client, row);
  }
}

void InsertPortfolioRow(Database& client, const PortfolioOnFile& row,
                        const std::string& client_code) {
  client.Execute(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line", "Client Code") )"
                 R"(VALUES (:name, :line, :code))",
                 {{"name", row.name}, {"line", row.second_line}, {"code", client_code}});
}

int64_t ChangePortfolioRow(Database& client, const std::string& current, const PortfolioOnFile& now,
                           const std::string& client_code) {
  return client.Execute(
      R"(UPDATE "Portfolio" SET "Port Name" = :name, "2nd Line" = :line, "Client Code" = :code )"
      R"(WHERE "Port Name" = :current)",
      {{"name", now.name}, {"line", now.second_line}, {"code", client_code}, {"current", current}});
}

void DeletePortfolioRow(Database& client, const std::string& name) {
  client.ExecuteSaved("DelPortfolio", {{"sPortName", name}});
}

void InsertSecurityRow(Database& client, const std::string& port_name, const std::string& symbol,
                       const std::string& second_line) {
  client.Execute(R"(INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line") )"
                 R"(VALUES (:symbol, :port, :line))",
                 {{"symbol", symbol}, {"port", port_name}, {"line", second_line}});
}

void DeleteSecurityRow(Database& client, const std::string& port_name, const std::string& symbol) {
  client.ExecuteSaved("Delete Security", {{"sPortName", port_name}, {"sSecSymbol", symbol}});
}

void SetSecuritySecondLine(Database& client, const std::string& port_name,
                           const std::string& symbol, const std::string& second_line) {
  client.Execute(R"(UPDATE "Security" SET "2nd Line" = :line WHERE "Port Name" = :port )"
                 R"(AND "Sec Symbol" = :symbol)",
                 {{"line", second_line}, {"port", port_name}, {"symbol", symbol}});
}

}  // namespace lotwise
