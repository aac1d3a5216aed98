#include "ground/value_helpers.h"

#include <gtest/gtest.h>

#include <utility>

#include "ground/lw_error.h"
#include "ground/number_text.h"
#include "support/scripted_ui.h"
#include "support/tests_a_helpers.h"

namespace lotwise {
namespace {

using Texts = std::pair<const char*, const char*>;

// RoundDouble adds half a unit and cuts the decimal text: positive halves
// go up, negative values move toward zero, and the cut sees the decimal
// text rather than the binary value (1.005 is 1.00499.. as a double).
TEST(RoundDouble, Table) {
  const struct {
    double value;
    int16_t digits;
    double expected;
  } cases[] = {{1.005, 2, 1.01},    {2.345, 2, 2.35},
               {2.344, 2, 2.34},    {-2.345, 2, -2.34},
               {-2.346, 2, -2.34},  {2.5, 0, 3},
               {-2.5, 0, -2},       {123.456, -1, 0},
               {99.999995, 5, 100}, {99.9999949, 5, 99.99999},
               {-0.0000001, 2, 0},  {123456789.125, 2, 123456789.13}};
  for (const auto& c : cases) {
    EXPECT_DOUBLE_EQ(RoundDouble(c.value, c.digits), c.expected) << c.value << " " << c.digits;
  }
  try {
    RoundDouble(1.0, 10);
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kOverflow);
  }
}

// Sort names move only the last word to the front; ampersands double so
// captions show them instead of an access key; file names follow either
// separator.
TEST(TextHelpers, Table) {
  const Texts sort_names[] = {{"John Q Public", "Public, John Q"},
                              {"Mary Ann Smith Jr", "Jr, Mary Ann Smith"},
                              {"Cher", "Cher"},
                              {"Trailing ", ", Trailing"},
                              {"", ""}};
  for (auto [name, sort] : sort_names) EXPECT_EQ(CalcSortName(name), sort) << name;
  const Texts ampersands[] = {{"Smith & Jones", "Smith && Jones"}, {"&&", "&&&&"}, {"", ""}};
  for (auto [text, fixed] : ampersands) EXPECT_EQ(FixAmpersand(text), fixed) << text;
  const Texts paths[] = {{"C:\\LW\\DATA\\SMIT73.mdb", "SMIT73.mdb"},
                         {"/srv/lw/data/SMIT73.mdb", "SMIT73.mdb"},
                         {"SMIT73.mdb", "SMIT73.mdb"},
                         {"C:\\LW\\", ""}};
  for (auto [path, name] : paths) EXPECT_EQ(GetFileNameFromPath(path), name) << path;
  for (int16_t code : {48, 57, 65, 90, 97, 122}) EXPECT_TRUE(IsAlphaNum(code)) << code;
  for (int16_t code : {47, 58, 64, 91, 96, 123, 32, 233, -1})
    EXPECT_FALSE(IsAlphaNum(code)) << code;
  // Symbols are counted in characters: "\xC3\x89" is one character, "É".
  EXPECT_EQ(CharacterCount("\xC3\x89TOILE2024"), 10u);
}

// The default text form of a number: at most 15 significant digits.
TEST(NumberText, Table) {
  const std::pair<double, const char*> cases[] = {{2, "2"},
                                                  {0.1, "0.1"},
                                                  {-0.0, "0"},
                                                  {0.05, "0.05"},
                                                  {1.0 / 3, "0.333333333333333"},
                                                  {1e20, "1E+20"},
                                                  {-12.5, "-12.5"},
                                                  {100.99999999999997, "101"}};
  for (auto [value, text] : cases) EXPECT_EQ(NumberText(value), text) << value;
}

// A comma separates thousands only; a number field keeps ten whole digits.
TEST(ParseNumber, AcceptsTypedFormsOnly) {
  const std::pair<const char*, double> cases[] = {{"1,234.5", 1234.5},
                                                  {"12,345,678", 12345678},
                                                  {" -3 ", -3},
                                                  {".5", 0.5},
                                                  {"9,999,999,999.99999", 9999999999.99999}};
  for (auto [text, value] : cases) EXPECT_DOUBLE_EQ(*ParseNumber(text), value) << text;
  for (const char* bad : {"", "-", "1.2.3", "12a", "1e5", "--1", ",1", "0,5", "1,2", "1,23",
                          "1,2345", "1234,567", "1,,234", "1,234,56", "1.234,5", "1,"}) {
    EXPECT_EQ(ParseNumberFault(bad), NumberFault::kNotANumber) << bad;
    EXPECT_FALSE(ParseNumber(bad).has_value()) << bad;
  }
  for (const char* big : {"12345678901", "12,345,678,901", "99999999999999999999"}) {
    EXPECT_EQ(ParseNumberFault(big), NumberFault::kTooLarge) << big;
    EXPECT_FALSE(ParseNumber(big).has_value()) << big;
  }
}

// Decimals are counted on the text a double was read from, not its binary
// value. Each check names the field or value in its refusal and says
// nothing when the value is good; a bad date is emptied.
TEST(FieldChecks, RefuseNamingTheValue) {
  for (double ok : {0.33333, 1e-5, 100.0, 123456.12345, -2.5, 0.1 + 0.2}) {
    EXPECT_LE(DecimalPlaces(ok), kShareDecimals) << ok;
  }
  for (double bad : {0.333333, 1e-6, 1234567.333333}) {
    EXPECT_GT(DecimalPlaces(bad), kShareDecimals) << bad;
  }
  testing::ScriptedUi ui;
  for (const char* key : {"decimals", "symbol_too_long", "bad_date"}) {
    testing::ExpectSaid(ui, __FILE__, key);
  }
  EXPECT_FALSE(ShareDecimalsValid(ui, 0.333333, "Number of Shares"));
  EXPECT_TRUE(ShareDecimalsValid(ui, 0.33333, "Number of Shares"));
  EXPECT_TRUE(SymbolLengthValid(ui, "\xC3\x89TOILE2024"));
  EXPECT_FALSE(SymbolLengthValid(ui, "US0378331005"));
  Date out = Date::FromYmd(2020, 1, 1);
  EXPECT_FALSE(DateValid(ui, "13/45/2024", "Purchase Date", out));
  EXPECT_EQ(out, Date());
  EXPECT_TRUE(DateValid(ui, "02/29/2024", "Date", out));
  EXPECT_EQ(out, Date::FromYmd(2024, 2, 29));
  ui.VerifyDone();
}

}  // namespace
}  // namespace lotwise
