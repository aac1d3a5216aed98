#include <gtest/gtest.h>

#include "app/lw_error.h"
#include "app/number_text.h"
#include "app/value_helpers.h"
#include "support/scripted_ui.h"

namespace lotwise {
namespace {

// RoundDouble adds half a unit and cuts the decimal text: positive halves
// go up, negative values move toward zero, and the cut sees the decimal
// text rather than the binary value.
struct RoundCase {
  const char* name;
  double value;
  int16_t digits;
  double expected;
};

class RoundDoubleTest : public ::testing::TestWithParam<RoundCase> {};

TEST_P(RoundDoubleTest, Rounds) {
  const RoundCase& c = GetParam();
  EXPECT_DOUBLE_EQ(RoundDouble(c.value, c.digits), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RoundDoubleTest,
    ::testing::Values(RoundCase{"BinaryBelowHalfStillRoundsUp", 1.005, 2, 1.01},
                      RoundCase{"PositiveHalfUp", 2.345, 2, 2.35},
                      RoundCase{"PositiveBelowHalf", 2.344, 2, 2.34},
                      RoundCase{"NegativeHalfTowardZero", -2.345, 2, -2.34},
                      RoundCase{"NegativeAboveHalfStillTowardZero", -2.346, 2, -2.34},
                      RoundCase{"ZeroDigitsHalf", 2.5, 0, 3},
                      RoundCase{"ZeroDigitsNegativeHalf", -2.5, 0, -2},
                      RoundCase{"NegativeDigitsGiveZero", 123.456, -1, 0},
                      RoundCase{"SharesToFiveDecimalsUp", 99.999995, 5, 100},
                      RoundCase{"SharesToFiveDecimalsDown", 99.9999949, 5, 99.99999},
                      RoundCase{"TinyNegativeIsZero", -0.0000001, 2, 0},
                      RoundCase{"LargeValueKeepsItsDigits", 123456789.125, 2, 123456789.13}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(RoundDouble_Overflow, TenDigitsThrowsOverflow) {
  try {
    RoundDouble(1.0, 10);
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kOverflow);
  }
}

// Sort names move only the last word to the front.
TEST(CalcSortName, Table) {
  struct Case {
    const char* name;
    const char* sort;
  } cases[] = {
      {"John Q Public", "Public, John Q"},
      {"Mary Ann Smith Jr", "Jr, Mary Ann Smith"},
      {"Cher", "Cher"},
      {"A B", "B, A"},
      {"Trailing ", ", Trailing"},
      {"", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(CalcSortName(c.name), c.sort) << c.name;
}

// Ampersands double so captions show them instead of an access key.
TEST(FixAmpersand, Table) {
  EXPECT_EQ(FixAmpersand("Smith & Jones"), "Smith && Jones");
  EXPECT_EQ(FixAmpersand("&&"), "&&&&");
  EXPECT_EQ(FixAmpersand("plain"), "plain");
  EXPECT_EQ(FixAmpersand(""), "");
}

TEST(IsAlphaNum, BoundariesOfEachRange) {
  for (int16_t code : {48, 57, 65, 90, 97, 122}) EXPECT_TRUE(IsAlphaNum(code)) << code;
  for (int16_t code : {47, 58, 64, 91, 96, 123, 32, 233, -1}) EXPECT_FALSE(IsAlphaNum(code)) << code;
}

TEST(GetFileNameFromPath, BothSeparators) {
  EXPECT_EQ(GetFileNameFromPath("C:\\LW\\DATA\\SMIT73.mdb"), "SMIT73.mdb");
  EXPECT_EQ(GetFileNameFromPath("/srv/lw/data/SMIT73.mdb"), "SMIT73.mdb");
  EXPECT_EQ(GetFileNameFromPath("SMIT73.mdb"), "SMIT73.mdb");
  EXPECT_EQ(GetFileNameFromPath("C:\\LW\\"), "");
}

// The default text form of a number: at most 15 significant digits.
TEST(NumberText, Table) {
  struct Case {
    double value;
    const char* text;
  } cases[] = {{2, "2"},           {0.1, "0.1"},         {1.5, "1.5"},
               {-0.0, "0"},        {0.05, "0.05"},       {1.0 / 3, "0.333333333333333"},
               {1e20, "1E+20"},    {-12.5, "-12.5"},     {100.99999999999997, "101"}};
  for (const Case& c : cases) EXPECT_EQ(NumberText(c.value), c.text) << c.value;
}

TEST(ParseNumber, AcceptsTypedFormsOnly) {
  EXPECT_DOUBLE_EQ(*ParseNumber("1,234.5"), 1234.5);
  EXPECT_DOUBLE_EQ(*ParseNumber(" -3 "), -3);
  EXPECT_DOUBLE_EQ(*ParseNumber(".5"), 0.5);
  for (const char* bad : {"", "-", "1.2.3", "12a", "1e5", "--1", ",1"}) {
    EXPECT_FALSE(ParseNumber(bad).has_value()) << bad;
  }
}

// DateValid names the field in its message and empties the date.
TEST(DateValid, InvalidDateShowsMessageAndEmptiesValue) {
  testing::ScriptedUi ui;
  ui.Expect(
      "The Purchase Date entered as 13/45/2024 is not valid.  Please re-enter the Purchase Date. If "
      "you are cancelling, click OK, and then click Cancel again.",
      "Invalid Date", Icon::kExclamation, Buttons::kOk);
  Date out = Date::FromYmd(2020, 1, 1);
  EXPECT_FALSE(DateValid(ui, "13/45/2024", "Purchase Date", out));
  EXPECT_EQ(out, Date());
  ui.VerifyDone();
}

TEST(DateValid, ValidDateSaysNothing) {
  testing::ScriptedUi ui;
  Date out;
  EXPECT_TRUE(DateValid(ui, "02/29/2024", "Date", out));
  EXPECT_EQ(out, Date::FromYmd(2024, 2, 29));
}

}  // namespace
}  // namespace lotwise
