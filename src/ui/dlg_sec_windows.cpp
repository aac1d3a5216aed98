#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

#include "app/value_helpers.h"
#include "data/schema.h"
#include "lots/add_mod_sec.h"
#include "lots/sec_symbol.h"
#include "ui/dlg_taxpayer_window.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

void RunAddModSecWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<AddModSecForm&>(base);
  FormWindow window(app, form, parent, form.closed, &form.focus);
  window.setWindowTitle(ToQ(form.caption));
  QLineEdit* symbol =
      window.AddText("lblSymbol", QStringLiteral("Symbol:"), "txtSymbol", form.symbol, 0);
  LimitCharacters(symbol, kMaxSymbolCharacters);
  window.AddFieldButton("btnFind", QStringLiteral("&Find..."), [&] { AddModSec_Find(app, form); });
  window.AddText("lblSecName", QStringLiteral("Security Name:"), "txtSecName", form.sec_name,
                 DefinedTextSize("Securities", "Sec Name"));
  window.AddText("lblCusip", QStringLiteral("CUSIP:"), "txtCusip", form.cusip,
                 DefinedTextSize("Securities", "CUSIP"));
  window.AddText("lbl2ndLine", QStringLiteral("Optional Line:"), "txt2ndLine", form.second_line,
                 DefinedTextSize("Security", "2nd Line"));
  // pnlPortfolio: the portfolio the security goes into, shown only when
  // adding to one.
  QLabel* panel = window.AddPanel("lblPortfolio", QStringLiteral("Portfolio:"), "pnlPortfolio");
  auto* caption = window.findChild<QLabel*>("lblPortfolio");
  QPushButton* find = window.findChild<QPushButton*>("btnFind");
  window.AddButton("btnOK", QStringLiteral("OK"), [&] { AddModSec_Ok(app, form); });
  window.AddButton("btnCancel", QStringLiteral("Cancel"), [&] { AddModSec_Cancel(app, form); });
  window.OnRefresh([&form, caption, panel, find] {
    // The core doubles ampersands for captions that take access keys; a
    // panel shows text as it is.
    panel->setText(ToQ(form.portfolio).replace(QStringLiteral("&&"), QStringLiteral("&")));
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
  window.InstallHelp([&form](std::string_view control) { return HelpText(form, control); });
  window.resize(460, window.sizeHint().height());
  window.RunModal([&] { AddModSec_Cancel(app, form); });
}

void RunSecSymbolWindow(Application& app, DialogForm& base, QWidget* parent) {
  auto& form = static_cast<SecSymbolForm&>(base);
  FormWindow window(app, form, parent, form.closed, &form.focus);
  window.setWindowTitle(ToQ(form.caption));
  QLabel* instructions = window.AddNote("lblInstructions", ToQ(form.instructions));
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
    window.AddButton("btnCancel", QStringLiteral("Cancel"), [&] { SecSymbol_Close(app, form); });
  } else {
    window.AddButton("btnAdd", QStringLiteral("Add"), [&] { SecSymbol_Add(app, form); });
    window.AddButton("btnModify", QStringLiteral("Modify"), [&] { SecSymbol_Modify(app, form); });
    window.AddButton("btnDelete", QStringLiteral("Delete"), [&] { SecSymbol_Delete(app, form); });
    window.AddButton("btnClose", QStringLiteral("Close"), [&] { SecSymbol_Close(app, form); });
  }
  window.OnRefresh([&form, instructions] { instructions->setText(ToQ(form.instructions)); });
  window.InstallHelp([&form](std::string_view control) { return HelpText(form, control); });
  window.resize(560, 360);
  window.RunModal([&] { SecSymbol_Close(app, form); });
}

}  // namespace lotwise::ui
