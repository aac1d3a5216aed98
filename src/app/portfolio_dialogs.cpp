#include "app/portfolio_dialogs.h"

#include "app/taxpayer_file.h"
#include "data/application.h"
#include "data/client_info.h"
#include "data/current_context.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "ground/paths.h"
#include "ground/ui_port.h"

namespace lotwise {

namespace {

// Blanks around a portfolio name are never meant: "Growth " would be a
// second portfolio that looks like the first.
std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string TrimRight(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

// Portfolio names compare as their key does: without regard to case.
bool SamePortName(const std::string& a, const std::string& b) {
  return ToUpperAscii(a) == ToUpperAscii(b);
}

const PortListRow* SelectedPort(const OpenDelPortForm& form) {
  if (form.selected < 0 || form.selected >= static_cast<int>(form.portfolios.size())) {
    return nullptr;
  }
  return &form.portfolios[static_cast<size_t>(form.selected)];
}

void RunNewModPort(Application& app, NewModPortForm& form) {
  form.focus = "txtPortName";
  app.ui().RunModal(form);
}

void RunOpenDelPort(Application& app, const char* caption, const char* ok_caption,
                    const char* cancel_caption) {
  // The commands exist only while a taxpayer is open.
  if (!app.client) return;
  OpenDelPortForm form;
  form.caption = caption;
  form.ok_caption = ok_caption;
  form.cancel_caption = cancel_caption;
  LoadPortList(app, form);
  app.ui().RunModal(form);
}

void OpenSelectedPort(Application& app, OpenDelPortForm& form) {
  if (form.portfolios.empty()) {
    app.ui().MessageBox(
        "There are no Portfolios to open. To create a New Portfolio click on the Cancel button, "
        "and then click on the Portfolio menu, followed by the New Portfolio... menu item.",
        "No Portfolios", Icon::kInformation, Buttons::kOk);
    return;
  }
  const PortListRow* row = SelectedPort(form);
  if (!row) return;
  const std::string name = row->port_name;
  bool opened = false;
  {
    HourglassGuard hourglass(app.ui());
    app.ui().SetHelpBarText("Opening Portfolio");
    opened = OpenPort(app, name);
  }
  if (opened) {
    form.closed = true;
    return;
  }
  // Another user may have deleted it since the list was read.
  LoadPortList(app, form);
}

void DeleteSelectedPort(Application& app, OpenDelPortForm& form) {
  if (form.portfolios.empty()) {
    app.ui().MessageBox("There are no Portfolios to delete.", "No Portfolios", Icon::kInformation,
                        Buttons::kOk);
    return;
  }
  const PortListRow* row = SelectedPort(form);
  if (!row) return;
  const std::string name = row->port_name;
  if (app.ui().MessageBox("You are about to delete Portfolio: " + name +
                              ". All Securities, Blocks and Transactions in it will be deleted. "
                              "Are you sure you want to do this?",
                          "Delete Portfolio?", Icon::kExclamation,
                          Buttons::kYesNo) != Answer::kYes) {
    return;
  }
  bool deleted = false;
  {
    HourglassGuard hourglass(app.ui());
    app.ui().SetHelpBarText("Deleting Portfolio");
    deleted = DelPort(app, name);
  }
  if (deleted && !app.current.port_name.empty() && SamePortName(app.current.port_name, name)) {
    ClosePort(app);
  }
  LoadPortList(app, form);
}

}  // namespace

void ShowNewPort(Application& app) {
  TrapVoid(app, "ShowNewPort", [&] {
    // The command exists only while a taxpayer is open.
    if (!app.client) return;
    NewModPortForm form;
    form.caption = kNewPortCaption;
    RunNewModPort(app, form);
  });
}

void ShowModPort(Application& app) {
  TrapVoid(app, "ShowModPort", [&] {
    // The command exists only while a portfolio is open.
    if (!app.client || app.current.port_name.empty()) return;
    NewModPortForm form;
    form.caption = kModPortCaption;
    form.port_name = GetCurrPortInfo(app, "[Port Name]");
    form.second_line = GetCurrPortInfo(app, "[2nd Line]");
    RunNewModPort(app, form);
  });
}

void NewModPort_OK(Application& app, NewModPortForm& form) {
  TrapVoid(app, "NewModPort_OK", [&] {
    const std::string name = Trimmed(form.port_name);
    if (!VerifyNewModPort(app, name)) {
      form.focus = "txtPortName";
      return;
    }
    bool done = false;
    if (form.caption == kNewPortCaption) {
      HourglassGuard hourglass(app.ui());
      app.ui().SetHelpBarText("Creating new Portfolio");
      done = NewPort(app, name, form.second_line);
    } else if (form.caption == kModPortCaption) {
      HourglassGuard hourglass(app.ui());
      app.ui().SetHelpBarText("Saving modifications to Portfolio");
      done = ModPort(app, name, form.second_line);
    } else {
      app.ui().MessageBox("dlgNewModPort has incorrect caption!", "Error", Icon::kCritical,
                          Buttons::kOk);
    }
    // A refused entry keeps the dialog open with the user's values.
    if (done) form.accepted = form.closed = true;
  });
}

void NewModPort_Cancel(Application& app, NewModPortForm& form) {
  (void)app;
  form.closed = true;
}

void ShowOpenPort(Application& app) {
  TrapVoid(app, "ShowOpenPort", [&] { RunOpenDelPort(app, kOpenPortCaption, "Open", "Cancel"); });
}

void ShowDelPort(Application& app) {
  TrapVoid(app, "ShowDelPort", [&] { RunOpenDelPort(app, kDelPortCaption, "Delete", "Close"); });
}

void LoadPortList(Application& app, OpenDelPortForm& form) {
  const PortListRow* before = SelectedPort(form);
  const std::string keep = before ? before->port_name : std::string();
  form.portfolios.clear();
  form.selected = -1;
  for (const PortfolioOnFile& port : ReadPortfolioPickList(*app.client)) {
    PortListRow row{port.name, TrimRight(port.second_line)};
    if (form.selected < 0 && !keep.empty() && row.port_name == keep) {
      form.selected = static_cast<int>(form.portfolios.size());
    }
    form.portfolios.push_back(std::move(row));
  }
  if (form.selected < 0 && !form.portfolios.empty()) form.selected = 0;
}

void OpenDelPort_OK(Application& app, OpenDelPortForm& form) {
  TrapVoid(app, "OpenDelPort_OK", [&] {
    if (form.caption == kOpenPortCaption) {
      OpenSelectedPort(app, form);
    } else if (form.caption == kDelPortCaption) {
      DeleteSelectedPort(app, form);
    } else {
      app.ui().MessageBox("dlgOpenDelPort has incorrect caption!", "Error", Icon::kCritical,
                          Buttons::kOk);
    }
  });
}

void OpenDelPort_Cancel(Application& app, OpenDelPortForm& form) {
  (void)app;
  form.closed = true;
}

std::string HelpText(const NewModPortForm& form, std::string_view control) {
  const bool modify = form.caption == kModPortCaption;
  if (control == "txtPortName") return "Enter the Portfolio's Name, for example: Retirement";
  if (control == "txt2ndLine") return "Enter any additional information about the Portfolio";
  if (control == "btnOK") {
    return modify ? "Click here to save modifications to this Portfolio"
                  : "Click here to create this Portfolio";
  }
  if (control == "btnCancel") {
    return modify ? "Click here to cancel modifications to this Portfolio"
                  : "Click here to cancel the creation of this Portfolio";
  }
  return {};
}

std::string HelpText(const OpenDelPortForm& form, std::string_view control) {
  const bool deleting = form.caption == kDelPortCaption;
  if (control == "SSdgPortfolios") {
    return deleting ? "Click on the Portfolio you want to delete"
                    : "Click on the Portfolio you want to open";
  }
  if (control == "btnOK") {
    return deleting ? "Click here to delete the selected Portfolio"
                    : "Click here to open the selected Portfolio";
  }
  if (control == "btnCancel") {
    return deleting ? "Click here to close this window"
                    : "Click here to cancel opening a Portfolio";
  }
  return {};
}

}  // namespace lotwise
