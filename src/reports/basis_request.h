#pragma once

#include <string>

#include "ground/date.h"

namespace lotwise {

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

// The first day of the tax year that ends on `year_end`: one year earlier
// plus one day.
Date YearStart(Date year_end);
// The first day on which a sale of a lot acquired on `acquired` is long
// term: 12 months (clamped to the month's end) plus one day later.
Date LongTermDate(Date acquired);

}  // namespace lotwise
