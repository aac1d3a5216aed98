#include "data/block_shares.h"

#include <algorithm>
#include <map>
#include <string>

#include "data/database.h"
#include "data/transaction_store.h"
#include "ground/value_helpers.h"

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
    double shares = RoundShares(q.Double("Shares Left"));
    if (shares <= 0) continue;
    if (!visit({q.Int("Block No"), q.Text("Block ID"), q.DateValue("Date"), shares})) return;
  }
}

namespace {

// Caps each block of `batch` at what it holds after each of its rows dated
// after a sale at `date`: walking back from today's shares through those
// rows gives what the block held at each of them. One query serves the
// batch.
void CapByLaterRows(Database& client, std::vector<BlockShares>& batch, Date date) {
  Params params = {{"d", date}, {"sell", kPrecSell}};
  std::string in;
  std::map<int64_t, size_t> index;
  for (size_t i = 0; i < batch.size(); ++i) {
    const std::string name = "b" + std::to_string(i);
    in += (i == 0 ? ":" : ", :") + name;
    params.emplace_back(name, batch[i].block_no);
    index[batch[i].block_no] = i;
  }
  std::string rows;
  for (const char* table : {"Buy", "Sell", "Split", "Adjust"}) {
    if (!rows.empty()) rows += " UNION ALL ";
    rows += std::string(R"(SELECT "Block No", "Shares", "Date", "Prec Sort" FROM ")") + table +
            R"(" WHERE "Block No" IN ()" + in + ")";
  }
  Query later = client.Select("SELECT * FROM (" + rows +
                                  R"() WHERE "Date" > :d OR ("Date" = :d AND "Prec Sort" > :sell) )"
                                  R"(ORDER BY "Block No", "Date" DESC, "Prec Sort" DESC)",
                              params);
  std::map<int64_t, double> balance;
  while (later.Next()) {
    BlockShares& block = batch[index[later.Int("Block No")]];
    auto [it, first] = balance.emplace(block.block_no, block.shares);
    it->second = RoundShares(it->second - later.Double("Shares"));
    if (it->second < block.shares) block.shares = it->second;
  }
}

}  // namespace

void ForEachBlockHeldOn(Database& client, int64_t sec_id, Date date,
                        const std::function<bool(const BlockShares&)>& visit) {
  // Blocks are capped a batch at a time, the batches growing: a sale from
  // one lot reads few blocks ahead, and one over a thousand small lots does
  // not cost a query per lot.
  size_t batch_size = 4;
  std::vector<BlockShares> batch;
  bool go_on = true;
  auto visit_batch = [&] {
    CapByLaterRows(client, batch, date);
    for (const BlockShares& block : batch) {
      if (block.shares > 0 && !visit(block)) {
        go_on = false;
        break;
      }
    }
    batch.clear();
    batch_size = std::min<size_t>(batch_size * 4, 256);
  };
  ForEachOpenBlock(client, sec_id, [&](const BlockShares& block) {
    if (date < block.date) return false;  // oldest first: no later block qualifies
    batch.push_back(block);
    if (batch.size() == batch_size) visit_batch();
    return go_on;
  });
  if (go_on && !batch.empty()) visit_batch();
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
                      RoundShares(q.Double("Shares"))});
  }
  return blocks;
}

}  // namespace lotwise
