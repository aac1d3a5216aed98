#include "app/add_mod_sec.h"

#include "app/app_state.h"
#include "app/security_commands.h"
#include "app/taxpayer_file.h"
#include "data/application.h"
#include "data/central_file.h"
#include "data/current_context.h"
#include "data/error_handler.h"
#include "ground/text.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"
#include "lots/security_display.h"

namespace lotwise {

namespace {

constexpr const char* kInfoChangedText =
    "You have changed either the Security Name or CUSIP. This will change it for all Securities "
    "in all Taxpayer Files.\nIf you want to do this click YES, otherwise click NO and the Name "
    "and CUSIP will be left as they were.";

std::string Trimmed(const std::string& text) { return std::string(Trim(text)); }

bool SymbolIsFixed(const AddModSecForm& form) {
  return form.caption == kModSecInCdbCaption || form.caption == kReplaceSecInCdbCaption;
}

// The new security is listed and opened: DisplaySecurity reloads the
// portfolio's list and opens the row of the symbol.
void OpenAddedSecurity(Application& app, const std::string& symbol) {
  if (State(app, kStateQuery) != kSecOpen) State(app, kSecOpen);
  DisplaySecurity(app, symbol);
}

// "Add a Security": the portfolio's row first; then, if the central name or
// CUSIP differ from what was typed, the user decides whether the central
// ones change. Returns true iff the security was added to the portfolio.
bool AddToPortfolio(Application& app, const std::string& symbol, const std::string& name,
                    std::string& cusip, const std::string& second_line) {
  app.ui().SetHelpBarText("Adding Security");
  const std::string typed_cusip = cusip;
  if (!AddSec(app, symbol, name, cusip, second_line, GetCurrPortInfo(app, "[Port Name]"))) {
    return false;
  }
  const std::string central_name = GetSecInfoFromCDB(app, symbol, "[Sec Name]");
  const std::string central_cusip = GetSecInfoFromCDB(app, symbol, "CUSIP");
  const bool unchanged = name == central_name && typed_cusip == central_cusip &&
                         !central_name.empty() && !central_cusip.empty();
  // The addition stands whatever the answer.
  if (!unchanged && app.ui().MessageBox(kInfoChangedText, "Information has been changed!",
                                        Icon::kExclamation, Buttons::kYesNo) == Answer::kYes) {
    ModSecInCDB(app, symbol, name, typed_cusip);
  }
  OpenAddedSecurity(app, symbol);
  return true;
}

}  // namespace

void ShowAddSec(Application& app) {
  TrapVoid(app, "ShowAddSec", [&] {
    // The command exists only while a portfolio is open.
    if (!app.client || app.current.port_name.empty()) return;
    AddModSecForm form;
    form.caption = kAddSecCaption;
    form.portfolio = FixAmpersand(GetCurrPortInfo(app, "[Port Name]"));
    form.portfolio_visible = true;
    form.focus = "txtSymbol";
    RunAddModSec(app.ui(), form);
  });
}

void ShowAddSecToCDB(Application& app) {
  TrapVoid(app, "ShowAddSecToCDB", [&] {
    AddModSecForm form;
    form.caption = kAddSecToCdbCaption;
    form.focus = "txtSymbol";
    RunAddModSec(app.ui(), form);
  });
}

void ShowModSecInCDB(Application& app, const std::string& symbol) {
  TrapVoid(app, "ShowModSecInCDB", [&] {
    AddModSecForm form;
    form.caption = kModSecInCdbCaption;
    form.symbol = symbol;
    form.fixed_symbol = symbol;
    form.filled_for_symbol = symbol;
    form.find_enabled = false;
    form.sec_name = GetSecInfoFromCDB(app, symbol, "[Sec Name]");
    form.cusip = GetSecInfoFromCDB(app, symbol, "CUSIP");
    form.focus = "txtSecName";
    RunAddModSec(app.ui(), form);
  });
}

bool VerifyAddModSec(Application& app, AddModSecForm& form) {
  return Trap(app, "VerifyAddModSec", false, [&] {
    if (Trimmed(form.symbol).empty()) {
      app.ui().MessageBox("A symbol is required to create a security. Please enter one.",
                          "Symbol Missing!", Icon::kInformation, Buttons::kOk);
      form.focus = "txtSymbol";
      return false;
    }
    // Refused before the question below: a Yes must not lead to a refusal.
    if (!SymbolLengthValid(app.ui(), Trimmed(form.symbol))) {
      form.focus = "txtSymbol";
      return false;
    }
    if (Trimmed(form.sec_name).empty() || Trimmed(form.cusip).empty()) {
      return app.ui().MessageBox(
                 "It is a good idea to enter both a Security Name and a CUSIP; however, these are "
                 "not required.Click YES if you want to add this security as is, or click NO if "
                 "you want to add one of these items.",
                 "Item not entered", Icon::kQuestion, Buttons::kYesNo) == Answer::kYes;
    }
    return true;
  });
}

void AddModSec_Ok(Application& app, AddModSecForm& form) {
  TrapVoid(app, "AddModSec_Ok", [&] {
    if (SymbolIsFixed(form) && form.symbol != form.fixed_symbol) {
      AddModSec_SymbolWarn(app, form);
      return;
    }
    if (!VerifyAddModSec(app, form)) return;
    const std::string symbol = Trimmed(form.symbol);
    const std::string name = Trimmed(form.sec_name);
    std::string cusip = Trimmed(form.cusip);
    if (cusip.empty()) cusip = kNoCusip;
    const std::string second_line = form.second_line;
    form.hidden = true;

    bool written = false;
    if (form.caption == kAddSecToCdbCaption) {
      app.ui().SetHelpBarText("Adding Security");
      written = AddSecToCDB(app, symbol, name, cusip);
    } else if (form.caption == kReplaceSecInCdbCaption) {
      app.ui().SetHelpBarText("Replacing Security");
      written = AddSecToCDB(app, symbol, name, cusip);
    } else if (form.caption == kModSecInCdbCaption) {
      app.ui().SetHelpBarText("Modifying Security");
      written = ModSecInCDB(app, symbol, name, cusip);
      // Only an open security can be showing the old name and CUSIP.
      if (written && State(app, kStateQuery) == kSecOpen) {
        ModifySecDisplay(app, symbol, name, cusip);
      }
    } else if (form.caption == kAddSecCaption) {
      written = AddToPortfolio(app, symbol, name, cusip, second_line);
    } else {
      app.ui().MessageBox("Incorrect .caption on dlgAddModSec", "Warning", Icon::kExclamation,
                          Buttons::kOk);
    }
    if (written) {
      form.accepted = form.closed = true;
      return;
    }
    RunAddModSec(app.ui(), form);
  });
}

void AddModSec_Cancel(Application& app, AddModSecForm& form) {
  (void)app;
  form.closed = true;
}

bool AddModSec_SymbolWarn(Application& app, AddModSecForm& form) {
  return Trap(app, "AddModSec_SymbolWarn", false, [&] {
    if (!SymbolIsFixed(form)) return true;
    app.ui().MessageBox(
        "The Security Symbol can not be modified. If you wish to change to a different security "
        "you must add a new security using the Security menu.",
        "Can't modify Symbol!", Icon::kExclamation, Buttons::kOk);
    form.symbol = form.fixed_symbol;
    return false;
  });
}

void FillInNameCusip(Application& app, AddModSecForm& form) {
  TrapVoid(app, "FillInNameCusip", [&] {
    if (form.caption == kAddSecToCdbCaption) return;
    const std::string symbol = Trimmed(form.symbol);
    if (symbol.empty() || symbol == form.filled_for_symbol) return;
    const std::string name = GetSecInfoFromCDB(app, symbol, "[Sec Name]");
    if (name == kSymbolNotInCentral) return;
    const std::string cusip = GetSecInfoFromCDB(app, symbol, "CUSIP");
    // The symbol as the Security Symbols File spells it ("ibm" is IBM).
    const std::string stored_symbol = GetSecInfoFromCDB(app, symbol, "[Sec Symbol]");
    if (!SymbolIsFixed(form) && !stored_symbol.empty()) form.symbol = stored_symbol;
    form.sec_name = name;
    form.cusip = cusip;
    form.filled_for_symbol = form.symbol;
  });
}

std::string HelpText(const AddModSecForm& form, std::string_view control) {
  if (control == "txtSymbol") {
    if (SymbolIsFixed(form)) return "The Security Symbol can not be changed";
    return "Enter the Security's Symbol, for example: IBM";
  }
  if (control == "txtSecName") {
    return "Enter the Security's Name, for example: International Business Machines";
  }
  if (control == "txtCusip") return "Enter the Security's CUSIP number";
  if (control == "txt2ndLine") {
    return "Use this for any extra information you want to keep about the Security";
  }
  if (control == "btnFind") return "Click here to select a Security from the Security Symbols File";
  if (control == "pnlPortfolio" || control == "lblPortfolio") {
    return "This shows the Portfolio the Security will be added to";
  }
  if (control == "btnOK") {
    if (form.caption == kModSecInCdbCaption)
      return "Click here to save the changes to this Security";
    if (form.caption == kReplaceSecInCdbCaption) {
      return "Click here to add this Security to the Security Symbols File again";
    }
    return "Click here to add this Security";
  }
  if (control == "btnCancel") {
    if (form.caption == kModSecInCdbCaption) {
      return "Click here to cancel modifications to this Security";
    }
    return "Click here to cancel the creation of this Security";
  }
  return {};
}

}  // namespace lotwise
