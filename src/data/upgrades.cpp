#include "data/upgrades.h"
#include "app/application.h"
#include "app/error_handler.h"
#include "app/lw_error.h"
#include "data/database.h"
#include "data/schema.h"

namespace lotwise {

namespace {
[[noreturn]] void NotBuilt(const char* name) {
  throw LwError(err::kUnexpected, std::string("not built yet: ") + name);
}
}  // namespace

bool UpdateCentralDB(Application&, Database&, bool) {
  NotBuilt("UpdateCentralDB");
}

bool UpdateCurrClientDB(Application&, bool) {
  NotBuilt("UpdateCurrClientDB");
}

bool CentralTo96_20(Application&, Database&) {
  NotBuilt("CentralTo96_20");
}

bool CentralTo2000_20(Application&, Database&) {
  NotBuilt("CentralTo2000_20");
}

bool ClientTo96_12(Application&, Database&) {
  NotBuilt("ClientTo96_12");
}

bool ClientTo96_20(Application&, Database&) {
  NotBuilt("ClientTo96_20");
}

bool AddSellMethodTable(Application&, Database&) {
  NotBuilt("AddSellMethodTable");
}

bool AllowZeroLenField(Application&, Database&) {
  NotBuilt("AllowZeroLenField");
}

bool AddSellMethod(Application& app, const std::string& symbol, int method, bool update_existing) {
  return Trap(app, "AddSellMethod", false, [&] {
    Database& db = *app.client;
    // The field holds at most 10 characters; a longer symbol cannot be keyed.
    std::string key = symbol.substr(0, static_cast<size_t>(DefinedTextSize("Sell Method", "Sec Symbol")));
    Query found = db.Select(R"(SELECT "Sell Method" FROM "Sell Method" WHERE "Sec Symbol" = :symbol)",
                            {{"symbol", key}});
    if (!found.Next()) {
      db.Execute(R"(INSERT INTO "Sell Method" ("Sec Symbol", "Sell Method") VALUES (:symbol, :method))",
                 {{"symbol", key}, {"method", method}});
    } else if (update_existing) {
      db.Execute(R"(UPDATE "Sell Method" SET "Sell Method" = :method WHERE "Sec Symbol" = :symbol)",
                 {{"symbol", key}, {"method", method}});
    }
    return true;
  });
}

}  // namespace lotwise
