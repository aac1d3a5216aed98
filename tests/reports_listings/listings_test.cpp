#include "reports/listings.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>
#include <utility>

#include "app/app_state.h"
#include "app/taxpayer_file.h"
#include "data/central_file.h"
#include "reports/trans_list.h"
#include "reports_listings/listing_fixture.h"

namespace lotwise::testing {
namespace {

using Runner = std::function<bool(Application&)>;

// Indexed taxpayers DOE01 (open; portfolios Growth and Income), ZED03 (a
// file without portfolios) and ABC02, whose file is gone. Growth holds IBM
// (FIFO) and MSFT; Income holds MSFT and GHOST, a symbol unknown to the
// Security Symbols File and without a sell-method row.
class ListingTest : public ReportTest {
 protected:
  void SetUp() override {
    ReportTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    app_->client->Execute(R"(UPDATE "Client" SET "2nd Line" = '& Jane Doe ')");
    Portfolio("Growth", "Main account ");
    Portfolio("Income");
    SecurityName("IBM", "IBM Corp", "459200101");
    SecurityName("MSFT", "MSFT Corp");
    Security("IBM", "Growth", "Blue chip ");
    SellMethod("IBM", 1);
    for (const char* port : {"Growth", "Income"}) Security("MSFT", port);
    Security("GHOST", "Income");
    WriteTaxpayerFile("ZED0301.mdb", "ZED03", "Zed Able");
    Database::Open(app_->taxpayer_folder + "ZED0301.mdb")
        ->Execute(R"(UPDATE "Client" SET "2nd Line" = 'Trust ')");
    TaxpayerIndex("ZED03", "Zed Able", "Able, Zed", "ZED0301.mdb");
    TaxpayerIndex("ABC02", "Alice Brown", "Brown, Alice", "ABC0201.mdb");
  }

  Rows Table(const char* table) {
    return ReportRows(std::string("SELECT * FROM \"") + table + "\" ORDER BY rowid");
  }
};

// The taxpayer listing in both orders: every indexed taxpayer, the one
// without a file marked and without portfolios; the security listing of
// the taxpayer and of the open portfolio: names and CUSIPs from the
// Security Symbols File, sell methods by name, the heading row of the open
// taxpayer. Each run twice, one run's rows (golden/tables.txt).
TEST_F(ListingTest, CreateReportTables_EachChoice) {
  std::string text;
  const auto add = [&](const char* table) {
    text += std::string("--- ") + table + "\n";
    for (const std::string& row : Table(table)) text += row + "\n";
  };
  for (ClientSort sort : {ClientSort::kCode, ClientSort::kName}) {
    ASSERT_TRUE(CreateClientReportTables(*app_, sort) && CreateClientReportTables(*app_, sort));
    for (const char* table : {"Client Report", "Portfolio Report", "Usage"}) add(table);
  }
  app_->window.state = kPortOpen;
  for (int list_from : {0, 1}) {
    app_->current.port_name = "Growth";
    ASSERT_TRUE(CreateSecReportTables(*app_, list_from) && CreateSecReportTables(*app_, list_from));
    for (const char* table : {"Sec List Report", "Client Report", "Usage"}) add(table);
  }
  ExpectGolden(__FILE__, "tables.txt", text);
}

// Refusals come before any table is touched: the portfolio's list with
// only the taxpayer open, and a list-from value that does not exist.
TEST_F(ListingTest, SecListing_RefusedUntouched) {
  app_->window.state = kClientOpen;
  Report()->Execute(R"(INSERT INTO "Sec List Report" ("Sec Symbol") VALUES ('old'))");
  const std::pair<Runner, const char*> cases[] = {
      {[](Application& app) { return RunSecReport(app, ReportDestination::kScreen, 1, 0); },
       "no_portfolio"},
      {[](Application& app) { return CreateSecReportTables(app, 1); }, "no_portfolio"},
      {[](Application& app) { return CreateSecReportTables(app, 2); }, "list_from_error"}};
  for (const auto& [run, key] : cases) {
    ExpectSaid(ui_, kListingsSource, key);
    EXPECT_FALSE(run(*app_)) << key;
    EXPECT_EQ(Table("Sec List Report"), Rows{"-|old|-|-|-|-"});
    EXPECT_EQ(Count("Usage"), "0");
  }
}

// Tables that cannot be filled (another program locks the report database)
// are reported, then each listing refuses in its own words; no report runs
// and the program carries on.
TEST_F(ListingTest, Listing_TablesFail_Refused) {
  const std::tuple<Runner, const char*, const char*> cases[] = {
      {[](Application& app) {
         return RunClientReport(app, ReportDestination::kScreen, ClientSort::kCode);
       },
       "cant_create_taxpayers", "Preparing Taxpayer Report, Please Wait..."},
      {[](Application& app) { return RunSecReport(app, ReportDestination::kScreen, 0, 0); },
       "cant_create_securities", "Preparing Security Listing Report, Please wait..."}};
  Database::SetBusyTimeout(50);
  auto other = Report();
  Database::Transaction lock(*other);
  other->Execute(R"(INSERT INTO "Usage" ("Usage Count") VALUES (7))");
  for (const auto& [run, key, status] : cases) {
    ExpectSaid(ui_, kListingsSource, "busy");
    ExpectSaid(ui_, kListingsSource, key);
    EXPECT_FALSE(run(*app_));
    EXPECT_EQ(ui_.help_texts().back(), status);
  }
  Database::SetBusyTimeout(Database::kDefaultBusyTimeoutMs);
  EXPECT_TRUE(ui_.reports_shown().empty());
  EXPECT_EQ(env_->end_calls(), 0);
}

}  // namespace
}  // namespace lotwise::testing
