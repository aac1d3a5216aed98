#include "reports/report_engine.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <kainjow/mustache.hpp>
#include <optional>
#include <sstream>

#include "data/database.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "ground/lw_error.h"
#include "ground/number_text.h"
#include "ground/value_helpers.h"
#include "reports/report_layout.h"

namespace lotwise {

namespace {

namespace mstch = kainjow::mustache;

struct QueryDef {
  std::string name;
  std::string parent;
  std::string sql;
  std::vector<std::string> params;  // the ":names" the SQL uses
  std::vector<size_t> children;     // indexes into the definition's queries
};

struct Definition {
  std::string title;
  LayoutSettings layout;
  std::vector<QueryDef> queries;
  std::string header;
  std::string footer;
  std::string body;
};

class DefinitionError {
 public:
  explicit DefinitionError(std::string file) : file_(std::move(file)) {}
  [[noreturn]] void At(int line, const std::string& what) const {
    throw LwError(err::kUnexpected,
                  "Report definition " + file_ + ", line " + std::to_string(line) + ": " + what);
  }
  [[noreturn]] void Whole(const std::string& what) const {
    throw LwError(err::kUnexpected, "Report definition " + file_ + ": " + what);
  }
  const std::string& file() const { return file_; }

 private:
  std::string file_;
};

std::string_view Trim(std::string_view text) {
  size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return {};
  size_t end = text.find_last_not_of(" \t\r");
  return text.substr(begin, end - begin + 1);
}

std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words;
  std::istringstream in{std::string(text)};
  std::string word;
  while (in >> word) words.push_back(word);
  return words;
}

std::optional<double> ToNumber(std::string_view text) {
  std::string s(Trim(text));
  if (s.empty()) return std::nullopt;
  char* end = nullptr;
  double value = std::strtod(s.c_str(), &end);
  if (end != s.c_str() + s.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

// The named parameters (":name") of a statement, outside quotes and
// comments.
std::vector<std::string> ParamNames(std::string_view sql) {
  std::vector<std::string> names;
  for (size_t i = 0; i < sql.size(); ++i) {
    char c = sql[i];
    if (c == '\'' || c == '"' || c == '[' || c == '`') {
      char close = c == '[' ? ']' : c;
      size_t end = sql.find(close, i + 1);
      i = end == std::string_view::npos ? sql.size() : end;
    } else if (c == '-' && i + 1 < sql.size() && sql[i + 1] == '-') {
      size_t end = sql.find('\n', i);
      i = end == std::string_view::npos ? sql.size() : end;
    } else if (c == ':' && i + 1 < sql.size() &&
               (std::isalpha(static_cast<unsigned char>(sql[i + 1])) || sql[i + 1] == '_')) {
      size_t end = i + 1;
      while (end < sql.size() &&
             (std::isalnum(static_cast<unsigned char>(sql[end])) || sql[end] == '_')) {
        ++end;
      }
      std::string name(sql.substr(i + 1, end - i - 1));
      if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
      i = end - 1;
    }
  }
  return names;
}

std::string StripSqlComments(std::string_view sql) {
  std::string out;
  size_t i = 0;
  while (i < sql.size()) {
    if (sql.compare(i, 2, "--") == 0) {
      size_t end = sql.find('\n', i);
      i = end == std::string_view::npos ? sql.size() : end;
    } else {
      out += sql[i++];
    }
  }
  return out;
}

ReportText::Align ParseAlign(std::string_view text, const DefinitionError& error, int line) {
  if (text == "left") return ReportText::Align::kLeft;
  if (text == "right") return ReportText::Align::kRight;
  if (text == "center") return ReportText::Align::kCenter;
  error.At(line, "alignment must be left, right or center, not \"" + std::string(text) + "\"");
}

void ReadSetting(Definition& def, std::string_view line, const DefinitionError& error, int number) {
  size_t colon = line.find(':');
  if (colon == std::string_view::npos) error.At(number, "\"key: value\" expected");
  std::string key(Trim(line.substr(0, colon)));
  std::string_view value = Trim(line.substr(colon + 1));
  LayoutSettings& layout = def.layout;
  if (key == "title") {
    def.title = std::string(value);
  } else if (key == "orientation") {
    if (value == "landscape") {
      layout.page_width = 792;
      layout.page_height = 612;
    } else if (value == "portrait") {
      layout.page_width = 612;
      layout.page_height = 792;
    } else {
      error.At(number, "orientation must be portrait or landscape");
    }
  } else if (key == "margins") {
    std::vector<std::string> parts = Words(value);
    std::vector<double> margins;
    for (const std::string& part : parts) {
      auto margin = ToNumber(part);
      if (!margin || *margin < 0 || *margin > 144) break;
      margins.push_back(*margin);
    }
    if (margins.size() != 4 || parts.size() != 4) {
      error.At(number, "margins: left top right bottom, 0 to 144 points each");
    }
    layout.margin_left = margins[0];
    layout.margin_top = margins[1];
    layout.margin_right = margins[2];
    layout.margin_bottom = margins[3];
  } else if (key == "font-size") {
    auto size = ToNumber(value);
    if (!size || *size < 6 || *size > 20) error.At(number, "font-size must be 6 to 20");
    layout.font_size = *size;
  } else {
    error.At(number, "unknown setting \"" + key + "\"");
  }
}

void ReadColumn(std::vector<LayoutColumn>& set, std::string_view line, const DefinitionError& error,
                int number) {
  std::vector<std::string> words = Words(line);
  if (words.size() < 3) error.At(number, "a column needs an id, a width and an alignment");
  LayoutColumn column;
  column.id = words[0];
  auto width = ToNumber(words[1]);
  if (!width || *width <= 4) error.At(number, "a column width must be a number above 4");
  column.width = *width;
  column.align = ParseAlign(words[2], error, number);
  // The label is the rest of the line after the alignment word.
  size_t pos = 0;
  for (int i = 0; i < 3; ++i) {
    pos = line.find(words[i], pos) + words[i].size();
  }
  column.label = std::string(Trim(line.substr(pos)));
  for (const LayoutColumn& other : set) {
    if (other.id == column.id) error.At(number, "column \"" + column.id + "\" is defined twice");
  }
  set.push_back(std::move(column));
}

Definition ParseDefinition(std::string_view text, const DefinitionError& error) {
  Definition def;
  enum class Section { kNone, kReport, kColumns, kQuery, kHeader, kFooter, kBody };
  Section section = Section::kNone;
  std::vector<LayoutColumn>* columns = nullptr;
  std::string* target = nullptr;
  std::vector<int> query_lines;
  bool seen_header = false, seen_footer = false, seen_body = false;

  int number = 0;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    start = end + 1;
    ++number;

    if (!line.empty() && line.front() == '@') {
      std::vector<std::string> words = Words(line.substr(1));
      const std::string kind = words.empty() ? "" : words[0];
      target = nullptr;
      columns = nullptr;
      auto once = [&](bool& seen) {
        if (seen) error.At(number, "section @" + kind + " appears twice");
        if (words.size() != 1) error.At(number, "@" + kind + " takes no name");
        seen = true;
      };
      if (kind == "report") {
        section = Section::kReport;
      } else if (kind == "columns") {
        if (words.size() != 2) error.At(number, "@columns needs one name");
        if (def.layout.column_sets.count(words[1])) {
          error.At(number, "column set \"" + words[1] + "\" is defined twice");
        }
        section = Section::kColumns;
        columns = &def.layout.column_sets[words[1]];
      } else if (kind == "query") {
        if (words.size() != 2 && !(words.size() == 4 && words[2] == "in")) {
          error.At(number, "@query NAME or @query NAME in PARENT expected");
        }
        QueryDef query;
        query.name = words[1];
        if (words.size() == 4) query.parent = words[3];
        for (const QueryDef& other : def.queries) {
          if (other.name == query.name)
            error.At(number, "query \"" + query.name + "\" is defined twice");
        }
        if (!query.parent.empty()) {
          auto parent = std::find_if(def.queries.begin(), def.queries.end(),
                                     [&](const QueryDef& q) { return q.name == query.parent; });
          if (parent == def.queries.end()) {
            error.At(number, "parent query \"" + query.parent + "\" must come first");
          }
          parent->children.push_back(def.queries.size());
        }
        def.queries.push_back(std::move(query));
        query_lines.push_back(number);
        section = Section::kQuery;
        target = &def.queries.back().sql;
      } else if (kind == "header") {
        once(seen_header);
        section = Section::kHeader;
        target = &def.header;
      } else if (kind == "footer") {
        once(seen_footer);
        section = Section::kFooter;
        target = &def.footer;
      } else if (kind == "body") {
        once(seen_body);
        section = Section::kBody;
        target = &def.body;
      } else {
        error.At(number, "unknown section \"" + std::string(line) + "\"");
      }
      continue;
    }

    std::string_view trimmed = Trim(line);
    switch (section) {
      case Section::kNone:
      case Section::kReport:
      case Section::kColumns:
        if (trimmed.empty() || trimmed.front() == '#') break;
        if (section == Section::kNone) error.At(number, "a section (\"@report\") must come first");
        if (section == Section::kReport) {
          ReadSetting(def, trimmed, error, number);
        } else {
          ReadColumn(*columns, trimmed, error, number);
        }
        break;
      default:
        *target += line;
        *target += '\n';
        break;
    }
  }

  if (!seen_body) error.Whole("the @body section is missing");
  double room = def.layout.page_width - def.layout.margin_left - def.layout.margin_right;
  for (const auto& [name, set] : def.layout.column_sets) {
    if (set.empty()) error.Whole("column set \"" + name + "\" has no columns");
    double span = 0;
    for (const LayoutColumn& column : set) span += column.width;
    if (span > room + 0.001) {
      error.Whole("column set \"" + name + "\" is " + NumberText(span) +
                  " points wide; the page has room for " + NumberText(room));
    }
  }
  for (size_t i = 0; i < def.queries.size(); ++i) {
    QueryDef& query = def.queries[i];
    std::vector<std::string> words = Words(StripSqlComments(query.sql));
    std::string first = words.empty() ? "" : words[0];
    for (char& c : first) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (first != "SELECT" && first != "WITH") {
      error.At(query_lines[i], "query \"" + query.name + "\" must be a SELECT");
    }
    query.params = ParamNames(query.sql);
    if (query.parent.empty() && !query.params.empty()) {
      error.At(query_lines[i], "query \"" + query.name + "\" is not nested, so :" +
                                   query.params.front() + " has no value");
    }
  }
  return def;
}

// One stored value of a row: the column's name, what SQLite gives as text,
// and whether it was NULL.
struct RawValue {
  std::string column;
  std::string text;
  bool is_null = false;
};

bool IsTrue(const std::string& text, bool is_null) {
  if (is_null || text.empty()) return false;
  auto number = ToNumber(text);
  return !number || *number != 0;
}

class DataBuilder {
 public:
  DataBuilder(const Definition& def, Database& db, const DefinitionError& error)
      : def_(def), db_(db), error_(error) {}

  mstch::data Rows(const QueryDef& query, const std::vector<RawValue>* parent) {
    Params params;
    for (const std::string& name : query.params) {
      const RawValue* bound = nullptr;
      for (const RawValue& value : *parent) {
        std::string key = value.column;
        std::replace(key.begin(), key.end(), ' ', '_');
        if (key == name) bound = &value;
      }
      if (!bound) {
        error_.Whole("query \"" + query.name + "\": :" + name + " names no column of query \"" +
                     query.parent + "\"");
      }
      params.emplace_back(name, bound->is_null ? Value{} : Value{bound->text});
    }
    mstch::data list{mstch::data::type::list};
    try {
      Query rows = db_.Select(query.sql, params);
      std::vector<std::pair<std::string, std::string>> columns;  // name, format
      std::vector<std::string> selected;
      for (int i = 0; i < rows.ColumnCount(); ++i) {
        std::string name = rows.ColumnName(i);
        selected.push_back(name);
        size_t colon = name.rfind(':');
        if (colon == std::string::npos) {
          columns.emplace_back(name, "");
        } else {
          columns.emplace_back(name.substr(0, colon), name.substr(colon + 1));
        }
      }
      while (rows.Next()) {
        std::vector<RawValue> raw;
        mstch::data row{mstch::data::type::object};
        for (size_t i = 0; i < columns.size(); ++i) {
          const auto& [name, format] = columns[i];
          RawValue value{name, rows.Text(selected[i].c_str()), rows.IsNull(selected[i].c_str())};
          if (format == "flag") {
            row.set(name, mstch::data(IsTrue(value.text, value.is_null)));
          } else {
            // An empty value is false, so that {{#Name}} shows what depends on it.
            std::string shown = FormatReportValue(format, value.text, value.is_null);
            row.set(name, shown.empty() ? mstch::data(false) : mstch::data(shown));
          }
          raw.push_back(std::move(value));
        }
        for (size_t child : query.children) {
          row.set(def_.queries[child].name, Rows(def_.queries[child], &raw));
        }
        list.push_back(row);
      }
    } catch (const LwError& e) {
      if (e.number() == err::kUnexpected) throw;
      throw LwError(e.number(),
                    e.text() + " (query \"" + query.name + "\" of " + error_.file() + ")");
    }
    return list;
  }

 private:
  const Definition& def_;
  Database& db_;
  const DefinitionError& error_;
};

// Expands a template over the rows; `page` (when given) adds the page
// number and count on top of them.
std::string Expand(const std::string& text, const mstch::data& data, const mstch::data* page,
                   const char* section, const DefinitionError& error) {
  mstch::mustache tmpl{text};
  if (!tmpl.is_valid()) error.Whole("@" + std::string(section) + ": " + tmpl.error_message());
  tmpl.set_custom_escape([](const std::string& value) { return EscapeLayoutValue(value); });
  mstch::context<std::string> context{&data};
  if (page) context.push(page);
  std::string expanded = tmpl.render(context);
  if (!tmpl.is_valid()) error.Whole("@" + std::string(section) + ": " + tmpl.error_message());
  return expanded;
}

// Inserts thousands separators into the whole part of a plain decimal text.
std::string Grouped(const std::string& number) {
  size_t digits_start = number.empty() || number[0] != '-' ? 0 : 1;
  size_t point = number.find('.');
  size_t whole_end = point == std::string::npos ? number.size() : point;
  std::string out = number.substr(0, digits_start);
  for (size_t i = digits_start; i < whole_end; ++i) {
    size_t left = whole_end - i;
    if (i > digits_start && left % 3 == 0) out += ',';
    out += number[i];
  }
  out += number.substr(whole_end);
  return out;
}

std::string DecimalText(double value, size_t min_decimals) {
  // The program's rounding moves negative values toward zero at the last
  // digit (-40 would print as -39.99999), so the magnitude is rounded.
  double rounded = RoundShares(std::abs(value));
  // Fixed notation: a tiny count must not print as "1E-05".
  std::string text = fmt::format("{:.5f}", rounded);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  if (value < 0 && rounded != 0) text.insert(0, "-");
  size_t point = text.find('.');
  size_t decimals = point == std::string::npos ? 0 : text.size() - point - 1;
  if (decimals < min_decimals) {
    if (point == std::string::npos) text += '.';
    text.append(min_decimals - decimals, '0');
  }
  return Grouped(text);
}

}  // namespace

std::string FormatReportValue(std::string_view format, const std::string& text, bool is_null) {
  if (format.empty()) return is_null ? std::string() : text;
  if (format == "flag") return IsTrue(text, is_null) ? "1" : "";
  if (format == "longshort") return IsTrue(text, is_null) ? "Long" : "Short";
  if (format == "yesno") return IsTrue(text, is_null) ? "Yes" : "No";
  bool known = format == "date" || format == "money" || format == "shares" || format == "price" ||
               format == "trim";
  if (!known)
    throw LwError(err::kUnexpected, "Unknown report format \"" + std::string(format) + "\"");
  if (is_null) return {};
  if (format == "trim") return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
  if (format == "date") {
    auto date = Date::ParseIso(text);
    return date ? date->ToString() : text;
  }
  auto number = ToNumber(text);
  if (!number) return text;
  if (format == "money") {
    // Sums of stored amounts arrive as whole ten-thousandths; a computed
    // value may arrive as a REAL holding one.
    int64_t units = 0;
    try {
      size_t used = 0;
      units = std::stoll(text, &used);
      if (used != text.size()) units = std::llround(*number);
    } catch (const std::exception&) {
      units = std::llround(*number);
    }
    return Currency::FromUnits(units).RoundedToCent().ToCentsText();
  }
  return DecimalText(*number, format == "price" ? 2 : 0);
}

void CheckReportFile(const std::string& definition_path) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(definition_path, ec)) {
    throw LwError(err::kReportFileMissing, "Report file not found: " + definition_path);
  }
}

