#include "reports/basis_request.h"

namespace lotwise {

Date YearStart(Date year_end) { return year_end.AddYears(-1).AddDays(1); }

Date LongTermDate(Date acquired) { return acquired.AddMonths(12).AddDays(1); }

}  // namespace lotwise
