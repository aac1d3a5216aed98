#include "data/security_history.h"

#include "data/database.h"
#include "data/transaction_store.h"
#include "ground/sell_method_codes.h"

namespace lotwise {

const std::string& SecurityHistory::BlockId(int64_t block_no) const {
  static const std::string none;
  for (const BlockOnFile& block : blocks) {
    if (block.block_no == block_no) return block.block_id;
  }
  return none;
}

SecurityHistory ReadSecurityHistory(Database& db, int64_t sec_id) {
  SecurityHistory history;
  Query blocks = db.Select(R"(SELECT "Block No", "Block ID", "Date" FROM "Blocks" )"
                           R"(WHERE "Sec ID" = :sec ORDER BY "Date", "Block ID")",
                           {{"sec", sec_id}});
  while (blocks.Next()) {
    history.blocks.push_back(
        {blocks.Int("Block No"), blocks.Text("Block ID"), blocks.DateValue("Date")});
  }
  // One shape for the four tables; the columns a table lacks read as 0.
  const std::string common =
      R"(T."Unique ID" AS uid, T."Block No" AS block, T."Date" AS date, T."Prec Sort" AS prec, )"
      R"(T."Shares" AS shares, T."Notes" AS notes)";
  const std::string from =
      R"( AS T JOIN "Blocks" AS B ON B."Block No" = T."Block No" WHERE B."Sec ID" = :sec)";
  Query rows = db.Select(
      "SELECT 0 AS tbl, " + common + R"(, T."Type" AS type, 0 AS pre, 0 AS post, 0 AS price, )" +
          R"(0 AS fee FROM "Buy")" + from + " UNION ALL SELECT 1, " + common +
          R"(, 0, 0, 0, T."Sale Price", T."Fee" FROM "Sell")" + from + " UNION ALL SELECT 2, " +
          common + R"(, T."Type", T."Pre Ratio", T."Post Ratio", 0, 0 FROM "Split")" + from +
          " UNION ALL SELECT 3, " + common + R"(, 0, 0, 0, 0, 0 FROM "Adjust")" + from +
          " ORDER BY tbl, uid",
      {{"sec", sec_id}});
  while (rows.Next()) {
    HistoryRow row;
    row.table = static_cast<HistoryTable>(rows.Int("tbl"));
    row.unique_id = rows.Int("uid");
    row.block_no = rows.Int("block");
    row.key = {rows.DateValue("date"), rows.Int("prec")};
    row.shares = rows.Double("shares");
    row.type = rows.Int("type");
    row.pre = rows.Double("pre");
    row.post = rows.Double("post");
    row.price = rows.Money("price");
    row.fee = rows.Money("fee");
    row.notes = rows.Text("notes");
    history.rows.push_back(std::move(row));
  }
  return history;
}

bool HasSaleAfter(Database& db, int64_t sec_id, HistoryKey entry) {
  return db
      .Select(
          R"(SELECT 1 AS found FROM "Sell" AS S JOIN "Blocks" AS B ON B."Block No" = S."Block No" )"
          R"(WHERE B."Sec ID" = :sec AND (S."Date" > :d OR (S."Date" = :d AND :sell > :prec)) )"
          R"(LIMIT 1)",
          {{"sec", sec_id}, {"d", entry.date}, {"sell", kPrecSell}, {"prec", entry.prec}})
      .Next();
}

SellMethod SellMethodOfSecurity(Database& db, int64_t sec_id) {
  Query q = db.Select(R"(SELECT M."Sell Method" FROM "Security" AS S JOIN "Sell Method" AS M )"
                      R"(ON M."Sec Symbol" = S."Sec Symbol" WHERE S."Sec ID" = :sec)",
                      {{"sec", sec_id}});
  return q.Next() ? SellMethodAsStored(q.Int("Sell Method")) : SellMethod::kNotSelected;
}

void DeleteSellRow(Database& client, int64_t unique_id) {
  client.Execute(R"(DELETE FROM "Sell" WHERE "Unique ID" = :id)", {{"id", unique_id}});
}

void DeleteSplitRow(Database& client, int64_t unique_id) {
  client.Execute(R"(DELETE FROM "Split" WHERE "Unique ID" = :id)", {{"id", unique_id}});
}

void SetSplitShares(Database& client, int64_t unique_id, double shares) {
  client.Execute(R"(UPDATE "Split" SET "Shares" = :shares WHERE "Unique ID" = :id)",
                 {{"shares", shares}, {"id", unique_id}});
}

}  // namespace lotwise
