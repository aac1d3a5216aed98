// Opening a security in the main window: the blocks list, the transactions
// of the first block and the total shares (ShowSecDisplay), for a security
// with state.range(0) blocks, each holding a buy of 100 shares and two sales
// of 10. Each figure is reported as the median and the 99th percentile of
// the individual openings; state.range(1) = 0 turns share recalculation off
// to show what the total costs.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "app/security_commands.h"
#include "bench_support.h"
#include "data/application.h"
#include "data/database.h"
#include "data/schema.h"
#include "ground/date.h"
#include "ground/environment.h"
#include "ground/ui_port.h"
#include "lots/security_display.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;
using bench::Clock;
using bench::Elapsed;
using bench::ReportPercentiles;

// A fresh Security Symbols File and Taxpayer File in a folder of their own,
// opened as the program opens them, with the portfolio "Growth" holding
// IBM; removed afterwards.
class Fixture {
 public:
  explicit Fixture(int blocks) {
    folder_ = bench::MakeScratchFolder();
    app_ = std::make_unique<Application>(ui_, env_, folder_.string(), "bench");
    const int64_t sec_id = bench::OpenGrowthHoldingIbm(*app_, folder_);
    Database& db = *app_->client;
    app_->current.port_name = "Growth";
    app_->window.state = kPortOpen;

    bench::AddDailyBlocks(db, sec_id, blocks, 2);
  }

  ~Fixture() {
    app_.reset();
    std::error_code ec;
    fs::remove_all(folder_, ec);
  }

  Application& app() { return *app_; }
  int messages() const { return ui_.messages; }

 private:
  bench::QuietUi ui_{Answer::kNo};
  SystemEnvironment env_;
  fs::path folder_;
  std::unique_ptr<Application> app_;
};

void BM_ShowSecDisplay(benchmark::State& state) {
  const int blocks = static_cast<int>(state.range(0));
  Fixture fixture(blocks);
  fixture.app().window.options.recalc_shares = state.range(1) == 1;
  const std::string expected_total =
      state.range(1) == 1 ? std::to_string(80 * blocks) : "Recalculate";
  std::vector<double> ms;
  for (auto _ : state) {
    auto start = Clock::now();
    ShowSecDisplay(fixture.app(), "IBM");
    ms.push_back(Elapsed(start));
    const SecurityDisplay& display = fixture.app().window.display;
    if (fixture.messages() != 0 || !display.visible ||
        display.blocks.size() != static_cast<size_t>(blocks) || display.transactions.size() != 3 ||
        display.total_shares != expected_total) {
      state.SkipWithError("the security did not open as expected");
      break;
    }
  }
  ReportPercentiles(state, std::move(ms));
}
BENCHMARK(BM_ShowSecDisplay)
    ->ArgNames({"blocks", "recalc"})
    ->Args({10000, 1})
    ->Args({10000, 0})
    ->Args({1000, 1})
    ->Iterations(100)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lotwise

BENCHMARK_MAIN();
