#pragma once

#include <gtest/gtest.h>

#include <QDialog>
#include <functional>
#include <string>
#include <vector>

#include "app/security_commands.h"
#include "data/application.h"
#include "data/database.h"
#include "data/transaction_store.h"
#include "ground/number_text.h"
#include "lots/security_display.h"
#include "support/app_fixture.h"
#include "support/real_windows.h"
#include "support/values.h"
#include "ui/form_widgets.h"

namespace lotwise::testing {

using Strings = std::vector<std::string>;

// The security "T" ("AT&T") of portfolio "Growth", and the real windows of
// the lot dialogs shown offscreen: a test scripts each window it expects
// with a drive that plays the user's part on the real widgets while the
// window runs modally; message boxes stay scripted on ui_.
class LotWindowTest : public AppTest {
 protected:
  using Drive = std::function<void(QDialog&)>;

  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    Portfolio("Growth");
    sec_id_ = Security("T");
    SecurityName("T", "AT&T");
    app_->current.port_name = "Growth";
    app_->current.sec_id = sec_id_;
    app_->current.sec_symbol = "T";
  }

  // Expects the window of form `name` next (see ShowWindow).
  void OnWindow(const char* name, Drive drive) {
    testing::OnWindow(ui_, *app_, name, std::move(drive));
  }

  void Buy(Day date, double shares, Amount cost) { Scenario::Buy(sec_id_, date, shares, cost); }
  // Gives the security its sell method and opens it in the main window.
  void Open(lotwise::SellMethod method) {
    SellMethod("T", method);
    ShowSecDisplay(*app_, "T");
  }

  // Each row of `sql` with its columns joined by "|"; `kinds` gives each
  // column's kind: t text, n number, m money.
  Strings Rows(const char* sql, const char* kinds) {
    Strings rows;
    Query q = app_->client->Select(sql);
    while (q.Next()) {
      std::string row;
      for (int i = 0; kinds[i] != '\0'; ++i) {
        const std::string column = q.ColumnName(i);
        if (i > 0) row += "|";
        if (kinds[i] == 'n') row += NumberText(q.Double(column.c_str()));
        if (kinds[i] == 'm') row += q.Money(column.c_str()).ToString();
        if (kinds[i] == 't') row += q.Text(column.c_str());
      }
      rows.push_back(row);
    }
    return rows;
  }
  Strings BuyRows() {
    return Rows(R"(SELECT B."Block ID", T."Shares", T."Cost", T."Fee", T."Notes" FROM "Buy" AS T )"
                R"(JOIN "Blocks" AS B USING ("Block No") ORDER BY B."Date", B."Block ID")",
                "tnmmt");
  }
  Strings SellRows() {
    return Rows(R"(SELECT B."Block ID", T."Shares", T."Sale Price", T."Fee" FROM "Sell" AS T )"
                R"(JOIN "Blocks" AS B USING ("Block No") ORDER BY B."Date", B."Block ID")",
                "tnmm");
  }

  int64_t sec_id_ = 0;
};

}  // namespace lotwise::testing
