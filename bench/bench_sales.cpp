// Sales as the sale dialog runs them, on a Taxpayer File opened as the
// program opens it (rollback journal, synchronous=FULL, on the local disk of
// the temporary folder): the FIFO selection and the writing of the rows of
// one large sale over many small blocks, and a long run of one-share sales
// of one security, whose per-sale time must stay flat as sales accumulate.

#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "bench_support.h"

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

#include "data/application.h"
#include "data/database.h"
#include "data/schema.h"
#include "ground/date.h"
#include "ground/environment.h"
#include "ground/ui_port.h"
#include "lots/security_display.h"
#include "lots/sell_shares.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;
using bench::Clock;
using bench::Elapsed;
using bench::ReportPercentiles;

// A fresh Taxpayer File in a folder of its own with one portfolio holding
// one security, open in the main window; removed afterwards.
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
    app_->client->Execute(
        R"(INSERT INTO "Sell Method" ("Sec Symbol", "Sell Method") VALUES ('IBM', 1))");
    app_->current.port_name = "Growth";
    app_->current.sec_id = app_->client->LastInsertId();
    app_->current.sec_symbol = "IBM";
    app_->window.display.sell_method = SellMethod::kFifo;
  }

  ~Fixture() {
    app_.reset();
    std::error_code ec;
    fs::remove_all(folder_, ec);
  }

  // Buys `count` one-share lots, one a day from `first`, in one unit, and
  // loads the blocks grid as the main window shows it.
  void BuyLots(int count, Date first) {
    Database& db = *app_->client;
    {
      Database::Transaction unit(db);
      for (int i = 0; i < count; ++i) {
        const Date date = first.AddDays(i);
        db.Execute(R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, :id, :d))",
                   {{"s", app_->current.sec_id}, {"id", date.ToString() + "-1"}, {"d", date}});
        db.Execute(
            R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Cost", "Shares", "Fee", "Notes", "Prec Sort") )"
            R"(VALUES (:b, :d, 10, :c, 1, 0, '', 10))",
            {{"b", db.LastInsertId()}, {"d", date}, {"c", Currency::FromCents(2500)}});
      }
      unit.Commit();
    }
    DisplayBlock(*app_);
  }

  // One FIFO sale of `shares` as the OK button writes it; returns false when
  // it was not written whole.
  bool Sell(Date date, double shares, Currency price, Currency fee) {
    if (!SelectSharesByFIFO(*app_, shares, date)) return false;
    const bool added =
        AddAllSales(*app_, app_->sale_lists.selected, date, shares, price, fee, "bench");
    app_->sale_lists.Clear();
    return added && ui_.messages == 0;
  }

  Application& app() { return *app_; }

 private:
  bench::QuietUi ui_{Answer::kYes};
  SystemEnvironment env_;
  fs::path folder_;
  std::unique_ptr<Application> app_;
};

// The processor time the program itself spent, in milliseconds, without
// the system's time in writing and flushing the file: on a machine shared
// with other work the wall time mostly measures the disk.
double CpuMs() {
#if defined(_WIN32)
  return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
#else
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec) * 1e3 +
         static_cast<double>(usage.ru_utime.tv_usec) / 1e3;
#endif
}

const Date kFirstLot = Date::FromYmd(1950, 1, 2);
const Date kSaleDay = Date::FromYmd(2024, 6, 3);

// A 1,000-share sale across 10,000 one-share lots: 1,000 Sell rows. The
// FIFO selection and the writing are timed apart; the sale's rows are
// removed between calls, untimed.
void BM_SaleOverManyLots(benchmark::State& state) {
  Fixture fixture;
  fixture.BuyLots(10000, kFirstLot);
  Application& app = fixture.app();
  double select_ms = 0;
  double write_ms = 0;
  double select_user_ms = 0;
  double write_user_ms = 0;
  for (auto _ : state) {
    auto start = Clock::now();
    double cpu = CpuMs();
    const bool selected = SelectSharesByFIFO(app, 1000, kSaleDay);
    const double select = Elapsed(start);
    select_user_ms += CpuMs() - cpu;
    start = Clock::now();
    cpu = CpuMs();
    const bool added =
        AddAllSales(app, app.sale_lists.selected, kSaleDay, 1000, Currency::FromCents(2500000),
                    Currency::FromCents(1999), "bench");
    const double write = Elapsed(start);
    write_user_ms += CpuMs() - cpu;
    state.SetIterationTime((select + write) / 1000.0);
    select_ms += select;
    write_ms += write;
    if (!selected || !added || app.sale_lists.selected.entries.size() != 1000) {
      state.SkipWithError("sale failed");
      break;
    }
    app.sale_lists.Clear();
    app.client->Execute(R"(DELETE FROM "Sell")");
  }
  const double n = static_cast<double>(state.iterations());
  state.counters["select_ms"] = select_ms / n;
  state.counters["write_ms"] = write_ms / n;
  state.counters["select_user_ms"] = select_user_ms / n;
  state.counters["write_user_ms"] = write_user_ms / n;
}
BENCHMARK(BM_SaleOverManyLots)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);

// 16,500 one-share lots, then 10,000 one-share FIFO sales, one a day, while
// the later 6,500 lots stay open. Reports the mean time per sale of the
// first and of the last thousand sales and the time of the whole run.
// Argument 0: every sale is its own durable commit, as entered by hand (the
// run then mostly waits for the disk). Argument 1: the whole run is one unit
// of work, as an import stores it, which shows the program's own cost.
void BM_LongRunOfSales(benchmark::State& state) {
  constexpr int kLots = 16500;
  constexpr int kSales = 10000;
  for (auto _ : state) {
    Fixture fixture;
    fixture.BuyLots(kLots, kFirstLot);
    std::vector<double> ms;
    std::vector<double> cpu_ms;
    ms.reserve(kSales);
    cpu_ms.reserve(kSales);
    std::optional<Database::Transaction> import_unit;
    if (state.range(0) == 1) import_unit.emplace(*fixture.app().client);
    const auto run_start = Clock::now();
    for (int i = 0; i < kSales; ++i) {
      const auto start = Clock::now();
      const double cpu = CpuMs();
      const bool ok =
          fixture.Sell(kSaleDay.AddDays(i), 1, Currency::FromCents(3000), Currency::FromCents(10));
      ms.push_back(Elapsed(start));
      cpu_ms.push_back(CpuMs() - cpu);
      if (!ok) {
        state.SkipWithError("a sale failed");
        return;
      }
    }
    if (import_unit) import_unit->Commit();
    const double run_ms = Elapsed(run_start);
    state.SetIterationTime(run_ms / 1000.0);
    // Mean of the first or last thousand values.
    auto mean = [](const std::vector<double>& values, bool last) {
      const size_t from = last ? values.size() - 1000 : 0;
      double sum = 0;
      for (size_t i = from; i < from + 1000; ++i) sum += values[i];
      return sum / 1000;
    };
    state.counters["first_1000_ms_per_sale"] = mean(ms, false);
    state.counters["last_1000_ms_per_sale"] = mean(ms, true);
    state.counters["first_1000_user_ms_per_sale"] = mean(cpu_ms, false);
    state.counters["last_1000_user_ms_per_sale"] = mean(cpu_ms, true);
    state.counters["run_s"] = run_ms / 1000;
  }
}
BENCHMARK(BM_LongRunOfSales)
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace
}  // namespace lotwise

BENCHMARK_MAIN();
