#pragma once

#include <cstdint>
#include <string>

#include "ground/date.h"
#include "reports/basis_request.h"

namespace lotwise {

class Application;

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

}  // namespace lotwise
