#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ground/sell_method_codes.h"
#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The method dialog dlgMethod.
struct MethodForm : DialogForm {
  SellMethod method = SellMethod::kNotSelected;  // CSoptMethod: kNotSelected while none is chosen
  std::string message_line;                      // lblMessageLine
  bool message_visible = false;                  // shown only with a first message line
  std::string option_caption;                    // chkOption1
  bool option_visible = false;                   // shown only with a second message line
  bool option1 = false;                          // chkOption1 checked
  // What the dialog returns: the chosen method on OK, kNotSelected otherwise.
  SellMethod result = SellMethod::kNotSelected;

  std::string_view Name() const override { return "dlgMethod"; }
};

// A key typed in the dialog: P, F, S or D (either case) choose Specific
// Identification, FIFO, Average Cost - Single or - Double; other keys change
// nothing.
void Method_KeyPress(MethodForm& form, char key);
// OK returns the chosen method; Cancel returns kNotSelected.
void Method_OK(Application& app, MethodForm& form);
void Method_Cancel(Application& app, MethodForm& form);

// Shows dlgMethod with method `code` chosen and the two message lines (each
// shown only when not empty). Returns the method chosen, kNotSelected when
// cancelled.
// Sets `option` to the check box's state (1 checked, 0 not), 0 when there is
// no second line.
SellMethod RetrieveSellMethod(Application& app, SellMethod code, const std::string& line1,
                              const std::string& line2, int16_t& option);

// The main window's method change for the open security: asks, lets the
// user choose, then stores and logs the new method.
void SetNewSellMethod(Application& app);

// The help-bar text of a control of the method dialog.
std::string HelpText(const MethodForm& form, std::string_view control);

}  // namespace lotwise
