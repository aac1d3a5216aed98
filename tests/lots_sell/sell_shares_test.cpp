#include "lots/sell_shares.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "lots/buy_reinvest.h"
#include "lots/split_dividend.h"
#include "lots_sell/sale_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

// A FIFO sale takes the blocks still holding shares oldest first (date, then
// block id as text), each remainder rounded to five decimals, and spreads
// price and fee by shares: each row to the currency, then to the cent half to
// even, the last row taking the difference. A sale the blocks cannot cover
// names the shares held and writes nothing.
class FifoSaleTest : public SaleTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(FifoSaleTest, SellShares_OK_Fifo) {
  const GoldenCase& c = GetParam();
  for (const std::string& line : c.Lines("blocks")) {
    std::istringstream in(line);
    std::string date, seq = "1";
    double shares = 0, adjusted = 0;
    in >> date >> shares >> adjusted >> seq;
    Block(date.c_str(), shares, adjusted, seq.c_str());
  }
  std::string price, fee, refusal, value;
  double shares = 0;
  std::istringstream(c.Args("sale")) >> shares >> price >> fee;
  std::istringstream(c.Args("refused")) >> refusal >> value;
  const std::string rows = c.Args("rows");
  OpenSecurity(SellMethod::kFifo);
  OnSale([&](SellSharesForm& form) {
    Fill(form, shares, price.c_str(), fee.c_str());
    SellShares_OK(*app_, form, false);
    EXPECT_EQ(form.closed, refusal.empty());
    if (!form.closed) SellShares_Cancel(*app_, form);
  });
  if (!refusal.empty()) ExpectSaid(ui_, __FILE__, refusal, Answer::kOk, {value});
  ShowSellShares(*app_);
  EXPECT_EQ(SellRows(), rows);
  EXPECT_TRUE(app_->sale_lists.selected.empty);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(Sales, FifoSaleTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "fifo_sales.txt")));

// An entry dated before a FIFO sale already stored offers to re-book it: Yes
// takes the sale again first in, first out from the blocks as they now
// stand, in one unit, logged, and recomputes the later split on what its
// blocks then hold; No keeps the rows. The stored sale of 120 took 100 from
// January and 20 from February; a 2:1 split on 07/01 then doubled
// February's 80 shares.

class RebookTest : public SaleTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(RebookTest, EntryBeforeFifoSale_SaleRebooked) {
  const GoldenCase& c = GetParam();
  std::string kind, date, answer;
  std::istringstream(c.Args("entry")) >> kind >> date >> answer;
  const int64_t jan = Block("01/01/2024", 100);
  const int64_t feb = Block("02/01/2024", 100);
  ASSERT_TRUE(AddSell(*app_, jan, D("06/03/2024"), Money("1000"), Money("10"), -100, ""));
  ASSERT_TRUE(AddSell(*app_, feb, D("06/03/2024"), Money("200"), Money("2"), -20, ""));
  ASSERT_TRUE(AddSplit(*app_, feb, kTypeSplit, D("07/01/2024"), 2, 1, 80, ""));
  OpenSecurity(SellMethod::kFifo);
  ExpectSaid(ui_, __FILE__, "rebook", answer == "yes" ? Answer::kYes : Answer::kNo);
  if (kind == "split") {
    SplitDivForm form;
    form.caption = SplitDivForm::kSplitCaption;
    form.date = date;
    form.pre_ratio = 2;
    form.post_ratio = 1;
    SplitDiv_OK(*app_, form, false);
    EXPECT_TRUE(form.closed);
  } else {
    BuyReinvestForm form;
    form.caption = BuyReinvestForm::kBuyCaption;
    form.date = date;
    form.num_shares = 50;
    form.cost_of_shares = Money("400");
    BuyReinvest_OK(*app_, form, false);
    EXPECT_TRUE(form.closed);
  }
  EXPECT_EQ(SellRows(), c.Args("sale"));
  EXPECT_EQ(SellRows("07/01/2024", "Split"), c.Args("splits"));
  EXPECT_EQ(Changes(), c.Text("changes"));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(Entries, RebookTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "rebooks.txt")));

// OK refuses a sale without a method or without shares (pointing to the
// Select button only where the user picks the shares), or with a zero price
// the user does not confirm; nothing is written, the method stays as it was
// and the dialog stays open.
struct RefusalCase {
  SellMethod method;
  double shares;
  const char* key;
  std::string value = "";
};

