#include "data/central_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/application.h"
#include "data/database.h"
#include "support/app_fixture.h"

namespace lotwise::testing {
namespace {

const std::string kNameQuestion =
    "The Security Name you entered already exists in another Security. If you still want to use "
    "this name click OK, otherwise click Cancel.";
const std::string kCusipQuestion =
    "The CUSIP you entered already exists in another Security. If you still want to use this CUSIP "
    "click OK, otherwise click Cancel.";
const std::string kNotFound =
    "The Security you have specified can't be found. You may need to Add it again.";

struct Message {
  std::string text;
  std::string title;
  Icon icon;
  Buttons buttons;
  Answer answer;
};

Message NameQuestion(Answer a) {
  return {kNameQuestion, "Name already exists", Icon::kQuestion, Buttons::kOkCancel, a};
}
Message CusipQuestion(Answer a) {
  return {kCusipQuestion, "CUSIP already exists", Icon::kQuestion, Buttons::kOkCancel, a};
}

class CentralFileTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    Insert("IBM", "International Business Machines", "459200101");
    Insert("NOC", "No Cusip Fund", kNoCusip);
  }

  void Insert(const std::string& symbol, const std::string& name, const std::string& cusip) {
    app_->central->Execute(
        R"(INSERT INTO "Securities" ("Sec Symbol", "Sec Name", "CUSIP") VALUES (:s, :n, :c))",
        {{"s", symbol}, {"n", name}, {"c", cusip}});
  }

  void Script(const std::vector<Message>& messages) {
    for (const Message& m : messages) ui_.Expect(m.text, m.title, m.icon, m.buttons, m.answer);
  }

  // "name|cusip" of the symbol's row, or "-" when there is none.
  std::string Row(const std::string& symbol) {
    Query q = app_->central->Select(
        R"(SELECT "Sec Name", "CUSIP" FROM "Securities" WHERE "Sec Symbol" = :s COLLATE BINARY)",
        {{"s", symbol}});
    return q.Next() ? q.Text("Sec Name") + "|" + q.Text("CUSIP") : "-";
  }
};

// AddSecToCDB: an existing symbol (in any letter case) is refused whatever
// else is typed; a shared name or CUSIP needs the user's OK; "NO CUSIP"
// never counts as shared, and an empty CUSIP is stored as it.
struct AddCase {
  const char* label;
  std::string symbol, name, cusip;
  std::vector<Message> messages;
  bool added;
  std::string stored;  // Row(symbol) afterwards
};

class AddSecToCDBTest : public CentralFileTest, public ::testing::WithParamInterface<AddCase> {};

TEST_P(AddSecToCDBTest, AddSecToCDB_Checks) {
  const AddCase& c = GetParam();
  Script(c.messages);
  std::string cusip = c.cusip;
  EXPECT_EQ(AddSecToCDB(*app_, c.symbol, c.name, cusip), c.added);
  EXPECT_EQ(Row(c.symbol), c.stored);
  EXPECT_EQ(CountCentralRows("Securities"), c.added ? 3 : 2);
}

const Message kSymbolExists{
    "The Symbol: ibm already exists. Please enter a new Symbol or use the Security that already "
    "exists.",
    "Symbol already exists", Icon::kInformation, Buttons::kOk, Answer::kOk};

INSTANTIATE_TEST_SUITE_P(
    Cases, AddSecToCDBTest,
    ::testing::Values(
        AddCase{"NewSymbol", "MSFT", "Microsoft", "594918104", {}, true, "Microsoft|594918104"},
        AddCase{"ExistingSymbolOtherCase", "ibm", "Other", "1", {kSymbolExists}, false, "-"},
        AddCase{"SharedNameDeclined",
                "IBX",
                "international business machines",
                "1",
                {NameQuestion(Answer::kCancel)},
                false,
                "-"},
        AddCase{"SharedNameAccepted",
                "IBX",
                "International Business Machines",
                "1",
                {NameQuestion(Answer::kOk)},
                true,
                "International Business Machines|1"},
        AddCase{"SharedCusipDeclined",
                "IBX",
                "Other",
                "459200101",
                {CusipQuestion(Answer::kCancel)},
                false,
                "-"},
        AddCase{"NoCusipNeverShared", "NC2", "Second", kNoCusip, {}, true, "Second|NO CUSIP"},
        AddCase{"EmptyCusipBecomesNoCusip", "NC3", "Third", "", {}, true, "Third|NO CUSIP"}),
    [](const auto& info) { return std::string(info.param.label); });

