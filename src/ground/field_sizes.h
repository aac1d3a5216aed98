#pragma once

#include <array>
#include <string_view>

namespace lotwise {

// The defined sizes of the text fields of every data file: the one table
// that the windows' input limits, the core's refusals and the change log's
// cut all read. SQLite does not enforce sizes; the program does.
struct SizedField {
  std::string_view table;  // "*": every table that has the field
  std::string_view field;
  int size;
};

inline constexpr std::array kTextSizes = {
    SizedField{"*", "Sec Symbol", 10},  SizedField{"*", "Sec Name", 50},
    SizedField{"*", "CUSIP", 12},       SizedField{"*", "Client Code", 10},
    SizedField{"*", "Client Name", 50}, SizedField{"*", "Sort Name", 50},
    SizedField{"*", "File Name", 64},   SizedField{"*", "2nd Line", 50},
    SizedField{"*", "Port Name", 50},   SizedField{"*", "Block ID", 20},
    SizedField{"*", "Notes", 255},      SizedField{"Change", "Description", 255},
    SizedField{"*", "Version", 20},
};

// Returns the defined size of a text field, or 0 when the field is not a
// sized text field.
constexpr int DefinedTextSize(std::string_view table, std::string_view field) {
  for (const SizedField& sized : kTextSizes) {
    if (sized.field == field && (sized.table == "*" || sized.table == table)) return sized.size;
  }
  return 0;
}

}  // namespace lotwise
