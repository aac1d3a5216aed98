#pragma once

// A large Taxpayer File for the report benchmarks, written straight into its
// tables with prepared inserts in one unit of work, beside a Security
// Symbols File that knows its symbols and indexes the taxpayer.
//
// The ledger looks like a long-kept real one: securities in a few
// portfolios (some held in two), every sell method and a few securities
// without one (never sold), buys, many small reinvested lots, sales that
// take each block only as far as it holds (a sale over several blocks
// spreads its proceeds and fee to the cent, the last block taking the
// rest), stock splits and stock dividends on every block holding shares,
// and adjustments of cost and shares, over about fifteen years and a
// quarter past the year end. The same shape and seed give the same file.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "data/database.h"
#include "data/schema.h"
#include "data/transaction_store.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "lots/sell_shares.h"

namespace lotwise::bench {

// Changes whenever the generator writes different rows, so that a cached
// file of an older generator is not taken for a current one.
inline constexpr int kLedgerGeneratorVersion = 1;

// What to generate.
struct LedgerShape {
  int64_t transactions = 1'000'000;
  int symbols = 200;
  Date first_day = Date::FromYmd(2010, 1, 4);
  Date last_day = Date::FromYmd(2025, 3, 31);
  uint64_t seed = 0x5EED2024;
};

// The taxpayer the generated files describe.
inline constexpr const char* kLedgerClientCode = "BENCH01";
inline constexpr const char* kLedgerClientName = "Pat Q. Benchmark";
inline constexpr const char* kLedgerClientFile = "BENCH0101.mdb";

// The rows written, by kind.
struct LedgerCounts {
  int64_t buys = 0;
  int64_t reinvestments = 0;
  int64_t sells = 0;
  int64_t splits = 0;
  int64_t dividends = 0;
  int64_t adjustments = 0;
  int64_t blocks = 0;
  int64_t securities = 0;  // Security rows: a symbol per portfolio holding it
  int64_t symbols = 0;
  int64_t transactions() const {
    return buys + reinvestments + sells + splits + dividends + adjustments;
  }
};

namespace ledger_detail {

// SplitMix64: small, fast and the same on every platform, unlike the
// standard library's distributions.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}
  uint64_t Next() {
    uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }
  // Uniform in [0, 1).
  double Uniform() { return static_cast<double>(Next() >> 11) * 0x1.0p-53; }
  // Uniform in [low, high].
  int64_t Between(int64_t low, int64_t high) {
    return low + static_cast<int64_t>(Next() % static_cast<uint64_t>(high - low + 1));
  }

