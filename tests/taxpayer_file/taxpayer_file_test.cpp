#include "data/taxpayer_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "app/app_state.h"
#include "app/error_handler.h"
#include "data/taxpayer_dialog.h"
#include "taxpayer_file/taxpayer_fixture.h"

namespace lotwise::testing {
namespace {

const Date kYearEnd = Date::FromYmd(2025, 12, 31);
const std::string kSortTitle = "Sort Name already exists!";
const std::string kSortQuestionStart =
    "The Sort Name for this Client already exists for another Client. This is OK, however you may "
    "want to change it if you want unique Sort Names.\n";
const std::string kNewSortQuestion =
    kSortQuestionStart + "If you want to keep the Sort Name, click OK, otherwise click Cancel.";
const std::string kModSortQuestion =
    kSortQuestionStart + "If you want to change the Sort Name click OK, otherwise click Cancel.";

std::string CodeInUse(const std::string& code) {
  return "The Taxpayer Code: " + code + " is already in use. Please enter a new Taxpayer Code.";
}

// The file name: up to four leading letters and digits of the sort name (or
// the month when there are none), then minute and second without zeros; a
// name taken on disk (in any letter case) or in the index waits for the
// clock to move on.
TEST_F(TaxpayerTest, CalcClientFileName_BaseAndClock) {
  struct Case {
    const char *label, *seed, *expected;
    LocalTime now;
  };
  const Case cases[] = {
      {"InitialsCutAtDot", "A.B Smith", "A73.mdb", {2026, 11, 22, 10, 7, 3}},
      {"FirstFour", "Smith, John", "Smit73.mdb", {2026, 11, 22, 10, 7, 3}},
      {"LeadingDotGivesMonth", ".Net Corp", "Nov73.mdb", {2026, 11, 22, 10, 7, 3}},
      {"NonAsciiGivesMonth", "Ølsen", "Mar73.mdb", {2026, 3, 1, 10, 7, 3}},
      {"EmptyGivesMonth", "", "Jan00.mdb", {2026, 1, 1, 0, 0, 0}},
      {"NoLeadingZeros", "AB12", "AB12109.mdb", {2026, 1, 1, 10, 10, 9}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    env_->SetNow(c.now);
    EXPECT_EQ(CalcClientFileName(*app_, c.seed), c.expected);
  }
  env_->SetNow({2026, 11, 22, 10, 7, 3});
  std::ofstream(app_->taxpayer_folder + "SMIT73.MDB") << "x";
  TaxpayerIndex("X1", "X", "X", "smit74.mdb");
  EXPECT_EQ(CalcClientFileName(*app_, "Smith"), "Smit75.mdb");
  EXPECT_GE(env_->pauses(), 8);
}

// NewClient writes the index row and the file together and opens it; a
// second taxpayer in the same second gets another file. A code in use (in
// any letter case) is refused, a shared sort name only with the user's OK,
// and a refusal creates no file. OpenClient finds a taxpayer by code in
// any letter case.
TEST_F(TaxpayerTest, NewClient_CreatesOrRefuses) {
  ASSERT_TRUE(NewClient(*app_, "John Doe", "Doe, John", "DOE01", "", kYearEnd));
  EXPECT_EQ(CentralRow("DOE01"), "John Doe|Doe, John|DOE01|Doe73.mdb");
  EXPECT_EQ(ClientRow("Doe73.mdb"), "John Doe|Doe, John|DOE01| |2025-12-31");
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->current.client_db_path, app_->taxpayer_folder + "Doe73.mdb");
  EXPECT_EQ(app_->current.client_code, "DOE01");
  ASSERT_TRUE(NewClient(*app_, "Jane Doe", "Doe, Jane", "DOE02", "Trust  ", kYearEnd));
  EXPECT_EQ(CentralRow("DOE02"), "Jane Doe|Doe, Jane|DOE02|Doe74.mdb");
  EXPECT_EQ(ClientRow("Doe74.mdb"), "Jane Doe|Doe, Jane|DOE02|Trust |2025-12-31");
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");

  ui_.Expect(CodeInUse("doe01"), "Taxpayer Code in use!");
  EXPECT_FALSE(NewClient(*app_, "Other", "Other", "doe01", "", kYearEnd));
  ui_.Expect(kNewSortQuestion, kSortTitle, Answer::kCancel);
  EXPECT_FALSE(NewClient(*app_, "Other", "doe, john", "DOE03", "", kYearEnd));
  EXPECT_EQ(CountCentralRows("Clients"), 2);
  EXPECT_EQ(TaxpayerFiles().size(), 2u);
  ui_.Expect(kNewSortQuestion, kSortTitle, Answer::kOk);
  EXPECT_TRUE(NewClient(*app_, "Other", "Doe, John", "DOE03", "", kYearEnd));
  EXPECT_EQ(CountCentralRows("Clients"), 3);
  EXPECT_EQ(TaxpayerFiles().size(), 3u);
  ASSERT_TRUE(OpenClient(*app_, "doe01"));
  EXPECT_EQ(app_->current.client_name + "|" + app_->current.client_code, "John Doe|DOE01");
  EXPECT_EQ(app_->window.state, kClientOpen);
}

// A file that cannot be finished takes its index row with it.
TEST_F(TaxpayerTest, NewClient_FileFailureLeavesNoIndexRow) {
  StorageFaults faults;
  app_->storage_faults = &faults;
  faults.FailWriteNumber(1);
  ui_.Expect(ErrorHeader(31010, "disk I/O error (injected)", "CreateClientFile") + kShutDownAdvice,
             "Warning!", Icon::kCritical, Buttons::kOk);
  EXPECT_THROW(NewClient(*app_, "John Doe", "Doe, John", "DOE01", "", kYearEnd), ProgramEnded);
  app_->central = Database::Open(app_->central_path);
  EXPECT_EQ(CountCentralRows("Clients"), 0);
  EXPECT_TRUE(TaxpayerFiles().empty());
}

// A missing Taxpayer File may be made anew through the taxpayer dialog in
// its "New Taxpayer" mode; declining or giving up in the dialog keeps the
// index row.
TEST_F(TaxpayerTest, OpenClient_MissingFileOfferedAnew) {
  TaxpayerIndex("DOE01", "John Doe", "Doe, John", "GONE.mdb");
  auto expect_question = [&](Answer answer) {
    ui_.Expect("A File does not exist for this Taxpayer. Would you like to create a new one?",
               "No Taxpayer File", Icon::kExclamation, Buttons::kYesNo, answer);
  };
  expect_question(Answer::kNo);
  ui_.Expect("Cancelled...", "Open Taxpayer cancelled", Icon::kInformation, Buttons::kOk);
  EXPECT_FALSE(OpenClient(*app_, "DOE01"));
  expect_question(Answer::kYes);
  ui_.ExpectDialog("dlgNewModClient", [](DialogForm&) {});
  EXPECT_FALSE(OpenClient(*app_, "DOE01"));
  EXPECT_EQ(CentralRow("DOE01"), "John Doe|Doe, John|DOE01|GONE.mdb");

  expect_question(Answer::kYes);
  ui_.ExpectDialog("dlgNewModClient", [&](DialogForm& f) {
    auto& form = static_cast<NewModClientForm&>(f);
    EXPECT_EQ(form.caption + "|" + form.client_name + "|" + form.sort_name + "|" + form.client_code,
              "New Taxpayer|John Doe|Doe, John|DOE01");
    PressOkNewModClient(*app_, form);
    EXPECT_TRUE(form.accepted);
  });
  EXPECT_TRUE(OpenClient(*app_, "DOE01"));
  EXPECT_EQ(ui_.help_texts().back(), "Creating new Client");
  EXPECT_EQ(CentralRow("DOE01"), "John Doe|Doe, John|DOE01|Doe73.mdb");
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// ModClientInfo changes both files or neither. The sort-name question comes
// only with a new code, and only a Cancel on the taxpayer's own row stops.
using Step = std::pair<std::string, Answer>;  // message text, answer
const Step kSortOk{kModSortQuestion, Answer::kOk}, kSortNo{kModSortQuestion, Answer::kCancel};

struct ModCase {
  const char* label;
  std::string code, sort;
  std::vector<Step> messages;
  bool changed;
};

class ModClientInfoTest : public TaxpayerTest, public ::testing::WithParamInterface<ModCase> {};

TEST_P(ModClientInfoTest, ModClientInfo_BothFilesOrNeither) {
  const ModCase& c = GetParam();
  ASSERT_TRUE(NewClient(*app_, "John Doe", "Doe, John", "DOE01", "", kYearEnd));
  TaxpayerIndex("SMI01", "Ann Smith", "Smith, Ann", "Smi.mdb");
  for (const auto& [text, answer] : c.messages) {
    ui_.Expect(text, text == kModSortQuestion ? kSortTitle : "Taxpayer Code in use!", answer);
  }
  EXPECT_EQ(ModClientInfo(*app_, "Johnny Doe", c.sort, c.code, "Trust", Date::FromYmd(2026, 6, 30)),
            c.changed);
  const std::string row =
      c.changed ? "Johnny Doe|" + c.sort + "|" + c.code : "John Doe|Doe, John|DOE01";
  EXPECT_EQ(CentralRow(c.changed ? c.code : "DOE01"), row + "|Doe73.mdb");
  EXPECT_EQ(ClientRow("Doe73.mdb"), row + (c.changed ? "|Trust |2026-06-30" : "| |2025-12-31"));
  EXPECT_EQ(app_->current.client_name + "|" + app_->current.client_code,
            c.changed ? "Johnny Doe|" + c.code : "John Doe|DOE01");
  EXPECT_EQ(CountCentralRows("Clients"), 2);
}

const ModCase kModCases[] = {
    {"AllFields", "DOE02", "Doe, Johnny", {}, true},
    {"CodeOfOther", "smi01", "Doe, John", {kSortOk, {CodeInUse("smi01"), Answer::kOk}}, false},
    {"CaseOnly", "doe01", "Doe, John", {{CodeInUse("doe01"), Answer::kOk}}, false},
    {"OtherSortCancelGoesOn", "DOE02", "Smith, Ann", {kSortNo}, true},
    {"OwnSortCancelStops", "DOE02", "Doe, John", {kSortNo}, false},
    {"SameCodeAsksNothing", "DOE01", "Smith, Ann", {}, true},
};
INSTANTIATE_TEST_SUITE_P(Cases, ModClientInfoTest, ::testing::ValuesIn(kModCases),
                         [](const auto& info) { return std::string(info.param.label); });

// DelTaxpayer removes file and index row after a Yes only, also when the
// file is already gone; an unindexed code is reported.
TEST_F(TaxpayerTest, DelTaxpayer_Cases) {
  auto expect_question = [&](const std::string& code, Answer answer) {
    ui_.Expect(
        "Are you sure you want to delete all transactions, files and references within this "
        "system to the taxpayer that has a taxpayer code of " +
            code + "?",
        "Warning", Icon::kExclamation, Buttons::kYesNo, answer);
  };
  ASSERT_TRUE(NewClient(*app_, "John Doe", "Doe, John", "DOE01", "", kYearEnd));
  ASSERT_TRUE(NewClient(*app_, "Jane Doe", "Doe, Jane", "DOE02", "", kYearEnd));
  expect_question("DOE02", Answer::kNo);
  DelTaxpayer(*app_, "DOE02");
  expect_question("DOE02", Answer::kYes);
  DelTaxpayer(*app_, "DOE02");
  EXPECT_EQ(TaxpayerFiles(), std::vector<std::string>{"Doe73.mdb"});
  EXPECT_EQ(app_->window.state, kClientClosed);
  EXPECT_EQ(app_->client, nullptr);
  expect_question("XYZ", Answer::kYes);
  ui_.Expect(
      "One and only one record should be found with this taxpayer code. 0 records were found. "
      "Could not remove from central file.",
      "Warning", Icon::kExclamation, Buttons::kOk);
  DelTaxpayer(*app_, "XYZ");
  EXPECT_EQ(CountCentralRows("Clients"), 1);
  std::filesystem::remove(app_->taxpayer_folder + "Doe73.mdb");
  expect_question("DOE01", Answer::kYes);
  DelTaxpayer(*app_, "DOE01");
  EXPECT_EQ(CountCentralRows("Clients"), 0);
  EXPECT_EQ(env_->end_calls(), 0);
}

// VerifyNewModClient lists what is missing, name first; fills an empty sort
// name from the name and an invalid year end with 1/1/1990 silently.
TEST_F(TaxpayerTest, VerifyNewModClient_Cases) {
  struct Case {
    const char *label, *name, *sort, *code, *year_end;
    std::string missing;  // the listed items; empty when accepted
    const char* after;    // sort name and year end afterwards
  };
  const Case cases[] = {
      {"SortFromName", "John Q Public", "", "PUB01", "06/30/2025", "", "Public, John Q|06/30/2025"},
      {"NoNameNoCode", "", "", " ", "", " - Taxpayer Name\r\n - Taxpayer Code\r\n", "|1/1/1990"},
      {"CodeMissing", "Ann", "Ann", "", "12/31/2025", " - Taxpayer Code\r\n", "Ann|12/31/2025"},
      {"InvalidYearEnd", "Ann", "Ann", "A1", "13/45/2020", "", "Ann|1/1/1990"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    NewModClientForm form;
    form.client_name = c.name;
    form.sort_name = c.sort;
    form.client_code = c.code;
    form.year_end = c.year_end;
    if (!c.missing.empty()) {
      ui_.Expect("The following items:\r\n" + c.missing + "need to be completed before continuing.",
                 "Incomplete Entries!", Icon::kInformation, Buttons::kOk);
    }
    EXPECT_EQ(VerifyNewModClient(*app_, form), c.missing.empty());
    EXPECT_EQ(form.sort_name + "|" + form.year_end, c.after);
  }
}

// The dialog's "Modify Taxpayer" mode starts from the current taxpayer's
// second line and year end and saves through ModClientInfo; a caption that
// names no mode is reported and nothing is done.
TEST_F(TaxpayerTest, NewModClient_ModifyAndUnknownCaption) {
  ASSERT_TRUE(
      NewClient(*app_, "John Doe", "Doe, John", "DOE01", "c/o Trust", Date::FromYmd(1990, 1, 1)));
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

  NewModClientForm form;
  form.caption = "Delete Taxpayer";
  form.client_name = "John Doe";
  form.client_code = "DOE02";
  ui_.Expect("dlgNewModClient has incorrect caption!", "Error", Icon::kCritical, Buttons::kOk);
  NewModClient_OK(*app_, form);
  EXPECT_FALSE(form.accepted);
  EXPECT_EQ(CountCentralRows("Clients"), 1);
}

}  // namespace
}  // namespace lotwise::testing
