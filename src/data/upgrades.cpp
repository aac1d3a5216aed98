#include "data/upgrades.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/schema.h"
#include "ground/lw_error.h"
#include "ground/ui_port.h"

namespace lotwise {

namespace {

// A file without a version row predates the versioned releases.
constexpr const char* kUnversioned = "LW96.10";

using StepWork = bool (*)(Application&, Database&);

bool AllowZeroLenFieldStep(Application& app, Database& db) { return AllowZeroLenField(app, db); }

// One step of the chain: the version it starts from (a second accepted
// form where there is one), the version it leaves, what the help bar shows
// meanwhile in each file kind, and the work it does in each. The help texts
// are the ones users have always seen, odd wording and repeated release
// numbers included.
struct Step {
  const char* from;
  const char* also_from;
  const char* to;
  const char* central_text;
  const char* client_text;
  StepWork central_work;
  StepWork client_work;
};

const Step kSteps[] = {
    {"LW96.10", "LW95.10", "LW96.11", "Updating SSF to LW96.11", "Updating to LW96.11", nullptr,
     nullptr},
    {"LW96.11", nullptr, "LW96.12", "Updating SSF to LW96.12", "Updating to LW96.12", nullptr,
     ClientTo96_12},
    {"LW96.12", nullptr, "LW96.13", "Updating SSF to LW96.13", "Updating to LW96.13", nullptr,
     nullptr},
    {"LW96.13", nullptr, "LW96.20", "Updating to SSF LW96.20", "Updating to LW96.20",
     CentralTo96_20, ClientTo96_20},
    {"LW96.20", nullptr, "LW96.21", "Updating to SSF LW96.21", "Updating to LW96.21", nullptr,
     nullptr},
    {"LW96.21", nullptr, "LW97.10", "Updating to SSF LW97.10", "Updating to LW97.10", nullptr,
     nullptr},
    {"LW97.10", nullptr, "LW98.10", "Updating to SSF LW97.10", "Updating to LW97.10", nullptr,
     nullptr},
    {"LW98.10", nullptr, "LW98.20", "Updating to SSF LW98.10", "Updating to LW97.10", nullptr,
     nullptr},
    {"LW98.20", nullptr, "LW1999.10", "Updating to SSF LW1999.10", "Updating to LW1999.10", nullptr,
     nullptr},
    // An irregular form some files carry; it joins the chain here.
    {"LW99.10", nullptr, "LW1999.10", "Updating to SSF LW1999.10", "Updating to LW1999.10", nullptr,
     nullptr},
    {"LW1999.10", nullptr, "LW1999.20", "Updating to SSF LW1999.20", "Updating to LW1999.20",
     nullptr, nullptr},
    {"LW1999.20", nullptr, "LW1999.21", "Updating to SSF LW1999.21", "Updating to LW1999.21",
     nullptr, nullptr},
    {"LW1999.21", nullptr, "LW2000.10", "Updating to SSF LW2000.10", "Updating to LW2000.10",
     nullptr, nullptr},
    {"LW2000.10", nullptr, "LW2000.20", "Updating to SSF LW2000.20", "Updating to LW2000.20",
     CentralTo2000_20, nullptr},
    {"LW2000.20", nullptr, "LW2000.23", "Updating to SSF LW2000.23", "Updating to LW2000.23",
     AllowZeroLenFieldStep, AllowZeroLenFieldStep},
    {"LW2000.23", nullptr, "LW2001.01", "Updating to SSF LW2000.23", "Updating to LW2000.23",
     nullptr, nullptr},
    {"LW2001.01", nullptr, "LW2001.12", "Updating to SSF LW2001.12", "Updating to LW2001.12",
     nullptr, nullptr},
    {"LW2001.12", nullptr, "LW2005.20", "Updating to SSF LW2005.20", "Updating to LW2005.20",
     nullptr, nullptr},
};

enum class Chain { kCentral, kTaxpayer };

// Walks `db` through the chain inside one unit of work, so that a step that
// fails half-way leaves the file exactly as it was and the next open starts
// again from the same version. Returns false iff a step's work failed.
bool WalkChain(Application& app, Database& db, Chain chain, bool update_all) {
  Database::Transaction unit(db);
  std::optional<std::string> stored;
  {
    Query version = db.Select(R"(SELECT "Version" FROM "Version")");
    if (version.Next()) stored = version.Text("Version");
  }
  std::string working = stored && !stored->empty() ? *stored : kUnversioned;
  for (const Step& step : kSteps) {
    bool due = update_all || working == step.from ||
               (step.also_from != nullptr && working == step.also_from);
    if (!due) continue;
    app.ui().SetHelpBarText(chain == Chain::kCentral ? step.central_text : step.client_text);
    app.ui().ProcessEvents();
    StepWork work = chain == Chain::kCentral ? step.central_work : step.client_work;
    if (work != nullptr && !work(app, db)) return false;
    working = step.to;
  }
  if (stored) {
    db.Execute(R"(UPDATE "Version" SET "Version" = :version)", {{"version", working}});
  } else {
    db.Execute(R"(INSERT INTO "Version" ("Version") VALUES (:version))", {{"version", working}});
  }
  unit.Commit();
  return true;
}

// Replaces (or creates) the saved query `name` of `db` with the text the
// template file holds under the same name.
void CopySavedQuery(Database& from_template, Database& db, const char* name) {
  std::string sql = from_template.SavedQuerySql(name);
  db.DeleteSavedQuery(name);
  db.SetSavedQuery(name, sql);
}

}  // namespace

bool UpdateCentralDB(Application& app, Database& central, bool update_all) {
  // The walk is part of opening the file; its errors are reported as such.
  return Trap(app, "OpenCDB", false,
              [&] { return WalkChain(app, central, Chain::kCentral, update_all); });
}

bool UpdateCurrClientDB(Application& app, bool update_all) {
  return Trap(app, "UpdateCurrClientDB", false, [&] {
    if (!app.client) throw LwError(err::kUnexpected, "No Taxpayer File is open.");
    return WalkChain(app, *app.client, Chain::kTaxpayer, update_all);
  });
}

bool CentralTo96_20(Application& app, Database& central) {
  return Trap(app, "CentralTo96_20", false, [&] {
    auto from_template =
        Database::Open(app.ProgramFile(kCentralTemplateName), Database::Mode::kReadOnly);
    // SetSavedQuery replaces the text when the query exists and creates it otherwise.
    central.SetSavedQuery("dlgOpenClient", from_template->SavedQuerySql("dlgOpenClient"));
    return true;
  });
}

bool CentralTo2000_20(Application& app, Database& central) {
  return Trap(app, "CentralTo2000_20", false, [&] {
    central.SetSavedQuery("Get a Client", saved_sql::kGetAClient);
    central.SetSavedQuery("DeleteClient", saved_sql::kDeleteClient);
    return true;
  });
}

bool ClientTo96_12(Application& app, Database& client) {
  return Trap(app, "ClientTo96_12", false, [&] {
    // The texts are those of the current schema, not the ones release 96.12
    // wrote: those read a per-row [Sell Method] column of "Security" that a
    // later step of this same walk removes, so a file passing through here
    // would end up with queries that cannot run.
    const std::pair<const char*, const char*> queries[] = {
        {"Distinct Secs", saved_sql::kDistinctSecs},
        {"Get Ports For Sec", saved_sql::kGetPortsForSec},
        {"Total Shares Per Table", saved_sql::kTotalSharesPerTable},
    };
    for (const auto& [name, sql] : queries) {
      if (!client.HasSavedQuery(name)) client.SetSavedQuery(name, sql);
    }
    return true;
  });
}

bool ClientTo96_20(Application& app, Database& client) {
  return Trap(app, "ClientTo96_20", false, [&] {
    auto from_template =
        Database::Open(app.ProgramFile(kClientTemplateName), Database::Mode::kReadOnly);
    if (!client.HasTable("Sell Method") && !AddSellMethodTable(app, client)) {
      app.ui().MessageBox(
          "The Update routine was unable to add a table to the Taxpayer database. "
          "Please close this Taxpayer file and open it again. "
          "If this problem persists, please contact Technical Support.",
          "Please Note!", Icon::kNone, Buttons::kOk);
      return false;
    }
    const std::pair<const char*, const char*> rebuilt[] = {
        {"All Secs", saved_sql::kAllSecs},
        {"Distinct Secs", saved_sql::kDistinctSecs},
        {"Get a Security", saved_sql::kGetASecurity},
        {"Secs In Port", saved_sql::kSecsInPort},
        {"Get Ports For Sec", saved_sql::kGetPortsForSec},
    };
    for (const auto& [name, sql] : rebuilt) {
      client.DeleteSavedQuery(name);
      client.SetSavedQuery(name, sql);
    }
    for (const char* name : {"Get Entire Sell", "Delete Entire Sell", "Get Entire SplitDiv",
                             "Delete Entire SplitDiv"}) {
      CopySavedQuery(*from_template, client, name);
    }
    return true;
  });
}

bool AddSellMethodTable(Application& app, Database& client) {
  return Trap(app, "AddSellMethodTable", false, [&] {
    // As in a new Taxpayer File: one method per symbol, keyed without regard
    // to case like the symbols themselves.
    client.ExecuteScript(R"sql(CREATE TABLE "Sell Method" (
  "Sec Symbol" TEXT NOT NULL COLLATE NOCASE PRIMARY KEY,
  "Sell Method" INTEGER NOT NULL
))sql");
    std::vector<std::string> columns = client.Columns("Security");
    if (std::find(columns.begin(), columns.end(), "Sell Method") == columns.end()) return true;
    // The oldest security row of a symbol decides when its portfolios
    // disagree; a row that never had a method stays "NOT SELECTED" (255).
    {
      Query rows = client.Select(
          R"(SELECT "Sec Symbol", coalesce("Sell Method", 255) AS "Sell Method" FROM "Security" )"
          R"(ORDER BY "Sec Symbol", "Sec ID")");
      while (rows.Next()) {
        std::string symbol = rows.Text("Sec Symbol");
        Query found =
            client.Select(R"(SELECT 1 AS "Found" FROM "Sell Method" WHERE "Sec Symbol" = :symbol)",
                          {{"symbol", symbol}});
        if (found.Next()) continue;
        client.Execute(
            R"(INSERT INTO "Sell Method" ("Sec Symbol", "Sell Method") VALUES (:symbol, :method))",
            {{"symbol", symbol}, {"method", rows.Int("Sell Method")}});
      }
    }
    // The reading statement is gone before its table changes shape.
    client.ExecuteScript(R"(ALTER TABLE "Security" DROP COLUMN "Sell Method")");
    return true;
  });
}

