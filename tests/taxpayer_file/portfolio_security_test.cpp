#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "data/central_file.h"
#include "data/taxpayer_file.h"
#include "taxpayer_file/taxpayer_fixture.h"

namespace lotwise::testing {
namespace {

const std::string kPortInUseEnd = " is already in use. Please enter a new Portfolio Name.";
const std::string kAlreadyHeld =
    "The Security you wish to add already exists in this Portfolio, therefore it can not be added "
    "again. If you wish to purchase Shares for this Security, click on the icon for the Security "
    "and click the 'Buy' button.";

// An open Taxpayer File with portfolios P1 and P2, each holding IBM and
// MSFT, every security with one block carrying one row of each
// transaction table.
class PortfolioTest : public TaxpayerTest {
 protected:
  void SetUp() override {
    TaxpayerTest::SetUp();
    OpenFreshTaxpayer();
    for (const char* port : {"P1", "P2"}) {
      ASSERT_TRUE(NewPort(*app_, port, ""));
      for (const char* symbol : {"IBM", "MSFT"}) {
        std::string cusip = kNoCusip;
        ASSERT_TRUE(AddSec(*app_, symbol, std::string(symbol) + " Corp", cusip, "", port));
        Query sec = app_->client->SelectSaved("Get a Security",
                                              {{"sPortName", port}, {"sSecSymbol", symbol}});
        ASSERT_TRUE(sec.Next());
        AddBlockWithTransactions(sec.Int("Sec ID"));
      }
    }
  }

  void AddBlockWithTransactions(int64_t sec_id) {
    Database& db = *app_->client;
    db.Execute(
        R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, 'b', '2024-01-02'))",
        {{"s", sec_id}});
    const Params block = {{"b", db.LastInsertId()}};
    db.Execute(
        R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Prec Sort") VALUES (:b, 'd', 10, 10))",
        block);
    db.Execute(R"(INSERT INTO "Sell" ("Block No", "Date", "Prec Sort") VALUES (:b, 'd', 40))",
               block);
    db.Execute(R"(INSERT INTO "Split" ("Block No", "Date", "Type", "Pre Ratio", "Post Ratio", )"
               R"("Prec Sort") VALUES (:b, 'd', 11, 1, 2, 60))",
               block);
    db.Execute(R"(INSERT INTO "Adjust" ("Block No", "Date", "Prec Sort") VALUES (:b, 'd', 30))",
               block);
  }

  // Rows of every dependent table, "securities/blocks/buy/sell/split/adjust".
  std::string Rows() {
    std::string out = std::to_string(CountClientRows("Security"));
    for (const char* table : {"Blocks", "Buy", "Sell", "Split", "Adjust"}) {
      out += "/" + std::to_string(CountClientRows(table));
    }
    return out;
  }

  long long Orphans() {
    return Count(
        R"(SELECT (SELECT count(*) FROM "Security" WHERE "Port Name" NOT IN )"
        R"((SELECT "Port Name" FROM "Portfolio")) + (SELECT count(*) FROM "Blocks" WHERE "Sec ID" )"
        R"(NOT IN (SELECT "Sec ID" FROM "Security")) + (SELECT count(*) FROM "Buy" WHERE )"
        R"("Block No" NOT IN (SELECT "Block No" FROM "Blocks")) AS n)");
  }

  long long SecsIn(const std::string& port) {
    Query q = app_->client->SelectSaved("Secs In Port", {{"sPortName", port}});
    long long n = 0;
    while (q.Next()) ++n;
    return n;
  }
};

// Deleting a portfolio or a security takes everything under it and nothing
// else; a look-alike name ("P_" for "P1") deletes nothing.
struct CascadeCase {
  const char* label;
  std::function<bool(Application&)> remove;
  std::string rows_after;
};

class CascadeTest : public PortfolioTest, public ::testing::WithParamInterface<CascadeCase> {};

TEST_P(CascadeTest, DelPortDelSec_NoOrphans) {
  EXPECT_TRUE(GetParam().remove(*app_));
  EXPECT_EQ(Rows(), GetParam().rows_after);
  EXPECT_EQ(Orphans(), 0);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CascadeTest,
    ::testing::Values(
        CascadeCase{"DelPort", [](Application& a) { return DelPort(a, "p1"); }, "2/2/2/2/2/2"},
        CascadeCase{"DelSec", [](Application& a) { return DelSec(a, "P1", "ibm"); }, "3/3/3/3/3/3"},
        CascadeCase{"DelPortLookAlike", [](Application& a) { return DelPort(a, "P_"); },
                    "4/4/4/4/4/4"},
        CascadeCase{"DelSecLookAlike", [](Application& a) { return DelSec(a, "P%", "%"); },
                    "4/4/4/4/4/4"}),
    [](const auto& info) { return std::string(info.param.label); });

