#include "data/transaction_store.h"

#include <optional>
#include <set>
#include <vector>

#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "ground/environment.h"
#include "ground/field_sizes.h"
#include "ground/lw_error.h"
#include "ground/number_text.h"
#include "ground/text.h"
#include "ground/ui_port.h"

namespace lotwise {

namespace {

constexpr const char* kPurchaseExistsTitle = "Purchase with same date exists";

// Every question here is asked before the unit of work begins: a user who
// leaves a question open must not hold the write lock of a shared file.
bool AskYesNo(Application& app, const std::string& text, const std::string& title) {
  return app.ui().MessageBox(text, title, Icon::kQuestion, Buttons::kYesNo) == Answer::kYes;
}

bool AskPurchaseExists(Application& app, Date date) {
  return AskYesNo(app,
                  "There is already a Purchase of Shares in this Security on " + date.ToString() +
                      ".\nDo you still want to add this transaction?",
                  kPurchaseExistsTitle);
}

// The rows of the saved query `name` dated `date`. The database narrows the
// saved query down instead of the program reading it row by row, so that a
// security with thousands of lots is checked by one index search.
Query SavedRowsOn(Application& app, const char* name, Params params, Date date) {
  params.emplace_back("lw_date", date);
  return app.client->Select(
      "SELECT * FROM (" + app.client->SavedQuerySql(name) + R"() WHERE "Date" = :lw_date)", params);
}

// True iff the saved per-block query `query` has a row of block `block_no`
// dated `date`.
bool BlockHasRowOn(Application& app, const char* query, int64_t block_no, Date date) {
  return SavedRowsOn(app, query, {{"lBlockNo", block_no}}, date).Next();
}

// True iff the security has a buy of `type` (any type when nullopt) dated
// `date` outside block `except_block`.
bool SecurityHasBuyOn(Application& app, int64_t sec_id, Date date, std::optional<int64_t> type,
                      int64_t except_block = 0) {
  Query buys = SavedRowsOn(app, "Buys In Security", {{"lSecID", sec_id}}, date);
  while (buys.Next()) {
    if (type && buys.Int("Type") != *type) continue;
    if (buys.Int("Block No") == except_block) continue;
    return true;
  }
  return false;
}

// The first free block id of the security on `date`: "mm/dd/yyyy-n" with
// the smallest n from 1 up. A block being re-dated never collides with its
// own old name.
std::string NextBlockId(Application& app, int64_t sec_id, Date date, int64_t except_block = 0) {
  std::set<std::string> taken;
  Query blocks = Select(*app.client, Query_GetBlocksInSecWithDate(sec_id, date));
  while (blocks.Next()) {
    if (blocks.Int("Block No") != except_block) taken.insert(blocks.Text("Block ID"));
  }
  const std::string prefix = date.ToString() + "-";
  for (int n = 1;; ++n) {
    std::string candidate = prefix + std::to_string(n);
    if (!taken.contains(candidate)) return candidate;
  }
}

// The type of the buy that opened the block, if it has one.
std::optional<int64_t> BlockBuyType(Application& app, int64_t block_no) {
  Query buy = app.client->Select(
      R"(SELECT "Type" FROM "Buy" WHERE "Block No" = :n ORDER BY "Unique ID" LIMIT 1)",
      {{"n", block_no}});
  if (!buy.Next()) return std::nullopt;
  return buy.Int("Type");
}

bool ConfirmRedate(Application& app, int64_t sec_id, int64_t block_no, std::optional<int64_t> type,
                   Date date) {
  if (!SecurityHasBuyOn(app, sec_id, date, type, block_no)) return true;
  return AskYesNo(app,
                  "There is already a Purchase (or Reinvestment) of Shares in this Security on " +
                      date.ToString() + ".\nDo you still want to modify this transaction?",
                  kPurchaseExistsTitle);
}

// Moves the block to `date` under the next free block id of that date.
void RedateBlock(Application& app, int64_t sec_id, int64_t block_no, Date date) {
  std::string block_id = NextBlockId(app, sec_id, date, block_no);
  int64_t changed = app.client->Execute(
      R"(UPDATE "Blocks" SET "Block ID" = :id, "Date" = :date WHERE "Block No" = :n AND "Sec ID" = :sec)",
      {{"id", block_id}, {"date", date}, {"n", block_no}, {"sec", sec_id}});
  if (changed != 1) {
    throw LwError(err::kUnexpected, "No current record: block " + std::to_string(block_no) +
                                        " of security " + std::to_string(sec_id));
  }
  if (app.current.block_no == block_no) app.current.block_id = block_id;
}

std::string ValueText(Date value) { return value.ToString(); }
std::string ValueText(Currency value) { return value.ToString(); }
std::string ValueText(double value) { return NumberText(value); }

// The change-log lines of one modification, in field order.
class ChangeLines {
 public:
  ChangeLines(const char* kind, int64_t unique_id) : kind_(kind), unique_id_(unique_id) {}

