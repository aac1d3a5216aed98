#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The taxpayer dialog dlgNewModClient. Its caption is its mode: "New
// Taxpayer", "Modify Taxpayer" or "Create Taxpayer File".
struct NewModClientForm : DialogForm {
  std::string client_name;  // txtClientName
  std::string sort_name;    // txtSortName
  std::string client_code;  // txtClientCode
  std::string opt_line;     // txtOptLine
  std::string year_end;     // dtYearEnd, as typed ("mm/dd/yyyy")
  // Set when the dialog's operation succeeded and the dialog closed.
  bool accepted = false;
  // closed: set when the dialog unloads: an operation that succeeded, or Cancel.

  std::string_view Name() const override { return "dlgNewModClient"; }
};

// The captions of the taxpayer list dlgOpenClient, one per mode.
inline constexpr const char* kOpenClientCaption = "Open Taxpayer File";
inline constexpr const char* kDeleteClientCaption = "Select Taxpayer to Delete";

// One taxpayer of the central index as the taxpayer list shows it.
struct ClientListRow {
  std::string client_name;
  std::string sort_name;
  std::string client_code;
  std::string file_name;
};

// The taxpayer list dlgOpenClient: open a taxpayer, or pick one to delete.
struct OpenClientForm : DialogForm {
  std::string open_caption = "Open";      // btnOpen, as designed
  std::string cancel_caption = "Cancel";  // btnCancel, as designed
  std::vector<ClientListRow> clients;     // SSdgClients
  int selected = -1;                      // index into clients, -1 when empty

  std::string_view Name() const override { return "dlgOpenClient"; }
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
// The Cancel button: closes the dialog; nothing is written.
void NewModClient_Cancel(Application& app, NewModClientForm& form);
// The sort-name button: fills the sort name from the taxpayer name
// ("John Q Public" -> "Public, John Q").
void NewModClient_CalcSortName(Application& app, NewModClientForm& form);

// "&New Taxpayer File...": the empty taxpayer dialog captioned "New Taxpayer".
void ShowNewClient(Application& app);
// "&Modify Taxpayer Info...": the taxpayer dialog captioned "Modify
// Taxpayer", filled from the current taxpayer.
void ShowModifyClient(Application& app);

// The taxpayer list captioned `title`: "Open Taxpayer File" (buttons Open
// and Cancel) or "Select Taxpayer to Delete" (Delete and Close).
void ShowOpenClient(Application& app, const std::string& title);
// Reloads the list from the central index, keeping the selected taxpayer
// selected when it is still there (else the first row). Throws LwError.
void LoadClientList(Application& app, OpenClientForm& form);
// The list's first button, by caption: opens the selected taxpayer, or
// deletes it after the user confirms (the list then stays open).
void OpenClient_Open(Application& app, OpenClientForm& form);
// Opens the selected taxpayer and closes the list. With "Open Only
// Portfolio" checked, a taxpayer with exactly one portfolio opens in it.
void OpenClient_OK(Application& app, OpenClientForm& form);
// The Cancel / Close button.
void OpenClient_Cancel(Application& app, OpenClientForm& form);

// The help-bar texts of the two dialogs' controls ("txtClientName", "btnOK").
std::string HelpText(const NewModClientForm& form, std::string_view control);
std::string HelpText(const OpenClientForm& form, std::string_view control);

// Opens the taxpayer's file, walks it up to the current version and enters
// CLIENTOPEN. Returns true iff the taxpayer is open.
bool OpenClient(Application& app, const std::string& code);

}  // namespace lotwise
