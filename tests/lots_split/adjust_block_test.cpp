#include "lots/adjust_block.h"

#include <gtest/gtest.h>

#include <string>

#include "lots_buy/lots_fixture.h"
#include "storage/storage_fixture.h"

namespace lotwise::testing {
namespace {

const std::string kBeforePurchase =
    "You can't enter an Adjustment that is before the original purchase of this block of shares. "
    "Please correct the date, and make sure you are adding this to the correct block.";

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
  ui_.Expect(kBeforePurchase, "Incorrect Date", Icon::kExclamation, Buttons::kOk);
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
  ui_.Expect(kBeforePurchase, "Incorrect Date", Icon::kExclamation, Buttons::kOk);
  ui_.Expect(
      "The date entered as 04/31/2024 is not valid.  Please re-enter the date. If you are "
      "cancelling, click OK, and then click Cancel again.",
      "Invalid Date", Icon::kExclamation, Buttons::kOk);
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
  ui_.Expect(
      "There is already an Adjustment in this block for 04/01/2024.\nDo you still want to add "
      "this Adjustment?",
      "Adjustment with same Date exists", Icon::kQuestion, Buttons::kYesNo, Answer::kNo);
  ui_.Expect(
      "The Adjustment was not added. If an error message was displayed you should try to correc "
      "the error first. You will need to add this Adjustment again.",
      "Error!", Icon::kCritical, Buttons::kOk);
  AdjustBlockForm form;
  form.date = "04/01/2024";
  AdjustBlock_OK(*app_, form);
  EXPECT_FALSE(form.closed);
  EXPECT_EQ(CountClientRows("Adjust"), 1);
}

TEST_F(LotsTest, ShowAdjustBlock_NoBlocks_NoDialog) {
  ui_.Expect(
      "There are no Blocks to make an Adjustment to. To enter a purchase of Shares click on the "
      "Buy button.",
      "No Blocks to add to", Icon::kInformation, Buttons::kOk);
  ShowAdjustBlock(*app_);
}

}  // namespace
}  // namespace lotwise::testing
