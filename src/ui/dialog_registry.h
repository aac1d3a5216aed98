#pragma once

#include <functional>
#include <typeindex>
#include <typeinfo>
#include <unordered_map>

#include "ground/ui_port.h"
#include "ui/form_window.h"

class QWidget;

namespace lotwise {

class Application;

namespace ui {

// Shows a core dialog form as a modal window until the user closes it. The
// window binds its widgets to the form, runs the form's Check procedure when
// a field loses the focus and its _OK/_Cancel procedures on its buttons; it
// holds no business logic of its own.
using DialogRunner = std::function<void(Application& app, DialogForm& form, QWidget* parent)>;

// The windows of the core's dialog forms, by the form's type.
class DialogRegistry {
 public:
  // Makes `show(app, form, parent)` the window of every form of type Form.
  template <class Form, class Show>
  void Register(Show show) {
    runners_[std::type_index(typeid(Form))] = [show](Application& app, DialogForm& form,
                                                     QWidget* parent) {
      // A procedure showing its form again while the form's window is up (a
      // refused write showing the user's values once more) finds that
      // window, not a second one.
      if (FormWindow* open = FormWindow::Of(form)) {
        open->ShowAgain();
        return;
      }
      // Found by the form's own type, so the form is a Form.
      show(app, static_cast<Form&>(form), parent);
    };
  }
  // Returns the runner of the window of `form`'s type, or null when none is
  // known.
  const DialogRunner* Find(const DialogForm& form) const {
    auto it = runners_.find(std::type_index(typeid(form)));
    return it == runners_.end() ? nullptr : &it->second;
  }

 private:
  std::unordered_map<std::type_index, DialogRunner> runners_;
};

// Each group of windows adds its runners.
// dlgFileLoc, dlgNewModClient, dlgOpenClient, dlgNewModPort, dlgOpenDelPort,
// and the security symbol windows (RegisterSecurityDialogs).
void RegisterTaxpayerDialogs(DialogRegistry& registry);
// dlgAddModSec and dlgSecSymbol.
void RegisterSecurityDialogs(DialogRegistry& registry);
// dlgBuyReinvest, dlgSplitDiv, dlgAdjustBlock, dlgModifyTrans, dlgRollback,
// dlgRemBlocks, and the sale's windows (RegisterSaleDialogs).
void RegisterLotDialogs(DialogRegistry& registry);
// dlgSellShares, dlgMethod, dlgSellSpecific, dlgNumShares.
void RegisterSaleDialogs(DialogRegistry& registry);
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
