#include "ui/dialog_registry.h"

namespace lotwise::ui {

void RegisterMaintenanceDialogs(DialogRegistry&) {}

}  // namespace lotwise::ui
