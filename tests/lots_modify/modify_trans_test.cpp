#include "lots/modify_trans.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "lots_modify/modify_fixture.h"

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

  // Expects the dialog and lets `user` fill it in and press its buttons;
  // what the buttons say is expected after this call.
  void ExpectModify(std::function<void(ModifyTransForm&)> user) {
    ui_.ExpectDialog("dlgModifyTrans",
                     [user](DialogForm& f) { user(static_cast<ModifyTransForm&>(f)); });
  }

  // The change log's lines, oldest first, each ended by a newline.
  std::string Changes() {
    std::string lines;
    Query q = app_->client->Select(R"(SELECT "Description" FROM "Change" ORDER BY rowid)");
    while (q.Next()) lines += q.Text("Description") + "\n";
    return lines;
  }
};

// The dialog opens in the mode of the listed kind showing the row's amount
// (a sale's sale price); OK rewrites that row through its kind's store
// operation, whose change-log lines follow, and the display and total follow
// too, a re-dated buy's renamed block included. Signs the checks leave
// alone are stored as typed.
struct KindCase {
  const char* name;
  const char* listed;
  const char* caption;
  const char* shown_amount;
  const char* date;
  double shares;
  const char* amount;
  const char* changes;  // change-log lines, one per line
  const char* block_after;
  const char* total;
};

class ModifyKindTest : public ModifyTransTest, public ::testing::WithParamInterface<KindCase> {};

TEST_P(ModifyKindTest, ModifyTrans_OK_EachKind_RowRewrittenAndLogged) {
  const KindCase& c = GetParam();
  Open(c.listed);
  ExpectModify([&](ModifyTransForm& form) {
    EXPECT_EQ(form.caption, c.caption);
    EXPECT_EQ(form.cost_of_shares, Money(c.shown_amount));
    EXPECT_EQ(form.security, "International Business Machines");
    form.date = c.date;
    form.num_shares = c.shares;
    form.cost_of_shares = Money(c.amount);
    ModifyTrans_OK(*app_, form);
    EXPECT_TRUE(form.closed && form.accepted);
  });
  ShowModifyTrans(*app_);
  EXPECT_EQ(Changes(), std::string(c.changes) + "\n");
  EXPECT_EQ(app_->current.block_id, c.block_after);
  const SecurityDisplay& display = app_->window.display;
  EXPECT_EQ(display.blocks[static_cast<size_t>(display.selected_block)].block_id, c.block_after);
  EXPECT_EQ(display.total_shares, c.total);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ModifyKindTest,
    ::testing::Values(
        KindCase{"BuyRedated", "Buy", "Modify Buy", "1000", "01/05/2024", 100, "1000",
                 "Changed Buy (Unique ID = 1), field 'Date' from 01/02/2024 to 01/05/2024",
                 "01/05/2024-1", "108"},
        KindCase{"Reinvestment", "Reinvestment", "Modify Reinvestment", "50", "02/01/2024", 3, "50",
                 "Changed Buy (Unique ID = 2), field 'Shares' from 2 to 3", "02/01/2024-1", "109"},
        KindCase{"SellMinus100", "Sell", "Modify Sell", "700", "03/01/2024", -100, "700",
                 "Changed Sell (Unique ID = 1), field 'Shares' from -50 to -100", "01/02/2024-1",
                 "58"},
        KindCase{"SplitNegative", "Stock Split", "Modify Stock Split", "0", "04/01/2024", -5, "0",
                 "Changed Split (Unique ID = 1), field 'Shares' from 50 to -5", "01/02/2024-1",
                 "53"},
        KindCase{"Dividend", "Stock Div.", "Modify Stock Dividend", "0", "05/01/2024", 6, "0",
                 "Changed Split (Unique ID = 2), field 'Shares' from 5 to 6", "01/02/2024-1",
                 "109"},
        KindCase{"AdjustmentNegative", "Adjustment", "Modify Adjustment", "10", "06/01/2024", -3,
                 "-20",
                 "Changed Adjust (Unique ID = 1), field 'Cost' from 10 to -20\n"
                 "Changed Adjust (Unique ID = 1), field 'Shares' from 1 to -3",
                 "01/02/2024-1", "104"}),
    [](const auto& info) { return std::string(info.param.name); });

