#pragma once

#include <string>
#include <string_view>

#include "ground/field_sizes.h"

namespace lotwise {

class Database;

// The current data version of both file kinds.
inline constexpr const char* kCurrentDataVersion = "LW2005.20";

// The three kinds of database file the program makes from its templates.
enum class FileKind { kCentral, kTaxpayer, kReport };

// Writes a new template file of `kind` at `path`: every table, index and
// saved query, and (central and Taxpayer File) the current data version.
// The file must not exist yet.
void CreateTemplate(FileKind kind, const std::string& path);

// The SQL of the saved queries the upgrade steps write, shared with the
// templates so that an upgraded file holds the same texts as a new one.
namespace saved_sql {
extern const char* const kAllSecs;
extern const char* const kDistinctSecs;
extern const char* const kGetASecurity;
extern const char* const kSecsInPort;
extern const char* const kGetPortsForSec;
extern const char* const kTotalSharesPerTable;
extern const char* const kGetAClient;
extern const char* const kDeleteClient;
}  // namespace saved_sql

}  // namespace lotwise
