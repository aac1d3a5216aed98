#include "data/portfolio_dialogs.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/date.h"
#include "data/taxpayer_file.h"
#include "data/transaction_store.h"
#include "taxpayer_dialogs/dialogs_fixture.h"

namespace lotwise::testing {
namespace {

const std::string kNameMissing =
    "A Portfolio Name must be provided to create a new Portfolio. Please enter a Portfolio Name.";

// An open taxpayer with the portfolio "Income" (not open), which holds IBM
// with one block and its buy.
class PortfolioDialogsTest : public DialogsTest {
 protected:
  void SetUp() override {
    DialogsTest::SetUp();
    OpenFreshTaxpayer();
    MakePortfolioWithBuy("Income", "IBM");
    ClosePort(*app_);
  }

  void MakePortfolioWithBuy(const std::string& port, const std::string& symbol) {
    ASSERT_TRUE(NewPort(*app_, port, "dividends"));
    std::string cusip = "NO CUSIP";
    ASSERT_TRUE(AddSec(*app_, symbol, symbol + " Corp", cusip, "", port));
    Query q =
        app_->client->SelectSaved("Get a Security", {{"sPortName", port}, {"sSecSymbol", symbol}});
    ASSERT_TRUE(q.Next());
    std::string block_id;
    ASSERT_TRUE(AddBuy(*app_, q.Int("Sec ID"), block_id, 10, Date::FromYmd(2021, 3, 1),
                       Currency::FromDouble(1000), 10, Currency(), ""));
  }

  // "name|2nd line" of every portfolio, by name.
  std::vector<std::string> Portfolios() {
    std::vector<std::string> out;
    Query q = app_->client->SelectSaved("dlgOpenDelPort");
    while (q.Next()) out.push_back(q.Text("Port Name") + "|" + q.Text("2nd Line"));
    return out;
  }

