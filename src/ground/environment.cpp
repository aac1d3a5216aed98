#include "ground/environment.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <thread>

#include "ground/paths.h"

namespace lotwise {

LocalTime SystemEnvironment::Now() {
  std::time_t now = std::time(nullptr);
  std::tm tm{};
  localtime_r(&now, &tm);
  return LocalTime{tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec};
}

void SystemEnvironment::Pause(std::chrono::milliseconds duration) {
  std::this_thread::sleep_for(duration);
}

std::string SystemEnvironment::TempFolder() {
  return WithTrailingSeparator(std::filesystem::temp_directory_path().string());
}

void SystemEnvironment::EndProcess(int exit_code) { std::exit(exit_code); }

Date Today(Environment& env) {
  const LocalTime now = env.Now();
  return Date::FromYmd(now.year, now.month, now.day);
}

}  // namespace lotwise
