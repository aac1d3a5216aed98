#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

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

}  // namespace lotwise
