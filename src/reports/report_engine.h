#pragma once

#include <string>
#include <string_view>

#include "reports/report_document.h"

namespace lotwise {

class Database;

// The report engine lays a report definition file (".RPT") out over the
// tables of the report database.
//
// A definition is a text file of sections, each opened by a line that starts
// with "@"; lines starting with "#" are comments in "@report" and "@columns".
//
//   @report                      page settings, one "key: value" a line:
//     title: Basis Analysis Report        the printed title ({{title}})
//     orientation: landscape              portrait (default) or landscape,
//                                         US Letter
//     margins: 36 36 36 36                left top right bottom, points
//     font-size: 9                        the body size; titles and small
//                                         print are sized from it
//   @columns NAME                a column set: one column a line,
//     ID WIDTH ALIGN LABEL                 "cost 70 right Cost"; widths in
//                                          points, ALIGN left|right|center,
//                                          LABEL printed by "heading"
//   @query NAME                  a SELECT over the report database; every
//   @query NAME in PARENT        row of a nested query's PARENT runs it once,
//                                with each ":Param_Name" bound to the parent
//                                row's column "Param Name" (blanks written
//                                as "_")
//   @header, @footer, @body      mustache templates (see below)
//
// A query's rows reach the templates as a list named after the query (a
// nested one as a list inside each parent row), each row an object keyed by
// its column names. A column alias "Name:FORMAT" is shown under "Name",
// formatted (NULL stays empty):
//   date       "yyyy-mm-dd" as "mm/dd/yyyy" (other text unchanged)
//   money      ten-thousandths as "1,234.56", "-1,234.56": rounded half to
//              even to the cent
//   shares     up to 5 decimals, trailing zeros dropped: "1,234.5"
//   price      as shares, but at least 2 decimals: "33.33333", "10.00"
//   longshort  "Long" / "Short"       yesno  "Yes" / "No"
//   trim       right-trimmed text
//   flag       a number as true (not 0) or false, for {{#Name}} sections
// An empty value (NULL or empty text) is false in {{#Name}} / {{^Name}}.
// Both page templates see the top-level lists and {{title}}, {{page}} and
// {{pages}}; the header repeats at the top of every page, the footer at its
// foot.
//
// Each line the templates expand to is one layout command (blank lines are
// skipped, leading blanks ignored):
//   title TEXT                 large bold centred line
//   center TEXT | center-bold TEXT
//   text TEXT | bold TEXT      left-aligned, wrapped at the margins
//   small TEXT                 small print
//   split LEFT|CENTER|RIGHT    one line of three parts (page header/footer)
//   heading SET                the column labels of SET, bold, underlined
//   row SET A|B|...            one cell per column of SET; left-aligned and
//   bold-row SET A|B|...       centred cells wrap, right-aligned ones do not
//   rule [SET ID...]           a rule across the page or over the columns
//   gap [POINTS]               vertical space
//   keep N                     the next N commands stay on one page
//   page                       a page break
// Values are escaped on expansion, so a "|" inside a value stays text.
//
// Returns the report laid out on pages, captioned `title` (also the printed
// title when the definition names none). Throws LwError 20504 when
// `definition_path` does not exist, and LwError 32000 naming the file (and
// the line where known) when the definition is faulty; database failures
// leave with their own numbers, the query and the file added to the text.
ReportDocument RenderReport(const std::string& definition_path, Database& report_db,
                            const std::string& title);

// Throws LwError 20504 when the definition file `definition_path` does not
// exist.
void CheckReportFile(const std::string& definition_path);

// Formats one stored value as the definition's FORMAT asks (see above).
// `text` is the value as SQLite gives it as text; `is_null` marks NULL.
// Throws LwError 32000 for an unknown format.
std::string FormatReportValue(std::string_view format, const std::string& text, bool is_null);

}  // namespace lotwise
