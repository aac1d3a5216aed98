#pragma once

#include <string>
#include <string_view>

namespace lotwise {

class Application;

// The current taxpayer and portfolio, empty when nothing is open.
struct CurrentContext {
  std::string client_db_path;
  std::string client_name;
  std::string sort_name;
  std::string client_code;
  std::string client_2nd_line;
  std::string year_end;  // mm/dd/yyyy, or empty
  std::string port_name;
  std::string port_2nd_line;  // trailing blanks removed
  // The open security and the block selected in its blocks grid (kept by
  // the security display).
  long long sec_id = 0;
  std::string sec_symbol;
  long long block_no = 0;
  std::string block_id;

  void ClearClient();
  void ClearPort();
};

// Reloads the taxpayer part of the context from the open Taxpayer File.
void UpdateCurrClient(Application& app, std::string_view file_name, std::string_view code);
// Reloads the portfolio part of the context and the portfolio panel.
void UpdateCurrPort(Application& app, std::string_view port_name);
// "[Client Name]", "[Sort Name]", "[Client Code]", "[2nd Line]", "[Year End]";
// any other field name gives empty text.
std::string GetCurrClientInfo(const Application& app, std::string_view field);
// "[Port Name]", "[2nd Line]", "[Client Code]"; anything else, empty text.
std::string GetCurrPortInfo(const Application& app, std::string_view field);
// The full path of the open Taxpayer File.
std::string GetCurrClientDBName(const Application& app);

}  // namespace lotwise