 private:
  uint64_t state_;
};

// Shares are counted in hundred-thousandths, the precision the program
// keeps, so that a block's remainder is exact and a sale never takes more
// than the block holds.
inline constexpr int64_t kShareUnits = 100'000;
inline double SharesOf(int64_t units) { return static_cast<double>(units) / kShareUnits; }

// How a holder trades a security. Rates are per trading day before the
// intensity that spreads a pair's rows over the whole period.
enum class Style { kHolder, kFund, kStock, kTrader };
struct StyleRates {
  double buy, reinvest, sell, adjust;
  int weight;  // share of the transactions
};
inline StyleRates RatesOf(Style style) {
  switch (style) {
    case Style::kHolder:
      return {0.10, 1.0, 0.0, 0.01, 1};
    case Style::kFund:
      return {0.10, 1.0, 0.06, 0.01, 5};
    case Style::kStock:
      return {0.60, 0.3, 0.40, 0.03, 4};
    case Style::kTrader:
      return {1.00, 0.0, 0.90, 0.02, 8};
  }
  return {};
}

struct SplitEvent {
  Date date;
  int16_t type;  // kTypeSplit or kTypeDividend
  double pre, post;
};

// One symbol: its method (kNotSelected: no Sell Method row, no sales),
// style, the portfolios holding it and its splits and dividends.
struct SymbolPlan {
  std::string symbol;
  std::string name;
  std::string cusip;
  SellMethod method;
  Style style;
  std::vector<std::string> portfolios;
  std::vector<SplitEvent> splits;  // by date
  double start_price;
};

inline const char* const kPortfolios[] = {"Growth", "Income", "IRA Rollover", "Trading"};

inline bool IsTradingDay(Date date) {
  // Serial 0 (12/30/1899) was a Saturday.
  const int32_t weekday = date.serial() % 7;
  return weekday != 0 && weekday != 1;
}

inline Date RandomTradingDay(Random& random, Date first, Date last) {
  for (;;) {
    Date date = first.AddDays(static_cast<int>(random.Between(0, last.serial() - first.serial())));
    if (IsTradingDay(date)) return date;
  }
}

inline std::vector<SymbolPlan> PlanSymbols(const LedgerShape& shape) {
  Random random(shape.seed);
  std::vector<SymbolPlan> plans;
  const int without_method = std::max(1, shape.symbols / 20);
  for (int i = 0; i < shape.symbols; ++i) {
    SymbolPlan plan;
    // XAAA, XAAB, ...: four capitals, like a ticker symbol.
    plan.symbol = {'X', static_cast<char>('A' + i / 676 % 26), static_cast<char>('A' + i / 26 % 26),
                   static_cast<char>('A' + i % 26)};
    plan.name = "Benchmark Holdings " + std::to_string(i + 1) + " Inc.";
    plan.cusip = std::to_string(100000000 + random.Between(0, 899999999));
    const int slot = i % 20;
    if (i < without_method) {
      plan.method = SellMethod::kNotSelected;
      plan.style = Style::kHolder;
    } else if (slot < 2) {
      plan.method = SellMethod::kSpecificId;
      plan.style = slot == 0 ? Style::kStock : Style::kTrader;
    } else if (slot < 11) {
      plan.method = SellMethod::kFifo;
      plan.style = slot % 2 == 0 ? Style::kStock : Style::kTrader;
    } else if (slot < 15) {
      plan.method = SellMethod::kAvgSingle;
      plan.style = Style::kFund;
    } else if (slot < 19) {
      plan.method = SellMethod::kAvgDouble;
      plan.style = Style::kFund;
    } else {
      plan.method = SellMethod::kFifo;
      plan.style = Style::kStock;
    }
    switch (plan.style) {
      case Style::kHolder:
      case Style::kFund:
        plan.portfolios = {kPortfolios[1]};
        if (i % 10 == 7) plan.portfolios.push_back(kPortfolios[2]);
        break;
      case Style::kStock:
        plan.portfolios = {kPortfolios[0]};
        if (i % 10 == 7) plan.portfolios.push_back(kPortfolios[2]);
        break;
      case Style::kTrader:
        plan.portfolios = {kPortfolios[3]};
        if (i % 10 == 7) plan.portfolios.push_back(kPortfolios[0]);
        break;
    }
    const bool stock = plan.style == Style::kStock || plan.style == Style::kTrader;
    const int splits = static_cast<int>(random.Between(0, stock ? 2 : 1));
    const int dividends = stock ? static_cast<int>(random.Between(0, 1)) : 0;
    static constexpr double kRatios[][2] = {{2, 1}, {3, 2}, {3, 1}};
    for (int s = 0; s < splits; ++s) {
      const auto& ratio = kRatios[random.Between(0, 2)];
      plan.splits.push_back({RandomTradingDay(random, shape.first_day, shape.last_day), kTypeSplit,
                             ratio[0], ratio[1]});
    }
    for (int s = 0; s < dividends; ++s) {
      plan.splits.push_back(
          {RandomTradingDay(random, shape.first_day, shape.last_day), kTypeDividend, 0.05, 1});
    }
    std::sort(plan.splits.begin(), plan.splits.end(), [](const SplitEvent& a, const SplitEvent& b) {
      return a.date < b.date || (a.date == b.date && a.type > b.type);
    });
    plan.start_price = 10 + 140 * random.Uniform();
    plans.push_back(std::move(plan));
  }
  return plans;
}

enum class RowKind { kBuy, kReinvest, kAdjust, kSell, kDividend, kSplit };

struct SimBlock {
  Date date;
  int seq;
  int64_t left;  // share units
  int64_t cost_cents;
};

struct SimRow {
  RowKind kind;
  int32_t block;  // index into the pair's blocks
  Date date;
  int64_t shares;  // share units, negative when leaving the block
  int64_t cents;   // cost of a buy or adjustment, proceeds of a sale
  int64_t fee_cents;
  int16_t split;  // index into the symbol's splits
};

// The rows of one symbol in one portfolio.
struct PairLedger {
  std::vector<SimBlock> blocks;
  std::vector<SimRow> rows;
  Date last_date;
  bool filled = false;
};

// Trades one symbol in one portfolio day by day from the first day until
// `budget` rows are written (or five years past the last day). `intensity`
// scales the daily chances of each kind of trade.
inline PairLedger SimulatePair(const SymbolPlan& plan, uint64_t pair_seed, double intensity,
                               int64_t budget, const LedgerShape& shape) {
  Random random(pair_seed);
  const StyleRates rates = RatesOf(plan.style);
  const bool whole_shares = plan.style == Style::kStock || plan.style == Style::kTrader;
  const bool sells = plan.method != SellMethod::kNotSelected && rates.sell > 0;
  const bool specific = plan.method == SellMethod::kSpecificId;
  auto chance = [&](double rate) { return std::min(1.0, rate * intensity); };
  const double p_buy = chance(rates.buy);
  const double p_reinvest = chance(rates.reinvest);
  const double p_adjust = chance(rates.adjust);
  const double p_sell = chance(rates.sell);

  PairLedger ledger;
  std::vector<int32_t> open;  // blocks holding shares, oldest first
  int64_t held = 0;
  double price = plan.start_price;
  size_t next_split = 0;
  const Date hard_stop = shape.last_day.AddYears(5);
  auto room = [&] { return budget - static_cast<int64_t>(ledger.rows.size()); };

  auto open_block = [&](RowKind kind, Date date, int64_t units, int64_t cost_cents,
                        int64_t fee_cents) {
    const int seq = !ledger.blocks.empty() && ledger.blocks.back().date == date
                        ? ledger.blocks.back().seq + 1
                        : 1;
    ledger.blocks.push_back({date, seq, units, cost_cents + fee_cents});
    const auto index = static_cast<int32_t>(ledger.blocks.size() - 1);
    open.push_back(index);
    held += units;
    ledger.rows.push_back({kind, index, date, units, cost_cents, fee_cents, 0});
  };
  auto drop_empty = [&] {
    std::erase_if(open, [&](int32_t b) { return ledger.blocks[b].left == 0; });
  };

  for (Date day = shape.first_day; room() > 0 && day <= hard_stop; day = day.AddDays(1)) {
    if (!IsTradingDay(day)) continue;
    price = std::clamp(price * (1.0003 + 0.03 * (random.Uniform() - 0.5)), 1.0, 5000.0);

    if (random.Uniform() < p_buy && room() > 0) {
      int64_t units;
      int64_t cents;
      if (whole_shares) {
        units = random.Between(10, 500) * kShareUnits;
        cents = std::llround(SharesOf(units) * price * 100);
      } else {
        cents = random.Between(1000, 10000) * 100;
        units = std::max<int64_t>(100, std::llround(cents / 100.0 / price * 1000) * 100);
      }
      const int64_t fee = random.Uniform() < 0.4 ? 0 : random.Between(495, 1995);
      open_block(RowKind::kBuy, day, units, cents, fee);
    }
    if (random.Uniform() < p_reinvest && room() > 0) {
      // A dividend of a few dollars buys a sliver of a share.
      const int64_t cents = random.Between(500, 30000);
      const int64_t units =
          std::max<int64_t>(100, std::llround(cents / 100.0 / price * 1000) * 100);
      open_block(RowKind::kReinvest, day, units, cents, 0);
    }
    if (!open.empty() && random.Uniform() < p_adjust && room() > 0) {
      const int32_t b = open[random.Between(0, static_cast<int64_t>(open.size()) - 1)];
      SimBlock& block = ledger.blocks[b];
      const double kind = random.Uniform();
      SimRow row{RowKind::kAdjust, b, day, 0, 0, 0, 0};
      if (kind < 0.7 && block.cost_cents > 2000) {
        // A return of capital lowers the basis.
        row.cents = -std::max<int64_t>(1, std::llround(static_cast<double>(block.cost_cents) *
                                                       (0.01 + 0.04 * random.Uniform())));
      } else if (kind < 0.9) {
        // A disallowed wash-sale loss raises it.
        row.cents = random.Between(100, 50000);
      } else {
        row.shares = kShareUnits / 2;
      }
      block.cost_cents += row.cents;
      block.left += row.shares;
      held += row.shares;
      ledger.rows.push_back(row);
    }
    if (sells && held > 0 && random.Uniform() < p_sell && room() > 0) {
      const double part = random.Uniform() < 0.1 ? 1.0 : 0.05 + 0.45 * random.Uniform();
      const int64_t step = whole_shares ? kShareUnits : 100;
      int64_t want =
          part >= 1.0 ? held : static_cast<int64_t>(static_cast<double>(held) * part) / step * step;
      if (want <= 0) want = held;
      // FIFO from the oldest block; a specific identification picks the
      // newest lots first.
      std::vector<std::pair<int32_t, int64_t>> takes;
      auto take_from = [&](int32_t b) {
        const int64_t take = std::min(want, ledger.blocks[b].left);
        takes.emplace_back(b, take);
        want -= take;
        return want == 0 || static_cast<int64_t>(takes.size()) == room();
      };
      if (specific) {
        for (auto it = open.rbegin(); it != open.rend() && !take_from(*it); ++it) {
        }
      } else {
        for (auto it = open.begin(); it != open.end() && !take_from(*it); ++it) {
        }
      }
      int64_t sold = 0;
      for (const auto& take : takes) sold += take.second;
      const int64_t proceeds = std::llround(SharesOf(sold) * price * 100);
      const int64_t fee = random.Uniform() < 0.3 ? 0 : random.Between(495, 1995);
      int64_t proceeds_left = proceeds;
      int64_t fee_left = fee;
      for (size_t k = 0; k < takes.size(); ++k) {
        const auto [b, take] = takes[k];
        const bool last = k + 1 == takes.size();
        const double share = static_cast<double>(take) / static_cast<double>(sold);
        const int64_t row_proceeds =
            last ? proceeds_left : std::llround(static_cast<double>(proceeds) * share);
        const int64_t row_fee = last ? fee_left : std::llround(static_cast<double>(fee) * share);
        proceeds_left -= row_proceeds;
        fee_left -= row_fee;
        SimBlock& block = ledger.blocks[b];
        const int64_t cost_out = block.left == 0
                                     ? 0
                                     : std::llround(static_cast<double>(block.cost_cents) * take /
                                                    static_cast<double>(block.left));
        block.cost_cents -= cost_out;
        block.left -= take;
        ledger.rows.push_back({RowKind::kSell, b, day, -take, row_proceeds, row_fee, 0});
      }
      held -= sold;
      drop_empty();
    }
    while (next_split < plan.splits.size() && plan.splits[next_split].date <= day) {
      const SplitEvent& split = plan.splits[next_split];
      // A split is written on every block holding shares or not at all.
      if (split.date == day && !open.empty() && static_cast<int64_t>(open.size()) <= room()) {
        const double ratio = split.pre / split.post;
        for (int32_t b : open) {
          SimBlock& block = ledger.blocks[b];
          const double added = split.type == kTypeSplit
                                   ? ratio * static_cast<double>(block.left) - block.left
                                   : ratio * static_cast<double>(block.left);
          const int64_t units = std::llround(added);
          block.left += units;
          held += units;
          ledger.rows.push_back({split.type == kTypeSplit ? RowKind::kSplit : RowKind::kDividend, b,
                                 day, units, 0, 0, static_cast<int16_t>(next_split)});
        }
        price /= split.type == kTypeSplit ? ratio : 1 + ratio;
      }
      ++next_split;
    }
    ledger.last_date = day;
  }
  ledger.filled = room() == 0;
  return ledger;
}

// The pair's rows spread over the whole period: the intensity is tuned
// until the budget runs out near the last day.
inline PairLedger PlanPair(const SymbolPlan& plan, uint64_t pair_seed, int64_t budget,
                           const LedgerShape& shape) {
  const double span = shape.last_day.serial() - shape.first_day.serial();
  double intensity = 1.0;
  PairLedger ledger;
  for (int round = 0; round < 8; ++round) {
    ledger = SimulatePair(plan, pair_seed, intensity, budget, shape);
    if (!ledger.filled) {
      intensity *= 1.7;
      continue;
    }
    const double used = (ledger.last_date.serial() - shape.first_day.serial()) / span;
    if (std::abs(used - 1.0) < 0.03) break;
    intensity *= std::max(0.2, used);
  }
  // Whatever the tuning left short is made up with reinvestments after the
  // last trade.
  Date day = ledger.last_date;
  while (static_cast<int64_t>(ledger.rows.size()) < budget) {
    day = day.AddDays(1);
    const int seq = !ledger.blocks.empty() && ledger.blocks.back().date == day
                        ? ledger.blocks.back().seq + 1
                        : 1;
    ledger.blocks.push_back({day, seq, 10 * 100, 1000});
    ledger.rows.push_back({RowKind::kReinvest, static_cast<int32_t>(ledger.blocks.size() - 1), day,
                           10 * 100, 1000, 0, 0});
  }
  return ledger;
}

}  // namespace ledger_detail

