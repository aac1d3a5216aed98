#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lotwise {

class Application;
class Database;

// The taxpayers the Security Symbols File knows of: one row per Taxpayer
// File, kept by the taxpayer commands and the start-up reconciliation.
struct IndexedClient {
  std::string name;
  std::string sort_name;
  std::string code;
  std::string file_name;
};

// Every indexed taxpayer, in the file's own order.
std::vector<IndexedClient> ReadClientIndex(Database& central);
// The rows of the Open Taxpayer list, in the order its own query gives.
std::vector<IndexedClient> ReadClientPickList(Database& central);
// Every indexed taxpayer sorted by 0 name, 1 sort name, 2 code, as
// Query_GetClientCDBSorted sorts them (it tells the user of any other key).
std::vector<IndexedClient> ReadClientIndexSorted(Application& app, Database& central, int sort_key);
int64_t CountIndexedClients(Database& central);
// The row of `code` (compared without regard to case), if there is one.
std::optional<IndexedClient> FindIndexedClient(Database& central, std::string_view code);
// The rows whose code equals `code` exactly; more than one means the index
// is damaged.
int64_t CountIndexedWithCode(Database& central, const std::string& code);
// The code of the first row (in the order the rows were made) whose sort
// name equals `sort_name` without regard to case.
std::optional<std::string> FindSortNameHolder(Database& central, const std::string& sort_name);
// True iff a row points at `file_name` (compared without regard to case).
bool FileNameIndexed(Database& central, const std::string& file_name);
void AddIndexedClient(Database& central, const IndexedClient& client);
// Gives the row of `code` the name, sort name and code of `now` (its file
// name stays); a code another row holds fails as a duplicate key.
void ChangeIndexedClient(Database& central, const std::string& code, const IndexedClient& now);
void DeleteIndexedClient(Database& central, const std::string& code);

// The data version the file was last brought up to; nothing when it has
// none recorded.
std::optional<std::string> CentralDataVersion(Database& central);

}  // namespace lotwise
