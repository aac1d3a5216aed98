#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The method dialog dlgMethod.
struct MethodForm : DialogForm {
  int16_t method = 255;          // CSoptMethod: 0 to 3, 255 while none is chosen
  std::string message_line;      // lblMessageLine
  bool message_visible = false;  // shown only with a first message line
  std::string option_caption;    // chkOption1
  bool option_visible = false;   // shown only with a second message line
  bool option1 = false;          // chkOption1 checked
  // The code the dialog returns: the chosen method on OK, 255 otherwise.
  int16_t result = 255;

  std::string_view Name() const override { return "dlgMethod"; }
};

// A key typed in the dialog: P, F, S or D (either case) choose method 0, 1,
// 2 or 3; other keys change nothing.
void Method_KeyPress(MethodForm& form, char key);
// OK returns the chosen method; Cancel returns 255.
void Method_OK(Application& app, MethodForm& form);
void Method_Cancel(Application& app, MethodForm& form);

// Shows dlgMethod with method `code` chosen and the two message lines (each
// shown only when not empty). Returns the code chosen, 255 when cancelled.
// Sets `option` to the check box's state (1 checked, 0 not), 0 when there is
// no second line.
int16_t RetrieveSellMethod(Application& app, int16_t code, const std::string& line1,
                           const std::string& line2, int16_t& option);

// The main window's method change for the open security: asks, lets the
// user choose, then stores and logs the new method.
void SetNewSellMethod(Application& app);

// The help-bar text of a control of the method dialog.
std::string HelpText(const MethodForm& form, std::string_view control);

}  // namespace lotwise
