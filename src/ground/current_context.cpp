#include "ground/current_context.h"

namespace lotwise {

void CurrentContext::ClearClient() {
  client_db_path.clear();
  client_name.clear();
  sort_name.clear();
  client_code.clear();
  client_2nd_line.clear();
  year_end.clear();
}

void CurrentContext::ClearPort() {
  port_name.clear();
  port_2nd_line.clear();
  sec_id = 0;
  sec_symbol.clear();
  block_no = 0;
  block_id.clear();
}

}  // namespace lotwise
