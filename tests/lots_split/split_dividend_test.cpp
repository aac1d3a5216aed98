#include "lots/split_dividend.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "ground/number_text.h"
#include "lots_buy/lots_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

// Expects the question before a whole split or dividend is modified.
void ExpectModifyQuestion(ScriptedUi& ui, const std::string& what, Answer answer) {
  ExpectSaid(ui, __FILE__, "modify_entire", answer, std::vector<std::string>(7, what));
}

class SplitDivTest : public LotsTest {
 protected:
  // "Block ID|Date|Type|Prec Sort|Pre|Post|Shares|Notes" of every Split row,
  // oldest block first, then by date.
  std::vector<std::string> SplitRows() {
    std::vector<std::string> rows;
    Query q = app_->client->Select(
        R"(SELECT B."Block ID", S.* FROM "Split" AS S JOIN "Blocks" AS B USING ("Block No") )"
        R"(ORDER BY B."Date", B."Block ID", S."Date", S."Unique ID")");
    while (q.Next()) {
      rows.push_back(q.Text("Block ID") + "|" + q.DateValue("Date").ToString() + "|" +
                     q.Text("Type") + "|" + q.Text("Prec Sort") + "|" +
                     NumberText(q.Double("Pre Ratio")) + "|" + NumberText(q.Double("Post Ratio")) +
                     "|" + NumberText(q.Double("Shares")) + "|" + q.Text("Notes"));
    }
    return rows;
  }

  static void Type(SplitDivForm& form, const char* date, double pre, double post, int blocks) {
    form.date = date;
    form.pre_ratio = pre;
    form.post_ratio = post;
    form.blocks = blocks;
  }

  // A "Stock Split" form for all blocks, as OK finds it without a dialog.
  static SplitDivForm AllBlocksForm(const char* date, double pre, double post) {
    SplitDivForm form;
    form.caption = "Stock Split";
    Type(form, date, pre, post, SplitDivForm::kAllBlocks);
    return form;
  }

  void EnterAll(int16_t type, const char* date, double pre, double post, const char* notes = "") {
    ASSERT_TRUE(AddAllSplitDivs(*app_, type, D(date), pre, post, notes, SplitDivForm::kAllBlocks));
  }
};

// On the current block only that block gets a row, with its kind's type,
// rank and added shares to five decimals; a reverse split takes away
// exactly its share, and a zero second part adds nothing.

