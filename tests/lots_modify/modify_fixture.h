#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "app/security_commands.h"
#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "lots/security_display.h"
#include "support/app_fixture.h"
#include "support/values.h"

namespace lotwise::testing {

// A Taxpayer File with portfolio "Growth" holding IBM, known to the Security
// Symbols File, and helpers that enter transactions and open the security
// in the main window's display the way the user would.
class LotsModifyTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    SecurityName("IBM", "International Business Machines", "459200101");
    Portfolio("Growth");
    sec_id_ = Security("IBM");
    SellMethod("IBM", 1);
    app_->current.port_name = "Growth";
    app_->current.sec_id = sec_id_;
    app_->current.sec_symbol = "IBM";
  }

  std::string Buy(const char* date, double shares, const char* cost, int16_t type = kTypeBuy) {
    std::string block_id;
    EXPECT_TRUE(
        AddBuy(*app_, sec_id_, block_id, type, D(date), Money(cost), shares, Money("10"), ""));
    return block_id;
  }

  // Opens IBM in the display and selects the first transaction whose
  // listed text starts with `listed`, in whichever block holds one.
  void Open(std::string_view listed = "") {
    ShowSecDisplay(*app_, "IBM");
    SecurityDisplay& display = app_->window.display;
    for (size_t b = 0; b < display.blocks.size() && !listed.empty(); ++b) {
      SelectBlock(*app_, static_cast<int>(b));
      for (size_t i = 0; i < display.transactions.size(); ++i) {
        if (display.transactions[i].transaction.starts_with(listed)) {
          display.selected_transaction = static_cast<int>(i);
          return;
        }
      }
    }
    EXPECT_TRUE(listed.empty()) << "no " << listed;
  }

  // Opens IBM with block `block_id` selected.
  void OpenBlock(const std::string& block_id) {
    ShowSecDisplay(*app_, "IBM");
    const std::vector<BlockRow>& blocks = app_->window.display.blocks;
    for (size_t b = 0; b < blocks.size(); ++b) {
      if (blocks[b].block_id == block_id) SelectBlock(*app_, static_cast<int>(b));
    }
    EXPECT_EQ(app_->current.block_id, block_id);
  }

  // The change log's lines, oldest first, each ended by a newline.
  std::string Changes() {
    std::string lines;
    Query q = app_->client->Select(R"(SELECT "Description" FROM "Change" ORDER BY rowid)");
    while (q.Next()) lines += q.Text("Description") + "\n";
    return lines;
  }

  // Every transaction row and block, as one text, to prove nothing changed.
  std::string Snapshot() {
    std::string all;
    auto db = Database::Open(client_path_);
    for (const char* table : {"Blocks", "Buy", "Sell", "Split", "Adjust", "Change"}) {
      Query q = db->Select(std::string("SELECT * FROM \"") + table + "\" ORDER BY 1, 2");
      while (q.Next()) {
        all += table;
        for (int c = 0; c < q.ColumnCount(); ++c) all += "|" + q.Text(q.ColumnName(c).c_str());
        all += "\n";
      }
    }
    return all;
  }

  int64_t sec_id_ = 0;
};

}  // namespace lotwise::testing
