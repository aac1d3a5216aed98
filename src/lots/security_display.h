#pragma once

#include <cstdint>
#include <string>

namespace lotwise {

class Application;

// The security panel of the main window, kept in app.window.display. Every
// procedure traps its own errors (reported under its own name).

// Reads the grids of security `sec_id` into the panel and shows it: blocks
// oldest first with the first selected, its transactions under the filter
// "All", and the total shares. Name, CUSIP, second line and sell method stay
// as they are. Untrapped: the caller reports errors under its own name.
void FillSecDisplay(Application& app, int64_t sec_id);
// Hides the panel; its contents stay.
void HideSecDisplay(Application& app);
// Applies the filter now chosen in display.trans_filter and shows its
// caption.
void SetDisplayTrans(Application& app);
// Reloads the selected block's transactions under filter `type_index` (0 to
// 6) with the first row selected, and the list's caption. Keeps
// app.current.block_no/block_id equal to the selected block (0 and empty
// text when there is none).
void UpdateTransInBlock(Application& app, int16_t type_index);
// Recomputes the open security's total shares into display.total_shares,
// or shows "Recalculate" without reading the file when the recalculation
// option is off.
void UpdateSharesInSec(Application& app);
// As UpdateSharesInSec, whatever the option: a click on the total panel.
void RecalculateShares(Application& app);
// Reloads the blocks grid, selects the block `block_id` (or keeps the
// current row when empty text or not found) and reloads its transactions
// under the current filter.
void DisplayBlock(Application& app, const std::string& block_id = "");
// Selects row `index` of the blocks grid and shows its transactions
// ("Loading Transactions"). An index outside the grid changes nothing.
void SelectBlock(Application& app, int index);
// Writes a changed name and CUSIP into the panel when the security list's
// selected row holds `symbol`.
void ModifySecDisplay(Application& app, const std::string& symbol, const std::string& name,
                      const std::string& cusip);

}  // namespace lotwise
