#include <gtest/gtest.h>

#include "lots/sell_shares.h"
#include "reports/basis_walk.h"
#include "reports/report_db.h"
#include "reports_basis/basis_fixture.h"

namespace lotwise::testing {
namespace {

// Average Cost - Single Cat.: the lots keep their own basis on their rows,
// and every transaction is copied onto the "Average Cost" pool (TransNo =
// same-day rank), where sales take the pool's average and the Schedule D
// rows are written. The security's totals are the pool's.
TEST_F(BasisTest, CalcBasisSchedDRpt_AverageSingle_PoolPricesSales) {
  const int64_t sec = AddSecurity("IBM", kSellAvgSingle);
  const int64_t a = Buy(sec, "01/05/2024", 100, "1000");     // 10 a share
  const int64_t b = Buy(sec, "03/01/2024", 50, "795", "5");  // 800: 16 a share
  Sell(b, "02/15/2025", 20, "300");
  Sell(a, "06/03/2025", 30, "450", "10");
  ASSERT_TRUE(Run());
  // The lots: B's sale takes 20 x 16, A's 30 x 10.
  EXPECT_EQ(TransRows("01/05/2024-1"),
            (Rows{"0 Buy 01/05/2024 01/05/2024 100 0 1000 100 1000 0 10",
                  "1 Sell 06/03/2025 01/05/2024 -30 450 -300 70 700 10 10"}));
  EXPECT_EQ(TransRows("03/01/2024-1"),
            (Rows{"0 Buy 03/01/2024 03/01/2024 50 0 800 50 800 5 16",
                  "1 Sell 02/15/2025 03/01/2024 -20 300 -320 30 480 0 16"}));
  // The pool: 150 shares for 1800 average 12; 20 x 12 = 240 leaves 130 for
  // 1560; 30 x 12 = 360 leaves 100 for 1200.
  EXPECT_EQ(TransRows("Average Cost"),
            (Rows{"10 Buy 01/05/2024 01/05/2024 100 0 1000 100 1000 0 10",
                  "10 Buy 03/01/2024 03/01/2024 50 0 800 150 1800 5 12",
                  "40 Sell 02/15/2025 03/01/2024 -20 300 -240 130 1560 0 12",
                  "40 Sell 06/03/2025 01/05/2024 -30 450 -360 100 1200 10 12"}));
  // Long term after each row's own lot: 03/01/2024 lot short on 02/15/2025.
  // The second sale's cost is 360 + fee 10.
  EXPECT_EQ(SchedDRows(), (Rows{"03/01/2024 02/15/2025 20 IBM 300 240 60 ST",
                                "01/05/2024 06/03/2025 30 IBM 450 370 80 LT"}));
  EXPECT_EQ(SecsRows(), Rows{"IBM|IBM Corp|Average Cost - Single Cat.|100|1200|12"});
  EXPECT_EQ(Report()->IntegrityCheck(), "ok");
}

// Average Cost - Double Cat.: lots sit in "Short Term Cost" until their
// long-term date, then move to "Long Term Cost" at the short-term pool's
// average, whether a later transaction of the lot triggers the move (lot A)
// or the year end reaches it (lot B, sold only before its date).
TEST_F(BasisTest, CalcBasisSchedDRpt_AverageDouble_LotsMoveToLongTerm) {
  const int64_t sec = AddSecurity("IBM", kSellAvgDouble);
  const int64_t a = Buy(sec, "01/05/2024", 100, "1000");  // long term from 01/06/2025
  const int64_t b = Buy(sec, "09/01/2024", 100, "3000");  // long term from 09/02/2025
  Sell(a, "03/10/2025", 40, "600");
  Sell(b, "05/01/2025", 50, "1100");
  ASSERT_TRUE(Run());
  EXPECT_EQ(TransRows("01/05/2024-1"),
            (Rows{"0 Buy 01/05/2024 01/05/2024 100 0 1000 100 1000 0 10",
                  "1 Sell 03/10/2025 01/05/2024 -40 600 -400 60 600 0 10"}));
  // Short term: 200 shares for 4000 average 20. A leaves 01/06/2025 at
  // 100 x 20 = 2000; B's sale takes 50 x 20 = 1000; B's remaining 50 leave
  // on 09/02/2025 at 1000, emptying the pool.
  EXPECT_EQ(TransRows("Short Term Cost"),
            (Rows{"10 Buy 01/05/2024 01/05/2024 100 0 1000 100 1000 0 10",
                  "10 Buy 09/01/2024 09/01/2024 100 0 3000 200 4000 0 20",
                  "0 Xfer to Block:Long Term Cost 01/06/2025 01/05/2024 -100 0 -2000 100 2000 0 20",
                  "40 Sell 05/01/2025 09/01/2024 -50 1100 -1000 50 1000 0 20",
                  "0 Xfer to Block:Long Term Cost 09/02/2025 09/01/2024 -50 0 -1000 0 0 0 0"}));
  // Long term: A arrives with 2000 (average 20, not its own 10); its sale
  // takes 40 x 20 = 800; B's 50 arrive with 1000: 110 shares for 2200.
  EXPECT_EQ(
      TransRows("Long Term Cost"),
      (Rows{"0 Xfer from Block:Short Term Cost 01/06/2025 01/05/2024 100 0 2000 100 2000 0 20",
            "40 Sell 03/10/2025 01/05/2024 -40 600 -800 60 1200 0 20",
            "0 Xfer from Block:Short Term Cost 09/02/2025 09/01/2024 50 0 1000 110 2200 0 20"}));
  EXPECT_EQ(SchedDRows(), (Rows{"09/01/2024 05/01/2025 50 IBM 1100 1000 100 ST",
                                "01/05/2024 03/10/2025 40 IBM 600 800 -200 LT"}));
  EXPECT_EQ(SecsRows(), Rows{"IBM|IBM Corp|Average Cost - Double Cat.|110|2200|20"});
  EXPECT_EQ(Report()->IntegrityCheck(), "ok");
}

// A sale on the very day a lot turns long term is a long-term pool sale:
// the lot reaches "Long Term Cost" before the day's transactions.
TEST_F(BasisTest, CalcBasisSchedDRpt_AverageDouble_SaleOnLongTermDate) {
  const int64_t sec = AddSecurity("IBM", kSellAvgDouble);
  Sell(Buy(sec, "01/05/2024", 100, "1000"), "01/06/2025", 30, "450");
  ASSERT_TRUE(Run());
  EXPECT_EQ(
      TransRows("Long Term Cost"),
      (Rows{"0 Xfer from Block:Short Term Cost 01/06/2025 01/05/2024 100 0 1000 100 1000 0 10",
            "40 Sell 01/06/2025 01/05/2024 -30 450 -300 70 700 0 10"}));
  EXPECT_EQ(SchedDRows(), Rows{"01/05/2024 01/06/2025 30 IBM 450 300 150 LT"});
  EXPECT_EQ(SecsRows(), Rows{"IBM|IBM Corp|Average Cost - Double Cat.|70|700|10"});
}

// A lot turns long term at the start of its long-term day (A: 01/06/2025):
// it leaves "Short Term Cost" at the average before that day's other rows,
// so B bought or split that day does not change the cost moved (100 x 10
// and 100 x 20, not 100 x 20 and 100 x 13.33).
TEST_F(BasisTest, CalcBasisSchedDRpt_AverageDouble_MovesBeforeTheDaysRows) {
  struct Case {
    const char* symbol;
    const char* b_date;
    bool split;
    Rows short_term;
    Rows long_term;
  };
  const Case cases[] = {
      {"BUY",
       "01/06/2025",
       false,
       {"10 Buy 01/05/2024 01/05/2024 100 0 1000 100 1000 0 10",
        "0 Xfer to Block:Long Term Cost 01/06/2025 01/05/2024 -100 0 -1000 0 0 0 0",
        "10 Buy 01/06/2025 01/06/2025 100 0 3000 100 3000 0 30"},
       {"0 Xfer from Block:Short Term Cost 01/06/2025 01/05/2024 100 0 1000 100 1000 0 10"}},
      {"SPLIT",
       "06/01/2024",
       true,
       {"10 Buy 01/05/2024 01/05/2024 100 0 1000 100 1000 0 10",
        "10 Buy 06/01/2024 06/01/2024 100 0 3000 200 4000 0 20",
        "0 Xfer to Block:Long Term Cost 01/06/2025 01/05/2024 -100 0 -2000 100 2000 0 20",
        "60 Stock Split (1 to 2) 01/06/2025 06/01/2024 100 0 0 200 2000 0 10"},
       {"0 Xfer from Block:Short Term Cost 01/06/2025 01/05/2024 100 0 2000 100 2000 0 20",
        "60 Stock Split (1 to 2) 01/06/2025 01/05/2024 100 0 0 200 2000 0 10"}},
  };
  for (const Case& c : cases) {
    const int64_t sec = AddSecurity(c.symbol, kSellAvgDouble);
    const int64_t a = Buy(sec, "01/05/2024", 100, "1000");
    const int64_t b = Buy(sec, c.b_date, 100, "3000");
    if (c.split) {
      for (int64_t block : {a, b}) Split(block, "01/06/2025", 1, 2, 100);
    }
  }
  ASSERT_TRUE(Run(BasisKind::kBoth, "03/31/2025"));
  for (const Case& c : cases) {
    EXPECT_EQ(TransRows("Short Term Cost", c.symbol), c.short_term) << c.symbol;
    EXPECT_EQ(TransRows("Long Term Cost", c.symbol), c.long_term) << c.symbol;
  }
}

// A lot held in two portfolios feeds one pool per security.
TEST_F(BasisTest, CalcBasisSchedDRpt_AverageSingle_OnePoolForAllPortfolios) {
  Portfolio("Income");
  Buy(AddSecurity("IBM", kSellAvgSingle), "01/05/2024", 10, "100");
  Sell(Buy(AddSecurity("IBM", kSellAvgSingle, "Income"), "02/05/2024", 10, "300"), "06/03/2025", 5,
       "100");
  ASSERT_TRUE(Run());
  // 20 shares for 400: the sale takes 5 x 20.
  EXPECT_EQ(SchedDRows(), Rows{"02/05/2024 06/03/2025 5 IBM 100 100 0 LT"});
  EXPECT_EQ(SecsRows(), Rows{"IBM|IBM Corp|Average Cost - Single Cat.|15|300|20"});
  EXPECT_EQ(CountReportRows("BA Blocks"), 3);
}

// A pool that does not belong to the method is an internal error.
TEST_F(BasisTest, CalcAvgBlock_ForeignPool_ErrorInBlockId) {
  struct Case {
    int16_t method;
    const char* pool;
  };
  for (const Case& c : {Case{kSellAvgSingle, "Bogus"}, Case{kSellAvgSingle, "Long Term Cost"},
                        Case{kSellAvgDouble, "Average Cost"}}) {
    auto report = OpenReportDb(*app_);
    BasisRun run{.app = *app_, .client = *app_->client, .report = *report};
    BlockTotals totals;
    ui_.Expect(std::string("Error in BlockID(") + c.pool + ") in CalcAvgBlock", "Error!",
               Icon::kCritical, Buttons::kOk);
    EXPECT_FALSE(CalcAvgBlock(run, c.method, "IBM", c.pool, totals));
  }
}

}  // namespace
}  // namespace lotwise::testing
