#include "report_json.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace lotwise::cli {
namespace {

// Any text of the report tables becomes valid JSON: escapes where JSON
// needs them, UTF-8 kept, and bytes that are no UTF-8 replaced rather than
// passed on to break the reader.
struct JsonStringCase {
  const char* name;
  std::string text;
  std::string json;
};
void PrintTo(const JsonStringCase& c, std::ostream* os) { *os << c.name; }

class JsonStringTest : public testing::TestWithParam<JsonStringCase> {};

TEST_P(JsonStringTest, JsonString_EscapesAsJsonRequires) {
  EXPECT_EQ(JsonString(GetParam().text), GetParam().json);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, JsonStringTest,
    testing::Values(
        JsonStringCase{"Plain", "ACME FUND", "\"ACME FUND\""}, JsonStringCase{"Empty", "", "\"\""},
        JsonStringCase{"QuoteAndBackslash", "Zed \"Z\" C:\\", "\"Zed \\\"Z\\\" C:\\\\\""},
        JsonStringCase{"LineEnds", "a\r\nb\tc", "\"a\\r\\nb\\tc\""},
        JsonStringCase{"ControlBytes", std::string("a\x01\x1f\x7f", 4),
                       "\"a\\u0001\\u001f\\u007f\""},
        JsonStringCase{"NulByte", std::string("a\0b", 3), "\"a\\u0000b\""},
        JsonStringCase{"Utf8Kept", "Caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\x88",
                       "\"Caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\x88\""},
        JsonStringCase{"Latin1Byte", "Caf\xe9", "\"Caf\\ufffd\""},
        JsonStringCase{"TruncatedAtEnd", "x\xe2\x82", "\"x\\ufffd\\ufffd\""},
        JsonStringCase{"OverlongSlash", "\xc0\xaf", "\"\\ufffd\\ufffd\""},
        JsonStringCase{"Surrogate", "\xed\xa0\x80", "\"\\ufffd\\ufffd\\ufffd\""},
        JsonStringCase{"BeyondUnicode", "\xf4\x90\x80\x80", "\"\\ufffd\\ufffd\\ufffd\\ufffd\""}),
    [](const testing::TestParamInfo<JsonStringCase>& info) { return info.param.name; });

// Every field a report table holds has the kind its JSON value needs; a
// field the table does not know stays text.
TEST(KindOfFieldTest, KindOfField_ByName) {
  EXPECT_EQ(KindOfField("Sale Price"), FieldKind::kMoney);
  EXPECT_EQ(KindOfField("GainLoss"), FieldKind::kMoney);
  EXPECT_EQ(KindOfField("Total Cost"), FieldKind::kMoney);
  EXPECT_EQ(KindOfField("Basis Per Share"), FieldKind::kNumber);
  EXPECT_EQ(KindOfField("Total Shares"), FieldKind::kNumber);
  EXPECT_EQ(KindOfField("Date Acqrd"), FieldKind::kDate);
  EXPECT_EQ(KindOfField("Beginning Date"), FieldKind::kDate);
  EXPECT_EQ(KindOfField("Long Term"), FieldKind::kFlag);
  EXPECT_EQ(KindOfField("Sec ID"), FieldKind::kInteger);
  EXPECT_EQ(KindOfField("Sell Method"), FieldKind::kText);
  EXPECT_EQ(KindOfField("sale price"), FieldKind::kText);
}

}  // namespace
}  // namespace lotwise::cli
