#include "reports/trans_list.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "app/application.h"
#include "app/error_handler.h"
#include "app/number_text.h"
#include "app/paths.h"
#include "app/ui_port.h"
#include "app/value_helpers.h"
#include "data/central_file.h"
#include "data/database.h"
#include "data/query_builders.h"
#include "data/transaction_store.h"
#include "reports/report_db.h"
#include "reports/report_runner.h"

namespace lotwise {

namespace {

constexpr const char* kEvery = "*";

// One "TL Trans" row. Money a kind of transaction does not carry is 0; the
// sale price is written for sales only and stays NULL for the others.
struct TLTransRow {
  int64_t sec_id = 0;
  Date date;
  std::string transaction;
  double shares = 0;
  Currency cost;
  Currency fee;
  std::optional<Currency> sale_price;
  // Where the computation applies it among the day's rows: by same-day
  // rank, then block by block in the blocks' order, then in order of entry.
  int64_t prec_sort = 0;
  size_t block_pos = 0;
  int64_t unique_id = 0;
};

void AddTLTrans(Database& report, const TLTransRow& row) {
  Value sale_price;
  if (row.sale_price) sale_price = *row.sale_price;
  report.Execute(
      R"(INSERT INTO "TL Trans" ("Sec ID", "Date", "Transaction", "Shares", "Cost", "Fee", )"
      R"("Sale Price") VALUES (:sec, :date, :trans, :shares, :cost, :fee, :price))",
      {{"sec", row.sec_id},
       {"date", row.date},
       {"trans", row.transaction},
       {"shares", row.shares},
       {"cost", row.cost},
       {"fee", row.fee},
       {"price", sale_price}});
}

// The listing shows a security's rows in the order the Basis Analysis
// applies them, so that a day with a sale and an adjustment or a split
// reads as it was computed: the rows are gathered, ordered, then written.
void AddTLTransInOrder(Database& report, std::vector<TLTransRow>& rows) {
  std::stable_sort(rows.begin(), rows.end(), [](const TLTransRow& a, const TLTransRow& b) {
    return std::tie(a.date, a.prec_sort, a.block_pos, a.unique_id) <
           std::tie(b.date, b.prec_sort, b.block_pos, b.unique_id);
  });
  for (const TLTransRow& row : rows) AddTLTrans(report, row);
}

// The inclusive date range of one listing.
struct Range {
  Date begin;
  Date end;
  bool Holds(Date date) const { return date >= begin && date <= end; }
};

bool Matches(const std::string& filter, const std::string& value) {
  return filter == kEvery || ToUpperAscii(filter) == ToUpperAscii(value);
}

// A security's blocks in the order the computation walks them, and each
// block's place in that order.
struct BlockOrder {
  std::vector<int64_t> blocks;
  std::unordered_map<int64_t, size_t> pos;
};

size_t BlockPos(const BlockOrder& order, int64_t block_no) {
  const auto found = order.pos.find(block_no);
  return found == order.pos.end() ? order.blocks.size() : found->second;
}

// Gathers a row for each row of `q` dated inside the range, the kind's own
// fields filled in by `fill`.
template <class Fill>
void AddRowsInRange(std::vector<TLTransRow>& rows, Query& q, int64_t sec_id,
                    const BlockOrder& blocks, Range range, Fill fill) {
  while (q.Next()) {
    const Date date = q.DateValue("Date");
    if (!range.Holds(date)) continue;
    TLTransRow& row = rows.emplace_back();
    row.sec_id = sec_id;
    row.date = date;
    row.prec_sort = q.Int("Prec Sort");
    row.block_pos = BlockPos(blocks, q.Int("Block No"));
    row.unique_id = q.Int("Unique ID");
    fill(q, row);
  }
}

bool CalcTLBuys(Application& app, std::vector<TLTransRow>& rows, int64_t sec_id,
                const BlockOrder& blocks, Range range) {
  return Trap(app, "CalcTLBuys", false, [&] {
    Query q = app.client->SelectSaved("Buys In Security", {{"lSecID", sec_id}});
    AddRowsInRange(rows, q, sec_id, blocks, range, [](Query& buy, TLTransRow& row) {
      row.transaction = buy.Int("Type") == kTypeReinvest ? "Reinvestment" : "Buy";
      row.shares = buy.Double("Shares");
      row.cost = buy.Money("Cost");
      row.fee = buy.Money("Fee");
    });
    return true;
  });
}

// Sales are listed with their shares as stored, negative (the shares that
// left the block), as the block's own transaction list and the Basis
// Analysis show them; a security's Shares column then adds up to the change
// in its holding over the period. A sale carries no cost of its own.
bool CalcTLSells(Application& app, std::vector<TLTransRow>& rows, int64_t sec_id,
                 const BlockOrder& blocks, int64_t block_no, Range range) {
  return Trap(app, "CalcTLSells", false, [&] {
    Query q = app.client->SelectSaved("Sells In Block", {{"lBlockNo", block_no}});
    AddRowsInRange(rows, q, sec_id, blocks, range, [](Query& sell, TLTransRow& row) {
      row.transaction = "Sell";
      row.shares = sell.Double("Shares");
      row.fee = sell.Money("Fee");
      row.sale_price = sell.Money("Sale Price");
    });
    return true;
  });
}

bool CalcTLSplits(Application& app, std::vector<TLTransRow>& rows, int64_t sec_id,
                  const BlockOrder& blocks, int64_t block_no, Range range) {
  return Trap(app, "CalcTLSplits", false, [&] {
    Query q = app.client->SelectSaved("Splits In Block", {{"lBlockNo", block_no}});
    AddRowsInRange(rows, q, sec_id, blocks, range, [](Query& split, TLTransRow& row) {
      const bool stock_split = split.Int("Type") == kTypeSplit;
      row.transaction = std::string(stock_split ? "Stock Split " : "Stock Div. ") +
                        NumberText(split.Double("Pre Ratio")) + (stock_split ? " for " : " per ") +
                        NumberText(split.Double("Post Ratio"));
      row.shares = split.Double("Shares");
    });
    return true;
  });
}

bool CalcTLAdjusts(Application& app, std::vector<TLTransRow>& rows, int64_t sec_id,
                   const BlockOrder& blocks, int64_t block_no, Range range) {
  return Trap(app, "CalcTLAdjusts", false, [&] {
    Query q = app.client->SelectSaved("Adjusts In Block", {{"lBlockNo", block_no}});
    AddRowsInRange(rows, q, sec_id, blocks, range, [](Query& adjust, TLTransRow& row) {
      row.transaction = "Adjustment";
      row.shares = adjust.Double("Shares");
      row.cost = adjust.Money("Cost");
    });
    return true;
  });
}

std::vector<std::string> PortfoliosOfScope(Database& client, const std::string& port_filter) {
  Query q = port_filter == kEvery
                ? client.Select(R"(SELECT "Port Name" FROM "Portfolio" ORDER BY "Port Name")")
                : Select(client, Query_GetPort(port_filter));
  std::vector<std::string> names;
  while (q.Next()) names.push_back(q.Text("Port Name"));
  return names;
}

// The number of blocks the walk will visit, so that the gauge can show the
// share done.
int64_t BlocksInScope(Database& client, const std::string& port_filter,
                      const std::string& sec_filter) {
  Query q =
      client.Select(R"(SELECT count(*) AS n FROM "Blocks" AS B INNER JOIN "Security" AS S )"
                    R"(ON B."Sec ID" = S."Sec ID" WHERE (:port = '*' OR S."Port Name" = :port) )"
                    R"(AND (:sec = '*' OR S."Sec Symbol" = :sec))",
                    {{"port", port_filter}, {"sec", sec_filter}});
  return q.Next() ? q.Int("n") : 0;
}

const char* ScopeType(const std::string& port_filter, const std::string& sec_filter) {
  if (port_filter == kEvery) return "Taxpayer";
  if (sec_filter == kEvery) return "Portfolio";
  return "Security";
}

struct SecurityOfPort {
  std::string symbol;
  int64_t sec_id = 0;
};

std::vector<SecurityOfPort> SecuritiesOfPort(Database& client, const std::string& port_name,
                                             const std::string& sec_filter) {
  std::vector<SecurityOfPort> securities;
  Query q = client.SelectSaved("Secs In Port", {{"sPortName", port_name}});
  while (q.Next()) {
    std::string symbol = q.Text("Sec Symbol");
    if (Matches(sec_filter, symbol)) securities.push_back({symbol, q.Int("Sec ID")});
  }
  return securities;
}

BlockOrder BlocksOfSec(Database& client, int64_t sec_id) {
  BlockOrder order;
  Query q = Select(client, Query_GetBlocksInSec(sec_id));
  while (q.Next()) {
    order.pos.emplace(q.Int("Block No"), order.blocks.size());
    order.blocks.push_back(q.Int("Block No"));
  }
  return order;
}

}  // namespace

bool VerifyDatesTL(Application& app, const std::string& begin_text, const std::string& end_text,
                   Date& begin, Date& end) {
  return Trap(app, "VerifyDatesTL", false, [&] {
    // Both fields are checked, so that the user hears of both mistakes at once.
    const bool begin_ok = DateValid(app.ui(), begin_text, "Beginning Date", begin);
    const bool end_ok = DateValid(app.ui(), end_text, "Ending Date", end);
    if (!begin_ok || !end_ok) return false;
    if (begin >= end) {
      app.ui().MessageBox("The Ending Date must be after the beginning date. Please correct this.",
                          "Please Correct!", Icon::kInformation, Buttons::kOk);
      return false;
    }
    return true;
  });
}

bool RunTransListRpt(Application& app, ReportScope scope, const std::string& begin_text,
                     const std::string& end_text, ReportDestination destination) {
  return Trap(app, "RunTransListRpt", false, [&] {
    Date begin;
    Date end;
    if (!VerifyDatesTL(app, begin_text, end_text, begin, end)) return false;

    const int16_t state = app.window.state;
    if (scope == ReportScope::kSecurity && state < kSecOpen) {
      app.ui().MessageBox("You must have a security open to do a Transaction Listing on one.",
                          "Invalid Input", Icon::kInformation, Buttons::kOk);
      return false;
    }
    if (scope == ReportScope::kPortfolio && state < kPortOpen) {
      app.ui().MessageBox(
          "You must have a portfolio open that has at least one security in it to do a "
          "Transaction Listing on it.",
          "Invalid Input", Icon::kInformation, Buttons::kOk);
      return false;
    }

    std::string port_filter = kEvery;
    std::string sec_filter = kEvery;
    if (scope != ReportScope::kTaxpayer) port_filter = app.current.port_name;
    if (scope == ReportScope::kSecurity) sec_filter = app.current.sec_symbol;

    if (!CalcTransListRpt(app, port_filter, sec_filter, begin, end)) return false;
    return RunReport(app, ReportFilePath(app, "TRNSLIST.RPT"), app.report_db_path, destination,
                     "Transaction Listing Report") == 0;
  });
}

bool CalcTransListRpt(Application& app, const std::string& port_filter,
                      const std::string& sec_filter, Date begin, Date end) {
  return Trap(app, "CalcTransListRpt", false, [&] {
    UiPort& ui = app.ui();
    HourglassGuard hourglass(ui);
    GaugeGuard gauge(ui);
    if (!app.client) throw LwError(err::kUnexpected, "No Taxpayer File is open");
    Database& client = *app.client;
    const Range range{begin, end};

    std::unique_ptr<Database> report = OpenReportDb(app);
    // Filled as one unit: a failed run leaves the tables of the last one.
    Database::Transaction unit(*report);
    ClearReportTables(*report, {"TL Info", "TL Port", "TL Sec", "TL Trans", "Usage"});
    AddUsageRow(app, *report);
    report->Execute(
        R"(INSERT INTO "TL Info" ("Client Name", "Client Code", "2nd Line", "Beginning Date", )"
        R"("End Date", "Type") VALUES (:name, :code, :line, :begin, :end, :type))",
        {{"name", app.current.client_name},
         {"code", app.current.client_code},
         {"line", JoinNameAnd2ndLine(app.current.client_name, app.current.client_2nd_line)},
         {"begin", begin},
         {"end", end},
         {"type", ScopeType(port_filter, sec_filter)}});

    const int64_t total_blocks =
        std::max<int64_t>(1, BlocksInScope(client, port_filter, sec_filter));
    int64_t blocks_done = 0;
    for (const std::string& port_name : PortfoliosOfScope(client, port_filter)) {
      report->Execute(R"(INSERT INTO "TL Port" ("Port Name") VALUES (:port))",
                      {{"port", port_name}});
      for (const SecurityOfPort& sec : SecuritiesOfPort(client, port_name, sec_filter)) {
        const std::string sec_name = GetSecInfoFromCDB(app, sec.symbol, "[Sec Name]");
        const BlockOrder blocks = BlocksOfSec(client, sec.sec_id);
        std::vector<TLTransRow> rows;
        if (!CalcTLBuys(app, rows, sec.sec_id, blocks, range)) return false;
        for (const int64_t block_no : blocks.blocks) {
          if (!CalcTLSells(app, rows, sec.sec_id, blocks, block_no, range)) return false;
          if (!CalcTLSplits(app, rows, sec.sec_id, blocks, block_no, range)) return false;
          if (!CalcTLAdjusts(app, rows, sec.sec_id, blocks, block_no, range)) return false;
          ++blocks_done;
          ui.SetGauge(static_cast<int>(std::min<int64_t>(100, blocks_done * 100 / total_blocks)));
          ui.ProcessEvents();
        }
        AddTLTransInOrder(*report, rows);
        report->Execute(
            R"(INSERT INTO "TL Sec" ("Port Name", "Sec Name", "Sec Symbol", "Sec ID") )"
            R"(VALUES (:port, :name, :symbol, :id))",
            {{"port", port_name}, {"name", sec_name}, {"symbol", sec.symbol}, {"id", sec.sec_id}});
      }
    }
    unit.Commit();
    return true;
  });
}

}  // namespace lotwise
