#include "app/add_mod_sec.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "app/app_state.h"
#include "data/central_file.h"
#include "lots_securities/securities_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

// VerifyAddModSec: a symbol is required; a missing name or CUSIP is the
// user's choice.
TEST_F(SecuritiesTest, VerifyAddModSec_Cases) {
  const struct {
    const char *symbol, *name, *cusip;
    bool asks_symbol, asks_item;
    Answer answer;
    bool result;
  } cases[] = {{"", "Name", "1", true, false, Answer::kOk, false},
               {"  ", "", "", true, false, Answer::kOk, false},
               {"X", "", "1", false, true, Answer::kYes, true},
               {"X", "N", " ", false, true, Answer::kNo, false},
               {"X", "N", "1", false, false, Answer::kOk, true}};
  for (const auto& c : cases) {
    AddModSecForm form;
    form.caption = kAddSecCaption;
    form.symbol = c.symbol;
    form.sec_name = c.name;
    form.cusip = c.cusip;
    if (c.asks_symbol) ExpectSaid(ui_, __FILE__, "symbol_missing");
    if (c.asks_item) ExpectSaid(ui_, __FILE__, "item_not_entered", c.answer);
    EXPECT_EQ(VerifyAddModSec(*app_, form), c.result) << c.symbol << c.name << c.cusip;
  }
}

// "Add a Security": a known symbol fills its name and CUSIP (in the central
// spelling); the central values change only when the user changed them and
// answers Yes; a new symbol goes into the central file first ("NO CUSIP"
// when left empty), text exactly as typed. The portfolio gets the security
// whatever the answers, and it is opened.
class AddSecTest : public SecuritiesTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(AddSecTest, ShowAddSec_Cases) {
  const GoldenCase& c = GetParam();
  std::string typed[4], asks, answer, central, portfolio;
  for (const GoldenSection& section : c.sections) {
    std::istringstream args(section.args);
    if (section.key == "typed") {
      for (std::string& part : typed) std::getline(args, part, '|');
    }
    if (section.key == "asks") args >> asks >> answer;
    if (section.key == "central") central = section.args;
    if (section.key == "portfolio") portfolio = section.args;
  }
  ExpectForm<AddModSecForm>([&](AddModSecForm& form) {
    EXPECT_EQ(form.caption + "|" + form.portfolio, "Add a Security|Growth");
    form.symbol = typed[0];
    FillInNameCusip(*app_, form);
    if (!typed[1].empty()) form.sec_name = typed[1];
    if (!typed[2].empty()) form.cusip = typed[2] == "-" ? "" : typed[2];
    form.second_line = typed[3];
    if (!asks.empty()) ExpectSaid(ui_, __FILE__, asks, answer == "no" ? Answer::kNo : Answer::kYes);
    AddModSec_Ok(*app_, form);
    EXPECT_TRUE(form.closed && form.accepted);
  });
  ShowAddSec(*app_);
  const std::string symbol = central.substr(0, central.find('|'));
  EXPECT_EQ(CentralSec(symbol), central);
  EXPECT_EQ(PortfolioSecs(), portfolio);
  EXPECT_EQ(app_->window.state, kSecOpen);
  EXPECT_EQ(app_->current.sec_symbol, symbol);
  EXPECT_EQ(app_->window.display.sec_name, GetSecInfoFromCDB(*app_, symbol, "[Sec Name]"));
  EXPECT_EQ(ui_.help_texts().front(), "Adding Security");
}

const char* const kIbm = "IBM|International Business Machines|459200101";

INSTANTIATE_TEST_SUITE_P(Cases, AddSecTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "added_securities.txt")));

// A refused write shows the same dialog again with what the user typed,
// and nothing is written.
struct RefusalCase {
  std::string caption, symbol, key;
};

class RefusalTest : public SecuritiesTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(RefusalTest, AddModSec_Ok_RefusedWriteShowsDialogAgain) {
  const RefusalCase& c = GetParam();
  std::string cusip = kNoCusip;
  ASSERT_TRUE(AddSec(*app_, "IBM", "International Business Machines", cusip, "", "Growth"));
  AddModSecForm form;
  form.caption = c.caption;
  form.symbol = c.symbol;
  if (c.caption == kModSecInCdbCaption) form.fixed_symbol = c.symbol;
  form.sec_name = "Typed";
  form.cusip = "T1";
  form.second_line = "line";
  ExpectSaid(ui_, __FILE__, c.key);
  ExpectForm<AddModSecForm>([&](AddModSecForm& again) {
    EXPECT_EQ(&again, &form);
    EXPECT_FALSE(again.hidden);
    EXPECT_EQ(again.symbol + again.sec_name + again.cusip + again.second_line,
              c.symbol + "TypedT1line");
    AddModSec_Cancel(*app_, again);
  });
  AddModSec_Ok(*app_, form);
  EXPECT_TRUE(form.closed && !form.accepted);
  EXPECT_EQ(CentralSec("IBM"), kIbm);
  EXPECT_EQ(CountCentralRows("Securities") * 10 + CountClientRows("Security"), 11);
}

INSTANTIATE_TEST_SUITE_P(Cases, RefusalTest,
                         ::testing::Values(RefusalCase{kAddSecCaption, "IBM",
                                                       "exists_in_portfolio"},
                                           RefusalCase{kAddSecToCdbCaption, "IBM", "symbol_exists"},
                                           RefusalCase{kModSecInCdbCaption, "GONE", "not_found"},
                                           RefusalCase{"Add Securities", "IBM", "bad_caption"}));

// In the modify mode the symbol is fixed: an edit, at OK or through Find,
// is refused with "Can't modify Symbol!", undone, and nothing is written.
TEST_F(SecuritiesTest, ShowModSecInCDB_EditedSymbol_Refused) {
  ExpectForm<AddModSecForm>([&](AddModSecForm& form) {
    EXPECT_EQ(form.caption + "|" + form.symbol + "|" + form.sec_name + "|" + form.cusip,
              std::string("Modify a Security (SSF)|") + kIbm);
    form.symbol = "IBMX";
    form.sec_name = "Changed";
    ExpectSaid(ui_, __FILE__, "cant_modify");
    AddModSec_Ok(*app_, form);
    EXPECT_FALSE(form.closed);
    EXPECT_EQ(form.symbol, "IBM");
    ExpectSaid(ui_, __FILE__, "cant_modify");
    AddModSec_Find(*app_, form);
    AddModSec_Cancel(*app_, form);
  });
  ShowModSecInCDB(*app_, "IBM");
  EXPECT_EQ(CentralSec("IBM"), kIbm);
  EXPECT_EQ(CentralSec("IBMX"), "-");
}

// Find picks a symbol from the central list (starting on the one typed)
// and fills its name and CUSIP.
TEST_F(SecuritiesTest, AddModSec_Find_PicksSymbolAndFills) {
  SecurityName("MSFT", "Microsoft", "594918104");
  AddModSecForm form;
  form.caption = kAddSecCaption;
  form.symbol = "msft";
  ExpectForm<SecSymbolForm>([&](SecSymbolForm& list) {
    EXPECT_EQ(list.caption + "|" + list.instructions,
              "Select a Security|Locate and click on the Security you desire, then click Select");
    EXPECT_EQ(list.selected, 1);
    list.selected = 0;
    SecSymbol_Select(*app_, list);
    EXPECT_TRUE(list.closed);
  });
  AddModSec_Find(*app_, form);
  EXPECT_EQ(form.symbol + "|" + form.sec_name + "|" + form.cusip, kIbm);
}

}  // namespace
}  // namespace lotwise::testing
