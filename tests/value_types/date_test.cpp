#include "ground/date.h"

#include <gtest/gtest.h>

namespace lotwise {
namespace {

// The date scale (12/30/1899 is day 0, 1/1/1913 is 4750), its text forms
// and its order.
TEST(Date, SerialScaleAndTextForms) {
  EXPECT_EQ(Date::FromYmd(1899, 12, 30).serial(), 0);
  EXPECT_EQ(Date::FromYmd(1900, 1, 1).serial(), 2);
  EXPECT_EQ(Date::FromSerial(4750).ToString(), "01/01/1913");
  const Date d = Date::FromYmd(2024, 3, 7);
  EXPECT_EQ(d.ToString() + " " + d.ToIso() + " " + d.ToDashed(),
            "03/07/2024 2024-03-07 03-07-2024");
  EXPECT_EQ(Date::ParseIso("2024-03-07"), d);
  EXPECT_FALSE(Date::ParseIso("2024-02-30").has_value());
  EXPECT_EQ(Date::Min().ToString() + " " + Date::Max().ToString(), "01/01/1900 12/31/9999");
  EXPECT_LT(Date::FromYmd(1999, 12, 31), Date::FromYmd(2000, 1, 1));
}

// Typed dates: what parses and what does not.
TEST(Date, ParseTable) {
  struct Case {
    const char* text;
    int y, m, d;  // y == 0: not a date
  } cases[] = {
      {"01/15/1998", 1998, 1, 15}, {"1/5/1998", 1998, 1, 5}, {" 12/31/9999 ", 9999, 12, 31},
      {"02/29/2024", 2024, 2, 29}, {"2/29/2023", 0, 0, 0},   {"13/01/2024", 0, 0, 0},
      {"00/10/2024", 0, 0, 0},     {"  /  /    ", 0, 0, 0},  {"", 0, 0, 0},
      {"1/1/29", 2029, 1, 1},      {"1/1/30", 1930, 1, 1},   {"1/1/199", 0, 0, 0},
      {"2024-01-15", 0, 0, 0},     {"01/15/1998x", 0, 0, 0}, {"04/31/2024", 0, 0, 0},
  };
  for (const Case& c : cases) {
    auto parsed = Date::Parse(c.text);
    EXPECT_EQ(parsed, c.y == 0 ? std::nullopt : std::optional(Date::FromYmd(c.y, c.m, c.d)))
        << c.text;
  }
}

// Month arithmetic clamps to the last day of the target month.
TEST(Date, AddMonthsClamps) {
  struct Case {
    const char* from;
    int months;
    const char* to;
  } cases[] = {{"2024-02-29", 12, "2025-02-28"}, {"2024-01-31", 1, "2024-02-29"},
               {"2023-01-31", 1, "2023-02-28"},  {"2024-03-31", -1, "2024-02-29"},
               {"2024-12-15", 1, "2025-01-15"},  {"2025-01-15", -13, "2023-12-15"}};
  for (const Case& c : cases) {
    EXPECT_EQ(Date::ParseIso(c.from)->AddMonths(c.months).ToIso(), c.to) << c.from << c.months;
  }
  // The long-term date of a lot: 12 months plus one day.
  EXPECT_EQ(Date::FromYmd(2024, 2, 29).AddMonths(12).AddDays(1), Date::FromYmd(2025, 3, 1));
}

}  // namespace
}  // namespace lotwise
