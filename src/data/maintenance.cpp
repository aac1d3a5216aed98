#include "data/maintenance.h"

#include "app/lw_error.h"

namespace lotwise {

void ShowCompress(Application&) { throw LwError(err::kUnexpected, "not built yet: ShowCompress"); }
void ShowRepair(Application&) { throw LwError(err::kUnexpected, "not built yet: ShowRepair"); }
void ShowDelBackups(Application&) {
  throw LwError(err::kUnexpected, "not built yet: ShowDelBackups");
}
void BackupToDisk(Application&) { throw LwError(err::kUnexpected, "not built yet: BackupToDisk"); }
void RestoreFromDisk(Application& app) { BackupToDisk(app); }

}  // namespace lotwise
