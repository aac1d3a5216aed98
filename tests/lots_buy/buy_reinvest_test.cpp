#include "lots/buy_reinvest.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ground/number_text.h"
#include "lots_buy/lots_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

// Quotes, a semicolon, SQL and non-Latin text must be stored as typed.
const std::string kOddNotes = "Müller's \"DRIP\"; DROP TABLE \"Buy\" – 株式";

class BuyReinvestTest : public LotsTest {
 protected:
  static void Type(BuyReinvestForm& form, const char* date, double shares, const char* cost,
                   const std::string& notes = "") {
    form.date = date;
    form.num_shares = shares;
    form.cost_of_shares = Money(cost);
    form.notes = notes;
  }

  // "Block ID|Type|Prec Sort|Shares|Fee|Notes" of every Buy row, in entry order.
  std::vector<std::string> BuyRows() {
    std::vector<std::string> rows;
    Query q = app_->client->Select(
        R"(SELECT B."Block ID", T.* FROM "Buy" AS T JOIN "Blocks" AS B USING ("Block No") )"
        R"(ORDER BY T."Unique ID")");
    while (q.Next()) {
      rows.push_back(q.Text("Block ID") + "|" + q.Text("Type") + "|" + q.Text("Prec Sort") + "|" +
                     NumberText(q.Double("Shares")) + "|" + q.Money("Fee").ToString() + "|" +
                     q.Text("Notes"));
    }
    return rows;
  }
};

// Both commands open the one dialog in their own mode; what OK stores
// carries that mode's type and rank, and the new block is the one shown.
struct ModeCase {
  void (*show)(Application&);
  const char* caption;
  const char* type_rank;
  const char* adding;
};

class BuyModeTest : public BuyReinvestTest, public ::testing::WithParamInterface<ModeCase> {};

