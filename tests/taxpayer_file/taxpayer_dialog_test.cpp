#include "data/taxpayer_dialog.h"

#include <gtest/gtest.h>

#include <string>

#include "app/app_state.h"
#include "data/taxpayer_file.h"
#include "taxpayer_file/taxpayer_fixture.h"

namespace lotwise::testing {
namespace {

// VerifyNewModClient lists what is missing, name first; fills an empty sort
// name from the name and an invalid year end with 1/1/1990 silently.
struct VerifyCase {
  const char* label;
  std::string name, sort, code, year_end;
  std::string missing;  // the listed items; empty when accepted
  std::string sort_after, year_end_after;
};

class VerifyTest : public TaxpayerTest, public ::testing::WithParamInterface<VerifyCase> {};

TEST_P(VerifyTest, VerifyNewModClient_Cases) {
  const VerifyCase& c = GetParam();
  NewModClientForm form;
  form.caption = "New Taxpayer";
  form.client_name = c.name;
  form.sort_name = c.sort;
  form.client_code = c.code;
  form.year_end = c.year_end;
  if (!c.missing.empty()) {
    ui_.Expect("The following items:\r\n" + c.missing + "need to be completed before continuing.",
               "Incomplete Entries!", Icon::kInformation, Buttons::kOk);
  }
  EXPECT_EQ(VerifyNewModClient(*app_, form), c.missing.empty());
  EXPECT_EQ(form.sort_name, c.sort_after);
  EXPECT_EQ(form.year_end, c.year_end_after);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, VerifyTest,
    ::testing::Values(VerifyCase{"SortFromName", "John Q Public", "", "PUB01", "06/30/2025", "",
                                 "Public, John Q", "06/30/2025"},
                      VerifyCase{"NeitherNameNorCode", "", "", " ", "",
                                 " - Taxpayer Name\r\n - Taxpayer Code\r\n", "", "1/1/1990"},
                      VerifyCase{"CodeMissing", "Ann", "Ann", "", "12/31/2025",
                                 " - Taxpayer Code\r\n", "Ann", "12/31/2025"},
                      VerifyCase{"InvalidYearEnd", "Ann", "Ann", "A1", "13/45/2020", "", "Ann",
                                 "1/1/1990"}),
    [](const auto& info) { return std::string(info.param.label); });

// The dialog carries out its caption's mode and shows the mode's status
// text; Modify starts from the current taxpayer's second line and year end.
TEST_F(TaxpayerTest, ShowNewModClient_NewThenModify) {
  ui_.ExpectDialog("dlgNewModClient", [&](DialogForm& f) {
    auto& form = static_cast<NewModClientForm&>(f);
    EXPECT_EQ(form.client_name + "|" + form.sort_name + "|" + form.client_code, "John Doe||DOE01");
    form.opt_line = "c/o Trust";
    PressOkNewModClient(*app_, form);
    EXPECT_TRUE(form.accepted);
  });
  ShowNewModClient(*app_, "New Taxpayer", "John Doe", "", "DOE01");
  EXPECT_EQ(ui_.help_texts().back(), "Creating new Client");
  EXPECT_EQ(CentralRow("DOE01"), "John Doe|Doe, John|DOE01|Doe73.mdb");
  EXPECT_EQ(ClientRow("Doe73.mdb"), "John Doe|Doe, John|DOE01|c/o Trust |1990-01-01");

  ui_.ExpectDialog("dlgNewModClient", [&](DialogForm& f) {
    auto& form = static_cast<NewModClientForm&>(f);
    EXPECT_EQ(form.opt_line + "|" + form.year_end, "c/o Trust |01/01/1990");
    form.year_end = "12/31/2025";
    PressOkNewModClient(*app_, form);
    EXPECT_TRUE(form.accepted);
  });
  ShowNewModClient(*app_, "Modify Taxpayer", "John Doe", "Doe, John", "DOE01");
  EXPECT_EQ(ui_.help_texts().back(), "Saving modifications to Client");
  EXPECT_EQ(ClientRow("Doe73.mdb"), "John Doe|Doe, John|DOE01|c/o Trust |2025-12-31");
  EXPECT_EQ(CountCentralRows("Clients"), 1);
}

// A caption that names no mode is reported and nothing is done.
TEST_F(TaxpayerTest, NewModClient_OK_UnknownCaption) {
  NewModClientForm form;
  form.caption = "Delete Taxpayer";
  form.client_name = "John Doe";
  form.client_code = "DOE01";
  ui_.Expect("dlgNewModClient has incorrect caption!", "Error", Icon::kCritical, Buttons::kOk);
  NewModClient_OK(*app_, form);
  EXPECT_FALSE(form.accepted);
  EXPECT_EQ(CountCentralRows("Clients"), 0);
}

}  // namespace
}  // namespace lotwise::testing
