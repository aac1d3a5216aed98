#include "lots/security_display.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/add_mod_sec.h"
#include "app/security_commands.h"
#include "app_state/window_fixture.h"
#include "data/application.h"
#include "data/central_file.h"
#include "data/database.h"
#include "data/schema.h"
#include "data/transaction_store.h"
#include "lots/block_edit.h"
#include "lots/security_list.h"
#include "support/golden.h"
#include "support/values.h"

namespace lotwise::testing {
namespace {

using Texts = std::vector<std::string>;

// The portfolio "Growth" open (PORTOPEN) with the security IBM in it.
class SecurityDisplayTest : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    ibm_ = AddSecurity("IBM", "Intl Business Machines", "459200101");
    State(*app_, kPortOpen);
  }

  int64_t ibm_ = 0;
};

// The total is the sum over every transaction table, kept to five decimals
// (half up) and shown in the default number form.
struct TotalCase {
  double bought, sold, split, adjust;  // one block and its rows
  const char* expected;
};

class TotalSharesTest : public SecurityDisplayTest,
                        public ::testing::WithParamInterface<TotalCase> {};

TEST_P(TotalSharesTest, ShowSecDisplay_TotalShares) {
  const TotalCase& c = GetParam();
  const int64_t block = Buy(ibm_, "01/01/2024", c.bought);
  Buy(ibm_, "01/02/2024", 5);
  ASSERT_TRUE(AddSell(*app_, block, D("03/01/2024"), {}, {}, -c.sold, ""));
  ASSERT_TRUE(AddSplit(*app_, block, kTypeSplit, D("04/01/2024"), 1, 2, c.split, ""));
  ASSERT_TRUE(AddAdjust(*app_, block, D("05/01/2024"), c.adjust, {}, ""));
  ShowSecDisplay(*app_, "IBM");
  EXPECT_EQ(app_->window.display.total_shares, c.expected);
}

INSTANTIATE_TEST_SUITE_P(Totals, TotalSharesTest,
                         ::testing::Values(TotalCase{94.999995, 0, 0, 0, "100"},
                                           TotalCase{94.9999949, 0, 0, 0, "99.99999"},
                                           TotalCase{100, 30.25, 70, -0.5, "144.25"}));

// With recalculation off the panel says "Recalculate" without reading the
// file (the saved query is gone, so any read would fail loudly); a click on
// the panel computes the total all the same.
TEST_F(SecurityDisplayTest, UpdateSharesInSec_RecalculationOff) {
  Buy(ibm_, "01/15/2024", 12.5);
  app_->window.options.recalc_shares = false;
  app_->client->DeleteSavedQuery("Total Shares Per Table");
  ShowSecDisplay(*app_, "IBM");
  EXPECT_EQ(app_->window.display.total_shares, "Recalculate");
  EXPECT_EQ(ui_.help_texts(), (Texts{"Loading Security"}));
  EXPECT_TRUE(app_->window.display.visible);
  app_->client->SetSavedQuery("Total Shares Per Table", saved_sql::kTotalSharesPerTable);
  RecalculateShares(*app_);
  EXPECT_EQ(app_->window.display.total_shares, "12.5");
  EXPECT_EQ(ui_.help_texts().back(), "Calculating Total Shares");
}

// Opening a security fills every field of the panel from both files and
// selects the oldest block with its transactions: by date, then by block
// id as text, so "-10" sorts before "-2".
TEST_F(SecurityDisplayTest, ShowSecDisplay_FillsPanel) {
  SetSellMethod("IBM", 1);
  for (const char* id : {"03/01/2024-2", "01/05/2024-10", "01/05/2024-2", "01/05/2024-1"}) {
    Scenario::Buy(ibm_, std::string(id).substr(0, 10).c_str(), 10, "0", "0", kTypeBuy, id);
  }
  ShowSecDisplay(*app_, "IBM");
  const SecurityDisplay& d = app_->window.display;
  EXPECT_TRUE(d.visible);
  EXPECT_EQ(d.sec_name + "|" + d.sec_cusip + "|" + d.second_line,
            "Intl Business Machines|459200101| ");
  EXPECT_EQ(DisplayedBlockIds(),
            (Texts{"01/05/2024-1", "01/05/2024-10", "01/05/2024-2", "03/01/2024-2"}));
  EXPECT_EQ(DisplayedTransactions(), (Texts{"Buy"}));
  const std::string first = std::to_string(BlockNo("01/05/2024-1"));
  EXPECT_EQ(std::to_string(CodeOf(d.sell_method)) + "|" + std::to_string(d.selected_block) + "|" +
                std::to_string(d.trans_filter) + "|" + d.trans_filter_caption + "|" +
                d.transactions_caption + "|" + d.total_shares,
            "1|0|0|All|Transaction List for Block - " + first + "|40");
  EXPECT_EQ(std::to_string(app_->current.sec_id) + "|" + app_->current.sec_symbol + "|" +
                std::to_string(app_->current.block_no) + "|" + app_->current.block_id,
            std::to_string(ibm_) + "|IBM|" + first + "|01/05/2024-1");
  EXPECT_EQ(ui_.help_texts(), (Texts{"Loading Security", "Calculating Total Shares"}));
}

