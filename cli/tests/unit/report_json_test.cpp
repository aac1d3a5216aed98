#include "report_json.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace lotwise::cli {
namespace {

// Any text of the report tables becomes valid JSON: escapes where JSON
// needs them, UTF-8 kept, and bytes that are no UTF-8 replaced rather than
// passed on to break the reader.
TEST(ReportJsonTest, JsonString_EscapesAsJsonRequires) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "\"\""},
      {"Zed \"Z\" C:\\", "\"Zed \\\"Z\\\" C:\\\\\""},
      {"a\r\nb\tc", "\"a\\r\\nb\\tc\""},
      {std::string("a\x01\x1f\x7f", 4), "\"a\\u0001\\u001f\\u007f\""},
      {std::string("a\0b", 3), "\"a\\u0000b\""},
      {"Caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\x88",
       "\"Caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\x88\""},
      {"Caf\xe9", "\"Caf\\ufffd\""},                              // Latin-1 byte
      {"x\xe2\x82", "\"x\\ufffd\\ufffd\""},                       // cut off at the end
      {"\xc0\xaf", "\"\\ufffd\\ufffd\""},                         // overlong "/"
      {"\xed\xa0\x80", "\"\\ufffd\\ufffd\\ufffd\""},              // surrogate
      {"\xf4\x90\x80\x80", "\"\\ufffd\\ufffd\\ufffd\\ufffd\""}};  // beyond Unicode
  for (const auto& [text, json] : cases) EXPECT_EQ(JsonString(text), json) << json;
}

// Every field a report table holds has the kind its JSON value needs; a
// field the table does not know stays text.
TEST(ReportJsonTest, KindOfField_ByName) {
  const std::pair<const char*, FieldKind> cases[] = {
      {"Sale Price", FieldKind::kMoney},    {"GainLoss", FieldKind::kMoney},
      {"Total Cost", FieldKind::kMoney},    {"Basis Per Share", FieldKind::kNumber},
      {"Total Shares", FieldKind::kNumber}, {"Date Acqrd", FieldKind::kDate},
      {"Beginning Date", FieldKind::kDate}, {"Long Term", FieldKind::kFlag},
      {"Sec ID", FieldKind::kInteger},      {"Sell Method", FieldKind::kText},
      {"sale price", FieldKind::kText}};
  for (const auto& [field, kind] : cases) EXPECT_EQ(KindOfField(field), kind) << field;
}

}  // namespace
}  // namespace lotwise::cli
