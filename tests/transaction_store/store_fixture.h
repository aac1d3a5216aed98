#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data/database.h"
#include "data/transaction_store.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "storage/storage_fixture.h"
#include "support/app_fixture.h"
#include "support/values.h"

namespace lotwise::testing {

// A Taxpayer File open with one portfolio holding one security, which is
// the current security, and helpers that enter transactions into it.
class StoreTest : public AppTest {
 protected:
  static constexpr const char* kPort = "Growth";

  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    sec_id_ = AddSecurity(kPort, "IBM");
    app_->current.port_name = kPort;
    app_->current.sec_id = sec_id_;
    app_->current.sec_symbol = "IBM";
  }

  int64_t AddSecurity(const std::string& port, const std::string& symbol) {
    Portfolio(port);
    return Security(symbol, port);
  }

  // Enters a buy (or reinvestment) that must succeed without a question;
  // returns its block id.
  std::string BuyShares(const char* date, double shares, const char* cost, int16_t type = kTypeBuy,
                        const std::string& notes = "") {
    std::string block_id;
    EXPECT_TRUE(
        AddBuy(*app_, sec_id_, block_id, type, D(date), Money(cost), shares, Currency(), notes));
    return block_id;
  }

  int64_t sec_id_ = 0;
};

}  // namespace lotwise::testing
