#include "import_csv.h"

#include <csv.h>

#include <istream>
#include <string_view>

namespace lotwise::cli {

namespace {

// Debian's libcsv does the quoting rules; this side only keeps track of the
// lines, which libcsv does not count, so that a refused record can be named
// by the line the user sees in an editor.
struct Collector {
  std::vector<CsvRecord>& records;
  CsvRecord current;
  // The line the record being read started on.
  int start_line = 0;
  bool record_ended = false;
};

void OnField(void* data, size_t size, void* sink) {
  auto* collector = static_cast<Collector*>(sink);
  if (data == nullptr) {
    collector->current.fields.emplace_back();
  } else {
    collector->current.fields.emplace_back(static_cast<const char*>(data), size);
  }
}

void OnRecordEnd(int, void* sink) {
  auto* collector = static_cast<Collector*>(sink);
  collector->current.line = collector->start_line;
  collector->records.push_back(std::move(collector->current));
  collector->current = CsvRecord();
  collector->record_ended = true;
}

bool IsBlank(std::string_view line) {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

// Owns the parser so that every way out frees it.
class Parser {
 public:
  Parser() { ok_ = csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI | CSV_APPEND_NULL) == 0; }
  ~Parser() { csv_free(&parser_); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  bool ok() const { return ok_; }
  csv_parser* get() { return &parser_; }

 private:
  csv_parser parser_{};
  bool ok_ = false;
};

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

bool ReadCsv(std::istream& in, std::vector<CsvRecord>& records, CsvError& error) {
  Parser parser;
  if (!parser.ok()) {
    error = {0, "out of memory"};
    return false;
  }
  Collector collector{records, {}, 0, false};
  bool record_open = false;
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (number == 1 && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
    if (!record_open) collector.start_line = number;
    collector.record_ended = false;
    line += '\n';
    if (csv_parse(parser.get(), line.data(), line.size(), OnField, OnRecordEnd, &collector) !=
        line.size()) {
      error = {number, csv_error(parser.get()) == CSV_EPARSE
                           ? "not valid CSV: a quote out of place (a quote inside a field is "
                             "written twice, and the whole field is quoted)"
                           : "the line could not be read (out of memory)"};
      return false;
    }
    // A line that neither ended a record nor was blank continues a quoted
    // field on the next line.
    if (collector.record_ended) {
      record_open = false;
    } else if (!IsBlank(line)) {
      record_open = true;
    }
  }
  if (in.bad()) {
    error = {collector.start_line, "the file could not be read"};
    return false;
  }
  if (csv_fini(parser.get(), OnField, OnRecordEnd, &collector) != 0) {
    error = {collector.start_line, "not valid CSV: a quoted field is not closed"};
    return false;
  }
  return true;
}

}  // namespace lotwise::cli
