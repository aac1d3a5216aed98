#include "lots/rollback.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "lots_modify/modify_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

using Lines = std::vector<std::string>;

// Four blocks with rows of every kind before, on and after 05/01/2024, the
// sales taken first in, first out: A 01/02/2024 (buy, sells, adjustments,
// splits, dividends), B 02/01/2024 (reinvestment only), C 07/01/2024 (buy
// only), D 08/01/2024 (reinvestment only).
class RollbackTest : public LotsModifyTest {
 protected:
  void SetUp() override {
    LotsModifyTest::SetUp();
    const int64_t a = BlockNo(Buy("01/02/2024", 100, "1000"));
    Buy("02/01/2024", 2, "50", kTypeReinvest);
    Buy("07/01/2024", 5, "60");
    Buy("08/01/2024", 1, "12", kTypeReinvest);
    ASSERT_TRUE(AddSell(*app_, a, D("03/01/2024"), Money("70"), Money("1"), -10, ""));
    ASSERT_TRUE(AddSell(*app_, a, D("06/01/2024"), Money("110"), Money("2"), -11, ""));
    ASSERT_TRUE(AddAdjust(*app_, a, D("04/01/2024"), 1, Money("10"), ""));
    ASSERT_TRUE(AddAdjust(*app_, a, D("06/02/2024"), 2, Money("10"), ""));
    ASSERT_TRUE(AddSplit(*app_, a, kTypeSplit, D("05/01/2024"), 1, 2, 80, ""));
    ASSERT_TRUE(AddSplit(*app_, a, kTypeSplit, D("09/01/2024"), 1, 2, 160, ""));
    ASSERT_TRUE(AddSplit(*app_, a, kTypeDividend, D("02/15/2024"), 0.05, 1, 4, ""));
    ASSERT_TRUE(AddSplit(*app_, a, kTypeDividend, D("07/15/2024"), 0.05, 1, 4, ""));
  }

  // Expects the warning, answered OK, and the dialog, which `user` fills in;
  // what its buttons say is expected after this call.
  void ExpectRollback(std::function<void(RollbackForm&)> user) {
    ExpectSaid(ui_, __FILE__, "rollback_warning", Answer::kOk);
    ui_.ExpectDialog("dlgRollback", [user](DialogForm& f) { user(static_cast<RollbackForm&>(f)); });
  }

  // Expects the list of removed blocks and prints it.
  void ExpectRemovedList(const Lines& removed) {
    ui_.ExpectDialog("dlgRemBlocks", [this, removed](DialogForm& f) {
      auto& list = static_cast<RemBlocksForm&>(f);
      EXPECT_EQ(list.removed, removed);
      EXPECT_EQ(list.note,
                "These blocks were removed becuase all transactions were removed from them");
      PrintREmovedBlocks(*app_, list);
      RemBlocks_Close(*app_, list);
    });
  }

  // Rows per table and type ("Split 21"), those dated after `after` apart.
  std::map<std::string, long long> Counts(const char* after) {
    std::map<std::string, long long> counts;
    for (const char* table : {"Buy", "Sell", "Split", "Adjust"}) {
      const bool typed = std::string(table) == "Buy" || std::string(table) == "Split";
      Query q = app_->client->Select(std::string("SELECT ") + (typed ? "\"Type\"" : "99") +
                                         " AS t, \"Date\" > :d AS later, count(*) AS n FROM \"" +
                                         table + "\" GROUP BY 1, 2",
                                     {{"d", D(after)}});
      while (q.Next()) {
        counts[std::string(table) + " " + q.Text("t") + (q.Int("later") ? " later" : "")] =
            q.Int("n");
      }
    }
    return counts;
  }
};

// One ticked kind over all blocks removes exactly that kind's rows dated
// after the date, keeps the date itself, and removes the blocks it empties.
struct KindCase {
  bool RollbackForm::*tick;
  const char* key;  // table and type as Counts() names them
  Lines removed_blocks;
};

class RollbackKindTest : public RollbackTest, public ::testing::WithParamInterface<KindCase> {};

TEST_P(RollbackKindTest, RollBack_OK_OneKindAllBlocks_OnlyItsLaterRowsGone) {
  const KindCase& c = GetParam();
  std::map<std::string, long long> expected = Counts("05/01/2024");
  expected.erase(std::string(c.key) + " later");
  OpenBlock("01/02/2024-1");
  ExpectRollback([&](RollbackForm& form) {
    form.date = "05/01/2024";
    form.*c.tick = true;
    form.blocks = kRollbackAllBlocks;
    RollBack_OK(*app_, form);
    EXPECT_TRUE(form.closed && form.accepted);
  });
  ExpectSaid(ui_, __FILE__, "all_blocks", Answer::kYes);
  if (!c.removed_blocks.empty()) ExpectRemovedList(c.removed_blocks);
  ShowRollBack(*app_);
  EXPECT_EQ(Counts("05/01/2024"), expected);
  EXPECT_EQ(CountOnDisk("Blocks"), 4 - static_cast<long long>(c.removed_blocks.size()));
  EXPECT_EQ(app_->window.display.blocks.size(), 4 - c.removed_blocks.size());
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, RollbackKindTest,
    ::testing::Values(KindCase{&RollbackForm::buys, "Buy 10", {"07/01/2024-1"}},
                      KindCase{&RollbackForm::reinvests, "Buy 20", {"08/01/2024-1"}},
                      KindCase{&RollbackForm::sells, "Sell 99", {}},
                      KindCase{&RollbackForm::splits, "Split 11", {}},
                      KindCase{&RollbackForm::dividends, "Split 21", {}},
                      KindCase{&RollbackForm::adjusts, "Adjust 99", {}}));

