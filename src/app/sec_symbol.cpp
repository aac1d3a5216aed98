#include "app/sec_symbol.h"

#include "app/add_mod_sec.h"
#include "data/application.h"
#include "data/central_file.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "ground/paths.h"
#include "ground/ui_port.h"

namespace lotwise {

namespace {

constexpr const char* kEmptyListTitle = "No Securities to Modify";
constexpr const char* kManageInstructions =
    "To Delete or Modify a Security, click on the Security, then click on the appropriate button";
constexpr const char* kPickInstructions =
    "Locate and click on the Security you desire, then click Select";

// The selected row, or null when the list is empty or nothing is selected.
const SecSymbolRow* SelectedRow(const SecSymbolForm& form) {
  if (form.selected < 0 || form.selected >= static_cast<int>(form.securities.size())) {
    return nullptr;
  }
  return &form.securities[static_cast<size_t>(form.selected)];
}

// Reloads the list and selects `keep` (symbols compare as the key does,
// without regard to case), else the first row.
void LoadKeeping(Application& app, SecSymbolForm& form, const std::string& keep) {
  const std::string wanted = ToUpperAscii(keep);
  form.securities.clear();
  form.selected = -1;
  for (CentralSecurity& security : ListCentralSecurities(*app.central)) {
    SecSymbolRow row{std::move(security.symbol), std::move(security.name),
                     std::move(security.cusip)};
    if (form.selected < 0 && !wanted.empty() && ToUpperAscii(row.symbol) == wanted) {
      form.selected = static_cast<int>(form.securities.size());
    }
    form.securities.push_back(std::move(row));
  }
  if (form.selected < 0 && !form.securities.empty()) form.selected = 0;
}

void ShowEmptyList(Application& app, const char* text) {
  app.ui().MessageBox(text, kEmptyListTitle, Icon::kInformation, Buttons::kOk);
}

// Fills and shows the list in the form's mode; `preselect` is the symbol
// to start on, if the list has it.
void RunSecSymbol(Application& app, SecSymbolForm& form, const std::string& preselect) {
  {
    HourglassGuard hourglass(app.ui());
    app.ui().SetHelpBarText("Get Securities");
    LoadKeeping(app, form, preselect);
  }
  form.instructions = form.picking() ? kPickInstructions : kManageInstructions;
  app.ui().SetHelpBarText(form.instructions);
  app.ui().RunModal(form);
}

}  // namespace

void ShowSecSymbol(Application& app) {
  TrapVoid(app, "ShowSecSymbol", [&] {
    SecSymbolForm form;
    form.caption = kSecSymbolCaption;
    RunSecSymbol(app, form, "");
  });
}

void ShowFindSecSymbol(Application& app, AddModSecForm& target) {
  TrapVoid(app, "ShowFindSecSymbol", [&] {
    SecSymbolForm form;
    form.caption = kFindSecSymbolCaption;
    form.target = &target;
    RunSecSymbol(app, form, target.symbol);
  });
}

void LoadSecSymbols(Application& app, SecSymbolForm& form) {
  const SecSymbolRow* before = SelectedRow(form);
  LoadKeeping(app, form, before ? before->symbol : std::string());
}

void SecSymbol_Add(Application& app, SecSymbolForm& form) {
  TrapVoid(app, "SecSymbol_Add", [&] {
    ShowAddSecToCDB(app);
    LoadSecSymbols(app, form);
  });
}

void SecSymbol_Modify(Application& app, SecSymbolForm& form) {
  TrapVoid(app, "SecSymbol_Modify", [&] {
    if (form.securities.empty()) {
      ShowEmptyList(app,
                    "There are no Securities to modify. If you would like add a security click on "
                    "the Add button.");
      return;
    }
    const SecSymbolRow* row = SelectedRow(form);
    if (!row) return;
    if (app.ui().MessageBox("Modifying information for a Security will change the Security for "
                            "all Taxpayer Files. Are you sure you want to do this?",
                            "Modify Security?", Icon::kQuestion, Buttons::kYesNo) != Answer::kYes) {
      return;
    }
    ShowModSecInCDB(app, row->symbol);
    LoadSecSymbols(app, form);
  });
}

void SecSymbol_Delete(Application& app, SecSymbolForm& form) {
  TrapVoid(app, "SecSymbol_Delete", [&] {
    if (form.securities.empty()) {
      ShowEmptyList(app,
                    "There are no Securities to delete. If you would like add a security click on "
                    "the Add button.");
      return;
    }
    const SecSymbolRow* row = SelectedRow(form);
    if (!row) return;
    const std::string symbol = row->symbol;
    if (app.ui().MessageBox("You are about to delete '" + symbol +
                                "'. Deleting it will delete it for all Taxpayer Files. Are you "
                                "sure you want to do this?",
                            "Delete Security?", Icon::kQuestion, Buttons::kYesNo) != Answer::kYes) {
      return;
    }
    {
      HourglassGuard hourglass(app.ui());
      app.ui().SetHelpBarText("Deleting Security");
      // Only the central row goes: portfolios keep their securities and
      // transactions, shown without a name until the symbol is re-entered.
      DelSecFromCDB(app, symbol);
    }
    LoadSecSymbols(app, form);
  });
}

void SecSymbol_Select(Application& app, SecSymbolForm& form) {
  TrapVoid(app, "SecSymbol_Select", [&] {
    if (form.securities.empty()) {
      ShowEmptyList(app, "There are no Securities to select. Please click on the Cancel button.");
      return;
    }
    const SecSymbolRow* row = SelectedRow(form);
    if (!row || !form.target) return;
    form.target->symbol = row->symbol;
    form.closed = true;
  });
}

void SecSymbol_Close(Application& app, SecSymbolForm& form) {
  (void)app;
  form.closed = true;
}

std::string HelpText(const SecSymbolForm& form, std::string_view control) {
  if (control == "btnAdd") return "Click here to add a new Security to the Security Symbols File";
  if (control == "btnModify") return "Click here to modify the selected Security";
  if (control == "btnDelete") return "Click here to delete the selected Security";
  if (control == "btnSelect") return "Click here to use the selected Security";
  if (control == "btnCancel" || control == "btnClose") return "Click here to close this window";
  return form.picking() ? kPickInstructions : kManageInstructions;
}

void AddModSec_Find(Application& app, AddModSecForm& form) {
  TrapVoid(app, "AddModSec_Find", [&] {
    if (!AddModSec_SymbolWarn(app, form)) return;
    const std::string before = form.symbol;
    ShowFindSecSymbol(app, form);
    if (form.symbol == before) return;
    FillInNameCusip(app, form);
    form.focus = "txtSecName";
  });
}

}  // namespace lotwise
