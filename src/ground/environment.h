#pragma once

#include <chrono>
#include <string>

#include "ground/date.h"

namespace lotwise {

// A local wall-clock reading, as the names built from the clock need it.
struct LocalTime {
  int year = 1900;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

// What the program takes from its surroundings: the clock, the temporary
// folder and the end of the process. Tests substitute their own, so that
// clock-built names and process ends can be observed.
class Environment {
 public:
  virtual ~Environment() = default;
  virtual LocalTime Now() = 0;
  // Waits a little before the clock is read again.
  virtual void Pause(std::chrono::milliseconds duration) = 0;
  // The operating system's folder for temporary files, ending in a separator.
  virtual std::string TempFolder() = 0;
  // Ends the process. Tests record the call and return.
  virtual void EndProcess(int exit_code) = 0;
};

// The real surroundings: the system clock, $TMPDIR (or /tmp) and std::exit.
class SystemEnvironment : public Environment {
 public:
  LocalTime Now() override;
  void Pause(std::chrono::milliseconds duration) override;
  std::string TempFolder() override;
  void EndProcess(int exit_code) override;
};

// The calendar day of the environment's clock.
Date Today(Environment& env);

}  // namespace lotwise
