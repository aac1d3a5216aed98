#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/currency.h"
#include "app/date.h"
#include "data/database.h"
#include "data/transaction_store.h"
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

  int64_t BlockNo(const std::string& block_id) {
    Query q = app_->client->Select(R"(SELECT "Block No" FROM "Blocks" WHERE "Block ID" = :id)",
                                   {{"id", block_id}});
    EXPECT_TRUE(q.Next()) << block_id;
    return q.Int("Block No");
  }

  int64_t LastUniqueId(const std::string& table) {
    Query q = app_->client->Select("SELECT max(\"Unique ID\") AS id FROM \"" + table + "\"");
    q.Next();
    return q.Int("id");
  }

  // The security's block ids, oldest first.
  std::vector<std::string> BlockIds() {
    std::vector<std::string> ids;
    Query q = app_->client->Select(
        R"(SELECT "Block ID" FROM "Blocks" WHERE "Sec ID" = :s ORDER BY "Date", "Block ID")",
        {{"s", sec_id_}});
    while (q.Next()) ids.push_back(q.Text("Block ID"));
    return ids;
  }

  std::vector<std::string> ChangeDescriptions() {
    std::vector<std::string> lines;
    Query q = app_->client->Select(R"(SELECT "Description" FROM "Change" ORDER BY rowid)");
    while (q.Next()) lines.push_back(q.Text("Description"));
    return lines;
  }

  int64_t sec_id_ = 0;
};

}  // namespace lotwise::testing