  template <class T>
  void Compare(const char* field, T old_value, T new_value) {
    if (old_value == new_value) return;
    lines_.push_back("Changed " + std::string(kind_) +
                     " (Unique ID = " + std::to_string(unique_id_) + "), field '" + field +
                     "' from " + ValueText(old_value) + " to " + ValueText(new_value));
  }

  // Writes the lines under the current portfolio and security. Returns
  // false when the error handler is ending the program over a failed line:
  // the modification must then not be committed without its log.
  bool Write(Application& app) const {
    const Date today = Today(app.env());
    for (const std::string& line : lines_) {
      LogChange(app, app.current.port_name, app.current.sec_id, today, line);
    }
    return true;
  }

 private:
  const char* kind_;
  int64_t unique_id_;
  std::vector<std::string> lines_;
};

// Reads the row `unique_id` of `table`, or tells the user it is missing.
std::optional<Query> FindTransaction(Application& app, std::string_view table, int64_t unique_id) {
  Query row = Select(*app.client, Query_GetTransaction(table, unique_id));
  if (row.Next()) return row;
  app.ui().MessageBox(
      "The transaction could not be located with Unique ID = " + std::to_string(unique_id) +
          ". This modification can not be made. It is suggested that you exit the Modify form "
          "and try this modification again. If you continue to get this error please contact "
          "Tarnwick Software, Inc.",
      "Error!", Icon::kCritical, Buttons::kOk);
  return std::nullopt;
}

// Writes a modification's change-log lines and its row together, or
// neither. Returns false when the log could not be written.
bool WriteModification(Application& app, ChangeLines& lines, std::string_view update_sql,
                       const Params& params) {
  Database::Transaction unit(*app.client);
  if (!lines.Write(app)) return false;
  app.client->Execute(update_sql, params);
  unit.Commit();
  return true;
}

}  // namespace

bool AddBuy(Application& app, int64_t sec_id, std::string& block_id, int16_t type, Date date,
            Currency cost, double shares, Currency fee, const std::string& notes) {
  return Trap(app, "AddBuy", false, [&] {
    if (SecurityHasBuyOn(app, sec_id, date, type) && !AskPurchaseExists(app, date)) return false;
    Database& db = *app.client;
    Database::Transaction unit(db);
    std::string new_id = NextBlockId(app, sec_id, date);
    db.Execute(R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:sec, :id, :date))",
               {{"sec", sec_id}, {"id", new_id}, {"date", date}});
    const int64_t block_no = db.LastInsertId();
    db.Execute(
        R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Cost", "Shares", "Fee", "Notes", "Prec Sort") )"
        R"(VALUES (:n, :date, :type, :cost, :shares, :fee, :notes, :prec))",
        {{"n", block_no},
         {"date", date},
         {"type", type},
         {"cost", cost},
         {"shares", shares},
         {"fee", fee},
         {"notes", notes},
         {"prec", type == kTypeReinvest ? kPrecReinvest : kPrecBuy}});
    unit.Commit();
    block_id = new_id;
    return true;
  });
}

bool ConfirmSellOn(Application& app, int64_t block_no, Date date) {
  return Trap(app, "AddSell", false, [&] {
    // A second sale on one date deliberately reuses the purchase question.
    return !BlockHasRowOn(app, "Sells In Block", block_no, date) || AskPurchaseExists(app, date);
  });
}

bool ConfirmSplitOn(Application& app, int64_t block_no, int16_t type, Date date,
                    std::optional<int16_t> replaced_type) {
  return Trap(app, "AddSplit", false, [&] {
    // Any split or dividend of the block on that date prompts, whatever its
    // type, except the rows the entry replaces.
    bool exists = false;
    Query rows = SavedRowsOn(app, "Splits In Block", {{"lBlockNo", block_no}}, date);
    while (!exists && rows.Next()) exists = !replaced_type || rows.Int("Type") != *replaced_type;
    if (!exists) return true;
    const std::string when = date.ToString();
    return type == kTypeDividend
               ? AskYesNo(app,
                          "There is already a Stock Dividend(or Stock Split) on " + when +
                              ".\nDo you still want to add this Stock Dividend?",
                          "Stock Dividend with same Date exists")
               : AskYesNo(app,
                          "There is already a Stock Split(or Stock Dividend) on " + when +
                              ".\nDo you still want to add this Stock Split?",
                          "Stock Split with same Date exists");
  });
}

