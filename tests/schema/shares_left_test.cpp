#include <gtest/gtest.h>

#include <random>

#include "data/block_shares.h"
#include "data/database.h"
#include "ground/number_text.h"
#include "support/app_fixture.h"
#include "support/values.h"

namespace lotwise::testing {
namespace {

// A block's "Shares Left" is kept by the database on every insert, update
// and delete of its transactions; after any mix of them it equals the sum
// of the block's rows, and the open-blocks index holds exactly the blocks
// that still have shares.
class SharesLeftTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshTaxpayer();
    Portfolio("P");
    Security("IBM", "P");
  }
  Database& db() { return *app_->client; }

  long long Count(const std::string& sql) {
    Query q = db().Select("SELECT count(*) AS n FROM " + sql);
    q.Next();
    return q.Int("n");
  }
  // Blocks whose cached value differs from the fresh sum of their rows.
  long long Mismatches() {
    return Count(R"("Blocks" AS B WHERE abs(B."Shares Left" - (SELECT total("Shares") FROM )"
                 R"("Block Shares" AS S WHERE S."Block No" = B."Block No")) > 1e-9)");
  }
};

TEST_F(SharesLeftTest, RandomWrites_CacheEqualsSumOfRows) {
  std::mt19937 random(20261122);
  auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  const char* tables[] = {"Sell", "Split", "Adjust"};
  for (int step = 0; step < 400; ++step) {
    const long long block_count = Count(R"("Blocks")");
    int action = block_count == 0 ? 0 : pick(7);
    long long block = block_count == 0 ? 0 : 1 + pick(static_cast<int>(block_count));
    Query any = db().Select(R"(SELECT "Block No" FROM "Blocks" ORDER BY random() LIMIT 1)");
    if (any.Next()) block = any.Int("Block No");
    const char* table = tables[pick(3)];
    switch (action) {
      case 0: {  // a buy opens a block
        db().Execute(
            R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (1, :id, :d))",
            {{"id", "b" + std::to_string(step)}, {"d", Date::FromYmd(2020, 1, 1 + step % 28)}});
        db().Execute(R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Shares", "Prec Sort") )"
                     R"(VALUES (:b, '2020-01-01', 10, :s, 10))",
                     {{"b", db().LastInsertId()}, {"s", 1 + pick(100) / 7.0}});
        break;
      }
      case 1:
      case 2:
        db().Execute(
            "INSERT INTO \"" + std::string(table) +
                "\" (\"Block No\", \"Date\", \"Shares\", \"Prec Sort\"" +
                (std::string(table) == "Split" ? ", \"Type\", \"Pre Ratio\", \"Post Ratio\"" : "") +
                ") VALUES (:b, '2020-02-01', :s, 40" +
                (std::string(table) == "Split" ? ", 11, 2, 1" : "") + ")",
            {{"b", block}, {"s", -(pick(50) / 3.0)}});
        break;
      case 3:
        db().Execute("UPDATE \"" + std::string(table) +
                     "\" SET \"Shares\" = \"Shares\" / 2 WHERE \"Unique ID\" IN (SELECT \"Unique "
                     "ID\" FROM \"" +
                     table + "\" ORDER BY random() LIMIT 1)");
        break;
      case 4:
        db().Execute("DELETE FROM \"" + std::string(table) +
                     "\" WHERE \"Unique ID\" IN (SELECT \"Unique ID\" FROM \"" + table +
                     "\" ORDER BY random() LIMIT 1)");
        break;
      case 5:  // a transaction moves to another block
        db().Execute(R"(UPDATE "Sell" SET "Block No" = :b WHERE "Unique ID" IN )"
                     R"((SELECT "Unique ID" FROM "Sell" ORDER BY random() LIMIT 1))",
                     {{"b", block}});
        break;
      case 6:
        if (pick(5) == 0)
          db().Execute(R"(DELETE FROM "Blocks" WHERE "Block No" = :b)", {{"b", block}});
        break;
    }
    ASSERT_EQ(Mismatches(), 0) << "after step " << step << " action " << action;
  }
  // The open-blocks index holds exactly the blocks that still have shares.
  EXPECT_EQ(Count(R"("Blocks" INDEXED BY "Blocks Open" WHERE "Sec ID" = 1 )"
                  R"(AND "Shares Left" >= 0.000005)"),
            Count(R"("Blocks" AS B WHERE (SELECT total("Shares") FROM "Block Shares" AS S )"
                  R"(WHERE S."Block No" = B."Block No") >= 0.000005)"));
  EXPECT_EQ(db().IntegrityCheck(), "ok");
}

// The open blocks come oldest first (date, then block-id text), skip blocks
// whose remainder rounds to nothing, and count a remainder such as
// 99.999999 as 100; shares as of a date count that day's rows.
TEST_F(SharesLeftTest, OpenBlocksAndSharesAsOf) {
  const auto text = [](const std::vector<BlockShares>& blocks) {
    std::string out;
    for (const BlockShares& block : blocks)
      out += block.block_id + "=" + NumberText(block.shares) + " ";
    return out;
  };
  Sell(Buy(1, "01/01/2024", 100, "0", "0", kTypeBuy, "01/01/2024-1"), "01/06/2024", 100);
  // 0.000004 left: rounds to nothing.
  Sell(Buy(1, "01/01/2024", 1, "0", "0", kTypeBuy, "01/01/2024-2"), "01/06/2024", 0.999996);
  Buy(1, "01/01/2024", 5, "0", "0", kTypeBuy, "01/01/2024-10");  // before "-2" as text
  Sell(Buy(1, "03/01/2024", 100, "0", "0", kTypeBuy, "03/01/2024-1"), "04/01/2024", 0.000001);
  EXPECT_EQ(text(OpenBlocks(db(), 1)), "01/01/2024-10=5 03/01/2024-1=100 ");
  EXPECT_EQ(text(BlockSharesAsOf(db(), 1, D("01/05/2024"))),
            "01/01/2024-1=100 01/01/2024-10=5 01/01/2024-2=1 03/01/2024-1=0 ");
  EXPECT_EQ(text(BlockSharesAsOf(db(), 1, D("01/06/2024"))),
            "01/01/2024-1=0 01/01/2024-10=5 01/01/2024-2=0 03/01/2024-1=0 ");
}

}  // namespace
}  // namespace lotwise::testing
