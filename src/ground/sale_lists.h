#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ground/date.h"

namespace lotwise {

// One entry of the shares lists of a sale: a block and a number of shares.
struct ShareEntry {
  std::string block_id;  // empty when the FIFO selection made the entry
  int64_t block_no = 0;
  double shares = 0;
};

// A list with its "empty" flag, true while it holds nothing valid.
struct ShareList {
  std::vector<ShareEntry> entries;
  bool empty = true;

  void Clear() {
    entries.clear();
    empty = true;
  }
};

// The two lists of one sale, kept from the selection until the sale is
// stored: the shares selected per block, which the sale writes, and the
// shares still left per block for the specific-identification choice.
struct SaleLists {
  ShareList selected;
  ShareList left;

  void Clear() {
    selected.Clear();
    left.Clear();
  }
};

// A sale whose blocks were chosen again because of an entry dated before
// it.
struct RebookedSale {
  Date date;
  double shares = 0;
};

}  // namespace lotwise
