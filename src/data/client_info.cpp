#include "data/client_info.h"

#include "data/database.h"
#include "data/query_builders.h"

namespace lotwise {

std::optional<ClientOnFile> FindClient(Database& client, std::string_view code) {
  Query q = Select(client, Query_GetClient(code));
  if (!q.Next()) return std::nullopt;
  ClientOnFile row;
  row.name = q.Text("Client Name");
  row.sort_name = q.Text("Sort Name");
  row.code = q.Text("Client Code");
  row.second_line = q.Text("2nd Line");
  if (!q.IsNull("Year End")) row.year_end = q.DateValue("Year End");
  return row;
}

std::optional<ClientOnFile> ReadClientNameAndCode(Database& client) {
  Query q = client.Select(R"(SELECT "Client Name", "Client Code" FROM "Client")");
  if (!q.Next()) return std::nullopt;
  ClientOnFile row;
  row.name = q.Text("Client Name");
  row.code = q.Text("Client Code");
  return row;
}

std::optional<ClientOnFile> ReadClientHeading(Database& client) {
  Query q = client.Select(R"(SELECT "2nd Line", "Year End" FROM "Client")");
  if (!q.Next()) return std::nullopt;
  ClientOnFile row;
  row.second_line = q.Text("2nd Line");
  if (!q.IsNull("Year End")) row.year_end = q.DateValue("Year End");
  return row;
}

std::optional<PortfolioOnFile> FindPortfolio(Database& client, std::string_view name) {
  Query q = Select(client, Query_GetPort(name));
  if (!q.Next()) return std::nullopt;
  return PortfolioOnFile{q.Text("Port Name"), q.Text("2nd Line")};
}

std::vector<PortfolioOnFile> ListPortfolios(Database& client) {
  std::vector<PortfolioOnFile> rows;
  Query q =
      client.Select(R"(SELECT "Port Name", "2nd Line" FROM "Portfolio" ORDER BY "Port Name")");
  while (q.Next()) rows.push_back({q.Text("Port Name"), q.Text("2nd Line")});
  return rows;
}

std::vector<PortfolioOnFile> ReadPortfolioPickList(Database& client) {
  std::vector<PortfolioOnFile> rows;
  Query q = client.SelectSaved("dlgOpenDelPort");
  while (q.Next()) rows.push_back({q.Text("Port Name"), q.Text("2nd Line")});
  return rows;
}

}  // namespace lotwise
