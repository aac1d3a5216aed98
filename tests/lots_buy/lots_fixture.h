#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "data/database.h"
#include "data/error_handler.h"
#include "data/transaction_store.h"
#include "lots/security_display.h"
#include "support/app_fixture.h"
#include "support/values.h"

namespace lotwise::testing {

// An open security "T" ("AT&T") in portfolio "Growth" as the main window shows
// it, with helpers that play a dialog, select a block and read rows back.
class LotsTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    Portfolio("Growth");
    sec_id_ = Security("T");
    app_->current.port_name = "Growth";
    app_->current.sec_id = sec_id_;
    app_->current.sec_symbol = "T";
    app_->window.display.visible = true;
    app_->window.display.sec_name = "AT&T";
    help_mark_ = ui_.help_texts().size();
  }

  // Reloads the blocks grid as the main window does and selects the block
  // `block_id` (the first when empty) with its transactions.
  void LoadBlocks(const std::string& block_id = "") {
    app_->window.display.selected_block = -1;
    DisplayBlock(*app_, block_id);
    help_mark_ = ui_.help_texts().size();
  }

  // Enters a buy that must succeed without a question;
  // returns its block id.
  std::string BuyShares(const char* date, double shares, const char* cost) {
    std::string block_id;
    EXPECT_TRUE(
        AddBuy(*app_, sec_id_, block_id, kTypeBuy, D(date), Money(cost), shares, Currency(), ""));
    return block_id;
  }

  // Enters a sale row straight into the file.
  void SellShares(const std::string& block_id, const char* date, double shares) {
    ASSERT_TRUE(AddSell(*app_, BlockNo(block_id), D(date), Money("100"), Currency(), -shares, ""));
  }

  // The help-bar texts shown since the test's set-up.
  std::vector<std::string> HelpTexts() const {
    return {ui_.help_texts().begin() + static_cast<long>(help_mark_), ui_.help_texts().end()};
  }

  int64_t sec_id_ = 0;
  size_t help_mark_ = 0;
};

}  // namespace lotwise::testing
