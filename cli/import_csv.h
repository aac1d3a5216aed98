#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace lotwise::cli {

// One record of a comma-separated text: its fields, and the line of the
// text on which it starts (1 for the first).
struct CsvRecord {
  int line = 0;
  std::vector<std::string> fields;
};

// Why a text could not be read: the line where reading stopped and what
// was wrong there.
struct CsvError {
  int line = 0;
  std::string text;
};

// Reads every record of `in` as RFC 4180 describes it: quoted fields may
// hold commas, doubled quotes and line ends; lines end in CRLF or LF;
// blanks around an unquoted field are dropped. A leading UTF-8 byte-order
// mark (spreadsheet exports write one) and blank lines are skipped.
// Returns true iff the whole text is well-formed; otherwise fills `error`
// and leaves `records` holding those read before it.
bool ReadCsv(std::istream& in, std::vector<CsvRecord>& records, CsvError& error);

}  // namespace lotwise::cli
