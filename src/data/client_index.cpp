#include "data/client_index.h"

#include "data/database.h"
#include "data/query_builders.h"

namespace lotwise {

namespace {

std::vector<IndexedClient> ReadAll(Query& q) {
  std::vector<IndexedClient> rows;
  while (q.Next()) {
    rows.push_back(
        {q.Text("Client Name"), q.Text("Sort Name"), q.Text("Client Code"), q.Text("File Name")});
  }
  return rows;
}

}  // namespace

std::vector<IndexedClient> ReadClientIndex(Database& central) {
  Query q = central.SelectSaved("ClientInfo");
  return ReadAll(q);
}

std::vector<IndexedClient> ReadClientIndexSorted(Application& app, Database& central,
                                                 int sort_key) {
  Query q = Select(central, Query_GetClientCDBSorted(app, sort_key));
  return ReadAll(q);
}

int64_t CountIndexedClients(Database& central) {
  Query q = central.Select(R"(SELECT count(*) AS n FROM "Clients")");
  q.Next();
  return q.Int("n");
}

void AddIndexedClient(Database& central, const IndexedClient& client) {
  central.Execute(
      R"(INSERT INTO "Clients" ("Client Name", "Sort Name", "Client Code", "File Name") )"
      R"(VALUES (:name, :sort, :code, :file))",
      {{"name", client.name},
       {"sort", client.sort_name},
       {"code", client.code},
       {"file", client.file_name}});
}

void DeleteIndexedClient(Database& central, const std::string& code) {
  central.Execute(R"(DELETE FROM "Clients" WHERE "Client Code" = :code)", {{"code", code}});
}

std::optional<std::string> CentralDataVersion(Database& central) {
  Query q = central.Select(R"(SELECT "Version" FROM "Version")");
  if (!q.Next()) return std::nullopt;
  return q.Text("Version");
}

}  // namespace lotwise
