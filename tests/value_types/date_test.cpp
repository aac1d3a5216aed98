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
  // The long-term date of a lot: 12 months plus one day.
  EXPECT_EQ(Date::FromYmd(2024, 2, 29).AddMonths(12).AddDays(1), Date::FromYmd(2025, 3, 1));
}

}  // namespace
}  // namespace lotwise
