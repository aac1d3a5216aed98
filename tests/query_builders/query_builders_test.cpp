#include "data/query_builders.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "data/database.h"
#include "support/tests_a_helpers.h"
#include "transaction_store/store_fixture.h"

namespace lotwise::testing {
namespace {

class QueryBuildersTest : public StoreTest {
 protected:
  int64_t InsertBlock(const char* block_id, const char* date, int64_t sec_id = 0) {
    app_->client->Execute(
        R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, :id, :d))",
        {{"s", sec_id == 0 ? sec_id_ : sec_id}, {"id", block_id}, {"d", D(date)}});
    return app_->client->LastInsertId();
  }
  // A buy's (type 10) or reinvestment's (type 20) same-date rank is its type.
  void InsertBuy(int64_t block, const char* date, int type, const char* cost) {
    app_->client->Execute(
        R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Cost", "Shares", "Fee", "Notes", "Prec Sort") )"
        R"(VALUES (:b, :d, :t, :c, 100, :f, 'n', :t))",
        {{"b", block}, {"d", D(date)}, {"t", type}, {"c", Money(cost)}, {"f", Money("1.5")}});
  }
  void InsertSell(int64_t block, const char* date, const char* price) {
    app_->client->Execute(
        R"(INSERT INTO "Sell" ("Block No", "Date", "Sale Price", "Fee", "Shares", "Notes", "Prec Sort") )"
        R"(VALUES (:b, :d, :p, :f, -10, 's', 40))",
        {{"b", block}, {"d", D(date)}, {"p", Money(price)}, {"f", Money("2")}});
  }
  void InsertSplit(int64_t block, const char* date, int type, double pre, double post) {
    app_->client->Execute(
        R"(INSERT INTO "Split" ("Block No", "Date", "Type", "Pre Ratio", "Post Ratio", "Shares", "Notes", "Prec Sort") )"
        R"(VALUES (:b, :d, :t, :pre, :post, 5, 'x', :p))",
        {{"b", block},
         {"d", D(date)},
         {"t", type},
         {"pre", pre},
         {"post", post},
         {"p", type == 21 ? 50 : 60}});
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
  // Written in an order unlike the listing's, next to a block that must
  // never show.
  const int64_t block = InsertBlock("01/02/2024-1", "01/02/2024");
  InsertSplit(block, "03/01/2024", 11, 1, 2);
  InsertSplit(block, "03/01/2024", 21, 0.05, 1);
  InsertSell(block, "03/01/2024", "300");
  app_->client->Execute(
      R"(INSERT INTO "Adjust" ("Block No", "Date", "Shares", "Cost", "Notes", "Prec Sort") )"
      R"(VALUES (:b, :d, 1, :c, 'a', 30))",
      {{"b", block}, {"d", D("03/01/2024")}, {"c", Money("7")}});
  InsertBuy(block, "03/01/2024", 20, "50");
  InsertSell(block, "02/01/2024", "200");
  InsertBuy(block, "01/02/2024", 10, "1000");
  const int64_t neighbour = InsertBlock("01/02/2024-2", "01/02/2024");
  InsertBuy(neighbour, "01/02/2024", 10, "999");
  InsertSell(neighbour, "03/01/2024", "1");
  // The database builds the ratio texts, numbers in their default text
  // form (never "1.0").
  for (auto [day, type, pre, post] : {std::tuple{"03/02/2024", 11, 2.0, 3.0},
                                      {"03/03/2024", 11, 10.0, 1.0},
                                      {"03/04/2024", 11, 1.0, 1.5},
                                      {"03/05/2024", 21, 0.1, 1.0}}) {
    InsertSplit(neighbour, day, type, pre, post);
  }

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
  const int64_t block = InsertBlock("01/02/2024-1", "01/02/2024");
  InsertSell(block, "03/01/2024", "1");
  InsertSell(block, "04/01/2024", "1");
  InsertSplit(block, "03/01/2024", 11, 1, 2);
  InsertSplit(block, "03/01/2024", 21, 0.05, 1);
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
  InsertBlock("01/02/2024-1", "01/02/2024");
  InsertBlock("01/03/2024-1", "01/03/2024");
  Execute(*app_->client, Query_ClearTable("Blocks"));
  EXPECT_EQ(CountClientRows("Blocks"), 0);
}

// Blocks come oldest first, then by block id; the dated form keeps to its
// date and security; the deletes touch only the named row.
TEST_F(QueryBuildersTest, BlockQueries_OrderAndScope) {
  InsertBlock("03/01/2024-2", "03/01/2024");
  const int64_t first = InsertBlock("01/02/2024-1", "01/02/2024");
  InsertBlock("03/01/2024-1", "03/01/2024");
  InsertBlock("03/01/2024-1", "03/01/2024", AddSecurity(kPort, "MSFT"));
  EXPECT_EQ(Column(*app_->client, Query_GetBlocksInSec(sec_id_), "Block ID"),
            (Lines{"01/02/2024-1", "03/01/2024-1", "03/01/2024-2"}));
  EXPECT_EQ(
      Column(*app_->client, Query_GetBlocksInSecWithDate(sec_id_, D("03/01/2024")), "Block ID"),
      (Lines{"03/01/2024-1", "03/01/2024-2"}));

  InsertBuy(first, "01/02/2024", 10, "1");
  InsertSell(first, "02/02/2024", "1");
  InsertSell(first, "02/03/2024", "1");
  EXPECT_EQ(Execute(*app_->client, Query_DeleteTrans("Sell", 1)), 1);
  EXPECT_EQ(Listing(first, TransKind::kAll), (Lines{"01/02/2024 Buy", "02/03/2024 Sell"}));
  EXPECT_EQ(Execute(*app_->client, Query_DeleteBlock(first)), 1);
  EXPECT_EQ(CountClientRows("Buy") + CountClientRows("Sell"), 0);
  EXPECT_EQ(CountClientRows("Blocks"), 3);
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
