#include <gtest/gtest.h>

#include <vector>

#include "lots/sell_shares.h"
#include "reports/report_db.h"
#include "reports_basis/basis_fixture.h"

namespace lotwise::testing {
namespace {

// One step of a ledger: B buys a new block, S sells from block `block`, P
// splits it 1 to 2 adding `shares`, V pays a stock dividend of 1 per 10, A
// adjusts it by `shares` and `money`.
struct Op {
  char kind;
  const char* date;
  double shares;
  const char* money = "0";
  const char* fee = "0";
  int block = 0;
};

struct LotCase {
  const char* name;
  std::vector<Op> ops;
  Rows trans;  // the first block's rows
  Rows sched_d;
  std::string secs;
};

class LotWalkTest : public BasisTest, public ::testing::WithParamInterface<LotCase> {};

// Lot by lot, a sale takes shares x the lot's basis per share rounded to the
// cent half to even; a lot sold down to under 0.01 share holds nothing; a
// Schedule D row (cost = basis taken out + selling fee) is written for each
// sale from the year start to the year end, long term from acquisition + 12
// months + 1 day; later transactions are passed over.
TEST_P(LotWalkTest, CalcBasisSchedDRpt_Fifo) {
  const LotCase& c = GetParam();
  const int64_t sec = AddSecurity("IBM", kSellFifo);
  std::vector<int64_t> blocks;
  for (const Op& op : c.ops) {
    switch (op.kind) {
      case 'B':
        blocks.push_back(Buy(sec, op.date, op.shares, op.money, op.fee));
        break;
      case 'S':
        Sell(blocks[op.block], op.date, op.shares, op.money, op.fee);
        break;
      case 'P':
        Split(blocks[op.block], op.date, 1, 2, op.shares);
        break;
      case 'V':
        Split(blocks[op.block], op.date, 1, 10, op.shares, kTypeDividend);
        break;
      case 'A':
        Adjust(blocks[op.block], op.date, op.shares, op.money);
        break;
    }
  }
  ASSERT_TRUE(Run());
  EXPECT_EQ(TransRows(std::string(c.ops[0].date) + "-1"), c.trans);
  EXPECT_EQ(SchedDRows(), c.sched_d);
  EXPECT_EQ(SecsRows(), Rows{c.secs});
  EXPECT_EQ(Report()->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(
    Examples, LotWalkTest,
    ::testing::Values(
        LotCase{"ThirdOfLotSold",
                {{'B', "01/10/2024", 30, "1000"}, {'S', "06/03/2025", 10, "500"}},
                {"0 Buy 01/10/2024 01/10/2024 30 0 1000 30 1000 0 33.3333333333333",
                 "1 Sell 06/03/2025 01/10/2024 -10 500 -333.33 20 666.67 0 33.3335"},
                {"01/10/2024 06/03/2025 10 IBM 500 333.33 166.67 LT"},
                "IBM|IBM Corp|FIFO|20|666.67|33.3335"},
        // Long term from 03/16/2025: the day before is short term.
        LotCase{
            "SalesAroundLongTermDate",
            {{'B', "03/15/2024", 10, "100"},
             {'S', "03/15/2025", 4, "60"},
             {'S', "03/16/2025", 4, "60"}},
            {"0 Buy 03/15/2024 03/15/2024 10 0 100 10 100 0 10",
             "1 Sell 03/15/2025 03/15/2024 -4 60 -40 6 60 0 10",
             "2 Sell 03/16/2025 03/15/2024 -4 60 -40 2 20 0 10"},
            {"03/15/2024 03/15/2025 4 IBM 60 40 20 ST", "03/15/2024 03/16/2025 4 IBM 60 40 20 LT"},
            "IBM|IBM Corp|FIFO|2|20|10"},
        // 02/29/2024 + 12 months is 02/28/2025; long term from 03/01/2025.
        LotCase{
            "LeapDayLot",
            {{'B', "02/29/2024", 10, "100"},
             {'S', "02/28/2025", 2, "30"},
             {'S', "03/01/2025", 2, "30"}},
            {"0 Buy 02/29/2024 02/29/2024 10 0 100 10 100 0 10",
             "1 Sell 02/28/2025 02/29/2024 -2 30 -20 8 80 0 10",
             "2 Sell 03/01/2025 02/29/2024 -2 30 -20 6 60 0 10"},
            {"02/29/2024 02/28/2025 2 IBM 30 20 10 ST", "02/29/2024 03/01/2025 2 IBM 30 20 10 LT"},
            "IBM|IBM Corp|FIFO|6|60|10"},
        // The 2026 sale and the 2026 lot are not in the year ending 12/31/2025.
        LotCase{"AfterYearEndIgnored",
                {{'B', "01/10/2024", 10, "100"},
                 {'S', "06/03/2025", 5, "75"},
                 {'S', "01/05/2026", 5, "80"},
                 {'B', "02/01/2026", 7, "70"}},
                {"0 Buy 01/10/2024 01/10/2024 10 0 100 10 100 0 10",
                 "1 Sell 06/03/2025 01/10/2024 -5 75 -50 5 50 0 10"},
                {"01/10/2024 06/03/2025 5 IBM 75 50 25 LT"},
                "IBM|IBM Corp|FIFO|5|50|10"},
        // The tax year starts 01/01/2025: the 12/31/2024 sale moves the
        // totals only.
        LotCase{"PreYearStartSale",
                {{'B', "01/10/2023", 10, "100"},
                 {'S', "12/31/2024", 4, "50"},
                 {'S', "01/01/2025", 6, "90"}},
                {"0 Buy 01/10/2023 01/10/2023 10 0 100 10 100 0 10",
                 "1 Sell 12/31/2024 01/10/2023 -4 50 -40 6 60 0 10",
                 "2 Sell 01/01/2025 01/10/2023 -6 90 -60 0 0 0 0"},
                {"01/10/2023 01/01/2025 6 IBM 90 60 30 LT"},
                "IBM|IBM Corp|FIFO|0|0|0"},
        // 10 x 100 / 10.004 = 99.96002 -> 99.96; 0.004 share and 0.04 remain,
        // both snapped to 0.
        LotCase{"ResidueSnapsToZero",
                {{'B', "01/10/2024", 10.004, "100"}, {'S', "06/03/2025", 10, "150"}},
                {"0 Buy 01/10/2024 01/10/2024 10.004 0 100 10.004 100 0 9.99600159936026",
                 "1 Sell 06/03/2025 01/10/2024 -10 150 -99.96 0 0 0 0"},
                {"01/10/2024 06/03/2025 10 IBM 150 99.96 50.04 LT"},
                "IBM|IBM Corp|FIFO|0|0|0"},
        // The buying fee is basis; the selling fee adds to the Schedule D
        // cost (105 + 7) and is not taken off the price.
        LotCase{"FeesInBasisAndSaleCost",
                {{'B', "01/10/2024", 10, "100", "5"}, {'S', "06/03/2025", 10, "150", "7"}},
                {"0 Buy 01/10/2024 01/10/2024 10 0 105 10 105 5 10.5",
                 "1 Sell 06/03/2025 01/10/2024 -10 150 -105 0 0 7 0"},
                {"01/10/2024 06/03/2025 10 IBM 150 112 38 LT"},
                "IBM|IBM Corp|FIFO|0|0|0"},
        // Same day: the sale (rank 40) comes before the split (rank 60),
        // whatever the order of entry; the split keeps the cost and lowers
        // the basis.
        LotCase{"SameDaySaleBeforeSplit",
                {{'B', "01/10/2024", 100, "1000"},
                 {'P', "06/03/2025", 100},
                 {'S', "06/03/2025", 50, "600"}},
                {"0 Buy 01/10/2024 01/10/2024 100 0 1000 100 1000 0 10",
                 "1 Sell 06/03/2025 01/10/2024 -50 600 -500 50 500 0 10",
                 "2 Stock Split (1 to 2) 06/03/2025 01/10/2024 100 0 0 150 500 0 "
                 "3.33333333333333"},
                {"01/10/2024 06/03/2025 50 IBM 600 500 100 LT"},
                "IBM|IBM Corp|FIFO|150|500|3.33333333333333"},
        LotCase{"AdjustmentAndDividend",
                {{'B', "01/10/2024", 10, "100"},
                 {'A', "02/01/2025", 0, "25.5"},
                 {'V', "03/01/2025", 1}},
                {"0 Buy 01/10/2024 01/10/2024 10 0 100 10 100 0 10",
                 "1 Adjustment 02/01/2025 01/10/2024 0 0 25.5 10 125.5 0 12.55",
                 "2 Stock Div. (1 per 10) 03/01/2025 01/10/2024 1 0 0 11 125.5 0 "
                 "11.4090909090909"},
                {},
                "IBM|IBM Corp|FIFO|11|125.5|11.4090909090909"},
        // A file written before entries kept five decimals: the sale takes
        // 0.167 x 1000 / 0.333333 = 501.0005 of the shares as stored, 501.00.
        LotCase{"MoreDecimalsThanKept",
                {{'B', "01/10/2024", 0.333333, "1000"}, {'S', "06/03/2025", 0.167, "600"}},
                {"0 Buy 01/10/2024 01/10/2024 0.333333 0 1000 0.333333 1000 0 3000.003000003",
                 "1 Sell 06/03/2025 01/10/2024 -0.167 600 -501 0.166333 499 0 3000.0060120361"},
                {"01/10/2024 06/03/2025 0.167 IBM 600 501 99 LT"},
                "IBM|IBM Corp|FIFO|0.166333|499|3000.0060120361"},
        // 1 x 0.025 is half a cent: to the even cent, 0.02.
        LotCase{"HalfCentToEven",
                {{'B', "01/10/2024", 2, "0.05"}, {'S', "06/03/2025", 1, "1"}},
                {"0 Buy 01/10/2024 01/10/2024 2 0 0.05 2 0.05 0 0.025",
                 "1 Sell 06/03/2025 01/10/2024 -1 1 -0.02 1 0.03 0 0.03"},
                {"01/10/2024 06/03/2025 1 IBM 1 0.02 0.98 LT"},
                "IBM|IBM Corp|FIFO|1|0.03|0.03"}),
    [](const auto& info) { return info.param.name; });

// The dates of a tax year and of a lot's long-term start, month ends
// clamped.
TEST(BasisDates, YearStartAndLongTermDate) {
  EXPECT_EQ(YearStart(D("12/31/2025")).ToString(), "01/01/2025");
  EXPECT_EQ(YearStart(D("06/30/2025")).ToString(), "07/01/2024");
  EXPECT_EQ(YearStart(D("02/29/2024")).ToString(), "03/01/2023");
  EXPECT_EQ(LongTermDate(D("03/15/2024")).ToString(), "03/16/2025");
  EXPECT_EQ(LongTermDate(D("02/29/2024")).ToString(), "03/01/2025");
  EXPECT_EQ(LongTermDate(D("12/31/2024")).ToString(), "01/01/2026");
}

// The report tables' date text reads and writes as the storage layer's.
TEST(BasisDates, ReportDateText_SameAsStorageForm) {
  for (const char* date : {"01/01/1900", "02/29/2024", "12/31/9999", "07/04/0100"}) {
    EXPECT_EQ(ReportDateText(D(date)), D(date).ToIso());
    EXPECT_EQ(ReportDate(D(date).ToIso()), D(date));
  }
  for (const char* bad : {"", "2024-02-30", "2024-1-05", "20x4-01-05"}) {
    EXPECT_EQ(ReportDate(bad), Date()) << bad;
  }
}

}  // namespace
}  // namespace lotwise::testing
