#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The captions of the portfolio dialog dlgNewModPort, one per mode.
inline constexpr const char* kNewPortCaption = "New Portfolio";
inline constexpr const char* kModPortCaption = "Modify Portfolio";

// The portfolio dialog dlgNewModPort: a new portfolio, or the open one's
// name and second line changed.
struct NewModPortForm : DialogForm {
  std::string port_name;    // txtPortName
  std::string second_line;  // txt2ndLine
  bool accepted = false;    // set only when OK stored the portfolio

  std::string_view Name() const override { return "dlgNewModPort"; }
};

// The captions of the portfolio list dlgOpenDelPort, one per mode.
inline constexpr const char* kOpenPortCaption = "Open Portfolio";
inline constexpr const char* kDelPortCaption = "Delete Portfolio";

// One portfolio of the open Taxpayer File as the list shows it.
struct PortListRow {
  std::string port_name;
  std::string second_line;  // trailing blanks removed
};

// The portfolio list dlgOpenDelPort: open a portfolio, or delete one.
struct OpenDelPortForm : DialogForm {
  std::string ok_caption;               // btnOK: "Open" or "Delete"
  std::string cancel_caption;           // btnCancel: "Cancel" or "Close"
  std::vector<PortListRow> portfolios;  // SSdgPortfolios, by name
  int selected = -1;                    // index into portfolios, -1 when empty

  std::string_view Name() const override { return "dlgOpenDelPort"; }
};

// "&New Portfolio...": the empty portfolio dialog.
void ShowNewPort(Application& app);
// "&Modify Portfolio Info...": the portfolio dialog filled from the open
// portfolio.
void ShowModPort(Application& app);
// The OK button: refuses an empty name, then adds the portfolio and opens
// it, or changes the open one. The dialog closes when that succeeded and
// otherwise keeps the user's values.
void NewModPort_OK(Application& app, NewModPortForm& form);
void NewModPort_Cancel(Application& app, NewModPortForm& form);

// "&Open Portfolio..." / "&Delete a Portfolio...": the portfolio list.
void ShowOpenPort(Application& app);
void ShowDelPort(Application& app);
// Reloads the list, keeping the selected portfolio selected when it is
// still there (else the first row). Throws LwError.
void LoadPortList(Application& app, OpenDelPortForm& form);
// The list's first button, by caption. Open: opens the selected portfolio
// and closes the list. Delete: after the user confirms, deletes the selected
// portfolio with its securities, blocks and transactions (closing it first
// when it is the open one); the list stays open.
void OpenDelPort_OK(Application& app, OpenDelPortForm& form);
void OpenDelPort_Cancel(Application& app, OpenDelPortForm& form);

// The help-bar texts of the two dialogs' controls.
std::string HelpText(const NewModPortForm& form, std::string_view control);
std::string HelpText(const OpenDelPortForm& form, std::string_view control);

}  // namespace lotwise
