#include "data/transaction_store.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "app/error_handler.h"
#include "data/database.h"
#include "transaction_store/store_fixture.h"

namespace lotwise::testing {
namespace {

using Lines = std::vector<std::string>;

const std::string kPurchaseQuestion =
    "There is already a Purchase of Shares in this Security on 03/01/2024.\n"
    "Do you still want to add this transaction?";
const std::string kRedateQuestion =
    "There is already a Purchase (or Reinvestment) of Shares in this Security on 01/02/2024.\n"
    "Do you still want to modify this transaction?";
const std::string kShutDownAdvice =
    " The program will now shut down to prevent errors in your data and calculations.";

enum class Kind { kBuy, kReinvest, kSell, kSplit, kDividend, kAdjust };

const char* TableOf(Kind kind) {
  switch (kind) {
    case Kind::kBuy:
    case Kind::kReinvest:
      return "Buy";
    case Kind::kSell:
      return "Sell";
    case Kind::kSplit:
    case Kind::kDividend:
      return "Split";
    case Kind::kAdjust:
      return "Adjust";
  }
  return "";
}

class TransactionStoreTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    client_path_ = app_->client->path();
  }

  // Enters one transaction of `kind`: acquisitions open a block of
  // `sec_id`, the other kinds are filed under `block_no`.
  bool Enter(Kind kind, int64_t sec_id, int64_t block_no, const char* date) {
    std::string block_id;
    switch (kind) {
      case Kind::kBuy:
        return AddBuy(*app_, sec_id, block_id, kTypeBuy, D(date), Money("1000"), 10, Currency(),
                      "");
      case Kind::kReinvest:
        return AddBuy(*app_, sec_id, block_id, kTypeReinvest, D(date), Money("50"), 1, Currency(),
                      "");
      case Kind::kSell:
        return AddSell(*app_, block_no, D(date), Money("500"), Money("5"), -4, "");
      case Kind::kSplit:
        return AddSplit(*app_, block_no, kTypeSplit, D(date), 1, 2, 10, "");
      case Kind::kDividend:
        return AddSplit(*app_, block_no, kTypeDividend, D(date), 0.05, 1, 0.5, "");
      case Kind::kAdjust:
        return AddAdjust(*app_, block_no, D(date), 1, Money("10"), "");
    }
    return false;
  }

  // Rows that refer to a block that no longer exists, over every table.
  long long OrphanRows() {
    long long orphans = 0;
    for (const char* table : {"Buy", "Sell", "Split", "Adjust"}) {
      Query q =
          app_->client->Select(std::string("SELECT count(*) AS n FROM \"") + table +
                               R"(" WHERE "Block No" NOT IN (SELECT "Block No" FROM "Blocks"))");
      q.Next();
      orphans += q.Int("n");
    }
    return orphans;
  }

  // Reopens the Taxpayer File so that its writes count against `faults_`.
  void UseStorageFaults() {
    app_->client.reset();
    app_->storage_faults = &faults_;
    app_->client = Database::Open(client_path_, Database::Mode::kShared, &faults_);
  }

  // Counts rows through a connection of its own, whatever the program did
  // with its own after a fatal error.
  long long CountOnDisk(const std::string& table, const std::string& where = "1 = 1") {
    auto db = Database::Open(client_path_);
    Query q = db->Select("SELECT count(*) AS n FROM \"" + table + "\" WHERE " + where);
    q.Next();
    return q.Int("n");
  }

  void ExpectFatal(int number, const std::string& text, const std::string& location) {
    ui_.Expect(ErrorHeader(number, text, location) + kShutDownAdvice, "Warning!", Icon::kCritical,
               Buttons::kOk);
  }

  StorageFaults faults_;
  std::string client_path_;
};

