#include "lots/sell_method.h"

#include <gtest/gtest.h>

#include <string>

#include "lots/sell_shares.h"
#include "lots_sell/sale_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

// The first sale fixes the security's method without a question and
// without a log line.
TEST_F(SaleTest, SellShares_FirstSale_FixesMethod) {
  Block("01/01/2024", 100);
  OpenSecurity(SellMethod::kNotSelected);
  OnSale([&](SellSharesForm& form) {
    EXPECT_EQ(form.sell_method, "NOT SELECTED");
    EXPECT_EQ(HelpText(form, "SScboSellMethod"),
              "Click the button to the right to select the Sell Method");
    form.sell_method = "Average Cost - Single Cat.";
    SellMethodChange(*app_, form);
    EXPECT_FALSE(form.select_enabled);
    Fill(form, 10, "100");
    SellShares_OK(*app_, form, false);
    EXPECT_TRUE(form.closed);
  });
  ShowSellShares(*app_);
  EXPECT_EQ(StoredMethod(), SellMethod::kAvgSingle);
  EXPECT_EQ(app_->window.display.sell_method, SellMethod::kAvgSingle);
  EXPECT_EQ(Changes(), "");
}

// A change away from a method in force is asked; No puts the old method
// back, Yes announces, stores and logs the change (today, under the
// portfolio and security) and switches the dialog to the user's selection.
TEST_F(SaleTest, SellMethodChange_AskedAnnouncedLogged) {
  Block("01/01/2024", 100);
  OpenSecurity(SellMethod::kFifo);
  OnSale([&](SellSharesForm& form) {
    for (const char* after : {"FIFO", "Specific Identification"}) {
      form.sell_method = "Specific Identification";
      SellMethodChange(*app_, form);
      EXPECT_EQ(form.sell_method, after);
    }
    EXPECT_TRUE(form.select_enabled);
    EXPECT_EQ(form.focus, "btnSelect");
    SellShares_Cancel(*app_, form);
  });
  ExpectSaid(ui_, __FILE__, "method_changed_question", Answer::kNo);
  ExpectSaid(ui_, __FILE__, "method_changed_question", Answer::kYes);
  ExpectSaid(ui_, __FILE__, "method_changed");
  ShowSellShares(*app_);
  EXPECT_EQ(StoredMethod(), SellMethod::kSpecificId);
  Query logged = app_->client->Select(R"(SELECT * FROM "Change")");
  ASSERT_TRUE(logged.Next());
  EXPECT_EQ(logged.DateValue("Date").ToString() + "|" + logged.Text("Port Name") + "|" +
                logged.Text("Sec ID") + "|" + logged.Text("Description"),
            "11/22/2026|Growth|" + std::to_string(sec_id_) +
                "|Changed Sell Method from FIFO to Specific Identification");
  EXPECT_FALSE(logged.Next());
}

// A name or code outside the table is reported and gives no method.
TEST_F(SaleTest, GetSellMethod_GetSellName_BadValue) {
  EXPECT_EQ(GetSellName(*app_, GetSellMethod(*app_, "Average Cost - Double Cat.")),
            "Average Cost - Double Cat.");
  ExpectSaid(ui_, __FILE__, "bad_parameter", Answer::kOk, {"GetSellMethod"});
  ExpectSaid(ui_, __FILE__, "bad_parameter", Answer::kOk, {"GetSellName"});
  EXPECT_EQ(GetSellMethod(*app_, "fifo"), SellMethod::kNotSelected);
  EXPECT_EQ(GetSellName(*app_, SellMethodAsStored(4)), "");
}

// The main window's change asks first and offers dlgMethod with the method
// in force, where P, F, S and D (either case) choose; OK stores and logs the
// choice, Cancel changes nothing.
TEST_F(SaleTest, SetNewSellMethod_ChosenByLetter) {
  OpenSecurity(SellMethod::kFifo);
  ExpectSaid(ui_, __FILE__, "change_method", Answer::kYes);
  OnDialog<MethodForm>("dlgMethod", [&](MethodForm& form) {
    EXPECT_EQ(form.method, SellMethod::kFifo);
    EXPECT_FALSE(form.message_visible);
    const std::pair<char, lotwise::SellMethod> keys[] = {{'P', SellMethod::kSpecificId},
                                                         {'f', SellMethod::kFifo},
                                                         {'s', SellMethod::kAvgSingle},
                                                         {'X', SellMethod::kAvgSingle},
                                                         {'D', SellMethod::kAvgDouble}};
    for (auto [key, method] : keys) {
      Method_KeyPress(form, key);
      EXPECT_EQ(form.method, method) << key;
    }
    Method_OK(*app_, form);
  });
  ExpectSaid(ui_, __FILE__, "change_method", Answer::kYes);
  OnDialog<MethodForm>("dlgMethod", [&](MethodForm& form) {
    Method_KeyPress(form, 'p');
    Method_Cancel(*app_, form);
  });
  SetNewSellMethod(*app_);
  SetNewSellMethod(*app_);
  EXPECT_EQ(StoredMethod(), SellMethod::kAvgDouble);
  EXPECT_EQ(app_->window.display.sell_method, SellMethod::kAvgDouble);
  EXPECT_EQ(Changes(), "Changed Sell Method from FIFO to Average Cost - Double Cat.\n");
}

}  // namespace
}  // namespace lotwise::testing
