#include "lots/adjust_block.h"

#include <gtest/gtest.h>

#include <string>

#include "lots_buy/lots_fixture.h"
#include "storage/storage_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

class AdjustBlockTest : public LotsTest {
 protected:
  void SetUp() override {
    LotsTest::SetUp();
    BuyShares("01/02/2024", 10, "100");
    block_ = BuyShares("03/01/2024", 100, "1000");
    LoadBlocks(block_);
  }

  std::string block_;
};

// An adjustment may not predate the block's purchase; the purchase date
// itself is accepted, signed amounts and notes as typed.
TEST_F(AdjustBlockTest, Ok_DateAgainstPurchase) {
  const std::string notes = "per broker's \"1099-B\" – corrigé";
  OnDialog<AdjustBlockForm>("dlgAdjustBlock", [&](AdjustBlockForm& form) {
    EXPECT_EQ(form.block, block_);
    form.num_shares = -2.5;
    form.cost_basis = Money("-12.3456");
    form.notes = notes;
    for (const char* date : {"02/29/2024", "03/01/2024"}) {
      form.date = date;
      AdjustBlock_OK(*app_, form);
    }
    EXPECT_TRUE(form.closed);
  });
  ExpectSaid(ui_, __FILE__, "before_purchase");
  ShowAdjustBlock(*app_);
  EXPECT_EQ(
      Rows(app_->client->Select(R"(SELECT * FROM "Adjust")")),
      Lines{"1|" + std::to_string(BlockNo(block_)) + "|2024-03-01|-2.5|-123456|" + notes + "|30"});
  EXPECT_EQ(app_->window.display.transactions.size(), 2u);
  EXPECT_EQ(app_->window.display.total_shares, "107.5");
}

// The purchase is found even when the block's list is filtered to a type
// that hides it; a text that is no date is refused before anything else.
TEST_F(AdjustBlockTest, Ok_FilteredListOrNoDate_Refused) {
  app_->window.display.trans_filter = 3;
  UpdateTransInBlock(*app_, 3);
  ASSERT_TRUE(app_->window.display.transactions.empty());
  ExpectSaid(ui_, __FILE__, "before_purchase");
  ExpectSaid(ui_, __FILE__, "adjust_bad_date");
  AdjustBlockForm form;
  form.date = "01/15/2024";
  AdjustBlock_OK(*app_, form);
  form.date = "04/31/2024";
  AdjustBlock_OK(*app_, form);
  EXPECT_FALSE(form.closed);
  EXPECT_EQ(CountClientRows("Adjust"), 0);
}

// A declined same-date question of the store keeps the dialog open with
// the failure message.
TEST_F(AdjustBlockTest, Ok_SameDateDeclined_NotAdded) {
  ASSERT_TRUE(AddAdjust(*app_, BlockNo(block_), D("04/01/2024"), 1, Currency(), ""));
  ExpectSaid(ui_, __FILE__, "adjust_same_date", Answer::kNo);
  ExpectSaid(ui_, __FILE__, "adjust_not_added");
  AdjustBlockForm form;
  form.date = "04/01/2024";
  AdjustBlock_OK(*app_, form);
  EXPECT_FALSE(form.closed);
  EXPECT_EQ(CountClientRows("Adjust"), 1);
}

TEST_F(LotsTest, ShowAdjustBlock_NoBlocks_NoDialog) {
  ExpectSaid(ui_, __FILE__, "no_blocks_adjust");
  ShowAdjustBlock(*app_);
}

}  // namespace
}  // namespace lotwise::testing