bool AllowZeroLenField(Application& app, Database& db) {
  return Trap(app, "AllowZeroLenField", false, [&] {
    // SQLite text columns take empty strings as they are and have no
    // property that forbids them, so there is nothing to change: the walk
    // only visits the fields, which still makes a file too damaged to list
    // its tables fail here.
    static constexpr std::string_view kNames[] = {"Sec Name", "Description", "Cusip", "2nd Line",
                                                  "Notes"};
    for (const CatalogueEntry& entry : db.Catalogue()) {
      if (entry.kind != CatalogueEntry::Kind::kTable) continue;
      for (const std::string& field : db.Columns(entry.name)) {
        // Exact and case-sensitive: "CUSIP" is not "Cusip".
        if (std::find(std::begin(kNames), std::end(kNames), field) != std::end(kNames)) {
          // Empty strings are already allowed here.
        }
      }
    }
    return true;
  });
}

bool AddSellMethod(Application& app, const std::string& symbol, SellMethod method,
                   bool update_existing) {
  return Trap(app, "AddSellMethod", false, [&] {
    Database& db = *app.client;
    // The whole symbol is the key: the securities join on it. Symbols too
    // long for the field are refused where they enter, never cut here.
    const std::string& key = symbol;
    Query found =
        db.Select(R"(SELECT "Sell Method" FROM "Sell Method" WHERE "Sec Symbol" = :symbol)",
                  {{"symbol", key}});
    if (!found.Next()) {
      db.Execute(
          R"(INSERT INTO "Sell Method" ("Sec Symbol", "Sell Method") VALUES (:symbol, :method))",
          {{"symbol", key}, {"method", CodeOf(method)}});
    } else if (update_existing) {
      db.Execute(R"(UPDATE "Sell Method" SET "Sell Method" = :method WHERE "Sec Symbol" = :symbol)",
                 {{"symbol", key}, {"method", CodeOf(method)}});
    }
    return true;
  });
}

}  // namespace lotwise