// Renaming a portfolio carries its securities (and so their blocks) along.
TEST_F(PortfolioTest, ModPort_RenameCarriesSecurities) {
  ASSERT_TRUE(OpenPort(*app_, "P1"));
  ASSERT_TRUE(ModPort(*app_, "Renamed", "Joint  "));
  EXPECT_EQ(SecsIn("Renamed"), 2);
  EXPECT_EQ(SecsIn("P1"), 0);
  EXPECT_EQ(Rows(), "4/4/4/4/4/4");
  EXPECT_EQ(app_->current.port_name, "Renamed");
  EXPECT_EQ(app_->current.port_2nd_line, "Joint");
  EXPECT_EQ(Count(R"(SELECT count(*) AS n FROM "Portfolio" WHERE "2nd Line" = 'Joint ')"), 1);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// A portfolio name in use (in any letter case) is refused by new and modify
// alike and changes nothing; "P_" is not "P1".
TEST_F(PortfolioTest, NewPortModPort_DuplicateNameRefused) {
  ui_.Expect("The Portfolio Name: p1" + kPortInUseEnd, "Portfolio Name in use!", Icon::kInformation,
             Buttons::kOk);
  EXPECT_FALSE(NewPort(*app_, "p1", ""));
  ASSERT_TRUE(OpenPort(*app_, "P2"));
  ui_.Expect("The Portfolio Name: P1" + kPortInUseEnd, "Portfolio Name in use!");
  EXPECT_FALSE(ModPort(*app_, "P1", ""));
  EXPECT_EQ(SecsIn("P2"), 2);
  EXPECT_FALSE(OpenPort(*app_, "P_"));
  EXPECT_TRUE(NewPort(*app_, "P_", ""));
  EXPECT_EQ(CountClientRows("Portfolio"), 3);
  EXPECT_EQ(app_->window.state, kPortOpen);
  ClosePort(*app_);
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->current.port_name, "");
}

// Names, symbols and notes holding quotes, wildcards, separators or
// non-ASCII letters are kept and found exactly.
struct OddText {
  const char* label;
  const char* text;
};

class OddTextTest : public PortfolioTest, public ::testing::WithParamInterface<OddText> {};

TEST_P(OddTextTest, PortAndSec_OddTextExact) {
  const std::string text = GetParam().text;
  ASSERT_TRUE(NewPort(*app_, text, text));
  EXPECT_EQ(app_->current.port_name, text);
  EXPECT_EQ(app_->current.port_2nd_line, text);
  std::string cusip = text;
  ASSERT_TRUE(AddSec(*app_, text, "Name " + text, cusip, text, text));
  EXPECT_EQ(SecsIn(text), 1);
  EXPECT_EQ(GetSecInfoFromCDB(*app_, text, "[Sec Name]"), "Name " + text);
  LogChange(*app_, text, 1, Date::FromYmd(2025, 1, 2), text);
  EXPECT_EQ(Count(R"(SELECT count(*) AS n FROM "Change" WHERE "Description" = "Port Name")"), 1);
  ASSERT_TRUE(DelPort(*app_, text));
  EXPECT_EQ(Rows(), "4/4/4/4/4/4");
  ASSERT_TRUE(DelSecFromCDB(*app_, text));
  EXPECT_EQ(GetSecInfoFromCDB(*app_, text, "CUSIP"), kSymbolNotInCentral);
  EXPECT_EQ(GetSecInfoFromCDB(*app_, "IBM", "CUSIP"), kNoCusip);
}

INSTANTIATE_TEST_SUITE_P(Texts, OddTextTest,
                         ::testing::Values(OddText{"DoubleQuote", "A\"B"},
                                           OddText{"Quote", "O'Neil"}, OddText{"Percent", "50%"},
                                           OddText{"Underscore", "P_"},
                                           OddText{"Semicolon", "a;DROP"}, OddText{"Dashes", "x--"},
                                           OddText{"NonAscii", "Müller ß"}),
                         [](const auto& info) { return std::string(info.param.label); });

