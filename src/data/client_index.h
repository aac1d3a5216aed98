#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lotwise {

class Application;
class Database;

// The taxpayers the Security Symbols File knows of: one row per Taxpayer
// File, read and written by the start-up reconciliation and the listings.
struct IndexedClient {
  std::string name;
  std::string sort_name;
  std::string code;
  std::string file_name;
};

// Every indexed taxpayer, in the file's own order.
std::vector<IndexedClient> ReadClientIndex(Database& central);
// Every indexed taxpayer sorted by 0 name, 1 sort name, 2 code, as
// Query_GetClientCDBSorted sorts them (it tells the user of any other key).
std::vector<IndexedClient> ReadClientIndexSorted(Application& app, Database& central, int sort_key);
int64_t CountIndexedClients(Database& central);
void AddIndexedClient(Database& central, const IndexedClient& client);
void DeleteIndexedClient(Database& central, const std::string& code);

// The data version the file was last brought up to; nothing when it has
// none recorded.
std::optional<std::string> CentralDataVersion(Database& central);

}  // namespace lotwise
