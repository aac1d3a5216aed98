#include "ground/date.h"

#include <chrono>
#include <cstdio>

#include "ground/text.h"

namespace lotwise {

namespace {

namespace chr = std::chrono;
using chr::sys_days;
using chr::year_month_day;

// Serial 0 is 12/30/1899.
const sys_days kEpoch = sys_days(year_month_day(chr::year(1899), chr::month(12), chr::day(30)));

year_month_day ToYmd(int32_t serial) { return year_month_day(kEpoch + std::chrono::days(serial)); }

// Reads 1..max_digits decimal digits at text[pos]; advances pos.
std::optional<int> ReadNumber(std::string_view text, size_t& pos, size_t max_digits) {
  size_t start = pos;
  int value = 0;
  while (pos < text.size() && pos - start < max_digits && text[pos] >= '0' && text[pos] <= '9') {
    value = value * 10 + (text[pos] - '0');
    ++pos;
  }
  if (pos == start) return std::nullopt;
  return value;
}

}  // namespace

bool Date::IsValidYmd(int y, int m, int d) {
  if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1) return false;
  return year_month_day(chr::year(y), chr::month(static_cast<unsigned>(m)),
                        chr::day(static_cast<unsigned>(d)))
      .ok();
}

Date Date::FromYmd(int y, int m, int d) {
  sys_days days = sys_days(year_month_day(chr::year(y), chr::month(static_cast<unsigned>(m)),
                                          chr::day(static_cast<unsigned>(d))));
  return Date(static_cast<int32_t>((days - kEpoch).count()));
}

std::optional<Date> Date::Parse(std::string_view text) {
  text = Trim(text);
  size_t pos = 0;
  auto m = ReadNumber(text, pos, 2);
  if (!m || pos >= text.size() || text[pos] != '/') return std::nullopt;
  ++pos;
  auto d = ReadNumber(text, pos, 2);
  if (!d || pos >= text.size() || text[pos] != '/') return std::nullopt;
  ++pos;
  size_t year_start = pos;
  auto y = ReadNumber(text, pos, 4);
  if (!y || pos != text.size()) return std::nullopt;
  size_t year_digits = pos - year_start;
  if (year_digits == 3) return std::nullopt;
  int full_year = *y;
  if (year_digits <= 2) full_year += (*y < 30) ? 2000 : 1900;
  if (!IsValidYmd(full_year, *m, *d)) return std::nullopt;
  return FromYmd(full_year, *m, *d);
}

std::optional<Date> Date::ParseIso(std::string_view text) {
  int y = 0, m = 0, d = 0;
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  std::string copy(text);
  if (std::sscanf(copy.c_str(), "%4d-%2d-%2d", &y, &m, &d) != 3) return std::nullopt;
  if (!IsValidYmd(y, m, d)) return std::nullopt;
  return FromYmd(y, m, d);
}

int Date::year() const { return static_cast<int>(ToYmd(serial_).year()); }
int Date::month() const { return static_cast<int>(static_cast<unsigned>(ToYmd(serial_).month())); }
int Date::day() const { return static_cast<int>(static_cast<unsigned>(ToYmd(serial_).day())); }

std::string Date::ToString() const {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%02d/%02d/%04d", month(), day(), year());
  return buf;
}

std::string Date::ToIso() const {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", year(), month(), day());
  return buf;
}

std::string Date::ToDashed() const {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%02d-%02d-%04d", month(), day(), year());
  return buf;
}

Date Date::AddMonths(int months) const {
  year_month_day ymd = ToYmd(serial_);
  int total = static_cast<int>(ymd.year()) * 12 +
              static_cast<int>(static_cast<unsigned>(ymd.month())) - 1 + months;
  int y = total / 12;
  int m = total % 12 + 1;
  auto last = chr::year_month_day_last(chr::year(y),
                                       chr::month_day_last(chr::month(static_cast<unsigned>(m))));
  unsigned d = std::min(static_cast<unsigned>(ymd.day()), static_cast<unsigned>(last.day()));
  return FromYmd(y, m, static_cast<int>(d));
}

}  // namespace lotwise