// A security whose sell method was never stored gets "NOT SELECTED" (255),
// stored; a null second line shows as a single blank; no blocks means no
// block.
TEST_F(SecurityDisplayTest, ShowSecDisplay_MissingMethodAndLine) {
  AddSecurity("MSFT", "Microsoft", "NO CUSIP", nullptr);
  ShowSecDisplay(*app_, "MSFT");
  const SecurityDisplay& d = app_->window.display;
  EXPECT_EQ(std::to_string(CodeOf(d.sell_method)) + "|" + d.second_line, "255| ");
  Query method = app_->client->Select(
      R"(SELECT "Sell Method" FROM "Sell Method" WHERE "Sec Symbol" = 'MSFT')");
  ASSERT_TRUE(method.Next());
  EXPECT_EQ(method.Int("Sell Method"), 255);
  EXPECT_TRUE(d.blocks.empty());
  EXPECT_EQ(std::to_string(d.selected_block) + "|" + d.transactions_caption + "|" + d.total_shares +
                "|" + std::to_string(app_->current.block_no),
            "-1|Transaction List|0|0");
}

// Each filter lists its kind of the selected block only, in date order and,
// on one date, in the same-date order (adjustment before sale); a sale row
// carries its own amounts and constants for what a sale lacks.
TEST_F(SecurityDisplayTest, SetDisplayTrans_ListsKind) {
  const int64_t block = Buy(ibm_, "01/15/2024", 100);
  Buy(ibm_, "02/01/2024", 5, kTypeReinvest);
  ASSERT_TRUE(AddSell(*app_, block, D("03/01/2024"), Money("3000"), Money("9.95"), -30, "part"));
  ASSERT_TRUE(AddAdjust(*app_, block, D("03/01/2024"), 0.5, {}, ""));
  ASSERT_TRUE(AddSplit(*app_, block, kTypeSplit, D("06/01/2024"), 1, 2, 70.5, ""));
  ASSERT_TRUE(AddSplit(*app_, block, kTypeDividend, D("07/01/2024"), 0.05, 1, 7.05, ""));
  ShowSecDisplay(*app_, "IBM");
  const struct {
    int16_t filter;
    int block;  // 0: the bought block, 1: the reinvested one
    Texts listed;
  } cases[] = {
      {0, 0, {"Buy", "Adjustment", "Sell", "Stock Split (1 to 2)", "Stock Div. (0.05 per 1)"}},
      {1, 0, {"Buy"}},
      {2, 0, {}},
      {2, 1, {"Reinvestment"}},
      {3, 0, {"Sell"}},
      {4, 0, {"Stock Split (1 to 2)"}},
      {5, 0, {"Stock Div. (0.05 per 1)"}},
      {6, 0, {"Adjustment"}}};
  for (const auto& c : cases) {
    SelectBlock(*app_, c.block);
    app_->window.display.trans_filter = c.filter;
    SetDisplayTrans(*app_);
    EXPECT_EQ(DisplayedTransactions(), c.listed) << c.filter;
  }
  EXPECT_EQ(app_->window.display.total_shares, "153.05");
  SelectBlock(*app_, 0);
  UpdateTransInBlock(*app_, 3);
  ASSERT_EQ(app_->window.display.transactions.size(), 1u);
  const TransactionRow& sale = app_->window.display.transactions[0];
  EXPECT_EQ(sale.date, D("03/01/2024"));
  EXPECT_EQ(sale.cost, Currency());
  EXPECT_EQ(sale.sale_price.ToString() + "|" + sale.fee.ToString() + "|" + sale.notes,
            "3000|9.95|part");
  EXPECT_EQ(sale.shares, -30);
  EXPECT_EQ(sale.prec_sort, kPrecSell);
}

// Choosing a block makes it the current block with its transactions;
// reloading the blocks keeps the row the user was on, even when a new block
// sorts in front of it, or selects a named block; a re-dated block shows its
// new id at once, and a deleted one leaves the rest displayed.
TEST_F(SecurityDisplayTest, SelectAndDisplayBlock_FollowRow) {
  Buy(ibm_, "01/15/2024", 100);
  const int64_t second = Buy(ibm_, "02/15/2024", 10);
  ShowSecDisplay(*app_, "IBM");
  SelectBlock(*app_, 1);
  EXPECT_EQ(app_->current.block_no, second);
  EXPECT_EQ(app_->window.display.transactions_caption,
            "Transaction List for Block - " + std::to_string(second));
  EXPECT_EQ(ui_.help_texts().back(), "Loading Transactions");
  SelectBlock(*app_, 2);
  EXPECT_EQ(app_->window.display.selected_block, 1);

  Buy(ibm_, "01/01/2024", 1);
  DisplayBlock(*app_);
  EXPECT_EQ(DisplayedBlockIds(), (Texts{"01/01/2024-1", "01/15/2024-1", "02/15/2024-1"}));
  EXPECT_EQ(app_->window.display.selected_block, 2);
  EXPECT_EQ(app_->current.block_no, second);
  EXPECT_EQ(ui_.help_texts().back(), "Please Wait");

  ASSERT_TRUE(UpdateBlock(*app_, ibm_, second, D("03/20/2024")));
  EXPECT_EQ(app_->current.block_id, "03/20/2024-1");
  EXPECT_EQ(app_->window.display.blocks[2].block_id, "03/20/2024-1");
  ExpectSaid(ui_, __FILE__, "delete_block", Answer::kYes);
  DeleteBlock(*app_);
  EXPECT_EQ(DisplayedBlockIds(), (Texts{"01/01/2024-1", "01/15/2024-1"}));
  EXPECT_EQ(app_->window.display.selected_block, 1);
  EXPECT_EQ(app_->current.block_id, "01/15/2024-1");
  EXPECT_EQ(app_->window.display.total_shares, "101");

  DisplayBlock(*app_, "01/01/2024-1");
  EXPECT_EQ(app_->window.display.selected_block, 0);
  EXPECT_EQ(app_->current.block_id, "01/01/2024-1");
}

}  // namespace
}  // namespace lotwise::testing
