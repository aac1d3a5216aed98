#include "app/taxpayer_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "app/app_state.h"
#include "app/taxpayer_dialog.h"
#include "data/error_handler.h"
#include "ground/program_ended.h"
#include "taxpayer_file/taxpayer_fixture.h"

namespace lotwise::testing {
namespace {

const Date kYearEnd = Date::FromYmd(2025, 12, 31);
// The file name: up to four leading letters and digits of the sort name (or
// the month when there are none), then minute and second without zeros; a
// name taken on disk (in any letter case) or in the index waits for the
// clock to move on.
TEST_F(TaxpayerTest, CalcClientFileName_BaseAndClock) {
  for (const GoldenCase& c : ReadCases(__FILE__, "file_names.txt")) {
    SCOPED_TRACE(c.name);
    std::istringstream fields(c.Lines("").at(0));
    std::string seed, clock, expected;
    for (std::string* field : {&seed, &clock, &expected}) std::getline(fields, *field, '|');
    LocalTime now;
    std::istringstream(clock) >> now.year >> now.month >> now.day >> now.hour >> now.minute >>
        now.second;
    env_->SetNow(now);
    EXPECT_EQ(CalcClientFileName(*app_, seed), expected);
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

  ExpectSaid(ui_, __FILE__, "code_in_use", Answer::kOk, {"doe01"});
  EXPECT_FALSE(NewClient(*app_, "Other", "Other", "doe01", "", kYearEnd));
  ExpectSaid(ui_, __FILE__, "new_sort_shared", Answer::kCancel);
  EXPECT_FALSE(NewClient(*app_, "Other", "doe, john", "DOE03", "", kYearEnd));
  EXPECT_EQ(CountCentralRows("Clients"), 2);
  EXPECT_EQ(TaxpayerFiles().size(), 2u);
  ExpectSaid(ui_, __FILE__, "new_sort_shared", Answer::kOk);
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
  ExpectFatal(31010, "disk I/O error (injected)", "CreateClientFile");
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
  auto expect_question = [&](Answer answer) { ExpectSaid(ui_, __FILE__, "no_file", answer); };
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
// Cases: golden/mod_client.txt.
class ModClientInfoTest : public TaxpayerTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(ModClientInfoTest, ModClientInfo_BothFilesOrNeither) {
  const std::vector<std::string> lines = GetParam().Lines("");
  std::istringstream fields(lines.at(0));
  std::string code, sort, changed_text;
  for (std::string* field : {&code, &sort, &changed_text}) std::getline(fields, *field, '|');
  const bool changed = changed_text == "yes";
  ASSERT_TRUE(NewClient(*app_, "John Doe", "Doe, John", "DOE01", "", kYearEnd));
  TaxpayerIndex("SMI01", "Ann Smith", "Smith, Ann", "Smi.mdb");
  for (size_t i = 1; i < lines.size(); ++i) {
    std::istringstream words(lines[i]);
    std::string say, key, answer;
    words >> say >> key >> answer;
    ExpectSaid(ui_, __FILE__, key, answer == "cancel" ? Answer::kCancel : Answer::kOk, {code});
  }
  EXPECT_EQ(ModClientInfo(*app_, "Johnny Doe", sort, code, "Trust", Date::FromYmd(2026, 6, 30)),
            changed);
  const std::string row = changed ? "Johnny Doe|" + sort + "|" + code : "John Doe|Doe, John|DOE01";
  EXPECT_EQ(CentralRow(changed ? code : "DOE01"), row + "|Doe73.mdb");
  EXPECT_EQ(ClientRow("Doe73.mdb"), row + (changed ? "|Trust |2026-06-30" : "| |2025-12-31"));
  EXPECT_EQ(app_->current.client_name + "|" + app_->current.client_code,
            changed ? "Johnny Doe|" + code : "John Doe|DOE01");
  EXPECT_EQ(CountCentralRows("Clients"), 2);
}

INSTANTIATE_TEST_SUITE_P(Cases, ModClientInfoTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "mod_client.txt")),
                         [](const auto& info) { return info.param.name; });

// DelTaxpayer removes file and index row after a Yes only, also when the
// file is already gone; an unindexed code is reported.
TEST_F(TaxpayerTest, DelTaxpayer_Cases) {
  auto expect_question = [&](const std::string& code, Answer answer) {
    ExpectSaid(ui_, __FILE__, "delete_taxpayer", answer, {code});
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
  ExpectSaid(ui_, __FILE__, "not_one_record");
  DelTaxpayer(*app_, "XYZ");
  EXPECT_EQ(CountCentralRows("Clients"), 1);
  std::filesystem::remove(app_->taxpayer_folder + "Doe73.mdb");
  expect_question("DOE01", Answer::kYes);
  DelTaxpayer(*app_, "DOE01");
  EXPECT_EQ(CountCentralRows("Clients"), 0);
  EXPECT_EQ(env_->end_calls(), 0);
}

// A Taxpayer File that is no database, or a damaged one, reaches the user
// as the error handler's message for it; the program stops only where that message says
// so, and neither file gains a row.
class DamagedFileTest : public TaxpayerTest {
 protected:
  void SetUp() override {
    TaxpayerTest::SetUp();
    WriteTaxpayerFile("DOE0101.mdb", "DOE01", "John Doe");
    path_ = app_->taxpayer_folder + "DOE0101.mdb";
    TaxpayerIndex("DOE01", "John Doe", "Doe, John", "DOE0101.mdb");
  }

  // Overwrites the file from byte `from` on, keeping its length.
  void Scribble(std::streamoff from) {
    std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
    file.seekg(0, std::ios::end);
    std::streamoff size = file.tellg();
    file.seekp(from);
    file << std::string(static_cast<size_t>(size - from), '\xA5');
  }

  std::string path_;
};

// Damaged pages are a warning and the program carries on; a file that is no
// database at all is a possible error and stops it.
TEST_F(DamagedFileTest, DamagedThenNotADatabase) {
  // The 100-byte header survives, so SQLite knows the file as its own and
  // finds the pages behind it damaged.
  Scribble(100);
  ExpectSaid(ui_, __FILE__, "damaged");
  EXPECT_FALSE(OpenClient(*app_, "DOE01"));
  EXPECT_EQ(env_->end_calls(), 0);
  EXPECT_EQ(State(*app_, kStateQuery), kClientClosed);
  EXPECT_EQ(CentralRow("DOE01"), "John Doe|Doe, John|DOE01|DOE0101.mdb");
  EXPECT_EQ(app_->central->IntegrityCheck(), "ok");

  Scribble(0);
  ExpectSaid(ui_, __FILE__, "not_a_database", Answer::kOk,
             {ErrorHeader(3343, "Unrecognized database format '" + path_ + "'.", "OpenClient")});
  EXPECT_THROW(OpenClient(*app_, "DOE01"), ProgramEnded);
  EXPECT_EQ(app_->client, nullptr);
}

}  // namespace
}  // namespace lotwise::testing
