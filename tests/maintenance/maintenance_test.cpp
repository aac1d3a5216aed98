#include "app/maintenance.h"

#include <filesystem>
#include <fstream>

#include "app/app_state.h"
#include "app/startup.h"
#include "data/database.h"
#include "ground/paths.h"
#include "maintenance/maint_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

namespace fs = std::filesystem;

// A form for a run, as the dialog leaves it after loading, recording every
// progress text the window is told about.
struct FormRun {
  CompressRepairForm form;
  std::vector<std::string> progress;
};

class CompressRepairTest : public MaintenanceTest {
 protected:
  std::unique_ptr<FormRun> Load(const char* caption) {
    auto run = std::make_unique<FormRun>();
    LoadCompressRepair(*app_, run->form, caption);
    FormRun* r = run.get();
    run->form.changed = [r] {
      if (!r->form.progress.empty() &&
          (r->progress.empty() || r->progress.back() != r->form.progress)) {
        r->progress.push_back(r->form.progress);
      }
    };
    return run;
  }
  std::string Path(const std::string& file_name) { return app_->taxpayer_folder + file_name; }
};

// Compression keeps every row, leaves a ".bak" holding the old file byte for
// byte, and closes and reopens the files it works on: the Security Symbols
// File and the open Taxpayer File are usable afterwards.
TEST_F(CompressRepairTest, Compress_KeepsRowsAndBackupAndReopensFiles) {
  OpenFreshTaxpayer("DOE01", "John Doe", "DOE0101.mdb");
  app_->client.reset();
  FillTaxpayer(Path("DOE0101.mdb"), 400);
  app_->client = Database::Open(Path("DOE0101.mdb"));
  app_->client->Execute(R"(DELETE FROM "Blocks" WHERE "Block No" > 100)");
  const Rows before = ReadRows(Path("DOE0101.mdb"));
  app_->client.reset();
  const std::string old_bytes = FileBytes(Path("DOE0101.mdb"));
  app_->client = Database::Open(Path("DOE0101.mdb"));
  const std::string old_central = FileBytes(app_->central_path);

  auto run = Load(kCompressCaption);
  run->form.ssf_chosen = true;
  run->form.picked_chosen = true;
  run->form.picked = {true};
  env_->AdvanceSeconds(0);
  Button_Compress(*app_, run->form);

  EXPECT_EQ(
      run->form.ssf_status + run->form.ssf_time + run->form.picked_status + run->form.all_status,
      "Finished00:00:00FinishedWaiting...");
  EXPECT_EQ(run->progress, (std::vector<std::string>{"Compressing Security Symbols File",
                                                     "Compressing John Doe"}));
  EXPECT_EQ(FileBytes(Path("DOE0101.bak")), old_bytes);
  EXPECT_EQ(FileBytes(app_->ssf_folder + "CENTRAL.bak"), old_central);
  EXPECT_LT(fs::file_size(Path("DOE0101.mdb")), old_bytes.size());
  EXPECT_FALSE(FileExists(app_->temp_folder + "TEMP7.mdb"));
  ASSERT_TRUE(app_->central && app_->client);
  EXPECT_EQ(app_->window.state, kClientOpen);
  EXPECT_EQ(CountClientRows("Buy") + CountCentralRows("Clients"), 101);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
  app_->client.reset();
  EXPECT_EQ(Diff(ReadRows(Path("DOE0101.mdb")), before), "");
}

// A damaged Taxpayer File is rebuilt: every row that could still be read
// (with its block and security) is kept, the rebuilt file passes the check,
// "Shares Left" agrees with the rows that remain, the damaged file is the
// ".bak", and the user is told. A file of an older data version keeps its
// own layout and version. A sound file is left byte for byte as it was.
struct RepairCase {
  const char* version;
  bool damage;
};

class RepairTest : public CompressRepairTest, public ::testing::WithParamInterface<RepairCase> {};

