#include "lots/security_list.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <vector>

#include "app/application.h"
#include "app/current_context.h"
#include "app/error_handler.h"
#include "app/lw_error.h"
#include "app/security_display.h"
#include "app/ui_port.h"
#include "data/database.h"
#include "data/query_builders.h"
#include "data/taxpayer_file.h"

namespace lotwise {

namespace {

// Symbols are keys without regard to case in every file.
bool SameSymbol(std::string_view a, std::string_view b) {
  return std::ranges::equal(
      a, b, [](unsigned char x, unsigned char y) { return std::toupper(x) == std::toupper(y); });
}

Database& ClientFile(Application& app) {
  if (!app.client) throw LwError(err::kUnexpected, "No Taxpayer File is open");
  return *app.client;
}

int FindSymbol(const std::vector<SecurityRow>& rows, std::string_view symbol) {
  for (size_t i = 0; i < rows.size(); ++i) {
    if (SameSymbol(rows[i].symbol, symbol)) return static_cast<int>(i);
  }
  return -1;
}

std::vector<SecurityRow> ReadSecurities(Application& app) {
  std::vector<SecurityRow> rows;
  Query q = Select(ClientFile(app), Query_SecsInPort(app.current.port_name));
  while (q.Next()) {
    rows.push_back({q.Text("Sec Symbol"), q.Text("2nd Line"), q.Int("Sec ID")});
  }
  return rows;
}

}  // namespace

void ReloadSecList(Application& app, const std::string& symbol) {
  MainWindowState& window = app.window;
  const int old_index = window.selected_security;
  std::string keep = symbol;
  if (keep.empty() && old_index >= 0 && old_index < static_cast<int>(window.securities.size())) {
    keep = window.securities[static_cast<size_t>(old_index)].symbol;
  }
  window.securities = ReadSecurities(app);
  const int count = static_cast<int>(window.securities.size());
  int index = keep.empty() ? -1 : FindSymbol(window.securities, keep);
  if (index < 0 && count > 0) index = std::clamp(old_index, 0, count - 1);
  window.selected_security = index;
}

void ShowSecList(Application& app) {
  TrapVoid(app, "ShowSecList", [&] {
    app.window.securities = ReadSecurities(app);
    app.window.selected_security = app.window.securities.empty() ? -1 : 0;
    app.window.sec_list_visible = true;
  });
}

void HideSecList(Application& app) {
  TrapVoid(app, "HideSecList", [&] { app.window.sec_list_visible = false; });
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
