#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "data/database.h"
#include "storage/storage_fixture.h"

namespace lotwise {
namespace {

using testing::StorageTest;

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
      try {
        WriteUnit(*db);
        ADD_FAILURE() << "the commit did not fail";
      } catch (const LwError& e) {
        EXPECT_EQ(e.number(), err::kSqliteBase + 10);
        EXPECT_EQ(e.text(), "disk I/O error");
      }
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
}  // namespace lotwise
