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

#include "app/ui_port.h"

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