class SplitKindTest : public SplitDivTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(SplitKindTest, CurrentBlock_AddsRatioShares) {
  const GoldenCase& c = GetParam();
  double shares = 0, pre = 0, post = 0;
  std::istringstream(c.sections.at(1).args) >> shares >> pre >> post;
  BuyShares("01/02/2024", 70, "700");
  LoadBlocks(BuyShares("01/03/2024", shares, "500"));
  OnDialog<SplitDivForm>("dlgSplitDiv", [&](SplitDivForm& form) {
    Type(form, "06/28/2024", pre, post, SplitDivForm::kCurrentBlock);
    PressOkSplitDiv(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowSplit(*app_, c.name);
  EXPECT_EQ(SplitRows(), std::vector<std::string>{c.sections.at(2).args});
  EXPECT_EQ(HelpTexts().at(0), c.sections.at(3).args);
}

INSTANTIATE_TEST_SUITE_P(Kinds, SplitKindTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "current_block.txt")));

TEST(SplitSharesAddedTest, PostZero_AddsNothing) {
  EXPECT_EQ(SplitSharesAdded(kTypeSplit, 2, 0, 100), 0);
  EXPECT_EQ(SplitSharesAdded(kTypeDividend, 2, 0, 100), 0);
}

// On all blocks each block's shares count as of the split date: a block
// sold out before it gets no row, a buy of the same day counts, a later
// buy or sale does not; the grid returns to the user's block.
TEST_F(SplitDivTest, AllBlocks_SkipsSoldOutAndCountsSameDayBuy) {
  SellShares(BuyShares("01/02/2024", 100, "1000"), "02/01/2024", 100);
  const std::string held = BuyShares("01/03/2024", 50, "500");
  SellShares(held, "03/05/2024", 5);
  BuyShares("03/01/2024", 10, "100");
  BuyShares("03/02/2024", 40, "400");
  LoadBlocks(held);
  OnDialog<SplitDivForm>("dlgSplitDiv", [&](SplitDivForm& form) {
    EXPECT_EQ(form.security, "AT&&T");
    EXPECT_EQ(form.block, held);
    EXPECT_EQ(form.explanation,
              "For a 2 to 1 Stock Split, 'Ratio of Number of New Shares:' would be 2, and 'To "
              "Number of Old Shares:' would be 1.");
    Type(form, "03/01/2024", 2, 1, SplitDivForm::kAllBlocks);
    form.notes = "2:1 \"forward\" – Überweisung";
    PressOkSplitDiv(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowSplit(*app_, "Stock Split");
  EXPECT_EQ(SplitRows(),
            (std::vector<std::string>{
                "01/03/2024-1|03/01/2024|11|60|2|1|50|2:1 \"forward\" – Überweisung",
                "03/01/2024-1|03/01/2024|11|60|2|1|10|2:1 \"forward\" – Überweisung"}));
  EXPECT_EQ(app_->window.display.total_shares, "155");
  EXPECT_EQ(app_->current.block_id, held);
  EXPECT_EQ(ui_.gauge_percent(), 0);
}

// Bad input at OK: a ratio part of zero or less (first part checked
// first), or a date that is no date, stops with the dialog open and
// nothing written. With every block empty on the date nothing is written
// and the user is told so; nothing failed, so the dialog closes.
TEST_F(SplitDivTest, Ok_BadInputOrAllBlocksEmpty_NothingWritten) {
  SellShares(BuyShares("01/02/2024", 100, "1000"), "02/01/2024", 100);
  BuyShares("04/01/2024", 10, "100");
  LoadBlocks();
  const struct {
    double pre, post;
    const char *date, *key;
  } refusals[] = {{0, -1, "03/01/2024", "first_part"},
                  {2, -1, "03/01/2024", "second_part"},
                  {2, 1, "13/01/2024", "split_bad_date"}};
  for (const auto& r : refusals) {
    ExpectSaid(ui_, __FILE__, r.key);
    SplitDivForm form = AllBlocksForm(r.date, r.pre, r.post);
    PressOkSplitDiv(*app_, form);
    EXPECT_FALSE(form.closed);
  }
  ExpectSaid(ui_, __FILE__, "none_added");
  SplitDivForm form = AllBlocksForm("03/01/2024", 2, 1);
  PressOkSplitDiv(*app_, form);
  EXPECT_TRUE(form.closed);
  EXPECT_EQ(CountClientRows("Split"), 0);
}

// All rows of one split form one unit: when the second block's row cannot
// be written the first is rolled back too, and the user is told to enter
// the split again.
TEST_F(SplitDivTest, AllBlocks_SecondWriteFails_NoRowRemains) {
  BuyShares("01/02/2024", 100, "1000");
  BuyShares("01/03/2024", 50, "500");
  BuyShares("01/04/2024", 25, "250");
  LoadBlocks();
  UseStorageFaults();
  faults_.FailWriteNumber(2);
  ExpectFatal(err::kSqliteBase + 10, "disk I/O error (injected)", "AddSplit");
  SplitDivForm form = AllBlocksForm("03/01/2024", 2, 1);
  EXPECT_THROW(PressOkSplitDiv(*app_, form), ProgramEnded);
  EXPECT_EQ(CountOnDisk("Split"), 0);
  EXPECT_EQ(IntegrityOnDisk(), "ok");
}

// Modify Entire Split replaces the day's split rows of every block; the
// shares are computed without the old rows, so the new ratio applies to the
// shares held before the split. Other days' rows stay as they were.
TEST_F(SplitDivTest, ModifyEntireSplit_ReplacesTheDaysRows) {
  BuyShares("01/02/2024", 100, "1000");
  const std::string second = BuyShares("01/03/2024", 30, "300");
  LoadBlocks(second);
  EnterAll(kTypeSplit, "03/01/2024", 2, 1, "as announced");
  EnterAll(kTypeSplit, "05/01/2024", 2, 1);
  ExpectModifyQuestion(ui_, "stock split", Answer::kYes);
  OnDialog<SplitDivForm>("dlgSplitDiv", [&](SplitDivForm& form) {
    EXPECT_EQ(form.caption, "Modify Entire Split");
    EXPECT_EQ(form.blocks, SplitDivForm::kAllBlocks);
    EXPECT_EQ(form.date, "03/01/2024");
    EXPECT_EQ(form.pre_ratio, 2);
    EXPECT_EQ(form.notes, "as announced");
    form.pre_ratio = 3;
    PressOkSplitDiv(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowModEntSplitDiv(*app_, sec_id_, D("03/01/2024"), kTypeSplit);
  EXPECT_EQ(SplitRows(), (std::vector<std::string>{"01/02/2024-1|03/01/2024|11|60|3|1|200|as "
                                                   "announced",
                                                   "01/02/2024-1|05/01/2024|11|60|2|1|200|",
                                                   "01/03/2024-1|03/01/2024|11|60|3|1|60|as "
                                                   "announced",
                                                   "01/03/2024-1|05/01/2024|11|60|2|1|60|"}));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// A correction starts on the scope of the entry it replaces (here one
// block of two) and deletes the old rows only in the unit that stores the
// new ones: when the user declines the question about the day's dividend,
// the old split stays and the user is told so.
TEST_F(SplitDivTest, ModifyEntireSplit_OneBlockDeclined_OldRowsKept) {
  BuyShares("01/02/2024", 100, "1000");
  LoadBlocks(BuyShares("01/03/2024", 10, "100"));
  SplitDivForm split = AllBlocksForm("03/01/2024", 2, 1);
  split.blocks = SplitDivForm::kCurrentBlock;
  PressOkSplitDiv(*app_, split);
  ASSERT_TRUE(split.accepted);
  ExpectSaid(ui_, __FILE__, "dividend_same_date", Answer::kYes);
  EnterAll(kTypeDividend, "03/01/2024", 0.1, 1);
  const std::vector<std::string> before = SplitRows();
  ExpectModifyQuestion(ui_, "stock split", Answer::kYes);
  OnDialog<SplitDivForm>("dlgSplitDiv", [&](SplitDivForm& form) {
    EXPECT_EQ(form.blocks, SplitDivForm::kCurrentBlock);
    form.pre_ratio = 3;
    PressOkSplitDiv(*app_, form);
    EXPECT_FALSE(form.closed);
    EXPECT_FALSE(form.accepted);
  });
  ExpectSaid(ui_, __FILE__, "split_same_date", Answer::kNo);
  ExpectSaid(ui_, __FILE__, "not_changed");
  ShowModEntSplitDiv(*app_, sec_id_, D("03/01/2024"), kTypeSplit);
  EXPECT_EQ(SplitRows(), before);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// Without a block there is nothing to split or modify; a No to the modify
// question opens nothing and deletes nothing.
TEST_F(SplitDivTest, NoBlocksOrNo_NothingOpens) {
  ExpectSaid(ui_, __FILE__, "no_blocks_split_div");
  ExpectSaid(ui_, __FILE__, "no_blocks_split");
  ShowSplit(*app_, "Stock Dividend");
  ShowModEntSplitDiv(*app_, sec_id_, D("03/01/2024"), kTypeDividend);
  LoadBlocks(BuyShares("01/02/2024", 100, "1000"));
  EnterAll(kTypeDividend, "03/01/2024", 0.1, 1);
  ExpectModifyQuestion(ui_, "stock dividend", Answer::kNo);
  ShowModEntSplitDiv(*app_, sec_id_, D("03/01/2024"), kTypeDividend);
  EXPECT_EQ(CountClientRows("Split"), 1);
}

}  // namespace
}  // namespace lotwise::testing
