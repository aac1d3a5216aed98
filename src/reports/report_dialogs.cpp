#include "reports/report_dialogs.h"

#include "app/lw_error.h"

namespace lotwise {

namespace {
[[noreturn]] void NotBuilt(const char* name) {
  throw LwError(err::kUnexpected, std::string("not built yet: ") + name);
}
}  // namespace

void ShowTaxpayerListingDialog(Application&) { NotBuilt("ShowTaxpayerListingDialog"); }
void ShowSecListingDialog(Application&) { NotBuilt("ShowSecListingDialog"); }
void ShowTransListingDialog(Application&) { NotBuilt("ShowTransListingDialog"); }
void ShowBasisAnalysisDialog(Application&) { NotBuilt("ShowBasisAnalysisDialog"); }
void ShowScheduleDDialog(Application&) { NotBuilt("ShowScheduleDDialog"); }
void ShowAbout(Application&) { NotBuilt("ShowAbout"); }
void ShowHelpContents(Application&) { NotBuilt("ShowHelpContents"); }
void ShowHelpOnHelp(Application&) { NotBuilt("ShowHelpOnHelp"); }

}  // namespace lotwise
