// Storage latency of the Taxpayer File as the program runs it (rollback
// journal, synchronous=FULL, on the local disk of the temporary folder):
// single entries through the transaction store, and the share total of a
// large security. Each figure is reported as the median and the 99th
// percentile of the individual calls. The entries are also measured with a
// journal that is truncated instead of deleted after each commit (same
// durability, one file-system operation fewer) for comparison.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench_support.h"
#include "data/application.h"
#include "data/database.h"
#include "data/schema.h"
#include "data/transaction_store.h"
#include "ground/date.h"
#include "ground/environment.h"
#include "ground/ui_port.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;
using bench::Clock;
using bench::Elapsed;
using bench::ReportPercentiles;

// A fresh Taxpayer File in a folder of its own, opened as the program opens
// it, with one portfolio holding one security; removed afterwards.
class Fixture {
 public:
  Fixture() {
    folder_ = bench::MakeScratchFolder();
    const std::string path = (folder_ / "BENCH01.mdb").string();
    CreateTemplate(FileKind::kTaxpayer, path);
    app_ = std::make_unique<Application>(ui_, env_, folder_.string(), "bench");
    app_->client = Database::Open(path);
    app_->client->Execute(
        R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line", "Client Code") VALUES ('Growth', ' ', 'B01'))");
    app_->client->Execute(
        R"(INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line") VALUES ('IBM', 'Growth', ' '))");
    sec_id_ = app_->client->LastInsertId();
    app_->current.port_name = "Growth";
    app_->current.sec_id = sec_id_;
  }

  ~Fixture() {
    app_.reset();
    std::error_code ec;
    fs::remove_all(folder_, ec);
  }

  // Keeps the rollback journal file between commits, truncated to nothing.
  void TruncateJournal() { app_->client->Execute("PRAGMA journal_mode = TRUNCATE"); }

  // Adds `count` blocks, each with a buy and `sells` sales, in one unit;
  // returns their block numbers. Dates start at `first`, one per block.
  std::vector<int64_t> Populate(int count, int sells, Date first) {
    std::vector<int64_t> blocks;
    Database& db = *app_->client;
    Database::Transaction unit(db);
    for (int i = 0; i < count; ++i) {
      Date date = first.AddDays(i);
      db.Execute(R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, :id, :d))",
                 {{"s", sec_id_}, {"id", date.ToString() + "-1"}, {"d", date}});
      const int64_t block = db.LastInsertId();
      blocks.push_back(block);
      db.Execute(
          R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Cost", "Shares", "Fee", "Notes", "Prec Sort") )"
          R"(VALUES (:b, :d, 10, :c, 100, 0, '', 10))",
          {{"b", block}, {"d", date}, {"c", Currency::FromCents(150000)}});
      for (int s = 1; s <= sells; ++s) {
        db.Execute(
            R"(INSERT INTO "Sell" ("Block No", "Date", "Sale Price", "Fee", "Shares", "Notes", "Prec Sort") )"
            R"(VALUES (:b, :d, :p, 0, -10, '', 40))",
            {{"b", block}, {"d", date.AddDays(s)}, {"p", Currency::FromCents(20000)}});
      }
    }
    unit.Commit();
    return blocks;
  }

  Application& app() { return *app_; }
  int64_t sec_id() const { return sec_id_; }

 private:
  bench::QuietUi ui_{Answer::kYes};
  SystemEnvironment env_;
  fs::path folder_;
  std::unique_ptr<Application> app_;
  int64_t sec_id_ = 0;
};

const Date kFirstDay = Date::FromYmd(1990, 1, 2);

// One buy per call, each on a new date, into a security that already holds
// state.range(0) blocks (the same-date check reads all of its buys);
// state.range(1) = 1 truncates the journal instead of deleting it.
void BM_AddBuy(benchmark::State& state) {
  Fixture fixture;
  if (state.range(1) == 1) fixture.TruncateJournal();
  fixture.Populate(static_cast<int>(state.range(0)), 0, kFirstDay);
  Date date = kFirstDay.AddDays(static_cast<int>(state.range(0)));
  std::vector<double> ms;
  for (auto _ : state) {
    std::string block_id;
    date = date.AddDays(1);
    auto start = Clock::now();
    bool ok = AddBuy(fixture.app(), fixture.sec_id(), block_id, kTypeBuy, date,
                     Currency::FromCents(123456), 100, Currency::FromCents(995), "bench");
    ms.push_back(Elapsed(start));
    if (!ok) state.SkipWithError("AddBuy failed");
  }
  ReportPercentiles(state, std::move(ms));
}
BENCHMARK(BM_AddBuy)
    ->ArgNames({"blocks", "truncate"})
    ->Args({0, 0})
    ->Args({10000, 0})
    ->Args({0, 1})
    ->Iterations(500)
    ->Unit(benchmark::kMillisecond);

// One sale per call into a different block each time (no same-date
// question), the security holding state.range(0) blocks; state.range(1) as
// for BM_AddBuy.
void BM_AddSell(benchmark::State& state) {
  Fixture fixture;
  if (state.range(1) == 1) fixture.TruncateJournal();
  std::vector<int64_t> blocks = fixture.Populate(static_cast<int>(state.range(0)), 0, kFirstDay);
  const Date sale_day = Date::FromYmd(2024, 6, 3);
  std::vector<double> ms;
  size_t next = 0;
  for (auto _ : state) {
    const int64_t block = blocks[next % blocks.size()];
    const Date date = sale_day.AddDays(static_cast<int>(next / blocks.size()));
    ++next;
    auto start = Clock::now();
    bool ok = AddSell(fixture.app(), block, date, Currency::FromCents(25000),
                      Currency::FromCents(500), -10, "bench");
    ms.push_back(Elapsed(start));
    if (!ok) state.SkipWithError("AddSell failed");
  }
  ReportPercentiles(state, std::move(ms));
}
BENCHMARK(BM_AddSell)
    ->ArgNames({"blocks", "truncate"})
    ->Args({1000, 0})
    ->Args({10000, 0})
    ->Args({1000, 1})
    ->Iterations(500)
    ->Unit(benchmark::kMillisecond);

// The share total of a security with state.range(0) blocks, each holding a
// buy of 100 shares and two sales of 10.
void BM_TotalSharesPerTable(benchmark::State& state) {
  Fixture fixture;
  const int count = static_cast<int>(state.range(0));
  fixture.Populate(count, 2, kFirstDay);
  const double expected = 80.0 * count;
  std::vector<double> ms;
  for (auto _ : state) {
    auto start = Clock::now();
    Query totals =
        fixture.app().client->SelectSaved("Total Shares Per Table", {{"lSecID", fixture.sec_id()}});
    double total = 0;
    while (totals.Next()) {
      if (!totals.IsNull("Total Shares")) total += totals.Double("Total Shares");
    }
    ms.push_back(Elapsed(start));
    if (total != expected) state.SkipWithError("wrong total");
    benchmark::DoNotOptimize(total);
  }
  ReportPercentiles(state, std::move(ms));
}
BENCHMARK(BM_TotalSharesPerTable)
    ->ArgName("blocks")
    ->Arg(10000)
    ->Iterations(200)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lotwise

BENCHMARK_MAIN();
