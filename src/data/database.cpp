#include "data/database.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <atomic>
#include <filesystem>

#include "data/fault_vfs.h"
#include "ground/number_text.h"

namespace lotwise {

namespace {

// lw_number_text(x): the default text form of a number, so that texts the
// database assembles from stored numbers ("Stock Split (1 to 2)") read as
// the program writes numbers everywhere else.
void NumberTextFunction(sqlite3_context* context, int argc, sqlite3_value** argv) {
  if (argc != 1 || sqlite3_value_type(argv[0]) == SQLITE_NULL) {
    sqlite3_result_null(context);
    return;
  }
  std::string text = NumberText(sqlite3_value_double(argv[0]));
  sqlite3_result_text(context, text.c_str(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

std::atomic<int> busy_timeout_ms{Database::kDefaultBusyTimeoutMs};

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

}  // namespace

LwError MapSqliteError(int code, int extended_code, std::string_view message,
                       std::string_view path) {
  std::string msg(message);
  switch (code & 0xff) {
    case SQLITE_CONSTRAINT:
      if (extended_code == SQLITE_CONSTRAINT_UNIQUE ||
          extended_code == SQLITE_CONSTRAINT_PRIMARYKEY) {
        return LwError(
            err::kDuplicateKey,
            "The changes you requested to the table were not successful because they "
            "would create duplicate values in the index, primary key, or relationship. (" +
                msg + ")");
      }
      break;
    case SQLITE_ERROR:
      if (Contains(msg, "no such table") || Contains(msg, "no such column")) {
        return LwError(err::kObjectNotFound, "Could not find the object: " + msg);
      }
      break;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return LwError(err::kReserved, "Reserved error (-8194); the file " + std::string(path) +
                                         " is in use by another user or program (" + msg + ")");
    case SQLITE_CORRUPT:
      return LwError(err::kReserved, "Reserved error (-1209); the file " + std::string(path) +
                                         " is damaged (" + msg + ")");
    case SQLITE_NOTADB:
      return LwError(err::kNotADatabase,
                     "Unrecognized database format '" + std::string(path) + "'.");
    case SQLITE_NOMEM:
      return LwError(err::kOutOfMemory, "Out of memory");
    case SQLITE_CANTOPEN: {
      std::error_code ec;
      std::filesystem::path p{std::string(path)};
      if (!std::filesystem::is_directory(p.parent_path().empty() ? "." : p.parent_path(), ec)) {
        return LwError(err::kInvalidPath, "'" + std::string(path) + "' is not a valid path.");
      }
      if (!std::filesystem::exists(p, ec)) {
        return LwError(err::kFileNotFound, "Could not find file '" + std::string(path) + "'.");
      }
      return LwError(err::kPathFileAccess, "Path/File access error: " + std::string(path));
    }
    default:
      break;
  }
  return LwError(err::kSqliteBase + (code & 0xff), msg);
}

namespace {

[[noreturn]] void Rethrow(const SQLite::Exception& e, std::string_view path) {
  // what() carries SQLite's own message ("no such table: X"); getErrorStr() only the
  // generic text of the code, which hides what went wrong.
  throw MapSqliteError(e.getErrorCode(), e.getExtendedErrorCode(), e.what(), path);
}

}  // namespace

// ---------------------------------------------------------------- Query

Query::Query(std::unique_ptr<SQLite::Statement> statement, std::string path)
    : statement_(std::move(statement)), path_(std::move(path)) {}
Query::Query(Query&&) noexcept = default;
Query& Query::operator=(Query&&) noexcept = default;
Query::~Query() = default;

bool Query::Next() {
  try {
    return statement_->executeStep();
  } catch (const SQLite::Exception& e) {
    Rethrow(e, path_);
  }
}

namespace {

SQLite::Column Column(const SQLite::Statement& statement, const char* name, std::string_view path) {
  try {
    return statement.getColumn(name);
  } catch (const SQLite::Exception& e) {
    throw LwError(err::kObjectNotFound, "Item not found in this collection: " + std::string(name) +
                                            " (" + std::string(path) + ")");
  }
}

}  // namespace

bool Query::IsNull(const char* column) const { return Column(*statement_, column, path_).isNull(); }

std::string Query::Text(const char* column) const {
  auto c = Column(*statement_, column, path_);
  if (c.isNull()) return {};
  return c.getString();
}

std::optional<std::string> Query::OptionalText(const char* column) const {
  auto c = Column(*statement_, column, path_);
  if (c.isNull()) return std::nullopt;
  return c.getString();
}

int64_t Query::Int(const char* column) const {
  return Column(*statement_, column, path_).getInt64();
}

double Query::Double(const char* column) const {
  return Column(*statement_, column, path_).getDouble();
}

Currency Query::Money(const char* column) const {
  return Currency::FromUnits(Column(*statement_, column, path_).getInt64());
}

Date Query::DateValue(const char* column) const {
  auto c = Column(*statement_, column, path_);
  if (c.isNull()) return Date();
  return Date::ParseIso(c.getString()).value_or(Date());
}

bool Query::Bool(const char* column) const {
  return Column(*statement_, column, path_).getInt64() != 0;
}

int Query::ColumnCount() const { return statement_->getColumnCount(); }

std::string Query::ColumnName(int index) const { return statement_->getColumnName(index); }

// ---------------------------------------------------------------- Database

Database::Database(std::unique_ptr<SQLite::Database> db, std::string path, StorageFaults* faults)
    : db_(std::move(db)), path_(std::move(path)), faults_(faults) {}

Database::~Database() { *open_ = false; }

std::unique_ptr<Database> Database::OpenWith(const std::string& path, int flags, Mode mode,
                                             bool scratch, StorageFaults* faults) {
  try {
    // With a StorageFaults the file goes through the fault-injecting file
    // system, so that tests can fail the disk itself, not only statements.
    std::string vfs = faults != nullptr ? RegisterFaultVfs() : "";
    auto sqlite = std::make_unique<SQLite::Database>(path, flags, busy_timeout_ms.load(), vfs);
    if (faults != nullptr) AttachStorageFaults(sqlite->getHandle(), faults);
    std::unique_ptr<Database> db(new Database(std::move(sqlite), path, faults));
    // A double-quoted name must always be a name: SQLite would otherwise
    // take an unknown one for a text literal and quietly match nothing.
    sqlite3_db_config(db->db_->getHandle(), SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(db->db_->getHandle(), SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_create_function_v2(db->db_->getHandle(), "lw_number_text", 1,
                               SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, NumberTextFunction,
                               nullptr, nullptr, nullptr);
    // Reading the catalogue makes a foreign or damaged file fail now.
    db->RawExecute("PRAGMA foreign_keys = ON");
    if (mode != Mode::kReadOnly) {
      // A rollback journal, not WAL: WAL does not work on shared network
      // folders. The journal is deleted at each commit, so that no file but
      // the Taxpayer Files themselves stays in the data folders.
      db->RawExecute("PRAGMA journal_mode = DELETE");
      db->RawExecute(scratch ? "PRAGMA synchronous = OFF" : "PRAGMA synchronous = FULL");
    }
    if (mode == Mode::kExclusive) db->RawExecute("PRAGMA locking_mode = EXCLUSIVE");
    SQLite::Statement check(*db->db_, "SELECT count(*) FROM sqlite_master");
    check.executeStep();
    return db;
  } catch (const SQLite::Exception& e) {
    Rethrow(e, path);
  }
}

std::unique_ptr<Database> Database::Open(const std::string& path, Mode mode,
                                         StorageFaults* faults) {
  int flags = mode == Mode::kReadOnly ? SQLite::OPEN_READONLY : SQLite::OPEN_READWRITE;
  return OpenWith(path, flags, mode, false, faults);
}

std::unique_ptr<Database> Database::OpenScratch(const std::string& path, StorageFaults* faults) {
  return OpenWith(path, SQLite::OPEN_READWRITE, Mode::kShared, true, faults);
}

std::unique_ptr<Database> Database::Create(const std::string& path, StorageFaults* faults) {
  std::error_code ec;
  if (std::filesystem::exists(path, ec)) {
    throw LwError(err::kPathFileAccess, "File already exists: " + path);
  }
  return OpenWith(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, Mode::kShared, false, faults);
}

void Database::RawExecute(const std::string& sql) {
  SQLite::Statement statement(*db_, sql);
  while (statement.executeStep()) {
  }
}

std::unique_ptr<SQLite::Statement> Database::Prepare(std::string_view sql, const Params& params) {
  auto statement = std::make_unique<SQLite::Statement>(*db_, std::string(sql));
  Bind(*statement, params);
  return statement;
}

void Database::Bind(SQLite::Statement& statement, const Params& params) {
  for (const Param& param : params) {
    std::string name = ":" + param.name;
    int index = statement.getIndex(name.c_str());
    // A saved query may not use every parameter its callers pass.
    if (index == 0) continue;
    std::visit(
        [&](const auto& v) {
          using T = std::decay_t<decltype(v)>;
          if constexpr (std::is_same_v<T, std::monostate>) {
            statement.bind(index);
          } else if constexpr (std::is_same_v<T, int64_t> || std::is_same_v<T, double> ||
                               std::is_same_v<T, std::string>) {
            statement.bind(index, v);
          } else if constexpr (std::is_same_v<T, Currency>) {
            statement.bind(index, v.units());
          } else if constexpr (std::is_same_v<T, Date>) {
            statement.bind(index, v.ToIso());
          } else if constexpr (std::is_same_v<T, bool>) {
            statement.bind(index, static_cast<int64_t>(v ? 1 : 0));
          }
        },
        param.value);
  }
}

SQLite::Statement& Database::CachedWrite(std::string_view sql) {
  constexpr size_t kMaxCachedWrites = 128;
  std::string key(sql);
  auto found = write_cache_.find(key);
  if (found != write_cache_.end()) return *found->second;
  if (write_cache_.size() >= kMaxCachedWrites) write_cache_.clear();
  auto statement = std::make_unique<SQLite::Statement>(*db_, key);
  return *write_cache_.emplace(std::move(key), std::move(statement)).first->second;
}

Query Database::Select(std::string_view sql, const Params& params) {
  try {
    return Query(Prepare(sql, params), path_);
  } catch (const SQLite::Exception& e) {
    Rethrow(e, path_);
  }
}

int64_t Database::Execute(std::string_view sql, const Params& params) {
  if (faults_ != nullptr) faults_->BeforeWrite();
  SQLite::Statement* statement = nullptr;
  try {
    statement = &CachedWrite(sql);
    statement->clearBindings();
    Bind(*statement, params);
    while (statement->executeStep()) {
    }
    int64_t changes = statement->getChanges();
    statement->reset();
    return changes;
  } catch (const SQLite::Exception& e) {
    // A failed step leaves the statement to be reset before its next use.
    if (statement != nullptr) statement->tryReset();
    Rethrow(e, path_);
  }
}

void Database::ExecuteScript(std::string_view sql) {
  if (faults_ != nullptr) faults_->BeforeWrite();
  try {
    db_->exec(std::string(sql));
  } catch (const SQLite::Exception& e) {
    Rethrow(e, path_);
  }
}

int64_t Database::LastInsertId() const { return db_->getLastInsertRowid(); }

std::string Database::SavedQuerySql(std::string_view name) {
  Query q = Select(std::string("SELECT SQL FROM ") + kSavedQueriesTable + " WHERE Name = :name",
                   {{"name", std::string(name)}});
  if (!q.Next()) {
    throw LwError(err::kObjectNotFound, "Could not find the object '" + std::string(name) + "'.");
  }
  return q.Text("SQL");
}

bool Database::HasSavedQuery(std::string_view name) {
  if (!HasTable(kSavedQueriesTable)) return false;
  Query q =
      Select(std::string("SELECT 1 AS Found FROM ") + kSavedQueriesTable + " WHERE Name = :name",
             {{"name", std::string(name)}});
  return q.Next();
}

Query Database::SelectSaved(std::string_view name, const Params& params) {
  return Select(SavedQuerySql(name), params);
}

int64_t Database::ExecuteSaved(std::string_view name, const Params& params) {
  return Execute(SavedQuerySql(name), params);
}

void Database::SetSavedQuery(std::string_view name, std::string_view sql) {
  Execute(
      std::string("INSERT INTO ") + kSavedQueriesTable +
          " (Name, SQL) VALUES (:name, :sql) ON CONFLICT(Name) DO UPDATE SET SQL = excluded.SQL",
      {{"name", std::string(name)}, {"sql", std::string(sql)}});
}

void Database::DeleteSavedQuery(std::string_view name) {
  Execute(std::string("DELETE FROM ") + kSavedQueriesTable + " WHERE Name = :name",
          {{"name", std::string(name)}});
}

std::vector<CatalogueEntry> Database::Catalogue() {
  std::vector<CatalogueEntry> entries;
  Query tables = Select(
      "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' ESCAPE "
      "'\\' "
      "AND name <> :saved ORDER BY name",
      {{"saved", std::string(kSavedQueriesTable)}});
  while (tables.Next()) entries.push_back({tables.Text("name"), CatalogueEntry::Kind::kTable});
  if (HasTable(kSavedQueriesTable)) {
    Query queries =
        Select(std::string("SELECT Name FROM ") + kSavedQueriesTable + " ORDER BY Name");
    while (queries.Next())
      entries.push_back({queries.Text("Name"), CatalogueEntry::Kind::kSavedQuery});
  }
  return entries;
}

bool Database::HasTable(std::string_view name) {
  Query q = Select("SELECT 1 AS Found FROM sqlite_master WHERE type = 'table' AND name = :name",
                   {{"name", std::string(name)}});
  return q.Next();
}

std::vector<std::string> Database::Columns(std::string_view table) {
  std::vector<std::string> columns;
  Query q = Select("SELECT name FROM pragma_table_info(:table) ORDER BY cid",
                   {{"table", std::string(table)}});
  while (q.Next()) columns.push_back(q.Text("name"));
  return columns;
}

std::string Database::IntegrityCheck() {
  std::string result;
  Query q = Select("PRAGMA integrity_check");
  while (q.Next()) {
    if (!result.empty()) result += "\n";
    result += q.Text("integrity_check");
  }
  if (result == "ok") {
    Query fk = Select("PRAGMA foreign_key_check");
    if (fk.Next()) result = "foreign key violation in " + fk.Text("table");
  }
  return result;
}

void Database::SetBusyTimeout(int milliseconds) { busy_timeout_ms.store(milliseconds); }

int Database::BusyTimeout() { return busy_timeout_ms.load(); }

// ---------------------------------------------------------------- Transaction

Database::Transaction::Transaction(Database& db)
    : db_(db), depth_(db.transaction_depth_), db_open_(db.open_) {
  try {
    if (depth_ == 0) {
      // IMMEDIATE takes the write lock now, so a busy file fails before any work.
      db_.RawExecute("BEGIN IMMEDIATE");
    } else {
      db_.RawExecute("SAVEPOINT lw_unit_" + std::to_string(depth_));
    }
  } catch (const SQLite::Exception& e) {
    Rethrow(e, db_.path_);
  }
  ++db_.transaction_depth_;
}

void Database::Transaction::Commit() {
  if (done_) return;
  if (!*db_open_) {
    throw LwError(err::kUnexpected, "The file was closed before its changes were saved.");
  }
  try {
    if (depth_ == 0) {
      db_.RawExecute("COMMIT");
    } else {
      db_.RawExecute("RELEASE lw_unit_" + std::to_string(depth_));
    }
  } catch (const SQLite::Exception& e) {
    Rethrow(e, db_.path_);
  }
  done_ = true;
  --db_.transaction_depth_;
}

Database::Transaction::~Transaction() {
  if (done_ || !*db_open_) return;
  try {
    if (depth_ == 0) {
      db_.RawExecute("ROLLBACK");
    } else {
      std::string name = "lw_unit_" + std::to_string(depth_);
      db_.RawExecute("ROLLBACK TO " + name);
      db_.RawExecute("RELEASE " + name);
    }
  } catch (...) {
    // A failed rollback leaves SQLite to roll back from its journal when the
    // file is next opened; nothing more can be done from a destructor.
  }
  --db_.transaction_depth_;
}

}  // namespace lotwise
