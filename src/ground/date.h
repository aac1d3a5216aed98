#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lotwise {

// A whole calendar day. Its serial number counts days from 12/30/1899, the
// date scale on which the program's fixed dates are written (1/1/1913 is
// 4750). A default Date is serial 0, the "empty date".
// The text of an empty masked date field, as every date field of a dialog
// starts.
inline constexpr const char* kEmptyDateText = "__/__/____";

class Date {
 public:
  constexpr Date() = default;
  static constexpr Date FromSerial(int32_t serial) { return Date(serial); }
  // Requires a valid year/month/day (see IsValidYmd).
  static Date FromYmd(int year, int month, int day);
  static bool IsValidYmd(int year, int month, int day);

  // Parses a date as typed: "m/d/yyyy" or "mm/dd/yyyy" (a two-digit year is
  // read as 1930-2029). Returns nullopt for anything that is not a real day
  // between 01/01/0100 and 12/31/9999.
  static std::optional<Date> Parse(std::string_view text);
  // Parses the storage form "yyyy-mm-dd"; nullopt when malformed.
  static std::optional<Date> ParseIso(std::string_view text);

  // The open bounds of date ranges.
  static Date Min() { return FromYmd(1900, 1, 1); }
  static Date Max() { return FromYmd(9999, 12, 31); }

  constexpr int32_t serial() const { return serial_; }
  int year() const;
  int month() const;
  int day() const;

  // "mm/dd/yyyy": the form shown, typed and used as the system's short date.
  std::string ToString() const;
  // "yyyy-mm-dd": the storage form, which sorts as the date does.
  std::string ToIso() const;
  // The form "mm-dd-yyyy" used by the error log.
  std::string ToDashed() const;

  // Month arithmetic clamps to the end of the target month:
  // 01/31/2024 + 1 month = 02/29/2024; 02/29/2024 + 12 months = 02/28/2025.
  Date AddMonths(int months) const;
  Date AddYears(int years) const { return AddMonths(12 * years); }
  Date AddDays(int days) const { return Date(serial_ + days); }

  friend constexpr auto operator<=>(Date, Date) = default;

 private:
  constexpr explicit Date(int32_t serial) : serial_(serial) {}
  int32_t serial_ = 0;
};

}  // namespace lotwise
