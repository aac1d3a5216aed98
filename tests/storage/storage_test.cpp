#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

#include "data/database.h"
#include "storage/storage_fixture.h"

namespace lotwise {
namespace {

using testing::StorageTest;

std::string Replace(std::string text, const std::string& placeholder, const std::string& value) {
  for (size_t at = text.find(placeholder); at != std::string::npos;
       at = text.find(placeholder, at + value.size())) {
    text.replace(at, placeholder.size(), value);
  }
  return text;
}

void WriteBytes(const std::string& path, std::streamoff offset, size_t count, char byte) {
  if (!std::filesystem::exists(path)) std::ofstream(path, std::ios::binary).close();
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(offset);
  std::string bytes(count, byte);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void CopyTaxpayerTemplate(const std::string& path) {
  std::filesystem::copy_file(testing::TemplateFolder() + kClientTemplateName, path);
}

// Every SQLite failure the program handles by number reaches it with that
// number and a text that names the problem (and the file, where the
// handler's message depends on it).
struct MappingCase {
  const char* name;
  // Brings about the failure on the file at `path` (which the case may first
  // have to make).
  void (*provoke)(const std::string& path);
  int number;
  const char* text;  // "{path}" stands for the file's path, "{folder}" for its folder
};

// Names the row in failure messages instead of dumping its bytes.
void PrintTo(const MappingCase& row, std::ostream* os) { *os << row.name; }

class MappingTest : public StorageTest, public ::testing::WithParamInterface<MappingCase> {};

const MappingCase kMappings[] = {
    {"NotADatabase",
     [](const std::string& path) {
       WriteBytes(path, 0, 4096, 'x');
       Database::Open(path);
     },
     err::kNotADatabase, "Unrecognized database format '{path}'."},
    {"Damaged",
     [](const std::string& path) {
       {
         auto db = Database::Create(path);
         db->ExecuteScript(R"(CREATE TABLE "Big" ("Id" INTEGER PRIMARY KEY, "Text" TEXT))");
         Database::Transaction unit(*db);
         for (int i = 0; i < 2000; ++i) {
           db->Execute(R"(INSERT INTO "Big" ("Text") VALUES (:t))",
                       {{"t", std::string(100, static_cast<char>('a' + i % 26))}});
         }
         unit.Commit();
       }
       // Page 1 (the catalogue) stays readable; the table's pages do not.
       auto size = std::filesystem::file_size(path);
       WriteBytes(path, 4096, static_cast<size_t>(size) - 4096, '\xA5');
       auto db = Database::Open(path);
       db->Select(R"(SELECT count(*) AS n FROM "Big")").Next();
     },
     err::kReserved,
     "Reserved error (-1209); the file {path} is damaged (database disk image is malformed)"},
    {"MissingFile", [](const std::string& path) { Database::Open(path); }, err::kFileNotFound,
     "Could not find file '{path}'."},
    {"MissingFolder",
     [](const std::string& path) {
       Database::Open(std::filesystem::path(path).parent_path().string() + "/gone/x.mdb");
     },
     err::kInvalidPath, "'{folder}/gone/x.mdb' is not a valid path."},
    {"MissingTable",
     [](const std::string& path) {
       CopyTaxpayerTemplate(path);
       Database::Open(path)->Select(R"(SELECT * FROM "Nowhere")");
     },
     err::kObjectNotFound, "Could not find the object: no such table: Nowhere"},
    {"MissingSavedQuery",
     [](const std::string& path) {
       CopyTaxpayerTemplate(path);
       Database::Open(path)->SelectSaved("Nowhere");
     },
     err::kObjectNotFound, "Could not find the object 'Nowhere'."},
    {"DuplicateKey",
     [](const std::string& path) {
       CopyTaxpayerTemplate(path);
       auto db = Database::Open(path);
       db->Execute(R"(INSERT INTO "Portfolio" ("Port Name") VALUES ('Growth'))");
       // Portfolio names are keys without regard to case.
       db->Execute(R"(INSERT INTO "Portfolio" ("Port Name") VALUES ('GROWTH'))");
     },
     err::kDuplicateKey,
     "The changes you requested to the table were not successful because they would create "
     "duplicate values in the index, primary key, or relationship. (UNIQUE constraint failed: "
     "Portfolio.Port Name)"},
    {"HeldByAnotherConnection",
     [](const std::string& path) {
       CopyTaxpayerTemplate(path);
       auto other = Database::Open(path);
       Database::Transaction holding(*other);
       other->Execute(R"(INSERT INTO "Portfolio" ("Port Name") VALUES ('Theirs'))");
       Database::Open(path)->Execute(R"(INSERT INTO "Portfolio" ("Port Name") VALUES ('Mine'))");
     },
     err::kReserved,
     "Reserved error (-8194); the file {path} is in use by another user or program (database is "
     "locked)"},
};

TEST_P(MappingTest, Failure_ReachesHandledNumber) {
  const MappingCase& c = GetParam();
  std::string path = app_->taxpayer_folder + "x.mdb";
  std::string folder = std::filesystem::path(path).parent_path().string();
  try {
    c.provoke(path);
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), c.number);
    EXPECT_EQ(e.text(), Replace(Replace(c.text, "{path}", path), "{folder}", folder));
  }
}

INSTANTIATE_TEST_SUITE_P(Sqlite, MappingTest, ::testing::ValuesIn(kMappings),
                         [](const auto& info) { return std::string(info.param.name); });

// Values reach SQL only as bound parameters: quotes, wildcards, statement
// separators and comment marks are stored and found as the plain text they
// are, and a name with "%" or "_" never matches another name.
struct TextCase {
  const char* name;
  const char* value;
};

// Names the row in failure messages instead of dumping its bytes.
void PrintTo(const TextCase& row, std::ostream* os) { *os << row.name; }

const TextCase kTexts[] = {
    {"DoubleQuote", R"(The "Growth" Fund)"},
    {"SingleQuote", "O'Brien's IRA"},
    {"Percent", "100%"},
    {"Underscore", "A_B"},
    {"Semicolon", R"(x'); DELETE FROM "Portfolio"; --)"},
    {"DashDash", "-- Income"},
    {"NonAscii", "Müller Ærø 株式 €"},
    {"Empty", ""},
};

class RoundTripTest : public StorageTest, public ::testing::WithParamInterface<TextCase> {};

TEST_P(RoundTripTest, Value_StoredAndFoundExactly) {
  const std::string value = GetParam().value;
  auto db = Database::Open(CopyTemplate("x.mdb"));
  // Names a wildcard reading of the value would also match.
  for (const char* decoy : {"1000", "AxB", "Other"}) AddPortfolio(*db, decoy);
  db->Execute(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line") VALUES (:p, :l))",
              {{"p", value}, {"l", value}});

  Query found = db->Select(
      R"(SELECT "Port Name", "2nd Line" FROM "Portfolio" WHERE "Port Name" = :p)", {{"p", value}});
  ASSERT_TRUE(found.Next());
  EXPECT_EQ(found.Text("Port Name"), value);
  EXPECT_EQ(found.OptionalText("2nd Line"), value);
  EXPECT_FALSE(found.Next());

  EXPECT_EQ(db->ExecuteSaved("DelPortfolio", {{"sPortName", value}}), 1);
  EXPECT_EQ(Count(*db, "Portfolio"), 3);
}

INSTANTIATE_TEST_SUITE_P(Texts, RoundTripTest, ::testing::ValuesIn(kTexts),
                         [](const auto& info) { return std::string(info.param.name); });

// Units of work: only Commit() keeps rows; a unit left without it takes its
// rows along; an inner unit can be undone while the outer one commits; a
// write that fails half-way through a unit leaves none of the unit's rows.
TEST_F(StorageTest, Transaction_CommitKeepsRows) {
  auto db = Database::Open(CopyTemplate("x.mdb"));
  {
    Database::Transaction unit(*db);
    AddPortfolio(*db, "A");
    AddPortfolio(*db, "B");
    unit.Commit();
  }
  db.reset();
  db = Database::Open(app_->taxpayer_folder + "x.mdb");
  EXPECT_EQ(Count(*db, "Portfolio"), 2);
}

TEST_F(StorageTest, Transaction_DestructorRollsBack) {
  auto db = Database::Open(CopyTemplate("x.mdb"));
  {
    Database::Transaction unit(*db);
    AddPortfolio(*db, "A");
    AddPortfolio(*db, "B");
  }
  EXPECT_EQ(Count(*db, "Portfolio"), 0);
  // The file is free again: a new unit can start and commit.
  Database::Transaction next(*db);
  AddPortfolio(*db, "C");
  next.Commit();
  EXPECT_EQ(Count(*db, "Portfolio"), 1);
}

TEST_F(StorageTest, Transaction_InnerRolledBackOuterCommits) {
  auto db = Database::Open(CopyTemplate("x.mdb"));
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
  std::vector<std::string> names;
  Query q = db->Select(R"(SELECT "Port Name" FROM "Portfolio" ORDER BY "Port Name")");
  while (q.Next()) names.push_back(q.Text("Port Name"));
  EXPECT_EQ(names, (std::vector<std::string>{"Kept", "Outer"}));
}

TEST_F(StorageTest, Transaction_InjectedWriteFailureLeavesNoRows) {
  StorageFaults faults;
  auto db = Database::Open(CopyTemplate("x.mdb"), Database::Mode::kShared, &faults);
  AddPortfolio(*db, "Before");
  faults.FailWriteNumber(3);
  try {
    Database::Transaction unit(*db);
    for (const char* name : {"A", "B", "C", "D", "E"}) AddPortfolio(*db, name);
    unit.Commit();
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kSqliteBase + 10);
    EXPECT_EQ(e.text(), "disk I/O error (injected)");
  }
  EXPECT_EQ(Count(*db, "Portfolio"), 1);
  EXPECT_EQ(db->IntegrityCheck(), "ok");
}

