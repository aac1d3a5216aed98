#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "app/add_mod_sec.h"
#include "app/sec_symbol.h"
#include "app/taxpayer_file.h"
#include "data/application.h"
#include "data/database.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

// A central file knowing IBM, and an open Taxpayer File with the open
// portfolio "Growth".
class SecuritiesTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    SecurityName("IBM", "International Business Machines", "459200101");
    ASSERT_TRUE(NewPort(*app_, "Growth", ""));
  }

  // "symbol|name|cusip" of the central row (compared exactly), or "-".
  std::string CentralSec(const std::string& symbol) {
    Query q = app_->central->Select(
        R"(SELECT * FROM "Securities" WHERE "Sec Symbol" = :s COLLATE BINARY)", {{"s", symbol}});
    if (!q.Next()) return "-";
    return q.Text("Sec Symbol") + "|" + q.Text("Sec Name") + "|" + q.Text("CUSIP");
  }

  // "symbol|2nd line;" of each security of the portfolio, by symbol.
  std::string PortfolioSecs() {
    std::string out;
    Query q = app_->client->SelectSaved("Secs In Port", {{"sPortName", "Growth"}});
    while (q.Next()) out += q.Text("Sec Symbol") + "|" + q.Text("2nd Line") + ";";
    return out;
  }
};

}  // namespace lotwise::testing