TEST_P(RepairTest, Repair_KeepsEveryReadableRow) {
  const RepairCase& c = GetParam();
  WriteTaxpayerFile("DOE0101.mdb", "DOE01", "John & Jane Doe");
  Index("DOE01", "John & Jane Doe", "DOE0101.mdb");
  FillTaxpayer(Path("DOE0101.mdb"), 2500);
  {
    auto db = Database::Open(Path("DOE0101.mdb"));
    db->Execute(R"(UPDATE "Version" SET "Version" = :v)", {{"v", c.version}});
    // A row too long for its page: its key stays readable when its
    // overflow pages are damaged, its values do not.
    db->Execute(R"(UPDATE "Buy" SET "Notes" = :n WHERE "Unique ID" = 2000)",
                {{"n", std::string(20000, 'x')}});
  }
  const Rows before = ReadRows(Path("DOE0101.mdb"));
  if (c.damage) {
    DamagePages(Path("DOE0101.mdb"), {{"Buy", 3, 7},
                                      {"Sell", 1, 1},
                                      {"Blocks", 1, 1},
                                      {"Buy Block", 1, 1},
                                      {"Buy", 1, 1, "overflow"}});
    ASSERT_NE(Integrity(Path("DOE0101.mdb")), "ok");
  }
  const Rows readable = c.damage ? ReadableRows(Path("DOE0101.mdb"), before) : before;
  const std::string old_bytes = FileBytes(Path("DOE0101.mdb"));
  if (c.damage) {
    ASSERT_LT(RowCount(readable), RowCount(before) - 100);
    ASSERT_EQ(readable.at("Buy").count("2000"), 0u);
    ExpectSaid(ui_, __FILE__, "rebuilt");
  }

  auto run = Load(kRepairCaption);
  run->form.all_chosen = true;
  Button_Repair(*app_, run->form);

  EXPECT_EQ(run->form.all_status, "Finished");
  EXPECT_EQ(run->progress, std::vector<std::string>{"Repairing John && Jane Doe"});
  EXPECT_EQ(FileBytes(Path("DOE0101.bak")), old_bytes);
  EXPECT_EQ(Integrity(Path("DOE0101.mdb")), "ok");
  EXPECT_EQ(Diff(ReadRows(Path("DOE0101.mdb")), readable), "");
  if (!c.damage) {
    EXPECT_EQ(FileBytes(Path("DOE0101.mdb")), old_bytes);
  }
  auto db = Database::Open(Path("DOE0101.mdb"));
  Query off = db->Select(
      R"(SELECT count(*) AS n FROM "Blocks" WHERE abs("Shares Left" - (SELECT total("Shares") )"
      R"(FROM "Block Shares" S WHERE S."Block No" = "Blocks"."Block No")) > 0.000001)");
  off.Next();
  EXPECT_EQ(off.Int("n"), 0);
  // Numbers handed out before the damage are never handed out again.
  db->Execute(
      R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (1, 'x', '2024-01-01'))");
  EXPECT_EQ(db->LastInsertId(), 2501);
}

INSTANTIATE_TEST_SUITE_P(Files, RepairTest,
                         ::testing::Values(RepairCase{"LW2005.20", true},
                                           RepairCase{"LW96.20", true},
                                           RepairCase{"LW2005.20", false}));

// A taxpayer whose file is missing is reported, and the others are still
// done; an open Taxpayer File that is not in the run stays open.
TEST_F(CompressRepairTest, AllTaxpayers_MissingFileReportedOthersDone) {
  WriteTaxpayerFile("AAA.mdb", "A1", "Adams");
  WriteTaxpayerFile("CCC.mdb", "C1", "Cole");
  Index("A1", "Adams", "AAA.mdb");
  Index("B1", "Baker & Sons", "BBB.mdb");
  Index("C1", "Cole", "CCC.mdb");
  ExpectSaid(ui_, __FILE__, "not_done", Answer::kOk,
             {"Baker & Sons", "Could not find file '" + Path("BBB.mdb") + "'."});

  auto run = Load(kCompressCaption);
  run->form.all_chosen = true;
  Button_Compress(*app_, run->form);

  EXPECT_EQ(run->form.all_status + run->form.all_time, "Not Done");
  EXPECT_EQ(run->progress,
            (std::vector<std::string>{"Compressing Adams", "Compressing Baker && Sons",
                                      "Compressing Cole"}));
  EXPECT_EQ(ListFiles(app_->taxpayer_folder, "*.bak"),
            (std::vector<std::string>{"AAA.bak", "CCC.bak"}));
  EXPECT_EQ(ui_.hourglass_depth(), 0);
}

// A failure on the Security Symbols File leaves it untouched and reopened.
TEST_F(CompressRepairTest, Central_FailureReportedAndFileReopened) {
  app_->temp_folder = root_ + "no-such-folder/";
  ExpectSaid(ui_, __FILE__, "not_done", Answer::kOk,
             {"Securites Symbol File", "Path not found: " + app_->temp_folder});
  const std::string old_bytes = FileBytes(app_->central_path);

  auto run = Load(kCompressCaption);
  run->form.ssf_chosen = true;
  Button_Compress(*app_, run->form);

  EXPECT_EQ(run->form.ssf_status, "Not Done");
  ASSERT_TRUE(app_->central);
  EXPECT_EQ(FileBytes(app_->central_path), old_bytes);
  EXPECT_EQ(env_->end_calls(), 0);
}

// Nothing to do is refused with the mode's own text; a wrong working
// caption does nothing.
TEST_F(CompressRepairTest, Buttons_NothingSelectedAndIllegalCaption) {
  Index("A1", "Adams", "AAA.mdb");
  ExpectSaid(ui_, __FILE__, "nothing_compress");
  ExpectSaid(ui_, __FILE__, "nothing_repair");
  ExpectSaid(ui_, __FILE__, "illegal_caption");

  auto compress = Load(kCompressCaption);
  compress->form.picked_chosen = true;  // but no taxpayer picked
  Button_Compress(*app_, compress->form);
  auto repair = Load(kRepairCaption);
  Button_Repair(*app_, repair->form);
  repair->form.ssf_chosen = true;
  StartCompressRepair(*app_, repair->form);

  EXPECT_EQ(repair->form.ssf_status, "Waiting...");
  EXPECT_FALSE(FileExists(app_->ssf_folder + "CENTRAL.bak"));
}

