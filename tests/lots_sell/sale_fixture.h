#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

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

// The security IBM ("Intl Business & Machines") of portfolio "Growth", with
// helpers that open the security in the main window, play the dialogs and
// read the rows back, each row's text joined by "; ".
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

  // The Sell (or Split) rows dated `date`, oldest block first: "block id
  // shares price fee" ("block id shares").
  std::string SellRows(const char* date = "06/03/2024", const char* table = "Sell") {
    const bool sell = std::string(table) == "Sell";
    Query q = app_->client->Select(
        std::string(R"(SELECT B."Block ID", S.* FROM ")") + table +
            R"(" AS S JOIN "Blocks" AS B ON B."Block No" = S."Block No" WHERE S."Date" = :d )"
            R"(ORDER BY B."Date", B."Block ID")",
        {{"d", D(date)}});
    std::string rows;
    while (q.Next()) {
      rows +=
          (rows.empty() ? "" : "; ") + q.Text("Block ID") + " " + NumberText(q.Double("Shares"));
      if (sell) rows += " " + q.Money("Sale Price").ToString() + " " + q.Money("Fee").ToString();
    }
    return rows;
  }

  std::optional<lotwise::SellMethod> StoredMethod() {
    Query q = app_->client->Select(R"(SELECT "Sell Method" FROM "Sell Method")");
    if (!q.Next()) return std::nullopt;
    return SellMethodFromCode(q.Int("Sell Method"));
  }

  // The change log, a line each.
  std::string Changes() {
    std::string lines;
    Query q = app_->client->Select(R"(SELECT "Description" FROM "Change" ORDER BY rowid)");
    while (q.Next()) lines += q.Text("Description") + "\n";
    return lines;
  }

  // Makes another connection hold the file's write lock until reset.
  std::unique_ptr<Database::Transaction> LockFileElsewhere() {
    Database::SetBusyTimeout(50);
    app_->client = Database::Open(client_path_);
    other_ = Database::Open(client_path_);
    Database::SetBusyTimeout(Database::kDefaultBusyTimeoutMs);
    return std::make_unique<Database::Transaction>(*other_);
  }

  int64_t sec_id_ = 0;
  std::unique_ptr<Database> other_;
};

}  // namespace lotwise::testing
