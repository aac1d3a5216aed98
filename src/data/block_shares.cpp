#include "data/block_shares.h"

#include "app/value_helpers.h"
#include "data/database.h"
#include "data/transaction_store.h"

namespace lotwise {

std::vector<BlockShares> OpenBlocks(Database& client, int64_t sec_id) {
  std::vector<BlockShares> blocks;
  ForEachOpenBlock(client, sec_id, [&](const BlockShares& block) {
    blocks.push_back(block);
    return true;
  });
  return blocks;
}

void ForEachOpenBlock(Database& client, int64_t sec_id,
                      const std::function<bool(const BlockShares&)>& visit) {
  // The condition repeats the open-blocks index's own, so that the index is
  // used; rounding then decides, exactly as a fresh sum would be rounded.
  Query q = client.Select(
      R"(SELECT "Block No", "Block ID", "Date", "Shares Left" FROM "Blocks" )"
      R"(WHERE "Sec ID" = :id AND "Shares Left" >= 0.000005 ORDER BY "Date", "Block ID")",
      {{"id", sec_id}});
  while (q.Next()) {
    double shares = RoundDouble(q.Double("Shares Left"), 5);
    if (shares <= 0) continue;
    if (!visit({q.Int("Block No"), q.Text("Block ID"), q.DateValue("Date"), shares})) return;
  }
}

void ForEachBlockHeldOn(Database& client, int64_t sec_id, Date date,
                        const std::function<bool(const BlockShares&)>& visit) {
  ForEachOpenBlock(client, sec_id, [&](const BlockShares& block) {
    if (date < block.date) return false;  // oldest first: no later block qualifies
    // Walking back from today's shares through the rows after the sale
    // gives what the block held at each of them.
    Query later = client.Select(
        R"(SELECT "Shares" FROM (SELECT "Shares", "Date", "Prec Sort" FROM "Buy" WHERE "Block No" = :n )"
        R"(UNION ALL SELECT "Shares", "Date", "Prec Sort" FROM "Sell" WHERE "Block No" = :n )"
        R"(UNION ALL SELECT "Shares", "Date", "Prec Sort" FROM "Split" WHERE "Block No" = :n )"
        R"(UNION ALL SELECT "Shares", "Date", "Prec Sort" FROM "Adjust" WHERE "Block No" = :n) )"
        R"(WHERE "Date" > :d OR ("Date" = :d AND "Prec Sort" > :sell) )"
        R"(ORDER BY "Date" DESC, "Prec Sort" DESC)",
        {{"n", block.block_no}, {"d", date}, {"sell", kPrecSell}});
    BlockShares held = block;
    double balance = block.shares;
    while (later.Next()) {
      balance = RoundDouble(balance - later.Double("Shares"), 5);
      if (balance < held.shares) held.shares = balance;
    }
    if (held.shares <= 0) return true;
    return visit(held);
  });
}

bool HasBlockOnOrBefore(Database& client, int64_t sec_id, Date date) {
  return client
      .Select(R"(SELECT 1 AS found FROM "Blocks" WHERE "Sec ID" = :id AND "Date" <= :d LIMIT 1)",
              {{"id", sec_id}, {"d", date}})
      .Next();
}

std::vector<BlockShares> BlockSharesAsOf(Database& client, int64_t sec_id, Date as_of) {
  std::vector<BlockShares> blocks;
  Query q = client.Select(
      R"(SELECT B."Block No", B."Block ID", B."Date", )"
      R"((SELECT total(T."Shares") FROM (SELECT "Shares", "Date" FROM "Buy" WHERE "Block No" = B."Block No" )"
      R"(UNION ALL SELECT "Shares", "Date" FROM "Sell" WHERE "Block No" = B."Block No" )"
      R"(UNION ALL SELECT "Shares", "Date" FROM "Split" WHERE "Block No" = B."Block No" )"
      R"(UNION ALL SELECT "Shares", "Date" FROM "Adjust" WHERE "Block No" = B."Block No") AS T )"
      R"(WHERE T."Date" <= :as_of) AS "Shares" )"
      R"(FROM "Blocks" AS B WHERE B."Sec ID" = :id ORDER BY B."Date", B."Block ID")",
      {{"id", sec_id}, {"as_of", as_of}});
  while (q.Next()) {
    blocks.push_back({q.Int("Block No"), q.Text("Block ID"), q.DateValue("Date"),
                      RoundDouble(q.Double("Shares"), 5)});
  }
  return blocks;
}

}  // namespace lotwise
