#pragma once

#include <string>

namespace lotwise {

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

}  // namespace lotwise
