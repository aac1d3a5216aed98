#pragma once

#include <cstdint>
#include <string>

#include "app/date.h"

namespace lotwise {

class Application;

// What a report covers: the whole taxpayer, the open portfolio or the open
// security.
enum class ReportScope { kTaxpayer = 0, kPortfolio = 1, kSecurity = 2 };

// What a basis run produces. The rows computed are the same for all three;
// the kind decides which securities are taken and which reports run.
enum class BasisKind { kBasis = 1, kScheduleD = 2, kBoth = 3 };

// Where a report goes: the viewer window or the printer.
enum class ReportDestination { kScreen = 0, kPrinter = 1 };

// The settings of the Basis Analysis and Schedule D option dialogs.
struct BasisReportRequest {
  BasisKind kind = BasisKind::kBasis;
  bool detail = true;
  ReportScope scope = ReportScope::kTaxpayer;
  std::string year_end;  // as typed, "mm/dd/yyyy"
  ReportDestination destination = ReportDestination::kScreen;
  // "Exclude securities if no shares owned at Year End date. "
  bool exclude_empty = false;
  // Run the Schedule D elections report too.
  bool elections = false;
};

// The whole report: checks the year end and the scope, asks about a
// portfolio scope, computes (CalcBasisSchedDRpt), runs the chosen report
// files and, after a Schedule D attachment, offers the export file. A report
// that fails is reported and the run goes on with the others. Returns true
// iff the tables were computed and every report ran; `export_made` (when
// given) tells whether the export file was made.
bool RunBasisSchedDReport(Application& app, const BasisReportRequest& request,
                          bool* export_made = nullptr);

// Empties and fills the report tables of a basis run for `scope` and the
// year ending `year_end`, the walk inside one database transaction. Returns
// true iff the tables are complete; on false they hold nothing of this run's
// walk.
bool CalcBasisSchedDRpt(Application& app, ReportScope scope, Date year_end, BasisKind kind);

// The first day of the tax year that ends on `year_end`: one year earlier
// plus one day.
Date YearStart(Date year_end);
// The first day on which a sale of a lot acquired on `acquired` is long
// term: 12 months (clamped to the month's end) plus one day later.
Date LongTermDate(Date acquired);

}  // namespace lotwise
