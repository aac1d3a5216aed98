#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/database.h"
#include "ground/currency.h"
#include "ground/date.h"

namespace lotwise {

class Application;
class Database;

// The scratch report database: emptied and filled before every report, never
// a source of truth.

// Opens the report database of this run (app.report_db_path). Errors leave
// as LwError; callers trap them under their own name.
std::unique_ptr<Database> OpenReportDb(Application& app);

// Empties each table, in the order given, with Query_ClearTable.
void ClearReportTables(Database& report_db, std::initializer_list<std::string_view> tables);

// Writes the one "Usage" row: the current usage count (GetUsageCount).
void AddUsageRow(Application& app, Database& report_db);

// The heading tables join name and second line with one blank (the second
// line is stored with a trailing blank, so it is trimmed first); a blank
// second line gives the name alone.
std::string JoinNameAnd2ndLine(const std::string& name, const std::string& second_line);

// The storage form of a date ("yyyy-mm-dd", as Date::ToIso writes it and
// Date::ParseIso reads it), without the formatted I/O those use: the basis
// walk converts a few dates for every transaction of a taxpayer. Reading
// text that is no such date gives the empty date.
std::string ReportDateText(Date date);
Date ReportDate(std::string_view text);

// One "BA Trans" row.
struct BATransRow {
  int64_t block_no = 0;
  int trans_no = 0;
  std::string transaction;
  Date date;
  Date date_acqrd;
  double shares = 0;
  Currency sale_price;
  double total_shares = 0;
  Currency cost;
  Currency total_cost;
  Currency fee;
  double basis_per_share = 0;
};

// One "Sched D" row.
struct SchedDRow {
  Date date_acqrd;
  Date date_sold;
  double shares = 0;  // positive
  std::string sec_symbol;
  Currency sale_price;
  Currency cost;
  Currency gain_loss;
  bool long_term = false;
};

// The row writers. Each adds (or edits) and saves its row at once and
// returns true iff it was written; an error is reported through the central
// handler under the writer's name and gives false.

// Adds a "BA Blocks" row and sets `block_no` to the number it was given.
bool AddBABlock(Application& app, Database& report_db, const std::string& sec_symbol,
                const std::string& port_name, const std::string& block_id, Date date_acqrd,
                int64_t& block_no);
// Adds a "BA Trans" row; when `trans_row` is given, sets it to the row's key
// (what UpdateAvgBlockRpt takes).
bool AddBATrans(Application& app, Database& report_db, const BATransRow& row,
                int64_t* trans_row = nullptr);
bool AddSchedD(Application& app, Database& report_db, const SchedDRow& row);
// Rewrites TransNo, the totals, the cost and the basis of an average pool's
// "BA Trans" row.
bool UpdateAvgBlockRpt(Application& app, Database& report_db, int64_t trans_row, int trans_no,
                       double total_shares, Currency cost, Currency total_cost,
                       double basis_per_share);

// The writers below leave errors to their caller, which fills its tables
// as one unit.

// The "BA Info" heading of a Basis Analysis / Schedule D run.
void AddBAInfo(Database& report_db, const std::string& client_name, const std::string& client_code,
               const std::string& second_line, Date year_end, const std::string& type);
// One security's "BA Secs" row: its totals at the year end.
struct BASecsRow {
  std::string sec_symbol;
  std::string sec_name;
  std::string sell_name;
  double total_shares = 0;
  Currency total_cost;
  double basis_per_share = 0;
};
void AddBASecs(Database& report_db, const BASecsRow& row);

// The Transaction Listing's tables: its heading, each portfolio, each
// security and each transaction row (a sale price only for sales).
void AddTLInfo(Database& report_db, const std::string& client_name, const std::string& client_code,
               const std::string& second_line, Date begin, Date end, const std::string& type);
void AddTLPort(Database& report_db, const std::string& port_name);
void AddTLSec(Database& report_db, const std::string& port_name, const std::string& sec_name,
              const std::string& sec_symbol, int64_t sec_id);
struct TLTransRow {
  int64_t sec_id = 0;
  Date date;
  std::string transaction;
  double shares = 0;
  Currency cost;
  Currency fee;
  std::optional<Currency> sale_price;
};
void AddTLTrans(Database& report_db, const TLTransRow& row);

// The listings' tables. A taxpayer whose file is missing has no second
// line or year end, and says so in "No File".
struct ClientReportRow {
  std::string client_name;
  std::string sort_name;
  std::string client_code;
  std::optional<std::string> second_line;
  std::optional<Date> year_end;
  std::string file_name;
  std::optional<std::string> no_file;
};
void AddClientReport(Database& report_db, const ClientReportRow& row);
// The heading row of the Security Listing: name and code alone.
void AddClientReportHeading(Database& report_db, const std::string& client_name,
                            const std::string& client_code);
void AddPortfolioReport(Database& report_db, const std::string& port_name,
                        const std::string& second_line, const std::string& client_code);
struct SecListRow {
  std::string port_name;
  std::string sec_symbol;
  std::string sec_name;
  std::string cusip;
  std::string second_line;
  std::string sell_method;
};
void AddSecListReport(Database& report_db, const SecListRow& row);

// One "BA Trans" row of an average pool, as the pool's averaging reads it.
struct PoolTransRow {
  int64_t trans_row = 0;
  int trans_no = 0;
  std::string transaction;
  Date date;
  Date date_acqrd;
  double shares = 0;
  Currency sale_price;
  Currency fee;
  Currency cost;
};
// Reads the rows of pool `pool_no` in the order they are averaged, with the
// saved query "Get Basis Rpt Trans" (its text read once into `sql_cache`
// and kept for the run's other pools). The rows may be rewritten while read.
class PoolRows {
 public:
  PoolRows(Database& report_db, int64_t pool_no, std::string& sql_cache);
  bool Next(PoolTransRow& row);

 private:
  Query rows_;
};

// One line of the Schedule D export: a "Sched D" row with the name of its
// security (a NULL field stays empty), in the order computed.
struct SchedDExportRow {
  std::string sec_symbol;
  std::string sec_name;
  std::optional<Date> date_acqrd;
  std::optional<Date> date_sold;
  std::optional<Currency> sale_price;
  std::optional<Currency> cost;
  std::optional<double> shares;
};
std::vector<SchedDExportRow> ReadSchedDExport(Database& report_db);

// One field of a report table's row, read in every form a reader may want
// (the integer and number as the database converts the stored value).
struct ReportCell {
  bool is_null = true;
  int64_t integer = 0;
  double number = 0;
  std::string text;  // empty for NULL
};
struct ReportTable {
  std::vector<std::string> columns;
  std::vector<std::vector<ReportCell>> rows;  // each in the order of `columns`
};
// Every row of a report table, in the order written, every column.
ReportTable ReadReportTable(Database& report_db, std::string_view table);

}  // namespace lotwise
