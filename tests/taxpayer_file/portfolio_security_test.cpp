#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "app/app_state.h"
#include "app/taxpayer_file.h"
#include "data/central_file.h"
#include "taxpayer_file/taxpayer_fixture.h"

namespace lotwise::testing {
namespace {

// An open Taxpayer File with portfolios P1 and P2, each holding IBM and
// MSFT, every security with one block carrying one row of each
// transaction table.
class PortfolioTest : public TaxpayerTest {
 protected:
  void SetUp() override {
    TaxpayerTest::SetUp();
    OpenFreshTaxpayer();
    for (const char* symbol : {"IBM", "MSFT"}) SecurityName(symbol, symbol + std::string(" Corp"));
    for (const char* port : {"P1", "P2"}) {
      Portfolio(port);
      for (const char* symbol : {"IBM", "MSFT"}) {
        const int64_t block = Buy(Security(symbol, port), "01/02/2024", 10);
        Sell(block, "02/01/2024", 1);
        Split(block, "03/01/2024", 1, 2, 9);
        Adjust(block, "04/01/2024", 0);
      }
    }
  }

  // Rows of every dependent table, "securities/blocks/buy/sell/split/adjust".
  std::string Rows() {
    std::string out = std::to_string(CountClientRows("Security"));
    for (const char* table : {"Blocks", "Buy", "Sell", "Split", "Adjust"}) {
      out += "/" + std::to_string(CountClientRows(table));
    }
    return out;
  }
  long long SecsIn(const std::string& port) {
    Query q = app_->client->SelectSaved("Secs In Port", {{"sPortName", port}});
    long long n = 0;
    while (q.Next()) ++n;
    return n;
  }
  // "name|cusip" of the symbol in the central file.
  std::string CentralSec(const std::string& symbol) {
    return GetSecInfoFromCDB(*app_, symbol, "[Sec Name]") + "|" +
           GetSecInfoFromCDB(*app_, symbol, "CUSIP");
  }
};

// Deleting a portfolio or a security takes everything under it and nothing
// else; a look-alike name ("P_" for "P1") deletes nothing.
TEST_F(PortfolioTest, DelPortDelSec_NoOrphans) {
  const std::pair<std::function<bool()>, const char*> steps[] = {
      {[&] { return DelPort(*app_, "P_"); }, "4/4/4/4/4/4"},
      {[&] { return DelSec(*app_, "P%", "%"); }, "4/4/4/4/4/4"},
      {[&] { return DelSec(*app_, "P1", "ibm"); }, "3/3/3/3/3/3"},
      {[&] { return DelPort(*app_, "p1"); }, "2/2/2/2/2/2"}};
  for (const auto& [remove, rows_after] : steps) {
    EXPECT_TRUE(remove());
    EXPECT_EQ(Rows(), rows_after);
    EXPECT_EQ(Count(R"(SELECT (SELECT count(*) FROM "Security" WHERE "Port Name" NOT IN )"
                    R"((SELECT "Port Name" FROM "Portfolio")) + (SELECT count(*) FROM "Blocks" )"
                    R"(WHERE "Sec ID" NOT IN (SELECT "Sec ID" FROM "Security")) + (SELECT )"
                    R"(count(*) FROM "Buy" WHERE "Block No" NOT IN (SELECT "Block No" FROM )"
                    R"("Blocks")) AS n)"),
              0);
    EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
  }
}

// A look-alike name ("P_" for "P1") opens nothing; a renamed portfolio
// keeps its securities, its second line stored with one trailing blank and
// read without; closing it returns to the taxpayer.
TEST_F(PortfolioTest, OpenModClosePort) {
  EXPECT_FALSE(OpenPort(*app_, "P_"));
  ASSERT_TRUE(OpenPort(*app_, "P2"));
  ASSERT_TRUE(ModPort(*app_, "Renamed", "Joint  "));
  EXPECT_EQ(SecsIn("Renamed") * 10 + SecsIn("P2"), 20);
  EXPECT_EQ(app_->current.port_name + "|" + app_->current.port_2nd_line, "Renamed|Joint");
  EXPECT_EQ(Count(R"(SELECT count(*) AS n FROM "Portfolio" WHERE "2nd Line" = 'Joint ')"), 1);
  EXPECT_EQ(app_->window.state, kPortOpen);
  ClosePort(*app_);
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->current.port_name, "");
}

// Names, symbols and notes holding quotes, wildcards, separators or
// non-ASCII letters are kept and found exactly.
TEST_F(PortfolioTest, PortAndSec_OddTextExact) {
  long long logged = 0;
  for (const std::string text : {"A\"B", "O'Neil", "50%", "P_", "a;DROP", "x--", "Müller ß"}) {
    SCOPED_TRACE(text);
    ASSERT_TRUE(NewPort(*app_, text, text));
    EXPECT_EQ(app_->current.port_name + "|" + app_->current.port_2nd_line, text + "|" + text);
    std::string cusip = text;
    ASSERT_TRUE(AddSec(*app_, text, "Name " + text, cusip, text, text));
    EXPECT_EQ(SecsIn(text), 1);
    EXPECT_EQ(CentralSec(text), "Name " + text + "|" + text);
    LogChange(*app_, text, 1, Date::FromYmd(2025, 1, 2), text);
    EXPECT_EQ(Count(R"(SELECT count(*) AS n FROM "Change" WHERE "Description" = "Port Name")"),
              ++logged);
    ASSERT_TRUE(DelPort(*app_, text));
    EXPECT_EQ(Rows(), "4/4/4/4/4/4");
    ASSERT_TRUE(DelSecFromCDB(*app_, text));
    EXPECT_EQ(GetSecInfoFromCDB(*app_, text, "CUSIP"), kSymbolNotInCentral);
    EXPECT_EQ(GetSecInfoFromCDB(*app_, "IBM", "CUSIP"), kNoCusip);
  }
}

// AddSec: an unknown symbol goes to the central file first (no sell method
// yet); declining the central add still adds the portfolio's row, whose
// name then reads as unknown.
TEST_F(PortfolioTest, AddSec_CentralFirstAndLenient) {
  std::string cusip;
  ASSERT_TRUE(AddSec(*app_, "NEW", "New Co", cusip, "", "P1"));
  EXPECT_EQ(CentralSec("NEW"), "New Co|NO CUSIP");
  EXPECT_EQ(Count(R"(SELECT "Sell Method" AS n FROM "Sell Method" WHERE "Sec Symbol" = 'NEW')"),
            255);
  ExpectSaid(ui_, __FILE__, "name_shared", Answer::kCancel);
  cusip = "1";
  ASSERT_TRUE(AddSec(*app_, "DUPN", "New Co", cusip, "", "P1"));
  EXPECT_EQ(SecsIn("P1"), 4);
  EXPECT_EQ(GetSecInfoFromCDB(*app_, "DUPN", "[Sec Name]"), kSymbolNotInCentral);
}

// UpdateSecName / UpdateSecCusip ask first, then check sharing (never
// against the security itself), then change the one central row every
// Taxpayer File reads. The second line of a security changes in the
// current portfolio only, and an empty one is stored as one blank.
TEST_F(PortfolioTest, UpdateSecNameCusipAndLine) {
  ASSERT_TRUE(ModSecInCDB(*app_, "IBM", "IBM Corp", "459200101"));
  const auto confirm = [&](const std::string& what, Answer answer) {
    ExpectSaid(ui_, __FILE__, "changed_for_all", answer, {what, what, what});
  };
  confirm("Name", Answer::kNo);
  UpdateSecName(*app_, "IBM", "Big Blue");
  EXPECT_EQ(CentralSec("IBM"), "IBM Corp|459200101");
  confirm("Name", Answer::kYes);
  UpdateSecName(*app_, "IBM", "ibm corp");
  EXPECT_EQ(CentralSec("IBM"), "ibm corp|459200101");
  EXPECT_EQ(ui_.help_texts().back(), "Updating Security Name");
  confirm("Name", Answer::kYes);
  ExpectSaid(ui_, __FILE__, "name_shared", Answer::kCancel);
  UpdateSecName(*app_, "IBM", "MSFT Corp");
  confirm("CUSIP", Answer::kYes);
  ExpectSaid(ui_, __FILE__, "cusip_shared", Answer::kOk);
  UpdateSecCusip(*app_, "MSFT", "459200101");
  EXPECT_EQ(CentralSec("MSFT") + "|" + CentralSec("IBM"), "MSFT Corp|459200101|ibm corp|459200101");
  EXPECT_EQ(ui_.help_texts().back(), "Updating Cusip");
  confirm("Name", Answer::kYes);
  ExpectSaid(ui_, __FILE__, "sec_not_found");
  UpdateSecName(*app_, "XYZ", "Big Blue");
  EXPECT_EQ(CentralSec("XYZ"), std::string(kSymbolNotInCentral) + "|" + kSymbolNotInCentral);

  ASSERT_TRUE(OpenPort(*app_, "P1"));
  UpdateSec2ndLine(*app_, "IBM", "Held in trust");
  UpdateSec2ndLine(*app_, "MSFT", "");
  EXPECT_EQ(Count(R"(SELECT count(*) AS n FROM "Security" WHERE "2nd Line" = 'Held in trust ')"),
            1);
  EXPECT_EQ(Count(R"(SELECT count(*) AS n FROM "Security" WHERE "2nd Line" = ' ')"), 3);
  EXPECT_EQ(ui_.help_texts().back(), "Updating Optional Line");
}

// A too-long change description is cut to the field's 255 bytes, never in
// the middle of a character, reported as non-fatal, and still written.
TEST_F(PortfolioTest, LogChange_TooLongIsCutAndReported) {
  ExpectSaid(ui_, __FILE__, "description_too_long");
  LogChange(*app_, "P1", 1, Date::FromYmd(2025, 1, 2), std::string(254, 'x') + "é");
  LogChange(*app_, "P1", 1, Date::FromYmd(2025, 1, 2), std::string(255, 'y'));
  Query q = app_->client->Select(
      R"(SELECT group_concat(d, '|') AS d FROM (SELECT "Description" AS d FROM "Change" ORDER BY rowid))");
  ASSERT_TRUE(q.Next());
  EXPECT_EQ(q.Text("d"), std::string(254, 'x') + "|" + std::string(255, 'y'));
}

// Another program holding the write lock on the Taxpayer File turns a
// write into the "file in use" warning; the program carries on and nothing
// is written.
TEST_F(PortfolioTest, WriteLocked_WarnsAndCarriesOn) {
  Database::SetBusyTimeout(50);
  app_->client = Database::Open(app_->current.client_db_path);
  auto other = Database::Open(app_->current.client_db_path);
  Database::SetBusyTimeout(Database::kDefaultBusyTimeoutMs);
  const std::string before = Rows();
  {
    Database::Transaction lock(*other);
    const std::vector<std::function<void()>> writes = {
        [&] { EXPECT_FALSE(NewPort(*app_, "P3", "")); },
        [&] { EXPECT_FALSE(DelPort(*app_, "P1")); },
        [&] { LogChange(*app_, "P1", 1, Date::FromYmd(2025, 1, 2), "Changed"); },
        [&] {
          std::string cusip = kNoCusip;
          EXPECT_FALSE(AddSec(*app_, "IBM", "IBM Corp", cusip, "", "P3"));
        }};
    for (const auto& write : writes) {
      ExpectSaid(ui_, __FILE__, "busy");
      write();
    }
  }
  EXPECT_EQ(env_->end_calls(), 0);
  EXPECT_EQ(Rows(), before);
  EXPECT_EQ(CountClientRows("Portfolio") * 10 + CountClientRows("Change"), 20);
}

// AddSecToCDB refuses an existing symbol (in any letter case); both add and
// modify need the user's OK for a name or CUSIP of another security, never
// for the security's own nor for "NO CUSIP"; an empty CUSIP is stored as
// "NO CUSIP". The database's own refusal of a duplicate (another user was
// quicker) arrives as "Symbol in use!". Cases: golden/central_securities.txt.
class SecInCDBTest : public TaxpayerTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(SecInCDBTest, AddModSecInCDB_Checks) {
  const std::vector<std::string> lines = GetParam().Lines("");
  std::istringstream fields(lines.at(0));
  std::string op, symbol, name, cusip, done, stored;
  for (std::string* field : {&op, &symbol, &name, &cusip, &done}) std::getline(fields, *field, '|');
  std::getline(fields, stored);
  SecurityName("IBM", "Big Blue", "459200101");
  SecurityName("NOC", "Fund", kNoCusip);
  if (op.ends_with('!')) {
    app_->central->Execute(R"(CREATE UNIQUE INDEX "Unique CUSIP" ON "Securities" ("CUSIP"))");
  }
  for (size_t i = 1; i < lines.size(); ++i) {
    std::istringstream words(lines[i]);
    std::string say, key, answer;
    words >> say >> key >> answer;
    ExpectSaid(ui_, __FILE__, key, answer == "cancel" ? Answer::kCancel : Answer::kOk);
  }
  EXPECT_EQ(op[0] == 'm' ? ModSecInCDB(*app_, symbol, name, cusip)
                         : AddSecToCDB(*app_, symbol, name, cusip),
            done == "yes");
  Query q = app_->central->Select(
      R"(SELECT "Sec Name", "CUSIP" FROM "Securities" WHERE "Sec Symbol" = :s COLLATE BINARY)",
      {{"s", symbol}});
  EXPECT_EQ(q.Next() ? q.Text("Sec Name") + "|" + q.Text("CUSIP") : "-", stored);
  EXPECT_EQ(CountCentralRows("Securities"), done == "yes" && op[0] == 'a' ? 3 : 2);
  EXPECT_EQ(env_->end_calls(), 0);
}

INSTANTIATE_TEST_SUITE_P(Cases, SecInCDBTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "central_securities.txt")),
                         [](const auto& info) { return info.param.name; });

// The start counter: a file that has never counted reads 0, an empty table
// starts at 1, and a NULL count counts as 0.
TEST_F(TaxpayerTest, AddUsage_CountsFromEmptyOrNull) {
  EXPECT_EQ(GetUsageCount(*app_), 0);
  AddUsage(*app_, *app_->central);
  AddUsage(*app_, *app_->central);
  EXPECT_EQ(GetUsageCount(*app_), 2);
  EXPECT_EQ(CountCentralRows("Usage"), 1);
  app_->central->Execute(R"(UPDATE "Usage" SET "Usage Count" = NULL)");
  AddUsage(*app_, *app_->central);
  EXPECT_EQ(GetUsageCount(*app_), 1);
}

}  // namespace
}  // namespace lotwise::testing
