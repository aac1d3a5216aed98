#include "lots/security_list.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "data/application.h"
#include "data/current_context.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "data/security_rows.h"
#include "ground/lw_error.h"
#include "ground/text.h"
#include "ground/ui_port.h"
#include "lots/security_display.h"

namespace lotwise {

namespace {

int FindSymbol(const std::vector<SecurityRow>& rows, std::string_view symbol) {
  for (size_t i = 0; i < rows.size(); ++i) {
    if (SameSymbol(rows[i].symbol, symbol)) return static_cast<int>(i);
  }
  return -1;
}

std::vector<SecurityRow> ReadSecurities(Application& app) {
  std::vector<SecurityRow> rows;
  for (SecurityOnFile& sec : SecurityListOfPort(app.ClientFile(), app.current.port_name)) {
    rows.push_back({std::move(sec.symbol), sec.second_line.value_or(""), sec.sec_id});
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

}  // namespace lotwise
