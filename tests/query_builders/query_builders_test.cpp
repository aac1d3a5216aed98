#include "data/query_builders.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "data/database.h"
#include "support/golden.h"
#include "transaction_store/store_fixture.h"

namespace lotwise::testing {
namespace {

class QueryBuildersTest : public StoreTest {
 protected:
  // Writes the rows of case `name` of golden/ledgers.txt.
  void Load(const std::string& name) {
    for (const GoldenCase& c : ReadCases(__FILE__, "ledgers.txt")) {
      if (c.name == name) app_->client->ExecuteScript(c.Text(""));
    }
  }

  // The listing as "mm/dd/yyyy Transaction" lines.
  Lines Listing(int64_t block, TransKind kind) {
    Lines lines;
    Query q = Select(*app_->client, Query_TransInBlock(block, kind));
    while (q.Next()) lines.push_back(q.DateValue("Date").ToString() + " " + q.Text("Transaction"));
    return lines;
  }

  // One column of a statement's result over `db`.
  static Lines Column(Database& db, const SqlStatement& statement, const char* column) {
    Lines values;
    Query q = Select(db, statement);
    while (q.Next()) values.push_back(q.Text(column));
    return values;
  }
};

// The listing of all kinds runs in date order and, on one date, in the
// same-date rank order (a dividend before a split), in one row shape that
// shows zero for a field the kind lacks; each kind alone lists only itself;
// a block lacking some kinds still lists the others.
TEST_F(QueryBuildersTest, TransInBlock_Kinds_DateThenPrecSort) {
  Load("TransInBlock");
  const int64_t block = BlockNo("01/02/2024-1");
  const int64_t neighbour = BlockNo("01/02/2024-2");

  // golden/trans_in_block.txt: the columns, the rows of all kinds (money in
  // ten-thousandths), then each kind's listing and the neighbour's.
  Query all = Select(*app_->client, Query_TransInBlock(block, TransKind::kAll));
  std::string text;
  for (int i = 0; i < all.ColumnCount(); ++i) text += all.ColumnName(i) + "|";
  for (const std::string& row : Rows(std::move(all))) text += "\n" + row;
  for (TransKind kind :
       {TransKind::kBuy, TransKind::kReinvestment, TransKind::kSell, TransKind::kStockSplit,
        TransKind::kStockDividend, TransKind::kAdjustment}) {
    text += "\n" + std::to_string(static_cast<int>(kind)) + ":";
    for (const std::string& line : Listing(block, kind)) text += " " + line + ";";
  }
  for (TransKind kind : {TransKind::kAll, TransKind::kAdjustment}) {
    text += "\nneighbour " + std::to_string(static_cast<int>(kind)) + ":";
    for (const std::string& line : Listing(neighbour, kind)) text += " " + line + ";";
  }
  ExpectGolden(__FILE__, "trans_in_block.txt", text + "\n");
}

// Type 99 stands for tables without a Type field: the statement then has
// no Type condition at all; any other type filters on it.
TEST_F(QueryBuildersTest, RollBack_Type_DeletesLaterRowsOfIt) {
  Load("RollBack");
  const int64_t block = BlockNo("01/02/2024-1");
  EXPECT_EQ(Execute(*app_->client, Query_RollBack("Sell", 99, block, D("03/01/2024"))), 1);
  EXPECT_EQ(Execute(*app_->client, Query_RollBack("Split", 21, block, D("02/01/2024"))), 1);
  EXPECT_EQ(Listing(block, TransKind::kAll),
            (Lines{"03/01/2024 Sell", "03/01/2024 Stock Split (1 to 2)"}));
}

// The sorted taxpayer list sorts by name, sort name or code without regard
// to case; any other key is refused with a message and lists unsorted. One
// taxpayer is found by code in any case, and only by the whole code.
TEST_F(QueryBuildersTest, GetClientCDBSorted_EachKey_SortsWithoutCase) {
  app_->central->Execute(R"(DELETE FROM "Clients")");
  for (auto [code, name, sort] :
       {std::tuple{"C3", "alice", "Zed"}, std::tuple{"a1", "Bob", "young"},
        std::tuple{"B2", "carol", "Xavier"}}) {
    app_->central->Execute(
        R"(INSERT INTO "Clients" ("Client Code", "Client Name", "Sort Name", "File Name") )"
        R"(VALUES (:c, :n, :s, 'f.mdb'))",
        {{"c", code}, {"n", name}, {"s", sort}});
  }
  const auto codes = [&](int key) {
    return Column(*app_->central, Query_GetClientCDBSorted(*app_, key), "Client Code");
  };
  EXPECT_EQ(codes(0), (Lines{"C3", "a1", "B2"}));
  EXPECT_EQ(codes(1), (Lines{"B2", "a1", "C3"}));
  EXPECT_EQ(codes(2), (Lines{"a1", "B2", "C3"}));
  for (int key : {3, -1}) {
    ui_.Expect("Incorrect value to Sort Clients by", "Error");
    EXPECT_EQ(codes(key).size(), 3u) << key;
  }
  EXPECT_EQ(Column(*app_->central, Query_GetClientCDB("A1"), "Client Name"), Lines{"Bob"});
  EXPECT_TRUE(Select(*app_->client, Query_GetClient("doe01")).Next());
  EXPECT_FALSE(Select(*app_->central, Query_GetClientCDB("B")).Next());
}

// Table names cannot be bound: only the program's own tables are accepted.
TEST_F(QueryBuildersTest, TableNames_OnlyOwnTablesAccepted) {
  for (const char* table : {"Lots", "", R"(Blocks"; DROP TABLE "Buy)"}) {
    SCOPED_TRACE(table);
    EXPECT_EQ(ErrorOf([&] { Query_ClearTable(table); }).substr(0, 5), "3011:");
    EXPECT_THROW(Query_DeleteTrans(table, 1), LwError);
    EXPECT_THROW(Query_GetTransaction(table, 1), LwError);
  }
  Load("BlockQueries");
  Execute(*app_->client, Query_ClearTable("Blocks"));
  EXPECT_EQ(CountClientRows("Blocks"), 0);
}

// Blocks come oldest first, then by block id; the dated form keeps to its
// date and security; the deletes touch only the named row.
TEST_F(QueryBuildersTest, BlockQueries_OrderAndScope) {
  Load("BlockQueries");
  const int64_t first = BlockNo("01/02/2024-1");
  EXPECT_EQ(Column(*app_->client, Query_GetBlocksInSec(sec_id_), "Block ID"),
            (Lines{"01/02/2024-1", "03/01/2024-1", "03/01/2024-2"}));
  EXPECT_EQ(
      Column(*app_->client, Query_GetBlocksInSecWithDate(sec_id_, D("03/01/2024")), "Block ID"),
      (Lines{"03/01/2024-1", "03/01/2024-2"}));

  EXPECT_EQ(Execute(*app_->client, Query_DeleteTrans("Sell", 1)), 1);
  EXPECT_EQ(Listing(first, TransKind::kAll), (Lines{"01/02/2024 Buy", "02/03/2024 Sell"}));
  EXPECT_EQ(Execute(*app_->client, Query_DeleteBlock(first)), 1);
  EXPECT_EQ(CountClientRows("Buy") + CountClientRows("Sell"), 0);
  EXPECT_EQ(CountClientRows("Blocks"), 3);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