// Block ids number a security's lots of one date from 1 up, the first free
// number first, and only a same-type acquisition on that date is questioned.
TEST_F(TransactionStoreTest, AddBuy_ThreeOnOneDate_NumberedAfterTwoYes) {
  EXPECT_EQ(BuyShares("03/01/2024", 10, "100"), "03/01/2024-1");
  ui_.Expect(kPurchaseQuestion, "Purchase with same date exists", Icon::kQuestion, Buttons::kYesNo,
             Answer::kYes);
  std::string second;
  ASSERT_TRUE(
      AddBuy(*app_, sec_id_, second, kTypeBuy, D("03/01/2024"), Money("200"), 20, Currency(), ""));
  ui_.Expect(kPurchaseQuestion, "Purchase with same date exists", Answer::kYes);
  std::string third;
  ASSERT_TRUE(
      AddBuy(*app_, sec_id_, third, kTypeBuy, D("03/01/2024"), Money("300"), 30, Currency(), ""));
  EXPECT_EQ(second, "03/01/2024-2");
  EXPECT_EQ(third, "03/01/2024-3");
  EXPECT_EQ(CountClientRows("Buy"), 3);
}

TEST_F(TransactionStoreTest, AddBuy_AnsweredNo_WritesNothing) {
  BuyShares("03/01/2024", 10, "100");
  ui_.Expect(kPurchaseQuestion, "Purchase with same date exists", Answer::kNo);
  std::string block_id = "untouched";
  EXPECT_FALSE(AddBuy(*app_, sec_id_, block_id, kTypeBuy, D("03/01/2024"), Money("200"), 20,
                      Currency(), ""));
  EXPECT_EQ(block_id, "untouched");
  EXPECT_EQ(CountClientRows("Blocks"), 1);
  EXPECT_EQ(CountClientRows("Buy"), 1);
}

TEST_F(TransactionStoreTest, AddBuy_GapInNumbers_TakesFirstFree) {
  BuyShares("03/01/2024", 10, "100");
  BuyShares("03/01/2024", 10, "100", kTypeReinvest);
  app_->client->Execute(R"(DELETE FROM "Blocks" WHERE "Block ID" = '03/01/2024-1')");
  EXPECT_EQ(BuyShares("03/01/2024", 10, "100"), "03/01/2024-1");
  EXPECT_EQ(BlockIds(), (Lines{"03/01/2024-1", "03/01/2024-2"}));
}

struct AcquisitionPairCase {
  const char* name;
  int16_t first;
  int16_t second;
  bool asks;
};

class AcquisitionPairTest : public TransactionStoreTest,
                            public ::testing::WithParamInterface<AcquisitionPairCase> {};

TEST_P(AcquisitionPairTest, AddBuy_SameDate_AsksOnlyForSameType) {
  const AcquisitionPairCase& c = GetParam();
  BuyShares("03/01/2024", 10, "100", c.first);
  if (c.asks) ui_.Expect(kPurchaseQuestion, "Purchase with same date exists", Answer::kYes);
  std::string block_id;
  EXPECT_TRUE(
      AddBuy(*app_, sec_id_, block_id, c.second, D("03/01/2024"), Money("5"), 1, Currency(), ""));
  EXPECT_EQ(block_id, "03/01/2024-2");
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, AcquisitionPairTest,
    ::testing::Values(AcquisitionPairCase{"BuyThenReinvestment", kTypeBuy, kTypeReinvest, false},
                      AcquisitionPairCase{"ReinvestmentThenBuy", kTypeReinvest, kTypeBuy, false},
                      AcquisitionPairCase{"BuyThenBuy", kTypeBuy, kTypeBuy, true},
                      AcquisitionPairCase{"ReinvestmentThenReinvestment", kTypeReinvest,
                                          kTypeReinvest, true}),
    [](const auto& info) { return std::string(info.param.name); });

// Each kind asks its own same-date question, No leaves the file as it was
// and Yes writes; the question is about the same block (sales, splits,
// adjustments) or the same security (acquisitions) only.
struct SameDateCase {
  const char* name;
  Kind existing;
  Kind added;
  const char* text;
  const char* title;
};

class SameDateTest : public TransactionStoreTest,
                     public ::testing::WithParamInterface<SameDateCase> {};

