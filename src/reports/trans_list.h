#pragma once

#include <string>

#include "ground/date.h"
#include "reports/basis_report.h"

namespace lotwise {

class Application;

// The transaction listing: checks the dates and the scope, fills the "TL"
// tables and runs "TRNSLIST.RPT". Returns true iff the report ran.
bool RunTransListRpt(Application& app, ReportScope scope, const std::string& begin_text,
                     const std::string& end_text, ReportDestination destination);

// Validates the date range; sets both dates. Returns true iff both are
// dates and the beginning is before the end.
bool VerifyDatesTL(Application& app, const std::string& begin_text, const std::string& end_text,
                   Date& begin, Date& end);

// Empties and fills "Usage", "TL Info", "TL Port", "TL Sec" and "TL Trans"
// for the filters ("*" = not restricted) and the inclusive date range, all
// in one unit of work (a failed run leaves the previous run's rows).
// "TL Trans" rows carry the shares as stored: sales negative, the shares
// that left the block. Cost and Fee are 0 where the kind has none; [Sale
// Price] is set for sales only. Returns true iff complete.
bool CalcTransListRpt(Application& app, const std::string& port_filter,
                      const std::string& sec_filter, Date begin, Date end);

}  // namespace lotwise
