#include "app/security_display.h"

#include "app/lw_error.h"

namespace lotwise {

namespace {
[[noreturn]] void NotBuilt(const char* name) {
  throw LwError(err::kUnexpected, std::string("not built yet: ") + name);
}
}  // namespace

void ShowSecDisplay(Application&, const std::string&) { NotBuilt("ShowSecDisplay"); }
void HideSecDisplay(Application&) { NotBuilt("HideSecDisplay"); }
void SetDisplayTrans(Application&) { NotBuilt("SetDisplayTrans"); }
void UpdateTransInBlock(Application&, int16_t) { NotBuilt("UpdateTransInBlock"); }
void UpdateSharesInSec(Application&) { NotBuilt("UpdateSharesInSec"); }
void RecalculateShares(Application&) { NotBuilt("RecalculateShares"); }
void DisplaySecurity(Application&) { NotBuilt("DisplaySecurity"); }
void DisplayBlock(Application&, const std::string&) { NotBuilt("DisplayBlock"); }
void SelectBlock(Application&, int) { NotBuilt("SelectBlock"); }
void ModifySecDisplay(Application&, const std::string&, const std::string&, const std::string&) {
  NotBuilt("ModifySecDisplay");
}

}  // namespace lotwise
