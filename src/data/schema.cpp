#include "data/schema.h"

#include <array>
#include <utility>

#include "data/database.h"

namespace lotwise {

namespace {

// Text keys compare without regard to case, as the program's users expect
// of symbols, codes and portfolio names ("ibm" is the symbol IBM).
constexpr const char* kCentralTables = R"sql(
CREATE TABLE "Securities" (
  "Sec Symbol" TEXT NOT NULL COLLATE NOCASE PRIMARY KEY,
  "Sec Name" TEXT,
  "CUSIP" TEXT
);
CREATE INDEX "Sec Name" ON "Securities" ("Sec Name" COLLATE NOCASE);
CREATE INDEX "CUSIP" ON "Securities" ("CUSIP" COLLATE NOCASE);
CREATE TABLE "Clients" (
  "Client Code" TEXT NOT NULL COLLATE NOCASE PRIMARY KEY,
  "Client Name" TEXT,
  "Sort Name" TEXT,
  "File Name" TEXT
);
CREATE INDEX "Sort Name" ON "Clients" ("Sort Name" COLLATE NOCASE);
CREATE INDEX "Clients File Name" ON "Clients" ("File Name" COLLATE NOCASE);
CREATE TABLE "Usage" ("Usage Count" INTEGER);
CREATE TABLE "Version" ("Version" TEXT);
CREATE TABLE "Prices" (
  "Sec Symbol" TEXT NOT NULL COLLATE NOCASE,
  "Date" TEXT NOT NULL,
  "Price" INTEGER,
  PRIMARY KEY ("Sec Symbol", "Date")
);
)sql";

// Deleting a portfolio removes its securities, a security its blocks, a
// block its transactions; renaming a portfolio carries its securities along.
constexpr const char* kTaxpayerTables = R"sql(
CREATE TABLE "Version" ("Version" TEXT);
CREATE TABLE "Client" (
  "Client Name" TEXT,
  "Sort Name" TEXT,
  "Client Code" TEXT,
  "2nd Line" TEXT,
  "Year End" TEXT
);
CREATE TABLE "Portfolio" (
  "Port Name" TEXT NOT NULL COLLATE NOCASE PRIMARY KEY,
  "2nd Line" TEXT,
  "Client Code" TEXT
);
CREATE TABLE "Security" (
  "Sec ID" INTEGER PRIMARY KEY AUTOINCREMENT,
  "Sec Symbol" TEXT NOT NULL COLLATE NOCASE,
  "Port Name" TEXT NOT NULL COLLATE NOCASE
    REFERENCES "Portfolio" ("Port Name") ON DELETE CASCADE ON UPDATE CASCADE,
  "2nd Line" TEXT
);
CREATE UNIQUE INDEX "Security Port Symbol" ON "Security" ("Port Name", "Sec Symbol");
CREATE INDEX "Security Symbol" ON "Security" ("Sec Symbol");
CREATE TABLE "Blocks" (
  "Block No" INTEGER PRIMARY KEY AUTOINCREMENT,
  "Sec ID" INTEGER NOT NULL REFERENCES "Security" ("Sec ID") ON DELETE CASCADE,
  "Block ID" TEXT NOT NULL,
  "Date" TEXT NOT NULL,
  "Shares Left" REAL NOT NULL DEFAULT 0
);
CREATE INDEX "Blocks Sec Date" ON "Blocks" ("Sec ID", "Date", "Block ID");
CREATE INDEX "Blocks Open" ON "Blocks" ("Sec ID", "Date", "Block ID")
  WHERE "Shares Left" >= 0.000005;
CREATE TABLE "Buy" (
  "Unique ID" INTEGER PRIMARY KEY AUTOINCREMENT,
  "Block No" INTEGER NOT NULL REFERENCES "Blocks" ("Block No") ON DELETE CASCADE,
  "Date" TEXT NOT NULL,
  "Type" INTEGER NOT NULL,
  "Cost" INTEGER NOT NULL DEFAULT 0,
  "Shares" REAL NOT NULL DEFAULT 0,
  "Fee" INTEGER NOT NULL DEFAULT 0,
  "Notes" TEXT,
  "Prec Sort" INTEGER NOT NULL
);
CREATE INDEX "Buy Block" ON "Buy" ("Block No", "Date", "Shares");
CREATE TABLE "Sell" (
  "Unique ID" INTEGER PRIMARY KEY AUTOINCREMENT,
  "Block No" INTEGER NOT NULL REFERENCES "Blocks" ("Block No") ON DELETE CASCADE,
  "Date" TEXT NOT NULL,
  "Sale Price" INTEGER NOT NULL DEFAULT 0,
  "Fee" INTEGER NOT NULL DEFAULT 0,
  "Shares" REAL NOT NULL DEFAULT 0,
  "Notes" TEXT,
  "Prec Sort" INTEGER NOT NULL
);
CREATE INDEX "Sell Block" ON "Sell" ("Block No", "Date", "Shares");
CREATE TABLE "Split" (
  "Unique ID" INTEGER PRIMARY KEY AUTOINCREMENT,
  "Block No" INTEGER NOT NULL REFERENCES "Blocks" ("Block No") ON DELETE CASCADE,
  "Date" TEXT NOT NULL,
  "Type" INTEGER NOT NULL,
  "Pre Ratio" REAL NOT NULL,
  "Post Ratio" REAL NOT NULL,
  "Shares" REAL NOT NULL DEFAULT 0,
  "Notes" TEXT,
  "Prec Sort" INTEGER NOT NULL
);
CREATE INDEX "Split Block" ON "Split" ("Block No", "Date", "Shares");
CREATE TABLE "Adjust" (
  "Unique ID" INTEGER PRIMARY KEY AUTOINCREMENT,
  "Block No" INTEGER NOT NULL REFERENCES "Blocks" ("Block No") ON DELETE CASCADE,
  "Date" TEXT NOT NULL,
  "Shares" REAL NOT NULL DEFAULT 0,
  "Cost" INTEGER NOT NULL DEFAULT 0,
  "Notes" TEXT,
  "Prec Sort" INTEGER NOT NULL
);
CREATE INDEX "Adjust Block" ON "Adjust" ("Block No", "Date", "Shares");
CREATE VIEW "Block Shares" AS
  SELECT "Block No", "Shares" FROM "Buy"
  UNION ALL SELECT "Block No", "Shares" FROM "Sell"
  UNION ALL SELECT "Block No", "Shares" FROM "Split"
  UNION ALL SELECT "Block No", "Shares" FROM "Adjust";
CREATE TABLE "Sell Method" (
  "Sec Symbol" TEXT NOT NULL COLLATE NOCASE PRIMARY KEY,
  "Sell Method" INTEGER NOT NULL
);
CREATE TABLE "Change" (
  "Date" TEXT,
  "Port Name" TEXT,
  "Sec ID" INTEGER,
  "Description" TEXT
);
)sql";

