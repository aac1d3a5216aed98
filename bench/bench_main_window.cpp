// Opening a security in the desktop program's main window: the core reads
// the blocks, the first block's transactions and the total shares, the
// window's grids take the rows, and the window paints once. The security
// has 10,000 blocks with five transactions each (a buy and four sales):
// 50,000 transactions. Runs on Qt's offscreen platform; each figure is the
// median and 99th percentile of the individual openings.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTableView>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/security_commands.h"
#include "bench_support.h"
#include "data/application.h"
#include "data/database.h"
#include "data/schema.h"
#include "ground/date.h"
#include "ground/environment.h"
#include "lots/security_display.h"
#include "lots/security_list.h"
#include "ui/main_window.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;
using bench::Clock;
using bench::Elapsed;
using bench::ReportPercentiles;

constexpr int kSalesPerBlock = 4;

// The Security Symbols File and a Taxpayer File with the portfolio "Growth"
// holding IBM, written with direct inserts in one unit of work; the
// portfolio is open (PORTOPEN) in a shown main window.
class Fixture {
 public:
  explicit Fixture(int blocks) {
    folder_ = bench::MakeScratchFolder();
    app_ = std::make_unique<Application>(ui_, env_, folder_.string(), "bench");
    const int64_t sec_id = bench::OpenGrowthHoldingIbm(*app_, folder_);
    Database& db = *app_->client;

    bench::AddDailyBlocks(db, sec_id, blocks, kSalesPerBlock);

    app_->current.port_name = "Growth";
    State(*app_, kPortOpen);
    window_ = std::make_unique<ui::MainWindow>(*app_);
    window_->show();
    QCoreApplication::processEvents();
  }

  ~Fixture() {
    window_.reset();
    app_.reset();
    std::error_code ec;
    fs::remove_all(folder_, ec);
  }

  Application& app() { return *app_; }
  ui::MainWindow& window() { return *window_; }
  int messages() const { return ui_.messages; }

 private:
  bench::QuietUi ui_{Answer::kNo};
  SystemEnvironment env_;
  fs::path folder_;
  std::unique_ptr<Application> app_;
  std::unique_ptr<ui::MainWindow> window_;
};

void BM_OpenSecurityInMainWindow(benchmark::State& state) {
  const int blocks = static_cast<int>(state.range(0));
  Fixture fixture(blocks);
  Application& app = fixture.app();
  ui::MainWindow& window = fixture.window();
  auto* grid = window.findChild<QTableView*>("SSdgBlocks");
  const std::string expected_total = std::to_string((100 - 10 * kSalesPerBlock) * blocks);
  std::vector<double> ms;
  for (auto _ : state) {
    // Back to the portfolio, so that every opening fills the grids anew.
    state.PauseTiming();
    HideSecDisplay(app);
    State(app, kPortOpen);
    window.Refresh();
    QCoreApplication::processEvents();
    state.ResumeTiming();

    auto start = Clock::now();
    SecList_Select(app, 0);
    window.Refresh();
    window.repaint();
    ms.push_back(Elapsed(start));

    const SecurityDisplay& display = app.window.display;
    if (fixture.messages() != 0 || app.window.state != kSecOpen ||
        grid->model()->rowCount() != blocks ||
        display.transactions.size() != static_cast<size_t>(1 + kSalesPerBlock) ||
        display.total_shares != expected_total) {
      state.SkipWithError("the security did not open as expected");
      break;
    }
  }
  ReportPercentiles(state, std::move(ms));
}
BENCHMARK(BM_OpenSecurityInMainWindow)
    ->ArgNames({"blocks"})
    ->Arg(10000)
    ->Iterations(30)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lotwise

int main(int argc, char** argv) {
  // No display is needed: the window paints into memory.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