// AddSec: an unknown symbol goes to the central file first; a symbol the
// portfolio holds is refused; declining the central add still adds the
// portfolio's row, whose name then reads as unknown.
TEST_F(PortfolioTest, AddSec_CentralFirstAndLenient) {
  std::string cusip;
  ASSERT_TRUE(AddSec(*app_, "NEW", "New Co", cusip, "", "P1"));
  EXPECT_EQ(GetSecInfoFromCDB(*app_, "NEW", "CUSIP"), kNoCusip);
  EXPECT_EQ(Count(R"(SELECT "Sell Method" AS n FROM "Sell Method" WHERE "Sec Symbol" = 'NEW')"),
            255);

  ui_.Expect(kAlreadyHeld, "Security Already Exists!", Icon::kInformation, Buttons::kOk);
  EXPECT_FALSE(AddSec(*app_, "new", "New Co", cusip, "", "P1"));
  EXPECT_EQ(SecsIn("P1"), 3);

  ui_.Expect(
      "The Security Name you entered already exists in another Security. If you still want "
      "to use this name click OK, otherwise click Cancel.",
      "Name already exists", Answer::kCancel);
  cusip = "1";
  ASSERT_TRUE(AddSec(*app_, "DUPN", "New Co", cusip, "", "P1"));
  EXPECT_EQ(SecsIn("P1"), 4);
  EXPECT_EQ(GetSecInfoFromCDB(*app_, "DUPN", "[Sec Name]"), kSymbolNotInCentral);
}

// UpdateSecName / UpdateSecCusip ask first, then check sharing (never for
// "NO CUSIP", never against the security itself), then change the one
// central row every Taxpayer File reads.
struct UpdateCase {
  const char* label;
  bool is_name;
  std::string symbol, value;
  Answer confirm;
  std::string then_title;  // a second message, if any
  Answer then_answer;
  std::string name_after, cusip_after;  // of the symbol
};

class UpdateSecTest : public PortfolioTest, public ::testing::WithParamInterface<UpdateCase> {};

TEST_P(UpdateSecTest, UpdateSecNameCusip_Cases) {
  const UpdateCase& c = GetParam();
  ASSERT_TRUE(ModSecInCDB(*app_, "IBM", "IBM Corp", "459200101"));
  const std::string what = c.is_name ? "Name" : "CUSIP";
  ui_.Expect("You have changed the Security " + what +
                 ". This will change it for all Securities in all Taxpayer Files.\nIf you want to "
                 "do this click YES, otherwise click NO and the " +
                 what + " will be left as it was.",
             what + " has been changed!", Icon::kExclamation, Buttons::kYesNo, c.confirm);
  const std::map<std::string, std::string> texts = {
      {"Security not found",
       "The Security you have specified can't be found. You may need to Add it again."},
      {"Name already exists",
       "The Security Name you entered already exists in another Security. If you still want to "
       "use this name click OK, otherwise click Cancel."},
      {"CUSIP already exists",
       "The CUSIP you entered already exists in another Security. If you still want to use this "
       "CUSIP click OK, otherwise click Cancel."}};
  if (!c.then_title.empty()) ui_.Expect(texts.at(c.then_title), c.then_title, c.then_answer);
  if (c.is_name) {
    UpdateSecName(*app_, c.symbol, c.value);
  } else {
    UpdateSecCusip(*app_, c.symbol, c.value);
  }
  EXPECT_EQ(GetSecInfoFromCDB(*app_, c.symbol, "[Sec Name]"), c.name_after);
  EXPECT_EQ(GetSecInfoFromCDB(*app_, c.symbol, "CUSIP"), c.cusip_after);
  if (c.confirm == Answer::kYes) {
    EXPECT_EQ(ui_.help_texts().back(), c.is_name ? "Updating Security Name" : "Updating Cusip");
  }
}

constexpr Answer kYes = Answer::kYes;
constexpr Answer kOk = Answer::kOk;

INSTANTIATE_TEST_SUITE_P(
    Cases, UpdateSecTest,
    ::testing::Values(UpdateCase{"NameDeclined", true, "IBM", "Big Blue", Answer::kNo, "", kOk,
                                 "IBM Corp", "459200101"},
                      UpdateCase{"OwnNameAsksNothing", true, "IBM", "ibm corp", kYes, "", kOk,
                                 "ibm corp", "459200101"},
                      UpdateCase{"NameOfOtherCancelled", true, "IBM", "MSFT Corp", kYes,
                                 "Name already exists", Answer::kCancel, "IBM Corp", "459200101"},
                      UpdateCase{"CusipOfOtherAccepted", false, "MSFT", "459200101", kYes,
                                 "CUSIP already exists", kOk, "MSFT Corp", "459200101"},
                      UpdateCase{"NoCusipNeverShared", false, "IBM", kNoCusip, kYes, "", kOk,
                                 "IBM Corp", kNoCusip},
                      UpdateCase{"UnknownSymbol", true, "XYZ", "Big Blue", kYes,
                                 "Security not found", kOk, kSymbolNotInCentral,
                                 kSymbolNotInCentral}),
    [](const auto& info) { return std::string(info.param.label); });

