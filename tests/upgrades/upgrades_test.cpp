#include "data/upgrades.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <sstream>
#include <string>

#include "data/database.h"
#include "data/error_handler.h"
#include "data/schema.h"
#include "ground/paths.h"
#include "storage/storage_fixture.h"
#include "support/app_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

// The help bar's text at each step of the chain (golden/steps.txt).
const std::vector<GoldenCase> kSteps = ReadCases(__FILE__, "steps.txt");
const int kStepCount = static_cast<int>(kSteps.at(0).Lines("").size());
const int kLw96_12 = 1, kLw96_20 = 3, kLw2000_20 = 13;
const std::string kStale = "SELECT 'stale'";
const std::string kMissing = "(missing)";

// The help-bar texts of steps first..last but `skipped`.
Lines Texts(int first, int last, bool central, int skipped = -1) {
  Lines texts;
  for (int i = first; i <= last; ++i) {
    if (i != skipped) texts.push_back(kSteps.at(central ? 0 : 1).Lines("").at(i));
  }
  return texts;
}

Lines Version(Database& db) { return Rows(db.Select(R"(SELECT "Version" FROM "Version")")); }

void SetVersion(Database& db, const std::optional<std::string>& version) {
  db.Execute(R"(DELETE FROM "Version")");
  if (version) db.Execute(R"(INSERT INTO "Version" ("Version") VALUES (:v))", {{"v", *version}});
}

std::string SavedOrMissing(Database& db, const char* name) {
  return db.HasSavedQuery(name) ? db.SavedQuerySql(name) : kMissing;
}

// golden/walks.txt: the stored version ("-" for an empty table), whether
// "Update All" is set, and the steps that must run: from the first on but
// the skipped one.
struct WalkCase {
  std::optional<std::string> stored;
  bool update_all = false;
  int first_step = 0, skipped = -1;
};

class WalkTest : public AppTest, public ::testing::WithParamInterface<GoldenCase> {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    std::istringstream words(GetParam().Lines("").at(0));
    std::string stored, update_all;
    words >> stored >> update_all >> c.first_step >> c.skipped;
    if (stored != "-") c.stored = stored;
    c.update_all = update_all == "yes";
  }
  bool Runs(int step) const { return step >= c.first_step && step != c.skipped; }
  WalkCase c;
};

// Both chains over files of the current layout: each stored version joins
// the chain at its step, shows exactly the texts of the steps it passes,
// does the saved-query work of exactly those steps, and ends at the current version in one row.
TEST_P(WalkTest, Walk_FromStoredVersion) {
  OpenFreshCentral();
  OpenFreshTaxpayer();
  Database& central = *app_->central;
  Database& client = *app_->client;
  const std::string open_client_sql = central.SavedQuerySql("dlgOpenClient");
  const std::string entire_sell_sql = client.SavedQuerySql("Get Entire Sell");
  for (Database* db : {&central, &client}) SetVersion(*db, c.stored);
  central.SetSavedQuery("dlgOpenClient", kStale);
  central.DeleteSavedQuery("Get a Client");
  central.DeleteSavedQuery("DeleteClient");
  client.DeleteSavedQuery("Get Entire Sell");
  client.SetSavedQuery("All Secs", kStale);
  client.DeleteSavedQuery("Total Shares Per Table");

  EXPECT_TRUE(UpdateCentralDB(*app_, central, c.update_all));
  const Lines central_texts = ui_.help_texts();
  EXPECT_EQ(central_texts, Texts(c.first_step, kStepCount - 1, true, c.skipped));
  EXPECT_TRUE(UpdateCurrClientDB(*app_, c.update_all));
  EXPECT_EQ(Lines(ui_.help_texts().begin() + central_texts.size(), ui_.help_texts().end()),
            Texts(c.first_step, kStepCount - 1, false, c.skipped));

  for (Database* db : {&central, &client}) {
    EXPECT_EQ(Version(*db), Lines{c.first_step < kStepCount ? kCurrentDataVersion : *c.stored});
    EXPECT_EQ(db->IntegrityCheck(), "ok");
  }
  EXPECT_EQ(SavedOrMissing(central, "dlgOpenClient"), Runs(kLw96_20) ? open_client_sql : kStale);
  EXPECT_EQ(SavedOrMissing(central, "Get a Client"),
            Runs(kLw2000_20) ? saved_sql::kGetAClient : kMissing);
  EXPECT_EQ(SavedOrMissing(central, "DeleteClient"),
            Runs(kLw2000_20) ? saved_sql::kDeleteClient : kMissing);
  EXPECT_EQ(SavedOrMissing(client, "Get Entire Sell"), Runs(kLw96_20) ? entire_sell_sql : kMissing);
  EXPECT_EQ(SavedOrMissing(client, "All Secs"), Runs(kLw96_20) ? saved_sql::kAllSecs : kStale);
  EXPECT_EQ(SavedOrMissing(client, "Total Shares Per Table"),
            Runs(kLw96_12) ? saved_sql::kTotalSharesPerTable : kMissing);
}

INSTANTIATE_TEST_SUITE_P(Chain, WalkTest, ::testing::ValuesIn(ReadCases(__FILE__, "walks.txt")),
                         [](const auto& info) { return info.param.name; });

