#include "data/central_file.h"
#include "app/lw_error.h"

namespace lotwise {

namespace {
[[noreturn]] void NotBuilt(const char* name) {
  throw LwError(err::kUnexpected, std::string("not built yet: ") + name);
}
}  // namespace

void OpenCDB(Application&, const std::string&) {
  NotBuilt("OpenCDB");
}

void CloseCDB(Application&) {
  NotBuilt("CloseCDB");
}

bool AddSecToCDB(Application&, const std::string&, const std::string&, std::string&) {
  NotBuilt("AddSecToCDB");
}

bool ModSecInCDB(Application&, const std::string&, const std::string&, const std::string&) {
  NotBuilt("ModSecInCDB");
}

bool DelSecFromCDB(Application&, const std::string&) {
  NotBuilt("DelSecFromCDB");
}

std::string GetSecInfoFromCDB(Application&, const std::string&, std::string_view) {
  NotBuilt("GetSecInfoFromCDB");
}

void AddUsage(Application&, Database&) {
  NotBuilt("AddUsage");
}

int32_t GetUsageCount(Application&) {
  NotBuilt("GetUsageCount");
}

}  // namespace lotwise
