#include "data/upgrades.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "app/error_handler.h"
#include "app/paths.h"
#include "data/database.h"
#include "data/schema.h"
#include "support/app_fixture.h"

namespace lotwise {
namespace {

using testing::AppTest;

// What the help bar shows at each step of the chain, in chain order.
struct StepText {
  const char* central;
  const char* client;
};
constexpr StepText kStepTexts[] = {
    {"Updating SSF to LW96.11", "Updating to LW96.11"},
    {"Updating SSF to LW96.12", "Updating to LW96.12"},
    {"Updating SSF to LW96.13", "Updating to LW96.13"},
    {"Updating to SSF LW96.20", "Updating to LW96.20"},
    {"Updating to SSF LW96.21", "Updating to LW96.21"},
    {"Updating to SSF LW97.10", "Updating to LW97.10"},
    {"Updating to SSF LW97.10", "Updating to LW97.10"},
    {"Updating to SSF LW98.10", "Updating to LW97.10"},
    {"Updating to SSF LW1999.10", "Updating to LW1999.10"},
    {"Updating to SSF LW1999.10", "Updating to LW1999.10"},  // from the irregular "LW99.10"
    {"Updating to SSF LW1999.20", "Updating to LW1999.20"},
    {"Updating to SSF LW1999.21", "Updating to LW1999.21"},
    {"Updating to SSF LW2000.10", "Updating to LW2000.10"},
    {"Updating to SSF LW2000.20", "Updating to LW2000.20"},
    {"Updating to SSF LW2000.23", "Updating to LW2000.23"},
    {"Updating to SSF LW2000.23", "Updating to LW2000.23"},
    {"Updating to SSF LW2001.12", "Updating to LW2001.12"},
    {"Updating to SSF LW2005.20", "Updating to LW2005.20"},
};
constexpr int kStepCount = static_cast<int>(std::size(kStepTexts));
constexpr int kFromLw99 = 9;
constexpr int kLw96_20 = 3;

std::vector<std::string> Texts(const std::vector<int>& steps, bool central) {
  std::vector<std::string> texts;
  for (int i : steps) texts.push_back(central ? kStepTexts[i].central : kStepTexts[i].client);
  return texts;
}

std::vector<int> Range(int first, int last, int skip = -1) {
  std::vector<int> steps;
  for (int i = first; i <= last; ++i) {
    if (i != skip) steps.push_back(i);
  }
  return steps;
}

std::string ReadVersion(Database& db) {
  Query q = db.Select(R"(SELECT "Version" FROM "Version")");
  return q.Next() ? q.Text("Version") : "(no row)";
}

long long CountRows(Database& db, const std::string& table) {
  Query q = db.Select("SELECT count(*) AS n FROM \"" + table + "\"");
  q.Next();
  return q.Int("n");
}

void SetVersion(Database& db, const std::optional<std::string>& version) {
  db.Execute(R"(DELETE FROM "Version")");
  if (version) db.Execute(R"(INSERT INTO "Version" ("Version") VALUES (:v))", {{"v", *version}});
}

std::string SavedOrMissing(Database& db, const char* name) {
  return db.HasSavedQuery(name) ? db.SavedQuerySql(name) : "(missing)";
}

// One walk: the stored version (none = empty table), the "Update All"
// setting, and which steps must run.
struct WalkCase {
  const char* name;
  std::optional<std::string> stored;
  bool update_all;
  std::vector<int> steps;
};

// Names the row in failure messages instead of dumping its bytes.
void PrintTo(const WalkCase& row, std::ostream* os) { *os << row.name; }

const WalkCase kWalks[] = {
    {"EmptyVersionTable", std::nullopt, false, Range(0, kStepCount - 1, kFromLw99)},
    {"From96_10", "LW96.10", false, Range(0, kStepCount - 1, kFromLw99)},
    {"From95_10", "LW95.10", false, Range(0, kStepCount - 1, kFromLw99)},
    {"From96_21", "LW96.21", false, Range(5, kStepCount - 1, kFromLw99)},
    {"FromIrregular99_10", "LW99.10", false, Range(kFromLw99, kStepCount - 1)},
    {"FromCurrent", "LW2005.20", false, {}},
    {"UnknownVersion", "LW3000.10", false, {}},
    {"UpdateAllOnCurrent", "LW2005.20", true, Range(0, kStepCount - 1)},
};

std::string WalkName(const ::testing::TestParamInfo<WalkCase>& info) { return info.param.name; }

class WalkTest : public AppTest, public ::testing::WithParamInterface<WalkCase> {
 protected:
  bool Runs(int step) const {
    const auto& s = GetParam().steps;
    return std::find(s.begin(), s.end(), step) != s.end();
  }
  std::string Expected(bool runs, const std::string& restored, const std::string& otherwise) {
    return runs ? restored : otherwise;
  }
};

// The central chain: each stored version joins the chain at its step, shows
// exactly the texts of the steps it passes, does the saved-query work of
// exactly those steps, and ends at the current version in one row.
TEST_P(WalkTest, Central_WalksFromStoredVersion) {
  const WalkCase& c = GetParam();
  OpenFreshCentral();
  Database& central = *app_->central;
  SetVersion(central, c.stored);
  std::string open_client_sql = central.SavedQuerySql("dlgOpenClient");
  central.SetSavedQuery("dlgOpenClient", "SELECT 'stale'");
  central.DeleteSavedQuery("Get a Client");
  central.DeleteSavedQuery("DeleteClient");

  EXPECT_TRUE(UpdateCentralDB(*app_, central, c.update_all));

  EXPECT_EQ(ui_.help_texts(), Texts(c.steps, true));
  std::string final_version = c.steps.empty() ? c.stored.value() : kCurrentDataVersion;
  EXPECT_EQ(ReadVersion(central), final_version);
  EXPECT_EQ(CountRows(central, "Version"), 1);
  EXPECT_EQ(SavedOrMissing(central, "dlgOpenClient"),
            Expected(Runs(kLw96_20), open_client_sql, "SELECT 'stale'"));
  bool to2000_20 = Runs(13);
  EXPECT_EQ(SavedOrMissing(central, "Get a Client"),
            Expected(to2000_20, saved_sql::kGetAClient, "(missing)"));
  EXPECT_EQ(SavedOrMissing(central, "DeleteClient"),
            Expected(to2000_20, saved_sql::kDeleteClient, "(missing)"));
  EXPECT_EQ(central.IntegrityCheck(), "ok");
}

// The Taxpayer File chain over a file of the current layout: the same
// joining, its own texts, and the saved queries of 96.12 and 96.20 rebuilt
// exactly when those steps run.
TEST_P(WalkTest, Taxpayer_WalksFromStoredVersion) {
  const WalkCase& c = GetParam();
  OpenFreshTaxpayer();
  Database& client = *app_->client;
  SetVersion(client, c.stored);
  std::string entire_sell_sql = client.SavedQuerySql("Get Entire Sell");
  client.DeleteSavedQuery("Get Entire Sell");
  client.SetSavedQuery("All Secs", "SELECT 'stale'");
  client.DeleteSavedQuery("Total Shares Per Table");

  EXPECT_TRUE(UpdateCurrClientDB(*app_, c.update_all));

  EXPECT_EQ(ui_.help_texts(), Texts(c.steps, false));
  std::string final_version = c.steps.empty() ? c.stored.value() : kCurrentDataVersion;
  EXPECT_EQ(ReadVersion(client), final_version);
  EXPECT_EQ(CountRows(client, "Version"), 1);
  bool to96_20 = Runs(kLw96_20);
  EXPECT_EQ(SavedOrMissing(client, "Get Entire Sell"),
            Expected(to96_20, entire_sell_sql, "(missing)"));
  EXPECT_EQ(SavedOrMissing(client, "All Secs"),
            Expected(to96_20, saved_sql::kAllSecs, "SELECT 'stale'"));
  EXPECT_EQ(SavedOrMissing(client, "Total Shares Per Table"),
            Expected(Runs(1), saved_sql::kTotalSharesPerTable, "(missing)"));
  EXPECT_EQ(client.IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(Chain, WalkTest, ::testing::ValuesIn(kWalks), WalkName);

// A file from before the per-symbol sell method: the walk moves each
// symbol's method into "Sell Method" (the oldest security row deciding when
// portfolios disagree), drops the old column, keeps every security and
// block, and leaves saved queries that run against the new layout.
class OldTaxpayerFileTest : public AppTest {
 protected:
  void MakeOldFile(const std::string& version) {
    OpenFreshTaxpayer();
    Database& db = *app_->client;
    SetVersion(db, version);
    db.ExecuteScript(R"(DROP TABLE "Sell Method";
ALTER TABLE "Security" ADD COLUMN "Sell Method" INTEGER;)");
    db.DeleteSavedQuery("Total Shares Per Table");
    for (const char* port : {"Zeta", "Alpha"}) {
      db.Execute(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line") VALUES (:p, ' '))",
                 {{"p", port}});
    }
    struct Row {
      const char* port;
      const char* symbol;
      std::optional<int> method;
    };
    // Zeta's IBM is the older row, so its method wins over Alpha's.
    const Row rows[] = {
        {"Zeta", "IBM", 3}, {"Zeta", "MSFT", 0}, {"Alpha", "IBM", 1}, {"Alpha", "T", std::nullopt}};
    for (const Row& r : rows) {
      Value method = r.method ? Value(int64_t{*r.method}) : Value();
      db.Execute(R"(INSERT INTO "Security" ("Sec Symbol", "Port Name", "2nd Line", "Sell Method") )"
                 R"(VALUES (:s, :p, ' ', :m))",
                 {{"s", r.symbol}, {"p", r.port}, {"m", method}});
    }
    db.Execute(
        R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (2, '01/02/1996-1', :d))",
        {{"d", Date::FromYmd(1996, 1, 2)}});
  }

  std::vector<std::string> SellMethods() {
    std::vector<std::string> rows;
    Query q = app_->client->Select(
        R"(SELECT "Sec Symbol", "Sell Method" FROM "Sell Method" ORDER BY "Sec Symbol")");
    while (q.Next()) rows.push_back(q.Text("Sec Symbol") + "=" + q.Text("Sell Method"));
    return rows;
  }

  // The message HandleError shows for an error it cannot carry on from.
  static std::string FatalMessage(int number, const std::string& text, const std::string& where) {
    return ErrorHeader(number, text, where) +
           " The program will now shut down to prevent errors in your data and calculations.";
  }
};

TEST_F(OldTaxpayerFileTest, Walk_MovesSellMethodsToTheirTable) {
  MakeOldFile("LW96.10");

  ASSERT_TRUE(UpdateCurrClientDB(*app_, false));

  Database& db = *app_->client;
  EXPECT_EQ(ReadVersion(db), kCurrentDataVersion);
  EXPECT_EQ(SellMethods(), (std::vector<std::string>{"IBM=3", "MSFT=0", "T=255"}));
  EXPECT_EQ(db.Columns("Security"),
            (std::vector<std::string>{"Sec ID", "Sec Symbol", "Port Name", "2nd Line"}));
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
struct FailCase {
  const char* name;
  const char* start;
  int first_step;
  // Arranges the failure of adding the table; returns the error it raises.
  LwError (*arrange)(Database& db, StorageFaults& faults);
};

// Names the row in failure messages instead of dumping its bytes.
void PrintTo(const FailCase& row, std::ostream* os) { *os << row.name; }

const FailCase kFailures[] = {
    {"ConflictingIndex", "LW96.10", 0,
     [](Database& db, StorageFaults&) {
       db.Execute(R"(CREATE INDEX "Sell Method" ON "Security" ("Sec Symbol"))");
       return LwError(err::kSqliteBase + 1, "there is already an index named Sell Method");
     }},
    // Starting after 96.12 keeps that step's writes out of the count.
    {"WriteFaultWhileFilling", "LW96.13", kLw96_20,
     [](Database&, StorageFaults& faults) {
       // The walk's first write creates the table, the second fills its first row.
       faults.FailWriteNumber(2);
       return LwError(err::kSqliteBase + 10, "disk I/O error (injected)");
     }},
};

class FailingStepTest : public OldTaxpayerFileTest,
                        public ::testing::WithParamInterface<FailCase> {};

TEST_P(FailingStepTest, Walk_LeavesFileAsItWas) {
  MakeOldFile(GetParam().start);
  std::string path = app_->client->path();
  app_->client.reset();
  StorageFaults faults;
  app_->client = Database::Open(path, Database::Mode::kShared, &faults);
  LwError expected = GetParam().arrange(*app_->client, faults);
  ui_.Expect(FatalMessage(expected.number(), expected.text(), "AddSellMethodTable"), "Warning!",
             Icon::kCritical, Buttons::kOk);
  ui_.Expect(
      "The Update routine was unable to add a table to the Taxpayer database. Please close this "
      "Taxpayer file and open it again. If this problem persists, please contact Technical "
      "Support.",
      "Please Note!");

  EXPECT_FALSE(UpdateCurrClientDB(*app_, false));

  // The error ended the program, which closed the file; the next open sees this.
  EXPECT_EQ(env_->end_calls(), 1);
  EXPECT_EQ(ui_.help_texts(), Texts(Range(GetParam().first_step, kLw96_20), false));
  auto reopened = Database::Open(path);
  Database& db = *reopened;
  EXPECT_EQ(ReadVersion(db), GetParam().start);
  EXPECT_FALSE(db.HasTable("Sell Method"));
  EXPECT_FALSE(db.HasSavedQuery("Total Shares Per Table"));
  EXPECT_EQ(db.Columns("Security").back(), "Sell Method");
  EXPECT_EQ(db.IntegrityCheck(), "ok");
}

INSTANTIATE_TEST_SUITE_P(AddSellMethodTable, FailingStepTest, ::testing::ValuesIn(kFailures),
                         [](const auto& info) { return std::string(info.param.name); });

// The central 96.20 step reads its query from the template; without the
// template it fails, and the central file keeps its version and queries.
TEST_F(OldTaxpayerFileTest, CentralWalk_MissingTemplateKeepsVersion) {
  OpenFreshCentral();
  Database& central = *app_->central;
  SetVersion(central, "LW96.10");
  central.DeleteSavedQuery("Get a Client");
  std::string template_path = app_->ProgramFile(kCentralTemplateName);
  std::filesystem::remove(template_path);
  ui_.Expect(FatalMessage(err::kFileNotFound, "Could not find file '" + template_path + "'.",
                          "CentralTo96_20"),
             "Warning!");

  EXPECT_FALSE(UpdateCentralDB(*app_, central, false));

  auto reopened = Database::Open(app_->central_path);
  EXPECT_EQ(ReadVersion(*reopened), "LW96.10");
  EXPECT_FALSE(reopened->HasSavedQuery("Get a Client"));
  EXPECT_EQ(ui_.help_texts().back(), "Updating to SSF LW96.20");
  EXPECT_EQ(env_->end_calls(), 1);
}

// 96.12 only adds the queries a file lacks; one the file already has keeps
// its text.
TEST_F(OldTaxpayerFileTest, ClientTo96_12_AddsOnlyMissingQueries) {
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
}  // namespace lotwise
