#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

class QWidget;

namespace lotwise {

class Application;
class DialogForm;

namespace ui {

// Shows a core dialog form as a modal window until the user closes it. The
// window binds its widgets to the form, runs the form's Check procedure when
// a field loses the focus and its _OK/_Cancel procedures on its buttons; it
// holds no business logic of its own.
using DialogRunner = std::function<void(Application& app, DialogForm& form, QWidget* parent)>;

// The windows of the core's dialog forms, by form name ("dlgBuyReinvest").
class DialogRegistry {
 public:
  void Add(std::string name, DialogRunner runner) { runners_[std::move(name)] = std::move(runner); }
  // Returns the runner of the form named `name`, or null when none is known.
  const DialogRunner* Find(std::string_view name) const {
    auto it = runners_.find(std::string(name));
    return it == runners_.end() ? nullptr : &it->second;
  }

 private:
  std::map<std::string, DialogRunner> runners_;
};

// Each group of windows adds its runners.
// dlgFileLoc, dlgNewModClient, dlgOpenClient, dlgNewModPort, dlgOpenDelPort,
// and the security symbol windows dlgAddModSec and dlgSecSymbol.
void RegisterTaxpayerDialogs(DialogRegistry& registry);
// dlgBuyReinvest, dlgSellShares, dlgMethod, dlgSellSpecific, dlgNumShares,
// dlgSplitDiv, dlgAdjustBlock, dlgModifyTrans, dlgRollback, dlgRemBlocks.
void RegisterLotDialogs(DialogRegistry& registry);
// The five report option dialogs and the about box.
void RegisterReportDialogs(DialogRegistry& registry);
// The compress/repair dialog, the delete-backups dialog, the backup notice.
void RegisterMaintenanceDialogs(DialogRegistry& registry);

// Every runner above.
inline DialogRegistry AllDialogs() {
  DialogRegistry registry;
  RegisterTaxpayerDialogs(registry);
  RegisterLotDialogs(registry);
  RegisterReportDialogs(registry);
  RegisterMaintenanceDialogs(registry);
  return registry;
}

}  // namespace ui
}  // namespace lotwise
