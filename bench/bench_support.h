#pragma once

// What the benchmark programs share: a user interface nobody sits at, a
// scratch folder, and the reporting of per-call times.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "data/application.h"
#include "data/database.h"
#include "data/schema.h"
#include "ground/ui_port.h"

namespace lotwise::bench {

using Clock = std::chrono::steady_clock;

// Nobody is at the keyboard: every question gets `answer`, every message is
// counted, pickers are cancelled and dialogs close at once.
class QuietUi : public UiPort {
 public:
  explicit QuietUi(Answer answer) : answer_(answer) {}
  Answer MessageBox(std::string_view, std::string_view, Icon, Buttons buttons) override {
    ++messages;
    return buttons == Buttons::kOk ? Answer::kOk : answer_;
  }
  void SetHelpBarText(std::string_view) override {}
  std::string PickFile(const FileRequest&) override { return {}; }
  std::string PickSaveFile(const FileRequest&) override { return {}; }
  ChkFilesChoice ChkFiles(std::string_view, std::string_view, bool) override {
    return ChkFilesChoice::kIgnore;
  }
  void RunModal(DialogForm&) override {}

  int messages = 0;

 private:
  Answer answer_;
};

// Returns a new, empty folder under the system's temporary folder.
inline std::filesystem::path MakeScratchFolder() {
  std::random_device random;
  auto folder = std::filesystem::temp_directory_path() /
                ("lotwise-bench-" + std::to_string(random()) + std::to_string(random()));
  std::filesystem::create_directories(folder);
  return folder;
}

// Writes a fresh Security Symbols File and Taxpayer File into `folder`,
// opens them into `app` as the program opens them, and adds the portfolio
// "Growth" holding IBM under FIFO. Returns IBM's "Sec ID".
inline int64_t OpenGrowthHoldingIbm(Application& app, const std::filesystem::path& folder) {
  const std::string central = (folder / "CENTRAL.MDB").string();
  const std::string client = (folder / "BENCH01.mdb").string();
  CreateTemplate(FileKind::kCentral, central);
  CreateTemplate(FileKind::kTaxpayer, client);
  app.central = Database::Open(central);
  app.client = Database::Open(client);
  app.central->Execute(R"(INSERT INTO "Securities" ("Sec Symbol", "Sec Name", "CUSIP") )"
                       R"(VALUES ('IBM', 'Intl Business Machines', '459200101'))");
  Database& db = *app.client;
  db.Execute(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line", "Client Code") )"
             R"(VALUES ('Growth', ' ', 'B01'))");
  db.Execute(R"(INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line") )"
             R"(VALUES ('IBM', 'Growth', ' '))");
  const int64_t sec_id = db.LastInsertId();
  db.Execute(R"(INSERT INTO "Sell Method" ("Sec Symbol", "Sell Method") VALUES ('IBM', 1))");
  return sec_id;
}

// Adds `blocks` lots of 100 shares costing 1,500.00, one a day from
// 01/02/1990, each followed by `sales_per_block` daily sales of 10 shares,
// in one unit of work.
inline void AddDailyBlocks(Database& db, int64_t sec_id, int blocks, int sales_per_block) {
  Database::Transaction unit(db);
  const Date first = Date::FromYmd(1990, 1, 2);
  for (int i = 0; i < blocks; ++i) {
    const Date date = first.AddDays(i);
    db.Execute(R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, :id, :d))",
               {{"s", sec_id}, {"id", date.ToString() + "-1"}, {"d", date}});
    const int64_t block = db.LastInsertId();
    db.Execute(
        R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Cost", "Shares", "Fee", "Notes", )"
        R"("Prec Sort") VALUES (:b, :d, 10, :c, 100, 0, '', 10))",
        {{"b", block}, {"d", date}, {"c", Currency::FromCents(150000)}});
    for (int s = 1; s <= sales_per_block; ++s) {
      db.Execute(
          R"(INSERT INTO "Sell" ("Block No", "Date", "Sale Price", "Fee", "Shares", "Notes", )"
          R"("Prec Sort") VALUES (:b, :d, :p, 0, -10, '', 40))",
          {{"b", block}, {"d", date.AddDays(s)}, {"p", Currency::FromCents(20000)}});
    }
  }
  unit.Commit();
}

// Milliseconds since `start`.
inline double Elapsed(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Reports the median, 99th percentile and maximum of per-call times in
// milliseconds as the benchmark's counters.
inline void ReportPercentiles(benchmark::State& state, std::vector<double> ms) {
  if (ms.empty()) return;
  std::sort(ms.begin(), ms.end());
  auto at = [&](double q) {
    size_t index = static_cast<size_t>(q * static_cast<double>(ms.size() - 1) + 0.5);
    return ms[std::min(index, ms.size() - 1)];
  };
  state.counters["median_ms"] = at(0.5);
  state.counters["p99_ms"] = at(0.99);
  state.counters["max_ms"] = ms.back();
}

}  // namespace lotwise::bench
