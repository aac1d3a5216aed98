#include "ui/dialog_registry.h"

namespace lotwise::ui {

void RegisterLotDialogs(DialogRegistry&) {}

}  // namespace lotwise::ui
