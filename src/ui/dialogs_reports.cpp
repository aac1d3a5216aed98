#include "ui/dialog_registry.h"

namespace lotwise::ui {

void RegisterReportDialogs(DialogRegistry&) {}

}  // namespace lotwise::ui
