#include "lots/modify_trans.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <sstream>
#include <string>

#include "lots_modify/modify_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

// Block 01/02/2024-1 holds one transaction of every kind but reinvestment
// (108 shares in all with block 02/01/2024-1, which holds only its
// reinvestment). Each table's first row has Unique ID 1; the reinvestment is
// Buy 2 and the dividend Split 2.
class ModifyTransTest : public LotsModifyTest {
 protected:
  void SetUp() override {
    LotsModifyTest::SetUp();
    const int64_t a = BlockNo(Buy("01/02/2024", 100, "1000"));
    Buy("02/01/2024", 2, "50", kTypeReinvest);
    ASSERT_TRUE(AddSell(*app_, a, D("03/01/2024"), Money("700"), Money("5"), -50, ""));
    ASSERT_TRUE(AddSplit(*app_, a, kTypeSplit, D("04/01/2024"), 1, 2, 50, ""));
    ASSERT_TRUE(AddSplit(*app_, a, kTypeDividend, D("05/01/2024"), 0.05, 1, 5, ""));
    ASSERT_TRUE(AddAdjust(*app_, a, D("06/01/2024"), 1, Money("10"), ""));
  }

  // Opens the listed row in the dialog, lets `user` fill it in and press
  // its buttons; what the buttons say is expected after this call.
  void ExpectModify(const char* listed, std::function<void(ModifyTransForm&)> user) {
    Open(listed);
    OnDialog<ModifyTransForm>("dlgModifyTrans", std::move(user));
  }
};

// The dialog opens in the mode of the listed kind showing the row's amount
// (a sale's sale price); OK rewrites that row through its kind's store
// operation, whose change-log lines follow, and the display and total follow
// too, a re-dated buy's renamed block included. Signs the checks leave
// alone are stored as typed.

class ModifyKindTest : public ModifyTransTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(ModifyKindTest, ModifyTrans_OK_EachKind_RowRewrittenAndLogged) {
  const GoldenCase& c = GetParam();
  std::string date, amount, block, total;
  double shares = 0;
  std::istringstream(c.Args("typed")) >> date >> shares >> amount;
  std::istringstream(c.Args("after")) >> block >> total;
  ExpectModify(c.name.c_str(), [&](ModifyTransForm& form) {
    EXPECT_EQ(form.caption + "|" + form.cost_of_shares.ToString(), c.Args("dialog"));
    EXPECT_EQ(form.security, "International Business Machines");
    form.date = date;
    form.num_shares = shares;
    form.cost_of_shares = Money(amount.c_str());
    ModifyTrans_OK(*app_, form);
    EXPECT_TRUE(form.closed && form.accepted);
  });
  ShowModifyTrans(*app_);
  EXPECT_EQ(Changes(), c.Text("changes"));
  EXPECT_EQ(app_->current.block_id, block);
  const SecurityDisplay& display = app_->window.display;
  EXPECT_EQ(display.blocks[static_cast<size_t>(display.selected_block)].block_id, block);
  EXPECT_EQ(display.total_shares, total);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(Kinds, ModifyKindTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "modify_kinds.txt")));

// Each field check refuses its bad value with its own message, keeps the
// dialog open on that field, and nothing is written. Zero shares, and a
// zero cost or sale price except on splits and dividends, are confirmed
// first, shares first; a No writes nothing and keeps the dialog open.
struct CheckCase {
  const char* listed;
  std::optional<double> shares;
  const char *amount, *fee, *date;  // nullptr keeps the row's value
  const char* refusal;              // its message; nullptr: the questions
  const char* focus;                // of the refusal, or the field of the zero-amount question
  bool zero_shares = false;
  Answer to_shares = Answer::kYes, to_amount = Answer::kYes;
};

class ModifyCheckTest : public ModifyTransTest, public ::testing::WithParamInterface<CheckCase> {};

TEST_P(ModifyCheckTest, ModifyTrans_OK_BadFieldRefusedZeroConfirmed) {
  const CheckCase& c = GetParam();
  const std::string before = Snapshot();
  const bool written = !c.refusal && c.to_shares == Answer::kYes && c.to_amount == Answer::kYes;
  ExpectModify(c.listed, [&](ModifyTransForm& form) {
    if (c.shares) form.num_shares = *c.shares;
    if (c.amount) form.cost_of_shares = Money(c.amount);
    if (c.fee) form.fee = Money(c.fee);
    if (c.date) form.date = c.date;
    ModifyTrans_OK(*app_, form);
    EXPECT_EQ(form.closed, written);
    EXPECT_EQ(form.focus, c.refusal ? c.focus : form.focus);
  });
  if (c.refusal) ExpectSaid(ui_, __FILE__, c.refusal);
  if (c.zero_shares) ExpectSaid(ui_, __FILE__, "zero_shares", c.to_shares);
  if (!c.refusal && c.focus) ExpectSaid(ui_, __FILE__, "zero_amount", c.to_amount, {c.focus});
  ShowModifyTrans(*app_);
  EXPECT_EQ(Snapshot() != before, written);
}

const auto kNo = Answer::kNo;

