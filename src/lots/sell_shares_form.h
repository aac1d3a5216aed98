#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ground/currency.h"
#include "ground/date.h"
#include "ground/ui_port.h"

namespace lotwise {

// The captions that switch the sale dialog's mode.
inline constexpr const char* kSellSharesCaption = "Sell Shares";
inline constexpr const char* kModEntireSellCaption = "Modify Entire Sell";

// The sale dialog dlgSellShares. Its caption is its mode: "Sell Shares" or
// "Modify Entire Sell".
struct SellSharesForm : DialogForm {
  std::string date = kEmptyDateText;  // dtDate, as typed
  double num_shares = 0;              // DblNumShares, typed positive
  Currency sale_price;                // CurrSalePrice
  Currency fee;                       // CurrFee
  Currency total_sale;                // CurrTotalSale: sale price - fee
  // SScboSellMethod: its list (the four method names) and its text, which
  // is "NOT SELECTED" while the security has no method.
  std::vector<std::string> sell_methods;
  std::string sell_method;
  bool select_enabled = false;     // btnSelect
  bool num_shares_locked = false;  // DblNumShares read-only: filled by the selection
  std::string notes;               // txtNotes
  std::string security;            // lblSecurity, ampersands doubled
  // Modify Entire Sell: the sale being replaced, every Sell row of the
  // security on that date.
  int64_t mod_sec_id = 0;
  Date mod_date;
  // Set only when OK stored the sale: its unit of work committed.
  bool accepted = false;

  std::string_view Name() const override { return "dlgSellShares"; }
};

}  // namespace lotwise
