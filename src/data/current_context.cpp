#include "data/current_context.h"

#include "data/application.h"
#include "data/client_info.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "ground/text.h"
#include "ground/value_helpers.h"

namespace lotwise {

void UpdateCurrClient(Application& app, std::string_view file_name, std::string_view code) {
  TrapVoid(app, "UpdateCurrClient", [&] {
    CurrentContext& c = app.current;
    c.client_db_path = app.taxpayer_folder + std::string(file_name);
    c.client_name.clear();
    c.sort_name.clear();
    c.client_code.clear();
    c.client_2nd_line.clear();
    c.year_end.clear();
    if (!app.client) return;
    if (const std::optional<ClientOnFile> client = FindClient(*app.client, code)) {
      c.client_name = client->name;
      c.sort_name = client->sort_name;
      c.client_2nd_line = client->second_line;
      c.client_code = std::string(code);
      if (client->year_end) c.year_end = client->year_end->ToString();
    }
  });
}

void UpdateCurrPort(Application& app, std::string_view port_name) {
  TrapVoid(app, "UpdateCurrPort", [&] {
    CurrentContext& c = app.current;
    c.port_name.clear();
    c.port_2nd_line.clear();
    if (!app.client) return;
    if (const std::optional<PortfolioOnFile> port = FindPortfolio(*app.client, port_name)) {
      c.port_name = port->name;
      c.port_2nd_line = std::string(TrimEnd(port->second_line));
    }
    app.window.portfolio_panel = FixAmpersand(c.port_name);
  });
}

std::string GetCurrClientInfo(const Application& app, std::string_view field) {
  const CurrentContext& c = app.current;
  if (field == "[Client Name]") return c.client_name;
  if (field == "[Sort Name]") return c.sort_name;
  if (field == "[Client Code]") return c.client_code;
  if (field == "[2nd Line]") return c.client_2nd_line;
  if (field == "[Year End]") return c.year_end;
  return {};
}

std::string GetCurrPortInfo(const Application& app, std::string_view field) {
  const CurrentContext& c = app.current;
  if (field == "[Port Name]") return c.port_name;
  if (field == "[2nd Line]") return c.port_2nd_line;
  if (field == "[Client Code]") return c.client_code;
  return {};
}

std::string GetCurrClientDBName(const Application& app) { return app.current.client_db_path; }

}  // namespace lotwise
