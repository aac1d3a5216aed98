#include "data/query_builders.h"

#include <array>

#include "data/application.h"
#include "ground/lw_error.h"
#include "ground/ui_port.h"

namespace lotwise {

namespace {

// Table names cannot be bound, so they must be one of the program's own.
constexpr std::string_view kKnownTables[] = {
    "Blocks",
    "Buy",
    "Sell",
    "Split",
    "Adjust",
    "Security",
    "Portfolio",
    "Client",
    "Change",
    "Sell Method",
    "Version",
    "Securities",
    "Clients",
    "Usage",
    "Prices",
    "BA Info",
    "BA Secs",
    "BA Blocks",
    "BA Trans",
    "Sched D",
    "TL Info",
    "TL Port",
    "TL Sec",
    "TL Trans",
    "Client Report",
    "Portfolio Report",
    "Sec List Report",
};

std::string Table(std::string_view name) {
  for (std::string_view known : kKnownTables) {
    if (known == name) {
      // Appended piece by piece: GCC 12 at -O3 misreads `"\"" + name + "\""`
      // as an overlapping copy (-Wrestrict).
      std::string quoted(1, '"');
      quoted.append(name);
      quoted.push_back('"');
      return quoted;
    }
  }
  throw LwError(err::kObjectNotFound, "Could not find the object '" + std::string(name) + "'.");
}

// The six parts of a block's transaction listing, in listing order.
struct TransPart {
  TransKind kind;
  const char* sql;
};

constexpr std::array<TransPart, 6> kTransParts = {{
    {TransKind::kBuy,
     R"(SELECT "Date", 'Buy' AS "Transaction", "Cost", 0 AS "Sale Price", "Shares", "Fee", "Notes", )"
     R"("Unique ID", "Prec Sort" FROM "Buy" WHERE "Block No" = :n AND "Type" = 10)"},
    {TransKind::kReinvestment,
     R"(SELECT "Date", 'Reinvestment' AS "Transaction", "Cost", 0 AS "Sale Price", "Shares", "Fee", )"
     R"("Notes", "Unique ID", "Prec Sort" FROM "Buy" WHERE "Block No" = :n AND "Type" = 20)"},
    {TransKind::kSell,
     R"(SELECT "Date", 'Sell' AS "Transaction", 0 AS "Cost", "Sale Price", "Shares", "Fee", "Notes", )"
     R"("Unique ID", "Prec Sort" FROM "Sell" WHERE "Block No" = :n)"},
    {TransKind::kStockSplit,
     R"(SELECT "Date", 'Stock Split (' || lw_number_text("Pre Ratio") || ' to ' || )"
     R"(lw_number_text("Post Ratio") || ')' AS "Transaction", 0 AS "Cost", 0 AS "Sale Price", "Shares", )"
     R"(0 AS "Fee", "Notes", "Unique ID", "Prec Sort" FROM "Split" WHERE "Block No" = :n AND "Type" = 11)"},
    {TransKind::kStockDividend,
     R"(SELECT "Date", 'Stock Div. (' || lw_number_text("Pre Ratio") || ' per ' || )"
     R"(lw_number_text("Post Ratio") || ')' AS "Transaction", 0 AS "Cost", 0 AS "Sale Price", "Shares", )"
     R"(0 AS "Fee", "Notes", "Unique ID", "Prec Sort" FROM "Split" WHERE "Block No" = :n AND "Type" = 21)"},
    {TransKind::kAdjustment,
     R"(SELECT "Date", 'Adjustment' AS "Transaction", "Cost", 0 AS "Sale Price", "Shares", 0 AS "Fee", )"
     R"("Notes", "Unique ID", "Prec Sort" FROM "Adjust" WHERE "Block No" = :n)"},
}};

}  // namespace

SqlStatement Query_ClearTable(std::string_view table) {
  return {"DELETE FROM " + Table(table), {}};
}

SqlStatement Query_DeleteBlock(int64_t block_no) {
  return {R"(DELETE FROM "Blocks" WHERE "Block No" = :n)", {{"n", block_no}}};
}

SqlStatement Query_DeleteTrans(std::string_view table, int64_t unique_id) {
  return {"DELETE FROM " + Table(table) + R"( WHERE "Unique ID" = :id)", {{"id", unique_id}}};
}

SqlStatement Query_GetBlocksInSec(int64_t sec_id) {
  return {R"(SELECT * FROM "Blocks" WHERE "Sec ID" = :id ORDER BY "Date" ASC, "Block ID" ASC)",
          {{"id", sec_id}}};
}

SqlStatement Query_GetBlocksInSecWithDate(int64_t sec_id, Date date) {
  return {R"(SELECT * FROM "Blocks" WHERE "Sec ID" = :id AND "Date" = :date )"
          R"(ORDER BY "Date" ASC, "Block ID" ASC)",
          {{"id", sec_id}, {"date", date}}};
}

SqlStatement Query_GetClient(std::string_view code) {
  return {R"(SELECT * FROM "Client" WHERE "Client Code" = :code COLLATE NOCASE)", {{"code", code}}};
}

SqlStatement Query_GetClientCDB(std::string_view code) {
  return {R"(SELECT * FROM "Clients" WHERE "Client Code" = :code)", {{"code", code}}};
}

SqlStatement Query_GetClientCDBSorted(Application& app, int sort_key) {
  static constexpr const char* kFields[] = {R"("Client Name")", R"("Sort Name")",
                                            R"("Client Code")"};
  if (sort_key < 0 || sort_key > 2) {
    app.ui().MessageBox("Incorrect value to Sort Clients by", "Error", Icon::kNone, Buttons::kOk);
    return {R"(SELECT * FROM "Clients")", {}};
  }
  return {std::string(R"(SELECT * FROM "Clients" ORDER BY )") + kFields[sort_key] +
              " COLLATE NOCASE ASC",
          {}};
}

SqlStatement Query_GetPort(std::string_view name) {
  return {R"(SELECT * FROM "Portfolio" WHERE "Port Name" = :name)", {{"name", name}}};
}

SqlStatement Query_GetTransaction(std::string_view table, int64_t unique_id) {
  return {"SELECT * FROM " + Table(table) + R"( WHERE "Unique ID" = :id)", {{"id", unique_id}}};
}

SqlStatement Query_RollBack(std::string_view table, int16_t type, int64_t block_no, Date date) {
  SqlStatement s{"DELETE FROM " + Table(table) + R"( WHERE "Block No" = :n)", {{"n", block_no}}};
  // Type 99 stands for the tables that have no Type field.
  if (type != 99) {
    s.sql += R"( AND "Type" = :type)";
    s.params.emplace_back("type", type);
  }
  s.sql += R"( AND "Date" > :date)";
  s.params.emplace_back("date", date);
  return s;
}

SqlStatement Query_SecsInPort(std::string_view port_name) {
  return {R"(SELECT "Sec Symbol", "2nd Line", "Sec ID" FROM "Security" WHERE "Port Name" = :name )"
          R"(ORDER BY "Sec Symbol" ASC)",
          {{"name", port_name}}};
}

SqlStatement Query_TransInBlock(int64_t block_no, TransKind kind) {
  SqlStatement s;
  for (const TransPart& part : kTransParts) {
    if (kind != TransKind::kAll && kind != part.kind) continue;
    if (!s.sql.empty()) s.sql += " UNION ALL ";
    s.sql += part.sql;
  }
  s.sql += R"( ORDER BY "Date" ASC, "Prec Sort" ASC)";
  s.params.emplace_back("n", block_no);
  return s;
}

}  // namespace lotwise