// Writes a new Taxpayer File at `client_path` and a new Security Symbols
// File at `central_path` (neither may exist yet) and returns what they hold.
inline LedgerCounts WriteLedger(const LedgerShape& shape, const std::string& client_path,
                                const std::string& central_path) {
  using namespace ledger_detail;
  const std::vector<SymbolPlan> plans = PlanSymbols(shape);

  CreateTemplate(FileKind::kCentral, central_path);
  {
    auto central = Database::Open(central_path);
    Database::Transaction unit(*central);
    central->Execute(
        R"(INSERT INTO "Clients" ("Client Code", "Client Name", "Sort Name", "File Name") )"
        R"(VALUES (:code, :name, :sort, :file))",
        {{"code", kLedgerClientCode},
         {"name", kLedgerClientName},
         {"sort", "Benchmark, Pat Q."},
         {"file", kLedgerClientFile}});
    central->Execute(R"(INSERT INTO "Usage" ("Usage Count") VALUES (42))");
    for (const SymbolPlan& plan : plans) {
      central->Execute(
          R"(INSERT INTO "Securities" ("Sec Symbol", "Sec Name", "CUSIP") VALUES (:s, :n, :c))",
          {{"s", plan.symbol}, {"n", plan.name}, {"c", plan.cusip}});
    }
    unit.Commit();
  }

  CreateTemplate(FileKind::kTaxpayer, client_path);
  auto db = Database::Open(client_path);
  // A larger page cache for the one long unit of work: the indexes of a
  // million rows do not fit SQLite's default two megabytes.
  db->Execute("PRAGMA cache_size = -65536");
  Database::Transaction unit(*db);
  db->Execute(
      R"(INSERT INTO "Client" ("Client Name", "Sort Name", "Client Code", "2nd Line", "Year End") )"
      R"(VALUES (:name, :sort, :code, ' ', :ye))",
      {{"name", kLedgerClientName},
       {"sort", "Benchmark, Pat Q."},
       {"code", kLedgerClientCode},
       {"ye", Date::FromYmd(2024, 12, 31)}});
  for (const char* port : kPortfolios) {
    db->Execute(
        R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line", "Client Code") VALUES (:p, ' ', :c))",
        {{"p", port}, {"c", kLedgerClientCode}});
  }

  LedgerCounts counts;
  counts.symbols = static_cast<int64_t>(plans.size());
  int total_weight = 0;
  for (const SymbolPlan& plan : plans) {
    if (plan.method != SellMethod::kNotSelected) {
      db->Execute(R"(INSERT INTO "Sell Method" ("Sec Symbol", "Sell Method") VALUES (:s, :m))",
                  {{"s", plan.symbol}, {"m", CodeOf(plan.method)}});
    }
    total_weight += RatesOf(plan.style).weight * static_cast<int>(plan.portfolios.size());
  }

  int64_t written = 0;
  int weight_done = 0;
  uint64_t pair_number = 0;
  for (const SymbolPlan& plan : plans) {
    for (const std::string& port : plan.portfolios) {
      ++pair_number;
      weight_done += RatesOf(plan.style).weight;
      const int64_t budget = shape.transactions * weight_done / total_weight - written;
      const PairLedger ledger =
          PlanPair(plan, shape.seed ^ (pair_number * 0xD1B54A32D192ED03ULL), budget, shape);
      written += budget;

      db->Execute(
          R"(INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line") VALUES (:s, :p, ' '))",
          {{"s", plan.symbol}, {"p", port}});
      const int64_t sec_id = db->LastInsertId();
      ++counts.securities;
      std::vector<int64_t> block_numbers(ledger.blocks.size());
      for (const SimRow& row : ledger.rows) {
        const double shares = SharesOf(row.shares);
        switch (row.kind) {
          case RowKind::kBuy:
          case RowKind::kReinvest: {
            const SimBlock& block = ledger.blocks[row.block];
            db->Execute(
                R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, :id, :d))",
                {{"s", sec_id},
                 {"id", block.date.ToString() + "-" + std::to_string(block.seq)},
                 {"d", block.date}});
            block_numbers[row.block] = db->LastInsertId();
            ++counts.blocks;
            const bool buy = row.kind == RowKind::kBuy;
            db->Execute(
                R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Cost", "Shares", "Fee", "Notes", )"
                R"("Prec Sort") VALUES (:b, :d, :t, :c, :sh, :f, '', :p))",
                {{"b", block_numbers[row.block]},
                 {"d", row.date},
                 {"t", buy ? kTypeBuy : kTypeReinvest},
                 {"c", Currency::FromCents(row.cents)},
                 {"sh", shares},
                 {"f", Currency::FromCents(row.fee_cents)},
                 {"p", buy ? kPrecBuy : kPrecReinvest}});
            ++(buy ? counts.buys : counts.reinvestments);
            break;
          }
          case RowKind::kSell:
            db->Execute(
                R"(INSERT INTO "Sell" ("Block No", "Date", "Sale Price", "Fee", "Shares", "Notes", )"
                R"("Prec Sort") VALUES (:b, :d, :pr, :f, :sh, '', :p))",
                {{"b", block_numbers[row.block]},
                 {"d", row.date},
                 {"pr", Currency::FromCents(row.cents)},
                 {"f", Currency::FromCents(row.fee_cents)},
                 {"sh", shares},
                 {"p", kPrecSell}});
            ++counts.sells;
            break;
          case RowKind::kSplit:
          case RowKind::kDividend: {
            const SplitEvent& split = plan.splits[row.split];
            const bool is_split = row.kind == RowKind::kSplit;
            db->Execute(
                R"(INSERT INTO "Split" ("Block No", "Date", "Type", "Pre Ratio", "Post Ratio", )"
                R"("Shares", "Notes", "Prec Sort") VALUES (:b, :d, :t, :pre, :post, :sh, '', :p))",
                {{"b", block_numbers[row.block]},
                 {"d", row.date},
                 {"t", split.type},
                 {"pre", split.pre},
                 {"post", split.post},
                 {"sh", shares},
                 {"p", is_split ? kPrecSplit : kPrecDividend}});
            ++(is_split ? counts.splits : counts.dividends);
            break;
          }
          case RowKind::kAdjust:
            db->Execute(
                R"(INSERT INTO "Adjust" ("Block No", "Date", "Shares", "Cost", "Notes", "Prec Sort") )"
                R"(VALUES (:b, :d, :sh, :c, '', :p))",
                {{"b", block_numbers[row.block]},
                 {"d", row.date},
                 {"sh", shares},
                 {"c", Currency::FromCents(row.cents)},
                 {"p", kPrecAdjust}});
            ++counts.adjustments;
            break;
        }
      }
    }
  }
  unit.Commit();
  return counts;
}

}  // namespace lotwise::bench
