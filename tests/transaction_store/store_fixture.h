#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/currency.h"
#include "app/date.h"
#include "data/database.h"
#include "data/transaction_store.h"
#include "storage/storage_fixture.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

// Values as the user types them: "mm/dd/yyyy", "1234.5".
inline Date D(const char* text) { return *Date::Parse(text); }
inline Currency Money(const char* text) { return *Currency::Parse(text); }

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
    app_->client->Execute(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line", "Client Code") )"
                          R"(VALUES (:p, ' ', 'DOE01') ON CONFLICT DO NOTHING)",
                          {{"p", port}});
    app_->client->Execute(
        R"(INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line") VALUES (:s, :p, ' '))",
        {{"s", symbol}, {"p", port}});
    return app_->client->LastInsertId();
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
