#include "lots/share_rules.h"

#include "data/transaction_store.h"
#include "ground/value_helpers.h"

namespace lotwise {

std::vector<SaleRow> ApportionSale(const std::vector<ShareEntry>& entries, double shares,
                                   Currency sale_price, Currency fee) {
  double price_per_share = 0;
  double fee_per_share = 0;
  if (shares != 0) {
    price_per_share = sale_price.ToDouble() / shares;
    fee_per_share = fee.ToDouble() / shares;
  }
  std::vector<SaleRow> rows;
  Currency price_total;
  Currency fee_total;
  for (size_t i = 0; i < entries.size(); ++i) {
    SaleRow row{entries[i].block_no, entries[i].shares,
                Currency::FromDouble(price_per_share * entries[i].shares).RoundedToCent(),
                Currency::FromDouble(fee_per_share * entries[i].shares).RoundedToCent()};
    price_total += row.price;
    fee_total += row.fee;
    if (i + 1 == entries.size()) {
      row.price += sale_price - price_total;
      row.fee += fee - fee_total;
    }
    rows.push_back(row);
  }
  return rows;
}

double SplitSharesAdded(int16_t type, double pre, double post, double shares) {
  if (post == 0) return 0;
  const double added = type == kTypeSplit ? pre / post * shares - shares : pre / post * shares;
  // RoundDouble moves every negative amount toward zero, even an exact one
  // (-50 would become -49.99999): a reverse split must take away exactly
  // what it says, so the decrease is rounded by its size.
  return added < 0 ? -RoundShares(-added) : RoundShares(added);
}

}  // namespace lotwise
