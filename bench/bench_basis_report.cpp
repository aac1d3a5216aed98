// The Basis Analysis and Schedule D computation of a whole taxpayer whose
// Taxpayer File holds a million transactions, measured against its floor:
// one plain scan of the same transaction rows and the plain insert of as
// many report rows as the computation wrote, through the same storage
// layer. The ratio of the two and the program's peak memory are the
// figures that matter; the ledger is generated once and kept in the
// temporary folder between runs.
//
// LOTWISE_BENCH_TRANSACTIONS=n in the environment generates and measures
// a ledger of n transactions instead (a small one for a profiler).

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench_support.h"
#include "ledger_generator.h"

#if !defined(_WIN32)
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "app/app_state.h"
#include "data/application.h"
#include "data/database.h"
#include "data/schema.h"
#include "ground/date.h"
#include "ground/environment.h"
#include "ground/ui_port.h"
#include "lots/sell_method.h"
#include "reports/basis_report.h"

namespace lotwise {
namespace {

namespace fs = std::filesystem;
using bench::Clock;
using bench::Elapsed;

const Date kYearEnd = Date::FromYmd(2024, 12, 31);
constexpr const char* kClientFileName = "BENCH.MDB";
constexpr const char* kCentralName = "CENTRAL.MDB";

// Nobody is at the keyboard; the method dialog, asked about a security that
// was never sold, is answered FIFO "for all" as a user would answer it once.
class BenchUi : public bench::QuietUi {
 public:
  BenchUi() : QuietUi(Answer::kYes) {}
  void RunModal(DialogForm& form) override {
    if (form.Name() != "dlgMethod" || app == nullptr) return;
    auto& method = static_cast<MethodForm&>(form);
    ++method_dialogs;
    Method_KeyPress(method, 'F');
    method.option1 = true;
    Method_OK(*app, method);
  }

