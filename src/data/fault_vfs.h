#pragma once

struct sqlite3;

namespace lotwise {

class StorageFaults;

// The name under which the fault-injecting file system is known to SQLite.
inline constexpr const char* kFaultVfsName = "lw-faults";

// Registers the fault-injecting file system with SQLite, once per process,
// and returns its name. It passes every call through to the default file
// system; only the writes and syncs of database and rollback-journal files
// are first reported to the StorageFaults tied to their database, which may
// make one of them fail as a full or failing disk would (SQLITE_IOERR_WRITE,
// SQLITE_IOERR_FSYNC). Temporary files are never touched.
const char* RegisterFaultVfs();

// Ties the main database file of `db`, which must have been opened through
// the fault-injecting file system, and the journals it opens from now on to
// `faults` (null unties them). Returns true iff the file accepted the tie.
bool AttachStorageFaults(sqlite3* db, StorageFaults* faults);

}  // namespace lotwise
