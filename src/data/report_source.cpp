#include "data/report_source.h"

#include <algorithm>
#include <iterator>

#include "data/database.h"

namespace lotwise {

namespace {

// The blocks of one security, each announced by a header row (Row Kind 0).
// One statement per security and portfolio instead of one per block keeps
// a whole taxpayer's walk to one pass over the transaction tables.
constexpr const char* kWalkRowsSql =
    R"(SELECT B."Date" AS "Block Date", B."Block ID" AS "Block ID", B."Block No" AS "Block No", )"
    R"(0 AS "Row Kind", NULL AS "Date", NULL AS "Transaction", 0 AS "Cost", 0 AS "Sale Price", )"
    R"(0 AS "Shares", 0 AS "Fee", 0 AS "Prec Sort", 0 AS "Unique ID" )"
    R"(FROM "Blocks" AS B WHERE B."Sec ID" = :id )"
    R"(UNION ALL SELECT B."Date", B."Block ID", B."Block No", 1, T."Date", )"
    R"(CASE T."Type" WHEN 10 THEN 'Buy' ELSE 'Reinvestment' END, T."Cost", 0, T."Shares", )"
    R"(T."Fee", T."Prec Sort", T."Unique ID" FROM "Blocks" AS B )"
    R"(JOIN "Buy" AS T ON T."Block No" = B."Block No" WHERE B."Sec ID" = :id AND T."Type" IN (10, 20) )"
    R"(AND T."Date" <= :ye )"
    R"(UNION ALL SELECT B."Date", B."Block ID", B."Block No", 1, T."Date", 'Sell', 0, )"
    R"(T."Sale Price", T."Shares", T."Fee", T."Prec Sort", T."Unique ID" FROM "Blocks" AS B )"
    R"(JOIN "Sell" AS T ON T."Block No" = B."Block No" WHERE B."Sec ID" = :id AND T."Date" <= :ye )"
    R"(UNION ALL SELECT B."Date", B."Block ID", B."Block No", 1, T."Date", )"
    R"(CASE T."Type" WHEN 11 THEN 'Stock Split (' || lw_number_text(T."Pre Ratio") || ' to ' || )"
    R"(lw_number_text(T."Post Ratio") || ')' ELSE 'Stock Div. (' || lw_number_text(T."Pre Ratio") )"
    R"(|| ' per ' || lw_number_text(T."Post Ratio") || ')' END, 0, 0, T."Shares", 0, )"
    R"(T."Prec Sort", T."Unique ID" FROM "Blocks" AS B )"
    R"(JOIN "Split" AS T ON T."Block No" = B."Block No" WHERE B."Sec ID" = :id AND T."Type" IN (11, 21) )"
    R"(AND T."Date" <= :ye )"
    R"(UNION ALL SELECT B."Date", B."Block ID", B."Block No", 1, T."Date", 'Adjustment', T."Cost", )"
    R"(0, T."Shares", 0, T."Prec Sort", T."Unique ID" FROM "Blocks" AS B )"
    R"(JOIN "Adjust" AS T ON T."Block No" = B."Block No" WHERE B."Sec ID" = :id AND T."Date" <= :ye )"
    R"(ORDER BY "Block Date", "Block ID", "Block No", "Row Kind", "Date", "Prec Sort", "Unique ID")";

int Digit(char c) { return c >= '0' && c <= '9' ? c - '0' : -1; }

// The rows of one of the saved per-table queries; `fill` reads the table's
// own fields.
template <class Fill>
std::vector<TransOnFile> ReadTrans(Database& client, std::string_view saved, const Params& params,
                                   Fill fill) {
  std::vector<TransOnFile> rows;
  Query q = client.SelectSaved(saved, params);
  while (q.Next()) {
    TransOnFile& row = rows.emplace_back();
    row.block_no = q.Int("Block No");
    row.unique_id = q.Int("Unique ID");
    row.prec_sort = q.Int("Prec Sort");
    row.date = q.DateValue("Date");
    row.shares = q.Double("Shares");
    fill(q, row);
  }
  return rows;
}

}  // namespace

Date StoredDate(std::string_view text) {
  if (text.size() == 10 && text[4] == '-' && text[7] == '-') {
    int digits[8];
    int n = 0;
    for (size_t i : {0, 1, 2, 3, 5, 6, 8, 9}) digits[n++] = Digit(text[i]);
    if (std::all_of(std::begin(digits), std::end(digits), [](int d) { return d >= 0; })) {
      const int year = digits[0] * 1000 + digits[1] * 100 + digits[2] * 10 + digits[3];
      const int month = digits[4] * 10 + digits[5];
      const int day = digits[6] * 10 + digits[7];
      if (Date::IsValidYmd(year, month, day)) return Date::FromYmd(year, month, day);
    }
  }
  return Date::ParseIso(text).value_or(Date());
}

void ReadWalkRows(Database& client, int64_t sec_id, Date year_end,
                  const std::function<void(WalkSourceRow&)>& each) {
  Query rows = client.Select(kWalkRowsSql, {{"id", sec_id}, {"ye", year_end}});
  WalkSourceRow row;
  while (rows.Next()) {
    row.header = rows.Int("Row Kind") == 0;
    if (row.header) {
      row.block_id = rows.Text("Block ID");
      row.block_date = StoredDate(rows.Text("Block Date"));
    } else {
      row.date = StoredDate(rows.Text("Date"));
      row.transaction = rows.Text("Transaction");
      row.prec_sort = static_cast<int16_t>(rows.Int("Prec Sort"));
      row.shares = rows.Double("Shares");
      row.sale_price = rows.Money("Sale Price");
      row.cost = rows.Money("Cost");
      row.fee = rows.Money("Fee");
    }
    each(row);
  }
}

std::vector<TransOnFile> BuysInSecurity(Database& client, int64_t sec_id) {
  return ReadTrans(client, "Buys In Security", {{"lSecID", sec_id}},
                   [](Query& q, TransOnFile& row) {
                     row.type = q.Int("Type");
                     row.cost = q.Money("Cost");
                     row.fee = q.Money("Fee");
                   });
}

std::vector<TransOnFile> SellsInBlock(Database& client, int64_t block_no) {
  return ReadTrans(client, "Sells In Block", {{"lBlockNo", block_no}},
                   [](Query& q, TransOnFile& row) {
                     row.fee = q.Money("Fee");
                     row.sale_price = q.Money("Sale Price");
                   });
}

std::vector<TransOnFile> SplitsInBlock(Database& client, int64_t block_no) {
  return ReadTrans(client, "Splits In Block", {{"lBlockNo", block_no}},
                   [](Query& q, TransOnFile& row) {
                     row.type = q.Int("Type");
                     row.pre_ratio = q.Double("Pre Ratio");
                     row.post_ratio = q.Double("Post Ratio");
                   });
}

std::vector<TransOnFile> AdjustsInBlock(Database& client, int64_t block_no) {
  return ReadTrans(client, "Adjusts In Block", {{"lBlockNo", block_no}},
                   [](Query& q, TransOnFile& row) { row.cost = q.Money("Cost"); });
}

}  // namespace lotwise
