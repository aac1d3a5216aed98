#include "data/taxpayer_dialog.h"

#include "app/application.h"
#include "app/current_context.h"
#include "app/date.h"
#include "app/error_handler.h"
#include "app/ui_port.h"
#include "app/value_helpers.h"
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
  });
}

void PressOkNewModClient(Application& app, NewModClientForm& form) {
  if (VerifyNewModClient(app, form)) NewModClient_OK(app, form);
}

}  // namespace lotwise