constexpr const char* kReportTables = R"sql(
CREATE TABLE "Usage" ("Usage Count" INTEGER);
CREATE TABLE "BA Info" (
  "Client Name" TEXT, "Client Code" TEXT, "2nd Line" TEXT, "Year End" TEXT, "Type" TEXT
);
CREATE TABLE "BA Secs" (
  "Sec Symbol" TEXT, "Sec Name" TEXT, "Sell Name" TEXT,
  "Total Shares" REAL, "Total Cost" INTEGER, "Basis Per Share" REAL
);
CREATE TABLE "BA Blocks" (
  "Block No" INTEGER PRIMARY KEY AUTOINCREMENT,
  "Sec Symbol" TEXT, "Port Name" TEXT, "Block ID" TEXT, "Date Acqrd" TEXT
);
CREATE INDEX "Sec Symbol" ON "BA Blocks" ("Sec Symbol");
CREATE TABLE "BA Trans" (
  "Trans Row" INTEGER PRIMARY KEY AUTOINCREMENT,
  "Block No" INTEGER, "TransNo" INTEGER, "Transaction" TEXT, "Date" TEXT, "Date Acqrd" TEXT,
  "Shares" REAL, "Sale Price" INTEGER, "Total Shares" REAL, "Cost" INTEGER,
  "Total Cost" INTEGER, "Fee" INTEGER, "Basis Per Share" REAL
);
CREATE INDEX "BA Trans Block" ON "BA Trans" ("Block No");
CREATE TABLE "Sched D" (
  "Date Acqrd" TEXT, "Date Sold" TEXT, "Shares" REAL, "Sec Symbol" TEXT,
  "Sale Price" INTEGER, "Cost" INTEGER, "GainLoss" INTEGER, "Long Term" INTEGER
);
CREATE TABLE "TL Info" (
  "Client Name" TEXT, "Client Code" TEXT, "2nd Line" TEXT,
  "Beginning Date" TEXT, "End Date" TEXT, "Type" TEXT
);
CREATE TABLE "TL Port" ("Port Name" TEXT);
CREATE TABLE "TL Sec" ("Port Name" TEXT, "Sec Name" TEXT, "Sec Symbol" TEXT, "Sec ID" INTEGER);
CREATE TABLE "TL Trans" (
  "Sec ID" INTEGER, "Date" TEXT, "Transaction" TEXT, "Shares" REAL,
  "Cost" INTEGER, "Fee" INTEGER, "Sale Price" INTEGER
);
CREATE TABLE "Client Report" (
  "Client Name" TEXT, "Sort Name" TEXT, "Client Code" TEXT, "2nd Line" TEXT,
  "Year End" TEXT, "File Name" TEXT, "No File" TEXT
);
CREATE TABLE "Portfolio Report" ("Port Name" TEXT, "2nd Line" TEXT, "Client Code" TEXT);
CREATE TABLE "Sec List Report" (
  "Port Name" TEXT, "Sec Symbol" TEXT, "Sec Name" TEXT, "CUSIP" TEXT,
  "2nd Line" TEXT, "Sell Method" TEXT
);
)sql";

