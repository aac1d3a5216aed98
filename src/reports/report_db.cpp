#include "reports/report_db.h"

#include <algorithm>
#include <chrono>
#include <iterator>

#include "data/application.h"
#include "data/central_file.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/query_builders.h"

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
constexpr const char* kUpdateAvgTrans =
    R"(UPDATE "BA Trans" SET "TransNo" = :no, "Total Shares" = :tsh, "Cost" = :c, )"
    R"("Total Cost" = :tc, "Basis Per Share" = :bps WHERE "Trans Row" = :row)";

namespace chr = std::chrono;

// Serial 0 of a Date is 12/30/1899.
constexpr chr::sys_days kDateEpoch =
    chr::sys_days(chr::year_month_day(chr::year(1899), chr::month(12), chr::day(30)));

int Digit(char c) { return c >= '0' && c <= '9' ? c - '0' : -1; }

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

Date ReportDate(std::string_view text) {
  if (text.size() == 10 && text[4] == '-' && text[7] == '-') {
    int digits[8];
    int n = 0;
    for (size_t i : {0, 1, 2, 3, 5, 6, 8, 9}) digits[n++] = Digit(text[i]);
    if (std::all_of(std::begin(digits), std::end(digits), [](int d) { return d >= 0; })) {
      const int year = digits[0] * 1000 + digits[1] * 100 + digits[2] * 10 + digits[3];
      const int month = digits[4] * 10 + digits[5];
      const int day = digits[6] * 10 + digits[7];
      if (Date::IsValidYmd(year, month, day)) return Date::FromYmd(year, month, day);
    }
  }
  return Date::ParseIso(text).value_or(Date());
}

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

}  // namespace lotwise
