#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <sstream>
#include <vector>

#include "ground/value_helpers.h"
#include "lots/sell_shares.h"
#include "reports/basis_walk.h"
#include "reports_basis/basis_fixture.h"

namespace lotwise::testing {
namespace {

class BasisInvariantTest : public BasisTest, public ::testing::WithParamInterface<GoldenCase> {
 protected:
  struct Lot {
    int64_t block_no;
    double held;
  };

  std::string Cents(std::mt19937& rng, int low, int high) {
    return Currency::FromCents(std::uniform_int_distribution<int>(low, high)(rng)).ToString();
  }

  // A valid ledger of about 300 transactions over three securities from
  // 2023 to late 2025: buys and reinvestments, sales taken oldest lot
  // first, 2-for-1 and 3-for-2 splits of every lot, cost adjustments.
  // Shares are kept to five decimals, as the entry dialogs keep them.
  void BuildLedger(uint32_t seed, lotwise::SellMethod method) {
    Database::Transaction unit(*app_->client);
    std::mt19937 rng(seed);
    std::vector<int64_t> secs;
    std::vector<std::vector<Lot>> lots(3);
    for (const char* symbol : {"AAA", "BBB", "CCC"}) secs.push_back(AddSecurity(symbol, method));
    Date date = D("01/02/2023");
    for (int i = 0; i < 300; ++i) {
      date = date.AddDays(static_cast<int>(rng() % 7));
      const std::string day = date.ToString();
      const size_t s = rng() % 3;
      std::vector<Lot>& held = lots[s];
      double total = 0;
      for (const Lot& lot : held) total += lot.held;
      const unsigned op = rng() % 100;
      if (op < 40 || total < 1) {
        const double shares = 1 + rng() % 200;
        const int type = op % 4 == 0 ? kTypeReinvest : kTypeBuy;
        held.push_back({Buy(secs[s], day.c_str(), shares, Cents(rng, 100, 900000).c_str(),
                            Cents(rng, 0, 2000).c_str(), type),
                        shares});
      } else if (op < 80) {
        double to_sell = 1 + static_cast<double>(rng() % static_cast<unsigned>(total));
        for (Lot& lot : held) {
          double take = std::min(lot.held, to_sell);
          if (take <= 0) continue;
          // A lot is never left with less than a hundredth of a share.
          if (lot.held - take < 0.01) take = lot.held;
          Sell(lot.block_no, day.c_str(), take, Cents(rng, 0, 900000).c_str(),
               Cents(rng, 0, 1500).c_str());
          lot.held = RoundDouble(lot.held - take, 5);
          to_sell = RoundDouble(to_sell - take, 5);
        }
      } else if (op < 90) {
        const bool two_for_one = op % 2 == 0;
        for (Lot& lot : held) {
          if (lot.held <= 0) continue;
          const double added = RoundDouble(two_for_one ? lot.held : lot.held / 2, 5);
          Split(lot.block_no, day.c_str(), two_for_one ? 1 : 2, two_for_one ? 2 : 3, added);
          lot.held = RoundDouble(lot.held + added, 5);
        }
        // A same-day sale would come before the split.
        date = date.AddDays(1);
      } else {
        std::vector<Lot*> open;
        for (Lot& lot : held) {
          if (lot.held > 0) open.push_back(&lot);
        }
        Adjust(open[rng() % open.size()]->block_no, day.c_str(), 0, Cents(rng, 1, 50000).c_str());
      }
    }
    unit.Commit();
  }

  static std::string Sql(const std::string& name) {
    for (const GoldenCase& c : ReadCases(__FILE__, "invariant_queries.txt")) {
      if (c.name == name) return c.Text("");
    }
    return "";
  }
  int64_t ClientUnits(const char* sql) {
    Query q = app_->client->Select(sql, {{"ys", D("07/01/2024")}, {"ye", D("06/30/2025")}});
    q.Next();
    return q.Int("n");
  }
};

// Whatever the ledger and the method: every sale of the tax year is on the
// Schedule D with its proceeds; no holding goes below zero; the cost that
// came in (buys with their fees, adjustments) is exactly the cost still
// held plus the cost the sales took out, and under FIFO so for each lot;
// the securities' totals are the shares of the ledger and the cost held.
TEST_P(BasisInvariantTest, CalcBasisSchedDRpt_RandomLedger_Invariants) {
  // "seed method"
  std::istringstream words(GetParam().Lines("").at(0));
  uint32_t seed = 0;
  int code = 0;
  words >> seed >> code;
  const lotwise::SellMethod method = SellMethodAsStored(code);
  BuildLedger(seed, method);
  ASSERT_TRUE(Run(BasisKind::kBoth, "06/30/2025"));
  auto report = Report();
  EXPECT_EQ(report->IntegrityCheck(), "ok");

  Query sched =
      report->Select(R"(SELECT count(*) AS rows, total("Sale Price") AS proceeds FROM "Sched D")");
  ASSERT_TRUE(sched.Next());
  EXPECT_EQ(sched.Int("rows"),
            ClientUnits(R"(SELECT count(*) AS n FROM "Sell" WHERE "Date" BETWEEN :ys AND :ye)"));
  EXPECT_EQ(static_cast<int64_t>(sched.Double("proceeds")),
            ClientUnits(R"(SELECT total("Sale Price") AS n FROM "Sell" )"
                        R"(WHERE "Date" BETWEEN :ys AND :ye)"));

  Query lowest = report->Select(R"(SELECT min("Total Shares") AS low FROM "BA Trans")");
  ASSERT_TRUE(lowest.Next());
  EXPECT_GE(lowest.Double("low"), 0);

  // Cost in by lot (Block ID), from the Taxpayer File.
  std::map<std::string, int64_t> cost_in;
  Query in = app_->client->Select(Sql("cost_in"), {{"ye", D("06/30/2025")}});
  int64_t total_in = 0;
  while (in.Next()) {
    cost_in[in.Text("Block ID")] = static_cast<int64_t>(in.Double("n"));
    total_in += static_cast<int64_t>(in.Double("n"));
  }
  // Cost still held and cost taken out by sales, per block of the report:
  // the lots under FIFO, the pools under the average methods.
  Query out = report->Select(Sql("held_and_sold"));
  int64_t total_held_and_sold = 0;
  int64_t total_held = 0;
  while (out.Next()) {
    const bool pool = out.Text("Port Name") == kPoolPortName;
    const auto held_and_sold = out.Int("Held") + static_cast<int64_t>(out.Double("Sold"));
    if (pool == (method != SellMethod::kFifo)) {
      total_held_and_sold += held_and_sold;
      total_held += out.Int("Held");
    }
    if (method == SellMethod::kFifo) {
      EXPECT_EQ(held_and_sold, cost_in[out.Text("Block ID")]) << out.Text("Block ID");
    }
  }
  EXPECT_EQ(total_held_and_sold, total_in);

  Query secs = report->Select(R"(SELECT sum("Total Cost") AS cost, min("Total Shares") AS low, )"
                              R"(sum("Total Shares") AS shares FROM "BA Secs")");
  ASSERT_TRUE(secs.Next());
  EXPECT_GE(secs.Double("low"), 0);
  Query shares = app_->client->Select(Sql("shares"), {{"ye", D("06/30/2025")}});
  ASSERT_TRUE(shares.Next());
  EXPECT_NEAR(secs.Double("shares"), shares.Double("n"), 1e-6);
  EXPECT_EQ(secs.Int("cost"), total_held);
}

INSTANTIATE_TEST_SUITE_P(Ledgers, BasisInvariantTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "random_ledgers.txt")),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace lotwise::testing
