#include "lots/rebook_plan.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <unordered_map>

#include "data/security_history.h"
#include "ground/number_text.h"
#include "ground/value_helpers.h"
#include "lots/share_rules.h"

namespace lotwise {

namespace {

using Key = HistoryKey;

using Table = HistoryTable;
using Row = HistoryRow;
using Block = BlockOnFile;

using History = SecurityHistory;

// Rows grouped by their block, each group in the order added: what a block
// holds is read from its own rows, however long the security's history.
class BlockRows {
 public:
  void Add(const Row& row) { rows_[row.block_no].push_back(row); }
  const std::vector<Row>& Of(int64_t block_no) const {
    static const std::vector<Row> none;
    auto it = rows_.find(block_no);
    return it == rows_.end() ? none : it->second;
  }

 private:
  std::unordered_map<int64_t, std::vector<Row>> rows_;
};

// The shares block `block_no` holds after every row up to `upto`.
double HeldAt(const BlockRows& rows, int64_t block_no, Key upto) {
  double total = 0;
  for (const Row& row : rows.Of(block_no)) {
    if (!(upto < row.key)) total += row.shares;
  }
  return RoundShares(total);
}

// What a sale at `point` may take from the block: what it holds then,
// bounded by what it holds at every later row, so that no later row is left
// drawing on shares that are gone.
double AvailableAt(const BlockRows& rows, int64_t block_no, Key point) {
  double available = HeldAt(rows, block_no, point);
  std::vector<const Row*> later;
  for (const Row& row : rows.Of(block_no)) {
    if (point < row.key) later.push_back(&row);
  }
  std::stable_sort(later.begin(), later.end(),
                   [](const Row* a, const Row* b) { return a->key < b->key; });
  double running = available;
  for (const Row* row : later) {
    running = RoundShares(running + row->shares);
    available = std::min(available, running);
  }
  return available;
}

// One sale as entered: the day's Sell rows that share their notes (the rows
// AddAllSales wrote together).
struct Sale {
  Key key;
  std::string notes;
  std::vector<Row> rows;  // in the order they were written
  double shares = 0;
  Currency price;
  Currency fee;
};

// One split or stock dividend as entered: its rows of one date and ratio.
struct SplitEvent {
  Key key;
  int64_t type = 0;
  double pre = 0;
  double post = 0;
  std::vector<Row> rows;
};

std::vector<Sale> SalesFrom(const History& history, Date from) {
  std::vector<Sale> sales;
  std::map<std::pair<Key, std::string>, size_t> index;
  for (const Row& row : history.rows) {
    if (row.table != Table::kSell || row.key.date < from) continue;
    auto [found, added] = index.try_emplace({row.key, row.notes}, sales.size());
    if (added) sales.push_back({row.key, row.notes, {}, 0, Currency(), Currency()});
    Sale* same = &sales[found->second];
    same->rows.push_back(row);
    // Made positive before adding up, as the whole-sale modification does.
    same->shares = RoundShares(same->shares + std::fabs(row.shares));
    same->price += row.price;
    same->fee += row.fee;
  }
  // Rows come in the order they were written, so a day's sales keep theirs.
  std::stable_sort(sales.begin(), sales.end(),
                   [](const Sale& a, const Sale& b) { return a.key < b.key; });
  return sales;
}

std::vector<SplitEvent> SplitsAfter(const History& history, Key after) {
  std::vector<SplitEvent> events;
  for (const Row& row : history.rows) {
    if (row.table != Table::kSplit || !(after < row.key)) continue;
    auto same = std::find_if(events.begin(), events.end(), [&](const SplitEvent& e) {
      return e.key == row.key && e.type == row.type && e.pre == row.pre && e.post == row.post;
    });
    if (same == events.end()) {
      events.push_back({row.key, row.type, row.pre, row.post, {}});
      same = events.end() - 1;
    }
    same->rows.push_back(row);
  }
  std::stable_sort(events.begin(), events.end(),
                   [](const SplitEvent& a, const SplitEvent& b) { return a.key < b.key; });
  return events;
}

std::string PicksText(const History& history,
                      const std::vector<std::pair<int64_t, double>>& picks) {
  std::string text;
  for (const auto& [block_no, shares] : picks) {
    if (!text.empty()) text += ", ";
    text += history.BlockId(block_no) + " (" + NumberText(shares) + ")";
  }
  return text;
}

class Replay {
 public:
  Replay(const History& history, Date from) : history_(history) {
    sales_ = SalesFrom(history, from);
    if (sales_.empty()) return;
    const Key first = sales_.front().key;
    splits_ = SplitsAfter(history, first);
    // What stays as it is: everything before the first later sale, and the
    // buys, reinvestments and adjustments after it.
    for (const Row& row : history.rows) {
      const bool replayed = (row.table == Table::kSell && !(row.key < first)) ||
                            (row.table == Table::kSplit && first < row.key);
      if (!replayed) state_.Add(row);
      if (!replayed || row.table == Table::kSell) before_.Add(row);
    }
  }

  const std::vector<Sale>& sales() const { return sales_; }

  RebookPlan Run() {
    RebookPlan plan;
    size_t s = 0;
    size_t e = 0;
    while (s < sales_.size() || e < splits_.size()) {
      if (e == splits_.size() || (s < sales_.size() && sales_[s].key < splits_[e].key)) {
        if (!Sell(sales_[s++], plan)) return plan;
      } else {
        Split(splits_[e++], plan);
      }
    }
    return plan;
  }

