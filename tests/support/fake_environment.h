#pragma once

#include <chrono>
#include <string>

#include "ground/environment.h"

namespace lotwise::testing {

// A clock that moves only when told to (or when the program pauses), a
// temporary folder of the test's own, and a process end that is recorded.
class FakeEnvironment : public Environment {
 public:
  explicit FakeEnvironment(std::string temp_folder) : temp_folder_(std::move(temp_folder)) {}

  LocalTime Now() override { return now_; }
  void Pause(std::chrono::milliseconds duration) override;
  std::string TempFolder() override { return temp_folder_; }
  void EndProcess(int exit_code) override {
    ++end_calls_;
    exit_code_ = exit_code;
  }

  void SetNow(LocalTime now) { now_ = now; }
  void AdvanceSeconds(int seconds);
  int end_calls() const { return end_calls_; }
  int exit_code() const { return exit_code_; }
  int pauses() const { return pauses_; }

 private:
  LocalTime now_{2026, 11, 22, 10, 7, 3};
  std::string temp_folder_;
  long long pending_ms_ = 0;
  int end_calls_ = 0;
  int exit_code_ = 0;
  int pauses_ = 0;
};

}  // namespace lotwise::testing
