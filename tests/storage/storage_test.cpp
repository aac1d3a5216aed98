#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "data/database.h"
#include "storage/storage_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {
namespace {

// Every SQLite failure the program handles by number reaches it with that
// number and a text that names the problem (and the file, where the
// handler's message depends on it): golden/failures.txt.
struct MappingCase {
  const char* name;
  bool from_template;  // whether `path` holds a fresh Taxpayer File first
  // Brings about the failure on the file at `path`.
  void (*provoke)(const std::string& path);
};

class MappingTest : public StorageTest, public ::testing::WithParamInterface<MappingCase> {};

const MappingCase kMappings[] = {
    {"NotADatabase", false,
     [](const std::string& path) {
       std::ofstream(path, std::ios::binary) << std::string(4096, 'x');
       Database::Open(path);
     }},
    {"Damaged", false,
     [](const std::string& path) {
       Database::Create(path)->ExecuteScript(R"(CREATE TABLE "Big" ("Text" TEXT);
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000)
INSERT INTO "Big" SELECT hex(randomblob(50)) FROM n;)");
       // Page 1 (the catalogue) stays readable; the table's pages do not.
       std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
       file.seekp(4096);
       file << std::string(std::filesystem::file_size(path) - 4096, '\xA5');
       file.close();
       Database::Open(path)->Select(R"(SELECT count(*) AS n FROM "Big")").Next();
     }},
    {"MissingFile", false, [](const std::string& path) { Database::Open(path); }},
    {"MissingFolder", false, [](const std::string& path) { Database::Open(path + ".d/x.mdb"); }},
    {"MissingTable", true,
     [](const std::string& path) { Database::Open(path)->Select(R"(SELECT * FROM "Nowhere")"); }},
    {"MissingSavedQuery", true,
     [](const std::string& path) { Database::Open(path)->SelectSaved("Nowhere"); }},
    {"DuplicateKey", true,
     [](const std::string& path) {
       auto db = Database::Open(path);
       // Portfolio names are keys without regard to case.
       for (const char* name : {"Growth", "GROWTH"}) {
         db->Execute(R"(INSERT INTO "Portfolio" ("Port Name") VALUES (:p))", {{"p", name}});
       }
     }},
    {"HeldByAnotherConnection", true,
     [](const std::string& path) {
       auto other = Database::Open(path);
       Database::Transaction holding(*other);
       other->Execute(R"(INSERT INTO "Portfolio" ("Port Name") VALUES ('Theirs'))");
       Database::Open(path)->Execute(R"(INSERT INTO "Portfolio" ("Port Name") VALUES ('Mine'))");
     }},
};

TEST_P(MappingTest, Failure_ReachesHandledNumber) {
  const MappingCase& c = GetParam();
  const std::string path =
      c.from_template ? CopyTemplate("x.mdb") : app_->taxpayer_folder + "x.mdb";
  std::string expected;
  for (const GoldenCase& failure : ReadCases(__FILE__, "failures.txt")) {
    if (failure.name == c.name) expected = failure.Lines("").at(0);
  }
  EXPECT_EQ(ErrorOf([&] { c.provoke(path); }),
            fmt::format(fmt::runtime(expected), fmt::arg("path", path)));
}

INSTANTIATE_TEST_SUITE_P(Sqlite, MappingTest, ::testing::ValuesIn(kMappings),
                         [](const auto& info) { return std::string(info.param.name); });

