#include "lots/security_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/security_commands.h"
#include "app_state/window_fixture.h"
#include "data/application.h"
#include "data/database.h"
#include "lots/security_display.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

using Texts = std::vector<std::string>;

class SecurityListTest : public WindowTest {};

// An empty portfolio has nothing to open or delete: each command says so
// and the window stays in PORTOPEN. Deleting asks first; No keeps
// everything, Yes removes the security with its blocks and transactions and
// returns to the portfolio's reloaded list.
TEST_F(SecurityListTest, SecList_EmptyPortfolioThenDelete) {
  State(*app_, kPortOpen);
  ExpectSaid(ui_, __FILE__, "no_securities");
  SecList_Select(*app_);
  ExpectSaid(ui_, __FILE__, "cant_delete");
  SecList_Delete(*app_);
  EXPECT_EQ(State(*app_, kStateQuery), kPortOpen);
  EXPECT_FALSE(app_->window.display.visible);

  AddSecurity("MSFT", "Microsoft");
  const int64_t ibm = AddSecurity("IBM", "Intl Business Machines");
  Buy(ibm, "01/15/2024", 10);
  Buy(ibm, "02/15/2024", 5);
  DisplaySecurity(*app_);
  SecList_Select(*app_, 0);
  ExpectSaid(ui_, __FILE__, "delete_security", Answer::kNo);
  SecList_Delete(*app_);
  EXPECT_EQ(CountClientRows("Security"), 2);
  EXPECT_EQ(State(*app_, kStateQuery), kSecOpen);
  ExpectSaid(ui_, __FILE__, "delete_security", Answer::kYes);
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
  ExpectSaid(ui_, __FILE__, "security_gone");
  SecList_Select(*app_, 0);
  EXPECT_EQ(State(*app_, kStateQuery), kPortOpen);
  EXPECT_FALSE(app_->window.display.visible);
  EXPECT_TRUE(ListedSymbols().empty());
  EXPECT_EQ(env_->end_calls(), 0);
}

}  // namespace
}  // namespace lotwise::testing
