#pragma once

namespace lotwise {

// Counts the writes of every database opened with it and makes a chosen
// one fail, so that tests can prove that nothing half-written remains.
class StorageFaults {
 public:
  // The n-th write from now (1 = the next) fails with a disk I/O error.
  void FailWriteNumber(int n) { fail_at_ = writes_ + n; }
  void Clear() {
    fail_at_ = 0;
    disk_write_fail_at_ = 0;
    disk_sync_fail_at_ = 0;
  }
  int writes() const { return writes_; }
  // Called before each write; throws LwError when this one is chosen.
  void BeforeWrite();

  // Faults of the disk itself: a database opened with a StorageFaults goes
  // through the fault-injecting file system (fault_vfs.h), which reports
  // every write and sync of the database file and its rollback journal here.
  // The n-th such write (sync) from now (1 = the next) fails as a failing
  // disk would, wherever SQLite happens to be in its work at that moment.
  void FailDiskWriteNumber(int n) { disk_write_fail_at_ = disk_writes_ + n; }
  void FailDiskSyncNumber(int n) { disk_sync_fail_at_ = disk_syncs_ + n; }
  int disk_writes() const { return disk_writes_; }
  int disk_syncs() const { return disk_syncs_; }
  // Called by the file system before each write (sync); returns true iff this
  // one must fail.
  bool BeforeDiskWrite();
  bool BeforeDiskSync();

 private:
  int writes_ = 0;
  int fail_at_ = 0;
  int disk_writes_ = 0;
  int disk_write_fail_at_ = 0;
  int disk_syncs_ = 0;
  int disk_sync_fail_at_ = 0;
};

}  // namespace lotwise
