#pragma once

#include <string>

#include "ground/sell_method_codes.h"

namespace lotwise {

class Application;
class Database;

// Walks the Security Symbols File up to the current data version (every
// step when `update_all`). Returns false when a step failed; the stored
// version is then left as it was.
bool UpdateCentralDB(Application& app, Database& central, bool update_all);
// Walks the open Taxpayer File (app.client) likewise.
bool UpdateCurrClientDB(Application& app, bool update_all);

bool CentralTo96_20(Application& app, Database& central);
bool CentralTo2000_20(Application& app, Database& central);
bool ClientTo96_12(Application& app, Database& client);
bool ClientTo96_20(Application& app, Database& client);
// Creates and fills the "Sell Method" table from the securities' old
// per-row methods, then drops that column from "Security".
bool AddSellMethodTable(Application& app, Database& client);
// Allows empty strings in the named text fields.
bool AllowZeroLenField(Application& app, Database& db);

// Adds the symbol's "Sell Method" row to the open Taxpayer File unless it
// has one; with `update_existing`, changes an existing row's method instead.
bool AddSellMethod(Application& app, const std::string& symbol, SellMethod method,
                   bool update_existing = false);

}  // namespace lotwise