// Deleting a portfolio takes its securities, their blocks and every
// transaction row with it, and nothing of another portfolio.
TEST_F(StorageTest, Cascade_DeletePortfolioRemovesEverythingBelow) {
  auto db = Database::Open(CopyTemplate("x.mdb"));
  const Date day = Date::FromYmd(2024, 3, 1);
  for (const char* port : {"Gone", "Stays"}) {
    AddPortfolio(*db, port);
    db->Execute(R"(INSERT INTO "Security" ("Sec Symbol", "Port Name") VALUES ('IBM', :p))",
                {{"p", port}});
    int64_t sec_id = db->LastInsertId();
    db->Execute(
        R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, '03/01/2024-1', :d))",
        {{"s", sec_id}, {"d", day}});
    Params block = {{"b", db->LastInsertId()}, {"d", day}};
    db->Execute(
        R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Shares", "Prec Sort") VALUES (:b, :d, 10, 10, 10))",
        block);
    db->Execute(
        R"(INSERT INTO "Sell" ("Block No", "Date", "Shares", "Prec Sort") VALUES (:b, :d, -2, 40))",
        block);
    db->Execute(
        R"(INSERT INTO "Split" ("Block No", "Date", "Type", "Pre Ratio", "Post Ratio", "Shares", "Prec Sort") )"
        R"(VALUES (:b, :d, 11, 1, 2, 8, 60))",
        block);
    db->Execute(
        R"(INSERT INTO "Adjust" ("Block No", "Date", "Shares", "Prec Sort") VALUES (:b, :d, 1, 30))",
        block);
  }

  EXPECT_EQ(db->ExecuteSaved("DelPortfolio", {{"sPortName", "Gone"}}), 1);

  for (const char* table : {"Portfolio", "Security", "Blocks", "Buy", "Sell", "Split", "Adjust"}) {
    EXPECT_EQ(Count(*db, table), 1) << table;
  }
  Query left = db->Select(R"(SELECT "Port Name" FROM "Security")");
  ASSERT_TRUE(left.Next());
  EXPECT_EQ(left.Text("Port Name"), "Stays");
  EXPECT_EQ(db->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise
