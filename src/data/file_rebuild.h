#pragma once

#include <cstdint>
#include <string>

namespace lotwise {

class Database;
class StorageFaults;

// Takes the file's write lock through an empty exclusive unit; in
// exclusive locking mode the connection then keeps it until it is closed.
// A file another connection is working in fails as busy.
void TakeWriteLock(Database& db);

// Writes a compacted copy of the file at `to`, which must not exist.
void CompactInto(Database& db, const std::string& to);

// What a rebuild carried over.
struct RebuildCounts {
  int64_t rows_copied = 0;
  // Rows that were read but cannot stand in the new file (a transaction
  // whose block was lost, a key met twice); they remain in the old file.
  int64_t rows_left_out = 0;
  // Stretches of rows that could not be read at all.
  int64_t unreadable_stretches = 0;
};

// Writes a new database file at `to` (which must not exist) holding every
// row of `damaged` that can still be read, with the row ids it had. Its
// tables, indexes and triggers are those of the template file at
// `template_path` when the damaged file carries the current data version,
// else the damaged file's own, so that an older file keeps the layout its
// upgrade steps expect. Counters never fall below the damaged file's.
// Throws LwError when the damaged file's catalogue cannot be read or the
// new file cannot be written; `to` may then exist half written.
RebuildCounts RebuildDatabase(Database& damaged, const std::string& template_path,
                              const std::string& to, StorageFaults* faults = nullptr);

}  // namespace lotwise
