#include "lots/rebook.h"

#include <set>
#include <string>

#include "app/application.h"
#include "app/environment.h"
#include "app/error_handler.h"
#include "app/number_text.h"
#include "app/security_display.h"
#include "app/sell_method_codes.h"
#include "app/ui_port.h"
#include "data/database.h"
#include "data/taxpayer_file.h"
#include "data/transaction_store.h"
#include "lots/rebook_plan.h"

namespace lotwise {

namespace {

// True iff the security has a sale after `entry` in its blocks' history:
// one query, so that an entry made in date order reads no history.
bool HasSaleAfter(Database& db, int64_t sec_id, HistoryKey entry) {
  return db
      .Select(
          R"(SELECT 1 AS found FROM "Sell" AS S JOIN "Blocks" AS B ON B."Block No" = S."Block No" )"
          R"(WHERE B."Sec ID" = :sec AND (S."Date" > :d OR (S."Date" = :d AND :sell > :prec)) )"
          R"(LIMIT 1)",
          {{"sec", sec_id}, {"d", entry.date}, {"sell", kPrecSell}, {"prec", entry.prec}})
      .Next();
}

int16_t SellMethodOf(Database& db, int64_t sec_id) {
  Query q = db.Select(R"(SELECT M."Sell Method" FROM "Security" AS S JOIN "Sell Method" AS M )"
                      R"(ON M."Sec Symbol" = S."Sec Symbol" WHERE S."Sec ID" = :sec)",
                      {{"sec", sec_id}});
  return q.Next() ? static_cast<int16_t>(q.Int("Sell Method")) : kSellNotSelected;
}

std::string SaleLine(Date date, double shares) {
  return "the sale of " + NumberText(shares) + " shares on " + date.ToString();
}

Date Today(Application& app) {
  LocalTime now = app.env().Now();
  return Date::FromYmd(now.year, now.month, now.day);
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
  const Date today = Today(app);
  Database::Transaction unit(db);
  for (const SaleChange& sale : plan.sales) {
    for (int64_t id : sale.old_ids) {
      db.Execute(R"(DELETE FROM "Sell" WHERE "Unique ID" = :id)", {{"id", id}});
    }
    for (const SaleRow& row : sale.rows) {
      db.Execute(
          R"(INSERT INTO "Sell" ("Block No", "Date", "Sale Price", "Fee", "Shares", "Notes", )"
          R"("Prec Sort") VALUES (:n, :date, :price, :fee, :shares, :notes, :prec))",
          {{"n", row.block_no},
           {"date", sale.date},
           {"price", row.price},
           {"fee", row.fee},
           {"shares", -row.shares},
           {"notes", sale.notes},
           {"prec", kPrecSell}});
    }
    LogChange(app, app.current.port_name, sec_id, today,
              "Re-booked Sell of " + NumberText(sale.shares) + " shares on " +
                  sale.date.ToString() + " from blocks " + sale.was + " to " + sale.now);
    if (app.ended) return false;
  }
  for (const SplitChange& row : plan.splits) {
    if (row.remove) {
      db.Execute(R"(DELETE FROM "Split" WHERE "Unique ID" = :id)", {{"id", row.unique_id}});
    } else if (row.unique_id == 0) {
      db.Execute(
          R"(INSERT INTO "Split" ("Block No", "Date", "Type", "Pre Ratio", "Post Ratio", "Shares", )"
          R"("Notes", "Prec Sort") VALUES (:n, :date, :type, :pre, :post, :shares, :notes, :prec))",
          {{"n", row.block_no},
           {"date", row.key.date},
           {"type", row.type},
           {"pre", row.pre},
           {"post", row.post},
           {"shares", row.shares},
           {"notes", row.notes},
           {"prec", row.key.prec}});
    } else {
      db.Execute(R"(UPDATE "Split" SET "Shares" = :shares WHERE "Unique ID" = :id)",
                 {{"shares", row.shares}, {"id", row.unique_id}});
    }
    LogChange(app, app.current.port_name, sec_id, today, ChangeLine(row));
    if (app.ended) return false;
  }
  unit.Commit();
  return true;
}

}  // namespace

void OfferRebookLaterSales(Application& app, int64_t sec_id, Date date, int16_t prec) {
  app.rebooked_sales.clear();
  TrapVoid(app, "OfferRebookLaterSales", [&] {
    if (!app.client || !HasSaleAfter(*app.client, sec_id, {date, prec})) return;
    // The replay starts with the day's first sale: one the entry does not
    // reach comes out as it was and is left alone.
    const RebookPlan plan = PlanRebook(*app.client, sec_id, date);
    UiPort& ui = app.ui();

    // Without a method no sale was made through the sale dialog, which
    // fixes it: there is no rule to hold the later sales to.
    const int16_t method = SellMethodOf(*app.client, sec_id);
    if (method == kSellNotSelected) return;
    if (UserSelectsShares(method)) {
      // A sale chosen by hand takes only shares no later sale took, so
      // the later sales need no review on its account.
      if (prec == kPrecSell) return;
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
