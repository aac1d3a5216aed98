// The windows of the taxpayer group: file locations, the taxpayer and
// portfolio dialogs and their lists.
#include <QLineEdit>
#include <QPushButton>

#include "app/file_location_dialog.h"
#include "app/portfolio_dialogs.h"
#include "app/taxpayer_dialog.h"
#include "ground/field_sizes.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

void RunFileLocWindow(Application& app, FileLocForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
  window.AddNote("lblSSFNote", [&form] { return form.ssf_note; });
  window.AddText("txtSSF", "Security Symbols File folder:", form.ssf_folder);
  window.AddFieldButton("btnSSF", QStringLiteral("&Browse..."),
                        [&] { PressSsfFileLoc(app, form); });
  window.AddNote("lblClientNote", [&form] { return form.client_note; });
  window.AddText("txtClient", "Taxpayer Files folder:", form.client_folder);
  window.AddFieldButton("btnClient", QStringLiteral("B&rowse..."),
                        [&] { PressClientFileLoc(app, form); });
  window.AddButton("btnOK", QStringLiteral("OK"), [&] { PressOkFileLoc(app, form); });
  window.AddCancelButton("btnCancel", QStringLiteral("Cancel"), [&] { PressCancelFileLoc(form); });
  window.Finish("Designate File Locations", nullptr);
  window.resize(560, window.sizeHint().height());
  window.Exec();
}

void RunNewModClientWindow(Application& app, NewModClientForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
  QLineEdit* name = window.AddText("txtClientName", "Taxpayer Name:", form.client_name,
                                   DefinedTextSize("Clients", "Client Name"));
  window.AddText("txtSortName", "Sort Name:", form.sort_name,
                 DefinedTextSize("Clients", "Sort Name"));
  window.AddFieldButton("btnCalcSortName", QStringLiteral("&Calc Sort Name"),
                        [&] { NewModClient_CalcSortName(app, form); });
  window.AddText("txtClientCode", "Taxpayer Code:", form.client_code,
                 DefinedTextSize("Clients", "Client Code"));
  window.AddText("txtOptLine", "Optional Line:", form.opt_line,
                 DefinedTextSize("Client", "2nd Line"));
  window.AddDate("dtYearEnd", "Year End:", form.year_end);
  window.AddButton("btnOK", QStringLiteral("OK"), [&] { PressOkNewModClient(app, form); });
  window.AddCancelButton("btnCancel", QStringLiteral("Cancel"),
                         [&] { NewModClient_Cancel(app, form); });
  // Leaving the name with no sort name yet shows the sort name that OK
  // would store, while the user can still change it.
  OnLeave(name, [&] {
    window.Run([&] {
      if (form.sort_name.empty()) NewModClient_CalcSortName(app, form);
    });
  });
  window.Finish(form.caption,
                [&form](std::string_view control) { return HelpText(form, control); });
  window.resize(460, window.sizeHint().height());
  window.Exec();
}

void RunOpenClientWindow(Application& app, OpenClientForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
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
  QPushButton* cancel = window.AddCancelButton("btnCancel", ToQ(form.cancel_caption),
                                               [&] { OpenClient_Cancel(app, form); });
  window.OnRefresh([&form, open, cancel] {
    open->setText(ToQ(form.open_caption));
    cancel->setText(ToQ(form.cancel_caption));
  });
  window.Finish(form.caption,
                [&form](std::string_view control) { return HelpText(form, control); });
  window.Exec();
}

void RunNewModPortWindow(Application& app, NewModPortForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
  window.AddText("txtPortName", "Portfolio Name:", form.port_name,
                 DefinedTextSize("Portfolio", "Port Name"));
  window.AddText("txt2ndLine", "Optional Line:", form.second_line,
                 DefinedTextSize("Portfolio", "2nd Line"));
  window.AddButton("btnOK", QStringLiteral("OK"), [&] { NewModPort_OK(app, form); });
  window.AddCancelButton("btnCancel", QStringLiteral("Cancel"),
                         [&] { NewModPort_Cancel(app, form); });
  window.Finish(form.caption,
                [&form](std::string_view control) { return HelpText(form, control); });
  window.resize(420, window.sizeHint().height());
  window.Exec();
}

void RunOpenDelPortWindow(Application& app, OpenDelPortForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
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
  QPushButton* cancel = window.AddCancelButton("btnCancel", ToQ(form.cancel_caption),
                                               [&] { OpenDelPort_Cancel(app, form); });
  window.OnRefresh([&form, ok, cancel] {
    ok->setText(ToQ(form.ok_caption));
    cancel->setText(ToQ(form.cancel_caption));
  });
  window.Finish(form.caption,
                [&form](std::string_view control) { return HelpText(form, control); });
  window.Exec();
}

}  // namespace

void RegisterTaxpayerDialogs(DialogRegistry& registry) {
  registry.Register<FileLocForm>(RunFileLocWindow);
  registry.Register<NewModClientForm>(RunNewModClientWindow);
  registry.Register<OpenClientForm>(RunOpenClientWindow);
  registry.Register<NewModPortForm>(RunNewModPortWindow);
  registry.Register<OpenDelPortForm>(RunOpenDelPortWindow);
  RegisterSecurityDialogs(registry);
}

}  // namespace lotwise::ui
