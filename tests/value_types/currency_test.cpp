#include "ground/currency.h"

#include <gtest/gtest.h>

#include <utility>

#include "ground/lw_error.h"

namespace lotwise {
namespace {

// From a double: half to even at the fourth decimal, on the value's decimal
// digits; beyond the range an overflow.
TEST(Currency, FromDoubleHalfEven) {
  const std::pair<double, int64_t> cases[] = {
      {1.00005, 10000},   {1.00015, 10002}, {-1.00005, -10000},
      {-1.00015, -10002}, {0.1, 1000},      {666.666666, 6666667},
      {0.00004, 0},       {0.00006, 1},     {12345678.12345, 123456781234}};
  for (auto [value, units] : cases) EXPECT_EQ(Currency::FromDouble(value).units(), units) << value;
  try {
    Currency::FromDouble(1e16);
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kOverflow);
  }
}

// To the cent and in division: half to even, in both directions.
TEST(Currency, RoundedToCentAndDivideHalfEven) {
  const std::pair<int64_t, int64_t> cases[] = {{6666667, 6666700},
                                               {6666650, 6666600},
                                               {6666750, 6666800},
                                               {-6666650, -6666600},
                                               {-6666750, -6666800},
                                               {49, 0},
                                               {50, 0},
                                               {150, 200},
                                               {-51, -100}};
  for (auto [units, rounded] : cases) {
    EXPECT_EQ(Currency::FromUnits(units).RoundedToCent().units(), rounded) << units;
  }
  const int64_t divisions[][3] = {{5, 2, 2},   {7, 2, 4},    {-5, 2, -2},
                                  {-7, 2, -4}, {10, -4, -2}, {2000000, 3, 666667}};
  for (const auto& d : divisions)
    EXPECT_EQ(DivideHalfEven(d[0], d[1]), d[2]) << d[0] << "/" << d[1];
}

TEST(Currency, TextForms) {
  const std::pair<int64_t, const char*> units[] = {
      {12345000, "1234.5"}, {-100, "-0.01"}, {0, "0"}, {12345, "1.2345"}};
  for (auto [u, text] : units) EXPECT_EQ(Currency::FromUnits(u).ToString(), text);
  const std::pair<int64_t, const char*> cents[] = {
      {123456789, "1,234,567.89"}, {-5, "-0.05"}, {100000, "1,000.00"}};
  for (auto [c, text] : cents) EXPECT_EQ(Currency::FromCents(c).ToCentsText(), text);
}

TEST(Currency, ParseTypedAmounts) {
  const std::pair<const char*, int64_t> cases[] = {
      {"1,000.00", 10000000},
      {"$12.5", 125000},
      {"-0.01", -100},
      {"0.00005", 0},
      {"0.00015", 2},
      {"12,345,678.9", 123456789000},
      {"922,337,203,685,476.9999", 9223372036854769999}};
  for (auto [text, units] : cases) EXPECT_EQ(Currency::Parse(text)->units(), units) << text;
  for (const char* bad : {"", "abc", "1.2.3", "12,34x", "0,5", "1,2", "1234,567", "1.234,50"}) {
    EXPECT_EQ(Currency::ParseFault(bad), NumberFault::kNotANumber) << bad;
    EXPECT_FALSE(Currency::Parse(bad).has_value()) << bad;
  }
  // Beyond the range: refused, not wrapped round or read as 0.
  for (const char* big : {"922337203685477", "922337203685479", "99999999999999999999"}) {
    EXPECT_EQ(Currency::ParseFault(big), NumberFault::kTooLarge) << big;
  }
}

}  // namespace
}  // namespace lotwise
