#include "lots/security_display.h"

#include <gtest/gtest.h>

#include <ostream>
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
#include "support/values.h"

namespace lotwise::testing {
namespace {

using Texts = std::vector<std::string>;

const std::string kDeletedSymbolQuestion =
    "The Security (Symbol:IBM) has been deleted from the Security Symbols File. \n"
    "This means that the Symbol and Name will be missing, however any Transactions in the "
    "Security should be intact.\n\nWould you like to Add the Security to the Security Symbols "
    "File again?";

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
// and shown in the default number form.
struct TotalCase {
  const char* label;
  std::vector<double> buys;
  double sold = 0;    // one sale from the first block
  double split = 0;   // shares a split added to the first block
  double adjust = 0;  // shares an adjustment added to the first block
  const char* expected;
};

void PrintTo(const TotalCase& c, std::ostream* os) { *os << c.label; }

class TotalSharesTest : public SecurityDisplayTest,
                        public ::testing::WithParamInterface<TotalCase> {};

TEST_P(TotalSharesTest, ShowSecDisplay_TotalShares) {
  const TotalCase& c = GetParam();
  int64_t first = 0;
  int day = 1;
  for (double shares : c.buys) {
    const std::string date = "01/0" + std::to_string(day++) + "/2024";
    const int64_t block = Buy(ibm_, date.c_str(), shares);
    if (first == 0) first = block;
  }
  if (c.sold != 0) {
    ASSERT_TRUE(AddSell(*app_, first, D("03/01/2024"), {}, {}, -c.sold, ""));
  }
  if (c.split != 0) {
    ASSERT_TRUE(AddSplit(*app_, first, kTypeSplit, D("04/01/2024"), 1, 2, c.split, ""));
  }
  if (c.adjust != 0) {
    ASSERT_TRUE(AddAdjust(*app_, first, D("05/01/2024"), c.adjust, {}, ""));
  }

  ShowSecDisplay(*app_, "IBM");
  EXPECT_EQ(app_->window.display.total_shares, c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Totals, TotalSharesTest,
    ::testing::Values(TotalCase{"NoTransactions", {}, 0, 0, 0, "0"},
                      TotalCase{"HalfUpToWhole", {99.999995}, 0, 0, 0, "100"},
                      TotalCase{"BelowHalfKeepsFiveDecimals", {99.9999949}, 0, 0, 0, "99.99999"},
                      TotalCase{"EveryTableCounts", {100, 5}, 30.25, 70, -0.5, "144.25"},
                      TotalCase{"SoldOut", {10}, 10, 0, 0, "0"}),
    [](const ::testing::TestParamInfo<TotalCase>& info) { return std::string(info.param.label); });

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
// selects the oldest block with its transactions.
TEST_F(SecurityDisplayTest, ShowSecDisplay_FillsPanel) {
  SetSellMethod("IBM", 1);
  const int64_t block = Buy(ibm_, "01/15/2024", 100);
  Buy(ibm_, "02/15/2024", 10);

  ShowSecDisplay(*app_, "IBM");
  const SecurityDisplay& d = app_->window.display;
  EXPECT_TRUE(d.visible);
  EXPECT_EQ(d.sec_name, "Intl Business Machines");
  EXPECT_EQ(d.sec_cusip, "459200101");
  EXPECT_EQ(d.second_line, " ");
  EXPECT_EQ(d.sell_method, SellMethod::kFifo);
  EXPECT_EQ(DisplayedBlockIds(), (Texts{"01/15/2024-1", "02/15/2024-1"}));
  EXPECT_EQ(d.selected_block, 0);
  EXPECT_EQ(d.trans_filter, 0);
  EXPECT_EQ(d.trans_filter_caption, "All");
  EXPECT_EQ(DisplayedTransactions(), (Texts{"Buy"}));
  EXPECT_EQ(d.transactions_caption, "Transaction List for Block - " + std::to_string(block));
  EXPECT_EQ(d.total_shares, "110");
  EXPECT_EQ(app_->current.sec_id, ibm_);
  EXPECT_EQ(app_->current.sec_symbol, "IBM");
  EXPECT_EQ(app_->current.block_no, block);
  EXPECT_EQ(app_->current.block_id, "01/15/2024-1");
  EXPECT_EQ(ui_.help_texts(), (Texts{"Loading Security", "Calculating Total Shares"}));
}

// A security whose sell method was never stored gets "NOT SELECTED" (255);
// a null second line shows as a single blank; no blocks means no block.
TEST_F(SecurityDisplayTest, ShowSecDisplay_MissingMethodAndLine) {
  AddSecurity("MSFT", "Microsoft", "NO CUSIP", nullptr);

  ShowSecDisplay(*app_, "MSFT");
  const SecurityDisplay& d = app_->window.display;
  EXPECT_EQ(d.sell_method, SellMethod::kNotSelected);
  EXPECT_EQ(d.second_line, " ");
  Query method = app_->client->Select(
      R"(SELECT "Sell Method" FROM "Sell Method" WHERE "Sec Symbol" = 'MSFT')");
  ASSERT_TRUE(method.Next());
  EXPECT_EQ(method.Int("Sell Method"), 255);
  EXPECT_TRUE(d.blocks.empty());
  EXPECT_EQ(d.selected_block, -1);
  EXPECT_EQ(d.transactions_caption, "Transaction List");
  EXPECT_EQ(app_->current.block_no, 0);
  EXPECT_EQ(d.total_shares, "0");
}

// A symbol deleted from the Security Symbols File: No opens the security
// as the Taxpayer File holds it; Yes re-enters the symbol and shows the new
// central name.
TEST_F(SecurityDisplayTest, ShowSecDisplay_DeletedSymbol) {
  const int64_t block = Buy(ibm_, "01/15/2024", 100);
  ASSERT_TRUE(AddSell(*app_, block, D("02/01/2024"), {}, {}, -40, ""));
  ASSERT_TRUE(DelSecFromCDB(*app_, "IBM"));

  ui_.Expect(kDeletedSymbolQuestion, "Please Note!", Icon::kQuestion, Buttons::kYesNo, Answer::kNo);
  ShowSecDisplay(*app_, "IBM");
  const SecurityDisplay& d = app_->window.display;
  EXPECT_TRUE(d.visible);
  EXPECT_EQ(d.sec_name, kSymbolNotInCentral);
  EXPECT_EQ(DisplayedBlockIds(), (Texts{"01/15/2024-1"}));
  EXPECT_EQ(DisplayedTransactions(), (Texts{"Buy", "Sell"}));
  EXPECT_EQ(d.total_shares, "60");

  ui_.Expect(kDeletedSymbolQuestion, "Please Note!", Icon::kQuestion, Buttons::kYesNo,
             Answer::kYes);
  ui_.ExpectDialog("dlgAddModSec", [&](DialogForm& f) {
    auto& form = static_cast<AddModSecForm&>(f);
    EXPECT_EQ(form.caption, "Re-enter a Security (SSF)");
    form.sec_name = "IBM Corp";
    form.cusip = "459200101";
    AddModSec_Ok(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowSecDisplay(*app_, "IBM");
  EXPECT_EQ(d.sec_name, "IBM Corp");
  EXPECT_EQ(d.sec_cusip, "459200101");
  EXPECT_EQ(DisplayedTransactions(), (Texts{"Buy", "Sell"}));
}

// Blocks come oldest first: by date, then by block id as text, so "-10"
// sorts before "-2".
TEST_F(SecurityDisplayTest, ShowSecDisplay_BlockOrder) {
  for (auto [id, date] :
       {std::pair{"03/01/2024-2", "2024-03-01"}, std::pair{"01/05/2024-10", "2024-01-05"},
        std::pair{"01/05/2024-2", "2024-01-05"}, std::pair{"01/05/2024-1", "2024-01-05"}}) {
    app_->client->Execute(
        R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, :id, :d))",
        {{"s", ibm_}, {"id", id}, {"d", std::string(date)}});
  }
  ShowSecDisplay(*app_, "IBM");
  EXPECT_EQ(DisplayedBlockIds(),
            (Texts{"01/05/2024-1", "01/05/2024-10", "01/05/2024-2", "03/01/2024-2"}));
}

// Each filter lists its kind of the selected block only, in date order and,
// on one date, in the same-date order (adjustment before sale).
struct FilterCase {
  const char* label;
  int16_t filter;
  int block;  // 0: the bought block, 1: the reinvested one
  Texts expected;
};

void PrintTo(const FilterCase& c, std::ostream* os) { *os << c.label; }

class FilterTest : public SecurityDisplayTest, public ::testing::WithParamInterface<FilterCase> {
 protected:
  void SetUp() override {
    SecurityDisplayTest::SetUp();
    const int64_t block = Buy(ibm_, "01/15/2024", 100);
    Buy(ibm_, "02/01/2024", 5, kTypeReinvest);
    ASSERT_TRUE(AddSell(*app_, block, D("03/01/2024"), *Currency::Parse("3000"),
                        *Currency::Parse("9.95"), -30, "part"));
    ASSERT_TRUE(AddAdjust(*app_, block, D("03/01/2024"), 0.5, {}, ""));
    ASSERT_TRUE(AddSplit(*app_, block, kTypeSplit, D("06/01/2024"), 1, 2, 70.5, ""));
    ASSERT_TRUE(AddSplit(*app_, block, kTypeDividend, D("07/01/2024"), 0.05, 1, 7.05, ""));
  }
};

TEST_P(FilterTest, SetDisplayTrans_ListsKind) {
  const FilterCase& c = GetParam();
  ShowSecDisplay(*app_, "IBM");
  SelectBlock(*app_, c.block);
  app_->window.display.trans_filter = c.filter;
  SetDisplayTrans(*app_);
  EXPECT_EQ(DisplayedTransactions(), c.expected);
  EXPECT_EQ(app_->window.display.trans_filter_caption, kTransFilterCaptions[c.filter]);
  EXPECT_EQ(app_->window.display.total_shares, "153.05");
}

INSTANTIATE_TEST_SUITE_P(
    Filters, FilterTest,
    ::testing::Values(FilterCase{"All",
                                 0,
                                 0,
                                 {"Buy", "Adjustment", "Sell", "Stock Split (1 to 2)",
                                  "Stock Div. (0.05 per 1)"}},
                      FilterCase{"Buy", 1, 0, {"Buy"}}, FilterCase{"ReinvestmentNone", 2, 0, {}},
                      FilterCase{"Reinvestment", 2, 1, {"Reinvestment"}},
                      FilterCase{"Sell", 3, 0, {"Sell"}},
                      FilterCase{"StockSplit", 4, 0, {"Stock Split (1 to 2)"}},
                      FilterCase{"Dividend", 5, 0, {"Stock Div. (0.05 per 1)"}},
                      FilterCase{"Adjustment", 6, 0, {"Adjustment"}}),
    [](const ::testing::TestParamInfo<FilterCase>& info) { return std::string(info.param.label); });

// A sale row carries its own amounts and constants for what a sale lacks.
TEST_F(FilterTest, UpdateTransInBlock_RowValues) {
  ShowSecDisplay(*app_, "IBM");
  UpdateTransInBlock(*app_, 3);
  ASSERT_EQ(app_->window.display.transactions.size(), 1u);
  const TransactionRow& sale = app_->window.display.transactions[0];
  EXPECT_EQ(sale.date, D("03/01/2024"));
  EXPECT_EQ(sale.cost, Currency());
  EXPECT_EQ(sale.sale_price.ToString(), "3000");
  EXPECT_EQ(sale.fee.ToString(), "9.95");
  EXPECT_EQ(sale.shares, -30);
  EXPECT_EQ(sale.notes, "part");
  EXPECT_EQ(sale.prec_sort, kPrecSell);
}

// Choosing a block makes it the current block with its transactions;
// reloading the blocks keeps the row the user was on, even when a new block
// sorts in front of it, or selects a named block.
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

  DisplayBlock(*app_, "01/01/2024-1");
  EXPECT_EQ(app_->window.display.selected_block, 0);
  EXPECT_EQ(app_->current.block_id, "01/01/2024-1");
}

// Deleting the selected block redisplays the remaining blocks and totals;
// re-dating a block shows its new id at once.
TEST_F(SecurityDisplayTest, DeleteAndUpdateBlock_Redisplay) {
  Buy(ibm_, "01/15/2024", 100);
  const int64_t second = Buy(ibm_, "02/15/2024", 10);
  ShowSecDisplay(*app_, "IBM");
  SelectBlock(*app_, 1);

  ASSERT_TRUE(UpdateBlock(*app_, ibm_, second, D("03/20/2024")));
  EXPECT_EQ(app_->current.block_id, "03/20/2024-1");
  EXPECT_EQ(app_->window.display.blocks[1].block_id, "03/20/2024-1");

  ui_.Expect(
      "You are about to delete Block: 03/20/2024-1. This will also delete all transactions in "
      "this block. Are you sure you want to do this?",
      "Delete Block?", Answer::kYes);
  DeleteBlock(*app_);
  EXPECT_EQ(DisplayedBlockIds(), (Texts{"01/15/2024-1"}));
  EXPECT_EQ(app_->window.display.selected_block, 0);
  EXPECT_EQ(app_->current.block_id, "01/15/2024-1");
  EXPECT_EQ(app_->window.display.total_shares, "100");
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
