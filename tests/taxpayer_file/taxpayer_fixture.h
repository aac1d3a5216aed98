#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data/application.h"
#include "data/database.h"
#include "ground/paths.h"
#include "support/app_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {

// A central file of its own for every test, and readers of the rows the
// taxpayer operations leave behind.
class TaxpayerTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
  }

  std::vector<std::string> TaxpayerFiles() { return ListFiles(app_->taxpayer_folder, "*"); }

  long long Count(const std::string& sql) {
    Query q = app_->client->Select(sql);
    q.Next();
    return q.Int("n");
  }
};

}  // namespace lotwise::testing
