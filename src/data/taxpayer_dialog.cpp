#include "data/taxpayer_dialog.h"

#include "app/application.h"
#include "app/current_context.h"
#include "app/date.h"
#include "app/error_handler.h"
#include "app/ui_port.h"
#include "app/value_helpers.h"
#include "data/database.h"
#include "data/taxpayer_file.h"

namespace lotwise {

namespace {

// Blanks around a name or code are never meant: "DOE01 " would be a second
// taxpayer code that looks like the first.
std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

const ClientListRow* SelectedClient(const OpenClientForm& form) {
  if (form.selected < 0 || form.selected >= static_cast<int>(form.clients.size())) return nullptr;
  return &form.clients[static_cast<size_t>(form.selected)];
}

}  // namespace

void ShowNewModClient(Application& app, const std::string& caption, const std::string& name,
                      const std::string& sort_name, const std::string& code) {
  TrapVoid(app, "ShowNewModClient", [&] {
    NewModClientForm form;
    {
      HourglassGuard hourglass(app.ui());
      form.caption = caption;
      form.client_name = name;
      form.sort_name = sort_name;
      form.client_code = code;
      if (caption == "Modify Taxpayer") {
        form.opt_line = GetCurrClientInfo(app, "[2nd Line]");
        form.year_end = GetCurrClientInfo(app, "[Year End]");
      }
    }
    app.ui().RunModal(form);
  });
}

bool VerifyNewModClient(Application& app, NewModClientForm& form) {
  return Trap(app, "VerifyNewModClient", false, [&] {
    form.client_name = Trimmed(form.client_name);
    form.sort_name = Trimmed(form.sort_name);
    form.client_code = Trimmed(form.client_code);
    bool result = true;
    std::string message = "The following items:\r\n";
    if (form.client_name.empty()) {
      message += " - Taxpayer Name\r\n";
      result = false;
    }
    if (form.sort_name.empty()) form.sort_name = CalcSortName(form.client_name);
    if (form.client_code.empty()) {
      message += " - Taxpayer Code\r\n";
      result = false;
    }
    if (!Date::Parse(form.year_end)) form.year_end = "1/1/1990";
    if (!result) {
      app.ui().MessageBox(message + "need to be completed before continuing.",
                          "Incomplete Entries!", Icon::kInformation, Buttons::kOk);
    }
    return result;
  });
}

void NewModClient_OK(Application& app, NewModClientForm& form) {
  TrapVoid(app, "NewModClient_OK", [&] {
    const Date year_end = Date::Parse(form.year_end).value_or(Date());
    bool done = false;
    if (form.caption == "New Taxpayer" || form.caption == "Create Taxpayer File") {
      HourglassGuard hourglass(app.ui());
      if (form.caption == "New Taxpayer") app.ui().SetHelpBarText("Creating new Client");
      done = NewClient(app, form.client_name, form.sort_name, form.client_code, form.opt_line,
                       year_end);
    } else if (form.caption == "Modify Taxpayer") {
      HourglassGuard hourglass(app.ui());
      app.ui().SetHelpBarText("Saving modifications to Client");
      done = ModClientInfo(app, form.client_name, form.sort_name, form.client_code, form.opt_line,
                           year_end);
    } else {
      app.ui().MessageBox("dlgNewModClient has incorrect caption!", "Error", Icon::kCritical,
                          Buttons::kOk);
    }
    // A refused entry keeps the dialog open with the user's values.
    form.accepted = done;
    if (done) form.closed = true;
  });
}

void PressOkNewModClient(Application& app, NewModClientForm& form) {
  if (VerifyNewModClient(app, form)) NewModClient_OK(app, form);
  if (form.accepted) form.closed = true;
}

void NewModClient_Cancel(Application& app, NewModClientForm& form) {
  (void)app;
  form.closed = true;
}

void NewModClient_CalcSortName(Application& app, NewModClientForm& form) {
  TrapVoid(app, "NewModClient_CalcSortName",
           [&] { form.sort_name = CalcSortName(Trimmed(form.client_name)); });
}

void ShowNewClient(Application& app) {
  TrapVoid(app, "ShowNewClient", [&] { ShowNewModClient(app, "New Taxpayer", "", "", ""); });
}

void ShowModifyClient(Application& app) {
  TrapVoid(app, "ShowModifyClient", [&] {
    // The command exists only while a taxpayer is open.
    if (!app.client) return;
    ShowNewModClient(app, "Modify Taxpayer", GetCurrClientInfo(app, "[Client Name]"),
                     GetCurrClientInfo(app, "[Sort Name]"),
                     GetCurrClientInfo(app, "[Client Code]"));
  });
}

void ShowOpenClient(Application& app, const std::string& title) {
  TrapVoid(app, "ShowOpenClient", [&] {
    OpenClientForm form;
    form.caption = title;
    if (title == kOpenClientCaption) {
      form.open_caption = "Open";
      form.cancel_caption = "Cancel";
    } else if (title == kDeleteClientCaption) {
      form.open_caption = "Delete";
      form.cancel_caption = "Close";
    }
    LoadClientList(app, form);
    app.ui().ProcessEvents();
    app.ui().RunModal(form);
  });
}

void LoadClientList(Application& app, OpenClientForm& form) {
  std::string keep;
  if (form.selected >= 0 && form.selected < static_cast<int>(form.clients.size())) {
    keep = form.clients[static_cast<size_t>(form.selected)].client_code;
  }
  form.clients.clear();
  form.selected = -1;
  Query q = app.central->SelectSaved("dlgOpenClient");
  while (q.Next()) {
    ClientListRow row{q.Text("Client Name"), q.Text("Sort Name"), q.Text("Client Code"),
                      q.Text("File Name")};
    if (form.selected < 0 && !keep.empty() && row.client_code == keep) {
      form.selected = static_cast<int>(form.clients.size());
    }
    form.clients.push_back(std::move(row));
  }
  if (form.selected < 0 && !form.clients.empty()) form.selected = 0;
}

void OpenClient_Open(Application& app, OpenClientForm& form) {
  TrapVoid(app, "OpenClient_Open", [&] {
    if (form.caption == kOpenClientCaption) {
      OpenClient_OK(app, form);
    } else if (form.caption == kDeleteClientCaption) {
      const ClientListRow* row = SelectedClient(form);
      if (!row) return;
      DelTaxpayer(app, row->client_code);
      LoadClientList(app, form);
    }
  });
}

void OpenClient_OK(Application& app, OpenClientForm& form) {
  TrapVoid(app, "OpenClient_OK", [&] {
    if (form.clients.empty()) {
      app.ui().MessageBox(
          "There are no Taxpayer Files to open. To create a New Taxpayer click on the Cancel "
          "button, and then click on the Taxpayer menu, followed by the New Taxpayer File... menu "
          "item.",
          "No Taxpayer Files", Icon::kInformation, Buttons::kOk);
      return;
    }
    const ClientListRow* row = SelectedClient(form);
    if (!row) return;
    const std::string code = row->client_code;
    bool opened = false;
    {
      HourglassGuard hourglass(app.ui());
      app.ui().SetHelpBarText("Opening Taxpayer");
      form.clients.clear();
      form.selected = -1;
      opened = OpenClient(app, code);
    }
    if (!opened) {
      // The user may pick another taxpayer or cancel.
      LoadClientList(app, form);
      return;
    }
    form.closed = true;
    if (!app.window.options.open_only_port || !app.client) return;
    std::string only_port;
    int ports = 0;
    {
      Query q = app.client->SelectSaved("dlgOpenDelPort");
      while (ports < 2 && q.Next()) {
        ++ports;
        only_port = q.Text("Port Name");
      }
    }
    if (ports == 1) OpenPort(app, only_port);
  });
}

void OpenClient_Cancel(Application& app, OpenClientForm& form) {
  (void)app;
  form.closed = true;
}

std::string HelpText(const NewModClientForm& form, std::string_view control) {
  const bool modify = form.caption == "Modify Taxpayer";
  if (control == "txtClientName") return "Enter the Taxpayer's Name, for example: John H. Doe";
  if (control == "txtSortName") return "Enter the Taxpayer's sort name, for example: Doe, John H.";
  if (control == "txtClientCode") {
    return "Enter the Taxpayer's unique reference code, for example DOE01.";
  }
  if (control == "dtYearEnd") return "Enter the Year End Date that this Taxpayer uses.";
  if (control == "txtOptLine") return "Enter any additional information about the Taxpayer";
  if (control == "btnCalcSortName") {
    return "If this Taxpayer is not a business, click here to generate a Sort Name";
  }
  if (control == "btnOK") {
    return modify ? "Click here to save modifications to this Taxpayer"
                  : "Click here to create this Taxpayer";
  }
  if (control == "btnCancel") {
    return modify ? "Click here to cancel modifications to this Taxpayer"
                  : "Click here to cancel the creation of this Taxpayer";
  }
  return {};
}

std::string HelpText(const OpenClientForm& form, std::string_view control) {
  const bool deleting = form.caption == kDeleteClientCaption;
  if (control == "SSdgClients") {
    return deleting ? "Click on the Taxpayer you want to delete"
                    : "Click on the Taxpayer you want to open";
  }
  if (control == "btnOpen") {
    return deleting ? "Click here to delete the selected Taxpayer"
                    : "Click here to open the selected Taxpayer";
  }
  if (control == "btnCancel") {
    return deleting ? "Click here to close this window" : "Click here to cancel opening a Taxpayer";
  }
  return {};
}

}  // namespace lotwise