TEST_P(SameDateTest, Add_SameDate_NoKeepsFileYesWrites) {
  const SameDateCase& c = GetParam();
  int64_t block = BlockNo(BuyShares("01/02/2024", 100, "1000"));
  ASSERT_TRUE(Enter(c.existing, sec_id_, block, "03/01/2024"));
  const long long before = CountClientRows(TableOf(c.added));

  ui_.Expect(c.text, c.title, Icon::kQuestion, Buttons::kYesNo, Answer::kNo);
  EXPECT_FALSE(Enter(c.added, sec_id_, block, "03/01/2024"));
  EXPECT_EQ(CountClientRows(TableOf(c.added)), before);

  ui_.Expect(c.text, c.title, Icon::kQuestion, Buttons::kYesNo, Answer::kYes);
  EXPECT_TRUE(Enter(c.added, sec_id_, block, "03/01/2024"));
  EXPECT_EQ(CountClientRows(TableOf(c.added)), before + 1);
}

TEST_P(SameDateTest, Add_SameDateElsewhere_NoQuestion) {
  const SameDateCase& c = GetParam();
  int64_t block = BlockNo(BuyShares("01/02/2024", 100, "1000"));
  ASSERT_TRUE(Enter(c.existing, sec_id_, block, "03/01/2024"));
  int64_t other_sec = AddSecurity(kPort, "MSFT");
  int64_t other_block = BlockNo(BuyShares("01/05/2024", 50, "500"));
  EXPECT_TRUE(Enter(c.added, other_sec, other_block, "03/01/2024"));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, SameDateTest,
    ::testing::Values(
        SameDateCase{"Buy", Kind::kBuy, Kind::kBuy,
                     "There is already a Purchase of Shares in this Security on 03/01/2024.\n"
                     "Do you still want to add this transaction?",
                     "Purchase with same date exists"},
        SameDateCase{"Reinvestment", Kind::kReinvest, Kind::kReinvest,
                     "There is already a Purchase of Shares in this Security on 03/01/2024.\n"
                     "Do you still want to add this transaction?",
                     "Purchase with same date exists"},
        SameDateCase{"Sell", Kind::kSell, Kind::kSell,
                     "There is already a Purchase of Shares in this Security on 03/01/2024.\n"
                     "Do you still want to add this transaction?",
                     "Purchase with same date exists"},
        SameDateCase{"SplitAfterDividend", Kind::kDividend, Kind::kSplit,
                     "There is already a Stock Split(or Stock Dividend) on 03/01/2024.\n"
                     "Do you still want to add this Stock Split?",
                     "Stock Split with same Date exists"},
        SameDateCase{"DividendAfterSplit", Kind::kSplit, Kind::kDividend,
                     "There is already a Stock Dividend(or Stock Split) on 03/01/2024.\n"
                     "Do you still want to add this Stock Dividend?",
                     "Stock Dividend with same Date exists"},
        SameDateCase{"Adjust", Kind::kAdjust, Kind::kAdjust,
                     "There is already an Adjustment in this block for 03/01/2024.\n"
                     "Do you still want to add this Adjustment?",
                     "Adjustment with same Date exists"}),
    [](const auto& info) { return std::string(info.param.name); });

