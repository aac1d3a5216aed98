#include "app/security_commands.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "app/add_mod_sec_form.h"
#include "app/app_state.h"
#include "app/taxpayer_file.h"
#include "data/application.h"
#include "data/central_file.h"
#include "data/current_context.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/security_rows.h"
#include "data/transaction_store.h"
#include "data/upgrades.h"
#include "ground/lw_error.h"
#include "ground/sell_method_codes.h"
#include "ground/text.h"
#include "ground/ui_port.h"
#include "lots/security_display.h"
#include "lots/security_list.h"

namespace lotwise {

namespace {

bool AskReEnterDeletedSymbol(Application& app, const std::string& symbol) {
  const std::string text =
      "The Security (Symbol:" + symbol + ") " +
      "has been deleted from the Security Symbols File. " + "\n" +
      "This means that the Symbol and Name will be missing, however any Transactions in the "
      "Security should be intact." +
      "\n\n" + "Would you like to Add the Security to the Security Symbols File again?";
  return app.ui().MessageBox(text, "Please Note!", Icon::kQuestion, Buttons::kYesNo) ==
         Answer::kYes;
}

// Returns the security's row in the current portfolio, or nothing when the
// portfolio no longer holds it (another user of a shared file may have
// deleted it).
std::optional<SecurityOnFile> GetASecurity(Application& app, const std::string& symbol) {
  return FindSecurity(app.ClientFile(), GetCurrPortInfo(app, "[Port Name]"), symbol);
}

}  // namespace

void ShowSecDisplay(Application& app, const std::string& symbol) {
  TrapVoid(app, "ShowSecDisplay", [&] {
    app.ui().SetHelpBarText("Loading Security");
    std::string name = GetSecInfoFromCDB(app, symbol, "[Sec Name]");
    std::string cusip = GetSecInfoFromCDB(app, symbol, "CUSIP");
    // The taxpayer's transactions do not depend on the central row, so the
    // security opens either way; the marker text stands in for its name.
    if (name == kSymbolNotInCentral && AskReEnterDeletedSymbol(app, symbol)) {
      ShowReplaceSecInCDB(app, symbol);
      name = GetSecInfoFromCDB(app, symbol, "[Sec Name]");
      cusip = GetSecInfoFromCDB(app, symbol, "CUSIP");
    }

    std::optional<SecurityOnFile> found = GetASecurity(app, symbol);
    if (found && !found->sell_method) {
      AddSellMethod(app, symbol, SellMethod::kNotSelected);
      found = GetASecurity(app, symbol);
    }
    if (!found) {
      app.window.display.visible = false;
      app.ui().MessageBox("The Security " + symbol +
                              " is no longer in this Portfolio. Another user may have deleted it.",
                          "Security not found", Icon::kInformation, Buttons::kOk);
      return;
    }
    const SecurityOnFile& record = *found;

    SecurityDisplay& display = app.window.display;
    display.sec_name = name;
    display.sec_cusip = cusip;
    display.second_line = record.second_line.value_or(" ");
    display.sell_method = record.sell_method.value_or(SellMethod::kNotSelected);
    app.current.sec_id = record.sec_id;
    app.current.sec_symbol = record.symbol;
    FillSecDisplay(app, record.sec_id);
  });
}

void DisplaySecurity(Application& app, const std::string& symbol) {
  TrapVoid(app, "DisplaySecurity", [&] {
    app.ui().SetHelpBarText("Please Wait");
    ReloadSecList(app, symbol);
    SecList_Select(app);
  });
}

void ShowReplaceSecInCDB(Application& app, const std::string& symbol) {
  TrapVoid(app, "ShowReplaceSecInCDB", [&] {
    AddModSecForm form;
    form.caption = kReplaceSecInCdbCaption;
    form.symbol = symbol;
    form.fixed_symbol = symbol;
    form.find_enabled = false;
    form.focus = "txtSecName";
    RunAddModSec(app.ui(), form);
  });
}

void SecList_Select(Application& app, int index) {
  TrapVoid(app, "SecList_Select", [&] {
    MainWindowState& window = app.window;
    if (window.securities.empty()) {
      app.ui().MessageBox(
          "There are no Securities to display. To Add a security to this portfolio, click on the "
          "'Security' menu , then the 'Add a Security' menu item.",
          "No Securities!", Icon::kInformation, Buttons::kOk);
      return;
    }
    const int count = static_cast<int>(window.securities.size());
    if (index >= 0 && index < count) window.selected_security = index;
    if (window.selected_security < 0 || window.selected_security >= count) {
      window.selected_security = 0;
    }
    const std::string symbol =
        window.securities[static_cast<size_t>(window.selected_security)].symbol;
    ShowSecDisplay(app, symbol);
    // A security that has gone is not opened; the list shows what is left.
    if (!window.display.visible) {
      ReloadSecList(app);
      return;
    }
    State(app, kSecOpen);
  });
}

void SecList_Delete(Application& app) {
  TrapVoid(app, "SecList_Delete", [&] {
    MainWindowState& window = app.window;
    const int count = static_cast<int>(window.securities.size());
    if (count == 0) {
      app.ui().MessageBox(
          "There are no Securities to delete in this Portfolio. If you want to create a new "
          "Security, click on the Security menu, and then click on the Add Security menu item.",
          "Can't delete", Icon::kInformation, Buttons::kOk);
      return;
    }
    const int index = std::clamp(window.selected_security, 0, count - 1);
    const std::string symbol = window.securities[static_cast<size_t>(index)].symbol;
    if (app.ui().MessageBox("You are about to delete Security: " + symbol +
                                ". The Security will be removed from the Portfolio and all blocks "
                                "in it will be deleted. Are you sure you want to do this?",
                            "Delete Security?", Icon::kQuestion, Buttons::kYesNo) != Answer::kYes) {
      return;
    }
    app.ui().SetHelpBarText("Deleting Security");
    if (!DelSec(app, GetCurrPortInfo(app, "[Port Name]"), symbol)) return;
    HideSecDisplay(app);
    if (SameSymbol(app.current.sec_symbol, symbol)) {
      app.current.sec_id = 0;
      app.current.sec_symbol.clear();
      app.current.block_no = 0;
      app.current.block_id.clear();
    }
    State(app, kPortOpen);
  });
}

}  // namespace lotwise
