#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/portfolio_dialogs.h"
#include "app/taxpayer_dialog.h"
#include "app/taxpayer_file.h"
#include "ground/paths.h"
#include "support/app_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

using Names = std::vector<std::string>;

// A central file of its own for every test.
class DialogsTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
  }
  // Writes a Taxpayer File and indexes it, without opening it.
  void AddTaxpayer(const std::string& code, const std::string& name, const std::string& file) {
    WriteTaxpayerFile(file, code, name);
    TaxpayerIndex(code, name, name, file);
  }
};

// "&New Taxpayer File...": a refused entry keeps the dialog open and
// writes nothing; an accepted one creates and opens the taxpayer, quotes and
// other letters kept as typed.
TEST_F(DialogsTest, ShowNewClient_CreatesAndOpens) {
  ExpectForm<NewModClientForm>([&](NewModClientForm& form) {
    EXPECT_EQ(form.caption, "New Taxpayer");
    EXPECT_EQ(form.client_name + form.sort_name + form.client_code + form.opt_line, "");
    form.client_name = "Zoë O'Brien \"Bee\"";
    form.sort_name = "O'Brien, Zoë";
    form.year_end = "12/31/2025";
    form.opt_line = "c/o \"Trust\" – Ünï";
    ExpectSaid(ui_, __FILE__, "incomplete");
    PressOkNewModClient(*app_, form);
    EXPECT_FALSE(form.closed);
    EXPECT_EQ(CountCentralRows("Clients"), 0);
    form.client_code = "OBR01";
    PressOkNewModClient(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowNewClient(*app_);
  const std::string row = "Zoë O'Brien \"Bee\"|O'Brien, Zoë|OBR01";
  const std::string central = CentralRow("OBR01");
  const std::string file = central.substr(central.rfind('|') + 1);
  EXPECT_EQ(central, row + "|" + file);
  EXPECT_EQ(ClientRow(file), row + "|c/o \"Trust\" – Ünï |2025-12-31");
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->current.client_code, "OBR01");
}

// "&Modify Taxpayer Info...": the dialog starts from the current taxpayer;
// the sort-name button rebuilds the sort name; OK changes both files and
// the current taxpayer.
TEST_F(DialogsTest, ShowModifyClient_ChangesBothFiles) {
  OpenFreshTaxpayer("DOE01", "John Doe", "DOE0101.mdb");
  ExpectForm<NewModClientForm>([&](NewModClientForm& form) {
    EXPECT_EQ(form.caption + "|" + form.client_name + "|" + form.sort_name + "|" +
                  form.client_code + "|" + form.opt_line + "|" + form.year_end,
              "Modify Taxpayer|John Doe|John Doe|DOE01| |12/31/2025");
    form.client_name = "John A. Doe";
    NewModClient_CalcSortName(*app_, form);
    EXPECT_EQ(form.sort_name, "Doe, John A.");
    form.opt_line = "Estate of";
    PressOkNewModClient(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowModifyClient(*app_);
  EXPECT_EQ(CentralRow("DOE01"), "John A. Doe|Doe, John A.|DOE01|DOE0101.mdb");
  EXPECT_EQ(ClientRow("DOE0101.mdb"), "John A. Doe|Doe, John A.|DOE01|Estate of |2025-12-31");
  EXPECT_EQ(app_->current.client_name, "John A. Doe");
}

// With an empty taxpayer index, Open says so and opens nothing.
TEST_F(DialogsTest, OpenClient_EmptyIndex) {
  State(*app_, kClientClosed);
  ExpectForm<OpenClientForm>([&](OpenClientForm& form) {
    EXPECT_TRUE(form.clients.empty());
    ExpectSaid(ui_, __FILE__, "no taxpayers");
    OpenClient_Open(*app_, form);
    EXPECT_FALSE(form.closed);
    OpenClient_Cancel(*app_, form);
  });
  ShowOpenClient(*app_, "Open Taxpayer File");
  EXPECT_EQ(app_->client, nullptr);
  EXPECT_EQ(app_->window.state, kClientClosed);
}

// Opening the selected taxpayer: with "Open Only Portfolio" checked and
// exactly one portfolio the user lands in it; otherwise at the taxpayer.
TEST_F(DialogsTest, OpenClient_OpensSelectedAndItsOnlyPortfolio) {
  struct Case {
    bool option;
    Names ports;
    int16_t state;
    std::string port;
  };
  const Case cases[] = {{true, {"Growth"}, kPortOpen, "Growth"},
                        {true, {"Growth", "Income"}, kClientOpen, ""},
                        {true, {}, kClientOpen, ""},
                        {false, {"Growth"}, kClientOpen, ""}};
  for (int i = 0; i < 4; ++i) {
    const std::string code = "T" + std::to_string(i);
    AddTaxpayer(code, code, code + ".mdb");
    auto db = Database::Open(app_->taxpayer_folder + code + ".mdb");
    for (const std::string& port : cases[i].ports) Scenario(*db).Portfolio(port, " ", code);
  }
  for (int i = 0; i < 4; ++i) {
    SCOPED_TRACE(i);
    app_->window.options.open_only_port = cases[i].option;
    ExpectForm<OpenClientForm>([&](OpenClientForm& form) {
      EXPECT_EQ(form.open_caption + "/" + form.cancel_caption, "Open/Cancel");
      ASSERT_EQ(form.clients.size(), 4u);
      form.selected = i;
      OpenClient_Open(*app_, form);
      EXPECT_TRUE(form.closed);
    });
    ShowOpenClient(*app_, "Open Taxpayer File");
    EXPECT_EQ(ui_.help_texts().back(), "Opening Taxpayer");
    EXPECT_EQ(app_->current.client_code, "T" + std::to_string(i));
    EXPECT_EQ(app_->window.state, cases[i].state);
    EXPECT_EQ(app_->current.port_name, cases[i].port);
  }
}

// The delete mode asks first, deletes the selected taxpayer's file and
// index row, and stays open on the list that is left.
TEST_F(DialogsTest, ShowOpenClient_DeleteMode_DeletesSelected) {
  AddTaxpayer("ADA01", "Ada Byron", "BYRO01.mdb");
  OpenFreshTaxpayer("DOE01", "John Doe", "DOE0101.mdb");
  ExpectForm<OpenClientForm>([&](OpenClientForm& form) {
    EXPECT_EQ(form.open_caption + "/" + form.cancel_caption, "Delete/Close");
    ASSERT_EQ(form.clients.size(), 2u);
    EXPECT_EQ(form.clients[0].client_code, "ADA01");
    ExpectSaid(ui_, __FILE__, "delete taxpayer", Answer::kNo);
    OpenClient_Open(*app_, form);
    EXPECT_EQ(form.clients.size(), 2u);
    ExpectSaid(ui_, __FILE__, "delete taxpayer", Answer::kYes);
    OpenClient_Open(*app_, form);
    EXPECT_FALSE(form.closed);
    ASSERT_EQ(form.clients.size(), 1u);
    EXPECT_EQ(form.clients[0].client_code + "|" + std::to_string(form.selected), "DOE01|0");
    OpenClient_Cancel(*app_, form);
  });
  ShowOpenClient(*app_, "Select Taxpayer to Delete");
  EXPECT_EQ(CentralRow("ADA01"), "-");
  EXPECT_EQ(ListFiles(app_->taxpayer_folder, "*"), Names{"DOE0101.mdb"});
  EXPECT_EQ(app_->window.state, kClientClosed);
  EXPECT_EQ(app_->central->IntegrityCheck(), "ok");
}

// "&New Portfolio..." refuses a taken name, the dialog keeping the user's
// values, and opens the portfolio it adds; "&Open Portfolio..." lists the
// portfolios by name and opens the selected one; "&Modify Portfolio
// Info..." starts from it, and a new name carries the securities along;
// "&Close Portfolio" goes back to the taxpayer.
TEST_F(DialogsTest, PortfolioDialogs_NewOpenModifyClose) {
  OpenFreshTaxpayer();
  Portfolio("Income", "dividends");
  Buy(Security("IBM", "Income"), "03/01/2021", 10, "1000");
  ExpectForm<NewModPortForm>([&](NewModPortForm& form) {
    EXPECT_EQ(form.caption, "New Portfolio");
    form.port_name = "income";
    form.second_line = "long term";
    ExpectSaid(ui_, __FILE__, "name in use");
    NewModPort_OK(*app_, form);
    EXPECT_FALSE(form.closed);
    EXPECT_EQ(form.port_name + "|" + form.second_line, "income|long term");
    form.port_name = " Growth ";
    NewModPort_OK(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowNewPort(*app_);
  EXPECT_EQ(app_->window.state, kPortOpen);
  EXPECT_EQ(app_->current.port_name, "Growth");
  ExpectForm<OpenDelPortForm>([&](OpenDelPortForm& form) {
    EXPECT_EQ(form.caption + "|" + form.ok_caption + "/" + form.cancel_caption,
              "Open Portfolio|Open/Cancel");
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

  ExpectForm<NewModPortForm>([&](NewModPortForm& form) {
    EXPECT_EQ(form.caption + "|" + form.port_name + "|" + form.second_line,
              "Modify Portfolio|Income|dividends");
    form.port_name = "Dividends";
    form.second_line = "quarterly";
    NewModPort_OK(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowModPort(*app_);
  Query q = app_->client->SelectSaved("dlgOpenDelPort");
  ASSERT_TRUE(q.Next());
  EXPECT_EQ(q.Text("Port Name") + "|" + q.Text("2nd Line"), "Dividends|quarterly ");
  EXPECT_EQ(app_->current.port_name + "|" + app_->window.portfolio_panel, "Dividends|Dividends");
  EXPECT_EQ(app_->window.securities.size(), 1u);
  ClosePort(*app_);
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->current.port_name, "");
}

// "&Delete a Portfolio..." asks first; Yes removes the selected portfolio
// with its securities, blocks and transactions and the list shows what is
// left. Deleting another portfolio keeps the open one open; deleting the
// open one goes back to the taxpayer.
TEST_F(DialogsTest, ShowDelPort_RemovesPortfolioAndItsRows) {
  OpenFreshTaxpayer();
  for (const char* port : {"Growth", "Income"}) {
    Portfolio(port);
    Buy(Security("IBM", port), "03/01/2021", 10, "1000");
  }
  ASSERT_TRUE(OpenPort(*app_, "Growth"));
  auto expect_question = [&](const std::string& port, Answer answer) {
    ExpectSaid(ui_, __FILE__, "delete portfolio", answer, {port});
  };
  auto rows = [&] {
    return CountClientRows("Security") + CountClientRows("Blocks") + CountClientRows("Buy");
  };
  ExpectForm<OpenDelPortForm>([&](OpenDelPortForm& form) {
    EXPECT_EQ(form.caption + "|" + form.ok_caption + "/" + form.cancel_caption,
              "Delete Portfolio|Delete/Close");
    form.selected = 1;
    expect_question("Income", Answer::kNo);
    OpenDelPort_OK(*app_, form);
    EXPECT_EQ(rows(), 6);
    expect_question("Income", Answer::kYes);
    OpenDelPort_OK(*app_, form);
    EXPECT_EQ(rows(), 3);
    ASSERT_EQ(form.portfolios.size(), 1u);
    EXPECT_EQ(app_->window.state, kPortOpen);
    form.selected = 0;
    expect_question("Growth", Answer::kYes);
    OpenDelPort_OK(*app_, form);
    EXPECT_FALSE(form.closed);
    EXPECT_TRUE(form.portfolios.empty());
    OpenDelPort_Cancel(*app_, form);
  });
  ShowDelPort(*app_);
  EXPECT_EQ(rows(), 0);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->current.port_name, "");
}

}  // namespace
}  // namespace lotwise::testing