// Each field check refuses its bad value with its own message, keeps the
// dialog open on that field, and nothing is written.
struct RefusalCase {
  const char* name;
  const char* listed;
  std::optional<double> shares;
  const char* amount;  // nullptr keeps the row's value, as do fee and date
  const char* fee;
  const char* date;
  const char* message;
  const char* title;
  const char* focus;
};

class ModifyRefusalTest : public ModifyTransTest,
                          public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(ModifyRefusalTest, ModifyTrans_OK_BadField_RefusedNothingWritten) {
  const RefusalCase& c = GetParam();
  const std::string before = Snapshot();
  Open(c.listed);
  ExpectModify([&](ModifyTransForm& form) {
    if (c.shares) form.num_shares = *c.shares;
    if (c.amount) form.cost_of_shares = Money(c.amount);
    if (c.fee) form.fee = Money(c.fee);
    if (c.date) form.date = c.date;
    ModifyTrans_OK(*app_, form);
    EXPECT_FALSE(form.closed || form.accepted);
    EXPECT_EQ(form.focus, c.focus);
  });
  ui_.Expect(c.message, c.title, Icon::kExclamation, Buttons::kOk);
  ShowModifyTrans(*app_);
  EXPECT_EQ(Snapshot(), before);
}

const char* const kSharesTitle = "Invalid Number of Shares";
const char* const kNotPositive =
    "The Number of Shares can not be less than or equal to zero. Please correct this.";

INSTANTIATE_TEST_SUITE_P(
    Checks, ModifyRefusalTest,
    ::testing::Values(
        RefusalCase{"SellPlus100", "Sell", 100, nullptr, nullptr, nullptr,
                    "The Number of Shares can not be greater than zero. Because this is a sale, "
                    "the shares sold should be listed as a negative amount. (if 100 shares were "
                    "sold then enter -100.) Please correct this.",
                    kSharesTitle, "DblNumShares"},
        RefusalCase{"BuyZeroShares", "Buy", 0, nullptr, nullptr, nullptr, kNotPositive,
                    kSharesTitle, "DblNumShares"},
        RefusalCase{"SellSixDecimals", "Sell", -0.333333, nullptr, nullptr, nullptr,
                    "The Number of Shares entered as -0.333333 has more than 5 decimal places. "
                    "Please re-enter the Number of Shares with at most 5 decimal places.",
                    "Too many decimal places", "DblNumShares"},
        RefusalCase{"SellNegativePrice", "Sell", std::nullopt, "-0.01", nullptr, nullptr,
                    "The Sale Price can not be less than zero. Please correct this.",
                    "Invalid Sale Price", "CurrCostOfShares"},
        RefusalCase{"BuyNegativeCost", "Buy", std::nullopt, "-5", nullptr, nullptr,
                    "The Cost of Shares can not be less than zero. Please correct this.",
                    "Invalid Cost of Shares", "CurrCostOfShares"},
        RefusalCase{"SellNegativeFee", "Sell", std::nullopt, nullptr, "-1", nullptr,
                    "The Fee can not be less than zero. Please correct this.", "Invalid Fee",
                    "CurrFee"},
        RefusalCase{"InvalidDateFirst", "Sell", 100, nullptr, nullptr, "02/30/2024",
                    "The date you have entered is invalid. Please correct the date. If you are "
                    "cancelling, click on OK, and then click on Cancel again.",
                    "Warning", "dtDate"}),
    [](const auto& info) { return std::string(info.param.name); });

// Zero shares, and a zero cost or sale price except on splits and
// dividends, are confirmed first, shares first; a No writes nothing and
// keeps the dialog open.
struct ZeroCase {
  const char* name;
  const char* listed;
  double shares;
  const char* amount;
  std::optional<Answer> to_shares;  // answer to the zero-shares question, if asked
  const char* amount_field;         // named in the zero-amount question; nullptr if not asked
  Answer to_amount;
  bool written;
};

