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

std::vector<IndexedClient> ReadClientPickList(Database& central) {
  Query q = central.SelectSaved("dlgOpenClient");
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

std::optional<IndexedClient> FindIndexedClient(Database& central, std::string_view code) {
  Query q = Select(central, Query_GetClientCDB(code));
  if (!q.Next()) return std::nullopt;
  return IndexedClient{q.Text("Client Name"), q.Text("Sort Name"), q.Text("Client Code"),
                       q.Text("File Name")};
}

int64_t CountIndexedWithCode(Database& central, const std::string& code) {
  Query q = central.SelectSaved("Get a Client", {{"sClientCode", code}});
  int64_t count = 0;
  while (q.Next()) ++count;
  return count;
}

std::optional<std::string> FindSortNameHolder(Database& central, const std::string& sort_name) {
  Query q = central.Select(
      R"(SELECT "Client Code" FROM "Clients" WHERE "Sort Name" = :sort COLLATE NOCASE )"
      R"(ORDER BY rowid)",
      {{"sort", sort_name}});
  if (!q.Next()) return std::nullopt;
  return q.Text("Client Code");
}

bool FileNameIndexed(Database& central, const std::string& file_name) {
  Query q = central.SelectSaved("File Name", {{"sFileName", file_name}});
  return q.Next();
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

void ChangeIndexedClient(Database& central, const std::string& code, const IndexedClient& now) {
  central.Execute(
      R"(UPDATE "Clients" SET "Client Name" = :name, "Sort Name" = :sort, "Client Code" = :new_code )"
      R"(WHERE "Client Code" = :code)",
      {{"name", now.name}, {"sort", now.sort_name}, {"new_code", now.code}, {"code", code}});
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
