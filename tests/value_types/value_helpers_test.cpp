#include "ground/value_helpers.h"

#include <gtest/gtest.h>

#include <utility>

#include "ground/lw_error.h"
#include "ground/number_text.h"
#include "support/golden.h"
#include "support/scripted_ui.h"

namespace lotwise {
namespace {

// Character classes and counts (in characters: "\xC3\x89" is one, "É").
TEST(TextHelpers, AlphaNumAndCharacterCount) {
  for (int16_t code : {48, 57, 65, 90, 97, 122}) EXPECT_TRUE(IsAlphaNum(code)) << code;
  for (int16_t code : {47, 58, 64, 91, 96, 123, 32, 233, -1})
    EXPECT_FALSE(IsAlphaNum(code)) << code;
  EXPECT_EQ(CharacterCount("\xC3\x89TOILE2024"), 10u);
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
