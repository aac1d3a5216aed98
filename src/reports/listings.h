#pragma once

#include "reports/basis_report.h"

namespace lotwise {

class Application;

// The taxpayer listing's sort choices ("Sort By:"): "Taxpayer &Code" sorts
// by [Client Code], "Taxpayer &Name" by [Sort Name].
enum class ClientSort { kCode = 0, kName = 1 };
// The security listing's list-from choices ("List Securities for").
enum class SecListFrom { kTaxpayer = 0, kPortfolio = 1 };

// Fills the taxpayer listing tables and runs "TAXPAYER.RPT". Returns true
// iff the report ran.
bool RunClientReport(Application& app, ReportDestination destination, ClientSort sort);
// Empties and fills "Client Report", "Portfolio Report" and "Usage": one
// row per indexed taxpayer, marked "Taxpayer File Missing" when its file is
// gone, and the portfolios of each file found. Returns true iff complete.
bool CreateClientReportTables(Application& app, ClientSort sort);

// Fills the security listing tables and runs "SECLIST1.RPT" (sort choice 0)
// or "SECLIST2.RPT" (1). Returns true iff the report ran.
bool RunSecReport(Application& app, ReportDestination destination, int list_from, int sort_choice);
// Empties and fills "Sec List Report", "Client Report" and "Usage".
// `list_from` is 0 (the taxpayer) or 1 (the open portfolio); any other value
// is reported and gives false, and so is 1 while no portfolio is open, both
// before any table is touched.
bool CreateSecReportTables(Application& app, int list_from);

}  // namespace lotwise
