#include "reports/report_db.h"

#include <algorithm>
#include <chrono>
#include <iterator>

#include "data/application.h"
#include "data/central_file.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "data/report_source.h"

namespace lotwise {

namespace {

// The row writers run once per transaction of a whole taxpayer, so their
// statements are fixed texts: the storage layer prepares each once.
constexpr const char* kInsertBlock =
    R"(INSERT INTO "BA Blocks" ("Sec Symbol", "Port Name", "Block ID", "Date Acqrd") )"
    R"(VALUES (:sym, :port, :id, :acq))";
constexpr const char* kInsertTrans =
    R"(INSERT INTO "BA Trans" ("Block No", "TransNo", "Transaction", "Date", "Date Acqrd", )"
    R"("Shares", "Sale Price", "Total Shares", "Cost", "Total Cost", "Fee", "Basis Per Share") )"
    R"(VALUES (:blk, :no, :tr, :dt, :acq, :sh, :sp, :tsh, :c, :tc, :fee, :bps))";
constexpr const char* kInsertSchedD =
    R"(INSERT INTO "Sched D" ("Date Acqrd", "Date Sold", "Shares", "Sec Symbol", "Sale Price", )"
    R"("Cost", "GainLoss", "Long Term") VALUES (:acq, :sold, :sh, :sym, :sp, :c, :gl, :lt))";
constexpr const char* kInsertSecs =
    R"(INSERT INTO "BA Secs" ("Sec Symbol", "Sec Name", "Sell Name", "Total Shares", )"
    R"("Total Cost", "Basis Per Share") VALUES (:sym, :name, :sell, :sh, :c, :bps))";
constexpr const char* kInsertTLTrans =
    R"(INSERT INTO "TL Trans" ("Sec ID", "Date", "Transaction", "Shares", "Cost", "Fee", )"
    R"("Sale Price") VALUES (:sec, :date, :trans, :shares, :cost, :fee, :price))";
// One "Sched D" row per line, each exported once: a symbol that appears
// twice in "BA Secs" must not report its sales twice to the tax software,
// so the name is taken from one of its rows. The rows keep the order in
// which the Schedule D was computed.
constexpr const char* kExportQuery =
    R"(SELECT D."Sec Symbol", S."Sec Name", D."Date Acqrd", D."Date Sold", D."Sale Price", )"
    R"(D."Cost", D."Shares" FROM "Sched D" AS D )"
    R"(INNER JOIN (SELECT "Sec Symbol", min("Sec Name") AS "Sec Name" FROM "BA Secs" )"
    R"(GROUP BY "Sec Symbol" COLLATE NOCASE) AS S )"
    R"(ON S."Sec Symbol" = D."Sec Symbol" COLLATE NOCASE ORDER BY D.rowid)";
constexpr const char* kUpdateAvgTrans =
    R"(UPDATE "BA Trans" SET "TransNo" = :no, "Total Shares" = :tsh, "Cost" = :c, )"
    R"("Total Cost" = :tc, "Basis Per Share" = :bps WHERE "Trans Row" = :row)";

namespace chr = std::chrono;

// Serial 0 of a Date is 12/30/1899.
constexpr chr::sys_days kDateEpoch =
    chr::sys_days(chr::year_month_day(chr::year(1899), chr::month(12), chr::day(30)));

template <class T>
Value Nullable(const std::optional<T>& value) {
  return value ? Value(*value) : Value();
}

std::string QuotedIdentifier(std::string_view name) {
  std::string quoted = "\"";
  for (char c : name) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::string TrimRight(const std::string& text) {
  size_t end = text.find_last_not_of(' ');
  return end == std::string::npos ? std::string() : text.substr(0, end + 1);
}

}  // namespace

std::unique_ptr<Database> OpenReportDb(Application& app) {
  return Database::OpenScratch(app.report_db_path, app.storage_faults);
}

void ClearReportTables(Database& report_db, std::initializer_list<std::string_view> tables) {
  for (std::string_view table : tables) Execute(report_db, Query_ClearTable(table));
}

void AddUsageRow(Application& app, Database& report_db) {
  report_db.Execute(R"(INSERT INTO "Usage" ("Usage Count") VALUES (:n))",
                    {{"n", GetUsageCount(app)}});
}

std::string JoinNameAnd2ndLine(const std::string& name, const std::string& second_line) {
  std::string line = TrimRight(second_line);
  if (line.empty()) return name;
  return name + " " + line;
}

std::string ReportDateText(Date date) {
  const chr::year_month_day ymd(kDateEpoch + chr::days(date.serial()));
  const int year = static_cast<int>(ymd.year());
  const auto month = static_cast<unsigned>(ymd.month());
  const auto day = static_cast<unsigned>(ymd.day());
  if (year < 0 || year > 9999) return date.ToIso();
  const char text[10] = {static_cast<char>('0' + year / 1000),
                         static_cast<char>('0' + year / 100 % 10),
                         static_cast<char>('0' + year / 10 % 10),
                         static_cast<char>('0' + year % 10),
                         '-',
                         static_cast<char>('0' + month / 10),
                         static_cast<char>('0' + month % 10),
                         '-',
                         static_cast<char>('0' + day / 10),
                         static_cast<char>('0' + day % 10)};
  return std::string(text, sizeof text);
}

Date ReportDate(std::string_view text) { return StoredDate(text); }

bool AddBABlock(Application& app, Database& report_db, const std::string& sec_symbol,
                const std::string& port_name, const std::string& block_id, Date date_acqrd,
                int64_t& block_no) {
  return Trap(app, "AddBABlock", false, [&] {
    report_db.Execute(kInsertBlock, {{"sym", sec_symbol},
                                     {"port", port_name},
                                     {"id", block_id},
                                     {"acq", ReportDateText(date_acqrd)}});
    block_no = report_db.LastInsertId();
    return true;
  });
}

bool AddBATrans(Application& app, Database& report_db, const BATransRow& row, int64_t* trans_row) {
  return Trap(app, "AddBATrans", false, [&] {
    report_db.Execute(kInsertTrans, {{"blk", row.block_no},
                                     {"no", row.trans_no},
                                     {"tr", row.transaction},
                                     {"dt", ReportDateText(row.date)},
                                     {"acq", ReportDateText(row.date_acqrd)},
                                     {"sh", row.shares},
                                     {"sp", row.sale_price},
                                     {"tsh", row.total_shares},
                                     {"c", row.cost},
                                     {"tc", row.total_cost},
                                     {"fee", row.fee},
                                     {"bps", row.basis_per_share}});
    if (trans_row != nullptr) *trans_row = report_db.LastInsertId();
    return true;
  });
}

bool AddSchedD(Application& app, Database& report_db, const SchedDRow& row) {
  return Trap(app, "AddSchedD", false, [&] {
    report_db.Execute(kInsertSchedD, {{"acq", ReportDateText(row.date_acqrd)},
                                      {"sold", ReportDateText(row.date_sold)},
                                      {"sh", row.shares},
                                      {"sym", row.sec_symbol},
                                      {"sp", row.sale_price},
                                      {"c", row.cost},
                                      {"gl", row.gain_loss},
                                      {"lt", row.long_term}});
    return true;
  });
}

bool UpdateAvgBlockRpt(Application& app, Database& report_db, int64_t trans_row, int trans_no,
                       double total_shares, Currency cost, Currency total_cost,
                       double basis_per_share) {
  return Trap(app, "UpdateAvgBlockRpt", false, [&] {
    int64_t changed = report_db.Execute(kUpdateAvgTrans, {{"no", trans_no},
                                                          {"tsh", total_shares},
                                                          {"c", cost},
                                                          {"tc", total_cost},
                                                          {"bps", basis_per_share},
                                                          {"row", trans_row}});
    if (changed != 1) {
      throw LwError(err::kUnexpected,
                    "No current record. (BA Trans row " + std::to_string(trans_row) + ")");
    }
    return true;
  });
}

void AddBAInfo(Database& report_db, const std::string& client_name, const std::string& client_code,
               const std::string& second_line, Date year_end, const std::string& type) {
  report_db.Execute(
      R"(INSERT INTO "BA Info" ("Client Name", "Client Code", "2nd Line", "Year End", "Type") )"
      R"(VALUES (:name, :code, :line, :ye, :type))",
      {{"name", client_name},
       {"code", client_code},
       {"line", second_line},
       {"ye", year_end},
       {"type", type}});
}

void AddBASecs(Database& report_db, const BASecsRow& row) {
  report_db.Execute(kInsertSecs, {{"sym", row.sec_symbol},
                                  {"name", row.sec_name},
                                  {"sell", row.sell_name},
                                  {"sh", row.total_shares},
                                  {"c", row.total_cost},
                                  {"bps", row.basis_per_share}});
}

void AddTLInfo(Database& report_db, const std::string& client_name, const std::string& client_code,
               const std::string& second_line, Date begin, Date end, const std::string& type) {
  report_db.Execute(
      R"(INSERT INTO "TL Info" ("Client Name", "Client Code", "2nd Line", "Beginning Date", )"
      R"("End Date", "Type") VALUES (:name, :code, :line, :begin, :end, :type))",
      {{"name", client_name},
       {"code", client_code},
       {"line", second_line},
       {"begin", begin},
       {"end", end},
       {"type", type}});
}

void AddTLPort(Database& report_db, const std::string& port_name) {
  report_db.Execute(R"(INSERT INTO "TL Port" ("Port Name") VALUES (:port))", {{"port", port_name}});
}

void AddTLSec(Database& report_db, const std::string& port_name, const std::string& sec_name,
              const std::string& sec_symbol, int64_t sec_id) {
  report_db.Execute(
      R"(INSERT INTO "TL Sec" ("Port Name", "Sec Name", "Sec Symbol", "Sec ID") )"
      R"(VALUES (:port, :name, :symbol, :id))",
      {{"port", port_name}, {"name", sec_name}, {"symbol", sec_symbol}, {"id", sec_id}});
}

void AddTLTrans(Database& report_db, const TLTransRow& row) {
  report_db.Execute(kInsertTLTrans, {{"sec", row.sec_id},
                                     {"date", row.date},
                                     {"trans", row.transaction},
                                     {"shares", row.shares},
                                     {"cost", row.cost},
                                     {"fee", row.fee},
                                     {"price", Nullable(row.sale_price)}});
}

void AddClientReport(Database& report_db, const ClientReportRow& row) {
  report_db.Execute(
      R"(INSERT INTO "Client Report" ("Client Name", "Sort Name", "Client Code", "2nd Line", )"
      R"("Year End", "File Name", "No File") VALUES (:name, :sort, :code, :line, :ye, :file, )"
      R"(:nofile))",
      {{"name", row.client_name},
       {"sort", row.sort_name},
       {"code", row.client_code},
       {"line", Nullable(row.second_line)},
       {"ye", Nullable(row.year_end)},
       {"file", row.file_name},
       {"nofile", Nullable(row.no_file)}});
}

void AddClientReportHeading(Database& report_db, const std::string& client_name,
                            const std::string& client_code) {
  report_db.Execute(
      R"(INSERT INTO "Client Report" ("Client Name", "Client Code") VALUES (:name, :code))",
      {{"name", client_name}, {"code", client_code}});
}

void AddPortfolioReport(Database& report_db, const std::string& port_name,
                        const std::string& second_line, const std::string& client_code) {
  report_db.Execute(R"(INSERT INTO "Portfolio Report" ("Port Name", "2nd Line", "Client Code") )"
                    R"(VALUES (:port, :line, :code))",
                    {{"port", port_name}, {"line", second_line}, {"code", client_code}});
}

void AddSecListReport(Database& report_db, const SecListRow& row) {
  report_db.Execute(
      R"(INSERT INTO "Sec List Report" ("Port Name", "Sec Symbol", "Sec Name", "CUSIP", )"
      R"("2nd Line", "Sell Method") VALUES (:port, :symbol, :name, :cusip, :line, :method))",
      {{"port", row.port_name},
       {"symbol", row.sec_symbol},
       {"name", row.sec_name},
       {"cusip", row.cusip},
       {"line", row.second_line},
       {"method", row.sell_method}});
}

PoolRows::PoolRows(Database& report_db, int64_t pool_no, std::string& sql_cache)
    : rows_([&] {
        if (sql_cache.empty()) sql_cache = report_db.SavedQuerySql("Get Basis Rpt Trans");
        return report_db.Select(sql_cache, {{"lBlockNo", pool_no}});
      }()) {}

bool PoolRows::Next(PoolTransRow& row) {
  if (!rows_.Next()) return false;
  row.trans_row = rows_.Int("Trans Row");
  row.trans_no = static_cast<int>(rows_.Int("TransNo"));
  row.transaction = rows_.Text("Transaction");
  row.date = ReportDate(rows_.Text("Date"));
  row.date_acqrd = ReportDate(rows_.Text("Date Acqrd"));
  row.shares = rows_.Double("Shares");
  row.sale_price = rows_.Money("Sale Price");
  row.fee = rows_.Money("Fee");
  row.cost = rows_.Money("Cost");
  return true;
}

std::vector<SchedDExportRow> ReadSchedDExport(Database& report_db) {
  std::vector<SchedDExportRow> rows;
  Query q = report_db.Select(kExportQuery);
  while (q.Next()) {
    SchedDExportRow& row = rows.emplace_back();
    row.sec_symbol = q.Text("Sec Symbol");
    row.sec_name = q.Text("Sec Name");
    if (!q.IsNull("Date Acqrd")) row.date_acqrd = q.DateValue("Date Acqrd");
    if (!q.IsNull("Date Sold")) row.date_sold = q.DateValue("Date Sold");
    if (!q.IsNull("Sale Price")) row.sale_price = q.Money("Sale Price");
    if (!q.IsNull("Cost")) row.cost = q.Money("Cost");
    if (!q.IsNull("Shares")) row.shares = q.Double("Shares");
  }
  return rows;
}

ReportTable ReadReportTable(Database& report_db, std::string_view table) {
  Query q = report_db.Select("SELECT * FROM " + QuotedIdentifier(table) + " ORDER BY rowid");
  ReportTable read;
  for (int i = 0; i < q.ColumnCount(); ++i) read.columns.push_back(q.ColumnName(i));
  while (q.Next()) {
    std::vector<ReportCell>& row = read.rows.emplace_back();
    for (const std::string& column : read.columns) {
      const char* name = column.c_str();
      // Whether it is NULL is asked first: a conversion may change the type
      // the database reports for the value.
      ReportCell& cell = row.emplace_back();
      cell.is_null = q.IsNull(name);
      cell.integer = q.Int(name);
      cell.number = q.Double(name);
      cell.text = q.Text(name);
    }
  }
  return read;
}

}  // namespace lotwise
