#include "report_json.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "data/database.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "ground/number_text.h"
#include "reports/report_db.h"

namespace lotwise::cli {

namespace {

constexpr std::array<std::pair<std::string_view, FieldKind>, 19> kFieldKinds{{
    {"Usage Count", FieldKind::kInteger},
    {"Block No", FieldKind::kInteger},
    {"TransNo", FieldKind::kInteger},
    {"Sec ID", FieldKind::kInteger},
    {"Shares", FieldKind::kNumber},
    {"Total Shares", FieldKind::kNumber},
    {"Basis Per Share", FieldKind::kNumber},
    {"Cost", FieldKind::kMoney},
    {"Total Cost", FieldKind::kMoney},
    {"Fee", FieldKind::kMoney},
    {"Sale Price", FieldKind::kMoney},
    {"GainLoss", FieldKind::kMoney},
    {"Date", FieldKind::kDate},
    {"Date Acqrd", FieldKind::kDate},
    {"Date Sold", FieldKind::kDate},
    {"Year End", FieldKind::kDate},
    {"Beginning Date", FieldKind::kDate},
    {"End Date", FieldKind::kDate},
    {"Long Term", FieldKind::kFlag},
}};

// The key the report database gives "BA Trans" rows so that the pools can
// be rewritten; it means nothing to a reader of the report.
constexpr std::string_view kInternalKey = "Trans Row";

// Length of the UTF-8 sequence starting at text[i], or 0 when the bytes
// there are not one (overlong forms and surrogates included).
size_t Utf8SequenceLength(std::string_view text, size_t i) {
  const auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char lead = byte(i);
  size_t length = 0;
  uint32_t code = 0;
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    code = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    code = lead & 0x0F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    code = lead & 0x07;
  } else {
    return 0;
  }
  if (i + length > text.size()) return 0;
  for (size_t k = 1; k < length; ++k) {
    if ((byte(i + k) & 0xC0) != 0x80) return 0;
    code = (code << 6) | (byte(i + k) & 0x3F);
  }
  if ((length == 3 && (code < 0x800 || (code >= 0xD800 && code <= 0xDFFF))) ||
      (length == 4 && (code < 0x10000 || code > 0x10FFFF))) {
    return 0;
  }
  return length;
}

std::string ValueJson(const ReportCell& cell, const std::string& column) {
  if (cell.is_null) return "null";
  switch (KindOfField(column)) {
    case FieldKind::kInteger:
      return std::to_string(cell.integer);
    case FieldKind::kNumber:
      return std::isfinite(cell.number) ? NumberText(cell.number) : "null";
    case FieldKind::kMoney:
      return Currency::FromUnits(cell.integer).ToString();
    case FieldKind::kFlag:
      return cell.integer != 0 ? "true" : "false";
    case FieldKind::kDate: {
      // A value that is not in the storage form is shown as it stands
      // rather than guessed at.
      const std::optional<Date> date = Date::ParseIso(cell.text);
      return JsonString(date ? date->ToString() : cell.text);
    }
    case FieldKind::kText:
      break;
  }
  return JsonString(cell.text);
}

}  // namespace

FieldKind KindOfField(std::string_view field) {
  for (const auto& [name, kind] : kFieldKinds) {
    if (name == field) return kind;
  }
  return FieldKind::kText;
}

std::string JsonString(std::string_view text) {
  std::string json = "\"";
  for (size_t i = 0; i < text.size();) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    const size_t length = Utf8SequenceLength(text, i);
    if (length == 0) {
      json += "\\ufffd";
      ++i;
      continue;
    }
    if (length > 1) {
      json.append(text.substr(i, length));
    } else if (c == '"' || c == '\\') {
      json += '\\';
      json += static_cast<char>(c);
    } else if (c == '\n') {
      json += "\\n";
    } else if (c == '\r') {
      json += "\\r";
    } else if (c == '\t') {
      json += "\\t";
    } else if (c < 0x20 || c == 0x7F) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      json += escaped;
    } else {
      json += static_cast<char>(c);
    }
    i += length;
  }
  return json + '"';
}

std::string ReportTablesJson(Database& report_db, const std::vector<std::string>& tables) {
  std::string json = "{";
  bool first_table = true;
  for (const std::string& table : tables) {
    json += first_table ? "\n  " : ",\n  ";
    first_table = false;
    json += JsonString(table) + ": [";
    const ReportTable read = ReadReportTable(report_db, table);
    bool first_row = true;
    for (const std::vector<ReportCell>& row : read.rows) {
      json += first_row ? "\n    {" : ",\n    {";
      first_row = false;
      bool first_field = true;
      for (size_t i = 0; i < read.columns.size(); ++i) {
        if (read.columns[i] == kInternalKey) continue;
        if (!first_field) json += ", ";
        first_field = false;
        json += JsonString(read.columns[i]) + ": " + ValueJson(row[i], read.columns[i]);
      }
      json += "}";
    }
    json += first_row ? "]" : "\n  ]";
  }
  return json + (first_table ? "}\n" : "\n}\n");
}

}  // namespace lotwise::cli
