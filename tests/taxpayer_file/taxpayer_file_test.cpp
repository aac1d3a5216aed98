#include "data/taxpayer_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/error_handler.h"
#include "data/taxpayer_dialog.h"
#include "taxpayer_file/taxpayer_fixture.h"

namespace lotwise::testing {
namespace {

const Date kYearEnd = Date::FromYmd(2025, 12, 31);
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
// the month when there are none), then minute and second without zeros.
struct NameCase {
  const char* label;
  const char* seed;
  LocalTime now;
  const char* expected;
};

class CalcClientFileNameTest : public TaxpayerTest,
                               public ::testing::WithParamInterface<NameCase> {};

TEST_P(CalcClientFileNameTest, CalcClientFileName_BaseAndClock) {
  env_->SetNow(GetParam().now);
  EXPECT_EQ(CalcClientFileName(*app_, GetParam().seed), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CalcClientFileNameTest,
    ::testing::Values(
        NameCase{"InitialsCutAtDot", "A.B Smith", {2026, 11, 22, 10, 7, 3}, "A73.mdb"},
        NameCase{"FirstFour", "Smith, John", {2026, 11, 22, 10, 7, 3}, "Smit73.mdb"},
        NameCase{"LeadingDotGivesMonth", ".Net Corp", {2026, 11, 22, 10, 7, 3}, "Nov73.mdb"},
        NameCase{"NonAsciiGivesMonth", "Ølsen", {2026, 3, 1, 10, 7, 3}, "Mar73.mdb"},
        NameCase{"EmptyGivesMonth", "", {2026, 1, 1, 0, 0, 0}, "Jan00.mdb"},
        NameCase{"NoLeadingZeros", "AB12", {2026, 1, 1, 10, 10, 9}, "AB12109.mdb"}),
    [](const auto& info) { return std::string(info.param.label); });

// A name taken on disk (in any letter case) or in the index waits for the
// clock to move on.
TEST_F(TaxpayerTest, CalcClientFileName_TakenNameWaitsForClock) {
  std::ofstream(app_->taxpayer_folder + "SMIT73.MDB") << "x";
  IndexClient("X1", "X", "X", "smit74.mdb");
  EXPECT_EQ(CalcClientFileName(*app_, "Smith"), "Smit75.mdb");
  EXPECT_GE(env_->pauses(), 8);
}

// NewClient writes the index row and the file together and opens it; a
// second taxpayer in the same second gets another file.
TEST_F(TaxpayerTest, NewClient_CreatesIndexedFileAndOpensIt) {
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
}

// A code in use (in any letter case) is refused; a shared sort name only
// with the user's OK. A refusal creates no file.
struct NewRefusal {
  const char* label;
  std::string code, sort;
  std::string text, title;
  Answer answer;
  bool created;
};

class NewClientRefusalTest : public TaxpayerTest,
                             public ::testing::WithParamInterface<NewRefusal> {};

TEST_P(NewClientRefusalTest, NewClient_Refusals) {
  const NewRefusal& c = GetParam();
  ASSERT_TRUE(NewClient(*app_, "John Doe", "Doe, John", "DOE01", "", kYearEnd));
  ui_.Expect(c.text, c.title, c.answer);
  EXPECT_EQ(NewClient(*app_, "Other", c.sort, c.code, "", kYearEnd), c.created);
  EXPECT_EQ(CountCentralRows("Clients"), c.created ? 2 : 1);
  EXPECT_EQ(TaxpayerFiles().size(), c.created ? 2u : 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NewClientRefusalTest,
    ::testing::Values(NewRefusal{"CodeOtherCase", "doe01", "Other", CodeInUse("doe01"),
                                 "Taxpayer Code in use!", Answer::kOk, false},
                      NewRefusal{"SortNameDeclined", "DOE02", "doe, john", kNewSortQuestion,
                                 "Sort Name already exists!", Answer::kCancel, false},
                      NewRefusal{"SortNameAccepted", "DOE02", "Doe, John", kNewSortQuestion,
                                 "Sort Name already exists!", Answer::kOk, true}),
    [](const auto& info) { return std::string(info.param.label); });

// A file that cannot be finished takes its index row with it.
TEST_F(TaxpayerTest, NewClient_FileFailureLeavesNoIndexRow) {
  StorageFaults faults;
  app_->storage_faults = &faults;
  faults.FailWriteNumber(1);
  ui_.Expect(ErrorHeader(31010, "disk I/O error (injected)", "CreateClientFile") + kShutDownAdvice,
             "Warning!", Icon::kCritical, Buttons::kOk);
  EXPECT_FALSE(NewClient(*app_, "John Doe", "Doe, John", "DOE01", "", kYearEnd));
  EXPECT_EQ(env_->end_calls(), 1);
  app_->central = Database::Open(app_->central_path);
  EXPECT_EQ(CountCentralRows("Clients"), 0);
  EXPECT_TRUE(TaxpayerFiles().empty());
}

// OpenClient opens the indexed file by code; a missing file may be made
// anew through the taxpayer dialog, and giving up keeps the index row.
TEST_F(TaxpayerTest, OpenClient_OpensIndexedFile) {
  WriteTaxpayerFile("DOE0101.mdb", "DOE01", "John Doe");
  IndexClient("DOE01", "John Doe", "Doe, John", "DOE0101.mdb");
  EXPECT_TRUE(OpenClient(*app_, "doe01"));
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->current.client_name, "John Doe");
  EXPECT_EQ(app_->current.client_code, "DOE01");
  EXPECT_EQ(env_->end_calls(), 0);
}

TEST_F(TaxpayerTest, OpenClient_MissingFileOfferedAnew) {
  IndexClient("DOE01", "John Doe", "Doe, John", "GONE.mdb");
  const std::string kIndexed = "John Doe|Doe, John|DOE01|GONE.mdb";
  auto expect_question = [&](Answer answer) {
    ui_.Expect("A File does not exist for this Taxpayer. Would you like to create a new one?",
               "No Taxpayer File", Icon::kExclamation, Buttons::kYesNo, answer);
  };
  expect_question(Answer::kNo);
  ui_.Expect("Cancelled...", "Open Taxpayer cancelled", Icon::kInformation, Buttons::kOk);
  EXPECT_FALSE(OpenClient(*app_, "DOE01"));
  EXPECT_EQ(CentralRow("DOE01"), kIndexed);

  expect_question(Answer::kYes);
  ui_.ExpectDialog("dlgNewModClient", [](DialogForm&) {});
  EXPECT_FALSE(OpenClient(*app_, "DOE01"));
  EXPECT_EQ(CentralRow("DOE01"), kIndexed);

  expect_question(Answer::kYes);
  ui_.ExpectDialog("dlgNewModClient", [&](DialogForm& f) {
    auto& form = static_cast<NewModClientForm&>(f);
    EXPECT_EQ(form.caption + "|" + form.client_name + "|" + form.sort_name + "|" + form.client_code,
              "New Taxpayer|John Doe|Doe, John|DOE01");
    PressOkNewModClient(*app_, form);
  });
  EXPECT_TRUE(OpenClient(*app_, "DOE01"));
  EXPECT_EQ(CentralRow("DOE01"), "John Doe|Doe, John|DOE01|Doe73.mdb");
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// ModClientInfo changes both files or neither. The sort-name question comes
// only with a new code, and only a Cancel on the taxpayer's own row stops.
struct ModCase {
  const char* label;
  std::string code, sort;
  std::vector<std::pair<std::string, Answer>> messages;  // text, answer
  bool changed;
};

class ModClientInfoTest : public TaxpayerTest, public ::testing::WithParamInterface<ModCase> {
 protected:
  void SetUp() override {
    TaxpayerTest::SetUp();
    ASSERT_TRUE(NewClient(*app_, "John Doe", "Doe, John", "DOE01", "", kYearEnd));
    IndexClient("SMI01", "Ann Smith", "Smith, Ann", "Smi.mdb");
  }
};

TEST_P(ModClientInfoTest, ModClientInfo_BothFilesOrNeither) {
  const ModCase& c = GetParam();
  for (const auto& [text, answer] : c.messages) {
    ui_.Expect(text,
               text.starts_with("The Sort") ? "Sort Name already exists!" : "Taxpayer Code in use!",
               answer);
  }
  const bool result =
      ModClientInfo(*app_, "Johnny Doe", c.sort, c.code, "Trust", Date::FromYmd(2026, 6, 30));
  EXPECT_EQ(result, c.changed);
  if (c.changed) {
    EXPECT_EQ(CentralRow(c.code), "Johnny Doe|" + c.sort + "|" + c.code + "|Doe73.mdb");
    EXPECT_EQ(ClientRow("Doe73.mdb"), "Johnny Doe|" + c.sort + "|" + c.code + "|Trust |2026-06-30");
    EXPECT_EQ(app_->current.client_code, c.code);
    EXPECT_EQ(app_->current.client_name, "Johnny Doe");
  } else {
    EXPECT_EQ(CentralRow("DOE01"), "John Doe|Doe, John|DOE01|Doe73.mdb");
    EXPECT_EQ(ClientRow("Doe73.mdb"), "John Doe|Doe, John|DOE01| |2025-12-31");
  }
  EXPECT_EQ(CountCentralRows("Clients"), 2);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ModClientInfoTest,
    ::testing::Values(
        ModCase{"AllFields", "DOE02", "Doe, Johnny", {}, true},
        ModCase{"CodeOfOther",
                "smi01",
                "Doe, John",
                {{kModSortQuestion, Answer::kOk}, {CodeInUse("smi01"), Answer::kOk}},
                false},
        ModCase{"CaseOnly", "doe01", "Doe, John", {{CodeInUse("doe01"), Answer::kOk}}, false},
        ModCase{"OtherSortCancelGoesOn",
                "DOE02",
                "Smith, Ann",
                {{kModSortQuestion, Answer::kCancel}},
                true},
        ModCase{"OwnSortCancelStops",
                "DOE02",
                "Doe, John",
                {{kModSortQuestion, Answer::kCancel}},
                false},
        ModCase{"SameCodeAsksNothing", "DOE01", "Smith, Ann", {}, true}),
    [](const auto& info) { return std::string(info.param.label); });

// DelTaxpayer removes file and index row after a Yes, also when the file is
// already gone; an unindexed code is reported.
struct DelCase {
  const char* label;
  std::string code;
  Answer answer;
  bool file_gone_before;
  bool deleted;
  std::string extra_text;  // a message after the question
};

class DelTaxpayerTest : public TaxpayerTest, public ::testing::WithParamInterface<DelCase> {};

TEST_P(DelTaxpayerTest, DelTaxpayer_Cases) {
  const DelCase& c = GetParam();
  ASSERT_TRUE(NewClient(*app_, "John Doe", "Doe, John", "DOE01", "", kYearEnd));
  if (c.file_gone_before) std::filesystem::remove(app_->taxpayer_folder + "Doe73.mdb");
  ui_.Expect(
      "Are you sure you want to delete all transactions, files and references within this "
      "system to the taxpayer that has a taxpayer code of " +
          c.code + "?",
      "Warning", Icon::kExclamation, Buttons::kYesNo, c.answer);
  if (!c.extra_text.empty()) ui_.Expect(c.extra_text, "Warning", Icon::kExclamation, Buttons::kOk);
  DelTaxpayer(*app_, c.code);
  EXPECT_EQ(CountCentralRows("Clients"), c.deleted ? 0 : 1);
  if (c.deleted) {
    EXPECT_TRUE(TaxpayerFiles().empty());
    EXPECT_EQ(app_->window.state, kClientClosed);
    EXPECT_EQ(app_->client, nullptr);
  }
  EXPECT_EQ(env_->end_calls(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DelTaxpayerTest,
    ::testing::Values(DelCase{"Declined", "DOE01", Answer::kNo, false, false, ""},
                      DelCase{"Confirmed", "DOE01", Answer::kYes, false, true, ""},
                      DelCase{"FileAlreadyGone", "DOE01", Answer::kYes, true, true, ""},
                      DelCase{"UnknownCode", "XYZ", Answer::kYes, false, false,
                              "One and only one record should be found with this taxpayer code. 0 "
                              "records were found. Could not remove from central file."}),
    [](const auto& info) { return std::string(info.param.label); });

}  // namespace
}  // namespace lotwise::testing
