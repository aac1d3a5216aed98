#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/app_state.h"
#include "data/application.h"
#include "data/database.h"
#include "data/transaction_store.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

// A taxpayer open with the portfolio "Growth" as the current portfolio (the
// state is still CLIENTOPEN), and helpers that fill it.
class WindowTest : public AppTest {
 protected:
  static constexpr const char* kPort = "Growth";

  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    Portfolio(kPort);
    app_->current.port_name = kPort;
  }

  // Adds `symbol` to the portfolio and, unless `name` is empty, to the
  // Security Symbols File. `second_line` null leaves the field null.
  int64_t AddSecurity(const std::string& symbol, const std::string& name = "",
                      const std::string& cusip = "NO CUSIP", const char* second_line = " ",
                      const std::string& port = kPort) {
    if (!name.empty()) SecurityName(symbol, name, cusip);
    return Security(symbol, port, second_line);
  }

  void SetSellMethod(const std::string& symbol, int method) { SellMethod(symbol, method); }

  // Opens a block of `sec_id` with a buy that must go through without a
  // question; returns the block's number.
  int64_t Buy(int64_t sec_id, const char* date, double shares, int16_t type = kTypeBuy) {
    std::string block_id;
    EXPECT_TRUE(AddBuy(*app_, sec_id, block_id, type, *Date::Parse(date),
                       Currency::FromCents(100000), shares, Currency(), ""));
    return BlockNo(block_id);
  }

  std::vector<std::string> DisplayedBlockIds() const {
    std::vector<std::string> ids;
    for (const BlockRow& row : app_->window.display.blocks) ids.push_back(row.block_id);
    return ids;
  }

  std::vector<std::string> DisplayedTransactions() const {
    std::vector<std::string> texts;
    for (const TransactionRow& row : app_->window.display.transactions) {
      texts.push_back(row.transaction);
    }
    return texts;
  }

  std::vector<std::string> ListedSymbols() const {
    std::vector<std::string> symbols;
    for (const SecurityRow& row : app_->window.securities) symbols.push_back(row.symbol);
    return symbols;
  }
};

}  // namespace lotwise::testing