// "Shares Left" of a block is the sum of the shares of all its
// transactions, kept by the database itself on every write to them, so that
// the blocks that still hold shares are found without summing a security's
// whole history (a FIFO sale looks only at open blocks, whatever the number
// of sales before it). Each trigger sums the block afresh rather than adding
// the change, so the value is always exactly the sum of the rows.
std::string SharesLeftTriggers() {
  std::string script;
  auto refresh = [](const char* row) {
    return std::string(R"(UPDATE "Blocks" SET "Shares Left" = (SELECT total("Shares") FROM )"
                       R"("Block Shares" WHERE "Block No" = )") +
           row + R"(."Block No") WHERE "Block No" = )" + row + R"(."Block No";)";
  };
  for (const char* table : {"Buy", "Sell", "Split", "Adjust"}) {
    std::string t = table;
    script += "CREATE TRIGGER \"" + t + " Shares Left Insert\" AFTER INSERT ON \"" + t +
              "\" BEGIN " + refresh("NEW") + " END;\n";
    script += "CREATE TRIGGER \"" + t + " Shares Left Update\" AFTER UPDATE OF \"Shares\", " +
              "\"Block No\" ON \"" + t + "\" BEGIN " + refresh("OLD") + " " + refresh("NEW") +
              " END;\n";
    script += "CREATE TRIGGER \"" + t + " Shares Left Delete\" AFTER DELETE ON \"" + t +
              "\" BEGIN " + refresh("OLD") + " END;\n";
  }
  return script;
}

constexpr const char* kSavedQueriesDdl =
    "CREATE TABLE lw_saved_queries (Name TEXT NOT NULL COLLATE NOCASE PRIMARY KEY, SQL TEXT NOT "
    "NULL);";

using SavedQuery = std::pair<const char*, const char*>;

// Jet's LIKE on a plain name becomes a case-insensitive comparison, and "*"
// (the callers' "every one") is spelled out, so that "%" and "_" in a name
// are never wildcards.
const std::array kCentralQueries = {
    SavedQuery{
        "Get Securities",
        R"(SELECT "Sec Symbol", "Sec Name", "CUSIP" FROM "Securities" ORDER BY "Sec Symbol")"},
    SavedQuery{"DeleteSecurity", R"(DELETE FROM "Securities" WHERE "Sec Symbol" = :sSecSymbol)"},
    SavedQuery{"File Name",
               R"(SELECT "Client Code", "Client Name", "Sort Name", "File Name" FROM "Clients" )"
               R"(WHERE "File Name" = :sFileName COLLATE NOCASE)"},
    SavedQuery{"Get a Client", saved_sql::kGetAClient},
    SavedQuery{"DeleteClient", saved_sql::kDeleteClient},
    SavedQuery{"ClientInfo",
               R"(SELECT "Client Name", "Sort Name", "Client Code", "File Name" FROM "Clients" )"
               R"(ORDER BY "Sort Name" COLLATE NOCASE, "Client Code")"},
    SavedQuery{"dlgOpenClient",
               R"(SELECT "Client Name", "Sort Name", "Client Code", "File Name" FROM "Clients" )"
               R"(ORDER BY "Sort Name" COLLATE NOCASE, "Client Code")"},
};

