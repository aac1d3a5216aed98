#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/taxpayer_dialog.h"
#include "ground/paths.h"
#include "taxpayer_dialogs/dialogs_fixture.h"

namespace lotwise::testing {
namespace {

// "&New Taxpayer File...": an accepted entry creates and opens the taxpayer
// (an empty sort name made from the name, a bad year end read as 1/1/1990);
// a refused one lists what is missing, keeps the dialog open and writes
// nothing.
struct NewCase {
  const char* label;
  std::string name, sort, code, year_end, opt_line;
  std::string missing;  // the listed items; empty when accepted
  std::string central;  // "name|sort|code" written, when accepted
  std::string client;   // "2nd line|year end" of the new file, when accepted
};

class NewTaxpayerTest : public DialogsTest, public ::testing::WithParamInterface<NewCase> {};

TEST_P(NewTaxpayerTest, ShowNewClient_Cases) {
  const NewCase& c = GetParam();
  ExpectForm<NewModClientForm>([&](NewModClientForm& form) {
    EXPECT_EQ(form.caption, "New Taxpayer");
    EXPECT_EQ(form.client_name + form.sort_name + form.client_code + form.opt_line, "");
    form.client_name = c.name;
    form.sort_name = c.sort;
    form.client_code = c.code;
    form.year_end = c.year_end;
    form.opt_line = c.opt_line;
    if (!c.missing.empty()) {
      ui_.Expect("The following items:\r\n" + c.missing + "need to be completed before continuing.",
                 "Incomplete Entries!", Icon::kInformation, Buttons::kOk);
      PressOkNewModClient(*app_, form);
      EXPECT_FALSE(form.closed);
      NewModClient_Cancel(*app_, form);
    } else {
      PressOkNewModClient(*app_, form);
    }
    EXPECT_TRUE(form.closed);
  });
  ShowNewClient(*app_);
  if (!c.missing.empty()) {
    EXPECT_EQ(CountCentralRows("Clients"), 0);
    EXPECT_TRUE(ListFiles(app_->taxpayer_folder, "*").empty());
    EXPECT_EQ(app_->client, nullptr);
    return;
  }
  Query q = app_->central->Select(R"(SELECT * FROM "Clients")");
  ASSERT_TRUE(q.Next());
  const std::string file = q.Text("File Name");
  EXPECT_EQ(CentralRow(c.code), c.central + "|" + file);
  EXPECT_EQ(ClientRow(file), c.central + "|" + c.client);
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->current.client_code, c.code);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NewTaxpayerTest,
    ::testing::Values(
        NewCase{"SortNameFromName", "John Q Public", "", "PUB01", "06/30/2025", "", "",
                "John Q Public|Public, John Q|PUB01", " |2025-06-30"},
        NewCase{"NeitherNameNorCode", "", "", "", "06/30/2025", "",
                " - Taxpayer Name\r\n - Taxpayer Code\r\n", "", ""},
        NewCase{"CodeOnlyMissing", "Ann Lee", "", "  ", "", "", " - Taxpayer Code\r\n", "", ""},
        NewCase{"InvalidYearEnd", "Ann Lee", "Lee, Ann", "LEE01", "02/30/2025", "c/o Bank", "",
                "Ann Lee|Lee, Ann|LEE01", "c/o Bank |1990-01-01"},
        NewCase{"EmptyYearEnd", "Ann Lee", "Lee, Ann", "LEE01", "__/__/____", "", "",
                "Ann Lee|Lee, Ann|LEE01", " |1990-01-01"},
        NewCase{"QuotesAndNonAscii", "Zoë O'Brien \"Bee\"", "O'Brien, Zoë", "OBR01", "12/31/2025",
                "c/o \"Trust\" – Ünï", "", "Zoë O'Brien \"Bee\"|O'Brien, Zoë|OBR01",
                "c/o \"Trust\" – Ünï |2025-12-31"}),
    [](const auto& info) { return std::string(info.param.label); });

// "&Modify Taxpayer Info...": the dialog starts from the current taxpayer;
// the sort-name button rebuilds the sort name; OK changes both files and
// the current taxpayer.
TEST_F(DialogsTest, ShowModifyClient_ChangesBothFiles) {
  OpenFreshTaxpayer("DOE01", "John Doe", "DOE0101.mdb");
  ExpectForm<NewModClientForm>([&](NewModClientForm& form) {
    EXPECT_EQ(form.caption, "Modify Taxpayer");
    EXPECT_EQ(form.client_name + "|" + form.sort_name + "|" + form.client_code + "|" +
                  form.opt_line + "|" + form.year_end,
              "John Doe|John Doe|DOE01| |12/31/2025");
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

// A caption that names no mode is reported and nothing is written.
TEST_F(DialogsTest, NewModClient_OK_UnknownCaption) {
  NewModClientForm form;
  form.caption = "Delete Taxpayer";
  form.client_name = "John Doe";
  form.client_code = "DOE01";
  ui_.Expect("dlgNewModClient has incorrect caption!", "Error", Icon::kCritical, Buttons::kOk);
  PressOkNewModClient(*app_, form);
  EXPECT_FALSE(form.closed);
  EXPECT_EQ(CountCentralRows("Clients"), 0);
}

// With an empty taxpayer index, Open says so and opens nothing.
TEST_F(DialogsTest, OpenClient_OK_EmptyIndex_NoTaxpayerFiles) {
  State(*app_, kClientClosed);
  ExpectForm<OpenClientForm>([&](OpenClientForm& form) {
    EXPECT_TRUE(form.clients.empty());
    ui_.Expect(
        "There are no Taxpayer Files to open. To create a New Taxpayer click on the Cancel "
        "button, and then click on the Taxpayer menu, followed by the New Taxpayer File... menu "
        "item.",
        "No Taxpayer Files", Icon::kInformation, Buttons::kOk);
    OpenClient_Open(*app_, form);
    EXPECT_FALSE(form.closed);
    OpenClient_Cancel(*app_, form);
  });
  ShowOpenClient(*app_, "Open Taxpayer File");
  EXPECT_EQ(app_->client, nullptr);
  EXPECT_EQ(app_->window.state, kClientClosed);
}

// Opening a taxpayer: with "Open Only Portfolio" checked and exactly one
// portfolio the user lands in it; otherwise at the taxpayer.
struct OnlyPortCase {
  const char* label;
  bool option;
  std::vector<std::string> ports;
  int16_t state;
  std::string port;
};

class OnlyPortTest : public DialogsTest, public ::testing::WithParamInterface<OnlyPortCase> {};

TEST_P(OnlyPortTest, OpenClient_OK_OpenOnlyPortfolio) {
  const OnlyPortCase& c = GetParam();
  AddTaxpayer("ADA01", "Ada Byron", "Byron, Ada", "BYRO01.mdb");
  AddTaxpayer("DOE01", "John Doe", "Doe, John", "DOE0101.mdb");
  {
    auto db = Database::Open(app_->taxpayer_folder + "DOE0101.mdb");
    for (const std::string& port : c.ports) Scenario(*db).Portfolio(port);
  }
  app_->window.options.open_only_port = c.option;
  ExpectForm<OpenClientForm>([&](OpenClientForm& form) {
    EXPECT_EQ(form.open_caption + "/" + form.cancel_caption, "Open/Cancel");
    ASSERT_EQ(form.clients.size(), 2u);
    EXPECT_EQ(form.clients[0].client_code + form.clients[1].client_code, "ADA01DOE01");
    form.selected = 1;
    OpenClient_Open(*app_, form);
    EXPECT_TRUE(form.closed);
  });
  ShowOpenClient(*app_, "Open Taxpayer File");
  EXPECT_EQ(ui_.help_texts().front(), "Opening Taxpayer");
  EXPECT_EQ(app_->current.client_code, "DOE01");
  EXPECT_EQ(app_->window.state, c.state);
  EXPECT_EQ(app_->current.port_name, c.port);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, OnlyPortTest,
    ::testing::Values(OnlyPortCase{"OneOpensIt", true, {"Growth"}, kPortOpen, "Growth"},
                      OnlyPortCase{
                          "TwoStayAtTaxpayer", true, {"Growth", "Income"}, kClientOpen, ""},
                      OnlyPortCase{"NoneStaysAtTaxpayer", true, {}, kClientOpen, ""},
                      OnlyPortCase{"OptionOffStaysAtTaxpayer", false, {"Growth"}, kClientOpen, ""}),
    [](const auto& info) { return std::string(info.param.label); });

// The delete mode asks first, deletes the selected taxpayer's file and
// index row, and stays open on the list that is left.
TEST_F(DialogsTest, ShowOpenClient_DeleteMode_DeletesSelected) {
  AddTaxpayer("ADA01", "Ada Byron", "Byron, Ada", "BYRO01.mdb");
  OpenFreshTaxpayer("DOE01", "John Doe", "DOE0101.mdb");
  const std::string question =
      "Are you sure you want to delete all transactions, files and references within this system "
      "to the taxpayer that has a taxpayer code of ADA01?";
  ExpectForm<OpenClientForm>([&](OpenClientForm& form) {
    EXPECT_EQ(form.open_caption + "/" + form.cancel_caption, "Delete/Close");
    ASSERT_EQ(form.clients.size(), 2u);
    EXPECT_EQ(form.clients[0].client_code, "ADA01");
    ui_.Expect(question, "Warning", Icon::kExclamation, Buttons::kYesNo, Answer::kNo);
    OpenClient_Open(*app_, form);
    EXPECT_EQ(form.clients.size(), 2u);
    EXPECT_EQ(app_->window.state, kClientOpen);

    ui_.Expect(question, "Warning", Answer::kYes);
    OpenClient_Open(*app_, form);
    EXPECT_FALSE(form.closed);
    ASSERT_EQ(form.clients.size(), 1u);
    EXPECT_EQ(form.clients[0].client_code, "DOE01");
    EXPECT_EQ(form.selected, 0);
    OpenClient_Cancel(*app_, form);
  });
  ShowOpenClient(*app_, "Select Taxpayer to Delete");
  EXPECT_EQ(CentralRow("ADA01"), "-");
  EXPECT_EQ(ListFiles(app_->taxpayer_folder, "*"), std::vector<std::string>{"DOE0101.mdb"});
  EXPECT_EQ(app_->window.state, kClientClosed);
  EXPECT_EQ(app_->central->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