  Application* app = nullptr;
  int method_dialogs = 0;
};

// Processor time (user + system) of this process in milliseconds.
double CpuMs() {
#if defined(_WIN32)
  return 0;
#else
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return (static_cast<double>(usage.ru_utime.tv_sec) + static_cast<double>(usage.ru_stime.tv_sec)) *
             1e3 +
         (static_cast<double>(usage.ru_utime.tv_usec) +
          static_cast<double>(usage.ru_stime.tv_usec)) /
             1e3;
#endif
}

// The largest resident set this process has had, in megabytes.
double PeakRssMb() {
#if defined(_WIN32)
  return 0;
#else
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
#endif
}

int64_t TransactionCount() {
  if (const char* text = std::getenv("LOTWISE_BENCH_TRANSACTIONS")) {
    const long long n = std::atoll(text);
    if (n > 0) return n;
  }
  return 1'000'000;
}

// The generated files of one size, made once and kept between runs under
// a name that changes with the generator and the data version.
struct Corpus {
  fs::path folder;
  bench::LedgerCounts counts;
  double generation_ms = 0;
  bool cached = false;
  std::string client_path() const { return (folder / kClientFileName).string(); }
  std::string central_path() const { return (folder / kCentralName).string(); }
};

fs::path CacheFolder(int64_t transactions) {
  return fs::temp_directory_path() / "lotwise-bench-1m" /
         ("g" + std::to_string(bench::kLedgerGeneratorVersion) + "-" + kCurrentDataVersion + "-" +
          std::to_string(transactions));
}

// Generates the files into a folder of their own and moves it into place
// only when complete, so that an interrupted run leaves no half file to be
// taken for a cached one. Runs in a child process where it can, so that
// the generator's page cache does not count in the measured peak memory.
void GenerateInto(const fs::path& folder, int64_t transactions) {
  const fs::path partial = folder.string() + ".partial-" + std::to_string(std::random_device()());
  fs::remove_all(partial);
  fs::create_directories(partial);
  bench::LedgerShape shape;
  shape.transactions = transactions;
  const auto start = Clock::now();
  bench::WriteLedger(shape, (partial / kClientFileName).string(),
                     (partial / kCentralName).string());
  std::ofstream(partial / "generation_ms.txt") << Elapsed(start) << "\n";
  std::error_code ec;
  fs::rename(partial, folder, ec);
  // Another run may have finished the same files first; theirs are as good.
  if (ec) fs::remove_all(partial, ec);
}

bench::LedgerCounts CountLedger(Database& db) {
  auto count = [&](const char* sql) {
    Query q = db.Select(sql);
    q.Next();
    return q.Int("n");
  };
  bench::LedgerCounts c;
  c.buys = count(R"(SELECT count(*) AS n FROM "Buy" WHERE "Type" = 10)");
  c.reinvestments = count(R"(SELECT count(*) AS n FROM "Buy" WHERE "Type" = 20)");
  c.sells = count(R"(SELECT count(*) AS n FROM "Sell")");
  c.splits = count(R"(SELECT count(*) AS n FROM "Split" WHERE "Type" = 11)");
  c.dividends = count(R"(SELECT count(*) AS n FROM "Split" WHERE "Type" = 21)");
  c.adjustments = count(R"(SELECT count(*) AS n FROM "Adjust")");
  c.blocks = count(R"(SELECT count(*) AS n FROM "Blocks")");
  c.securities = count(R"(SELECT count(*) AS n FROM "Security")");
  c.symbols = count(R"(SELECT count(DISTINCT "Sec Symbol") AS n FROM "Security")");
  return c;
}

Corpus PrepareCorpus() {
  Corpus corpus;
  const int64_t transactions = TransactionCount();
  corpus.folder = CacheFolder(transactions);
  corpus.cached = fs::exists(corpus.folder / kClientFileName);
  if (!corpus.cached) {
    fs::create_directories(corpus.folder.parent_path());
    std::printf("Generating a ledger of %lld transactions into %s ...\n",
                static_cast<long long>(transactions), corpus.folder.string().c_str());
    std::fflush(stdout);
#if defined(_WIN32)
    GenerateInto(corpus.folder, transactions);
#else
    const pid_t child = ::fork();
    if (child == 0) {
      try {
        GenerateInto(corpus.folder, transactions);
        std::fflush(stdout);
        ::_exit(0);
      } catch (const std::exception& e) {
        std::fprintf(stderr, "generation failed: %s\n", e.what());
        ::_exit(1);
      }
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0) {
      throw std::runtime_error("the ledger could not be generated");
    }
#endif
  }
  std::ifstream(corpus.folder / "generation_ms.txt") >> corpus.generation_ms;
  auto db = Database::Open(corpus.client_path(), Database::Mode::kReadOnly);
  corpus.counts = CountLedger(*db);
  return corpus;
}

// The rows a basis run wrote into the report database.
struct ReportRows {
  int64_t trans = 0;    // "BA Trans"
  int64_t sched_d = 0;  // "Sched D"
  int64_t blocks = 0;   // "BA Blocks"
  int64_t secs = 0;     // "BA Secs"
  int64_t total() const { return trans + sched_d + blocks + secs; }
};

ReportRows CountReportRows(const std::string& path) {
  auto db = Database::Open(path, Database::Mode::kReadOnly);
  auto count = [&](const char* sql) {
    Query q = db->Select(sql);
    q.Next();
    return q.Int("n");
  };
  return {count(R"(SELECT count(*) AS n FROM "BA Trans")"),
          count(R"(SELECT count(*) AS n FROM "Sched D")"),
          count(R"(SELECT count(*) AS n FROM "BA Blocks")"),
          count(R"(SELECT count(*) AS n FROM "BA Secs")")};
}

// The program as it runs the report: the Security Symbols File open, the
// generated Taxpayer File (a copy, so the cache stays untouched) open as
// the current taxpayer, and a report template to copy for each run.
struct Session {
  explicit Session(const Corpus& corpus) {
    folder = bench::MakeScratchFolder();
    fs::copy_file(corpus.client_path(), folder / kClientFileName);
    fs::copy_file(corpus.central_path(), folder / kCentralName);
    report_template = (folder / kReportTemplateName).string();
    CreateTemplate(FileKind::kReport, report_template);
    app = std::make_unique<Application>(ui, env, folder.string(), "bench");
    ui.app = app.get();
    app->temp_folder = folder.string() + "/";
    app->ssf_folder = folder.string() + "/";
    app->taxpayer_folder = folder.string() + "/";
    app->central_path = (folder / kCentralName).string();
    app->central = Database::Open(app->central_path);
    app->client = Database::Open((folder / kClientFileName).string());
    CurrentContext& c = app->current;
    c.client_db_path = (folder / kClientFileName).string();
    c.client_name = bench::kLedgerClientName;
    c.sort_name = "Benchmark, Pat Q.";
    c.client_code = bench::kLedgerClientCode;
    c.client_2nd_line = " ";
    c.year_end = kYearEnd.ToString();
    app->window.state = kClientOpen;
  }
  ~Session() {
    app.reset();
    std::error_code ec;
    fs::remove_all(folder, ec);
  }

