#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace lotwise {

// Error numbers the program handles by name. The numbers are those the
// error handler's table is keyed on; every failure of the platform is mapped
// onto one of them before it reaches a procedure.
namespace err {
inline constexpr int kOverflow = 6;
inline constexpr int kOutOfMemory = 7;
inline constexpr int kDeviceUnavailable = 68;
inline constexpr int kPathFileAccess = 75;
inline constexpr int kPathNotFound = 76;
inline constexpr int kReserved = 3000;  // text carries "-8194" (busy) or "-1209" (damaged)
inline constexpr int kObjectNotFound = 3011;
inline constexpr int kDuplicateKey = 3022;
inline constexpr int kFileNotFound = 3024;
inline constexpr int kInvalidPath = 3044;
inline constexpr int kCannotLock = 3050;
inline constexpr int kTooManyLocks = 3052;
inline constexpr int kNotADatabase = 3343;
inline constexpr int kReportFileMissing = 20504;
inline constexpr int kPrintCancelled = 20513;
inline constexpr int kNoDefaultPrinter = 20526;
// Other SQLite failures keep a number of their own: this base plus SQLite's
// primary result code. The handler treats them as "any other".
inline constexpr int kSqliteBase = 31000;
// A failure that fits no other number (a fault in the program itself).
inline constexpr int kUnexpected = 32000;
}  // namespace err

// The one exception type of the program: an error number and its text.
class LwError : public std::exception {
 public:
  LwError(int number, std::string text) : number_(number), text_(std::move(text)) {}

  int number() const noexcept { return number_; }
  const std::string& text() const noexcept { return text_; }
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  int number_;
  std::string text_;
};

// Returns the LwError that describes the exception in flight: LwError as it
// is, bad_alloc as 7, filesystem errors as 76/75/68, anything else as an
// "any other" error carrying its message; ProgramEnded is thrown on. Must be
// called inside a catch block.
LwError CurrentError();

}  // namespace lotwise