ReportDocument RenderReport(const std::string& definition_path, Database& report_db,
                            const std::string& title) {
  CheckReportFile(definition_path);
  std::ifstream in(definition_path, std::ios::binary);
  std::stringstream content;
  content << in.rdbuf();
  if (!in) throw LwError(err::kPathFileAccess, "Path/File access error");

  DefinitionError error(std::filesystem::path(definition_path).filename().string());
  Definition def = ParseDefinition(content.str(), error);
  if (def.title.empty()) def.title = title;

  mstch::data data{mstch::data::type::object};
  data.set("title", def.title);
  DataBuilder builder(def, report_db, error);
  for (const QueryDef& query : def.queries) {
    if (query.parent.empty()) data.set(query.name, builder.Rows(query, nullptr));
  }

  std::string body = Expand(def.body, data, nullptr, "body", error);
  auto page_template = [&](const std::string& text, const char* section) -> PageTemplate {
    return [&, section](int page, int pages) {
      mstch::data numbers{mstch::data::type::object};
      numbers.set("page", std::to_string(page));
      numbers.set("pages", std::to_string(pages));
      return Expand(text, data, &numbers, section, error);
    };
  };
  ReportDocument document;
  document.title = title;
  document.page_width = def.layout.page_width;
  document.page_height = def.layout.page_height;
  document.pages = LayOutPages(def.layout, body, page_template(def.header, "header"),
                               page_template(def.footer, "footer"), error.file());
  return document;
}

}  // namespace lotwise
