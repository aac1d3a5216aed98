#include "reports/basis_walk.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "data/application.h"
#include "data/central_file.h"
#include "data/error_handler.h"
#include "data/report_source.h"
#include "data/security_rows.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"
#include "lots/sell_method.h"
#include "lots/sell_shares.h"
#include "reports/report_db.h"

namespace lotwise {

namespace {

// Sold-out lots keep no floating residue: a lot below a hundredth of a
// share is empty. The pools average many lots and keep down to the fifth
// decimal.
constexpr double kLotShareFloor = 0.01;
constexpr double kPoolShareFloor = 0.00001;
constexpr int64_t kCentUnits = 100;
// Entries keep shares to five decimals, but a file written before that rule
// may hold more: the walk works on the figures as stored, to the billionth
// of a share, so that a sale's cost follows from the very numbers the file
// holds and not from a rounded copy of them.
constexpr int16_t kShareDigits = 9;
constexpr double kShareScale = 1e9;

bool IsAcquisition(const std::string& transaction) {
  return transaction == "Buy" || transaction == "Reinvestment";
}

bool IsSale(const std::string& transaction) { return transaction == "Sell"; }

// The cost a transaction brings to a holding of `before`: the fee is part
// of a lot's basis; a sale takes its share of the basis out; splits,
// dividends and adjustments bring the cost they carry.
Currency TransCost(const BasisTrans& trans, const BlockTotals& before) {
  if (IsAcquisition(trans.transaction)) return trans.cost + trans.fee;
  if (IsSale(trans.transaction)) return SaleCost(trans.shares, before);
  return trans.cost;
}

// The cost a pool's copy of a transaction carries until the pool is
// averaged: a sale's cost is only known there.
Currency DeliveredCost(const BasisTrans& trans) {
  if (IsAcquisition(trans.transaction)) return trans.cost + trans.fee;
  if (IsSale(trans.transaction)) return Currency();
  return trans.cost;
}

void SetBasis(BlockTotals& totals) {
  totals.basis_per_share = totals.shares == 0 ? 0 : totals.cost.ToDouble() / totals.shares;
}

std::optional<Date> PoolDate(std::string_view pool_id) {
  if (pool_id == kPoolAverage || pool_id == kPoolShortTerm) return Date::Min();
  if (pool_id == kPoolLongTerm) return Date::Max();
  return std::nullopt;
}

bool PoolOfMethod(SellMethod method, std::string_view pool_id) {
  if (method == SellMethod::kAvgSingle) return pool_id == kPoolAverage;
  if (method == SellMethod::kAvgDouble)
    return pool_id == kPoolShortTerm || pool_id == kPoolLongTerm;
  return false;
}

void AdvanceGauge(BasisRun& run) {
  ++run.blocks_done;
  if (run.blocks_total <= 0) return;
  int percent = static_cast<int>(std::min<int64_t>(100, run.blocks_done * 100 / run.blocks_total));
  if (percent == run.gauge_percent) return;
  run.gauge_percent = percent;
  run.app.ui().SetGauge(percent);
  run.app.ui().ProcessEvents();
}

void ShowNoSecurities(BasisRun& run, bool file_has_none) {
  const char* text = "";
  switch (run.kind) {
    case BasisKind::kScheduleD:
      text = file_has_none
                 ? "There are no Securities in this Client File to run a Schedule D Report for."
                 : "There are no securities, that have Sales, to run a Schedule D Report for.";
      break;
    case BasisKind::kBasis:
      text = file_has_none
                 ? "There are no Securities in this Client File to run a Basis Report for."
                 : "There are no securities to run a Basis Report for.";
      break;
    default:  // both reports
      text = file_has_none
                 ? "There are no Securities in this Client File to run a Basis or Schedule D "
                   "report for."
                 : "There are no securities to run a Basis or Schedule D report for.";
      break;
  }
  run.app.ui().MessageBox(text, "No Securities", Icon::kInformation, Buttons::kOk);
}

// The Schedule D row of a sale dated from the year start on: its cost is
// the basis taken out (made positive) plus the selling fee.
bool AddSaleRow(BasisRun& run, const std::string& symbol, Date date_acqrd, Date date_sold,
                double shares, Currency sale_price, Currency fee, Currency cost) {
  if (date_sold < run.year_start) return true;
  SchedDRow row;
  row.date_acqrd = date_acqrd;
  row.date_sold = date_sold;
  row.shares = 0.0 - shares;
  row.sec_symbol = symbol;
  row.sale_price = sale_price;
  row.cost = fee - cost;
  row.gain_loss = sale_price - row.cost;
  row.long_term = date_sold >= LongTermDate(date_acqrd);
  return AddSchedD(run.app, run.report, row);
}

// Applies the transaction to the real block and writes its row there.
bool ApplyToBlock(BasisRun& run, BlockWalk& block, const BasisTrans& trans, double share_floor,
                  Currency& cost) {
  cost = TransCost(trans, block.totals);
  ApplyToTotals(block.totals, trans.shares, cost, share_floor);
  BATransRow row;
  row.block_no = block.report_block_no;
  row.trans_no = block.applied;
  row.transaction = trans.transaction;
  row.date = trans.date;
  row.date_acqrd = block.date_acqrd;
  row.shares = trans.shares;
  row.sale_price = trans.sale_price;
  row.total_shares = block.totals.shares;
  row.cost = cost;
  row.total_cost = block.totals.cost;
  row.fee = trans.fee;
  row.basis_per_share = block.totals.basis_per_share;
  return AddBATrans(run.app, run.report, row);
}

// Copies the transaction onto the pool that holds the lot; the pool's
// totals are filled in when it is averaged.
bool MirrorToPool(BasisRun& run, int64_t pool_block_no, const BlockWalk& block,
                  const BasisTrans& trans) {
  BATransRow row;
  row.block_no = pool_block_no;
  row.trans_no = trans.prec_sort;
  row.transaction = trans.transaction;
  row.date = trans.date;
  row.date_acqrd = block.date_acqrd;
  row.shares = trans.shares;
  row.sale_price = trans.sale_price;
  row.cost = DeliveredCost(trans);
  row.fee = trans.fee;
  return AddBATrans(run.app, run.report, row);
}

// Moves the block's shares out of "Short Term Cost" on the day it turns
// long term; the pool prices the move when it is averaged.
bool MoveToLongTerm(BasisRun& run, const SecurityWalk& sec, BlockWalk& block) {
  BATransRow row;
  row.block_no = sec.pool_short;
  row.trans_no = kXferToTransNo;
  row.transaction = std::string(kXferTo) + kPoolLongTerm;
  row.date = block.long_term_date;
  row.date_acqrd = block.date_acqrd;
  row.shares = 0.0 - block.totals.shares;
  block.moved = true;
  return AddBATrans(run.app, run.report, row);
}

bool CreatePools(BasisRun& run, SecurityWalk& sec) {
  if (sec.method == SellMethod::kAvgSingle) {
    return GetCreateBlockNum(run, sec.symbol, kPoolPortName, kPoolAverage, Date::Min(),
                             sec.pool_average);
  }
  if (sec.method == SellMethod::kAvgDouble) {
    return GetCreateBlockNum(run, sec.symbol, kPoolPortName, kPoolShortTerm, Date::Min(),
                             sec.pool_short) &&
           GetCreateBlockNum(run, sec.symbol, kPoolPortName, kPoolLongTerm, Date::Max(),
                             sec.pool_long);
  }
  return true;
}

bool HeldInScope(BasisRun& run, const std::string& symbol) {
  return !HoldingsOfSecurity(run.client, symbol, run.port_filter).empty();
}

// True iff the security has a sale in the run's scope. A security without a
// method normally has none: its first sale would have fixed the method.
// Sales without one come from a file whose method row was kept under a
// shortened symbol, and must not drop out of a report unseen.
bool SoldInScope(BasisRun& run, const std::string& symbol) {
  return SecuritySoldIn(run.client, symbol, run.port_filter);
}

// Reads the security's blocks and transactions in one portfolio, all at
// once: the walk passes over what is dated after the year end anyway.
void ReadBlockRows(BasisRun& run, int64_t sec_id) {
  run.block_rows.clear();
  run.next_row = 0;
  ReadWalkRows(run.client, sec_id, run.year_end, [&](WalkSourceRow& source) {
    WalkRow& row = run.block_rows.emplace_back();
    row.header = source.header;
    if (row.header) {
      row.block_id = std::move(source.block_id);
      row.block_date = source.block_date;
      return;
    }
    BasisTrans& trans = row.trans;
    trans.date = source.date;
    trans.transaction = std::move(source.transaction);
    trans.prec_sort = source.prec_sort;
    trans.shares = source.shares;
    trans.sale_price = source.sale_price;
    trans.cost = source.cost;
    trans.fee = source.fee;
  });
}

// The security's totals at the year end: under the average methods what
// the pools hold, since their sales take the average cost out, not the
// lot's.
bool SecurityTotals(BasisRun& run, SecurityWalk& sec, BlockTotals& totals) {
  totals = sec.totals;
  if (sec.method == SellMethod::kAvgSingle) {
    if (!CalcAvgBlock(run, sec.method, sec.symbol, kPoolAverage, totals)) return false;
  } else if (sec.method == SellMethod::kAvgDouble) {
    BlockTotals short_term;
    BlockTotals long_term;
    if (!CalcAvgBlock(run, sec.method, sec.symbol, kPoolShortTerm, short_term)) return false;
    if (!CalcAvgBlock(run, sec.method, sec.symbol, kPoolLongTerm, long_term)) return false;
    totals.shares = RoundDouble(short_term.shares + long_term.shares, kShareDigits);
    totals.cost = short_term.cost + long_term.cost;
  }
  SetBasis(totals);
  return true;
}

}  // namespace

Currency SaleCost(double shares, const BlockTotals& before) {
  // The product is taken on whole billionths of a share and ten-thousandths
  // of a dollar and rounded once, to the cent: 10 of 30 shares costing
  // 1,000.00 is -333.33, and selling the whole holding takes exactly its
  // cost. The scaled shares go through a double, exact far beyond any
  // holding, so that no count of shares overflows a 64-bit integer.
  __extension__ using Wide = __int128;
  const auto held = static_cast<Wide>(std::nearbyint(before.shares * kShareScale));
  if (held == 0) return Currency();
  const auto sold = static_cast<Wide>(std::nearbyint(shares * kShareScale));
  Wide numerator = static_cast<Wide>(before.cost.units()) * sold;
  Wide denominator = held * kCentUnits;
  if (denominator < 0) {
    numerator = -numerator;
    denominator = -denominator;
  }
  Wide cents = numerator / denominator;
  Wide rest = numerator % denominator;
  if (rest < 0) {
    --cents;
    rest += denominator;
  }
  // Half to even: a rest of exactly half a cent goes to the even cent.
  if (2 * rest > denominator || (2 * rest == denominator && cents % 2 != 0)) ++cents;
  return Currency::FromCents(static_cast<int64_t>(cents));
}

void ApplyToTotals(BlockTotals& totals, double shares, Currency cost, double share_floor) {
  totals.shares = RoundDouble(totals.shares + shares, kShareDigits);
  if (std::fabs(totals.shares) < share_floor) totals.shares = 0;
  totals.cost += cost;
  if (std::llabs(totals.cost.units()) < kCentUnits) totals.cost = Currency();
  if (totals.shares == 0) {
    totals.shares = 0;  // no negative zero
    totals.cost = Currency();
  }
  SetBasis(totals);
}

bool CalcSecurities(BasisRun& run) {
  Application& app = run.app;
  return Trap(app, "CalcSecurities", false, [&] {
    struct Candidate {
      std::string symbol;
      SellMethod method;
    };
    std::vector<Candidate> candidates;
    for (SecurityOnFile& sec : DistinctSecurities(run.client, run.sec_filter)) {
      candidates.push_back(
          {std::move(sec.symbol), sec.sell_method.value_or(SellMethod::kNotSelected)});
    }
    // Every security of the file is held somewhere; only a portfolio scope
    // leaves some out, and a portfolio holding none has none to report.
    if (run.port_filter != "*") {
      std::erase_if(candidates, [&](const Candidate& candidate) {
        return !HeldInScope(run, candidate.symbol);
      });
    }
    if (candidates.empty()) {
      ShowNoSecurities(run, true);
      return false;
    }
    bool any = false;
    for (const Candidate& candidate : candidates) {
      SellMethod method = candidate.method;
      if (method == SellMethod::kNotSelected) {
        // A security never sold has nothing for a Schedule D.
        if (run.kind == BasisKind::kScheduleD && !SoldInScope(run, candidate.symbol)) continue;
        if (run.method_for_all != SellMethod::kNotSelected) {
          method = run.method_for_all;
        } else {
          int16_t option = 0;
          method =
              RetrieveSellMethod(app, SellMethod::kNotSelected, "Security: " + candidate.symbol,
                                 "Use for all Securities without Sells", option);
          if (method == SellMethod::kNotSelected) continue;
          if (option == 1) run.method_for_all = method;
        }
      }
      SecurityWalk sec;
      sec.symbol = candidate.symbol;
      sec.method = method;
      if (!CreatePools(run, sec)) return false;
      if (!CalcPortfolios(run, sec)) return false;
      if (!sec.applied) continue;
      BlockTotals totals;
      if (!SecurityTotals(run, sec, totals)) return false;
      AddBASecs(run.report,
                {sec.symbol, GetSecInfoFromCDB(app, sec.symbol, "[Sec Name]"),
                 GetSellName(app, method), totals.shares, totals.cost, totals.basis_per_share});
      any = true;
    }
    if (!any) {
      ShowNoSecurities(run, false);
      return false;
    }
    return true;
  });
}

bool CalcPortfolios(BasisRun& run, SecurityWalk& sec) {
  return Trap(run.app, "CalcPortfolios", false, [&] {
    for (const SecurityOnFile& held : HoldingsOfSecurity(run.client, sec.symbol, run.port_filter)) {
      if (!CalcBlocks(run, sec, held.port_name, held.sec_id)) return false;
    }
    return true;
  });
}

bool CalcBlocks(BasisRun& run, SecurityWalk& sec, const std::string& port_name, int64_t sec_id) {
  return Trap(run.app, "CalcBlocks", false, [&] {
    ReadBlockRows(run, sec_id);
    while (run.next_row < run.block_rows.size()) {
      const WalkRow& header = run.block_rows[run.next_row++];
      BlockWalk block;
      block.block_id = header.block_id;
      block.date_acqrd = header.block_date;
      if (!AddBABlock(run.app, run.report, sec.symbol, port_name, block.block_id, block.date_acqrd,
                      block.report_block_no)) {
        return false;
      }
      if (!CalcTransactions(run, sec, block)) return false;
      if (block.applied > 0) sec.applied = true;
      sec.totals.shares = RoundDouble(sec.totals.shares + block.totals.shares, kShareDigits);
      sec.totals.cost += block.totals.cost;
      AdvanceGauge(run);
    }
    run.block_rows.clear();
    run.next_row = 0;
    return true;
  });
}

bool CalcTransactions(BasisRun& run, SecurityWalk& sec, BlockWalk& block) {
  return Trap(run.app, "CalcTransactions", false, [&] {
    block.long_term_date = LongTermDate(block.date_acqrd);
    block.totals = BlockTotals();
    block.applied = 0;
    block.moved = false;
    for (; run.next_row < run.block_rows.size() && !run.block_rows[run.next_row].header;
         ++run.next_row) {
      const BasisTrans& trans = run.block_rows[run.next_row].trans;
      // Later transactions belong to a later tax year; the walk goes on.
      if (trans.date > run.year_end) continue;
      bool applied = false;
      switch (sec.method) {
        case SellMethod::kSpecificId:
        case SellMethod::kFifo:
          applied = ComputeTrans_FIFO_SpecID(run, sec, block, trans);
          break;
        case SellMethod::kAvgSingle:
          applied = ComputeTrans_Avg_Sng(run, sec, block, trans);
          break;
        case SellMethod::kAvgDouble:
          applied = ComputeTrans_Avg_Dbl(run, sec, block, trans);
          break;
        default:
          run.app.ui().MessageBox(
              "Invalid Sell Method(" + std::to_string(CodeOf(sec.method)) + ") in CalcTransactions",
              "Error!", Icon::kCritical, Buttons::kOk);
          return false;
      }
      if (!applied) return false;
      ++block.applied;
    }
    // A lot that turned long term by the year end moves even when nothing
    // happened to it afterwards.
    if (sec.method == SellMethod::kAvgDouble && !block.moved && block.applied > 0 &&
        block.long_term_date <= run.year_end) {
      return MoveToLongTerm(run, sec, block);
    }
    return true;
  });
}

bool ComputeTrans_FIFO_SpecID(BasisRun& run, SecurityWalk& sec, BlockWalk& block,
                              const BasisTrans& trans) {
  return Trap(run.app, "ComputeTrans_FIFO_SpecID", false, [&] {
    Currency cost;
    if (!ApplyToBlock(run, block, trans, kLotShareFloor, cost)) return false;
    if (!IsSale(trans.transaction)) return true;
    return AddSaleRow(run, sec.symbol, block.date_acqrd, trans.date, trans.shares, trans.sale_price,
                      trans.fee, cost);
  });
}

bool ComputeTrans_Avg_Sng(BasisRun& run, SecurityWalk& sec, BlockWalk& block,
                          const BasisTrans& trans) {
  return Trap(run.app, "ComputeTrans_Avg_Sng", false, [&] {
    Currency cost;
    if (!ApplyToBlock(run, block, trans, kPoolShareFloor, cost)) return false;
    return MirrorToPool(run, sec.pool_average, block, trans);
  });
}

bool ComputeTrans_Avg_Dbl(BasisRun& run, SecurityWalk& sec, BlockWalk& block,
                          const BasisTrans& trans) {
  return Trap(run.app, "ComputeTrans_Avg_Dbl", false, [&] {
    if (!block.moved && trans.date >= block.long_term_date && !MoveToLongTerm(run, sec, block)) {
      return false;
    }
    Currency cost;
    if (!ApplyToBlock(run, block, trans, kPoolShareFloor, cost)) return false;
    return MirrorToPool(run, block.moved ? sec.pool_long : sec.pool_short, block, trans);
  });
}

bool CalcAvgBlock(BasisRun& run, SellMethod method, const std::string& symbol,
                  const std::string& pool_id, BlockTotals& totals) {
  Application& app = run.app;
  return Trap(app, "CalcAvgBlock", false, [&] {
    std::optional<Date> pool_date = PoolDate(pool_id);
    if (!pool_date || !PoolOfMethod(method, pool_id)) {
      app.ui().MessageBox("Error in BlockID(" + pool_id + ") in CalcAvgBlock", "Error!",
                          Icon::kCritical, Buttons::kOk);
      return false;
    }
    int64_t pool_no = 0;
    if (!GetCreateBlockNum(run, symbol, kPoolPortName, pool_id, *pool_date, pool_no)) {
      return false;
    }
    totals = BlockTotals();
    const std::string xfer_to = kXferTo;
    run.pool_rows.emplace(run.report, pool_no, run.pool_rows_sql);
    PoolTransRow row;
    while (run.pool_rows->Next(row)) {
      const std::string& transaction = row.transaction;
      const Date date = row.date;
      const Date date_acqrd = row.date_acqrd;
      const double shares = row.shares;
      const Currency sale_price = row.sale_price;
      const Currency fee = row.fee;
      Currency cost = row.cost;
      const bool moves_out = transaction.starts_with(xfer_to);
      // What leaves the pool leaves at its average cost of the moment.
      if (IsSale(transaction) || moves_out) cost = SaleCost(shares, totals);
      ApplyToTotals(totals, shares, cost, kPoolShareFloor);
      if (!UpdateAvgBlockRpt(app, run.report, row.trans_row, row.trans_no, totals.shares, cost,
                             totals.cost, totals.basis_per_share)) {
        return false;
      }
      if (IsSale(transaction) &&
          !AddSaleRow(run, symbol, date_acqrd, date, shares, sale_price, fee, cost)) {
        return false;
      }
      if (moves_out) {
        const std::string target = transaction.substr(xfer_to.size());
        std::optional<Date> target_date = PoolDate(target);
        if (!target_date || !PoolOfMethod(method, target)) {
          app.ui().MessageBox("Error in BlockID(" + target + ") in CalcAvgBlock", "Error!",
                              Icon::kCritical, Buttons::kOk);
          return false;
        }
        BATransRow in;
        if (!GetCreateBlockNum(run, symbol, kPoolPortName, target, *target_date, in.block_no)) {
          return false;
        }
        in.trans_no = kXferFromTransNo;
        in.transaction = std::string(kXferFrom) + pool_id;
        in.date = date;
        in.date_acqrd = date_acqrd;
        in.shares = 0.0 - shares;
        in.cost = -cost;
        if (!AddBATrans(app, run.report, in)) return false;
      }
    }
    run.pool_rows.reset();
    return true;
  });
}

bool GetCreateBlockNum(BasisRun& run, const std::string& symbol, const std::string& port_name,
                       const std::string& block_id, Date date_acqrd, int64_t& block_no) {
  return Trap(run.app, "GetCreateBlockNum", false, [&] {
    std::string key = symbol;
    for (const std::string* part : {&port_name, &block_id}) {
      key += '\x1f';
      key += *part;
    }
    if (auto found = run.created_blocks.find(key); found != run.created_blocks.end()) {
      block_no = found->second;
      return true;
    }
    if (!AddBABlock(run.app, run.report, symbol, port_name, block_id, date_acqrd, block_no)) {
      return false;
    }
    run.created_blocks.emplace(std::move(key), block_no);
    return true;
  });
}

void CloseBasisRecordsets(BasisRun& run) {
  run.block_rows.clear();
  run.next_row = 0;
  run.pool_rows.reset();
}

}  // namespace lotwise
