#include "lots/security_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/security_commands.h"
#include "app_state/window_fixture.h"
#include "data/application.h"
#include "data/database.h"
#include "lots/security_display.h"

namespace lotwise::testing {
namespace {

using Texts = std::vector<std::string>;

const char* const kNoSecuritiesText =
    "There are no Securities to display. To Add a security to this portfolio, click on the "
    "'Security' menu , then the 'Add a Security' menu item.";
const char* const kCantDeleteText =
    "There are no Securities to delete in this Portfolio. If you want to create a new Security, "
    "click on the Security menu, and then click on the Add Security menu item.";

std::string DeleteQuestion(const std::string& symbol) {
  return "You are about to delete Security: " + symbol +
         ". The Security will be removed from the Portfolio and all blocks in it will be deleted. "
         "Are you sure you want to do this?";
}

class SecurityListTest : public WindowTest {};

// An empty portfolio has nothing to open or delete: each command says so
// and the window stays in PORTOPEN. Deleting asks first; No keeps
// everything, Yes removes the security with its blocks and transactions and
// returns to the portfolio's reloaded list.
TEST_F(SecurityListTest, SecList_EmptyPortfolioThenDelete) {
  State(*app_, kPortOpen);
  ui_.Expect(kNoSecuritiesText, "No Securities!");
  SecList_Select(*app_);
  ui_.Expect(kCantDeleteText, "Can't delete");
  SecList_Delete(*app_);
  EXPECT_EQ(State(*app_, kStateQuery), kPortOpen);
  EXPECT_FALSE(app_->window.display.visible);

  AddSecurity("MSFT", "Microsoft");
  const int64_t ibm = AddSecurity("IBM", "Intl Business Machines");
  Buy(ibm, "01/15/2024", 10);
  Buy(ibm, "02/15/2024", 5);
  DisplaySecurity(*app_);
  SecList_Select(*app_, 0);
  ui_.Expect(DeleteQuestion("IBM"), "Delete Security?", Icon::kQuestion, Buttons::kYesNo,
             Answer::kNo);
  SecList_Delete(*app_);
  EXPECT_EQ(CountClientRows("Security"), 2);
  EXPECT_EQ(State(*app_, kStateQuery), kSecOpen);
  ui_.Expect(DeleteQuestion("IBM"), "Delete Security?", Answer::kYes);
  SecList_Delete(*app_);
  EXPECT_EQ(
      CountClientRows("Security") * 100 + CountClientRows("Blocks") * 10 + CountClientRows("Buy"),
      100);
  EXPECT_EQ(ui_.help_texts().back(), "Deleting Security");
  EXPECT_FALSE(app_->window.display.visible);
  EXPECT_EQ(State(*app_, kStateQuery), kPortOpen);
  EXPECT_FALSE(app_->window.IsVisible("mnuActions"));
  EXPECT_EQ(ListedSymbols(), (Texts{"MSFT"}));
  EXPECT_EQ(app_->current.sec_id, 0);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// Choosing a row opens that security and enters SECOPEN; DisplaySecurity
// reloads the list and opens the named security, or the one the list was
// on, whatever rows were added in front of it.
TEST_F(SecurityListTest, SelectAndDisplaySecurity_OpenRow) {
  AddSecurity("MSFT", "Microsoft");
  State(*app_, kPortOpen);
  SecList_Select(*app_, 0);
  EXPECT_EQ(State(*app_, kStateQuery), kSecOpen);
  EXPECT_TRUE(app_->window.display.visible);
  EXPECT_TRUE(app_->window.IsVisible("mnuActions"));
  EXPECT_EQ(app_->window.display.sec_name, "Microsoft");

  AddSecurity("IBM", "Intl Business Machines");
  const size_t before = ui_.help_texts().size();
  DisplaySecurity(*app_);
  EXPECT_EQ(ListedSymbols(), (Texts{"IBM", "MSFT"}));
  EXPECT_EQ(app_->window.selected_security, 1);
  EXPECT_EQ(app_->current.sec_symbol, "MSFT");
  ASSERT_GT(ui_.help_texts().size(), before);
  EXPECT_EQ(ui_.help_texts()[before], "Please Wait");

  DisplaySecurity(*app_, "ibm");
  EXPECT_EQ(app_->window.selected_security, 0);
  EXPECT_EQ(app_->current.sec_symbol, "IBM");
  EXPECT_EQ(State(*app_, kStateQuery), kSecOpen);
}

// A security deleted by another user of the file since the list was read is
// reported, not opened, and the list is read again; the program carries on.
TEST_F(SecurityListTest, SecList_Select_SecurityGone) {
  AddSecurity("MSFT", "Microsoft");
  State(*app_, kPortOpen);
  app_->client->Execute(R"(DELETE FROM "Security" WHERE "Sec Symbol" = 'MSFT')");
  ui_.Expect("The Security MSFT is no longer in this Portfolio. Another user may have deleted it.",
             "Security not found", Icon::kInformation, Buttons::kOk);
  SecList_Select(*app_, 0);
  EXPECT_EQ(State(*app_, kStateQuery), kPortOpen);
  EXPECT_FALSE(app_->window.display.visible);
  EXPECT_TRUE(ListedSymbols().empty());
  EXPECT_EQ(env_->end_calls(), 0);
}

}  // namespace
}  // namespace lotwise::testing