// The dialogs open filled for their mode: list in display order, statuses
// waiting; the backup notice names both data folders.
TEST_F(CompressRepairTest, Show_FillsDialogs) {
  Index("Z1", "Zed", "Z.mdb");
  Index("A1", "Adams", "A.mdb");
  ui_.ExpectDialog("dlgCR_Report", [](DialogForm& f) {
    auto& form = static_cast<CompressRepairForm&>(f);
    EXPECT_EQ(form.caption, "Repair Files");
    EXPECT_EQ(form.warning,
              "Repairing files can take very long periods of time. We suggest that you run these "
              "routines when you will not need use of your computer.");
    EXPECT_EQ(form.clients.at(0).client_name + form.clients.at(1).client_name, "AdamsZed");
    EXPECT_EQ(form.picked, (std::vector<bool>{false, false}));
    EXPECT_EQ(form.ssf_status + form.all_status + form.picked_status,
              "Waiting...Waiting...Waiting...");
  });
  ui_.ExpectDialog("dlgBackup", [this](DialogForm& f) {
    auto& form = static_cast<BackupNoticeForm&>(f);
    EXPECT_EQ(form.ssf_folder + form.taxpayer_folder, app_->ssf_folder + app_->taxpayer_folder);
    EXPECT_EQ(form.notice.rfind(
                  "As of version LW2000.20, this program does not have a backup or restore "
                  "function. Windows has a backup and restore function that is better designed "
                  "than this program's old backup and restore function. The folders that this "
                  "program saves data in are listed above.\r\n\r\n",
                  0),
              0u);
    const std::string tail =
        "\r\n\r\nIf you want to restore a pre LW2000.20 file, it is simply stored in the normal "
        "Windows/DOS file format. Simply use Windows Explorer to copy the file from the diskette "
        "to "
        "one of the above indicated folders. If that old file has an extension of .BAK change that "
        "extension .MDB.";
    EXPECT_EQ(form.notice.substr(form.notice.size() - tail.size()), tail);
  });
  ShowRepair(*app_);
  RestoreFromDisk(*app_);
}

// Deleting backups: the Security Symbols File's and every "*.bak" of the
// Taxpayer folder go, nothing else does, and the user hears which case it was.
TEST_F(MaintenanceTest, DelBackups_DeletesOnlyBackups) {
  for (const char* name : {"A.bak", "B.BAK", "A.mdb"}) {
    std::ofstream(app_->taxpayer_folder + name) << "x";
  }
  std::ofstream(app_->ssf_folder + "CENTRAL.bak") << "x";
  ExpectSaid(ui_, __FILE__, "backups_deleted");
  ExpectSaid(ui_, __FILE__, "no_backups");

  DelBackupsForm form;
  std::vector<std::string> statuses;
  form.changed = [&] { statuses.push_back(form.status); };
  DelBackups_Delete(*app_, form);
  EXPECT_EQ(statuses, (std::vector<std::string>{"Deleting Security Symbols File", "Deleting A.bak",
                                                "Deleting B.BAK", "Backups deleted successfully"}));
  EXPECT_EQ(ListFiles(app_->taxpayer_folder, "*"), std::vector<std::string>{"A.mdb"});
  EXPECT_FALSE(FileExists(app_->ssf_folder + "CENTRAL.bak"));

  DelBackups_Delete(*app_, form);
  EXPECT_EQ(form.status, "There are no backup files to delete");
}

// A Taxpayer File that cannot be read no longer ends the start: the user is
// told and may set it aside.
struct UnreadableCase {
  bool garbage;  // no database at all, else a database with its Client table damaged
};

class UnreadableStartTest : public MaintenanceTest,
                            public ::testing::WithParamInterface<UnreadableCase> {};

TEST_P(UnreadableStartTest, CheckDBFiles_UnreadableFileIgnored) {
  const std::string path = app_->taxpayer_folder + "BAD.mdb";
  if (GetParam().garbage) {
    std::ofstream(path, std::ios::binary) << std::string(8192, 'g');
  } else {
    WriteTaxpayerFile("BAD.mdb", "B1", "Bad");
    DamagePages(path, {{"Client", 1, 0}});
  }
  ui_.ExpectChkFiles(
      "Taxpayer Record Missing...",
      "A Taxpayer File (BAD.mdb) has been located, but it cannot be read: it is "
      "damaged or it was not written by this program. It can only be 'Deleted' or "
      "'Ignored'. Choose 'Ignore' to keep the file, for example to restore it from a "
      "backup.",
      false, ChkFilesChoice::kIgnore);
  CheckDBFiles(*app_, *app_->central);
  EXPECT_EQ(env_->end_calls(), 0);
  EXPECT_TRUE(FileExists(path));
}

INSTANTIATE_TEST_SUITE_P(Files, UnreadableStartTest,
                         ::testing::Values(UnreadableCase{true}, UnreadableCase{false}));

}  // namespace
}  // namespace lotwise::testing