// Each row lands with its values in the right fields and the same-date rank
// of its kind.
TEST_F(TransactionStoreTest, Add_EachKind_WritesFieldsAndPrecSort) {
  std::string block_id;
  ASSERT_TRUE(AddBuy(*app_, sec_id_, block_id, kTypeBuy, D("01/02/2024"), Money("1000.1234"),
                     100.12345, Money("9.95"), "b"));
  const int64_t block = BlockNo(block_id);
  ASSERT_TRUE(AddBuy(*app_, sec_id_, block_id, kTypeReinvest, D("01/02/2024"), Money("12"), 1.5,
                     Currency(), "r"));
  ASSERT_TRUE(AddSell(*app_, block, D("02/01/2024"), Money("555.5"), Money("4.25"), -40.5, "s"));
  ASSERT_TRUE(AddSplit(*app_, block, kTypeSplit, D("03/01/2024"), 1, 2, 60, "x"));
  ASSERT_TRUE(AddSplit(*app_, block, kTypeDividend, D("04/01/2024"), 0.05, 1, 3, "d"));
  ASSERT_TRUE(AddAdjust(*app_, block, D("05/01/2024"), -0.25, Money("-12.5"), "a"));

  // Each row as "Block No|Date|...|Notes|Prec Sort" in the table's field order.
  const std::string n = std::to_string(block);
  const Lines expected = {
      n + "|2024-01-02|10|10001234|100.12345|99500|b|10",
      "2|2024-01-02|20|120000|1.5|0|r|20",
      n + "|2024-02-01|5555000|42500|-40.5|s|40",
      n + "|2024-03-01|11|1.0|2.0|60.0|x|60",
      n + "|2024-04-01|21|0.05|1.0|3.0|d|50",
      n + "|2024-05-01|-0.25|-125000|a|30",
  };
  Lines rows;
  for (const char* table : {"Buy", "Sell", "Split", "Adjust"}) {
    std::string columns;
    for (const std::string& c : app_->client->Columns(table)) {
      if (c == "Unique ID") continue;
      columns += (columns.empty() ? "\"" : " || '|' || \"") + c + "\"";
    }
    Query q = app_->client->Select("SELECT " + columns + " AS r FROM \"" + table +
                                   "\" ORDER BY \"Unique ID\"");
    while (q.Next()) rows.push_back(q.Text("r"));
  }
  EXPECT_EQ(rows, expected);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// A modification logs each changed field in field order, values in their
// default text form, under the current portfolio and security and today's
// date; it rewrites the row; notes changes are never logged.
struct ModifyCase {
  const char* name;
  const char* table;
  std::function<bool(Application&, int64_t)> modify;
  Lines logged;
};

class ModifyFixture : public TransactionStoreTest {
 protected:
  void SetUp() override {
    TransactionStoreTest::SetUp();
    block_ = BlockNo(BuyShares("01/02/2024", 100, "1000", kTypeBuy, "old"));
    ASSERT_TRUE(AddSell(*app_, block_, D("06/03/2024"), Money("500"), Money("5"), -40, "old"));
    ASSERT_TRUE(AddSplit(*app_, block_, kTypeSplit, D("07/01/2024"), 1, 2, 60, "old"));
    ASSERT_TRUE(AddAdjust(*app_, block_, D("08/01/2024"), 1, Money("10"), "old"));
  }

  int64_t block_ = 0;
};

class ModifyTest : public ModifyFixture, public ::testing::WithParamInterface<ModifyCase> {};

TEST_P(ModifyTest, Modify_ChangedFields_LoggedInOrderAndRowRewritten) {
  const ModifyCase& c = GetParam();
  ASSERT_TRUE(c.modify(*app_, 1));
  EXPECT_EQ(ChangeDescriptions(), c.logged);

  Query log = app_->client->Select(R"(SELECT * FROM "Change")");
  while (log.Next()) {
    EXPECT_EQ(log.Text("Port Name"), kPort);
    EXPECT_EQ(log.Int("Sec ID"), sec_id_);
    EXPECT_EQ(log.DateValue("Date"), D("11/22/2026"));
  }
  Query row = app_->client->Select(std::string(R"(SELECT "Notes" FROM ")") + c.table +
                                   R"(" WHERE "Unique ID" = 1)");
  ASSERT_TRUE(row.Next());
  EXPECT_EQ(row.Text("Notes"), "new");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ModifyTest,
    ::testing::Values(
        ModifyCase{"BuyEveryField",
                   "Buy",
                   [](Application& app, int64_t id) {
                     return ModifyBuy(app, id, D("01/03/2024"), Money("1000.5"), Money("9.95"),
                                      100.5, "new");
                   },
                   {"Changed Buy (Unique ID = 1), field 'Date' from 01/02/2024 to 01/03/2024",
                    "Changed Buy (Unique ID = 1), field 'Cost' from 1000 to 1000.5",
                    "Changed Buy (Unique ID = 1), field 'Fee' from 0 to 9.95",
                    "Changed Buy (Unique ID = 1), field 'Shares' from 100 to 100.5"}},
        ModifyCase{"BuyShares",
                   "Buy",
                   [](Application& app, int64_t id) {
                     return ModifyBuy(app, id, D("01/02/2024"), Money("1000"), Currency(), 0.12345,
                                      "new");
                   },
                   {"Changed Buy (Unique ID = 1), field 'Shares' from 100 to 0.12345"}},
        ModifyCase{"SellEveryField",
                   "Sell",
                   [](Application& app, int64_t id) {
                     return ModifySell(app, id, D("06/04/2024"), Money("550.25"), Money("0"),
                                       -40.25, "new");
                   },
                   {"Changed Sell (Unique ID = 1), field 'Date' from 06/03/2024 to 06/04/2024",
                    "Changed Sell (Unique ID = 1), field 'Sale Price' from 500 to 550.25",
                    "Changed Sell (Unique ID = 1), field 'Fee' from 5 to 0",
                    "Changed Sell (Unique ID = 1), field 'Shares' from -40 to -40.25"}},
        ModifyCase{"SplitEveryField",
                   "Split",
                   [](Application& app, int64_t id) {
                     return ModifySplit(app, id, D("07/02/2024"), 61.5, "new");
                   },
                   {"Changed Split (Unique ID = 1), field 'Date' from 07/01/2024 to 07/02/2024",
                    "Changed Split (Unique ID = 1), field 'Shares' from 60 to 61.5"}},
        ModifyCase{"AdjustEveryField",
                   "Adjust",
                   [](Application& app, int64_t id) {
                     return ModifyAdjust(app, id, D("12/31/2024"), Money("-0.0001"), -2, "new");
                   },
                   {"Changed Adjust (Unique ID = 1), field 'Date' from 08/01/2024 to 12/31/2024",
                    "Changed Adjust (Unique ID = 1), field 'Cost' from 10 to -0.0001",
                    "Changed Adjust (Unique ID = 1), field 'Shares' from 1 to -2"}},
        ModifyCase{"BuyNotesOnly",
                   "Buy",
                   [](Application& app, int64_t id) {
                     return ModifyBuy(app, id, D("01/02/2024"), Money("1000"), Currency(), 100,
                                      "new");
                   },
                   {}},
        ModifyCase{"SellNotesOnly",
                   "Sell",
                   [](Application& app, int64_t id) {
                     return ModifySell(app, id, D("06/03/2024"), Money("500"), Money("5"), -40,
                                       "new");
                   },
                   {}},
        ModifyCase{"SplitNotesOnly",
                   "Split",
                   [](Application& app, int64_t id) {
                     return ModifySplit(app, id, D("07/01/2024"), 60, "new");
                   },
                   {}},
        ModifyCase{"AdjustNotesOnly",
                   "Adjust",
                   [](Application& app, int64_t id) {
                     return ModifyAdjust(app, id, D("08/01/2024"), Money("10"), 1, "new");
                   },
                   {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_P(ModifyTest, Modify_MissingUniqueId_ErrorAndNothingChanged) {
  const ModifyCase& c = GetParam();
  ui_.Expect(
      "The transaction could not be located with Unique ID = 999. This modification can not be "
      "made. It is suggested that you exit the Modify form and try this modification again. If "
      "you continue to get this error please contact Tarnwick Software, Inc.",
      "Error!");
  EXPECT_FALSE(c.modify(*app_, 999));
  EXPECT_EQ(CountClientRows("Change"), 0);
  Query row = app_->client->Select(std::string(R"(SELECT "Notes" FROM ")") + c.table + "\"");
  while (row.Next()) EXPECT_EQ(row.Text("Notes"), "old");
}

// Re-dating a lot onto a date that already has lots gives it the next free
// number there; only a lot of the same acquisition type is questioned, and
// declining abandons the whole modification.
struct RedateCase {
  const char* name;
  int16_t lot_on_target_date;
  bool asks;
};

class RedateTest : public TransactionStoreTest, public ::testing::WithParamInterface<RedateCase> {};

TEST_P(RedateTest, ModifyBuy_OntoOccupiedDate_TakesNextNumber) {
  const RedateCase& c = GetParam();
  BuyShares("01/02/2024", 10, "100", c.lot_on_target_date);
  const int64_t moved = BlockNo(BuyShares("02/05/2024", 20, "200"));
  app_->current.block_no = moved;
  app_->current.block_id = "02/05/2024-1";
  if (c.asks) {
    ui_.Expect(kRedateQuestion, "Purchase with same date exists", Icon::kQuestion, Buttons::kYesNo,
               Answer::kYes);
  }
  ASSERT_TRUE(
      ModifyBuy(*app_, LastUniqueId("Buy"), D("01/02/2024"), Money("200"), Currency(), 20, ""));
  EXPECT_EQ(BlockIds(), (Lines{"01/02/2024-1", "01/02/2024-2"}));
  EXPECT_EQ(app_->current.block_id, "01/02/2024-2");
  EXPECT_EQ(BlockNo("01/02/2024-2"), moved);
}

TEST_P(RedateTest, UpdateBlock_OntoOccupiedDate_TakesNextNumber) {
  const RedateCase& c = GetParam();
  BuyShares("01/02/2024", 10, "100", c.lot_on_target_date);
  const int64_t moved = BlockNo(BuyShares("02/05/2024", 20, "200"));
  if (c.asks) ui_.Expect(kRedateQuestion, "Purchase with same date exists", Answer::kYes);
  ASSERT_TRUE(UpdateBlock(*app_, sec_id_, moved, D("01/02/2024")));
  EXPECT_EQ(BlockNo("01/02/2024-2"), moved);
}

INSTANTIATE_TEST_SUITE_P(Lots, RedateTest,
                         ::testing::Values(RedateCase{"BuyThere", kTypeBuy, true},
                                           RedateCase{"ReinvestmentThere", kTypeReinvest, false}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(TransactionStoreTest, ModifyBuy_RedateDeclined_NothingChanged) {
  BuyShares("01/02/2024", 10, "100");
  BuyShares("02/05/2024", 20, "200");
  ui_.Expect(kRedateQuestion, "Purchase with same date exists", Answer::kNo);
  EXPECT_FALSE(ModifyBuy(*app_, 2, D("01/02/2024"), Money("250"), Currency(), 20, "x"));
  EXPECT_EQ(BlockIds(), (Lines{"01/02/2024-1", "02/05/2024-1"}));
  EXPECT_EQ(CountClientRows("Change"), 0);
  Query buy = app_->client->Select(R"(SELECT * FROM "Buy" WHERE "Unique ID" = 2)");
  ASSERT_TRUE(buy.Next());
  EXPECT_EQ(buy.DateValue("Date"), D("02/05/2024"));
  EXPECT_EQ(buy.Money("Cost"), Money("200"));
}

// A roll-back deletes the block's rows of the chosen type dated after the
// date and keeps the date itself; type 99 takes every row of the table.
struct RollBackCase {
  const char* name;
  const char* table;
  int16_t type;
  const char* date;
  long long left_in_block;
};

class RollBackTest : public TransactionStoreTest,
                     public ::testing::WithParamInterface<RollBackCase> {};

TEST_P(RollBackTest, RollBackTable_DeletesLaterRowsOfType) {
  const RollBackCase& c = GetParam();
  const int64_t block = BlockNo(BuyShares("01/02/2024", 100, "1000"));
  const int64_t other = BlockNo(BuyShares("01/03/2024", 100, "1000"));
  for (int64_t b : {block, other}) {
    ASSERT_TRUE(AddSell(*app_, b, D("03/01/2024"), Money("1"), Currency(), -1, ""));
    ASSERT_TRUE(AddSell(*app_, b, D("04/01/2024"), Money("1"), Currency(), -1, ""));
    ASSERT_TRUE(AddSplit(*app_, b, kTypeSplit, D("05/01/2024"), 1, 2, 98, ""));
    ASSERT_TRUE(AddSplit(*app_, b, kTypeDividend, D("06/01/2024"), 0.05, 1, 9.8, ""));
    ASSERT_TRUE(AddAdjust(*app_, b, D("07/01/2024"), 1, Money("1"), ""));
  }
  const long long other_rows = CountClientRows(c.table) / 2;

  EXPECT_TRUE(RollBackTable(*app_, c.table, block, c.type, D(c.date)));
  EXPECT_EQ(CountOnDisk(c.table, "\"Block No\" = " + std::to_string(block)), c.left_in_block);
  EXPECT_EQ(CountOnDisk(c.table, "\"Block No\" = " + std::to_string(other)), other_rows);
}

INSTANTIATE_TEST_SUITE_P(
    Tables, RollBackTest,
    ::testing::Values(RollBackCase{"SellsAfterFirstSale", "Sell", 99, "03/01/2024", 1},
                      RollBackCase{"SellsBeforeAll", "Sell", 99, "02/29/2024", 0},
                      RollBackCase{"AdjustsOnTheirDate", "Adjust", 99, "07/01/2024", 1},
                      RollBackCase{"DividendsOnly", "Split", kTypeDividend, "01/02/2024", 1},
                      RollBackCase{"SplitsOnly", "Split", kTypeSplit, "01/02/2024", 1},
                      RollBackCase{"BuyOnItsDateKept", "Buy", kTypeBuy, "01/02/2024", 1},
                      RollBackCase{"BuyDayBeforeRemoved", "Buy", kTypeBuy, "01/01/2024", 0},
                      RollBackCase{"ReinvestmentsLeaveBuy", "Buy", kTypeReinvest, "01/01/2024", 1}),
    [](const auto& info) { return std::string(info.param.name); });

// Deleting the selected block takes every transaction of it along and
// leaves the other blocks and the file sound.
TEST_F(TransactionStoreTest, DeleteBlock_Confirmed_RemovesBlockAndAllItsRows) {
  const int64_t doomed = BlockNo(BuyShares("01/02/2024", 100, "1000"));
  const int64_t kept = BlockNo(BuyShares("01/03/2024", 100, "1000"));
  for (int64_t b : {doomed, kept}) {
    ASSERT_TRUE(AddSell(*app_, b, D("03/01/2024"), Money("1"), Currency(), -1, ""));
    ASSERT_TRUE(AddSplit(*app_, b, kTypeSplit, D("05/01/2024"), 1, 2, 98, ""));
    ASSERT_TRUE(AddAdjust(*app_, b, D("07/01/2024"), 1, Money("1"), ""));
  }
  app_->current.block_no = doomed;
  app_->current.block_id = "01/02/2024-1";
  ui_.Expect(
      "You are about to delete Block: 01/02/2024-1. This will also delete all transactions in "
      "this block. Are you sure you want to do this?",
      "Delete Block?", Icon::kQuestion, Buttons::kYesNo, Answer::kYes);
  DeleteBlock(*app_);

  EXPECT_EQ(BlockIds(), (Lines{"01/03/2024-1"}));
  EXPECT_EQ(OrphanRows(), 0);
  for (const char* table : {"Buy", "Sell", "Split", "Adjust"}) {
    EXPECT_EQ(CountClientRows(table), 1) << table;
  }
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
  EXPECT_EQ(app_->current.block_no, 0);
  EXPECT_EQ(BlockNo("01/03/2024-1"), kept);
}

TEST_F(TransactionStoreTest, DeleteBlock_Declined_KeepsBlock) {
  app_->current.block_no = BlockNo(BuyShares("01/02/2024", 100, "1000"));
  app_->current.block_id = "01/02/2024-1";
  ui_.Expect(
      "You are about to delete Block: 01/02/2024-1. This will also delete all transactions in "
      "this block. Are you sure you want to do this?",
      "Delete Block?", Answer::kNo);
  DeleteBlock(*app_);
  EXPECT_EQ(CountClientRows("Blocks"), 1);
  EXPECT_EQ(CountClientRows("Buy"), 1);
}

TEST_F(TransactionStoreTest, DeleteBlock_NoBlocks_SaysSo) {
  ui_.Expect(
      "There are no blocks to delete. To add a block you need to enter a Buy or Reinvestment.",
      "No Blocks", Icon::kInformation, Buttons::kOk);
  DeleteBlock(*app_);
}

// A write that fails half-way leaves nothing of the entry behind: neither a
// block without its buy nor a change log without its change.
TEST_F(TransactionStoreTest, AddBuy_SecondWriteFails_NeitherBlockNorBuy) {
  UseStorageFaults();
  faults_.FailWriteNumber(2);
  ExpectFatal(31010, "disk I/O error (injected)", "AddBuy");
  std::string block_id;
  EXPECT_FALSE(AddBuy(*app_, sec_id_, block_id, kTypeBuy, D("01/02/2024"), Money("1000"), 100,
                      Currency(), ""));
  EXPECT_EQ(env_->end_calls(), 1);
  EXPECT_EQ(CountOnDisk("Blocks"), 0);
  EXPECT_EQ(CountOnDisk("Buy"), 0);
}

struct ModifyFaultCase {
  const char* name;
  int failing_write;
  const char* location;
};

class ModifyFaultTest : public TransactionStoreTest,
                        public ::testing::WithParamInterface<ModifyFaultCase> {};

TEST_P(ModifyFaultTest, ModifyBuy_WriteFails_NothingChanged) {
  const ModifyFaultCase& c = GetParam();
  BuyShares("01/02/2024", 100, "1000");
  UseStorageFaults();
  // Writes: the change line, the block's new date, the buy row.
  faults_.FailWriteNumber(c.failing_write);
  ExpectFatal(31010, "disk I/O error (injected)", c.location);
  EXPECT_FALSE(ModifyBuy(*app_, 1, D("02/01/2024"), Money("1000"), Currency(), 100, ""));
  EXPECT_EQ(CountOnDisk("Change"), 0);
  EXPECT_EQ(CountOnDisk("Blocks", R"("Block ID" = '01/02/2024-1' AND "Date" = '2024-01-02')"), 1);
  EXPECT_EQ(CountOnDisk("Buy", R"("Date" = '2024-01-02')"), 1);
}

INSTANTIATE_TEST_SUITE_P(Writes, ModifyFaultTest,
                         ::testing::Values(ModifyFaultCase{"ChangeLine", 1, "LogChange"},
                                           ModifyFaultCase{"BlockRedate", 2, "ModifyBuy"},
                                           ModifyFaultCase{"BuyRow", 3, "ModifyBuy"}),
                         [](const auto& info) { return std::string(info.param.name); });

// User text reaches the file as data, never as SQL, and comes back exactly.
struct TextCase {
  const char* name;
  const char* text;
};

class TextRoundTripTest : public TransactionStoreTest,
                          public ::testing::WithParamInterface<TextCase> {};

TEST_P(TextRoundTripTest, Notes_AwkwardText_RoundTripsExactly) {
  const std::string text = GetParam().text;
  const int64_t block = BlockNo(BuyShares("01/02/2024", 100, "1000", kTypeBuy, text));
  ASSERT_TRUE(AddSell(*app_, block, D("02/01/2024"), Money("1"), Currency(), -1, text));
  app_->current.port_name = text;
  ASSERT_TRUE(ModifySell(*app_, 1, D("02/02/2024"), Money("1"), Currency(), -1, text + "!"));

  Query buy = app_->client->Select(R"(SELECT "Notes" FROM "Buy")");
  ASSERT_TRUE(buy.Next());
  EXPECT_EQ(buy.Text("Notes"), text);
  Query sell = app_->client->Select(R"(SELECT "Notes" FROM "Sell")");
  ASSERT_TRUE(sell.Next());
  EXPECT_EQ(sell.Text("Notes"), text + "!");
  Query log = app_->client->Select(R"(SELECT "Port Name" FROM "Change")");
  ASSERT_TRUE(log.Next());
  EXPECT_EQ(log.Text("Port Name"), text);
  EXPECT_EQ(CountClientRows("Blocks"), 1);
}

INSTANTIATE_TEST_SUITE_P(Texts, TextRoundTripTest,
                         ::testing::Values(TextCase{"Quotes", R"(O'Brien "Family" Trust)"},
                                           TextCase{"Wildcards", "100% of _all_ shares"},
                                           TextCase{"SqlLike",
                                                    R"(x'); DELETE FROM "Blocks"; -- done)"},
                                           TextCase{"NonAscii", "Müller & Søn – 株式 €"}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace lotwise::testing
