#include "app/sec_symbol.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/security_commands.h"
#include "data/central_file.h"
#include "data/transaction_store.h"
#include "ground/date.h"
#include "lots/security_display.h"
#include "lots_securities/securities_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

const std::string kManageHelp =
    "To Delete or Modify a Security, click on the Security, then click on the appropriate button";

const char* const kIbmRow = "IBM|International Business Machines|459200101;";

std::string Listed(const SecSymbolForm& form) {
  std::string out;
  for (const SecSymbolRow& row : form.securities) {
    out += row.symbol + "|" + row.name + "|" + row.cusip + ";";
  }
  return out;
}

// Add and Modify from the Security Symbols dialog open the add/modify
// dialog in the central modes and show the list again with the result.
TEST_F(SecuritiesTest, ShowSecSymbol_AddThenModify) {
  ExpectForm<SecSymbolForm>([&](SecSymbolForm& list) {
    EXPECT_EQ(list.caption + "|" + ui_.help_texts().back(), "Security Symbols File|" + kManageHelp);
    ExpectForm<AddModSecForm>([&](AddModSecForm& form) {
      EXPECT_EQ(form.caption, "Add a Security (SSF)");
      form.symbol = "MSFT";
      form.sec_name = "Microsoft";
      form.cusip = "594918104";
      AddModSec_Ok(*app_, form);
    });
    SecSymbol_Add(*app_, list);
    EXPECT_EQ(Listed(list), std::string(kIbmRow) + "MSFT|Microsoft|594918104;");

    list.selected = 1;
    ExpectSaid(ui_, __FILE__, "modify_question", Answer::kYes);
    ExpectForm<AddModSecForm>([&](AddModSecForm& form) {
      EXPECT_EQ(form.caption + "|" + form.symbol, "Modify a Security (SSF)|MSFT");
      form.sec_name = "Microsoft Corp";
      form.cusip = "";
      ExpectSaid(ui_, __FILE__, "item_not_entered", Answer::kYes);
      AddModSec_Ok(*app_, form);
      EXPECT_TRUE(form.closed);
    });
    SecSymbol_Modify(*app_, list);
    EXPECT_EQ(Listed(list), std::string(kIbmRow) + "MSFT|Microsoft Corp|NO CUSIP;");
    EXPECT_EQ(list.selected, 1);
    ExpectSaid(ui_, __FILE__, "modify_question", Answer::kNo);
    SecSymbol_Modify(*app_, list);
    SecSymbol_Close(*app_, list);
  });
  ShowSecSymbol(*app_);
  EXPECT_EQ(ui_.help_texts(), (std::vector<std::string>{"Get Securities", kManageHelp,
                                                        "Adding Security", "Modifying Security"}));
  EXPECT_EQ(CentralSec("MSFT"), "MSFT|Microsoft Corp|NO CUSIP");
}

// With an empty list, every command that needs a security says so, under
// the one shared title, and nothing else happens.
TEST_F(SecuritiesTest, SecSymbol_EmptyList_Message) {
  app_->central->Execute(R"(DELETE FROM "Securities")");
  const std::pair<void (*)(Application&, SecSymbolForm&), const char*> commands[] = {
      {SecSymbol_Modify, "none_to_modify"},
      {SecSymbol_Delete, "none_to_delete"},
      {SecSymbol_Select, "none_to_select"}};
  AddModSecForm target;
  ExpectForm<SecSymbolForm>([&](SecSymbolForm& list) {
    EXPECT_TRUE(list.securities.empty());
    EXPECT_EQ(list.selected, -1);
    for (auto [command, text] : commands) {
      ExpectSaid(ui_, __FILE__, text);
      command(*app_, list);
      EXPECT_FALSE(list.closed);
    }
  });
  ShowFindSecSymbol(*app_, target);
  EXPECT_EQ(target.symbol, "");
}

// Deleting a central symbol removes only the central row: the taxpayer's
// security, blocks and transactions stay. Opening the security then offers
// to re-enter the symbol, which puts it back with what the user types.
TEST_F(SecuritiesTest, SecSymbol_Delete_LeavesTransactionsAndReEnters) {
  Buy(Security("IBM"), "01/15/2020", 10);
  ExpectForm<SecSymbolForm>([&](SecSymbolForm& list) {
    ExpectSaid(ui_, __FILE__, "delete_question", Answer::kNo);
    SecSymbol_Delete(*app_, list);
    EXPECT_EQ(CountCentralRows("Securities"), 1);
    ExpectSaid(ui_, __FILE__, "delete_question", Answer::kYes);
    SecSymbol_Delete(*app_, list);
    EXPECT_EQ(ui_.help_texts().back(), "Deleting Security");
    EXPECT_TRUE(list.securities.empty());
    SecSymbol_Close(*app_, list);
  });
  ShowSecSymbol(*app_);
  EXPECT_EQ(CountCentralRows("Securities"), 0);
  for (const char* table : {"Security", "Blocks", "Buy"})
    EXPECT_EQ(CountClientRows(table), 1) << table;
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
  EXPECT_EQ(app_->central->IntegrityCheck(), "ok");

  // Declined, the security opens as the Taxpayer File holds it.
  ExpectSaid(ui_, __FILE__, "reenter", Answer::kNo);
  ShowSecDisplay(*app_, "IBM");
  EXPECT_EQ(app_->window.display.sec_name, kSymbolNotInCentral);
  EXPECT_EQ(app_->window.display.total_shares, "10");
  ExpectSaid(ui_, __FILE__, "reenter", Answer::kYes);
  ExpectForm<AddModSecForm>([&](AddModSecForm& form) {
    EXPECT_EQ(form.caption, "Re-enter a Security (SSF)");
    EXPECT_EQ(form.symbol + "|" + form.sec_name + "|" + form.cusip, "IBM||");
    form.sec_name = "IBM Corp";
    form.cusip = "459200101";
    AddModSec_Ok(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowSecDisplay(*app_, "IBM");
  EXPECT_EQ(CentralSec("IBM"), "IBM|IBM Corp|459200101");
  EXPECT_EQ(app_->window.display.sec_name, "IBM Corp");
  EXPECT_EQ(app_->window.display.blocks.size(), 1u);
  EXPECT_EQ(std::ranges::count(ui_.help_texts(), "Replacing Security"), 1);
}

}  // namespace
}  // namespace lotwise::testing