const std::array kTaxpayerQueries = {
    SavedQuery{"All Secs", saved_sql::kAllSecs},
    SavedQuery{"Distinct Secs", saved_sql::kDistinctSecs},
    SavedQuery{"Get a Security", saved_sql::kGetASecurity},
    SavedQuery{"Secs In Port", saved_sql::kSecsInPort},
    SavedQuery{"Get Ports For Sec", saved_sql::kGetPortsForSec},
    SavedQuery{"Total Shares Per Table", saved_sql::kTotalSharesPerTable},
    SavedQuery{
        "Delete Security",
        R"(DELETE FROM "Security" WHERE "Port Name" = :sPortName AND "Sec Symbol" = :sSecSymbol)"},
    SavedQuery{"DelPortfolio", R"(DELETE FROM "Portfolio" WHERE "Port Name" = :sPortName)"},
    SavedQuery{
        "dlgOpenDelPort",
        R"(SELECT "Port Name", "2nd Line", "Client Code" FROM "Portfolio" ORDER BY "Port Name")"},
    SavedQuery{
        "Buys In Security",
        R"(SELECT "Buy".* FROM "Buy" INNER JOIN "Blocks" ON "Buy"."Block No" = "Blocks"."Block No" )"
        R"(WHERE "Blocks"."Sec ID" = :lSecID ORDER BY "Buy"."Date", "Buy"."Unique ID")"},
    SavedQuery{"Sells In Block",
               R"(SELECT * FROM "Sell" WHERE "Block No" = :lBlockNo ORDER BY "Date", "Unique ID")"},
    SavedQuery{
        "Adjusts In Block",
        R"(SELECT * FROM "Adjust" WHERE "Block No" = :lBlockNo ORDER BY "Date", "Unique ID")"},
    SavedQuery{
        "Splits In Block",
        R"(SELECT * FROM "Split" WHERE "Block No" = :lBlockNo ORDER BY "Date", "Unique ID")"},
    // The rows of one sale (or split, or dividend) entered once over several
    // blocks: every row of the security on that date, oldest block first.
    SavedQuery{
        "Get Entire Sell",
        R"(SELECT "Sell".*, "Blocks"."Block ID", "Blocks"."Date" AS "Block Date" FROM "Sell" )"
        R"(INNER JOIN "Blocks" ON "Sell"."Block No" = "Blocks"."Block No" )"
        R"(WHERE "Blocks"."Sec ID" = :lSecID AND "Sell"."Date" = :dtDate )"
        R"(ORDER BY "Blocks"."Date", "Blocks"."Block ID")"},
    SavedQuery{"Delete Entire Sell",
               R"(DELETE FROM "Sell" WHERE "Date" = :dtDate AND "Block No" IN )"
               R"((SELECT "Block No" FROM "Blocks" WHERE "Sec ID" = :lSecID))"},
    SavedQuery{
        "Get Entire SplitDiv",
        R"(SELECT "Split".*, "Blocks"."Block ID", "Blocks"."Date" AS "Block Date" FROM "Split" )"
        R"(INNER JOIN "Blocks" ON "Split"."Block No" = "Blocks"."Block No" )"
        R"(WHERE "Blocks"."Sec ID" = :lSecID AND "Split"."Date" = :dtDate AND "Split"."Type" = :nType )"
        R"(ORDER BY "Blocks"."Date", "Blocks"."Block ID")"},
    SavedQuery{
        "Delete Entire SplitDiv",
        R"(DELETE FROM "Split" WHERE "Date" = :dtDate AND "Type" = :nType AND "Block No" IN )"
        R"((SELECT "Block No" FROM "Blocks" WHERE "Sec ID" = :lSecID))"},
};

const std::array kReportQueries = {
    // A pool's rows in date order: the lots feed it block after block, but
    // an average must see every lot held on a sale's date. Mirror rows carry
    // the same-date precedence as TransNo, transfers 0 (before the day's
    // transactions); ties keep the order written.
    SavedQuery{
        "Get Basis Rpt Trans",
        R"(SELECT "Transaction", "Date", "Date Acqrd", "Shares", "Sale Price", "Fee", "Cost", )"
        R"("TransNo", "Trans Row" FROM "BA Trans" WHERE "Block No" = :lBlockNo )"
        R"(ORDER BY "Date", "TransNo", "Trans Row")"},
};

template <size_t N>
void WriteQueries(Database& db, const std::array<SavedQuery, N>& queries) {
  for (const auto& [name, sql] : queries) db.SetSavedQuery(name, sql);
}

}  // namespace

