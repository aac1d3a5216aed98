#include "data/fault_vfs.h"

#include <sqlite3.h>

#include <algorithm>

#include "data/storage_faults.h"
#include "ground/lw_error.h"

namespace lotwise {

namespace {

// A file-control opcode of our own, far above SQLite's, that hands a file
// its StorageFaults.
constexpr int kAttachFaultsOp = 0x4C570001;

// Our file object: SQLite allocates szOsFile bytes for it, and the default
// file system's own file object lives right behind ours.
struct FaultFile {
  sqlite3_file base;  // must come first: SQLite sees only this
  sqlite3_file* real;
  StorageFaults* faults;
  // Database and rollback-journal files are the ones a lost write can damage;
  // temporary files are left alone.
  bool watched;
};

FaultFile* Wrap(sqlite3_file* file) { return reinterpret_cast<FaultFile*>(file); }
sqlite3_file* Real(sqlite3_file* file) { return Wrap(file)->real; }
const sqlite3_io_methods& RealMethods(sqlite3_file* file) { return *Real(file)->pMethods; }
sqlite3_vfs* RealVfs(sqlite3_vfs* vfs) { return static_cast<sqlite3_vfs*>(vfs->pAppData); }

// ---------------------------------------------------------------- file methods

int Close(sqlite3_file* file) {
  int rc = RealMethods(file).xClose(Real(file));
  file->pMethods = nullptr;
  return rc;
}

int Read(sqlite3_file* file, void* data, int amount, sqlite3_int64 offset) {
  return RealMethods(file).xRead(Real(file), data, amount, offset);
}

int Write(sqlite3_file* file, const void* data, int amount, sqlite3_int64 offset) {
  FaultFile* f = Wrap(file);
  if (f->watched && f->faults != nullptr && f->faults->BeforeDiskWrite()) {
    return SQLITE_IOERR_WRITE;
  }
  return RealMethods(file).xWrite(Real(file), data, amount, offset);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  return RealMethods(file).xTruncate(Real(file), size);
}

int Sync(sqlite3_file* file, int flags) {
  FaultFile* f = Wrap(file);
  if (f->watched && f->faults != nullptr && f->faults->BeforeDiskSync()) {
    return SQLITE_IOERR_FSYNC;
  }
  return RealMethods(file).xSync(Real(file), flags);
}

int FileSize(sqlite3_file* file, sqlite3_int64* size) {
  return RealMethods(file).xFileSize(Real(file), size);
}

int Lock(sqlite3_file* file, int level) { return RealMethods(file).xLock(Real(file), level); }

int Unlock(sqlite3_file* file, int level) { return RealMethods(file).xUnlock(Real(file), level); }

int CheckReservedLock(sqlite3_file* file, int* result) {
  return RealMethods(file).xCheckReservedLock(Real(file), result);
}

int FileControl(sqlite3_file* file, int op, void* arg) {
  if (op == kAttachFaultsOp) {
    Wrap(file)->faults = static_cast<StorageFaults*>(arg);
    return SQLITE_OK;
  }
  return RealMethods(file).xFileControl(Real(file), op, arg);
}

int SectorSize(sqlite3_file* file) { return RealMethods(file).xSectorSize(Real(file)); }

int DeviceCharacteristics(sqlite3_file* file) {
  return RealMethods(file).xDeviceCharacteristics(Real(file));
}

int ShmMap(sqlite3_file* file, int page, int page_size, int extend, void volatile** out) {
  if (RealMethods(file).iVersion < 2) return SQLITE_IOERR_SHMMAP;
  return RealMethods(file).xShmMap(Real(file), page, page_size, extend, out);
}

int ShmLock(sqlite3_file* file, int offset, int n, int flags) {
  if (RealMethods(file).iVersion < 2) return SQLITE_IOERR_SHMLOCK;
  return RealMethods(file).xShmLock(Real(file), offset, n, flags);
}

void ShmBarrier(sqlite3_file* file) {
  if (RealMethods(file).iVersion >= 2) RealMethods(file).xShmBarrier(Real(file));
}

int ShmUnmap(sqlite3_file* file, int delete_flag) {
  if (RealMethods(file).iVersion < 2) return SQLITE_OK;
  return RealMethods(file).xShmUnmap(Real(file), delete_flag);
}

// Memory-mapped reads only: every write still goes through Write.
int Fetch(sqlite3_file* file, sqlite3_int64 offset, int amount, void** out) {
  if (RealMethods(file).iVersion < 3) {
    *out = nullptr;
    return SQLITE_OK;
  }
  return RealMethods(file).xFetch(Real(file), offset, amount, out);
}

int Unfetch(sqlite3_file* file, sqlite3_int64 offset, void* page) {
  if (RealMethods(file).iVersion < 3) return SQLITE_OK;
  return RealMethods(file).xUnfetch(Real(file), offset, page);
}

const sqlite3_io_methods kMethods = {
    3,
    Close,
    Read,
    Write,
    Truncate,
    Sync,
    FileSize,
    Lock,
    Unlock,
    CheckReservedLock,
    FileControl,
    SectorSize,
    DeviceCharacteristics,
    ShmMap,
    ShmLock,
    ShmBarrier,
    ShmUnmap,
    Fetch,
    Unfetch,
};

// ---------------------------------------------------------------- file-system methods

int Open(sqlite3_vfs* vfs, sqlite3_filename name, sqlite3_file* file, int flags, int* out_flags) {
  FaultFile* f = Wrap(file);
  f->base.pMethods = nullptr;
  f->real = reinterpret_cast<sqlite3_file*>(f + 1);
  f->faults = nullptr;
  f->watched = (flags & (SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_MAIN_JOURNAL)) != 0;
  if ((flags & SQLITE_OPEN_MAIN_JOURNAL) != 0 && name != nullptr) {
    // A journal answers to the faults of its database, which this file
    // system opened too and which was tied to them right after its open.
    sqlite3_file* main = sqlite3_database_file_object(name);
    if (main != nullptr && main->pMethods == &kMethods) f->faults = Wrap(main)->faults;
  }
  sqlite3_vfs* real = RealVfs(vfs);
  int rc = real->xOpen(real, name, f->real, flags, out_flags);
  // SQLite closes a file whose pMethods is set, even after a failed open.
  if (f->real->pMethods != nullptr) f->base.pMethods = &kMethods;
  return rc;
}

int Delete(sqlite3_vfs* vfs, const char* name, int sync_dir) {
  return RealVfs(vfs)->xDelete(RealVfs(vfs), name, sync_dir);
}

int Access(sqlite3_vfs* vfs, const char* name, int flags, int* result) {
  return RealVfs(vfs)->xAccess(RealVfs(vfs), name, flags, result);
}

int FullPathname(sqlite3_vfs* vfs, const char* name, int size, char* out) {
  return RealVfs(vfs)->xFullPathname(RealVfs(vfs), name, size, out);
}

void* DlOpen(sqlite3_vfs* vfs, const char* name) {
  return RealVfs(vfs)->xDlOpen(RealVfs(vfs), name);
}

void DlError(sqlite3_vfs* vfs, int size, char* message) {
  RealVfs(vfs)->xDlError(RealVfs(vfs), size, message);
}

void (*DlSym(sqlite3_vfs* vfs, void* handle, const char* symbol))(void) {
  return RealVfs(vfs)->xDlSym(RealVfs(vfs), handle, symbol);
}

void DlClose(sqlite3_vfs* vfs, void* handle) { RealVfs(vfs)->xDlClose(RealVfs(vfs), handle); }

int Randomness(sqlite3_vfs* vfs, int size, char* out) {
  return RealVfs(vfs)->xRandomness(RealVfs(vfs), size, out);
}

int Sleep(sqlite3_vfs* vfs, int microseconds) {
  return RealVfs(vfs)->xSleep(RealVfs(vfs), microseconds);
}

int CurrentTime(sqlite3_vfs* vfs, double* now) {
  return RealVfs(vfs)->xCurrentTime(RealVfs(vfs), now);
}

int GetLastError(sqlite3_vfs* vfs, int size, char* out) {
  return RealVfs(vfs)->xGetLastError(RealVfs(vfs), size, out);
}

int CurrentTimeInt64(sqlite3_vfs* vfs, sqlite3_int64* now) {
  return RealVfs(vfs)->xCurrentTimeInt64(RealVfs(vfs), now);
}

int SetSystemCall(sqlite3_vfs* vfs, const char* name, sqlite3_syscall_ptr call) {
  return RealVfs(vfs)->xSetSystemCall(RealVfs(vfs), name, call);
}

sqlite3_syscall_ptr GetSystemCall(sqlite3_vfs* vfs, const char* name) {
  return RealVfs(vfs)->xGetSystemCall(RealVfs(vfs), name);
}

const char* NextSystemCall(sqlite3_vfs* vfs, const char* name) {
  return RealVfs(vfs)->xNextSystemCall(RealVfs(vfs), name);
}

sqlite3_vfs MakeVfs(sqlite3_vfs* real) {
  sqlite3_vfs vfs{};
  // Later members are only called when the default file system has them.
  vfs.iVersion = std::min(real->iVersion, 3);
  vfs.szOsFile = static_cast<int>(sizeof(FaultFile)) + real->szOsFile;
  vfs.mxPathname = real->mxPathname;
  vfs.zName = kFaultVfsName;
  vfs.pAppData = real;
  vfs.xOpen = Open;
  vfs.xDelete = Delete;
  vfs.xAccess = Access;
  vfs.xFullPathname = FullPathname;
  vfs.xDlOpen = DlOpen;
  vfs.xDlError = DlError;
  vfs.xDlSym = DlSym;
  vfs.xDlClose = DlClose;
  vfs.xRandomness = Randomness;
  vfs.xSleep = Sleep;
  vfs.xCurrentTime = CurrentTime;
  vfs.xGetLastError = GetLastError;
  vfs.xCurrentTimeInt64 = CurrentTimeInt64;
  vfs.xSetSystemCall = SetSystemCall;
  vfs.xGetSystemCall = GetSystemCall;
  vfs.xNextSystemCall = NextSystemCall;
  return vfs;
}

}  // namespace

const char* RegisterFaultVfs() {
  // SQLite keeps a pointer to the object for the rest of the process.
  static sqlite3_vfs vfs = MakeVfs(sqlite3_vfs_find(nullptr));
  static const int registered = sqlite3_vfs_register(&vfs, 0);
  if (registered != SQLITE_OK) {
    throw LwError(err::kUnexpected, "The fault-injecting file system could not be registered.");
  }
  return kFaultVfsName;
}

bool AttachStorageFaults(sqlite3* db, StorageFaults* faults) {
  return sqlite3_file_control(db, "main", kAttachFaultsOp, faults) == SQLITE_OK;
}

}  // namespace lotwise
