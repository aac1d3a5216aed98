#include "lots/sell_method.h"

#include "data/application.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "data/upgrades.h"
#include "ground/environment.h"
#include "lots/sell_shares.h"

namespace lotwise {

void Method_KeyPress(MethodForm& form, char key) {
  switch (key) {
    case 'P':
    case 'p':
      form.method = SellMethod::kSpecificId;
      break;
    case 'F':
    case 'f':
      form.method = SellMethod::kFifo;
      break;
    case 'S':
    case 's':
      form.method = SellMethod::kAvgSingle;
      break;
    case 'D':
    case 'd':
      form.method = SellMethod::kAvgDouble;
      break;
    default:
      break;
  }
}

void Method_OK(Application&, MethodForm& form) {
  form.result = form.method;
  form.closed = true;
}

void Method_Cancel(Application&, MethodForm& form) {
  form.result = SellMethod::kNotSelected;
  form.closed = true;
}

SellMethod RetrieveSellMethod(Application& app, SellMethod code, const std::string& line1,
                              const std::string& line2, int16_t& option) {
  return Trap(app, "RetrieveSellMethod", SellMethod::kNotSelected, [&]() -> SellMethod {
    option = 0;
    MethodForm form;
    form.method = code == SellMethod::kSpecificId || code == SellMethod::kFifo ||
                          code == SellMethod::kAvgSingle || code == SellMethod::kAvgDouble
                      ? code
                      : SellMethod::kNotSelected;
    form.message_line = line1;
    form.message_visible = !line1.empty();
    form.option_caption = line2;
    form.option_visible = !line2.empty();
    app.ui().RunModal(form);
    if (form.option_visible && form.option1) option = 1;
    // A dialog closed without its buttons chose nothing.
    return form.closed ? form.result : SellMethod::kNotSelected;
  });
}

void SetNewSellMethod(Application& app) {
  TrapVoid(app, "SetNewSellMethod", [&] {
    if (app.ui().MessageBox("Once a sell method has been used for selling shares, it must be used "
                            "for all additional sales of the stock.  Are you sure you want to "
                            "change the method?",
                            "Change Method?", Icon::kQuestion, Buttons::kYesNo) != Answer::kYes) {
      return;
    }
    SecurityDisplay& display = app.window.display;
    const SellMethod old_code = display.sell_method;
    int16_t option = 0;
    const SellMethod code = RetrieveSellMethod(app, old_code, "", "", option);
    if (code == SellMethod::kNotSelected) return;
    display.sell_method = code;
    // The method is kept per symbol, not per portfolio security.
    if (AddSellMethod(app, app.current.sec_symbol, code, true) && code != old_code) {
      // A method change alters how every later sale is reported, so it is
      // logged here as it is in the sale dialog.
      LogChange(app, app.current.port_name, app.current.sec_id, Today(app.env()),
                "Changed Sell Method from " + GetSellName(app, old_code) + " to " +
                    GetSellName(app, code));
    }
  });
}

std::string HelpText(const MethodForm& form, std::string_view control) {
  if (control == "fraMethod") return "Select the Sell Method you want";
  if (control == "CSoptMethod") return "Click on the Sell Method you want";
  if (control == "chkOption1") {
    return form.option1 ? "Click here to disable this option"
                        : "Click here to activate this option";
  }
  if (control == "btnOK") return "Click here to use the Sell Method you selected";
  if (control == "btnCancel") return "Click here to cancel selecting a sell method";
  return {};
}

}  // namespace lotwise