INSTANTIATE_TEST_SUITE_P(
    Checks, ModifyCheckTest,
    ::testing::Values(
        CheckCase{"Sell", 100, nullptr, nullptr, nullptr, "sell_positive", "DblNumShares"},
        CheckCase{"Buy", 0, nullptr, nullptr, nullptr, "buy_not_positive", "DblNumShares"},
        CheckCase{"Sell", -0.333333, nullptr, nullptr, nullptr, "decimals", "DblNumShares"},
        CheckCase{"Sell", std::nullopt, "-0.01", nullptr, nullptr, "negative_price",
                  "CurrCostOfShares"},
        CheckCase{"Buy", std::nullopt, "-5", nullptr, nullptr, "negative_cost", "CurrCostOfShares"},
        CheckCase{"Sell", std::nullopt, nullptr, "-1", nullptr, "negative_fee", "CurrFee"},
        // The date is checked first.
        CheckCase{"Sell", 100, nullptr, nullptr, "02/30/2024", "bad_date", "dtDate"},
        CheckCase{"Sell", 0, "700", nullptr, nullptr, nullptr, nullptr, true, kNo},
        CheckCase{"Sell", -50, "0", nullptr, nullptr, nullptr, "Sale Price"},
        CheckCase{"Buy", 100, "0", nullptr, nullptr, nullptr, "Cost of Shares", false, Answer::kYes,
                  kNo},
        CheckCase{"Stock Split", 0, "0", nullptr, nullptr, nullptr, nullptr, true},
        CheckCase{"Adjustment", 0, "0", nullptr, nullptr, nullptr, "Cost of Shares", true}));

// An unknown mode, or a listed row of no known kind, is reported and
// nothing changes; with nothing listed the user is told and nothing opens.
TEST_F(ModifyTransTest, ModifyAndDelete_UnknownKind_ErrorNothingChanged) {
  const std::string before = Snapshot();
  ExpectSaid(ui_, __FILE__, "bad_caption", Answer::kOk, {"ModifyTrans_OK"});
  ExpectSaid(ui_, __FILE__, "not_modified");
  ModifyTransForm form;
  form.caption = "Modify Something";
  form.date = "01/02/2024";
  form.num_shares = 1;
  form.cost_of_shares = Money("1");
  ModifyTrans_OK(*app_, form);
  EXPECT_FALSE(form.closed);

  Open("Buy");
  app_->window.display.transactions[0].transaction = "Transfer";
  ExpectSaid(ui_, __FILE__, "bad_caption", Answer::kOk, {"ShowModifyTrans"});
  ShowModifyTrans(*app_);
  ExpectSaid(ui_, __FILE__, "delete", Answer::kYes, {"Transfer", "01/02/2024", "01/02/2024-1"});
  ExpectSaid(ui_, __FILE__, "bad_type");
  DeleteTransaction(*app_);
  EXPECT_EQ(Snapshot(), before);
}

TEST_F(LotsModifyTest, ModifyAndDelete_NoTransactions_NothingOpens) {
  Open();
  ExpectSaid(ui_, __FILE__, "nothing_to_modify");
  ShowModifyTrans(*app_);
  ExpectSaid(ui_, __FILE__, "nothing_to_delete");
  DeleteTransaction(*app_);
}

// A delete removes exactly the confirmed row from its kind's table and lists
// the block again with all kinds; the block stays while it holds any row. A
// buy deleted under a later sale leaves that sale short, which is said.
struct DeleteCase {
  const char *listed, *named, *date, *table;
  int64_t unique_id;
  bool shortfall = false;
};

class DeleteKindTest : public ModifyTransTest, public ::testing::WithParamInterface<DeleteCase> {};

TEST_P(DeleteKindTest, DeleteTransaction_Yes_OnlyThatRowGone) {
  const DeleteCase& c = GetParam();
  Open(c.listed);
  app_->window.display.trans_filter = 6;
  ExpectSaid(ui_, __FILE__, "delete", Answer::kYes, {c.named, c.date, "01/02/2024-1"});
  if (c.shortfall) ExpectSaid(ui_, __FILE__, "not_rebooked");
  DeleteTransaction(*app_);
  EXPECT_EQ(CountOnDisk(c.table, "\"Unique ID\" = " + std::to_string(c.unique_id)), 0);
  EXPECT_EQ(CountOnDisk("Buy") + CountOnDisk("Sell") + CountOnDisk("Split") + CountOnDisk("Adjust"),
            5);
  EXPECT_EQ(CountOnDisk("Blocks"), 2);
  EXPECT_EQ(app_->window.display.trans_filter_caption, "All");
  EXPECT_EQ(app_->window.display.transactions.size(), 4u);
}

INSTANTIATE_TEST_SUITE_P(Kinds, DeleteKindTest,
                         ::testing::Values(DeleteCase{"Sell", "Sell", "03/01/2024", "Sell", 1},
                                           DeleteCase{"Stock Div.", "Stock Div. (0.05 per 1)",
                                                      "05/01/2024", "Split", 2},
                                           DeleteCase{"Buy", "Buy", "01/02/2024", "Buy", 1, true}));

TEST_F(ModifyTransTest, DeleteTransaction_OnlyRowOfBlock_BlockRemoved) {
  Open("Reinvestment");
  const std::vector<std::string> named = {"Reinvestment", "02/01/2024", "02/01/2024-1"};
  ExpectSaid(ui_, __FILE__, "delete", Answer::kNo, named);
  DeleteTransaction(*app_);
  EXPECT_EQ(CountOnDisk("Buy"), 2);
  ExpectSaid(ui_, __FILE__, "delete", Answer::kYes, named);
  DeleteTransaction(*app_);
  EXPECT_EQ(CountOnDisk("Blocks") * 10 + CountOnDisk("Buy"), 11);
  EXPECT_EQ(app_->window.display.blocks.size(), 1u);
  EXPECT_EQ(app_->current.block_id, "01/02/2024-1");
  EXPECT_EQ(app_->window.display.total_shares, "106");
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
