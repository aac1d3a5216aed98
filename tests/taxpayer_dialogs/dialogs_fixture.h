#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "app/portfolio_dialogs.h"
#include "app/taxpayer_dialog.h"
#include "data/application.h"
#include "data/database.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

// A central file of its own for every test, readers of the rows the
// dialogs leave behind, and typed expectations of the dialogs.
class DialogsTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
  }

  // Writes a Taxpayer File and indexes it, without opening it.
  void AddTaxpayer(const std::string& code, const std::string& name, const std::string& sort,
                   const std::string& file) {
    WriteTaxpayerFile(file, code, name);
    TaxpayerIndex(code, name, sort, file);
  }
};

}  // namespace lotwise::testing
