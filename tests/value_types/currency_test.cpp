#include "ground/currency.h"

#include <gtest/gtest.h>

#include "ground/lw_error.h"

namespace lotwise {
namespace {

// Conversion from a double rounds half to even at the fourth decimal, on
// the value's decimal digits.
TEST(Currency, FromDoubleHalfEven) {
  struct Case {
    double value;
    int64_t units;
  } cases[] = {
      {1.00005, 10000},
      {1.00015, 10002},
      {-1.00005, -10000},
      {-1.00015, -10002},
      {0.1, 1000},
      {666.666666, 6666667},
      {1000, 10000000},
      {0, 0},
      {0.00004, 0},
      {0.00006, 1},
      {12345678.12345, 123456781234},
  };
  for (const Case& c : cases) EXPECT_EQ(Currency::FromDouble(c.value).units(), c.units) << c.value;
}

TEST(Currency, FromDoubleOutOfRangeIsOverflow) {
  try {
    Currency::FromDouble(1e16);
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kOverflow);
  }
}

// Rounding to the cent is half to even, in both directions.
TEST(Currency, RoundedToCentHalfEven) {
  struct Case {
    int64_t units;
    int64_t rounded;
  } cases[] = {
      {6666667, 6666700},
      {6666650, 6666600},
      {6666750, 6666800},
      {-6666650, -6666600},
      {-6666750, -6666800},
      {3333333, 3333300},
      {49, 0},
      {50, 0},
      {150, 200},
      {-51, -100},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Currency::FromUnits(c.units).RoundedToCent().units(), c.rounded) << c.units;
  }
}

TEST(Currency, DivideHalfEven) {
  EXPECT_EQ(DivideHalfEven(5, 2), 2);
  EXPECT_EQ(DivideHalfEven(7, 2), 4);
  EXPECT_EQ(DivideHalfEven(-5, 2), -2);
  EXPECT_EQ(DivideHalfEven(-7, 2), -4);
  EXPECT_EQ(DivideHalfEven(10, -4), -2);
  EXPECT_EQ(DivideHalfEven(2000000, 3), 666667);
}

TEST(Currency, TextForms) {
  EXPECT_EQ(Currency::FromUnits(12345000).ToString(), "1234.5");
  EXPECT_EQ(Currency::FromUnits(-100).ToString(), "-0.01");
  EXPECT_EQ(Currency::FromUnits(0).ToString(), "0");
  EXPECT_EQ(Currency::FromUnits(12345).ToString(), "1.2345");
  EXPECT_EQ(Currency::FromCents(123456789).ToCentsText(), "1,234,567.89");
  EXPECT_EQ(Currency::FromCents(-5).ToCentsText(), "-0.05");
  EXPECT_EQ(Currency::FromCents(100000).ToCentsText(), "1,000.00");
}

TEST(Currency, ParseTypedAmounts) {
  EXPECT_EQ(Currency::Parse("1,000.00")->units(), 10000000);
  EXPECT_EQ(Currency::Parse("$12.5")->units(), 125000);
  EXPECT_EQ(Currency::Parse("-0.01")->units(), -100);
  EXPECT_EQ(Currency::Parse("0.00005")->units(), 0);
  EXPECT_EQ(Currency::Parse("0.00015")->units(), 2);
  EXPECT_EQ(Currency::Parse("12,345,678.9")->units(), 123456789000);
  EXPECT_EQ(Currency::Parse("922,337,203,685,476.9999")->units(), 9223372036854769999);
  for (const char* bad : {"", "abc", "1.2.3", "12,34x", "0,5", "1,2", "1234,567", "1.234,50"}) {
    EXPECT_EQ(Currency::ParseFault(bad), NumberFault::kNotANumber) << bad;
    EXPECT_FALSE(Currency::Parse(bad).has_value()) << bad;
  }
  // Beyond the range: refused, not wrapped round or read as 0.
  for (const char* big : {"922337203685477", "922337203685479", "99999999999999999999"}) {
    EXPECT_EQ(Currency::ParseFault(big), NumberFault::kTooLarge) << big;
  }
}

TEST(Currency, Arithmetic) {
  Currency a = Currency::FromCents(66667);
  Currency b = Currency::FromCents(33333);
  EXPECT_EQ((a + b).units(), Currency::FromCents(100000).units());
  EXPECT_EQ((a - b).ToString(), "333.34");
  EXPECT_EQ((-a).ToString(), "-666.67");
  EXPECT_LT(b, a);
}

}  // namespace
}  // namespace lotwise
