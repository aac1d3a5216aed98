#pragma once

#include <cstdint>
#include <string>

namespace lotwise {

class Application;

// The captions of the transaction-type filter, by index 0 to 6.
inline constexpr const char* kTransFilterCaptions[] = {
    "All", "Buy", "Reinvestment", "Sell", "Stock Split", "Dividend", "Adjustment"};

// Fills app.window.display for the security `symbol` of the current
// portfolio and shows it: name and CUSIP from the Security Symbols File
// (offering to re-enter a deleted symbol), second line and sell method,
// blocks oldest first with the first selected, its transactions under the
// filter "All", and the total shares. Sets app.current.sec_id/sec_symbol.
void ShowSecDisplay(Application& app, const std::string& symbol);
void HideSecDisplay(Application& app);
// Applies the filter now chosen in display.trans_filter.
void SetDisplayTrans(Application& app);
// Reloads the selected block's transactions under filter `type_index`.
void UpdateTransInBlock(Application& app, int16_t type_index);
// Recomputes the open security's total shares into display.total_shares,
// or shows "Recalculate" when the recalculation option is off.
void UpdateSharesInSec(Application& app);
// As UpdateSharesInSec, whatever the option: a click on the total panel.
void RecalculateShares(Application& app);
// Reloads the security list and opens its selected security.
void DisplaySecurity(Application& app);
// Reloads the blocks grid, selects the block `block_id` (or keeps the
// current row when empty text) and reloads its transactions.
void DisplayBlock(Application& app, const std::string& block_id = "");
// Selects row `index` of the blocks grid and shows its transactions
// ("Loading Transactions").
void SelectBlock(Application& app, int index);
// Writes a changed name and CUSIP into the panel when it shows `symbol`.
void ModifySecDisplay(Application& app, const std::string& symbol, const std::string& name,
                      const std::string& cusip);

}  // namespace lotwise
