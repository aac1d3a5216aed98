#include "lots/sell_specific.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lots/buy_reinvest.h"
#include "lots_sell/sale_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

using Rows = std::vector<std::string>;

// The user picks the shares block by block: adds to one block merge into
// one entry, the prompt takes up to exactly the block's remaining shares,
// removing everything takes the row away, and the total goes into the sale.
class SellSpecificTest : public SaleTest {
 protected:
  void SetUp() override {
    SaleTest::SetUp();
    jan_ = Block("01/01/2024", 100);
    mar_ = Block("03/01/2024", 60.5);
    OpenSecurity(SellMethod::kSpecificId);
  }

  // Expects the number prompt with `note` and answers `shares` (OK or Cancel).
  void AnswerPrompt(const std::string& caption, const std::string& note, double shares,
                    bool ok = true) {
    OnDialog<NumSharesForm>("dlgNumShares", [=, this](NumSharesForm& form) {
      EXPECT_EQ(form.caption + "|" + form.note, caption + "|" + note);
      EXPECT_EQ(form.num_shares, form.max_shares);
      form.num_shares = shares;
      ok ? NumShares_OK(*app_, form) : NumShares_Cancel(*app_, form);
    });
  }
  void AnswerAdd(const char* most, double shares, bool ok = true) {
    AnswerPrompt("Add Shares",
                 std::string("Enter the number of shares you want to Add\n(0 - ") + most + ")",
                 shares, ok);
  }

  std::string Row(const char* id, const char* shares, int64_t block_no) {
    return std::string(id) + "\t" + shares + "\t" + std::to_string(block_no);
  }

  int64_t jan_ = 0;
  int64_t mar_ = 0;
};

// A sale may not take shares from a block acquired after its date: OK names
// the block and both dates, writes nothing and keeps the dialog open; on
// the corrected date the same selection is sold.
TEST_F(SellSpecificTest, SellSpecific_AddTwiceFromOneBlock_OneEntry) {
  OnSale([&](SellSharesForm& form) {
    Fill(form, 0, "500");
    form.date = "02/15/2024";
    NumSharesSS_Click(*app_, form);
    EXPECT_EQ(form.num_shares, 50);
    SellShares_OK(*app_, form, false);
    EXPECT_FALSE(form.closed);
    EXPECT_EQ(CountClientRows("Sell"), 0);
    form.date = "06/03/2024";
    SellShares_OK(*app_, form, false);
    EXPECT_TRUE(form.closed);
  });
  OnDialog<SellSpecificForm>("dlgSellSpecific", [&](SellSpecificForm& form) {
    EXPECT_EQ(form.security, "Intl Business && Machines");
    EXPECT_EQ(form.shares_left_rows,
              (Rows{Row("01/01/2024-1", "100", jan_), Row("03/01/2024-1", "60.5", mar_)}));
    form.left_row = 1;
    SellSpecific_Add(*app_, form);
    SellSpecific_Add(*app_, form);
    EXPECT_EQ(form.shares_sold_rows, Rows{Row("03/01/2024-1", "50", mar_)});
    EXPECT_EQ(form.shares_left_rows[1], Row("03/01/2024-1", "10.5", mar_));
    EXPECT_EQ(form.shares_left_total, 110.5);
    SellSpecific_OK(*app_, form);
  });
  AnswerAdd("60.5", 30);
  AnswerAdd("30.5", 20);
  ExpectSaid(ui_, __FILE__, "after_sale_date");
  ShowSellShares(*app_);
  EXPECT_EQ(SellRows(), "03/01/2024-1 -50 500 0");
}

// A buy dated before a sale whose blocks the user picked re-books nothing:
// the later sales are listed for review and stay as they are.
TEST_F(SellSpecificTest, BuyBeforeSale_LaterSalesListedForReview) {
  ASSERT_TRUE(AddSell(*app_, mar_, D("06/03/2024"), Money("100"), Currency(), -10, ""));
  ExpectSaid(ui_, __FILE__, "review_later");
  BuyReinvestForm form;
  form.caption = BuyReinvestForm::kBuyCaption;
  form.date = "02/01/2024";
  form.num_shares = 5;
  form.cost_of_shares = Money("50");
  BuyReinvest_OK(*app_, form, false);
  EXPECT_EQ(SellRows(), "03/01/2024-1 -10 100 0");
}

