#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

#include "app/file_location_dialog.h"
#include "data/portfolio_dialogs.h"
#include "data/schema.h"
#include "data/taxpayer_dialog.h"
#include "ui/dlg_taxpayer_window.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

void RunFileLocWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<FileLocForm&>(base);
  FormWindow window(app, form, parent, form.closed, nullptr);
  window.setWindowTitle(QStringLiteral("Designate File Locations"));
  window.AddNote("lblSSFNote", ToQ(form.ssf_note));
  window.AddText("lblSSF", QStringLiteral("Security Symbols File folder:"), "txtSSF",
                 form.ssf_folder, 0);
  window.AddFieldButton("btnSSF", QStringLiteral("&Browse..."),
                        [&] { PressSsfFileLoc(app, form); });
  window.AddNote("lblClientNote", ToQ(form.client_note));
  window.AddText("lblClient", QStringLiteral("Taxpayer Files folder:"), "txtClient",
                 form.client_folder, 0);
  window.AddFieldButton("btnClient", QStringLiteral("B&rowse..."),
                        [&] { PressClientFileLoc(app, form); });
  window.AddButton("btnOK", QStringLiteral("OK"), [&] { PressOkFileLoc(app, form); });
  window.AddButton("btnCancel", QStringLiteral("Cancel"), [&] { PressCancelFileLoc(form); });
  window.resize(560, window.sizeHint().height());
  window.RunModal([&] { PressCancelFileLoc(form); });
}

void RunNewModClientWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<NewModClientForm&>(base);
  FormWindow window(app, form, parent, form.closed, &form.focus);
  window.setWindowTitle(ToQ(form.caption));
  window.AddText("lblClientName", QStringLiteral("Taxpayer Name:"), "txtClientName",
                 form.client_name, DefinedTextSize("Clients", "Client Name"));
  window.AddText("lblSortName", QStringLiteral("Sort Name:"), "txtSortName", form.sort_name,
                 DefinedTextSize("Clients", "Sort Name"));
  window.AddFieldButton("btnCalcSortName", QStringLiteral("&Calc Sort Name"),
                        [&] { NewModClient_CalcSortName(app, form); });
  window.AddText("lblClientCode", QStringLiteral("Taxpayer Code:"), "txtClientCode",
                 form.client_code, DefinedTextSize("Clients", "Client Code"));
  window.AddText("lblOptLine", QStringLiteral("Optional Line:"), "txtOptLine", form.opt_line,
                 DefinedTextSize("Client", "2nd Line"));
  window.AddDate("lblYearEnd", QStringLiteral("Year End:"), "dtYearEnd", form.year_end);
  window.AddButton("btnOK", QStringLiteral("OK"), [&] { PressOkNewModClient(app, form); });
  window.AddButton("btnCancel", QStringLiteral("Cancel"), [&] { NewModClient_Cancel(app, form); });
  // Leaving the name with no sort name yet shows the sort name that OK
  // would store, while the user can still change it.
  OnLeave(window.findChild<QLineEdit*>("txtClientName"), [&] {
    window.Run([&] {
      if (form.sort_name.empty()) NewModClient_CalcSortName(app, form);
    });
  });
  window.InstallHelp([&form](std::string_view control) { return HelpText(form, control); });
  window.resize(460, window.sizeHint().height());
  window.RunModal([&] { NewModClient_Cancel(app, form); });
}

void RunOpenClientWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<OpenClientForm&>(base);
  FormWindow window(app, form, parent, form.closed, &form.focus);
  window.setWindowTitle(ToQ(form.caption));
  window.AddGrid(
      "SSdgClients",
      {QStringLiteral("Taxpayer Name"), QStringLiteral("Sort Name"), QStringLiteral("Code")},
      [&form] {
        std::vector<QStringList> rows;
        for (const ClientListRow& row : form.clients) {
          rows.push_back({ToQ(row.client_name), ToQ(row.sort_name), ToQ(row.client_code)});
        }
        return rows;
      },
      form.selected, [&] { OpenClient_Open(app, form); });
  QPushButton* open =
      window.AddButton("btnOpen", ToQ(form.open_caption), [&] { OpenClient_Open(app, form); });
  QPushButton* cancel = window.AddButton("btnCancel", ToQ(form.cancel_caption),
                                         [&] { OpenClient_Cancel(app, form); });
  window.OnRefresh([&form, open, cancel] {
    open->setText(ToQ(form.open_caption));
    cancel->setText(ToQ(form.cancel_caption));
  });
  window.InstallHelp([&form](std::string_view control) { return HelpText(form, control); });
  window.RunModal([&] { OpenClient_Cancel(app, form); });
}

void RunNewModPortWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<NewModPortForm&>(base);
  FormWindow window(app, form, parent, form.closed, &form.focus);
  window.setWindowTitle(ToQ(form.caption));
  window.AddText("lblPortName", QStringLiteral("Portfolio Name:"), "txtPortName", form.port_name,
                 DefinedTextSize("Portfolio", "Port Name"));
  window.AddText("lbl2ndLine", QStringLiteral("Optional Line:"), "txt2ndLine", form.second_line,
                 DefinedTextSize("Portfolio", "2nd Line"));
  window.AddButton("btnOK", QStringLiteral("OK"), [&] { NewModPort_OK(app, form); });
  window.AddButton("btnCancel", QStringLiteral("Cancel"), [&] { NewModPort_Cancel(app, form); });
  window.InstallHelp([&form](std::string_view control) { return HelpText(form, control); });
  window.resize(420, window.sizeHint().height());
  window.RunModal([&] { NewModPort_Cancel(app, form); });
}

void RunOpenDelPortWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<OpenDelPortForm&>(base);
  FormWindow window(app, form, parent, form.closed, &form.focus);
  window.setWindowTitle(ToQ(form.caption));
  window.AddGrid(
      "SSdgPortfolios", {QStringLiteral("Portfolio Name"), QStringLiteral("Optional Line")},
      [&form] {
        std::vector<QStringList> rows;
        for (const PortListRow& row : form.portfolios) {
          rows.push_back({ToQ(row.port_name), ToQ(row.second_line)});
        }
        return rows;
      },
      form.selected, [&] { OpenDelPort_OK(app, form); });
  QPushButton* ok =
      window.AddButton("btnOK", ToQ(form.ok_caption), [&] { OpenDelPort_OK(app, form); });
  QPushButton* cancel = window.AddButton("btnCancel", ToQ(form.cancel_caption),
                                         [&] { OpenDelPort_Cancel(app, form); });
  window.OnRefresh([&form, ok, cancel] {
    ok->setText(ToQ(form.ok_caption));
    cancel->setText(ToQ(form.cancel_caption));
  });
  window.InstallHelp([&form](std::string_view control) { return HelpText(form, control); });
  window.RunModal([&] { OpenDelPort_Cancel(app, form); });
}

}  // namespace lotwise::ui
