#include "data/block_shares.h"

#include <gtest/gtest.h>

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
    Portfolio("P");
    sec_id_ = Security("IBM", "P");
  }
  int64_t Block(const char* id, Date date, double bought) {
    return Buy(sec_id_, date, bought, "0", "0", kTypeBuy, id);
  }
  int64_t sec_id_ = 0;
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