  // A fresh, empty report database for one run.
  std::string FreshReportDb(const std::string& name) {
    const fs::path path = folder / name;
    fs::remove(path);
    fs::copy_file(report_template, path);
    return path.string();
  }

  fs::path folder;
  std::string report_template;
  BenchUi ui;
  SystemEnvironment env;
  std::unique_ptr<Application> app;
};

Session* g_session = nullptr;

// What the runs measured, for the closing summary.
struct Figures {
  std::vector<double> computation_ms;
  std::vector<double> computation_cpu_ms;
  std::vector<double> floor_ms;
  std::vector<double> floor_cpu_ms;
  std::vector<double> scan_ms;
  std::vector<double> scan_cpu_ms;
  std::vector<double> insert_ms;
  std::vector<double> insert_cpu_ms;
  // Computation / floor of each iteration.
  std::vector<double> cpu_ratio;
  std::vector<double> wall_ratio;
  ReportRows rows;
  bool computation_failed = false;
  double rss_before_mb = 0;
  double rss_after_computation_mb = 0;
};
Figures g_figures;

double Median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Reads every column of every transaction row with its block, as one scan.
double ScanTransactions(Database& db) {
  double sink = 0;
  auto block_columns = [&](const Query& q) {
    sink += static_cast<double>(q.Int("Sec ID")) + static_cast<double>(q.Text("Block ID").size()) +
            q.DateValue("Block Date").serial() + static_cast<double>(q.Int("Unique ID")) +
            static_cast<double>(q.Int("Block No")) + q.DateValue("Date").serial() +
            q.Double("Shares") + static_cast<double>(q.Text("Notes").size()) +
            static_cast<double>(q.Int("Prec Sort"));
  };
  constexpr const char* kJoin =
      R"(, B."Sec ID", B."Block ID", B."Date" AS "Block Date" FROM "Blocks" AS B INNER JOIN )";
  {
    Query q = db.Select(std::string(R"(SELECT T.*)") + kJoin +
                        R"("Buy" AS T ON T."Block No" = B."Block No")");
    while (q.Next()) {
      block_columns(q);
      sink += static_cast<double>(q.Int("Type") + q.Money("Cost").units() + q.Money("Fee").units());
    }
  }
  {
    Query q = db.Select(std::string(R"(SELECT T.*)") + kJoin +
                        R"("Sell" AS T ON T."Block No" = B."Block No")");
    while (q.Next()) {
      block_columns(q);
      sink += static_cast<double>(q.Money("Sale Price").units() + q.Money("Fee").units());
    }
  }
  {
    Query q = db.Select(std::string(R"(SELECT T.*)") + kJoin +
                        R"("Split" AS T ON T."Block No" = B."Block No")");
    while (q.Next()) {
      block_columns(q);
      sink += static_cast<double>(q.Int("Type")) + q.Double("Pre Ratio") + q.Double("Post Ratio");
    }
  }
  {
    Query q = db.Select(std::string(R"(SELECT T.*)") + kJoin +
                        R"("Adjust" AS T ON T."Block No" = B."Block No")");
    while (q.Next()) {
      block_columns(q);
      sink += static_cast<double>(q.Money("Cost").units());
    }
  }
  return sink;
}

// Writes `rows` worth of report rows, each table's own shape, in one unit.
void WriteReportRows(Database& report, const ReportRows& rows) {
  Database::Transaction unit(report);
  const Date first = Date::FromYmd(2010, 1, 4);
  for (int64_t i = 0; i < rows.blocks; ++i) {
    const Date date = first.AddDays(static_cast<int>(i % 5000));
    report.Execute(
        R"(INSERT INTO "BA Blocks" ("Sec Symbol", "Port Name", "Block ID", "Date Acqrd") )"
        R"(VALUES (:s, :p, :id, :d))",
        {{"s", "XAAB"}, {"p", "Growth"}, {"id", date.ToString() + "-1"}, {"d", date}});
  }
  for (int64_t i = 0; i < rows.trans; ++i) {
    const Date date = first.AddDays(static_cast<int>(i % 5000));
    report.Execute(
        R"(INSERT INTO "BA Trans" ("Block No", "TransNo", "Transaction", "Date", "Date Acqrd", )"
        R"("Shares", "Sale Price", "Total Shares", "Cost", "Total Cost", "Fee", "Basis Per Share") )"
        R"(VALUES (:b, :n, :t, :d, :a, :sh, :sp, :ts, :c, :tc, :f, :bps))",
        {{"b", i / 4 + 1},
         {"n", i % 4},
         {"t", i % 4 == 0 ? "Buy" : "Sell"},
         {"d", date},
         {"a", first},
         {"sh", 12.5 + static_cast<double>(i % 97)},
         {"sp", Currency::FromCents(i % 100000)},
         {"ts", 100.0 + static_cast<double>(i % 89)},
         {"c", Currency::FromCents(-(i % 70000))},
         {"tc", Currency::FromCents(i % 900000)},
         {"f", Currency::FromCents(i % 2000)},
         {"bps", 31.25 + static_cast<double>(i % 13)}});
  }
  for (int64_t i = 0; i < rows.sched_d; ++i) {
    const Date date = first.AddDays(static_cast<int>(i % 5000));
    report.Execute(
        R"(INSERT INTO "Sched D" ("Date Acqrd", "Date Sold", "Shares", "Sec Symbol", "Sale Price", )"
        R"("Cost", "GainLoss", "Long Term") VALUES (:a, :d, :sh, :s, :sp, :c, :g, :lt))",
        {{"a", first},
         {"d", date},
         {"sh", 12.5 + static_cast<double>(i % 97)},
         {"s", "XAAB"},
         {"sp", Currency::FromCents(i % 100000)},
         {"c", Currency::FromCents(i % 70000)},
         {"g", Currency::FromCents(i % 100000 - i % 70000)},
         {"lt", i % 3 != 0}});
  }
  for (int64_t i = 0; i < rows.secs; ++i) {
    report.Execute(
        R"(INSERT INTO "BA Secs" ("Sec Symbol", "Sec Name", "Sell Name", "Total Shares", )"
        R"("Total Cost", "Basis Per Share") VALUES (:s, :n, :m, :ts, :tc, :bps))",
        {{"s", "XAAB"},
         {"n", "Benchmark Holdings 2 Inc."},
         {"m", "FIFO"},
         {"ts", 1000.0},
         {"tc", Currency::FromCents(i)},
         {"bps", 1.5}});
  }
  unit.Commit();
}

// The floor over `rows` report rows: what any computation over these
// transactions must at least do. Adds its times to the figures.
void RunFloor(Session& session, const ReportRows& rows, int run) {
  const std::string path = session.FreshReportDb("FLOOR-" + std::to_string(run) + ".MDB");
  const double cpu = CpuMs();
  const auto start = Clock::now();
  benchmark::DoNotOptimize(ScanTransactions(*session.app->client));
  const double scan = Elapsed(start);
  const double scan_cpu = CpuMs() - cpu;
  const auto insert_start = Clock::now();
  {
    auto report = Database::OpenScratch(path);
    WriteReportRows(*report, rows);
  }
  const double insert = Elapsed(insert_start);
  g_figures.floor_ms.push_back(Elapsed(start));
  g_figures.floor_cpu_ms.push_back(CpuMs() - cpu);
  g_figures.scan_ms.push_back(scan);
  g_figures.scan_cpu_ms.push_back(scan_cpu);
  g_figures.insert_ms.push_back(insert);
  g_figures.insert_cpu_ms.push_back(g_figures.floor_cpu_ms.back() - scan_cpu);
  fs::remove(path);
}

// The whole-taxpayer run of both reports as the program computes it (the
// benchmark's time), each followed by the floor over as many report rows,
// so that both see the same load of a machine shared with other work.
void BM_BasisComputation(benchmark::State& state) {
  Session& session = *g_session;
  Application& app = *session.app;
  g_figures.rss_before_mb = PeakRssMb();
  int run = 0;
  for (auto _ : state) {
    app.report_db_path = session.FreshReportDb("REPORT-" + std::to_string(run) + ".MDB");
    const int messages_before = session.ui.messages;
    const double cpu = CpuMs();
    const auto start = Clock::now();
    const bool ok = CalcBasisSchedDRpt(app, ReportScope::kTaxpayer, kYearEnd, BasisKind::kBoth);
    const double ms = Elapsed(start);
    const double cpu_ms = CpuMs() - cpu;
    state.SetIterationTime(ms / 1000.0);
    if (!ok || session.ui.messages != messages_before) {
      g_figures.computation_failed = true;
      state.SkipWithError("the computation failed or showed a message");
      break;
    }
    // Before any floor has run, the high-water mark is the computation's.
    if (run == 0) g_figures.rss_after_computation_mb = PeakRssMb();
    g_figures.computation_ms.push_back(ms);
    g_figures.computation_cpu_ms.push_back(cpu_ms);
    g_figures.rows = CountReportRows(app.report_db_path);
    fs::remove(app.report_db_path);
    RunFloor(session, g_figures.rows, run);
    g_figures.cpu_ratio.push_back(cpu_ms / g_figures.floor_cpu_ms.back());
    g_figures.wall_ratio.push_back(ms / g_figures.floor_ms.back());
    ++run;
  }
  state.counters["ba_trans_rows"] = static_cast<double>(g_figures.rows.trans);
  state.counters["sched_d_rows"] = static_cast<double>(g_figures.rows.sched_d);
  state.counters["floor_ms"] = Median(g_figures.floor_ms);
  state.counters["cpu_ratio"] = Median(g_figures.cpu_ratio);
  state.counters["peak_rss_mb"] = g_figures.rss_after_computation_mb;
}
BENCHMARK(BM_BasisComputation)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

void PrintCorpus(const Corpus& corpus) {
  const bench::LedgerCounts& c = corpus.counts;
  std::printf("Ledger: %s\n", corpus.folder.string().c_str());
  std::printf("  generation        %.1f s%s\n", corpus.generation_ms / 1000,
              corpus.cached ? " (when it was generated; cached since)" : "");
  std::printf(
      "  transactions      %lld (buys %lld, reinvestments %lld, sells %lld, splits %lld, "
      "stock dividends %lld, adjustments %lld)\n",
      static_cast<long long>(c.transactions()), static_cast<long long>(c.buys),
      static_cast<long long>(c.reinvestments), static_cast<long long>(c.sells),
      static_cast<long long>(c.splits), static_cast<long long>(c.dividends),
      static_cast<long long>(c.adjustments));
  std::printf("  securities        %lld symbols in %lld portfolio holdings\n",
              static_cast<long long>(c.symbols), static_cast<long long>(c.securities));
  std::printf("  blocks            %lld\n", static_cast<long long>(c.blocks));
  std::fflush(stdout);
}

void PrintSummary() {
  const Figures& f = g_figures;
  std::printf("\nBasis computation over the whole taxpayer, year end %s:\n",
              kYearEnd.ToString().c_str());
  if (f.computation_failed) std::printf("  THE COMPUTATION FAILED or showed a message\n");
  if (!f.computation_ms.empty()) {
    std::printf(
        "  report rows       %lld: BA Trans %lld, Sched D %lld, BA Blocks %lld, BA Secs %lld\n",
        static_cast<long long>(f.rows.total()), static_cast<long long>(f.rows.trans),
        static_cast<long long>(f.rows.sched_d), static_cast<long long>(f.rows.blocks),
        static_cast<long long>(f.rows.secs));
    std::printf("  method dialog     answered %d time(s) in %zu run(s) (FIFO, for all)\n",
                g_session->ui.method_dialogs, f.computation_ms.size());
    std::printf("  computation       %.0f ms wall, %.0f ms cpu (medians of %zu)\n",
                Median(f.computation_ms), Median(f.computation_cpu_ms), f.computation_ms.size());
  }
  if (!f.floor_ms.empty()) {
    std::printf("  floor             %.0f ms wall, %.0f ms cpu (medians of %zu)\n",
                Median(f.floor_ms), Median(f.floor_cpu_ms), f.floor_ms.size());
    std::printf("    scan            %.0f ms wall, %.0f ms cpu\n", Median(f.scan_ms),
                Median(f.scan_cpu_ms));
    std::printf("    insert          %.0f ms wall, %.0f ms cpu\n", Median(f.insert_ms),
                Median(f.insert_cpu_ms));
  }
  if (!f.computation_ms.empty() && !f.floor_ms.empty()) {
    // On a machine shared with other work the wall times mostly measure the
    // other work; the processor times are the steadier comparison.
    std::printf(
        "  ratio             %.2f cpu, %.2f wall (computation / floor, median of the "
        "iterations; aim <= 2.0)\n",
        Median(f.cpu_ratio), Median(f.wall_ratio));
  }
  if (!f.computation_ms.empty()) {
    std::printf(
        "  peak memory       %.0f MB after the first computation (%.0f MB before it; "
        "aim < 256)\n",
        f.rss_after_computation_mb, f.rss_before_mb);
  }
}

}  // namespace
}  // namespace lotwise

int main(int argc, char** argv) {
  using namespace lotwise;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  try {
    Corpus corpus = PrepareCorpus();
    PrintCorpus(corpus);
    Session session(corpus);
    g_session = &session;
    benchmark::RunSpecifiedBenchmarks();
    PrintSummary();
    g_session = nullptr;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "bench_basis_report: %s\n", e.what());
    return 1;
  }
  benchmark::Shutdown();
  return 0;
}
