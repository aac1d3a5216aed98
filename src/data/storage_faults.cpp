#include "data/storage_faults.h"

#include <sqlite3.h>

#include "ground/lw_error.h"

namespace lotwise {

void StorageFaults::BeforeWrite() {
  ++writes_;
  if (fail_at_ != 0 && writes_ == fail_at_) {
    fail_at_ = 0;
    throw LwError(err::kSqliteBase + SQLITE_IOERR, "disk I/O error (injected)");
  }
}

bool StorageFaults::BeforeDiskWrite() {
  ++disk_writes_;
  if (disk_write_fail_at_ != 0 && disk_writes_ == disk_write_fail_at_) {
    disk_write_fail_at_ = 0;
    return true;
  }
  return false;
}

bool StorageFaults::BeforeDiskSync() {
  ++disk_syncs_;
  if (disk_sync_fail_at_ != 0 && disk_syncs_ == disk_sync_fail_at_) {
    disk_sync_fail_at_ = 0;
    return true;
  }
  return false;
}

}  // namespace lotwise
