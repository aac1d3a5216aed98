#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "data/transaction_store.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "ground/sale_lists.h"
#include "ground/sell_method_codes.h"
#include "ground/ui_port.h"
#include "lots/sell_shares_form.h"

namespace lotwise {

class Application;

// Returns the method named exactly `name` (the four names and "NOT
// SELECTED"). Any other text is reported as an incorrect parameter and gives
// kNotSelected, so that no sale can be made with it.
SellMethod GetSellMethod(Application& app, std::string_view name);
// Returns the name of method `code`; a number outside the five (as read
// from storage) is reported as an incorrect parameter and gives empty text.
std::string GetSellName(Application& app, SellMethod code);

// Opens the sale dialog for the current security, unless it has no block.
void ShowSellShares(Application& app);
// Asks whether to replace the whole sale of the security dated `date`, then
// opens the sale dialog filled with that sale's totals and block choice.
// Accepting it replaces every Sell row of the security on that date with
// the new sale, in one unit of work: until the new sale is stored, the old
// one stays.
void ShowModEntireSell(Application& app, int64_t sec_id, Date date);

// Field checks, run when the field loses the focus. They warn about
// doubtful values and reset negative ones to 0; the sale price and fee
// checks also recompute the total sale.
void CheckDateSS(Application& app, SellSharesForm& form);
void CheckNumSharesSS(Application& app, SellSharesForm& form);
void CheckSalePriceSS(Application& app, SellSharesForm& form);
void CheckFeeSS(Application& app, SellSharesForm& form);
// A click on the shares field: where the user picks the blocks, opens the
// selection.
void NumSharesSS_Click(Application& app, SellSharesForm& form);
// The method drop-down changed: a change away from a method already in
// force is asked, announced, stored and logged; declining puts the old
// method back. Then enables the selection or the typed shares.
void SellMethodChange(Application& app, SellSharesForm& form);

// The OK button (`modify` true when the caption is "Modify Entire Sell"):
// checks the entry, selects the shares, writes the sale and fixes the
// security's method. Sets form.accepted and form.closed when the sale is
// stored; otherwise the dialog stays open with the user's values (and a
// replaced sale is kept as it was).
void SellShares_OK(Application& app, SellSharesForm& form, bool modify);
// The Cancel button: forgets the selection and closes the dialog.
void SellShares_Cancel(Application& app, SellSharesForm& form);

// Fills app.sale_lists.selected from the current security's blocks, oldest
// first, with `to_sell` shares sold on `date`: only blocks acquired on or
// before that date, each with what it may give a sale on that date
// (ForEachBlockHeldOn), as the file stands without the rows of `replaced`
// (a sale being replaced). Returns true iff they cover the sale; otherwise
// tells the user how many shares there are (or that no block is that old)
// and leaves both lists empty.
bool SelectSharesByFIFO(Application& app, double to_sell, Date date,
                        const ReplacedEntry* replaced = nullptr);

// Writes one Sell row per entry of `selected`, apportioning the sale price
// and fee by shares (each to the cent, the last row taking the rounding
// difference). Every same-date question is asked first; then the rows of
// `replaced` (when given) are deleted and the new rows written in one unit
// of work, committed only when every row was written, so that a replaced
// sale is gone only once its successor is stored. `*committed` (when given)
// is set iff that unit committed.
//
// Returns false only after an error it trapped itself (or one that is
// ending the program). A sale the user declined at a question, or one that
// was rolled back after AddSell reported its own error, still returns true:
// the user has been told, and the caller's "not completed" message would
// only repeat it. Read `*committed` to know whether the sale was stored.
bool AddAllSales(Application& app, const ShareList& selected, Date date, double shares,
                 Currency sale_price, Currency fee, const std::string& notes,
                 const ReplacedEntry* replaced = nullptr, bool* committed = nullptr);

// The help-bar text of a control of the sale dialog.
std::string HelpText(const SellSharesForm& form, std::string_view control);

}  // namespace lotwise
