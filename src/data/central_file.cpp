#include "data/central_file.h"

#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "data/upgrades.h"
#include "ground/lw_error.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"

namespace lotwise {

namespace {

constexpr const char* kNameExistsText =
    "The Security Name you entered already exists in another Security. If you still want to use "
    "this name click OK, otherwise click Cancel.";
constexpr const char* kNameExistsTitle = "Name already exists";
constexpr const char* kCusipExistsText =
    "The CUSIP you entered already exists in another Security. If you still want to use this CUSIP "
    "click OK, otherwise click Cancel.";
constexpr const char* kCusipExistsTitle = "CUSIP already exists";

// Names and CUSIPs are found the way the users type them: without regard to
// case, as the key columns compare. Whether a found row is the same
// security as the one being changed is decided on the exact symbol.
//
// True iff a security other than `symbol` (exact comparison; empty = any)
// already carries `name`.
bool NameTakenByOther(Database& central, const std::string& name, const std::string& symbol) {
  Query q = central.Select(
      R"(SELECT 1 AS Found FROM "Securities" WHERE "Sec Name" = :name COLLATE NOCASE )"
      R"(AND (:symbol = '' OR "Sec Symbol" <> :symbol COLLATE BINARY))",
      {{"name", name}, {"symbol", symbol}});
  return q.Next();
}

// As NameTakenByOther for the CUSIP; rows holding "NO CUSIP" never count.
bool CusipTakenByOther(Database& central, const std::string& cusip, const std::string& symbol) {
  Query q =
      central.Select(R"(SELECT 1 AS Found FROM "Securities" WHERE "CUSIP" = :cusip COLLATE NOCASE )"
                     R"(AND "CUSIP" <> :no_cusip COLLATE BINARY )"
                     R"(AND (:symbol = '' OR "Sec Symbol" <> :symbol COLLATE BINARY))",
                     {{"cusip", cusip}, {"no_cusip", std::string(kNoCusip)}, {"symbol", symbol}});
  return q.Next();
}

bool IsBlank(const std::string& text) { return text.find_first_not_of(' ') == std::string::npos; }

}  // namespace

bool CentralHasSymbol(Database& central, const std::string& symbol) {
  Query q = central.Select(R"(SELECT 1 AS Found FROM "Securities" WHERE "Sec Symbol" = :symbol)",
                           {{"symbol", symbol}});
  return q.Next();
}

int64_t SetCentralSecName(Database& central, const std::string& symbol, const std::string& name) {
  return central.Execute(
      R"(UPDATE "Securities" SET "Sec Name" = :value WHERE "Sec Symbol" = :symbol)",
      {{"value", name}, {"symbol", symbol}});
}

int64_t SetCentralSecCusip(Database& central, const std::string& symbol, const std::string& cusip) {
  return central.Execute(R"(UPDATE "Securities" SET "CUSIP" = :value WHERE "Sec Symbol" = :symbol)",
                         {{"value", cusip}, {"symbol", symbol}});
}

bool ConfirmSharedSecName(Application& app, Database& central, const std::string& name,
                          const std::string& symbol) {
  if (!NameTakenByOther(central, name, symbol)) return true;
  return app.ui().MessageBox(kNameExistsText, kNameExistsTitle, Icon::kQuestion,
                             Buttons::kOkCancel) == Answer::kOk;
}

bool ConfirmSharedSecCusip(Application& app, Database& central, const std::string& cusip,
                           const std::string& symbol) {
  if (!CusipTakenByOther(central, cusip, symbol)) return true;
  return app.ui().MessageBox(kCusipExistsText, kCusipExistsTitle, Icon::kQuestion,
                             Buttons::kOkCancel) == Answer::kOk;
}

void OpenCDB(Application& app, const std::string& path) {
  TrapVoid(app, "OpenCDB", [&] {
    app.central = Database::Open(path, Database::Mode::kShared, app.storage_faults);
    UpdateCentralDB(app, *app.central, app.update_all);
  });
}

void CloseCDB(Application& app) {
  TrapVoid(app, "CloseCDB", [&] { app.central.reset(); });
}

bool AddSecToCDB(Application& app, const std::string& symbol, const std::string& name,
                 std::string& cusip) {
  HourglassGuard hourglass(app.ui());
  return Trap(app, "AddSecToCDB", false, [&] {
    if (!SymbolLengthValid(app.ui(), symbol)) return false;
    Database& central = *app.central;
    // A security without a known CUSIP carries the placeholder, which never
    // counts as a duplicate.
    if (IsBlank(cusip)) cusip = kNoCusip;
    if (CentralHasSymbol(central, symbol)) {
      app.ui().MessageBox("The Symbol: " + symbol +
                              " already exists. Please enter a new Symbol or use the Security that "
                              "already exists.",
                          "Symbol already exists", Icon::kInformation, Buttons::kOk);
      return false;
    }
    if (!ConfirmSharedSecName(app, central, name, "")) return false;
    if (!ConfirmSharedSecCusip(app, central, cusip, "")) return false;
    try {
      // Written outside any transaction, so the row reaches the shared file
      // (and the other users of it) at once.
      central.Execute(R"(INSERT INTO "Securities" ("Sec Name", "Sec Symbol", "CUSIP") )"
                      R"(VALUES (:name, :symbol, :cusip))",
                      {{"name", name}, {"symbol", symbol}, {"cusip", cusip}});
    } catch (const LwError& e) {
      if (e.number() != err::kDuplicateKey) throw;
      // Another user added the symbol since the check above.
      app.ui().MessageBox("The Symbol: " + symbol +
                              " is already in use. Please enter a new Symbol or usethe Security "
                              "that already exits.",
                          "Symbol in use!", Icon::kInformation, Buttons::kOk);
      return false;
    }
    return true;
  });
}

bool ModSecInCDB(Application& app, const std::string& symbol, const std::string& name,
                 const std::string& cusip) {
  return Trap(app, "ModSecInCDB", false, [&] {
    Database& central = *app.central;
    if (!ConfirmSharedSecName(app, central, name, symbol)) return false;
    if (!ConfirmSharedSecCusip(app, central, cusip, symbol)) return false;
    if (!CentralHasSymbol(central, symbol)) {
      app.ui().MessageBox(
          "The Security you have specified can't be found. You may need to Add it again.",
          "Security not found", Icon::kInformation, Buttons::kOk);
      return false;
    }
    try {
      central.Execute(
          R"(UPDATE "Securities" SET "Sec Name" = :name, "Sec Symbol" = :symbol, "CUSIP" = :cusip )"
          R"(WHERE "Sec Symbol" = :symbol)",
          {{"name", name}, {"symbol", symbol}, {"cusip", cusip}});
    } catch (const LwError& e) {
      if (e.number() != err::kDuplicateKey) throw;
      app.ui().MessageBox("The Symbol: " + symbol +
                              " already exists.Please enter a new Symbol, or usethe Security that "
                              "already exits.",
                          "Symbol in use!", Icon::kInformation, Buttons::kOk);
      return false;
    }
    return true;
  });
}

bool DelSecFromCDB(Application& app, const std::string& symbol) {
  return Trap(app, "DelSecFromCDB", false, [&] {
    app.central->ExecuteSaved("DeleteSecurity", {{"sSecSymbol", symbol}});
    return true;
  });
}

std::string GetSecInfoFromCDB(Application& app, const std::string& symbol, std::string_view field) {
  return Trap(app, "GetSecInfoFromCDB", std::string(), [&] {
    // The field is read by its column name from the row, so it never
    // becomes part of the SQL text; an unknown name fails as a missing item.
    std::string column(field);
    if (column.size() >= 2 && column.front() == '[' && column.back() == ']') {
      column = column.substr(1, column.size() - 2);
    }
    Query q = app.central->Select(R"(SELECT * FROM "Securities" WHERE "Sec Symbol" = :symbol)",
                                  {{"symbol", symbol}});
    if (!q.Next()) return std::string(kSymbolNotInCentral);
    return q.Text(column.c_str());
  });
}

void AddUsage(Application& app, Database& central) {
  TrapVoid(app, "AddUsage", [&] {
    // The write lock is taken before the count is read, so two programs
    // starting together both count.
    Database::Transaction unit(central);
    Query q = central.Select(R"(SELECT rowid AS id, "Usage Count" FROM "Usage" ORDER BY rowid)");
    if (!q.Next()) {
      central.Execute(R"(INSERT INTO "Usage" ("Usage Count") VALUES (1))");
    } else {
      central.Execute(R"(UPDATE "Usage" SET "Usage Count" = :count WHERE rowid = :id)",
                      {{"count", q.Int("Usage Count") + 1}, {"id", q.Int("id")}});
    }
    unit.Commit();
  });
}

int32_t GetUsageCount(Application& app) {
  HourglassGuard hourglass(app.ui());
  return Trap(app, "GetUsageCount", int32_t{0}, [&] {
    Query q = app.central->Select(R"(SELECT "Usage Count" FROM "Usage" ORDER BY rowid)");
    // A file that has never counted a start has no row: nothing counted yet.
    if (!q.Next()) return int32_t{0};
    return static_cast<int32_t>(q.Int("Usage Count"));
  });
}

std::vector<CentralSecurity> ListCentralSecurities(Database& central) {
  std::vector<CentralSecurity> securities;
  Query q = central.SelectSaved("Get Securities");
  while (q.Next())
    securities.push_back({q.Text("Sec Symbol"), q.Text("Sec Name"), q.Text("CUSIP")});
  return securities;
}

}  // namespace lotwise