namespace saved_sql {
const char* const kAllSecs =
    R"(SELECT S."Port Name", S."Sec Symbol", S."2nd Line", M."Sell Method", S."Sec ID" )"
    R"(FROM "Security" AS S LEFT JOIN "Sell Method" AS M ON S."Sec Symbol" = M."Sec Symbol" )"
    R"(ORDER BY S."Sec Symbol", S."Port Name")";
const char* const kDistinctSecs =
    R"(SELECT DISTINCT S."Sec Symbol", M."Sell Method" )"
    R"(FROM "Security" AS S LEFT JOIN "Sell Method" AS M ON S."Sec Symbol" = M."Sec Symbol" )"
    R"(WHERE (:sSymbol = '*' OR S."Sec Symbol" = :sSymbol) ORDER BY S."Sec Symbol")";
const char* const kGetASecurity =
    R"(SELECT S."2nd Line", M."Sell Method", S."Sec ID", S."Port Name", S."Sec Symbol" )"
    R"(FROM "Security" AS S LEFT JOIN "Sell Method" AS M ON S."Sec Symbol" = M."Sec Symbol" )"
    R"(WHERE S."Port Name" = :sPortName AND S."Sec Symbol" = :sSecSymbol)";
const char* const kSecsInPort =
    R"(SELECT S."Port Name", S."Sec Symbol", S."2nd Line", M."Sell Method", S."Sec ID" )"
    R"(FROM "Security" AS S LEFT JOIN "Sell Method" AS M ON S."Sec Symbol" = M."Sec Symbol" )"
    R"(WHERE S."Port Name" = :sPortName ORDER BY S."Sec Symbol")";
const char* const kGetPortsForSec =
    R"(SELECT "Port Name", "Sec ID" FROM "Security" WHERE "Sec Symbol" = :sSecSymbol )"
    R"(AND (:sPortName = '*' OR "Port Name" = :sPortName) ORDER BY "Port Name")";
// One row per transaction table with that table's share total for the
// security; sales are stored negative, so the totals add up to the balance.
const char* const kTotalSharesPerTable =
    R"(SELECT 'Sell' AS "Type", Sum(T."Shares") AS "Total Shares" FROM "Blocks" AS B )"
    R"(INNER JOIN "Sell" AS T ON B."Block No" = T."Block No" WHERE B."Sec ID" = :lSecID )"
    R"(UNION ALL SELECT 'Buy', Sum(T."Shares") FROM "Blocks" AS B )"
    R"(INNER JOIN "Buy" AS T ON B."Block No" = T."Block No" WHERE B."Sec ID" = :lSecID )"
    R"(UNION ALL SELECT 'Adjust', Sum(T."Shares") FROM "Blocks" AS B )"
    R"(INNER JOIN "Adjust" AS T ON B."Block No" = T."Block No" WHERE B."Sec ID" = :lSecID )"
    R"(UNION ALL SELECT 'Split', Sum(T."Shares") FROM "Blocks" AS B )"
    R"(INNER JOIN "Split" AS T ON B."Block No" = T."Block No" WHERE B."Sec ID" = :lSecID)";
const char* const kGetAClient =
    R"(SELECT "Client Code" FROM "Clients" WHERE "Client Code" = :sClientCode)";
const char* const kDeleteClient = R"(DELETE FROM "Clients" WHERE "Client Code" = :sClientCode)";
}  // namespace saved_sql

void CreateTemplate(FileKind kind, const std::string& path) {
  auto db = Database::Create(path);
  Database::Transaction unit(*db);
  db->ExecuteScript(kSavedQueriesDdl);
  switch (kind) {
    case FileKind::kCentral:
      db->ExecuteScript(kCentralTables);
      WriteQueries(*db, kCentralQueries);
      break;
    case FileKind::kTaxpayer:
      db->ExecuteScript(kTaxpayerTables);
      db->ExecuteScript(SharesLeftTriggers());
      WriteQueries(*db, kTaxpayerQueries);
      break;
    case FileKind::kReport:
      db->ExecuteScript(kReportTables);
      WriteQueries(*db, kReportQueries);
      break;
  }
  if (kind != FileKind::kReport) {
    db->Execute(R"(INSERT INTO "Version" ("Version") VALUES (:v))",
                {{"v", std::string(kCurrentDataVersion)}});
  }
  unit.Commit();
}

}  // namespace lotwise