// Rolling back to a block's purchase date keeps the purchase; to the day
// before removes it and its block, which are listed and printed with the
// later ids indented.
struct PurchaseCase {
  const char* date;
  int blocks;
  Lines removed;
  long long buys_left;
  const char* total;
};

class RollbackPurchaseTest : public RollbackTest,
                             public ::testing::WithParamInterface<PurchaseCase> {};

TEST_P(RollbackPurchaseTest, RollBack_OK_AroundPurchaseDate_BlocksListedAndPrinted) {
  const PurchaseCase& c = GetParam();
  OpenBlock("07/01/2024-1");
  ExpectRollback([&](RollbackForm& form) {
    EXPECT_EQ(form.block, "07/01/2024-1");
    form.date = c.date;
    form.buys = form.reinvests = true;
    form.blocks = c.blocks;
    RollBack_OK(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  if (c.blocks == kRollbackAllBlocks) ExpectSaid(ui_, __FILE__, "all_blocks", Answer::kYes);
  if (!c.removed.empty()) ExpectRemovedList(c.removed);
  ShowRollBack(*app_);
  EXPECT_EQ(CountOnDisk("Buy"), c.buys_left);
  EXPECT_EQ(CountOnDisk("Blocks"), 4 - static_cast<long long>(c.removed.size()));
  EXPECT_EQ(app_->window.display.total_shares, c.total);
  Lines printed;
  if (!c.removed.empty()) {
    printed = {"Listing of Blocks that have been removed", "Taxpayer Name: John Doe",
               "Portfolio:     Growth", "Security:      IBM", "Blocks:  " + c.removed[0]};
    for (size_t i = 1; i < c.removed.size(); ++i) printed.push_back("        " + c.removed[i]);
    EXPECT_EQ(std::ranges::count(ui_.help_texts(), "Printing removed blocks"), 1);
  }
  EXPECT_EQ(ui_.printed(), printed);
}

// Block A holds 330 shares, B 2, C 5 and D 1.
INSTANTIATE_TEST_SUITE_P(
    Dates, RollbackPurchaseTest,
    ::testing::Values(
        PurchaseCase{"07/01/2024", kRollbackCurrentBlock, {}, 4, "338"},
        PurchaseCase{"06/30/2024", kRollbackCurrentBlock, {"07/01/2024-1"}, 3, "333"},
        PurchaseCase{
            "06/30/2024", kRollbackAllBlocks, {"07/01/2024-1", "08/01/2024-1"}, 2, "332"}));

// Every refusal comes before the first delete: the file is left as it was
// and the dialog stays open. The warning comes first and Cancel opens
// nothing; a security without any transaction has nothing to roll back.
TEST_F(RollbackTest, RollBack_OK_Refused_NothingDeleted) {
  const std::string before = Snapshot();
  OpenBlock("01/02/2024-1");
  ExpectSaid(ui_, __FILE__, "rollback_warning", Answer::kCancel);
  ShowRollBack(*app_);
  const struct {
    const char* date;
    bool tick;
    int blocks;
    const char* key;
    Answer answer;
  } refusals[] = {{"02/30/2024", true, kRollbackCurrentBlock, "rollback_bad_date", Answer::kOk},
                  {"01/01/2024", false, kRollbackAllBlocks, "no_types", Answer::kOk},
                  {"01/01/2024", true, kRollbackAllBlocks, "all_blocks", Answer::kNo},
                  {"01/01/2024", true, kRollbackNoBlocks, "no_blocks", Answer::kOk}};
  for (const auto& c : refusals) {
    ExpectRollback([&](RollbackForm& form) {
      form.date = c.date;
      form.sells = c.tick;
      form.blocks = c.blocks;
      RollBack_OK(*app_, form);
      EXPECT_FALSE(form.closed || form.accepted);
    });
    ExpectSaid(ui_, __FILE__, c.key, c.answer);
    if (c.blocks == kRollbackNoBlocks) ExpectSaid(ui_, __FILE__, "rollback_not_completed");
    ShowRollBack(*app_);
  }
  EXPECT_EQ(Snapshot(), before);
}

TEST_F(LotsModifyTest, ShowRollBack_NoTransactions_NoWarning) {
  Open();
  ExpectSaid(ui_, __FILE__, "nothing_to_rollback");
  ShowRollBack(*app_);
}

// A write failing in the middle of a roll-back over several blocks undoes
// the deletes already made: no row is lost, and the file stays sound.
TEST_F(RollbackTest, RollBackTrans_SecondBlockWriteFails_NoRowDeleted) {
  const std::string before = Snapshot();
  OpenBlock("01/02/2024-1");
  UseStorageFaults();
  ExpectRollback([&](RollbackForm& form) {
    form.date = "01/01/2024";
    form.sells = form.adjusts = true;
    form.blocks = kRollbackAllBlocks;
    // Block A's sells and adjustments, then block B's (empty) sells: the
    // third write.
    faults_.FailWriteNumber(3);
    RollBack_OK(*app_, form);
  });
  ExpectSaid(ui_, __FILE__, "all_blocks", Answer::kYes);
  ExpectFatal(31010, "disk I/O error (injected)", "RollBackTable");
  EXPECT_THROW(ShowRollBack(*app_), ProgramEnded);
  EXPECT_EQ(Snapshot(), before);
  EXPECT_EQ(IntegrityOnDisk(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