class RefusalTest : public SaleTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(RefusalTest, SellShares_OK_Refused) {
  const RefusalCase& c = GetParam();
  Block("01/01/2024", 100);
  OpenSecurity(c.method);
  OnSale([&](SellSharesForm& form) {
    Fill(form, c.shares, c.shares == 1 ? "0" : "500");
    SellShares_OK(*app_, form, false);
    EXPECT_FALSE(form.closed);
    EXPECT_EQ(ui_.hourglass_depth(), 0);
  });
  ExpectSaid(ui_, __FILE__, c.key, Answer::kNo, {c.value});
  ShowSellShares(*app_);
  EXPECT_EQ(CountClientRows("Sell"), 0);
  EXPECT_EQ(StoredMethod(), c.method);
}

INSTANTIATE_TEST_SUITE_P(Entries, RefusalTest,
                         ::testing::Values(RefusalCase{SellMethod::kNotSelected, 10, "no_method"},
                                           RefusalCase{SellMethod::kFifo, 0, "zero_shares"},
                                           RefusalCase{
                                               SellMethod::kSpecificId, 0, "zero_shares",
                                               "To select shares click on the 'Select' button."},
                                           RefusalCase{SellMethod::kFifo, 1, "zero_price"}));

// A confirmed zero price stores the rows with price 0.
TEST_F(SaleTest, SellShares_OK_ZeroPriceConfirmed) {
  Block("01/01/2024", 100);
  OpenSecurity(SellMethod::kFifo);
  OnSale([&](SellSharesForm& form) {
    Fill(form, 10, "0", "1");
    SellShares_OK(*app_, form, false);
  });
  ExpectSaid(ui_, __FILE__, "zero_price", Answer::kYes);
  ShowSellShares(*app_);
  EXPECT_EQ(SellRows(), "01/01/2024-1 -10 0 1");
}

// A sale is stored whole or not at all: when the second of its three rows
// cannot be written, none remains.
TEST_F(SaleTest, AddAllSales_SecondWriteFails_NoRowRemains) {
  for (const char* date : {"01/01/2024", "02/01/2024", "03/01/2024"}) Block(date, 10);
  OpenSecurity(SellMethod::kFifo);
  UseStorageFaults();
  faults_.FailWriteNumber(2);
  OnSale([&](SellSharesForm& form) {
    Fill(form, 25, "250");
    SellShares_OK(*app_, form, false);
  });
  ExpectFatal(31010, "disk I/O error (injected)", "AddSell");
  EXPECT_THROW(ShowSellShares(*app_), ProgramEnded);
  EXPECT_EQ(CountOnDisk("Sell"), 0);
  EXPECT_EQ(IntegrityOnDisk(), "ok");
}

// A file another user is writing refuses the sale with "Sale not
// completed!", and the same OK succeeds once it is free.
TEST_F(SaleTest, SellShares_OK_FileBusy_NotCompletedThenRetried) {
  Block("01/01/2024", 100);
  OpenSecurity(SellMethod::kFifo);
  auto lock = LockFileElsewhere();
  OnSale([&](SellSharesForm& form) {
    Fill(form, 40, "400");
    SellShares_OK(*app_, form, false);
    EXPECT_FALSE(form.closed);
    lock.reset();
    SellShares_OK(*app_, form, false);
    EXPECT_TRUE(form.closed);
  });
  ExpectSaid(ui_, __FILE__, "busy");
  ExpectSaid(ui_, __FILE__, "not_completed");
  ShowSellShares(*app_);
  EXPECT_EQ(SellRows(), "01/01/2024-1 -40 400 0");
}

// Modify Entire Sell shows the day's rows as one sale whose shares count
// again for the new selection, and replaces them only in the unit that
// stores the new sale. Under specific identification the selection starts
// from the old choice.
class ModEntireSellTest : public SaleTest {
 protected:
  void SetUp() override {
    SaleTest::SetUp();
    jan_ = Block("01/01/2024", 100);
    mar_ = Block("03/01/2024", 100);
    ASSERT_TRUE(AddSell(*app_, jan_, D("06/03/2024"), Money("666.67"), Money("6.67"), -100, "A"));
    ASSERT_TRUE(AddSell(*app_, mar_, D("06/03/2024"), Money("333.33"), Money("3.33"), -50, "A"));
    ASSERT_TRUE(AddSell(*app_, mar_, D("06/04/2024"), Money("9"), Currency(), -1, "other day"));
    ExpectSaid(ui_, __FILE__, "mod_entire", Answer::kYes);
  }

  int64_t jan_ = 0;
  int64_t mar_ = 0;
};

