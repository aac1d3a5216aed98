#include "data/central_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data/database.h"
#include "support/app_fixture.h"

namespace lotwise::testing {
namespace {

struct Message {
  std::string text, title;
  Icon icon = Icon::kInformation;
  Buttons buttons = Buttons::kOk;
  Answer answer = Answer::kOk;
};

Message NameQuestion(Answer a) {
  return {
      "The Security Name you entered already exists in another Security. If you still want to "
      "use this name click OK, otherwise click Cancel.",
      "Name already exists", Icon::kQuestion, Buttons::kOkCancel, a};
}
Message CusipQuestion(Answer a) {
  return {
      "The CUSIP you entered already exists in another Security. If you still want to use "
      "this CUSIP click OK, otherwise click Cancel.",
      "CUSIP already exists", Icon::kQuestion, Buttons::kOkCancel, a};
}

const Message kNameNo = NameQuestion(Answer::kCancel), kNameOk = NameQuestion(Answer::kOk);
const Message kCusipNo = CusipQuestion(Answer::kCancel), kCusipOk = CusipQuestion(Answer::kOk);
const Message kSymbolExists{
    "The Symbol: ibm already exists. Please enter a new Symbol or use the Security that already "
    "exists.",
    "Symbol already exists"};
const Message kNotFound{
    "The Security you have specified can't be found. You may need to Add it again.",
    "Security not found"};
const Message kAddInUse{
    "The Symbol: DUP is already in use. Please enter a new Symbol or usethe Security that already "
    "exits.",
    "Symbol in use!"};
const Message kModInUse{
    "The Symbol: NOC already exists.Please enter a new Symbol, or usethe Security that already "
    "exits.",
    "Symbol in use!"};

const Message kTooLong{
    "The Symbol US0378331005 is too long. A Symbol can be at most 10 characters long. Please "
    "enter a shorter Symbol.",
    "Symbol too long", Icon::kExclamation};

const std::string kNocRow = "Fund|NO CUSIP";

// A central file holding IBM, with a CUSIP, and NOC, without one.
class CentralFileTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    SecurityName("IBM", "Big Blue", "459200101");
    SecurityName("NOC", "Fund", kNoCusip);
  }

  // "name|cusip" of the symbol's row, or "-" when there is none.
  std::string Row(const std::string& symbol) {
    Query q = app_->central->Select(
        R"(SELECT "Sec Name", "CUSIP" FROM "Securities" WHERE "Sec Symbol" = :s COLLATE BINARY)",
        {{"s", symbol}});
    return q.Next() ? q.Text("Sec Name") + "|" + q.Text("CUSIP") : "-";
  }
};

// AddSecToCDB refuses an existing symbol (in any letter case); both add and
// modify need the user's OK for a name or CUSIP of another security, never
// for the security's own nor for "NO CUSIP"; an empty CUSIP is stored as
// "NO CUSIP"; a symbol longer than its key is refused whole. The database's
// own refusal of a duplicate (another user was quicker, here through a
// unique CUSIP index) arrives as "Symbol in use!".
struct SecCase {
  const char* label;
  bool modify;
  std::string symbol, name, cusip;
  std::vector<Message> messages;
  bool done;
  std::string stored;  // Row(symbol) afterwards
  bool unique_cusips = false;
};

const SecCase kSecCases[] = {
    {"AddNew", false, "MSFT", "Microsoft", "594918104", {}, true, "Microsoft|594918104"},
    {"AddExistingSymbolOtherCase", false, "ibm", "Other", "1", {kSymbolExists}, false, "-"},
    {"AddSharedNameDeclined", false, "IBX", "big blue", "1", {kNameNo}, false, "-"},
    {"AddSharedNameAccepted", false, "IBX", "Big Blue", "1", {kNameOk}, true, "Big Blue|1"},
    {"AddSharedCusipDeclined", false, "IBX", "Other", "459200101", {kCusipNo}, false, "-"},
    {"AddNoCusipNeverShared", false, "NC2", "Second", kNoCusip, {}, true, "Second|NO CUSIP"},
    {"AddEmptyCusipBecomesNoCusip", false, "NC3", "Third", "", {}, true, "Third|NO CUSIP"},
    {"AddSymbolTooLong", false, "US0378331005", "Apple", "037833100", {kTooLong}, false, "-"},
    {"AddKeyInUse", false, "DUP", "Dup", "459200101", {kCusipOk, kAddInUse}, false, "-", true},
    {"ModOwnNameAndCusip", true, "IBM", "Big Blue", "459200101", {}, true, "Big Blue|459200101"},
    {"ModOtherNameDeclined", true, "NOC", "Big Blue", kNoCusip, {kNameNo}, false, kNocRow},
    {"ModOtherCusipAccepted", true, "NOC", "Fund", "459200101", {kCusipOk}, true, "Fund|459200101"},
    {"ModUnknownSymbol", true, "XYZ", "Nothing", "1", {kNotFound}, false, "-"},
    {"ModKeyInUse", true, "NOC", "Fund", "459200101", {kCusipOk, kModInUse}, false, kNocRow, true},
};

class SecInCDBTest : public CentralFileTest, public ::testing::WithParamInterface<SecCase> {};

TEST_P(SecInCDBTest, AddModSecInCDB_Checks) {
  const SecCase& c = GetParam();
  if (c.unique_cusips) {
    app_->central->Execute(R"(CREATE UNIQUE INDEX "Unique CUSIP" ON "Securities" ("CUSIP"))");
  }
  for (const Message& m : c.messages) ui_.Expect(m.text, m.title, m.icon, m.buttons, m.answer);
  std::string cusip = c.cusip;
  EXPECT_EQ(c.modify ? ModSecInCDB(*app_, c.symbol, c.name, cusip)
                     : AddSecToCDB(*app_, c.symbol, c.name, cusip),
            c.done);
  EXPECT_EQ(Row(c.symbol), c.stored);
  EXPECT_EQ(CountCentralRows("Securities"), c.done && !c.modify ? 3 : 2);
  EXPECT_EQ(env_->end_calls(), 0);
}

INSTANTIATE_TEST_SUITE_P(Cases, SecInCDBTest, ::testing::ValuesIn(kSecCases),
                         [](const auto& info) { return std::string(info.param.label); });

// The start counter: a file that has never counted reads 0, an empty table
// starts at 1, and a NULL count counts as 0.
TEST_F(CentralFileTest, AddUsage_CountsFromEmptyOrNull) {
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