void InsertSellRow(Database& client, int64_t block_no, Date date, Currency sale_price, Currency fee,
                   double shares, const std::string& notes) {
  client.Execute(
      R"(INSERT INTO "Sell" ("Block No", "Date", "Sale Price", "Fee", "Shares", "Notes", "Prec Sort") )"
      R"(VALUES (:n, :date, :price, :fee, :shares, :notes, :prec))",
      {{"n", block_no},
       {"date", date},
       {"price", sale_price},
       {"fee", fee},
       {"shares", shares},
       {"notes", notes},
       {"prec", kPrecSell}});
}

void InsertSplitRow(Database& client, int64_t block_no, int16_t type, Date date, double pre_ratio,
                    double post_ratio, double shares, const std::string& notes) {
  client.Execute(
      R"(INSERT INTO "Split" ("Block No", "Date", "Type", "Pre Ratio", "Post Ratio", "Shares", )"
      R"("Notes", "Prec Sort") VALUES (:n, :date, :type, :pre, :post, :shares, :notes, :prec))",
      {{"n", block_no},
       {"date", date},
       {"type", type},
       {"pre", pre_ratio},
       {"post", post_ratio},
       {"shares", shares},
       {"notes", notes},
       {"prec", type == kTypeDividend ? kPrecDividend : kPrecSplit}});
}

bool AddSell(Application& app, int64_t block_no, Date date, Currency sale_price, Currency fee,
             double shares, const std::string& notes) {
  return Trap(app, "AddSell", false, [&] {
    InsertSellRow(*app.client, block_no, date, sale_price, fee, shares, notes);
    return true;
  });
}

bool AddSplit(Application& app, int64_t block_no, int16_t type, Date date, double pre_ratio,
              double post_ratio, double shares, const std::string& notes) {
  return Trap(app, "AddSplit", false, [&] {
    InsertSplitRow(*app.client, block_no, type, date, pre_ratio, post_ratio, shares, notes);
    return true;
  });
}

bool AddAdjust(Application& app, int64_t block_no, Date date, double shares, Currency cost,
               const std::string& notes) {
  return Trap(app, "AddAdjust", false, [&] {
    if (BlockHasRowOn(app, "Adjusts In Block", block_no, date) &&
        !AskYesNo(app,
                  "There is already an Adjustment in this block for " + date.ToString() +
                      ".\nDo you still want to add this Adjustment?",
                  "Adjustment with same Date exists")) {
      return false;
    }
    app.client->Execute(
        R"(INSERT INTO "Adjust" ("Block No", "Date", "Shares", "Cost", "Notes", "Prec Sort") )"
        R"(VALUES (:n, :date, :shares, :cost, :notes, :prec))",
        {{"n", block_no},
         {"date", date},
         {"shares", shares},
         {"cost", cost},
         {"notes", notes},
         {"prec", kPrecAdjust}});
    return true;
  });
}

bool ModifyBuy(Application& app, int64_t unique_id, Date date, Currency cost, Currency fee,
               double shares, const std::string& notes) {
  return Trap(app, "ModifyBuy", false, [&] {
    std::optional<Query> row = FindTransaction(app, "Buy", unique_id);
    if (!row) return false;
    const Date old_date = row->DateValue("Date");
    const int64_t block_no = row->Int("Block No");
    const int64_t type = row->Int("Type");
    ChangeLines lines("Buy", unique_id);
    lines.Compare("Date", old_date, date);
    lines.Compare("Cost", row->Money("Cost"), cost);
    lines.Compare("Fee", row->Money("Fee"), fee);
    lines.Compare("Shares", row->Double("Shares"), shares);
    row.reset();

    int64_t sec_id = 0;
    if (date != old_date) {
      Query block = app.client->Select(R"(SELECT "Sec ID" FROM "Blocks" WHERE "Block No" = :n)",
                                       {{"n", block_no}});
      if (!block.Next()) {
        throw LwError(err::kUnexpected, "No current record: block " + std::to_string(block_no));
      }
      sec_id = block.Int("Sec ID");
      // Declining the re-dated block's question abandons the whole change:
      // a buy must never sit under a block of another date.
      if (!ConfirmRedate(app, sec_id, block_no, type, date)) return false;
    }

    Database::Transaction unit(*app.client);
    if (!lines.Write(app)) return false;
    if (date != old_date) RedateBlock(app, sec_id, block_no, date);
    app.client->Execute(
        R"(UPDATE "Buy" SET "Date" = :date, "Cost" = :cost, "Fee" = :fee, "Shares" = :shares, )"
        R"("Notes" = :notes WHERE "Unique ID" = :id)",
        {{"date", date},
         {"cost", cost},
         {"fee", fee},
         {"shares", shares},
         {"notes", notes},
         {"id", unique_id}});
    unit.Commit();
    return true;
  });
}

