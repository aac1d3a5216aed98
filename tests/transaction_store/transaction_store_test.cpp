#include "data/transaction_store.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>

#include "data/database.h"
#include "data/error_handler.h"
#include "lots/block_edit.h"
#include "support/golden.h"
#include "transaction_store/store_fixture.h"

namespace lotwise::testing {
namespace {

// The acquisition and split kinds are their transaction types.
enum Kind : int16_t {
  kBuy = kTypeBuy,
  kReinvest = kTypeReinvest,
  kSplit = kTypeSplit,
  kDividend = kTypeDividend,
  kSell,
  kAdjust
};

class TransactionStoreTest : public StoreTest {
 protected:
  // Enters one transaction of `kind` as its dialog does, the same-date
  // question first: acquisitions open a block of `sec_id` (its id lands in
  // block_id_), the other kinds are filed under `block_no`.
  bool Enter(Kind kind, int64_t sec_id, int64_t block_no, const char* date) {
    switch (kind) {
      case kBuy:
      case kReinvest:
        return AddBuy(*app_, sec_id, block_id_, kind, D(date), Money("1000"), 10, {}, "");
      case kSplit:
      case kDividend:
        return ConfirmSplitOn(*app_, block_no, kind, D(date)) &&
               AddSplit(*app_, block_no, kind, D(date), 1, 2, 10, "");
      case kSell:
        return ConfirmSellOn(*app_, block_no, D(date)) &&
               AddSell(*app_, block_no, D(date), Money("500"), Money("5"), -4, "");
      case kAdjust:
        return AddAdjust(*app_, block_no, D(date), 1, Money("10"), "");
    }
    return false;
  }

  // A sale on 03/01 and 04/01, a split on 05/01, a dividend on 06/01 and an
  // adjustment on 07/01/2024.
  void FillBlock(int64_t block) {
    ASSERT_TRUE(AddSell(*app_, block, D("03/01/2024"), Money("1"), Currency(), -1, ""));
    ASSERT_TRUE(AddSell(*app_, block, D("04/01/2024"), Money("1"), Currency(), -1, ""));
    ASSERT_TRUE(AddSplit(*app_, block, kTypeSplit, D("05/01/2024"), 1, 2, 98, ""));
    ASSERT_TRUE(AddSplit(*app_, block, kTypeDividend, D("06/01/2024"), 0.05, 1, 9.8, ""));
    ASSERT_TRUE(AddAdjust(*app_, block, D("07/01/2024"), 1, Money("1"), ""));
  }

  // Each block with its buy, oldest first, as "Block No|Block ID|Date|buy's
  // Date|Cost", read likewise.
  Lines BlocksOnDisk() {
    return Rows(Database::Open(client_path_)
                    ->Select(R"(SELECT "Block No", "Block ID", b."Date", u."Date" AS "Buy Date", )"
                             R"("Cost" FROM "Blocks" b LEFT JOIN "Buy" u USING ("Block No") )"
                             R"(ORDER BY b."Date", "Block ID")"));
  }

  // Rows of the four transaction tables matching `where`.
  long long TransactionRows(const std::string& where = "1 = 1") {
    long long rows = 0;
    for (const char* table : {"Buy", "Sell", "Split", "Adjust"}) rows += CountOnDisk(table, where);
    return rows;
  }

