#include "data/file_rebuild.h"

#include <fmt/format.h>

#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "data/database.h"
#include "data/schema.h"
#include "ground/lw_error.h"
#include "ground/paths.h"

namespace lotwise {

namespace {

namespace fs = std::filesystem;

// A read of the new file failing is no damage of the old one: it must end
// the rebuild, not be skipped like an unreadable stretch.
struct WriteFailure {
  LwError error;
};

struct SchemaRow {
  std::string type;
  std::string name;
  std::string sql;
};

std::string Quoted(std::string_view name) {
  std::string quoted = "\"";
  for (char c : name) {
    quoted += c;
    if (c == '"') quoted += '"';
  }
  return quoted + "\"";
}

bool IsInternal(std::string_view name) { return ToUpperAscii(name).rfind("SQLITE_", 0) == 0; }

std::vector<SchemaRow> ReadSchema(Database& db) {
  std::vector<SchemaRow> rows;
  Query q = db.Select("SELECT type, name, sql FROM sqlite_master ORDER BY rowid");
  while (q.Next()) rows.push_back({q.Text("type"), q.Text("name"), q.Text("sql")});
  return rows;
}

// The data version the file says it has, or empty text when that cannot
// be read.
std::string StoredVersion(Database& db) {
  try {
    Query q = db.Select(R"(SELECT "Version" FROM "Version")");
    return q.Next() ? q.Text("Version") : std::string();
  } catch (const LwError&) {
    return {};
  }
}

// Tables before the views, indexes and triggers that name them.
void WriteSchema(Database& db, const std::vector<SchemaRow>& schema) {
  Database::Transaction unit(db);
  for (const char* type : {"table", "view", "index", "trigger"}) {
    for (const SchemaRow& row : schema) {
      if (row.type != type || row.sql.empty() || IsInternal(row.name)) continue;
      db.ExecuteScript(row.sql);
    }
  }
  unit.Commit();
}

std::vector<std::string> UserTables(Database& db) {
  std::vector<std::string> tables;
  for (const SchemaRow& row : ReadSchema(db)) {
    if (row.type == "table" && !IsInternal(row.name)) tables.push_back(row.name);
  }
  return tables;
}

// Orders the tables so that every table comes after those its foreign keys
// point to: a child row can only be stored once its parent is.
std::vector<std::string> ParentsFirst(Database& db, const std::vector<std::string>& tables) {
  std::map<std::string, std::set<std::string>> parents;
  std::set<std::string> known;
  for (const std::string& table : tables) known.insert(ToUpperAscii(table));
  for (const std::string& table : tables) {
    Query q =
        db.Select(R"(SELECT "table" AS parent FROM pragma_foreign_key_list(:t))", {{"t", table}});
    while (q.Next()) {
      std::string parent = ToUpperAscii(q.Text("parent"));
      if (parent != ToUpperAscii(table) && known.count(parent) != 0) parents[table].insert(parent);
    }
  }
  std::vector<std::string> ordered;
  std::set<std::string> placed;
  std::vector<std::string> rest = tables;
  while (!rest.empty()) {
    std::vector<std::string> waiting;
    for (const std::string& table : rest) {
      bool ready = true;
      for (const std::string& parent : parents[table]) ready = ready && placed.count(parent) != 0;
      if (ready) {
        ordered.push_back(table);
        placed.insert(ToUpperAscii(table));
      } else {
        waiting.push_back(table);
      }
    }
    // A cycle of references: the rest go in as they stand.
    if (waiting.size() == rest.size()) {
      ordered.insert(ordered.end(), waiting.begin(), waiting.end());
      break;
    }
    rest = std::move(waiting);
  }
  return ordered;
}

// The result of looking for the first row at or after a row id: whether
// the way there could be read, and the row found (none past the end).
struct Probe {
  bool readable = false;
  std::optional<int64_t> row;
};

Probe ProbeFrom(Database& db, const std::string& table, int64_t from) {
  try {
    Query q = db.Select("SELECT rowid AS lw_rowid FROM " + table +
                            " NOT INDEXED WHERE rowid >= :from ORDER BY rowid LIMIT 1",
                        {{"from", from}});
    Probe probe{true, std::nullopt};
    if (q.Next()) probe.row = q.Int("lw_rowid");
    return probe;
  } catch (const LwError&) {
    return {};
  }
}

// Returns the first row at or after `from` that can be reached, or nullopt
// when none can. A damaged page hides a run of row ids; the search doubles
// its stride until it lands beyond the run, then halves back to the run's
// end, so that the readable rows just after it are kept.
std::optional<int64_t> NextReadableRow(Database& db, const std::string& table, int64_t from,
                                       int64_t upper) {
  if (from > upper) return std::nullopt;
  const uint64_t span = static_cast<uint64_t>(upper) - static_cast<uint64_t>(from);
  auto at = [from](uint64_t offset) {
    return static_cast<int64_t>(static_cast<uint64_t>(from) + offset);
  };
  uint64_t offset = 0;
  uint64_t stride = 1;
  bool failed = false;
  uint64_t unreadable = 0;
  Probe hit;
  for (;;) {
    hit = ProbeFrom(db, table, at(offset));
    if (hit.readable) break;
    if (offset == span) return std::nullopt;
    failed = true;
    unreadable = offset;
    offset = span - offset <= stride ? span : offset + stride;
    if (stride <= span / 2) stride *= 2;
  }
  while (failed && offset - unreadable > 1) {
    const uint64_t middle = unreadable + (offset - unreadable) / 2;
    Probe probe = ProbeFrom(db, table, at(middle));
    if (probe.readable) {
      offset = middle;
      hit = probe;
    } else {
      unreadable = middle;
    }
  }
  return hit.row;
}

bool IsRowRefused(const LwError& error) {
  constexpr int kConstraint = err::kSqliteBase + 19;
  constexpr int kMismatch = err::kSqliteBase + 20;
  return error.number() == err::kDuplicateKey || error.number() == kConstraint ||
         error.number() == kMismatch;
}

bool HasColumn(const std::vector<std::string>& columns, const std::string& name) {
  for (const std::string& column : columns) {
    if (ToUpperAscii(column) == ToUpperAscii(name)) return true;
  }
  return false;
}

// Copies every readable row of `table`, reading the damaged file in row id
// order and stepping over the stretches it cannot read.
void CopyTable(Database& damaged, Database& fresh, const std::string& name, RebuildCounts& counts) {
  if (!damaged.HasTable(name)) return;
  const std::vector<std::string> old_columns = damaged.Columns(name);
  std::vector<std::string> columns;
  for (const std::string& column : fresh.Columns(name)) {
    if (HasColumn(old_columns, column)) columns.push_back(column);
  }
  if (columns.empty()) return;

  const std::string table = Quoted(name);
  std::string select = "SELECT rowid AS lw_rowid";
  std::string names;
  std::string values;
  for (size_t i = 0; i < columns.size(); ++i) {
    const char* comma = i == 0 ? "" : ", ";
    select += fmt::format(", typeof({0}) AS lw_t{1}, {0} AS lw_v{1}", Quoted(columns[i]), i);
    names += fmt::format("{}{}", comma, Quoted(columns[i]));
    // Bytes come back as text; the cast keeps a blob a blob.
    values += fmt::format("{0}CASE WHEN :t{1} = 'blob' THEN CAST(:v{1} AS BLOB) ELSE :v{1} END",
                          comma, i);
  }
  select += " FROM " + table + " NOT INDEXED WHERE rowid >= :from ORDER BY rowid";
  // The template's saved queries stay unless the damaged file has its own
  // text of the same name.
  const bool upsert = name == Database::kSavedQueriesTable;
  const std::string insert = std::string(upsert ? "INSERT OR REPLACE" : "INSERT") + " INTO " +
                             table + " (" + names + ") VALUES (" + values + ")";

  int64_t upper = std::numeric_limits<int64_t>::max();
  try {
    Query q = damaged.Select("SELECT max(rowid) AS lw_max FROM " + table + " NOT INDEXED");
    if (q.Next() && !q.IsNull("lw_max")) upper = q.Int("lw_max");
  } catch (const LwError&) {
    // The last rows cannot be reached; the search then runs to the end of
    // the row id range.
  }

  // Reading starts at a row id, never after one: a search for "after the
  // last row before a damaged page" would lead into that page again.
  int64_t from = std::numeric_limits<int64_t>::min();
  bool resumed = false;
  for (;;) {
    bool read_one = false;
    try {
      Query rows = damaged.Select(select, {{"from", from}});
      while (rows.Next()) {
        read_one = true;
        Params params;
        for (size_t i = 0; i < columns.size(); ++i) {
          const std::string n = std::to_string(i);
          const std::string type = rows.Text(("lw_t" + n).c_str());
          const std::string column = "lw_v" + n;
          Value value;
          if (type == "integer") {
            value = rows.Int(column.c_str());
          } else if (type == "real") {
            value = rows.Double(column.c_str());
          } else if (type == "text" || type == "blob") {
            value = rows.Text(column.c_str());
          }
          params.emplace_back("t" + n, type);
          params.emplace_back("v" + n, std::move(value));
        }
        const int64_t id = rows.Int("lw_rowid");
        try {
          fresh.Execute(insert, params);
          ++counts.rows_copied;
        } catch (const LwError& error) {
          if (!IsRowRefused(error)) throw WriteFailure{error};
          ++counts.rows_left_out;
        }
        if (id == std::numeric_limits<int64_t>::max()) return;
        from = id + 1;
      }
      return;
    } catch (const LwError&) {
      ++counts.unreadable_stretches;
      std::optional<int64_t> next = NextReadableRow(damaged, table, from, upper);
      if (!next) return;
      if (resumed && !read_one) {
        // Reading stopped at once where it resumed: that row's id can be
        // read but not its values. It is given up and reading goes on
        // behind it.
        if (*next == std::numeric_limits<int64_t>::max()) return;
        from = *next + 1;
      } else {
        from = *next;
      }
      resumed = true;
    }
  }
}

// The counters of AUTOINCREMENT tables: a number once handed out is never
// handed out again, also when the row that had it was lost.
void CopyCounters(Database& damaged, Database& fresh) {
  if (!fresh.HasTable("sqlite_sequence")) return;
  std::vector<std::pair<std::string, int64_t>> counters;
  try {
    Query q = damaged.Select("SELECT name, seq FROM sqlite_sequence");
    while (q.Next()) counters.emplace_back(q.Text("name"), q.Int("seq"));
  } catch (const LwError&) {
    return;
  }
  for (const auto& [name, seq] : counters) {
    if (!fresh.HasTable(name)) continue;
    Query current =
        fresh.Select("SELECT seq FROM sqlite_sequence WHERE name = :name", {{"name", name}});
    if (!current.Next()) {
      fresh.Execute("INSERT INTO sqlite_sequence (name, seq) VALUES (:name, :seq)",
                    {{"name", name}, {"seq", seq}});
    } else if (current.Int("seq") < seq) {
      fresh.Execute("UPDATE sqlite_sequence SET seq = :seq WHERE name = :name",
                    {{"name", name}, {"seq", seq}});
    }
  }
}

// A block's "Shares Left" is the sum of its transactions' shares, kept by
// triggers that fire only for the rows written. A block whose transactions
// were all lost gets no such write, so every block is summed afresh.
void RefreshSharesLeft(Database& fresh) {
  if (!fresh.HasTable("Blocks") || !HasColumn(fresh.Columns("Blocks"), "Shares Left")) return;
  Query view = fresh.Select(
      "SELECT 1 AS found FROM sqlite_master WHERE type = 'view' AND name = 'Block Shares'");
  if (!view.Next()) return;
  fresh.Execute(
      R"(UPDATE "Blocks" SET "Shares Left" = (SELECT total("Shares") FROM "Block Shares" )"
      R"(WHERE "Block Shares"."Block No" = "Blocks"."Block No"))");
}

}  // namespace

void TakeWriteLock(Database& db) {
  db.Execute("BEGIN EXCLUSIVE");
  db.Execute("COMMIT");
}

void CompactInto(Database& db, const std::string& to) {
  db.Execute("VACUUM INTO :into", {{"into", to}});
}

RebuildCounts RebuildDatabase(Database& damaged, const std::string& template_path,
                              const std::string& to, StorageFaults* faults) {
  const std::vector<SchemaRow> schema = ReadSchema(damaged);
  std::unique_ptr<Database> fresh;
  if (StoredVersion(damaged) == kCurrentDataVersion) {
    if (!FileExists(template_path)) {
      throw LwError(err::kFileNotFound, "Could not find file '" + template_path + "'.");
    }
    std::error_code ec;
    fs::copy_file(template_path, to, ec);
    if (ec) {
      throw LwError(err::kPathFileAccess,
                    "Path/File access error: " + to + " (" + ec.message() + ")");
    }
    fresh = Database::Open(to, Database::Mode::kExclusive, faults);
  } else {
    fresh = Database::Create(to, faults);
    WriteSchema(*fresh, schema);
  }

  RebuildCounts counts;
  try {
    Database::Transaction unit(*fresh);
    const std::vector<std::string> tables = ParentsFirst(*fresh, UserTables(*fresh));
    // The template's own rows (its data version) give way to the file's.
    for (auto it = tables.rbegin(); it != tables.rend(); ++it) {
      if (*it != Database::kSavedQueriesTable) fresh->Execute("DELETE FROM " + Quoted(*it));
    }
    for (const std::string& table : tables) CopyTable(damaged, *fresh, table, counts);
    CopyCounters(damaged, *fresh);
    RefreshSharesLeft(*fresh);
    unit.Commit();
  } catch (const WriteFailure& failure) {
    throw failure.error;
  }
  return counts;
}

}  // namespace lotwise
