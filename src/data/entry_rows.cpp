#include "data/entry_rows.h"

#include "data/database.h"

namespace lotwise {

std::vector<SaleRowOnFile> EntireSell(Database& client, int64_t sec_id, Date date) {
  std::vector<SaleRowOnFile> rows;
  Query q = client.SelectSaved("Get Entire Sell", {{"lSecID", sec_id}, {"dtDate", date}});
  while (q.Next()) {
    rows.push_back({q.Int("Block No"), q.Text("Block ID"), q.Double("Shares"),
                    q.Money("Sale Price"), q.Money("Fee"), q.Text("Notes")});
  }
  return rows;
}

std::vector<SplitRowOnFile> EntireSplitDiv(Database& client, int64_t sec_id, Date date,
                                           int16_t type) {
  std::vector<SplitRowOnFile> rows;
  Query q = client.SelectSaved("Get Entire SplitDiv",
                               {{"lSecID", sec_id}, {"dtDate", date}, {"nType", type}});
  while (q.Next()) {
    rows.push_back({q.Int("Block No"), q.Double("Pre Ratio"), q.Double("Post Ratio"),
                    q.Double("Shares"), q.Text("Notes")});
  }
  return rows;
}

void DeleteEntireSell(Database& client, const ReplacedEntry& replaced) {
  client.ExecuteSaved("Delete Entire Sell",
                      {{"lSecID", replaced.sec_id}, {"dtDate", replaced.date}});
}

void DeleteEntireSplitDiv(Database& client, const ReplacedEntry& replaced, int16_t type) {
  client.ExecuteSaved("Delete Entire SplitDiv",
                      {{"lSecID", replaced.sec_id}, {"dtDate", replaced.date}, {"nType", type}});
}

bool SecurityHasBlocks(Database& client, int64_t sec_id) {
  return client
      .Select(R"(SELECT 1 AS found FROM "Blocks" WHERE "Sec ID" = :id LIMIT 1)", {{"id", sec_id}})
      .Next();
}

bool SecurityHasTransactions(Database& client, int64_t sec_id) {
  return client
      .Select(R"(SELECT 1 AS found FROM "Blocks" AS b WHERE b."Sec ID" = :sec AND ()"
              R"(EXISTS (SELECT 1 FROM "Buy" AS t WHERE t."Block No" = b."Block No") OR )"
              R"(EXISTS (SELECT 1 FROM "Sell" AS t WHERE t."Block No" = b."Block No") OR )"
              R"(EXISTS (SELECT 1 FROM "Split" AS t WHERE t."Block No" = b."Block No") OR )"
              R"(EXISTS (SELECT 1 FROM "Adjust" AS t WHERE t."Block No" = b."Block No")) LIMIT 1)",
              {{"sec", sec_id}})
      .Next();
}

bool BlockHasNoTransactions(Database& client, int64_t block_no) {
  Query q = client.Select(R"(SELECT EXISTS (SELECT 1 FROM "Buy" WHERE "Block No" = :n) OR )"
                          R"(EXISTS (SELECT 1 FROM "Sell" WHERE "Block No" = :n) OR )"
                          R"(EXISTS (SELECT 1 FROM "Split" WHERE "Block No" = :n) OR )"
                          R"(EXISTS (SELECT 1 FROM "Adjust" WHERE "Block No" = :n) AS used)",
                          {{"n", block_no}});
  q.Next();
  return q.Int("used") == 0;
}

std::optional<BlockOnFile> FindBlock(Database& client, int64_t block_no) {
  Query q = client.Select(R"(SELECT "Block ID", "Date" FROM "Blocks" WHERE "Block No" = :n)",
                          {{"n", block_no}});
  if (!q.Next()) return std::nullopt;
  return BlockOnFile{block_no, q.Text("Block ID"), q.DateValue("Date")};
}

std::optional<Date> FirstTransactionDate(Database& client, int64_t block_no) {
  Query first = client.Select(
      R"(SELECT min("Date") AS "First" FROM (SELECT "Date" FROM "Buy" WHERE "Block No" = :n )"
      R"(UNION ALL SELECT "Date" FROM "Sell" WHERE "Block No" = :n )"
      R"(UNION ALL SELECT "Date" FROM "Split" WHERE "Block No" = :n )"
      R"(UNION ALL SELECT "Date" FROM "Adjust" WHERE "Block No" = :n))",
      {{"n", block_no}});
  if (!first.Next() || first.IsNull("First")) return std::nullopt;
  return first.DateValue("First");
}

std::vector<BlockOnFile> BlocksOfSecurity(Database& client, int64_t sec_id) {
  std::vector<BlockOnFile> rows;
  Query q = Select(client, Query_GetBlocksInSec(sec_id));
  while (q.Next()) rows.push_back({q.Int("Block No"), q.Text("Block ID"), q.DateValue("Date")});
  return rows;
}

std::vector<TransactionRow> TransactionsInBlock(Database& client, int64_t block_no,
                                                TransKind kind) {
  std::vector<TransactionRow> rows;
  Query q = Select(client, Query_TransInBlock(block_no, kind));
  while (q.Next()) {
    TransactionRow& row = rows.emplace_back();
    row.date = q.DateValue("Date");
    row.transaction = q.Text("Transaction");
    row.cost = q.Money("Cost");
    row.sale_price = q.Money("Sale Price");
    row.shares = q.Double("Shares");
    row.fee = q.Money("Fee");
    row.notes = q.Text("Notes");
    row.unique_id = q.Int("Unique ID");
    row.prec_sort = static_cast<int16_t>(q.Int("Prec Sort"));
  }
  return rows;
}

void DeleteTransactionRow(Database& client, std::string_view table, int64_t unique_id) {
  Execute(client, Query_DeleteTrans(table, unique_id));
}

void DeleteBlockRow(Database& client, int64_t block_no) {
  Execute(client, Query_DeleteBlock(block_no));
}

}  // namespace lotwise
