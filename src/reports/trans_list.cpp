#include "reports/trans_list.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "data/application.h"
#include "data/central_file.h"
#include "data/client_info.h"
#include "data/database.h"
#include "data/entry_rows.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "data/report_source.h"
#include "data/security_rows.h"
#include "data/transaction_store.h"
#include "ground/number_text.h"
#include "ground/paths.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"
#include "reports/report_db.h"
#include "reports/report_runner.h"

namespace lotwise {

namespace {

constexpr const char* kEvery = "*";

// One "TL Trans" row gathered. Money a kind of transaction does not carry
// is 0; the sale price is written for sales only and stays NULL for the
// others.
struct GatheredRow : TLTransRow {
  // Where the computation applies it among the day's rows: by same-day
  // rank, then block by block in the blocks' order, then in order of entry.
  int64_t prec_sort = 0;
  size_t block_pos = 0;
  int64_t unique_id = 0;
};

// The listing shows a security's rows in the order the Basis Analysis
// applies them, so that a day with a sale and an adjustment or a split
// reads as it was computed: the rows are gathered, ordered, then written.
void AddTLTransInOrder(Database& report, std::vector<GatheredRow>& rows) {
  std::stable_sort(rows.begin(), rows.end(), [](const GatheredRow& a, const GatheredRow& b) {
    return std::tie(a.date, a.prec_sort, a.block_pos, a.unique_id) <
           std::tie(b.date, b.prec_sort, b.block_pos, b.unique_id);
  });
  for (const GatheredRow& row : rows) AddTLTrans(report, row);
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

// Gathers a row for each of `found` dated inside the range, the kind's own
// fields filled in by `fill`.
template <class Fill>
void AddRowsInRange(std::vector<GatheredRow>& rows, const std::vector<TransOnFile>& found,
                    int64_t sec_id, const BlockOrder& blocks, Range range, Fill fill) {
  for (const TransOnFile& trans : found) {
    if (!range.Holds(trans.date)) continue;
    GatheredRow& row = rows.emplace_back();
    row.sec_id = sec_id;
    row.date = trans.date;
    row.prec_sort = trans.prec_sort;
    row.block_pos = BlockPos(blocks, trans.block_no);
    row.unique_id = trans.unique_id;
    row.shares = trans.shares;
    fill(trans, row);
  }
}

bool CalcTLBuys(Application& app, std::vector<GatheredRow>& rows, int64_t sec_id,
                const BlockOrder& blocks, Range range) {
  return Trap(app, "CalcTLBuys", false, [&] {
    AddRowsInRange(rows, BuysInSecurity(*app.client, sec_id), sec_id, blocks, range,
                   [](const TransOnFile& buy, GatheredRow& row) {
                     row.transaction = buy.type == kTypeReinvest ? "Reinvestment" : "Buy";
                     row.cost = buy.cost;
                     row.fee = buy.fee;
                   });
    return true;
  });
}

// Sales are listed with their shares as stored, negative (the shares that
// left the block), as the block's own transaction list and the Basis
// Analysis show them; a security's Shares column then adds up to the change
// in its holding over the period. A sale carries no cost of its own.
bool CalcTLSells(Application& app, std::vector<GatheredRow>& rows, int64_t sec_id,
                 const BlockOrder& blocks, int64_t block_no, Range range) {
  return Trap(app, "CalcTLSells", false, [&] {
    AddRowsInRange(rows, SellsInBlock(*app.client, block_no), sec_id, blocks, range,
                   [](const TransOnFile& sell, GatheredRow& row) {
                     row.transaction = "Sell";
                     row.fee = sell.fee;
                     row.sale_price = sell.sale_price;
                   });
    return true;
  });
}

bool CalcTLSplits(Application& app, std::vector<GatheredRow>& rows, int64_t sec_id,
                  const BlockOrder& blocks, int64_t block_no, Range range) {
  return Trap(app, "CalcTLSplits", false, [&] {
    AddRowsInRange(rows, SplitsInBlock(*app.client, block_no), sec_id, blocks, range,
                   [](const TransOnFile& split, GatheredRow& row) {
                     const bool stock_split = split.type == kTypeSplit;
                     row.transaction = std::string(stock_split ? "Stock Split " : "Stock Div. ") +
                                       NumberText(split.pre_ratio) +
                                       (stock_split ? " for " : " per ") +
                                       NumberText(split.post_ratio);
                   });
    return true;
  });
}

bool CalcTLAdjusts(Application& app, std::vector<GatheredRow>& rows, int64_t sec_id,
                   const BlockOrder& blocks, int64_t block_no, Range range) {
  return Trap(app, "CalcTLAdjusts", false, [&] {
    AddRowsInRange(rows, AdjustsInBlock(*app.client, block_no), sec_id, blocks, range,
                   [](const TransOnFile& adjust, GatheredRow& row) {
                     row.transaction = "Adjustment";
                     row.cost = adjust.cost;
                   });
    return true;
  });
}

std::vector<std::string> PortfoliosOfScope(Database& client, const std::string& port_filter) {
  std::vector<std::string> names;
  if (port_filter == kEvery) {
    for (PortfolioOnFile& port : ListPortfolios(client)) names.push_back(std::move(port.name));
  } else if (std::optional<PortfolioOnFile> port = FindPortfolio(client, port_filter)) {
    names.push_back(std::move(port->name));
  }
  return names;
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
  for (SecurityOnFile& sec : SecuritiesInPort(client, port_name)) {
    if (Matches(sec_filter, sec.symbol)) securities.push_back({std::move(sec.symbol), sec.sec_id});
  }
  return securities;
}

BlockOrder BlocksOfSec(Database& client, int64_t sec_id) {
  BlockOrder order;
  for (const BlockOnFile& block : BlocksOfSecurity(client, sec_id)) {
    order.pos.emplace(block.block_no, order.blocks.size());
    order.blocks.push_back(block.block_no);
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
    AddTLInfo(*report, app.current.client_name, app.current.client_code,
              JoinNameAnd2ndLine(app.current.client_name, app.current.client_2nd_line), begin, end,
              ScopeType(port_filter, sec_filter));

    // The number of blocks the walk will visit, so that the gauge can show
    // the share done.
    const int64_t total_blocks =
        std::max<int64_t>(1, CountBlocksInScope(client, port_filter, sec_filter));
    int64_t blocks_done = 0;
    for (const std::string& port_name : PortfoliosOfScope(client, port_filter)) {
      AddTLPort(*report, port_name);
      for (const SecurityOfPort& sec : SecuritiesOfPort(client, port_name, sec_filter)) {
        const std::string sec_name = GetSecInfoFromCDB(app, sec.symbol, "[Sec Name]");
        const BlockOrder blocks = BlocksOfSec(client, sec.sec_id);
        std::vector<GatheredRow> rows;
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
        AddTLSec(*report, port_name, sec_name, sec.symbol, sec.sec_id);
      }
    }
    unit.Commit();
    return true;
  });
}

}  // namespace lotwise