// Units of work: only Commit() keeps rows, also across a reopen; a unit
// left without it takes its rows along and frees the file for the next; an
// inner unit can be undone while the outer one commits; a write that fails
// half-way through a unit leaves none of the unit's rows.
TEST_F(StorageTest, Transaction_OnlyCommittedUnitsKeepRows) {
  const std::string path = CopyTemplate("x.mdb");
  StorageFaults faults;
  auto db = Database::Open(path, Database::Mode::kShared, &faults);
  {
    Database::Transaction dropped(*db);
    AddPortfolio(*db, "Dropped");
  }
  {
    Database::Transaction outer(*db);
    AddPortfolio(*db, "Outer");
    {
      Database::Transaction inner(*db);
      AddPortfolio(*db, "Inner");
    }
    {
      Database::Transaction kept(*db);
      AddPortfolio(*db, "Kept");
      kept.Commit();
    }
    outer.Commit();
  }
  faults.FailWriteNumber(3);
  EXPECT_EQ(ErrorOf([&] {
              Database::Transaction unit(*db);
              for (const char* name : {"A", "B", "C", "D", "E"}) AddPortfolio(*db, name);
              unit.Commit();
            }),
            "31010: disk I/O error (injected)");
  const char* names = R"(SELECT "Port Name" FROM "Portfolio" ORDER BY "Port Name")";
  EXPECT_EQ(Rows(db->Select(names)), (Lines{"Kept", "Outer"}));
  EXPECT_EQ(db->IntegrityCheck(), "ok");
  db.reset();
  EXPECT_EQ(Rows(Database::Open(path)->Select(names)), (Lines{"Kept", "Outer"}));
}

// A failing disk during a commit: whichever single write or sync of the
// database file or its journal fails, the commit reports the failure, and
// once the file is opened again none of the unit's rows is there, the rows
// committed before are, and the file is sound.
struct DiskFault {
  const char* name;
  int (StorageFaults::*counter)() const;
  void (StorageFaults::*arm)(int n);
};

class DiskFaultTest : public StorageTest, public ::testing::WithParamInterface<DiskFault> {
 protected:
  static constexpr int kRows = 300;

  // A Taxpayer File holding one committed portfolio.
  std::string FileWithOneRow(const std::string& name) {
    std::string path = CopyTemplate(name);
    AddPortfolio(*Database::Open(path), "Before");
    return path;
  }

  // Many rows in one unit, enough to span several pages.
  static void WriteUnit(Database& db) {
    Database::Transaction unit(db);
    for (int i = 0; i < kRows; ++i) {
      Scenario(db).Portfolio("Port " + std::to_string(i), std::string(80, 'x'));
    }
    unit.Commit();
  }
};

TEST_P(DiskFaultTest, Commit_FaultLeavesNoneOfUnit) {
  const DiskFault& fault = GetParam();
  // How many writes (syncs) a sound commit of the unit makes.
  int total = 0;
  {
    StorageFaults faults;
    auto db = Database::Open(FileWithOneRow("count.mdb"), Database::Mode::kShared, &faults);
    const int before = (faults.*fault.counter)();
    WriteUnit(*db);
    total = (faults.*fault.counter)() - before;
    EXPECT_EQ(Count(*db, "Portfolio"), kRows + 1);
  }
  ASSERT_GT(total, 1);

  for (int n = 1; n <= total; ++n) {
    SCOPED_TRACE("failing number " + std::to_string(n) + " of " + std::to_string(total));
    std::string path = FileWithOneRow("fault" + std::to_string(n) + ".mdb");
    {
      StorageFaults faults;
      auto db = Database::Open(path, Database::Mode::kShared, &faults);
      (faults.*fault.arm)(n);
      EXPECT_EQ(ErrorOf([&] { WriteUnit(*db); }), "31010: disk I/O error");
    }
    auto reopened = Database::Open(path);
    EXPECT_EQ(Count(*reopened, "Portfolio"), 1);
    EXPECT_EQ(reopened->IntegrityCheck(), "ok");
    // No hot journal is left: the journal is gone or (when truncated at
    // commit) empty.
    const std::string journal = path + "-journal";
    EXPECT_EQ(std::filesystem::exists(journal) ? std::filesystem::file_size(journal) : 0, 0u);
  }
}

INSTANTIATE_TEST_SUITE_P(Disk, DiskFaultTest,
                         ::testing::Values(DiskFault{"Write", &StorageFaults::disk_writes,
                                                     &StorageFaults::FailDiskWriteNumber},
                                           DiskFault{"Sync", &StorageFaults::disk_syncs,
                                                     &StorageFaults::FailDiskSyncNumber}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace lotwise::testing
