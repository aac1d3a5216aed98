#include "data/security_rows.h"

#include "data/database.h"
#include "data/query_builders.h"

namespace lotwise {

namespace {

// Reads the rows of the saved security queries, which share one shape.
std::vector<SecurityOnFile> ReadSecurities(Query& q) {
  std::vector<SecurityOnFile> rows;
  while (q.Next()) {
    SecurityOnFile& row = rows.emplace_back();
    row.port_name = q.Text("Port Name");
    row.symbol = q.Text("Sec Symbol");
    row.second_line = q.OptionalText("2nd Line");
    row.sec_id = q.Int("Sec ID");
    if (!q.IsNull("Sell Method")) row.sell_method = SellMethodAsStored(q.Int("Sell Method"));
  }
  return rows;
}

}  // namespace

std::optional<SecurityOnFile> FindSecurity(Database& client, std::string_view port_name,
                                           std::string_view symbol) {
  Query q =
      client.SelectSaved("Get a Security", {{"sPortName", port_name}, {"sSecSymbol", symbol}});
  std::vector<SecurityOnFile> rows = ReadSecurities(q);
  if (rows.empty()) return std::nullopt;
  return std::move(rows.front());
}

std::vector<SecurityOnFile> AllSecurities(Database& client) {
  Query q = client.SelectSaved("All Secs");
  return ReadSecurities(q);
}

std::vector<SecurityOnFile> SecuritiesInPort(Database& client, std::string_view port_name) {
  Query q = client.SelectSaved("Secs In Port", {{"sPortName", port_name}});
  return ReadSecurities(q);
}

std::vector<SecurityOnFile> SecurityListOfPort(Database& client, std::string_view port_name) {
  std::vector<SecurityOnFile> rows;
  Query q = Select(client, Query_SecsInPort(port_name));
  while (q.Next()) {
    SecurityOnFile& row = rows.emplace_back();
    row.port_name = std::string(port_name);
    row.symbol = q.Text("Sec Symbol");
    row.second_line = q.OptionalText("2nd Line");
    row.sec_id = q.Int("Sec ID");
  }
  return rows;
}

std::vector<SecurityOnFile> DistinctSecurities(Database& client, std::string_view symbol_filter) {
  std::vector<SecurityOnFile> rows;
  Query q = client.SelectSaved("Distinct Secs", {{"sSymbol", symbol_filter}});
  while (q.Next()) {
    SecurityOnFile& row = rows.emplace_back();
    row.symbol = q.Text("Sec Symbol");
    if (!q.IsNull("Sell Method")) row.sell_method = SellMethodAsStored(q.Int("Sell Method"));
  }
  return rows;
}

std::vector<SecurityOnFile> HoldingsOfSecurity(Database& client, std::string_view symbol,
                                               std::string_view port_filter) {
  std::vector<SecurityOnFile> rows;
  Query q =
      client.SelectSaved("Get Ports For Sec", {{"sSecSymbol", symbol}, {"sPortName", port_filter}});
  while (q.Next()) {
    SecurityOnFile& row = rows.emplace_back();
    row.port_name = q.Text("Port Name");
    row.symbol = std::string(symbol);
    row.sec_id = q.Int("Sec ID");
  }
  return rows;
}

bool SecuritySoldIn(Database& client, std::string_view symbol, std::string_view port_filter) {
  return client
      .Select(R"(SELECT 1 AS found FROM "Sell" AS T JOIN "Blocks" AS B USING ("Block No") )"
              R"(JOIN "Security" AS S USING ("Sec ID") WHERE S."Sec Symbol" = :sym AND )"
              R"((:port = '*' OR S."Port Name" = :port) LIMIT 1)",
              {{"sym", symbol}, {"port", port_filter}})
      .Next();
}

int64_t CountBlocksInScope(Database& client, std::string_view port_filter,
                           std::string_view symbol_filter) {
  Query q =
      client.Select(R"(SELECT count(*) AS n FROM "Blocks" AS B JOIN "Security" AS S )"
                    R"(ON S."Sec ID" = B."Sec ID" WHERE (:port = '*' OR S."Port Name" = :port) )"
                    R"(AND (:sym = '*' OR S."Sec Symbol" = :sym))",
                    {{"port", port_filter}, {"sym", symbol_filter}});
  return q.Next() ? q.Int("n") : 0;
}

double TotalSharesOfSecurity(Database& client, int64_t sec_id) {
  double total = 0;
  Query q = client.SelectSaved("Total Shares Per Table", {{"lSecID", sec_id}});
  while (q.Next()) {
    if (!q.IsNull("Total Shares")) total += q.Double("Total Shares");
  }
  return total;
}

}  // namespace lotwise