  // "securities/blocks/buys" of the whole file.
  std::string Rows() {
    return std::to_string(CountClientRows("Security")) + "/" +
           std::to_string(CountClientRows("Blocks")) + "/" + std::to_string(CountClientRows("Buy"));
  }
};

using Names = std::vector<std::string>;

// "&New Portfolio...": an accepted name adds the portfolio and opens it; an
// empty or taken name is refused, the dialog keeps the user's values and
// nothing is written.
struct NewPortCase {
  const char* label;
  std::string name, line;
  std::string text, title;  // the refusal; empty when accepted
  Names after;
};

class NewPortTest : public PortfolioDialogsTest,
                    public ::testing::WithParamInterface<NewPortCase> {};

TEST_P(NewPortTest, ShowNewPort_Cases) {
  const NewPortCase& c = GetParam();
  ExpectForm<NewModPortForm>([&](NewModPortForm& form) {
    EXPECT_EQ(form.caption, "New Portfolio");
    form.port_name = c.name;
    form.second_line = c.line;
    if (!c.text.empty()) {
      ui_.Expect(c.text, c.title, Icon::kInformation, Buttons::kOk);
      NewModPort_OK(*app_, form);
      EXPECT_FALSE(form.closed);
      EXPECT_EQ(form.port_name + "|" + form.second_line, c.name + "|" + c.line);
      NewModPort_Cancel(*app_, form);
    } else {
      NewModPort_OK(*app_, form);
    }
    EXPECT_TRUE(form.closed);
    EXPECT_EQ(form.accepted, c.text.empty());
  });
  ShowNewPort(*app_);
  EXPECT_EQ(Portfolios(), c.after);
  if (c.text.empty()) {
    EXPECT_EQ(app_->window.state, kPortOpen);
    EXPECT_EQ(app_->current.port_name, c.after.back().substr(0, c.after.back().find('|')));
  } else {
    EXPECT_EQ(app_->window.state, kClientOpen);
    EXPECT_EQ(app_->current.port_name, "");
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NewPortTest,
    ::testing::Values(
        NewPortCase{"Accepted", " Retirement ", "", "", "", {"Income|dividends ", "Retirement| "}},
        NewPortCase{
            "EmptyName", "  ", "text", kNameMissing, "Information Missing!", {"Income|dividends "}},
        NewPortCase{"NameInUse",
                    "income",
                    "",
                    "The Portfolio Name: income is already in use. "
                    "Please enter a new Portfolio Name.",
                    "Portfolio Name in use!",
                    {"Income|dividends "}},
        NewPortCase{"QuotesAndNonAscii",
                    "Mom's \"Fund\" – é",
                    "Roth \"2\"",
                    "",
                    "",
                    {"Income|dividends ", "Mom's \"Fund\" – é|Roth \"2\" "}}),
    [](const auto& info) { return std::string(info.param.label); });

// "&Modify Portfolio Info...": starts from the open portfolio; a taken name
// is refused with nothing written; a new name carries the securities along.
TEST_F(PortfolioDialogsTest, ShowModPort_RenamesOpenPortfolio) {
  ASSERT_TRUE(NewPort(*app_, "Growth", ""));
  ASSERT_TRUE(OpenPort(*app_, "Income"));
  ExpectForm<NewModPortForm>([&](NewModPortForm& form) {
    EXPECT_EQ(form.caption, "Modify Portfolio");
    EXPECT_EQ(form.port_name + "|" + form.second_line, "Income|dividends");
    form.port_name = "Growth";
    ui_.Expect("The Portfolio Name: Growth is already in use. Please enter a new Portfolio Name.",
               "Portfolio Name in use!");
    NewModPort_OK(*app_, form);
    EXPECT_FALSE(form.closed);
    EXPECT_EQ(Portfolios(), (Names{"Growth| ", "Income|dividends "}));

    form.port_name = "Dividends";
    form.second_line = "quarterly";
    NewModPort_OK(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowModPort(*app_);
  EXPECT_EQ(Portfolios(), (Names{"Dividends|quarterly ", "Growth| "}));
  EXPECT_EQ(app_->current.port_name, "Dividends");
  EXPECT_EQ(app_->window.portfolio_panel, "Dividends");
  Query q = app_->client->SelectSaved("Secs In Port", {{"sPortName", "Dividends"}});
  ASSERT_TRUE(q.Next());
  EXPECT_EQ(q.Text("Sec Symbol"), "IBM");
}

// "&Open Portfolio..." lists the portfolios by name and opens the selected
// one; "&Close Portfolio" goes back to the taxpayer.
TEST_F(PortfolioDialogsTest, ShowOpenPort_OpensSelectedThenClose) {
  ASSERT_TRUE(NewPort(*app_, "Growth", "long term"));
  ClosePort(*app_);
  ExpectForm<OpenDelPortForm>([&](OpenDelPortForm& form) {
    EXPECT_EQ(form.caption, "Open Portfolio");
    EXPECT_EQ(form.ok_caption + "/" + form.cancel_caption, "Open/Cancel");
    ASSERT_EQ(form.portfolios.size(), 2u);
    EXPECT_EQ(form.portfolios[0].port_name + "|" + form.portfolios[0].second_line,
              "Growth|long term");
    form.selected = 1;
    OpenDelPort_OK(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowOpenPort(*app_);
  EXPECT_EQ(app_->window.state, kPortOpen);
  EXPECT_EQ(app_->current.port_name, "Income");
  EXPECT_EQ(app_->window.securities.size(), 1u);

  ClosePort(*app_);
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->current.port_name, "");
}

// "&Delete a Portfolio..." asks first and says what goes; Yes removes the
// portfolio with its securities, blocks and transactions and leaves the
// others whole. Deleting the open portfolio goes back to the taxpayer.
struct DelPortCase {
  const char* label;
  bool delete_open_one;
};

class DelPortTest : public PortfolioDialogsTest,
                    public ::testing::WithParamInterface<DelPortCase> {};

TEST_P(DelPortTest, ShowDelPort_RemovesPortfolioAndItsRows) {
  MakePortfolioWithBuy("Growth", "MSFT");
  ASSERT_TRUE(OpenPort(*app_, GetParam().delete_open_one ? "Income" : "Growth"));
  ASSERT_EQ(Rows(), "2/2/2");
  const std::string question =
      "You are about to delete Portfolio: Income. All Securities, Blocks and Transactions in it "
      "will be deleted. Are you sure you want to do this?";
  ExpectForm<OpenDelPortForm>([&](OpenDelPortForm& form) {
    EXPECT_EQ(form.caption, "Delete Portfolio");
    EXPECT_EQ(form.ok_caption + "/" + form.cancel_caption, "Delete/Close");
    form.selected = 1;
    ui_.Expect(question, "Delete Portfolio?", Icon::kExclamation, Buttons::kYesNo, Answer::kNo);
    OpenDelPort_OK(*app_, form);
    EXPECT_EQ(Rows(), "2/2/2");

    ui_.Expect(question, "Delete Portfolio?", Answer::kYes);
    OpenDelPort_OK(*app_, form);
    EXPECT_FALSE(form.closed);
    ASSERT_EQ(form.portfolios.size(), 1u);
    EXPECT_EQ(form.portfolios[0].port_name, "Growth");
    OpenDelPort_Cancel(*app_, form);
  });
  ShowDelPort(*app_);
  EXPECT_EQ(Portfolios(), Names{"Growth|dividends "});
  EXPECT_EQ(Rows(), "1/1/1");
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
  if (GetParam().delete_open_one) {
    EXPECT_EQ(app_->window.state, kClientOpen);
    EXPECT_EQ(app_->current.port_name, "");
  } else {
    EXPECT_EQ(app_->window.state, kPortOpen);
    EXPECT_EQ(app_->current.port_name, "Growth");
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, DelPortTest,
                         ::testing::Values(DelPortCase{"AnotherOne", false},
                                           DelPortCase{"TheOpenOne", true}),
                         [](const auto& info) { return std::string(info.param.label); });

}  // namespace
}  // namespace lotwise::testing