// The database's own refusal of a duplicate (another user was quicker)
// arrives as the "Symbol in use!" message, for add and modify alike.
TEST_F(CentralFileTest, AddAndModSecInCDB_DuplicateKeyShowsSymbolInUse) {
  app_->central->Execute(R"(CREATE UNIQUE INDEX "Test Unique CUSIP" ON "Securities" ("CUSIP"))");
  Script({CusipQuestion(Answer::kOk),
          {"The Symbol: DUP is already in use. Please enter a new Symbol or usethe Security that "
           "already exits.",
           "Symbol in use!", Icon::kInformation, Buttons::kOk, Answer::kOk}});
  std::string cusip = "459200101";
  EXPECT_FALSE(AddSecToCDB(*app_, "DUP", "Dup", cusip));

  Script({CusipQuestion(Answer::kOk),
          {"The Symbol: NOC already exists.Please enter a new Symbol, or usethe Security that "
           "already exits.",
           "Symbol in use!", Icon::kInformation, Buttons::kOk, Answer::kOk}});
  EXPECT_FALSE(ModSecInCDB(*app_, "NOC", "No Cusip Fund", "459200101"));
  EXPECT_EQ(Row("NOC"), "No Cusip Fund|NO CUSIP");
  EXPECT_EQ(env_->end_calls(), 0);
}

// ModSecInCDB: the security's own name and CUSIP raise no question; those
// of another security do; an unknown symbol is reported.
struct ModCase {
  const char* label;
  std::string symbol, name, cusip;
  std::vector<Message> messages;
  bool changed;
  std::string stored;
};

class ModSecInCDBTest : public CentralFileTest, public ::testing::WithParamInterface<ModCase> {};

TEST_P(ModSecInCDBTest, ModSecInCDB_Checks) {
  const ModCase& c = GetParam();
  Script(c.messages);
  EXPECT_EQ(ModSecInCDB(*app_, c.symbol, c.name, c.cusip), c.changed);
  EXPECT_EQ(Row(c.symbol), c.stored);
}

INSTANTIATE_TEST_SUITE_P(Cases, ModSecInCDBTest,
                         ::testing::Values(ModCase{"OwnNameAndCusip",
                                                   "IBM",
                                                   "International Business Machines",
                                                   "459200101",
                                                   {},
                                                   true,
                                                   "International Business Machines|459200101"},
                                           ModCase{"OtherNameDeclined",
                                                   "NOC",
                                                   "International Business Machines",
                                                   kNoCusip,
                                                   {NameQuestion(Answer::kCancel)},
                                                   false,
                                                   "No Cusip Fund|NO CUSIP"},
                                           ModCase{"OtherCusipAccepted",
                                                   "NOC",
                                                   "No Cusip Fund",
                                                   "459200101",
                                                   {CusipQuestion(Answer::kOk)},
                                                   true,
                                                   "No Cusip Fund|459200101"},
                                           ModCase{
                                               "UnknownSymbol",
                                               "XYZ",
                                               "Nothing",
                                               "1",
                                               {{kNotFound, "Security not found",
                                                 Icon::kInformation, Buttons::kOk, Answer::kOk}},
                                               false,
                                               "-"}),
                         [](const auto& info) { return std::string(info.param.label); });

// The start counter: an empty table starts at 1, a NULL count counts as 0,
// and a file that has never counted reads 0.
TEST_F(CentralFileTest, AddUsage_CountsFromEmptyOrNull) {
  EXPECT_EQ(GetUsageCount(*app_), 0);
  AddUsage(*app_, *app_->central);
  EXPECT_EQ(GetUsageCount(*app_), 1);
  AddUsage(*app_, *app_->central);
  EXPECT_EQ(GetUsageCount(*app_), 2);
  EXPECT_EQ(CountCentralRows("Usage"), 1);
  app_->central->Execute(R"(UPDATE "Usage" SET "Usage Count" = NULL)");
  AddUsage(*app_, *app_->central);
  EXPECT_EQ(GetUsageCount(*app_), 1);
}

}  // namespace
}  // namespace lotwise::testing
