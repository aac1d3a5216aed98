#pragma once

#include <cstdint>
#include <vector>

#include "ground/currency.h"
#include "ground/date.h"
#include "ground/sale_lists.h"
#include "lots/share_rules.h"

namespace lotwise {

class Application;

// To be called once an entry that changes what the blocks of security
// `sec_id` hold (a buy, reinvestment, split, stock dividend, adjustment or
// sale entered, modified or removed) has been committed; `date` and `prec`
// (its same-date rank, "Prec Sort") place it in the blocks' history. When
// sales come after it, says so: under FIFO and single-category average it
// offers to re-book every sale from that day on (each re-selected in date
// order with its date, shares, proceeds and fees, and the splits and stock
// dividends between them recomputed on what each block then holds, all in
// one unit of work, each change logged), asking only when a sale's blocks
// would change; under the methods where the user picks the blocks it lists
// the later sales to review. The sales re-booked are left in
// app.rebooked_sales. Declining keeps every row as it is.
void OfferRebookLaterSales(Application& app, int64_t sec_id, Date date, int16_t prec);

}  // namespace lotwise
