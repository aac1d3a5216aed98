#include "lots/rebook.h"

#include <set>
#include <string>

#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/security_history.h"
#include "data/transaction_store.h"
#include "ground/environment.h"
#include "ground/number_text.h"
#include "ground/sell_method_codes.h"
#include "ground/ui_port.h"
#include "lots/rebook_plan.h"
#include "lots/security_display.h"

namespace lotwise {

namespace {

std::string SaleLine(Date date, double shares) {
  return "the sale of " + NumberText(shares) + " shares on " + date.ToString();
}

std::string ChangeLine(const SplitChange& row) {
  if (row.remove) {
    return "Removed Split (Unique ID = " + std::to_string(row.unique_id) + ") of block " +
           row.block_id + ": it held no shares on " + row.key.date.ToString();
  }
  if (row.unique_id == 0) {
    return "Added Split of " + NumberText(row.shares) + " shares on " + row.key.date.ToString() +
           " to block " + row.block_id;
  }
  return "Changed Split (Unique ID = " + std::to_string(row.unique_id) + "), field 'Shares' from " +
         NumberText(row.old_shares) + " to " + NumberText(row.shares);
}

// Writes the plan and its change-log lines in one unit. Returns false when
// the log could not be written (the program is then ending).
bool Apply(Application& app, int64_t sec_id, const RebookPlan& plan) {
  Database& db = *app.client;
  const Date today = Today(app.env());
  Database::Transaction unit(db);
  for (const SaleChange& sale : plan.sales) {
    for (int64_t id : sale.old_ids) {
      DeleteSellRow(db, id);
    }
    for (const SaleRow& row : sale.rows) {
      InsertSellRow(db, row.block_no, sale.date, row.price, row.fee, -row.shares, sale.notes);
    }
    LogChange(app, app.current.port_name, sec_id, today,
              "Re-booked Sell of " + NumberText(sale.shares) + " shares on " +
                  sale.date.ToString() + " from blocks " + sale.was + " to " + sale.now);
  }
  for (const SplitChange& row : plan.splits) {
    if (row.remove) {
      DeleteSplitRow(db, row.unique_id);
    } else if (row.unique_id == 0) {
      InsertSplitRow(db, row.block_no, static_cast<int16_t>(row.type), row.key.date, row.pre,
                     row.post, row.shares, row.notes);
    } else {
      SetSplitShares(db, row.unique_id, row.shares);
    }
    LogChange(app, app.current.port_name, sec_id, today, ChangeLine(row));
  }
  unit.Commit();
  return true;
}

}  // namespace

void OfferRebookLaterSales(Application& app, int64_t sec_id, Date date, int16_t prec) {
  app.rebooked_sales.clear();
  TrapVoid(app, "OfferRebookLaterSales", [&] {
    if (!app.client || !HasSaleAfter(*app.client, sec_id, {date, prec})) return;
    // Without a method no sale was made through the sale dialog, which
    // fixes it: there is no rule to hold the later sales to. A sale chosen
    // by hand takes only shares no later sale took, so the later sales need
    // no review on its account.
    const SellMethod method = SellMethodOfSecurity(*app.client, sec_id);
    if (method == SellMethod::kNotSelected) return;
    if (UserSelectsShares(method) && prec == kPrecSell) return;
    // The replay starts with the day's first sale: one the entry does not
    // reach comes out as it was and is left alone.
    const RebookPlan plan = PlanRebook(*app.client, sec_id, date);
    UiPort& ui = app.ui();

    if (UserSelectsShares(method)) {
      std::string text =
          "This entry is dated before sales already entered for this security. Their blocks were "
          "chosen by hand and are left as they are; please review these sales:";
      for (const LaterSale& sale : plan.later) {
        if (HistoryKey{date, prec} < sale.key) {
          text += "\n" + SaleLine(sale.key.date, sale.shares);
        }
      }
      ui.MessageBox(text, "Review later sales", Icon::kInformation, Buttons::kOk);
      return;
    }

    if (plan.shortfall) {
      ui.MessageBox("The sale of " + NumberText(plan.shortfall->shares) + " shares on " +
                        plan.shortfall->date.ToString() +
                        " can not be re-booked: the blocks held only " +
                        NumberText(plan.shortfall->held) +
                        " shares on that date. The later sales are left as they were entered; "
                        "please review the transactions of this security.",
                    "Sales not re-booked", Icon::kExclamation, Buttons::kOk);
      return;
    }
    if (plan.Empty()) return;

    std::string text =
        "This entry is dated before sales already entered for this security. Taking their shares "
        "first in, first out as the blocks now stand changes:";
    for (const SaleChange& sale : plan.sales) text += "\n" + SaleLine(sale.date, sale.shares);
    std::set<Date> split_dates;
    for (const SplitChange& change : plan.splits) split_dates.insert(change.key.date);
    for (Date split_date : split_dates) {
      text += "\nthe stock split (or dividend) on " + split_date.ToString();
    }
    text += "\nDo you want to re-book these sales now? Each change is recorded in the change log.";
    if (ui.MessageBox(text, "Re-book later sales?", Icon::kQuestion, Buttons::kYesNo) !=
        Answer::kYes) {
      return;
    }
    if (!Apply(app, sec_id, plan)) return;
    for (const SaleChange& sale : plan.sales)
      app.rebooked_sales.push_back({sale.date, sale.shares});
    if (app.window.display.visible && app.current.sec_id == sec_id) {
      UpdateTransInBlock(app, app.window.display.trans_filter);
      UpdateSharesInSec(app);
    }
  });
}

}  // namespace lotwise