  std::string block_id_;
};

// Block ids number a security's lots of one date from 1 up, the first free
// number first.
TEST_F(TransactionStoreTest, AddBuy_SameDate_TakesFirstFreeNumber) {
  for (int n = 1; n <= 3; ++n) {
    if (n > 1) ExpectSaid(ui_, __FILE__, "purchase", Answer::kYes);
    EXPECT_EQ(BuyShares("03/01/2024", 10, "100"), "03/01/2024-" + std::to_string(n));
  }
  app_->client->Execute(R"(DELETE FROM "Blocks" WHERE "Block ID" = '03/01/2024-2')");
  ExpectSaid(ui_, __FILE__, "purchase", Answer::kYes);
  EXPECT_EQ(BuyShares("03/01/2024", 10, "100"), "03/01/2024-2");
}

// Each kind asks its own same-date question about the same block (sales,
// splits, adjustments) or the same security and type (acquisitions) only;
// No leaves the file as it was and Yes writes.
struct SameDateCase {
  Kind existing, added;
  const char* question;  // nullptr: none
};

class SameDateTest : public TransactionStoreTest,
                     public ::testing::WithParamInterface<SameDateCase> {};

TEST_P(SameDateTest, Add_SameDate_AsksOnlyWhereDue) {
  const SameDateCase& c = GetParam();
  BuyShares("01/02/2024", 100, "1000");  // block 1
  BuyShares("01/05/2024", 50, "500");    // block 2, which is never asked about
  ASSERT_TRUE(Enter(c.existing, sec_id_, 1, "03/01/2024"));
  EXPECT_TRUE(Enter(c.added, AddSecurity(kPort, "MSFT"), 2, "03/01/2024"));
  const long long rows = TransactionRows();
  const long long blocks = CountOnDisk("Blocks");
  if (c.question != nullptr) {
    ExpectSaid(ui_, __FILE__, c.question, Answer::kNo);
    block_id_ = "untouched";
    EXPECT_FALSE(Enter(c.added, sec_id_, 1, "03/01/2024"));
    EXPECT_EQ(block_id_, "untouched");
    EXPECT_EQ(TransactionRows(), rows);
    EXPECT_EQ(CountOnDisk("Blocks"), blocks);
    ExpectSaid(ui_, __FILE__, c.question, Answer::kYes);
  }
  EXPECT_TRUE(Enter(c.added, sec_id_, 1, "03/01/2024"));
  EXPECT_EQ(TransactionRows(), rows + 1);
  if (c.added == kBuy || c.added == kReinvest) {
    EXPECT_EQ(block_id_, "03/01/2024-2");
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, SameDateTest,
                         ::testing::Values(SameDateCase{kBuy, kBuy, "purchase"},
                                           SameDateCase{kReinvest, kReinvest, "purchase"},
                                           SameDateCase{kReinvest, kBuy, nullptr},
                                           SameDateCase{kBuy, kReinvest, nullptr},
                                           SameDateCase{kSell, kSell, "purchase"},
                                           SameDateCase{kDividend, kSplit, "split"},
                                           SameDateCase{kSplit, kDividend, "dividend"},
                                           SameDateCase{kAdjust, kAdjust, "adjust"}));

// Each row lands with its values in the right fields and the same-date rank
// of its kind (rows as "Unique ID|Block No|Date|...|Notes|Prec Sort").
TEST_F(TransactionStoreTest, Add_EachKind_WritesFieldsAndPrecSort) {
  ASSERT_TRUE(AddBuy(*app_, sec_id_, block_id_, kTypeBuy, D("01/02/2024"), Money("1000.1234"),
                     100.12345, Money("9.95"), "b"));
  ASSERT_TRUE(AddBuy(*app_, sec_id_, block_id_, kTypeReinvest, D("01/02/2024"), Money("12"), 1.5,
                     Currency(), "r"));
  ASSERT_TRUE(AddSell(*app_, 1, D("02/01/2024"), Money("555.5"), Money("4.25"), -40.5, "s"));
  ASSERT_TRUE(AddSplit(*app_, 1, kTypeSplit, D("03/01/2024"), 1, 2, 60, "x"));
  ASSERT_TRUE(AddSplit(*app_, 1, kTypeDividend, D("04/01/2024"), 0.05, 1, 3, "d"));
  ASSERT_TRUE(AddAdjust(*app_, 1, D("05/01/2024"), -0.25, Money("-12.5"), "a"));
  const auto rows = [&](std::string table) {
    return Rows(app_->client->Select("SELECT * FROM \"" + table + "\" ORDER BY \"Unique ID\""));
  };
  EXPECT_EQ(rows("Buy"), (Lines{"1|1|2024-01-02|10|10001234|100.12345|99500|b|10",
                                "2|2|2024-01-02|20|120000|1.5|0|r|20"}));
  EXPECT_EQ(rows("Sell"), Lines{"1|1|2024-02-01|5555000|42500|-40.5|s|40"});
  EXPECT_EQ(rows("Split"),
            (Lines{"1|1|2024-03-01|11|1.0|2.0|60.0|x|60", "2|1|2024-04-01|21|0.05|1.0|3.0|d|50"}));
  EXPECT_EQ(rows("Adjust"), Lines{"1|1|2024-05-01|-0.25|-125000|a|30"});
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// A modification logs each changed field in field order, values in their
// default text form, under the current portfolio and security and today's
// date, and rewrites the row; notes changes are never logged. A unique id
// that is not there is reported and changes nothing.

class ModifyTest : public TransactionStoreTest, public ::testing::WithParamInterface<GoldenCase> {
 protected:
  void SetUp() override {
    TransactionStoreTest::SetUp();
    BuyShares("01/02/2024", 100, "1000", kTypeBuy, "old");
    ASSERT_TRUE(AddSell(*app_, 1, D("06/03/2024"), Money("500"), Money("5"), -40, "old"));
    ASSERT_TRUE(AddSplit(*app_, 1, kTypeSplit, D("07/01/2024"), 1, 2, 60, "old"));
    ASSERT_TRUE(AddAdjust(*app_, 1, D("08/01/2024"), 1, Money("10"), "old"));
  }

  bool Modify(int64_t id) {
    std::string date, money, fee;
    double shares = 0;
    std::istringstream(GetParam().sections.at(1).args) >> date >> money >> fee >> shares;
    const std::string table = Table();
    if (table == "Buy") {
      return ModifyBuy(*app_, id, D(date.c_str()), Money(money.c_str()), Money(fee.c_str()), shares,
                       "new");
    }
    if (table == "Sell") {
      return ModifySell(*app_, id, D(date.c_str()), Money(money.c_str()), Money(fee.c_str()),
                        shares, "new");
    }
    if (table == "Split") return ModifySplit(*app_, id, D(date.c_str()), shares, "new");
    return ModifyAdjust(*app_, id, D(date.c_str()), Money(money.c_str()), shares, "new");
  }

  std::string Table() {
    const std::string& name = GetParam().name;
    return name.substr(0, name.find(' '));
  }

  Lines Notes() {
    return Rows(
        app_->client->Select("SELECT \"Notes\" FROM \"" + Table() + "\" WHERE \"Unique ID\" = 1"));
  }
};

TEST_P(ModifyTest, Modify_Fields_MissingIdRefusedChangesLogged) {
  const GoldenCase& c = GetParam();
  ExpectSaid(ui_, __FILE__, "not_located");
  EXPECT_FALSE(Modify(999));
  EXPECT_EQ(CountClientRows("Change"), 0);
  EXPECT_EQ(Notes(), Lines{"old"});

  ASSERT_TRUE(Modify(1));
  Lines expected;
  for (const std::string& field : c.Lines("logged")) {
    expected.push_back("2026-11-22|Growth|" + std::to_string(sec_id_) + "|Changed " + Table() +
                       " (Unique ID = 1), field " + field);
  }
  EXPECT_EQ(Rows(app_->client->Select(R"(SELECT * FROM "Change" ORDER BY rowid)")), expected);
  EXPECT_EQ(Notes(), Lines{"new"});
}

INSTANTIATE_TEST_SUITE_P(Kinds, ModifyTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "modifications.txt")));

// Re-dating a lot onto a date that already has lots gives it the next free
// number there, whether the buy or the block is re-dated; only a lot of the
// same acquisition type is questioned, and declining abandons the whole
// modification.
struct RedateCase {
  int16_t lot_on_target_dates;
  bool asks;
};

class RedateTest : public TransactionStoreTest, public ::testing::WithParamInterface<RedateCase> {};

TEST_P(RedateTest, Redate_OntoOccupiedDate_TakesNextNumber) {
  const RedateCase& c = GetParam();
  BuyShares("01/02/2024", 10, "100", c.lot_on_target_dates);
  BuyShares("01/03/2024", 10, "100", c.lot_on_target_dates);
  BuyShares("02/05/2024", 20, "200");
  BuyShares("02/06/2024", 20, "200");
  app_->current.block_no = 4;
  app_->current.block_id = "02/06/2024-1";
  if (c.asks) {
    const Lines before = BlocksOnDisk();
    ExpectSaid(ui_, __FILE__, "redate", Answer::kNo, {"01/03/2024"});
    EXPECT_FALSE(ModifyBuy(*app_, 4, D("01/03/2024"), Money("250"), Currency(), 20, "x"));
    EXPECT_EQ(BlocksOnDisk(), before);
    EXPECT_EQ(CountClientRows("Change"), 0);
    for (const char* date : {"01/02/2024", "01/03/2024"}) {
      ExpectSaid(ui_, __FILE__, "redate", Answer::kYes, {date});
    }
  }
  ASSERT_TRUE(UpdateBlock(*app_, sec_id_, 3, D("01/02/2024")));
  ASSERT_TRUE(ModifyBuy(*app_, 4, D("01/03/2024"), Money("200"), Currency(), 20, ""));
  EXPECT_EQ(BlocksOnDisk(), (Lines{"1|01/02/2024-1|2024-01-02|2024-01-02|1000000",
                                   "3|01/02/2024-2|2024-01-02|2024-02-05|2000000",
                                   "2|01/03/2024-1|2024-01-03|2024-01-03|1000000",
                                   "4|01/03/2024-2|2024-01-03|2024-01-03|2000000"}));
  EXPECT_EQ(app_->current.block_id, "01/03/2024-2");
}

INSTANTIATE_TEST_SUITE_P(Lots, RedateTest,
                         ::testing::Values(RedateCase{kTypeBuy, true},
                                           RedateCase{kTypeReinvest, false}));

// With no block there is nothing to delete; declined, the selected block
// stays; confirmed, every transaction of it goes along and the other block
// and the file stay sound.
TEST_F(TransactionStoreTest, DeleteBlock_NoneDeclinedConfirmed) {
  ExpectSaid(ui_, __FILE__, "no_blocks");
  DeleteBlock(*app_);

  BuyShares("01/02/2024", 100, "1000");
  BuyShares("01/03/2024", 100, "1000");
  FillBlock(1);
  FillBlock(2);
  app_->current.block_no = 1;
  app_->current.block_id = "01/02/2024-1";
  ExpectSaid(ui_, __FILE__, "delete_block", Answer::kNo);
  DeleteBlock(*app_);
  EXPECT_EQ(TransactionRows(), 12);
  ExpectSaid(ui_, __FILE__, "delete_block", Answer::kYes);
  DeleteBlock(*app_);
  EXPECT_EQ(BlocksOnDisk(), Lines{"2|01/03/2024-1|2024-01-03|2024-01-03|10000000"});
  EXPECT_EQ(TransactionRows(), 6);
  EXPECT_EQ(TransactionRows(R"("Block No" NOT IN (SELECT "Block No" FROM "Blocks"))"), 0);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
  EXPECT_EQ(app_->current.block_no, 0);
}

// A write that fails half-way leaves nothing of the entry behind: neither a
// block without its buy, nor a re-dated block under an old buy, nor a change
// log without its change.
struct FaultCase {
  bool modify;  // else add
  int failing_write;
  const char* location;
};

class FaultTest : public TransactionStoreTest, public ::testing::WithParamInterface<FaultCase> {};

TEST_P(FaultTest, WriteFails_FileAsBefore) {
  const FaultCase& c = GetParam();
  BuyShares("01/02/2024", 100, "1000");
  UseStorageFaults();
  faults_.FailWriteNumber(c.failing_write);
  ui_.Expect(FatalMessage(31010, "disk I/O error (injected)", c.location), "Warning!",
             Icon::kCritical, Buttons::kOk);
  EXPECT_THROW(c.modify ? ModifyBuy(*app_, 1, D("02/01/2024"), Money("1000"), Currency(), 100, "")
                        : AddBuy(*app_, sec_id_, block_id_, kTypeBuy, D("02/01/2024"),
                                 Money("1000"), 100, Currency(), ""),
               ProgramEnded);
  EXPECT_EQ(BlocksOnDisk(), Lines{"1|01/02/2024-1|2024-01-02|2024-01-02|10000000"});
  EXPECT_EQ(TransactionRows(), 1);
  EXPECT_EQ(CountOnDisk("Change"), 0);
}

// Modify's writes: the change line, the block's new date, the buy row.
INSTANTIATE_TEST_SUITE_P(Writes, FaultTest,
                         ::testing::Values(FaultCase{false, 2, "AddBuy"},
                                           FaultCase{true, 1, "LogChange"},
                                           FaultCase{true, 2, "ModifyBuy"},
                                           FaultCase{true, 3, "ModifyBuy"}));

// User text reaches the file as data, never as SQL, and comes back exactly.
TEST_F(TransactionStoreTest, Notes_AwkwardText_RoundTripsExactly) {
  const std::string text = R"(O'Brien "Family" 100% _all_ x'); DELETE FROM "Blocks"; -- Müller €)";
  BuyShares("01/02/2024", 100, "1000", kTypeBuy, text);
  ASSERT_TRUE(AddSell(*app_, 1, D("02/01/2024"), Money("1"), Currency(), -1, text));
  app_->current.port_name = text;
  ASSERT_TRUE(ModifySell(*app_, 1, D("02/02/2024"), Money("1"), Currency(), -1, text + "!"));
  EXPECT_EQ(
      Rows(app_->client->Select(
          R"(SELECT (SELECT "Notes" FROM "Buy") AS b, (SELECT "Notes" FROM "Sell") AS s, )"
          R"((SELECT "Port Name" FROM "Change") AS p, (SELECT count(*) FROM "Blocks") AS n)")),
      Lines{text + "|" + text + "!|" + text + "|1"});
}

}  // namespace
}  // namespace lotwise::testing