TEST_P(BuyModeTest, ShowAndOk_StoresBlockOfItsType) {
  const ModeCase& c = GetParam();
  BuyShares("01/02/2024", 5, "50");  // a reinvestment needs a block to exist
  LoadBlocks();
  OnDialog<BuyReinvestForm>("dlgBuyReinvest", [&](BuyReinvestForm& form) {
    EXPECT_EQ(form.caption, c.caption);
    EXPECT_EQ(form.security, "AT&&T");
    Type(form, "03/15/2024", 12.5, "1250.25", kOddNotes);
    form.fee = Money("-5");
    ExpectSaid(ui_, __FILE__, "negative_fee");
    FeeLostFocusBR(*app_, form);
    EXPECT_EQ(form.fee, Currency());
    EXPECT_EQ(form.total_cost, Money("1250.25"));
    BuyReinvest_OK(*app_, form, false);
    EXPECT_TRUE(form.closed);
  });
  c.show(*app_);
  EXPECT_EQ(BuyRows().back(), "03/15/2024-1|" + std::string(c.type_rank) + "|12.5|0|" + kOddNotes);
  EXPECT_EQ(HelpTexts().at(1), c.adding);
  EXPECT_EQ(app_->current.block_id, "03/15/2024-1");
  EXPECT_EQ(app_->window.display.total_shares, "17.5");
  EXPECT_EQ(ui_.hourglass_depth(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, BuyModeTest,
    ::testing::Values(ModeCase{ShowBuyShares, "Buy Shares", "10|10", "Adding Buy"},
                      ModeCase{ShowReinvest, "Reinvestment", "20|20", "Adding Reinvestment"}));

// A reinvestment needs a block to reinvest from: without one the user is
// told and no dialog opens.
TEST_F(BuyReinvestTest, ShowReinvest_NoBlocks_NoDialog) {
  ExpectSaid(ui_, __FILE__, "no_blocks");
  ShowReinvest(*app_);
}

// Zero cost and zero shares are questioned, cost first; a No to either
// stores nothing and leaves the dialog open as typed. A caption that is
// neither mode is reported and nothing is stored.
TEST_F(BuyReinvestTest, Ok_ZeroCostAndShares_AskedCostFirst) {
  const std::vector<std::string> cost = {"Cost of Shares"}, shares = {"Number of Shares"};
  ExpectSaid(ui_, __FILE__, "zero", Answer::kNo, cost);
  ExpectSaid(ui_, __FILE__, "zero", Answer::kYes, cost);
  ExpectSaid(ui_, __FILE__, "zero", Answer::kNo, shares);
  ExpectSaid(ui_, __FILE__, "zero", Answer::kYes, cost);
  ExpectSaid(ui_, __FILE__, "zero", Answer::kYes, shares);
  ExpectSaid(ui_, __FILE__, "bad_caption");
  BuyReinvestForm form;
  form.caption = "Buy Shares";
  Type(form, "03/15/2024", 0, "0");
  for (int refused = 0; refused < 2; ++refused) {
    BuyReinvest_OK(*app_, form, false);
    EXPECT_FALSE(form.closed);
    EXPECT_EQ(CountClientRows("Blocks"), 0);
  }
  BuyReinvest_OK(*app_, form, false);
  EXPECT_TRUE(form.closed);
  BuyReinvestForm unknown;
  unknown.caption = "Buy shares";
  Type(unknown, "03/16/2024", 10, "100");
  BuyReinvest_OK(*app_, unknown, false);
  EXPECT_FALSE(unknown.closed);
  EXPECT_EQ(CountClientRows("Blocks"), 1);
  EXPECT_EQ(ui_.hourglass_depth(), 0);
}

// A second buy on one date is questioned by AddBuy: No stores nothing and
// keeps the entry; Yes stores it as a block of its own. Next clears the
// form in its mode and a later Cancel keeps what was entered. With the
// recalculation option off the total is only marked stale.
TEST_F(BuyReinvestTest, Next_SameDateBuys_BothStored) {
  BuyShares("03/01/2024", 10, "100");
  LoadBlocks();
  app_->window.options.recalc_shares = false;
  OnDialog<BuyReinvestForm>("dlgBuyReinvest", [&](BuyReinvestForm& form) {
    Type(form, "03/01/2024", 20, "210", "second");
    BuyReinvest_OK(*app_, form, true);
    EXPECT_EQ(form.num_shares, 20);
    BuyReinvest_OK(*app_, form, true);
    EXPECT_EQ(form.caption, "Buy Shares");
    EXPECT_EQ(form.date, "__/__/____");
    EXPECT_EQ(form.num_shares, 0);
    EXPECT_EQ(form.cost_of_shares, Currency());
    EXPECT_EQ(form.notes, "");
    EXPECT_EQ(form.focus, "dtDate");
    BuyReinvest_Cancel(*app_, form);
  });
  ExpectSaid(ui_, __FILE__, "same_date", Answer::kNo);
  ExpectSaid(ui_, __FILE__, "not_added");
  ExpectSaid(ui_, __FILE__, "same_date", Answer::kYes);
  ShowBuyShares(*app_);
  EXPECT_EQ(BuyRows(), (std::vector<std::string>{"03/01/2024-1|10|10|10|0|",
                                                 "03/01/2024-2|10|10|20|0|second"}));
  EXPECT_EQ(app_->window.display.total_shares, "Recalculate");
}

// Leaving the date: no date draws the warning and the invalid-date message
// and keeps the focus there, a date before 1913 only the warning. OK with
// no date stops at the invalid-date message and writes nothing.
TEST_F(BuyReinvestTest, Date_BadInput) {
  const struct {
    const char *typed, *warning;  // with "no_date" the date is refused outright
  } cases[] = {{"__/__/____", "no_date"}, {"02/30/2024", "no_date"}, {"12/31/1912", "early_date"}};
  for (const auto& c : cases) {
    const bool refused = std::string(c.warning) == "no_date";
    ExpectSaid(ui_, __FILE__, c.warning);
    if (refused) ExpectSaid(ui_, __FILE__, "bad_date", Answer::kOk, {c.typed});
    BuyReinvestForm form;
    form.caption = "Buy Shares";
    Type(form, c.typed, 10, "100");
    DateLostFocusBR(*app_, form);
    if (!refused) continue;
    EXPECT_EQ(form.focus, "dtDate");
    ExpectSaid(ui_, __FILE__, "bad_date", Answer::kOk, {c.typed});
    BuyReinvest_OK(*app_, form, false);
    EXPECT_FALSE(form.closed);
  }
  EXPECT_EQ(CountClientRows("Blocks"), 0);
}

}  // namespace
}  // namespace lotwise::testing
