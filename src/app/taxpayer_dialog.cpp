#include "app/taxpayer_dialog.h"

#include "app/app_state.h"
#include "app/taxpayer_file.h"
#include "data/application.h"
#include "data/client_index.h"
#include "data/client_info.h"
#include "data/current_context.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/upgrades.h"
#include "ground/date.h"
#include "ground/lw_error.h"
#include "ground/program_ended.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"

namespace lotwise {

namespace {

// After "No Taxpayer File" was answered Yes: lets the user make a new file
// for the taxpayer. NewClient refuses a code that is still indexed, so the
// index row (which points at the lost file) makes room while the dialog is
// open, and comes back unchanged if the user gives up. Returns true iff a
// Taxpayer File is open afterwards.
bool RecreateClientFile(Application& app, const IndexedClient& row) {
  Database& central = *app.central;
  DeleteIndexedClient(central, row.code);
  try {
    ShowNewModClient(app, "New Taxpayer", row.name, row.sort_name, row.code);
  } catch (const ProgramEnded&) {
    // The program ends on a fatal error in the dialog; the row still goes
    // back first, through a connection of its own.
    auto reopened = Database::Open(app.central_path, Database::Mode::kShared, app.storage_faults);
    if (!FindIndexedClient(*reopened, row.code)) AddIndexedClient(*reopened, row);
    throw;
  }
  if (!FindIndexedClient(central, row.code)) AddIndexedClient(central, row);
  return app.client != nullptr;
}

}  // namespace

bool OpenClient(Application& app, const std::string& code) {
  return Trap(app, "OpenClient", false, [&] {
    std::optional<IndexedClient> row = FindIndexedClient(*app.central, code);
    if (!row) {
      ShowClientNotIndexed(app, code);
      return false;
    }
    try {
      if (row->file_name.empty()) {
        throw LwError(err::kFileNotFound, "No Taxpayer File is indexed for " + row->code);
      }
      OpenClientFile(app, row->file_name);
    } catch (const LwError& e) {
      if (e.number() != err::kFileNotFound) throw;
      if (app.ui().MessageBox(
              "A File does not exist for this Taxpayer. Would you like to create a new one?",
              "No Taxpayer File", Icon::kExclamation, Buttons::kYesNo) == Answer::kYes) {
        return RecreateClientFile(app, *row);
      }
      app.ui().MessageBox("Cancelled...", "Open Taxpayer cancelled", Icon::kInformation,
                          Buttons::kOk);
      return false;
    }
    UpdateCurrClient(app, row->file_name, row->code);
    UpdateCurrClientDB(app, app.update_all);
    State(app, kClientOpen);
    return true;
  });
}

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
  for (const IndexedClient& indexed : ReadClientPickList(*app.central)) {
    ClientListRow row{indexed.name, indexed.sort_name, indexed.code, indexed.file_name};
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
    const std::vector<PortfolioOnFile> ports = ReadPortfolioPickList(*app.client);
    if (ports.size() == 1) OpenPort(app, ports.front().name);
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