const std::string kZeroShares =
    "The Number of Shares is zero. This is could be a mistake. Do you still want to add this "
    "modification?";

class ModifyZeroTest : public ModifyTransTest, public ::testing::WithParamInterface<ZeroCase> {};

TEST_P(ModifyZeroTest, ModifyTrans_OK_Zero_AskedInOrder) {
  const ZeroCase& c = GetParam();
  const std::string before = Snapshot();
  Open(c.listed);
  ExpectModify([&](ModifyTransForm& form) {
    form.num_shares = c.shares;
    form.cost_of_shares = Money(c.amount);
    ModifyTrans_OK(*app_, form);
    EXPECT_EQ(form.closed, c.written);
  });
  const char* const title = "Modify Transaction?";
  if (c.to_shares) ui_.Expect(kZeroShares, title, Icon::kQuestion, Buttons::kYesNo, *c.to_shares);
  if (c.amount_field) {
    ui_.Expect("The " + std::string(c.amount_field) +
                   " is zero. This could be a mistake. Do you still want to add this modification?",
               title, Icon::kQuestion, Buttons::kYesNo, c.to_amount);
  }
  ShowModifyTrans(*app_);
  EXPECT_EQ(Snapshot() != before, c.written);
}

INSTANTIATE_TEST_SUITE_P(
    Questions, ModifyZeroTest,
    ::testing::Values(
        ZeroCase{"SellZeroSharesNo", "Sell", 0, "700", Answer::kNo, nullptr, {}, false},
        ZeroCase{"SellZeroPriceYes", "Sell", -50, "0", {}, "Sale Price", Answer::kYes, true},
        ZeroCase{"BuyZeroCostNo", "Buy", 100, "0", {}, "Cost of Shares", Answer::kNo, false},
        ZeroCase{"SplitZeroSharesNoCostQuestion",
                 "Stock Split",
                 0,
                 "0",
                 Answer::kYes,
                 nullptr,
                 {},
                 true},
        ZeroCase{"AdjustmentBothYes", "Adjustment", 0, "0", Answer::kYes, "Cost of Shares",
                 Answer::kYes, true}),
    [](const auto& info) { return std::string(info.param.name); });

// An unknown mode leaves the dialog open, says so, and writes nothing.
const char* const kNotCompleted =
    "The modification was not completed successfully. If an error message was displayed you "
    "should try to correct the error first. You will need to enter this modification again.";

TEST_F(ModifyTransTest, ModifyTrans_OK_UnknownCaption_ErrorThenNotCompleted) {
  const std::string before = Snapshot();
  ui_.Expect("Error in caption on dlgModifyTrans in ModifyTrans_OK", "Error!");
  ui_.Expect(kNotCompleted, "Error!", Icon::kCritical, Buttons::kOk);
  ModifyTransForm form;
  form.caption = "Modify Something";
  form.date = "01/02/2024";
  form.num_shares = 1;
  form.cost_of_shares = Money("1");
  ModifyTrans_OK(*app_, form);
  EXPECT_FALSE(form.closed);
  EXPECT_EQ(Snapshot(), before);
}

// Nothing to act on, or a row of no known kind: the user is told and
// nothing opens or changes.
TEST_F(LotsModifyTest, ModifyAndDelete_NoTransactions_NothingOpens) {
  Open();
  ui_.Expect("There are no transactions to modify. To Buy shares click on the 'Buy' button.",
             "No Transactions");
  ShowModifyTrans(*app_);
  ui_.Expect(
      "There is no Transaction to delete. To show All transactions for this Block click on the "
      "'...' button and select All.",
      "No Transactions!", Icon::kInformation, Buttons::kOk);
  DeleteTransaction(*app_);
}

