#include <gtest/gtest.h>

#include "data/block_shares.h"
#include "data/database.h"
#include "support/app_fixture.h"

namespace lotwise::testing {
namespace {

// The open blocks come oldest first (date, then block-id text), skip blocks
// whose remainder rounds to nothing, and count a remainder such as
// 99.999999 as 100; shares as of a date count that day's rows.
class BlockSharesTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshTaxpayer();
    Exec(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line") VALUES ('P', ' '))");
    Exec(R"(INSERT INTO "Security" ("Sec Symbol", "Port Name") VALUES ('IBM', 'P'))");
  }
  void Exec(const std::string& sql, const Params& params = {}) { app_->client->Execute(sql, params); }
  int64_t Block(const char* id, Date date, double bought) {
    Exec(R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (1, :id, :d))",
         {{"id", id}, {"d", date}});
    int64_t no = app_->client->LastInsertId();
    Exec(R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Shares", "Prec Sort") )"
         R"(VALUES (:b, :d, 10, :s, 10))",
         {{"b", no}, {"d", date}, {"s", bought}});
    return no;
  }
  void Sell(int64_t block, Date date, double shares) {
    Exec(R"(INSERT INTO "Sell" ("Block No", "Date", "Shares", "Prec Sort") VALUES (:b, :d, :s, 40))",
         {{"b", block}, {"d", date}, {"s", -shares}});
  }
};

TEST_F(BlockSharesTest, OpenBlocks_OrderRoundingAndSkips) {
  const Date jan = Date::FromYmd(2024, 1, 1);
  int64_t sold_out = Block("01/01/2024-1", jan, 100);
  Sell(sold_out, jan.AddDays(5), 100);
  int64_t dust = Block("01/01/2024-2", jan, 1);
  Sell(dust, jan.AddDays(5), 0.999996);  // 0.000004 left: rounds to nothing
  Block("01/01/2024-10", jan, 5);        // sorts before "-2" as text
  int64_t nearly = Block("03/01/2024-1", Date::FromYmd(2024, 3, 1), 100);
  Sell(nearly, Date::FromYmd(2024, 4, 1), 0.000001);  // 99.999999 counts as 100
  std::vector<BlockShares> open = OpenBlocks(*app_->client, 1);
  ASSERT_EQ(open.size(), 2u);
  EXPECT_EQ(open[0].block_id, "01/01/2024-10");
  EXPECT_DOUBLE_EQ(open[0].shares, 5);
  EXPECT_EQ(open[1].block_id, "03/01/2024-1");
  EXPECT_DOUBLE_EQ(open[1].shares, 100);
}

TEST_F(BlockSharesTest, BlockSharesAsOf_CountsTheDayItself) {
  const Date jan = Date::FromYmd(2024, 1, 1);
  int64_t a = Block("01/01/2024-1", jan, 100);
  Sell(a, Date::FromYmd(2024, 2, 1), 40);
  Block("02/01/2024-1", Date::FromYmd(2024, 2, 1), 10);
  std::vector<BlockShares> before = BlockSharesAsOf(*app_->client, 1, Date::FromYmd(2024, 1, 31));
  ASSERT_EQ(before.size(), 2u);
  EXPECT_DOUBLE_EQ(before[0].shares, 100);
  EXPECT_DOUBLE_EQ(before[1].shares, 0);
  std::vector<BlockShares> on = BlockSharesAsOf(*app_->client, 1, Date::FromYmd(2024, 2, 1));
  EXPECT_DOUBLE_EQ(on[0].shares, 60);
  EXPECT_DOUBLE_EQ(on[1].shares, 10);
}

}  // namespace
}  // namespace lotwise::testing
