#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "data/security_history.h"
#include "ground/date.h"
#include "lots/share_rules.h"

namespace lotwise {

class Database;

// A sale stored from the replay's first day on.
struct LaterSale {
  HistoryKey key;
  double shares = 0;
};

// A sale whose blocks the replay chose anew: its old rows and the new ones.
struct SaleChange {
  Date date;
  double shares = 0;
  std::string notes;
  std::vector<int64_t> old_ids;
  std::vector<SaleRow> rows;
  std::string was;  // "01/01/2024-1 (100), 02/01/2024-1 (20)"
  std::string now;
};

// A split or stock dividend row the replay recomputed: changed, added
// (unique id 0) or removed (its block held nothing on its date).
struct SplitChange {
  int64_t unique_id = 0;
  int64_t block_no = 0;
  std::string block_id;
  HistoryKey key;
  int64_t type = 0;
  double pre = 0;
  double post = 0;
  double shares = 0;
  double old_shares = 0;
  std::string notes;
  bool remove = false;
};

// The first sale the blocks, as they now stand, cannot cover.
struct Shortfall {
  Date date;
  double shares = 0;
  double held = 0;
};

struct RebookPlan {
  std::vector<LaterSale> later;
  std::vector<SaleChange> sales;
  std::vector<SplitChange> splits;
  std::optional<Shortfall> shortfall;  // the replay stopped there

  bool Empty() const { return sales.empty() && splits.empty(); }
};

// Replays the history of security `sec_id` from its first sale dated `from`
// or later, in memory: every sale from there on is taken again first in,
// first out among the blocks acquired on or before its date, and every
// split or stock dividend after that first sale is recomputed where the
// replay changed what its block held. Returns what would change; reads
// the file only.
RebookPlan PlanRebook(Database& db, int64_t sec_id, Date from);

}  // namespace lotwise