 private:
  // Re-selects the sale first in, first out among the blocks acquired on or
  // before its date. Returns false when they cannot cover it.
  bool Sell(const Sale& sale, RebookPlan& plan) {
    std::vector<ShareEntry> picks;
    double still = sale.shares;
    for (const Block& block : history_.blocks) {
      if (still <= 0 || sale.key.date < block.date) break;
      const double available = AvailableAt(state_, block.block_no, sale.key);
      if (available <= 0) continue;
      double taken = still;
      if (available <= still) {
        taken = available;
        still = RoundShares(still - available);
      } else {
        still = 0;
      }
      picks.push_back({block.block_id, block.block_no, taken});
    }
    if (still > 0) {
      plan.shortfall = Shortfall{sale.key.date, sale.shares, RoundShares(sale.shares - still)};
      return false;
    }
    std::map<int64_t, double> before;
    std::vector<std::pair<int64_t, double>> was;
    for (const Row& row : sale.rows) {
      before[row.block_no] = RoundShares(before[row.block_no] - row.shares);
      was.emplace_back(row.block_no, -row.shares);
    }
    std::map<int64_t, double> after;
    std::vector<std::pair<int64_t, double>> now;
    for (const ShareEntry& pick : picks) {
      after[pick.block_no] = pick.shares;
      now.emplace_back(pick.block_no, pick.shares);
    }
    if (before == after) {
      for (const Row& row : sale.rows) state_.Add(row);
      return true;
    }
    SaleChange change;
    change.date = sale.key.date;
    change.shares = sale.shares;
    change.notes = sale.notes;
    change.was = PicksText(history_, was);
    change.now = PicksText(history_, now);
    for (const Row& row : sale.rows) change.old_ids.push_back(row.unique_id);
    change.rows = ApportionSale(picks, sale.shares, sale.price, sale.fee);
    for (const SaleRow& written : change.rows) {
      Row row;
      row.table = Table::kSell;
      row.block_no = written.block_no;
      row.key = sale.key;
      row.shares = -written.shares;
      state_.Add(row);
    }
    plan.sales.push_back(std::move(change));
    return true;
  }

  // Recomputes the split's rows of the blocks whose shares on its date the
  // replay changed; a row of a block holding what it held is kept as
  // stored, with any correction made to it by hand. A split reaches every
  // block holding shares on its date, as a split of the company does,
  // unless a block that held shares then, untouched by the replay, has no
  // row of it: then it was entered for the blocks it names and keeps to
  // them.
  void Split(const SplitEvent& event, RebookPlan& plan) {
    std::set<int64_t> covered;
    for (const Row& row : event.rows) covered.insert(row.block_no);
    bool every_block = true;
    for (const Block& block : history_.blocks) {
      const double held = HeldAt(before_, block.block_no, event.key);
      if (!covered.contains(block.block_no) && held > 0 &&
          held == HeldAt(state_, block.block_no, event.key)) {
        every_block = false;
      }
    }
    for (const Block& block : history_.blocks) {
      if (!covered.contains(block.block_no) && !(every_block && block.date <= event.key.date)) {
        continue;
      }
      std::vector<Row> rows;
      for (const Row& row : event.rows) {
        if (row.block_no == block.block_no) rows.push_back(row);
      }
      if (rows.empty()) {
        Row row = event.rows.front();
        row.unique_id = 0;
        row.block_no = block.block_no;
        row.shares = 0;
        rows.push_back(row);
      }
      for (Row row : rows) {
        const double held = HeldAt(state_, block.block_no, event.key);
        const bool same = held == HeldAt(before_, block.block_no, event.key);
        if (row.unique_id != 0) before_.Add(row);
        if (row.unique_id != 0 && same) {
          state_.Add(row);
          continue;
        }
        const double old_shares = row.shares;
        if (held <= 0) {
          if (row.unique_id != 0) plan.splits.push_back(Change(row, old_shares, true));
          continue;
        }
        row.shares =
            SplitSharesAdded(static_cast<int16_t>(event.type), event.pre, event.post, held);
        if (row.unique_id == 0 || row.shares != old_shares) {
          plan.splits.push_back(Change(row, old_shares, false));
        }
        state_.Add(row);
      }
    }
  }

  SplitChange Change(const Row& row, double old_shares, bool remove) const {
    return {row.unique_id, row.block_no, history_.BlockId(row.block_no),
            row.key,       row.type,     row.pre,
            row.post,      row.shares,   old_shares,
            row.notes,     remove};
  }

  const History& history_;
  std::vector<Sale> sales_;
  std::vector<SplitEvent> splits_;
  BlockRows state_;
  // The history as stored, its rows added in the replay's order, so that
  // what a block held before the replay is read at the same point.
  BlockRows before_;
};

}  // namespace

RebookPlan PlanRebook(Database& db, int64_t sec_id, Date from) {
  const History history = ReadSecurityHistory(db, sec_id);
  Replay replay(history, from);
  RebookPlan plan;
  if (!replay.sales().empty()) plan = replay.Run();
  for (const Sale& sale : replay.sales()) plan.later.push_back({sale.key, sale.shares});
  return plan;
}

}  // namespace lotwise