// The prompt refuses a negative number and more than the block holds; an
// emptied block refuses more adds, and Remove with nothing sold says so.
TEST_F(SellSpecificTest, SellSpecific_AllOfBlock_AddedThenRemoved) {
  OnSale([&](SellSharesForm& form) {
    ShowSellSpecific(*app_, form);
    SellShares_Cancel(*app_, form);
  });
  OnDialog<SellSpecificForm>("dlgSellSpecific", [&](SellSpecificForm& form) {
    form.left_row = 0;
    SellSpecific_Add(*app_, form);
    EXPECT_EQ(form.shares_sold_rows, Rows{Row("01/01/2024-1", "100", jan_)});
    SellSpecific_Add(*app_, form);  // nothing left in the block
    SellSpecific_Remove(*app_, form);
    EXPECT_TRUE(form.shares_sold_rows.empty());
    EXPECT_TRUE(app_->sale_lists.selected.empty);
    EXPECT_EQ(form.shares_left_rows[0], Row("01/01/2024-1", "100", jan_));
    SellSpecific_Remove(*app_, form);  // nothing selected
    SellSpecific_Cancel(*app_, form);
  });
  OnDialog<NumSharesForm>("dlgNumShares", [&](NumSharesForm& form) {
    for (double refused : {-1.0, 100.00001}) {
      form.num_shares = refused;
      NumShares_OK(*app_, form);
      EXPECT_FALSE(form.closed);
    }
    form.num_shares = 100;
    NumShares_OK(*app_, form);
    EXPECT_TRUE(form.accepted);
  });
  ExpectSaid(ui_, __FILE__, "negative_shares");
  ExpectSaid(ui_, __FILE__, "too_many");
  ExpectSaid(ui_, __FILE__, "block_empty");
  AnswerPrompt("Remove Shares", "Enter the number of shares to remove\n(0 - 100)", 100);
  ExpectSaid(ui_, __FILE__, "nothing_to_remove");
  ShowSellShares(*app_);
}

// Cancel forgets the selection and zeroes the sale's shares, so that the
// next visit starts again from the blocks; OK with nothing selected asks,
// and the sale then refuses its 0 shares.
TEST_F(SellSpecificTest, SellSpecific_CancelThenOkEmpty) {
  OnSale([&](SellSharesForm& form) {
    Fill(form, 0, "500");
    ShowSellSpecific(*app_, form);
    EXPECT_EQ(form.num_shares, 0);
    EXPECT_TRUE(app_->sale_lists.left.empty);
    ShowSellSpecific(*app_, form);
    SellShares_OK(*app_, form, false);
    SellShares_Cancel(*app_, form);
  });
  OnDialog<SellSpecificForm>("dlgSellSpecific", [&](SellSpecificForm& form) {
    form.left_row = 0;
    SellSpecific_Add(*app_, form);
    SellSpecific_Add(*app_, form);
    EXPECT_EQ(form.shares_sold_total, 5);
    SellSpecific_Cancel(*app_, form);
  });
  AnswerAdd("100", 5);
  AnswerAdd("95", 7, false);
  OnDialog<SellSpecificForm>("dlgSellSpecific", [&](SellSpecificForm& form) {
    EXPECT_EQ(form.shares_left_total, 160.5);
    SellSpecific_OK(*app_, form);
    EXPECT_FALSE(form.closed || form.accepted);
    SellSpecific_OK(*app_, form);
    EXPECT_TRUE(form.closed && form.accepted);
  });
  ExpectSaid(ui_, __FILE__, "none_selected", Answer::kNo);
  ExpectSaid(ui_, __FILE__, "none_selected", Answer::kYes);
  ExpectSaid(ui_, __FILE__, "zero_shares", Answer::kOk,
             {"To select shares click on the 'Select' button."});
  ShowSellShares(*app_);
  EXPECT_EQ(CountClientRows("Sell"), 0);
}

TEST_F(SaleTest, ShowSellSpecific_NoShares_NoDialog) {
  Block("01/01/2024", 10, -10);
  OpenSecurity(SellMethod::kAvgDouble);
  OnSale([&](SellSharesForm& form) { NumSharesSS_Click(*app_, form); });
  ExpectSaid(ui_, __FILE__, "nothing_to_sell");
  ShowSellShares(*app_);
}

}  // namespace
}  // namespace lotwise::testing
