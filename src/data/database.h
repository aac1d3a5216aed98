#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <variant>
#include <vector>

#include "data/storage_faults.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "ground/lw_error.h"

namespace SQLite {
class Database;
class Statement;
}  // namespace SQLite

namespace lotwise {

// A value bound to a statement parameter. Dates are stored as "yyyy-mm-dd"
// text, money as ten-thousandths, booleans as 0/1, nullopt as NULL.
using Value = std::variant<std::monostate, int64_t, double, std::string, Currency, Date, bool>;

// A named parameter: the name without its ":". Integers widen to int64,
// floating values to double, any text to std::string.
struct Param {
  std::string name;
  Value value;

  template <class T>
  Param(std::string n, T&& v) : name(std::move(n)), value(ToValue(std::forward<T>(v))) {}

 private:
  template <class T>
  static Value ToValue(T&& v) {
    using U = std::decay_t<T>;
    if constexpr (std::is_same_v<U, Value> || std::is_same_v<U, bool>) {
      return v;
    } else if constexpr (std::is_integral_v<U>) {
      return static_cast<int64_t>(v);
    } else if constexpr (std::is_floating_point_v<U>) {
      return static_cast<double>(v);
    } else if constexpr (std::is_convertible_v<const U&, std::string_view>) {
      return std::string(std::string_view(v));
    } else {
      return Value(std::forward<T>(v));
    }
  }
};
using Params = std::vector<Param>;

// The rows of one statement, read by column name. Move-only.
class Query {
 public:
  explicit Query(std::unique_ptr<SQLite::Statement> statement, std::string path);
  Query(Query&&) noexcept;
  Query& operator=(Query&&) noexcept;
  ~Query();

  // Moves to the next row. Returns false after the last one.
  bool Next();

  bool IsNull(const char* column) const;
  // A NULL reads as empty text, 0, the empty date, false.
  std::string Text(const char* column) const;
  int64_t Int(const char* column) const;
  double Double(const char* column) const;
  Currency Money(const char* column) const;
  Date DateValue(const char* column) const;
  bool Bool(const char* column) const;
  std::optional<std::string> OptionalText(const char* column) const;

  int ColumnCount() const;
  std::string ColumnName(int index) const;

 private:
  std::unique_ptr<SQLite::Statement> statement_;
  std::string path_;
};

// A name in a file's catalogue: a table or a saved query.
struct CatalogueEntry {
  enum class Kind { kTable, kSavedQuery };
  std::string name;
  Kind kind;
};

// One open database file: the program's only door to SQLite. Every value
// reaches SQL as a bound parameter. SQLite's failures leave as LwError with
// the number the error handler knows: duplicate key 3022, missing file
// 3024, missing table or saved query 3011, busy 3000 ("-8194"), damaged
// 3000 ("-1209"), not a database 3343, invalid folder 3044.
class Database {
 public:
  enum class Mode { kShared, kExclusive, kReadOnly };

  // Opens an existing file with foreign keys on, a rollback journal,
  // synchronous=FULL and a busy timeout. Reads the catalogue once so that a
  // file that is no database, or a damaged one, fails here.
  static std::unique_ptr<Database> Open(const std::string& path, Mode mode = Mode::kShared,
                                        StorageFaults* faults = nullptr);
  // Creates a new, empty file (it must not exist yet).
  static std::unique_ptr<Database> Create(const std::string& path, StorageFaults* faults = nullptr);
  // Opens the scratch report database: same as Open, but without waiting
  // for the disk on every commit (its contents are rebuilt on every run).
  static std::unique_ptr<Database> OpenScratch(const std::string& path,
                                               StorageFaults* faults = nullptr);

  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  const std::string& path() const { return path_; }

  // Runs a statement that reads rows.
  Query Select(std::string_view sql, const Params& params = {});
  // Runs a statement that writes; returns the number of rows it changed.
  int64_t Execute(std::string_view sql, const Params& params = {});
  // Runs several statements without parameters (schema scripts).
  void ExecuteScript(std::string_view sql);
  // The row id of the last row this connection inserted.
  int64_t LastInsertId() const;

  // Saved queries: named statements kept inside the file. Running or reading
  // one that does not exist raises 3011.
  Query SelectSaved(std::string_view name, const Params& params = {});
  int64_t ExecuteSaved(std::string_view name, const Params& params = {});
  std::string SavedQuerySql(std::string_view name);
  bool HasSavedQuery(std::string_view name);
  // Creates the saved query or replaces its text.
  void SetSavedQuery(std::string_view name, std::string_view sql);
  // Deletes it if present.
  void DeleteSavedQuery(std::string_view name);

  // The file's tables and saved queries, by name.
  std::vector<CatalogueEntry> Catalogue();
  bool HasTable(std::string_view name);
  std::vector<std::string> Columns(std::string_view table);

  // Returns "ok" or SQLite's list of problems.
  std::string IntegrityCheck();

  // How long a statement waits for another connection's lock before it
  // fails as busy (3000, "-8194"), for every database opened from now on.
  // Tests shorten it to see the busy error without waiting.
  static constexpr int kDefaultBusyTimeoutMs = 5000;
  static void SetBusyTimeout(int milliseconds);
  static int BusyTimeout();

  // True while a unit of work is open on this connection. A question to the
  // user must never be asked then: a shared file stays locked for every
  // other user while the question waits for an answer.
  bool InUnit() const { return transaction_depth_ > 0; }

  // One unit of work: commits only through Commit(); the destructor rolls
  // back whatever was not committed. Nested units become savepoints, so an
  // inner failure can be undone without losing the outer unit. A unit whose
  // database was closed under it (a fatal error closes the files) was rolled
  // back by the close; its destructor then does nothing, and Commit() fails.
  class Transaction {
   public:
    explicit Transaction(Database& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void Commit();

   private:
    Database& db_;
    int depth_;
    bool done_ = false;
    std::shared_ptr<const bool> db_open_;
  };

  // The name of the table that holds the saved queries.
  static constexpr const char* kSavedQueriesTable = "lw_saved_queries";

 private:
  Database(std::unique_ptr<SQLite::Database> db, std::string path, StorageFaults* faults);
  static std::unique_ptr<Database> OpenWith(const std::string& path, int flags, Mode mode,
                                            bool scratch, StorageFaults* faults);
  std::unique_ptr<SQLite::Statement> Prepare(std::string_view sql, const Params& params);
  static void Bind(SQLite::Statement& statement, const Params& params);
  // Returns the cached prepared statement of a write, preparing it once.
  SQLite::Statement& CachedWrite(std::string_view sql);
  void RawExecute(const std::string& sql);

  std::unique_ptr<SQLite::Database> db_;
  std::string path_;
  StorageFaults* faults_;
  int transaction_depth_ = 0;
  // False once this object is destroyed; units outliving it look here.
  std::shared_ptr<bool> open_ = std::make_shared<bool>(true);
  // Prepared writes by their SQL. Preparing an insert compiles the triggers
  // of its table too, which costs more than running it; the program issues
  // a small fixed set of statements, so the cache stays small. Declared last
  // so that the statements are finalised before the connection closes.
  std::unordered_map<std::string, std::unique_ptr<SQLite::Statement>> write_cache_;
};

// Maps a SQLite result code and message to the program's error numbers.
LwError MapSqliteError(int code, int extended_code, std::string_view message,
                       std::string_view path);

}  // namespace lotwise
