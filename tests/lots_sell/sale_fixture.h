#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "app/security_commands.h"
#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "ground/number_text.h"
#include "lots/security_display.h"
#include "lots/sell_shares.h"
#include "lots/sell_specific.h"
#include "support/app_fixture.h"
#include "support/values.h"

namespace lotwise::testing {

using Rows = std::vector<std::string>;

// The security IBM ("Intl Business & Machines") of portfolio "Growth", with
// helpers that open the security in the main window, play the dialogs and
// read the Sell rows back.
class SaleTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    Portfolio("Growth");
    sec_id_ = Security("IBM");
    app_->current.port_name = "Growth";
    SecurityName("IBM", "Intl Business & Machines");
  }

  // A block "date-seq" bought with `shares`, plus an adjustment when not 0.
  // A block "date-seq" bought with `shares`, plus an adjustment when not 0.
  int64_t Block(const char* date, double shares, double adjusted = 0, const char* seq = "1") {
    const int64_t block_no =
        Buy(sec_id_, date, shares, "0", "0", kTypeBuy, std::string(date) + "-" + seq);
    if (adjusted != 0) Adjust(block_no, date, adjusted);
    return block_no;
  }

  void OpenSecurity(lotwise::SellMethod method) {
    SellMethod("IBM", method);
    ShowSecDisplay(*app_, "IBM");
    ASSERT_EQ(app_->window.display.sell_method, method);
  }

  void OnSale(std::function<void(SellSharesForm&)> script) {
    OnDialog<SellSharesForm>("dlgSellShares", std::move(script));
  }

  static void Fill(SellSharesForm& form, double shares, const char* price, const char* fee = "0") {
    form.date = "06/03/2024";
    form.num_shares = shares;
    form.sale_price = Money(price);
    form.fee = Money(fee);
  }

  // The Sell rows dated `date`, oldest block first: "block id shares price fee".
  Rows SellRows(const char* date = "06/03/2024") {
    Rows rows;
    Query q = app_->client->Select(
        R"(SELECT B."Block ID", S."Shares", S."Sale Price", S."Fee" FROM "Sell" AS S )"
        R"(JOIN "Blocks" AS B ON B."Block No" = S."Block No" WHERE S."Date" = :d )"
        R"(ORDER BY B."Date", B."Block ID")",
        {{"d", D(date)}});
    while (q.Next()) {
      rows.push_back(q.Text("Block ID") + " " + NumberText(q.Double("Shares")) + " " +
                     q.Money("Sale Price").ToString() + " " + q.Money("Fee").ToString());
    }
    return rows;
  }

  // The Split rows dated `date`, oldest block first: "block id shares".
  Rows SplitRows(const char* date) {
    Rows rows;
    Query q = app_->client->Select(
        R"(SELECT B."Block ID", S."Shares" FROM "Split" AS S JOIN "Blocks" AS B )"
        R"(ON B."Block No" = S."Block No" WHERE S."Date" = :d ORDER BY B."Date", B."Block ID")",
        {{"d", D(date)}});
    while (q.Next()) rows.push_back(q.Text("Block ID") + " " + NumberText(q.Double("Shares")));
    return rows;
  }

  std::optional<lotwise::SellMethod> StoredMethod() {
    Query q = app_->client->Select(R"(SELECT "Sell Method" FROM "Sell Method")");
    if (!q.Next()) return std::nullopt;
    return SellMethodFromCode(q.Int("Sell Method"));
  }

  Rows Changes() {
    Rows lines;
    Query q = app_->client->Select(R"(SELECT "Description" FROM "Change" ORDER BY rowid)");
    while (q.Next()) lines.push_back(q.Text("Description"));
    return lines;
  }

  int64_t sec_id_ = 0;
};

}  // namespace lotwise::testing