bool ModifySell(Application& app, int64_t unique_id, Date date, Currency sale_price, Currency fee,
                double shares, const std::string& notes) {
  return Trap(app, "ModifySell", false, [&] {
    std::optional<Query> row = FindTransaction(app, "Sell", unique_id);
    if (!row) return false;
    ChangeLines lines("Sell", unique_id);
    lines.Compare("Date", row->DateValue("Date"), date);
    lines.Compare("Sale Price", row->Money("Sale Price"), sale_price);
    lines.Compare("Fee", row->Money("Fee"), fee);
    lines.Compare("Shares", row->Double("Shares"), shares);
    row.reset();

    return WriteModification(
        app, lines,
        R"(UPDATE "Sell" SET "Date" = :date, "Sale Price" = :price, "Fee" = :fee, )"
        R"("Shares" = :shares, "Notes" = :notes WHERE "Unique ID" = :id)",
        {{"date", date},
         {"price", sale_price},
         {"fee", fee},
         {"shares", shares},
         {"notes", notes},
         {"id", unique_id}});
  });
}

bool ModifySplit(Application& app, int64_t unique_id, Date date, double shares,
                 const std::string& notes) {
  return Trap(app, "ModifySplit", false, [&] {
    std::optional<Query> row = FindTransaction(app, "Split", unique_id);
    if (!row) return false;
    ChangeLines lines("Split", unique_id);
    lines.Compare("Date", row->DateValue("Date"), date);
    lines.Compare("Shares", row->Double("Shares"), shares);
    row.reset();

    return WriteModification(
        app, lines,
        R"(UPDATE "Split" SET "Date" = :date, "Shares" = :shares, "Notes" = :notes )"
        R"(WHERE "Unique ID" = :id)",
        {{"date", date}, {"shares", shares}, {"notes", notes}, {"id", unique_id}});
  });
}

bool ModifyAdjust(Application& app, int64_t unique_id, Date date, Currency cost, double shares,
                  const std::string& notes) {
  return Trap(app, "ModifyAdjust", false, [&] {
    std::optional<Query> row = FindTransaction(app, "Adjust", unique_id);
    if (!row) return false;
    ChangeLines lines("Adjust", unique_id);
    lines.Compare("Date", row->DateValue("Date"), date);
    lines.Compare("Cost", row->Money("Cost"), cost);
    lines.Compare("Shares", row->Double("Shares"), shares);
    row.reset();

    return WriteModification(
        app, lines,
        R"(UPDATE "Adjust" SET "Date" = :date, "Cost" = :cost, "Shares" = :shares, )"
        R"("Notes" = :notes WHERE "Unique ID" = :id)",
        {{"date", date}, {"cost", cost}, {"shares", shares}, {"notes", notes}, {"id", unique_id}});
  });
}

bool RollBackTable(Application& app, std::string_view table, int64_t block_no, int16_t type,
                   Date date) {
  return Trap(app, "RollBackTable", false, [&] {
    Execute(*app.client, Query_RollBack(table, type, block_no, date));
    return true;
  });
}

void LogChange(Application& app, const std::string& port_name, int64_t sec_id, Date date,
               const std::string& description) {
  TrapVoid(app, "LogChange", [&] {
    std::string text = description;
    const auto size = static_cast<size_t>(DefinedTextSize("Change", "Description"));
    if (text.size() > size) {
      text = TruncateUtf8(text, size);
      app.ui().MessageBox(
          "Description length error in LogChange(). This error will not affect any of your data, "
          "and you may continue with your work. Please report the error to Tarnwick Software, Inc.",
          "Non-Fatal Error", Icon::kInformation, Buttons::kOk);
    }
    app.client->Execute(
        R"(INSERT INTO "Change" ("Date", "Port Name", "Sec ID", "Description") )"
        R"(VALUES (:date, :port, :sec, :description))",
        {{"date", date}, {"port", port_name}, {"sec", sec_id}, {"description", text}});
  });
}

bool ConfirmAndRedateBlock(Application& app, int64_t sec_id, int64_t block_no, Date date) {
  if (!ConfirmRedate(app, sec_id, block_no, BlockBuyType(app, block_no), date)) return false;
  Database::Transaction unit(*app.client);
  RedateBlock(app, sec_id, block_no, date);
  unit.Commit();
  return true;
}

bool SecurityHoldsBlock(Application& app, int64_t sec_id, int64_t block_no) {
  bool held = false;
  Query blocks = Select(*app.client, Query_GetBlocksInSec(sec_id));
  while (blocks.Next()) held = held || blocks.Int("Block No") == block_no;
  return held;
}

void DeleteBlockRows(Application& app, int64_t block_no) {
  // The block's transactions go with it (the relations cascade).
  Execute(*app.client, Query_DeleteBlock(block_no));
}

}  // namespace lotwise
