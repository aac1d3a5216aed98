#include "ui/dialog_registry.h"

namespace lotwise::ui {

void RegisterTaxpayerDialogs(DialogRegistry&) {}

}  // namespace lotwise::ui