TEST_F(ModifyTransTest, ModifyAndDelete_UnknownListedKind_ErrorNothingChanged) {
  Open("Buy");
  app_->window.display.transactions[0].transaction = "Transfer";
  const std::string before = Snapshot();
  ui_.Expect("Error in caption on dlgModifyTrans in ShowModifyTrans", "Error!");
  ShowModifyTrans(*app_);
  ui_.Expect(
      "You are about to delete the Transfer on 01/02/2024 from Block 01/02/2024-1. Are you "
      "sure you want to do this? ",
      "Delete Transaction?", Answer::kYes);
  ui_.Expect("Error in transaction type on SSdgTransactions in DeleteTransaction", "Error!");
  DeleteTransaction(*app_);
  EXPECT_EQ(Snapshot(), before);
}

// A delete removes exactly the confirmed row from its kind's table and lists
// the block again with all kinds; the block stays while it holds any row. A
// buy deleted under a later sale leaves that sale short, which is said.
struct DeleteCase {
  const char* name;
  const char* listed;
  const char* question;
  const char* table;
  int64_t unique_id;
  const char* shortfall = nullptr;
};

class DeleteKindTest : public ModifyTransTest, public ::testing::WithParamInterface<DeleteCase> {};

TEST_P(DeleteKindTest, DeleteTransaction_Yes_OnlyThatRowGone) {
  const DeleteCase& c = GetParam();
  Open(c.listed);
  app_->window.display.trans_filter = 6;
  ui_.Expect(c.question, "Delete Transaction?", Icon::kQuestion, Buttons::kYesNo, Answer::kYes);
  if (c.shortfall != nullptr) ui_.Expect(c.shortfall, "Sales not re-booked");
  DeleteTransaction(*app_);
  EXPECT_EQ(CountOnDisk(c.table, "\"Unique ID\" = " + std::to_string(c.unique_id)), 0);
  EXPECT_EQ(CountOnDisk("Buy") + CountOnDisk("Sell") + CountOnDisk("Split") + CountOnDisk("Adjust"),
            5);
  EXPECT_EQ(CountOnDisk("Blocks"), 2);
  EXPECT_EQ(app_->window.display.trans_filter_caption, "All");
  EXPECT_EQ(app_->window.display.transactions.size(), 4u);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, DeleteKindTest,
    ::testing::Values(DeleteCase{"Sell", "Sell",
                                 "You are about to delete the Sell on 03/01/2024 from Block "
                                 "01/02/2024-1. Are you sure you want to do this? ",
                                 "Sell", 1},
                      DeleteCase{"Dividend", "Stock Div.",
                                 "You are about to delete the Stock Div. (0.05 per 1) on "
                                 "05/01/2024 from Block 01/02/2024-1. Are you sure you want to do "
                                 "this? ",
                                 "Split", 2},
                      DeleteCase{"BuyWithLaterRows", "Buy",
                                 "You are about to delete the Buy on 01/02/2024 from Block "
                                 "01/02/2024-1. Are you sure you want to do this? ",
                                 "Buy", 1,
                                 "The sale of 50 shares on 03/01/2024 can not be re-booked: the "
                                 "blocks held only 2 shares on that date. The later sales are "
                                 "left as they were entered; please review the transactions of "
                                 "this security."}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(ModifyTransTest, DeleteTransaction_OnlyRowOfBlock_BlockRemoved) {
  Open("Reinvestment");
  const std::string question =
      "You are about to delete the Reinvestment on 02/01/2024 from Block 02/01/2024-1. Are you "
      "sure you want to do this? ";
  ui_.Expect(question, "Delete Transaction?", Answer::kNo);
  DeleteTransaction(*app_);
  EXPECT_EQ(CountOnDisk("Buy"), 2);

  ui_.Expect(question, "Delete Transaction?", Answer::kYes);
  DeleteTransaction(*app_);
  EXPECT_EQ(CountOnDisk("Blocks"), 1);
  EXPECT_EQ(CountOnDisk("Buy"), 1);
  EXPECT_EQ(app_->window.display.blocks.size(), 1u);
  EXPECT_EQ(app_->current.block_id, "01/02/2024-1");
  EXPECT_EQ(app_->window.display.total_shares, "106");
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