TEST_F(ModEntireSellTest, ShowModEntireSell_Fifo_ReplacesTheDay) {
  OpenSecurity(SellMethod::kFifo);
  OnSale([&](SellSharesForm& form) {
    EXPECT_EQ(form.caption + "|" + form.date + "|" + form.notes, "Modify Entire Sell|06/03/2024|A");
    EXPECT_EQ(form.num_shares, 150);
    EXPECT_EQ(form.total_sale, Money("990"));
    form.num_shares = 180;
    SellShares_OK(*app_, form, true);
    EXPECT_TRUE(form.closed);
  });
  ShowModEntireSell(*app_, sec_id_, D("06/03/2024"));
  EXPECT_EQ(SellRows(), "01/01/2024-1 -100 555.56 5.56; 03/01/2024-1 -80 444.44 4.44");
  EXPECT_EQ(SellRows("06/04/2024"), "03/01/2024-1 -1 9 0");
  EXPECT_EQ(app_->window.display.total_shares, "19");
}

// A replacement that is not stored leaves the old sale as it was: not
// covered (the dialog stays open and is cancelled), declined at the
// same-date question of another day's sale, or refused by a file another
// user is writing.
struct KeptCase {
  double shares;
  const char* date;
  bool busy = false;
};

class ModEntireSellKeptTest : public ModEntireSellTest,
                              public ::testing::WithParamInterface<KeptCase> {};

TEST_P(ModEntireSellKeptTest, ShowModEntireSell_NotStored_OldSaleKept) {
  const KeptCase& c = GetParam();
  const std::string before = SellRows();
  OpenSecurity(SellMethod::kFifo);
  auto lock = c.busy ? LockFileElsewhere() : nullptr;
  OnSale([&](SellSharesForm& form) {
    form.num_shares = c.shares;
    form.date = c.date;
    SellShares_OK(*app_, form, true);
    lock.reset();
    EXPECT_FALSE(form.accepted || form.closed);
    SellShares_Cancel(*app_, form);
  });
  if (c.shares > 199) {
    ExpectSaid(ui_, __FILE__, "not_enough", Answer::kOk, {"199"});
  } else if (c.busy) {
    ExpectSaid(ui_, __FILE__, "busy");
  } else {
    ExpectSaid(ui_, __FILE__, "purchase_same_date", Answer::kNo);
    ExpectSaid(ui_, __FILE__, "not_changed");
  }
  ShowModEntireSell(*app_, sec_id_, D("06/03/2024"));
  EXPECT_EQ(SellRows(), before);
  EXPECT_EQ(SellRows("06/04/2024"), "03/01/2024-1 -1 9 0");
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(Sales, ModEntireSellKeptTest,
                         ::testing::Values(KeptCase{250, "06/03/2024"}, KeptCase{120, "06/04/2024"},
                                           KeptCase{150, "06/03/2024", true}));

TEST_F(ModEntireSellTest, ShowModEntireSell_Specific_StartsFromOldChoice) {
  OpenSecurity(SellMethod::kSpecificId);
  const std::string jan = "01/01/2024-1\t", mar = "03/01/2024-1\t";
  const std::string jan_no = "\t" + std::to_string(jan_), mar_no = "\t" + std::to_string(mar_);
  OnSale([&](SellSharesForm& form) {
    NumSharesSS_Click(*app_, form);
    EXPECT_EQ(form.num_shares, 110);
    SellShares_OK(*app_, form, true);
  });
  OnDialog<SellSpecificForm>("dlgSellSpecific", [&](SellSpecificForm& form) {
    EXPECT_EQ(form.shares_sold_rows, (std::vector{jan + "100" + jan_no, mar + "50" + mar_no}));
    EXPECT_EQ(form.shares_left_rows, std::vector{mar + "49" + mar_no});
    form.sold_row = 0;
    SellSpecific_Remove(*app_, form);  // the emptied January block comes back to the left
    EXPECT_EQ(form.shares_left_rows, (std::vector{mar + "49" + mar_no, jan + "40" + jan_no}));
    SellSpecific_OK(*app_, form);
  });
  OnDialog<NumSharesForm>("dlgNumShares", [&](NumSharesForm& form) {
    EXPECT_EQ(form.note, "Enter the number of shares to remove\n(0 - 100)");
    form.num_shares = 40;
    NumShares_OK(*app_, form);
  });
  ShowModEntireSell(*app_, sec_id_, D("06/03/2024"));
  EXPECT_EQ(SellRows(), "01/01/2024-1 -60 545.45 5.45; 03/01/2024-1 -50 454.55 4.55");
}

}  // namespace
}  // namespace lotwise::testing