// A file from before the per-symbol sell method: the walk moves each
// symbol's method into "Sell Method" (the oldest security row deciding when
// portfolios disagree), drops the old column, keeps every security and
// block, and leaves saved queries that run against the new layout.
class OldTaxpayerFileTest : public AppTest {
 protected:
  void MakeOldFile(const std::string& version) {
    OpenFreshTaxpayer();
    SetVersion(*app_->client, version);
    app_->client->DeleteSavedQuery("Total Shares Per Table");
    app_->client->ExecuteScript(ReadText(GoldenPath(__FILE__, "old_file.sql")));
  }
};

TEST_F(OldTaxpayerFileTest, Walk_MovesSellMethodsToTheirTable) {
  MakeOldFile("LW96.10");
  ASSERT_TRUE(UpdateCurrClientDB(*app_, false));
  Database& db = *app_->client;
  EXPECT_EQ(Version(db), Lines{kCurrentDataVersion});
  EXPECT_EQ(Rows(db.Select(
                R"(SELECT "Sec Symbol", "Sell Method" FROM "Sell Method" ORDER BY "Sec Symbol")")),
            (Lines{"IBM|3", "MSFT|0", "T|255"}));
  EXPECT_EQ(db.Columns("Security"), (Lines{"Sec ID", "Sec Symbol", "Port Name", "2nd Line"}));
  EXPECT_EQ(CountClientRows("Security"), 4);
  EXPECT_EQ(CountClientRows("Blocks"), 1);
  EXPECT_EQ(SavedOrMissing(db, "Total Shares Per Table"), saved_sql::kTotalSharesPerTable);
  Query alpha_ibm =
      db.SelectSaved("Get a Security", {{"sPortName", "Alpha"}, {"sSecSymbol", "IBM"}});
  ASSERT_TRUE(alpha_ibm.Next());
  EXPECT_EQ(alpha_ibm.Int("Sell Method"), 3);
  EXPECT_EQ(db.IntegrityCheck(), "ok");
}

// A walk whose 96.20 step fails undoes everything the walk did before it,
// keeps the stored version so that the next open tries again, and tells the
// user twice: the error handler, then the update's own note.
class FailingStepTest : public OldTaxpayerFileTest,
                        public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(FailingStepTest, Walk_LeavesFileAsItWas) {
  // golden/failing_steps.txt: "start first-step failing-write number text".
  std::istringstream words(GetParam().Lines("").at(0));
  std::string start, text;
  int first_step = 0, failing_write = 0, number = 0;
  words >> start >> first_step >> failing_write >> number >> std::ws;
  std::getline(words, text);
  MakeOldFile(start);
  const std::string path = app_->client->path();
  app_->client.reset();
  StorageFaults faults;
  app_->client = Database::Open(path, Database::Mode::kShared, &faults);
  if (failing_write == 0) {
    app_->client->Execute(R"(CREATE INDEX "Sell Method" ON "Security" ("Sec Symbol"))");
  } else {
    faults.FailWriteNumber(failing_write);
  }
  ExpectFatal(number, text, "AddSellMethodTable");

  EXPECT_THROW(UpdateCurrClientDB(*app_, false), ProgramEnded);
  EXPECT_EQ(ui_.help_texts(), Texts(first_step, kLw96_20, false));
  auto db = Database::Open(path);
  EXPECT_EQ(Version(*db), Lines{start});
  EXPECT_FALSE(db->HasTable("Sell Method"));
  EXPECT_FALSE(db->HasSavedQuery("Total Shares Per Table"));
  EXPECT_EQ(db->Columns("Security").back(), "Sell Method");
  EXPECT_EQ(db->IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(AddSellMethodTable, FailingStepTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "failing_steps.txt")),
                         [](const auto& info) { return info.param.name; });

// The central 96.20 step reads its query from the template; without the
// template it fails, and the central file keeps its version and queries.
TEST_F(OldTaxpayerFileTest, CentralWalk_MissingTemplateKeepsVersion) {
  OpenFreshCentral();
  SetVersion(*app_->central, "LW96.10");
  app_->central->DeleteSavedQuery("Get a Client");
  const std::string template_path = app_->ProgramFile(kCentralTemplateName);
  std::filesystem::remove(template_path);
  ExpectFatal(err::kFileNotFound, "Could not find file '" + template_path + "'.", "CentralTo96_20");

  EXPECT_THROW(UpdateCentralDB(*app_, *app_->central, false), ProgramEnded);

  auto reopened = Database::Open(app_->central_path);
  EXPECT_EQ(Version(*reopened), Lines{"LW96.10"});
  EXPECT_FALSE(reopened->HasSavedQuery("Get a Client"));
  EXPECT_EQ(ui_.help_texts().back(), "Updating to SSF LW96.20");
}

// 96.12 only adds the queries a file lacks; one the file already has keeps
// its text.
TEST_F(AppTest, ClientTo96_12_AddsOnlyMissingQueries) {
  OpenFreshTaxpayer();
  Database& db = *app_->client;
  db.DeleteSavedQuery("Total Shares Per Table");
  db.SetSavedQuery("Get Ports For Sec", "SELECT 'own'");

  ASSERT_TRUE(ClientTo96_12(*app_, db));

  EXPECT_EQ(db.SavedQuerySql("Total Shares Per Table"), saved_sql::kTotalSharesPerTable);
  EXPECT_EQ(db.SavedQuerySql("Get Ports For Sec"), "SELECT 'own'");
  EXPECT_EQ(db.SavedQuerySql("Distinct Secs"), saved_sql::kDistinctSecs);
}

}  // namespace
}  // namespace lotwise::testing
