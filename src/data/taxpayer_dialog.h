#pragma once

#include <string>
#include <string_view>

#include "app/ui_port.h"

namespace lotwise {

class Application;

// The taxpayer dialog dlgNewModClient. Its caption is its mode: "New
// Taxpayer", "Modify Taxpayer" or "Create Taxpayer File".
struct NewModClientForm : DialogForm {
  std::string caption;
  std::string client_name;  // txtClientName
  std::string sort_name;    // txtSortName
  std::string client_code;  // txtClientCode
  std::string opt_line;     // txtOptLine
  std::string year_end;     // dtYearEnd, as typed ("mm/dd/yyyy")
  // Set when the dialog's operation succeeded and the dialog closed.
  bool accepted = false;

  std::string_view Name() const override { return "dlgNewModClient"; }
};

// Shows the taxpayer dialog with `caption`, its name, sort name and code
// boxes filled in, modally.
void ShowNewModClient(Application& app, const std::string& caption, const std::string& name,
                      const std::string& sort_name, const std::string& code);
// Checks the dialog's fields; fills an empty sort name and an invalid year
// end. Returns true iff the entry may be accepted.
bool VerifyNewModClient(Application& app, NewModClientForm& form);
// Carries out the dialog's mode (new, modify, create). Sets form.accepted
// when the operation succeeded.
void NewModClient_OK(Application& app, NewModClientForm& form);
// The OK button: VerifyNewModClient, then NewModClient_OK.
void PressOkNewModClient(Application& app, NewModClientForm& form);

}  // namespace lotwise
