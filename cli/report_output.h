#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "reports/basis_report.h"
#include "reports/report_document.h"
#include "session.h"

namespace lotwise::cli {

// The report tables each kind of run fills, in the order the JSON lists them.
extern const std::vector<std::string> kBasisTables;
extern const std::vector<std::string> kTransListTables;
extern const std::vector<std::string> kTaxpayerListTables;
extern const std::vector<std::string> kSecurityListTables;

// Parses a sell method's command-line name (FIFO, Specific, AvgSingle,
// AvgDouble; any case). Returns the method, or kNotSelected for any other
// text.
SellMethod SellMethodFromName(const std::string& name);

// A basis or Schedule D run without a window: securities that have no sell
// method yet get `unsold_method` for the whole run ("Use for all Securities
// without Sells"), or are left out when it is kNotSelected; the export
// file is written to `csv_path` when not empty and declined otherwise,
// whatever --yes says. Returns true iff RunBasisSchedDReport succeeded and
// the export file asked for was written.
bool RunBasisWithoutWindow(Session& session, const BasisReportRequest& request,
                           SellMethod unsold_method, const std::string& csv_path);

// Writes `tables` of the run's report database as JSON (ReportTablesJson) to
// `path`. Returns true iff written; otherwise says why on the error stream.
bool WriteTablesJson(Session& session, const std::vector<std::string>& tables,
                     const std::string& path);
// Writes the documents into one PDF at `path`. Returns true iff written;
// otherwise says why on the error stream.
bool WriteDocumentsPdf(const std::vector<ReportDocument>& documents, const std::string& path);
// The document as console text: each text at the column of its place on
// the page (its cell's alignment kept), so that values stay under their
// headings even where a cell is empty; pages separated by a form feed.
std::string ColumnText(const ReportDocument& document);
// Writes the documents' console text, a form feed between two documents as
// between two pages.
void PrintDocuments(std::ostream& out, const std::vector<ReportDocument>& documents);

// The documents shown since the first `first` of this session.
std::vector<ReportDocument> DocumentsSince(const Session& session, size_t first);

}  // namespace lotwise::cli
