// The windows of the Security Symbols File: a security's symbol, name and
// CUSIP, and the list of symbols.
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/add_mod_sec.h"
#include "app/sec_symbol.h"
#include "ground/field_sizes.h"
#include "ground/value_helpers.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

void RunAddModSecWindow(Application& app, AddModSecForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
  QLineEdit* symbol = window.AddText("txtSymbol", "Symbol:", form.symbol);
  LimitCharacters(symbol, kMaxSymbolCharacters);
  QPushButton* find = window.AddFieldButton("btnFind", QStringLiteral("&Find..."),
                                            [&] { AddModSec_Find(app, form); });
  window.AddText("txtSecName", "Security Name:", form.sec_name,
                 DefinedTextSize("Securities", "Sec Name"));
  window.AddText("txtCusip", "CUSIP:", form.cusip, DefinedTextSize("Securities", "CUSIP"));
  window.AddText("txt2ndLine", "Optional Line:", form.second_line,
                 DefinedTextSize("Security", "2nd Line"));
  // pnlPortfolio: the portfolio the security goes into, shown only when
  // adding to one.
  auto* panel = new QLabel(&window);
  panel->setObjectName("pnlPortfolio");
  panel->setTextFormat(Qt::PlainText);
  panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  QLabel* caption = window.AddRow("Portfolio:", panel);
  caption->setObjectName("lblPortfolio");
  window.AddButton("btnOK", QStringLiteral("OK"), [&] { AddModSec_Ok(app, form); });
  window.AddCancelButton("btnCancel", QStringLiteral("Cancel"),
                         [&] { AddModSec_Cancel(app, form); });
  window.OnRefresh([&form, caption, panel, find] {
    panel->setText(LabelText(form.portfolio));
    caption->setVisible(form.portfolio_visible);
    panel->setVisible(form.portfolio_visible);
    find->setEnabled(form.find_enabled);
  });
  OnLeave(symbol, [&] { window.Run([&] { FillInNameCusip(app, form); }); });
  // In the modes where the symbol is fixed, an edit is undone with a
  // warning; the procedure decides.
  QObject::connect(symbol, &QLineEdit::textEdited, &window, [&] {
    if (!form.fixed_symbol.empty()) window.Run([&] { AddModSec_SymbolWarn(app, form); });
  });
  window.Finish(form.caption,
                [&form](std::string_view control) { return HelpText(form, control); });
  window.resize(460, window.sizeHint().height());
  window.Exec();
}

void RunSecSymbolWindow(Application& app, SecSymbolForm& form, QWidget* parent) {
  FormWindow window(app, form, parent);
  window.AddNote("lblInstructions", [&form] { return form.instructions; });
  window.AddGrid(
      "SSdgSecSymbols",
      {QStringLiteral("Symbol"), QStringLiteral("Security Name"), QStringLiteral("CUSIP")},
      [&form] {
        std::vector<QStringList> rows;
        for (const SecSymbolRow& row : form.securities) {
          rows.push_back({ToQ(row.symbol), ToQ(row.name), ToQ(row.cusip)});
        }
        return rows;
      },
      form.selected,
      form.picking() ? std::function<void()>([&] { SecSymbol_Select(app, form); }) : nullptr);
  if (form.picking()) {
    window.AddButton("btnSelect", QStringLiteral("Select"), [&] { SecSymbol_Select(app, form); });
    window.AddCancelButton("btnCancel", QStringLiteral("Cancel"),
                           [&] { SecSymbol_Close(app, form); });
  } else {
    window.AddButton("btnAdd", QStringLiteral("Add"), [&] { SecSymbol_Add(app, form); });
    window.AddButton("btnModify", QStringLiteral("Modify"), [&] { SecSymbol_Modify(app, form); });
    window.AddButton("btnDelete", QStringLiteral("Delete"), [&] { SecSymbol_Delete(app, form); });
    window.AddCancelButton("btnClose", QStringLiteral("Close"),
                           [&] { SecSymbol_Close(app, form); });
  }
  window.Finish(form.caption,
                [&form](std::string_view control) { return HelpText(form, control); });
  window.resize(560, 360);
  window.Exec();
}

}  // namespace

void RegisterSecurityDialogs(DialogRegistry& registry) {
  registry.Register<AddModSecForm>(RunAddModSecWindow);
  registry.Register<SecSymbolForm>(RunSecSymbolWindow);
}

}  // namespace lotwise::ui
