#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lotwise {
class Database;
}

namespace lotwise::cli {

// What a report table's field holds, known by its name (the same name means
// the same kind in every table).
enum class FieldKind {
  kText,     // text as stored
  kInteger,  // counts and keys
  kNumber,   // shares and basis per share (double)
  kMoney,    // ten-thousandths
  kDate,     // "yyyy-mm-dd" text
  kFlag,     // 0/1
};
FieldKind KindOfField(std::string_view field);

// Returns `text` as a quoted JSON string. Bytes that are not UTF-8 become
// U+FFFD, so the result is always valid JSON.
std::string JsonString(std::string_view text);

// Returns one JSON object holding, for each of `tables` in the order given,
// an array of its rows in table order, each row an object keyed by field
// name. Money is its exact decimal text, shares and basis per share their
// default number text, dates "mm/dd/yyyy", flags true/false, NULL null. The
// internal key "Trans Row" is left out. Errors leave as LwError.
std::string ReportTablesJson(Database& report_db, const std::vector<std::string>& tables);

}  // namespace lotwise::cli