// The second line of a security changes in the current portfolio only, and
// an empty one is stored as one blank.
TEST_F(PortfolioTest, UpdateSec2ndLine_CurrentPortfolioOnly) {
  ASSERT_TRUE(OpenPort(*app_, "P1"));
  UpdateSec2ndLine(*app_, "IBM", "Held in trust");
  UpdateSec2ndLine(*app_, "MSFT", "");
  EXPECT_EQ(Count(R"(SELECT count(*) AS n FROM "Security" WHERE "2nd Line" = 'Held in trust ')"),
            1);
  EXPECT_EQ(Count(R"(SELECT count(*) AS n FROM "Security" WHERE "2nd Line" = ' ')"), 3);
  EXPECT_EQ(ui_.help_texts().back(), "Updating Optional Line");
}

// An empty or blank portfolio name is refused with a message.
TEST_F(PortfolioTest, VerifyNewModPort_EmptyNameRefused) {
  for (const char* blank : {"", "   "}) {
    ui_.Expect(
        "A Portfolio Name must be provided to create a new Portfolio. Please enter a "
        "Portfolio Name.",
        "Information Missing!", Icon::kInformation, Buttons::kOk);
    EXPECT_FALSE(VerifyNewModPort(*app_, blank));
  }
  EXPECT_TRUE(VerifyNewModPort(*app_, "P3"));
}

// A too-long change description is cut to the field's 255 bytes, never in
// the middle of a character, reported as non-fatal, and still written.
TEST_F(PortfolioTest, LogChange_TooLongIsCutAndReported) {
  ui_.Expect(
      "Description length error in LogChange(). This error will not affect any of your "
      "data, and you may continue with your work. Please report the error to Tarnwick "
      "Software, Inc.",
      "Non-Fatal Error", Icon::kInformation, Buttons::kOk);
  LogChange(*app_, "P1", 1, Date::FromYmd(2025, 1, 2), std::string(254, 'x') + "é");
  LogChange(*app_, "P1", 1, Date::FromYmd(2025, 1, 2), std::string(255, 'y'));
  Query q = app_->client->Select(R"(SELECT "Description" FROM "Change" ORDER BY rowid)");
  ASSERT_TRUE(q.Next());
  EXPECT_EQ(q.Text("Description"), std::string(254, 'x'));
  ASSERT_TRUE(q.Next());
  EXPECT_EQ(q.Text("Description"), std::string(255, 'y'));
}

// Another program holding the write lock on the Taxpayer File turns a
// write into the "file in use" warning; the program carries on and nothing
// is written.
class LockedFileTest : public PortfolioTest {
 protected:
  void SetUp() override {
    Database::SetBusyTimeout(50);
    PortfolioTest::SetUp();
    other_ = Database::Open(app_->current.client_db_path);
  }
  void TearDown() override {
    other_.reset();
    Database::SetBusyTimeout(Database::kDefaultBusyTimeoutMs);
    PortfolioTest::TearDown();
  }
  std::unique_ptr<Database> other_;
};

TEST_F(LockedFileTest, WriteLocked_WarnsAndCarriesOn) {
  const std::string before = Rows();
  {
    Database::Transaction lock(*other_);
    const std::vector<std::function<void()>> writes = {
        [&] { EXPECT_FALSE(NewPort(*app_, "P3", "")); },
        [&] { EXPECT_FALSE(DelPort(*app_, "P1")); },
        [&] { LogChange(*app_, "P1", 1, Date::FromYmd(2025, 1, 2), "Changed"); },
        [&] {
          std::string cusip = kNoCusip;
          EXPECT_FALSE(AddSec(*app_, "IBM", "IBM Corp", cusip, "", "P3"));
        }};
    for (const auto& write : writes) {
      ui_.Expect(
          "the file being accessed is currently unavailable. This is probably because either "
          "another user is is working with it, or a Taxpayer File needed by the TWS - "
          "Lotwise has been opened by another program. \nIf this is the case, you will need "
          "to close the file in any other applications before this operation can be "
          "performed successfully.",
          "Warning", Icon::kInformation, Buttons::kOk);
      write();
    }
  }
  EXPECT_EQ(env_->end_calls(), 0);
  EXPECT_EQ(Rows(), before);
  EXPECT_EQ(CountClientRows("Portfolio"), 2);
  EXPECT_EQ(CountClientRows("Change"), 0);
}

}  // namespace
}  // namespace lotwise::testing
