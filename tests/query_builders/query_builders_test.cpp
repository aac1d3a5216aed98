#include "data/query_builders.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data/database.h"
#include "transaction_store/store_fixture.h"

namespace lotwise::testing {
namespace {

using Lines = std::vector<std::string>;

class QueryBuildersTest : public StoreTest {
 protected:
  int64_t InsertBlock(const char* block_id, const char* date, int64_t sec_id = 0) {
    app_->client->Execute(
        R"(INSERT INTO "Blocks" ("Sec ID", "Block ID", "Date") VALUES (:s, :id, :d))",
        {{"s", sec_id == 0 ? sec_id_ : sec_id}, {"id", block_id}, {"d", D(date)}});
    return app_->client->LastInsertId();
  }
  void InsertBuy(int64_t block, const char* date, int type, const char* cost) {
    app_->client->Execute(
        R"(INSERT INTO "Buy" ("Block No", "Date", "Type", "Cost", "Shares", "Fee", "Notes", "Prec Sort") )"
        R"(VALUES (:b, :d, :t, :c, 100, :f, 'n', :p))",
        {{"b", block},
         {"d", D(date)},
         {"t", type},
         {"c", Money(cost)},
         {"f", Money("1.5")},
         {"p", type == 20 ? 20 : 10}});
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
  void InsertAdjust(int64_t block, const char* date) {
    app_->client->Execute(
        R"(INSERT INTO "Adjust" ("Block No", "Date", "Shares", "Cost", "Notes", "Prec Sort") )"
        R"(VALUES (:b, :d, 1, :c, 'a', 30))",
        {{"b", block}, {"d", D(date)}, {"c", Money("7")}});
  }

  // The listing as "mm/dd/yyyy Transaction" lines.
  Lines Listing(int64_t block, TransKind kind) {
    Lines lines;
    Query q = Select(*app_->client, Query_TransInBlock(block, kind));
    while (q.Next()) lines.push_back(q.DateValue("Date").ToString() + " " + q.Text("Transaction"));
    return lines;
  }

  // A block holding one transaction of every kind, written in an order
  // unlike the listing's, and a neighbour block that must never show.
  int64_t FullBlock() {
    int64_t block = InsertBlock("01/02/2024-1", "01/02/2024");
    InsertSplit(block, "03/01/2024", 11, 1, 2);
    InsertSplit(block, "03/01/2024", 21, 0.05, 1);
    InsertSell(block, "03/01/2024", "300");
    InsertAdjust(block, "03/01/2024");
    InsertBuy(block, "03/01/2024", 20, "50");
    InsertSell(block, "02/01/2024", "200");
    InsertBuy(block, "01/02/2024", 10, "1000");
    int64_t neighbour = InsertBlock("01/02/2024-2", "01/02/2024");
    InsertBuy(neighbour, "01/02/2024", 10, "999");
    InsertSell(neighbour, "03/01/2024", "1");
    return block;
  }
};

// The listing of all kinds runs in date order and, on one date, in the
// same-date rank order (a dividend before a split); each kind alone lists
// only itself; one row shape serves every kind.
TEST_F(QueryBuildersTest, TransInBlock_AllKinds_DateThenPrecSort) {
  int64_t block = FullBlock();
  EXPECT_EQ(Listing(block, TransKind::kAll),
            (Lines{"01/02/2024 Buy", "02/01/2024 Sell", "03/01/2024 Reinvestment",
                   "03/01/2024 Adjustment", "03/01/2024 Sell", "03/01/2024 Stock Div. (0.05 per 1)",
                   "03/01/2024 Stock Split (1 to 2)"}));

  Query q = Select(*app_->client, Query_TransInBlock(block, TransKind::kAll));
  Lines columns;
  for (int i = 0; i < q.ColumnCount(); ++i) columns.push_back(q.ColumnName(i));
  EXPECT_EQ(columns, (Lines{"Date", "Transaction", "Cost", "Sale Price", "Shares", "Fee", "Notes",
                            "Unique ID", "Prec Sort"}));
}

struct KindCase {
  const char* name;
  TransKind kind;
  Lines listed;
};

class TransKindTest : public QueryBuildersTest, public ::testing::WithParamInterface<KindCase> {};

TEST_P(TransKindTest, TransInBlock_OneKind_ListsOnlyIt) {
  EXPECT_EQ(Listing(FullBlock(), GetParam().kind), GetParam().listed);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, TransKindTest,
    ::testing::Values(
        KindCase{"Buy", TransKind::kBuy, {"01/02/2024 Buy"}},
        KindCase{"Reinvestment", TransKind::kReinvestment, {"03/01/2024 Reinvestment"}},
        KindCase{"Sell", TransKind::kSell, {"02/01/2024 Sell", "03/01/2024 Sell"}},
        KindCase{"StockSplit", TransKind::kStockSplit, {"03/01/2024 Stock Split (1 to 2)"}},
        KindCase{
            "StockDividend", TransKind::kStockDividend, {"03/01/2024 Stock Div. (0.05 per 1)"}},
        KindCase{"Adjustment", TransKind::kAdjustment, {"03/01/2024 Adjustment"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(QueryBuildersTest, TransInBlock_MissingKinds_OthersStillListed) {
  int64_t block = InsertBlock("01/02/2024-1", "01/02/2024");
  InsertBuy(block, "01/02/2024", 10, "1000");
  InsertAdjust(block, "05/01/2024");
  EXPECT_EQ(Listing(block, TransKind::kAll), (Lines{"01/02/2024 Buy", "05/01/2024 Adjustment"}));
  EXPECT_EQ(Listing(block, TransKind::kSell), Lines{});
}

TEST_F(QueryBuildersTest, TransInBlock_KindsLackingAField_ShowZero) {
  int64_t block = FullBlock();
  struct Expected {
    const char* transaction;
    Currency cost;
    Currency sale_price;
    Currency fee;
  };
  const Expected expected[] = {
      {"Buy", Money("1000"), Currency(), Money("1.5")},
      {"Sell", Currency(), Money("200"), Money("2")},
      {"Reinvestment", Money("50"), Currency(), Money("1.5")},
      {"Adjustment", Money("7"), Currency(), Currency()},
      {"Sell", Currency(), Money("300"), Money("2")},
      {"Stock Div. (0.05 per 1)", Currency(), Currency(), Currency()},
      {"Stock Split (1 to 2)", Currency(), Currency(), Currency()},
  };
  Query q = Select(*app_->client, Query_TransInBlock(block, TransKind::kAll));
  for (const Expected& e : expected) {
    ASSERT_TRUE(q.Next());
    EXPECT_EQ(q.Text("Transaction"), e.transaction);
    EXPECT_EQ(q.Money("Cost"), e.cost) << e.transaction;
    EXPECT_EQ(q.Money("Sale Price"), e.sale_price) << e.transaction;
    EXPECT_EQ(q.Money("Fee"), e.fee) << e.transaction;
  }
  EXPECT_FALSE(q.Next());
}

// The database builds the split and dividend texts from the stored ratios,
// numbers in their default text form (never "1.0").
struct RatioCase {
  const char* name;
  int type;
  double pre;
  double post;
  const char* text;
};

class RatioTextTest : public QueryBuildersTest, public ::testing::WithParamInterface<RatioCase> {};

TEST_P(RatioTextTest, TransInBlock_Ratios_DefaultNumberText) {
  const RatioCase& c = GetParam();
  int64_t block = InsertBlock("01/02/2024-1", "01/02/2024");
  InsertSplit(block, "03/01/2024", c.type, c.pre, c.post);
  EXPECT_EQ(Listing(block, TransKind::kAll), Lines{std::string("03/01/2024 ") + c.text});
}

INSTANTIATE_TEST_SUITE_P(
    Ratios, RatioTextTest,
    ::testing::Values(RatioCase{"TwoForOne", 11, 1, 2, "Stock Split (1 to 2)"},
                      RatioCase{"ThreeForTwo", 11, 2, 3, "Stock Split (2 to 3)"},
                      RatioCase{"Reverse", 11, 10, 1, "Stock Split (10 to 1)"},
                      RatioCase{"FractionalSplit", 11, 1, 1.5, "Stock Split (1 to 1.5)"},
                      RatioCase{"FivePercent", 21, 0.05, 1, "Stock Div. (0.05 per 1)"},
                      RatioCase{"OneTenth", 21, 0.1, 1, "Stock Div. (0.1 per 1)"}),
    [](const auto& info) { return std::string(info.param.name); });

// Type 99 stands for tables without a Type field: the statement then has
// no Type condition at all; any other type filters on it.
TEST_F(QueryBuildersTest, RollBack_Type99_NoTypeCondition) {
  int64_t block = InsertBlock("01/02/2024-1", "01/02/2024");
  InsertSell(block, "03/01/2024", "1");
  InsertSell(block, "04/01/2024", "1");
  EXPECT_EQ(Execute(*app_->client, Query_RollBack("Sell", 99, block, D("03/01/2024"))), 1);
  EXPECT_EQ(CountClientRows("Sell"), 1);
}

TEST_F(QueryBuildersTest, RollBack_OtherType_FiltersOnType) {
  int64_t block = InsertBlock("01/02/2024-1", "01/02/2024");
  InsertSplit(block, "03/01/2024", 11, 1, 2);
  InsertSplit(block, "03/01/2024", 21, 0.05, 1);
  EXPECT_EQ(Execute(*app_->client, Query_RollBack("Split", 21, block, D("02/01/2024"))), 1);
  EXPECT_EQ(Listing(block, TransKind::kAll), Lines{"03/01/2024 Stock Split (1 to 2)"});
}

// The sorted taxpayer list sorts by name, sort name or code without regard
// to case; any other key is refused with a message and lists unsorted.
class ClientsSortedTest : public QueryBuildersTest {
 protected:
  void SetUp() override {
    QueryBuildersTest::SetUp();
    app_->central->Execute(R"(DELETE FROM "Clients")");
    for (auto [code, name, sort] :
         {std::tuple{"C3", "alice", "Zed"}, std::tuple{"a1", "Bob", "young"},
          std::tuple{"B2", "carol", "Xavier"}}) {
      app_->central->Execute(
          R"(INSERT INTO "Clients" ("Client Code", "Client Name", "Sort Name", "File Name") )"
          R"(VALUES (:c, :n, :s, 'f.mdb'))",
          {{"c", code}, {"n", name}, {"s", sort}});
    }
  }
  Lines Codes(const SqlStatement& statement) {
    Lines codes;
    Query q = Select(*app_->central, statement);
    while (q.Next()) codes.push_back(q.Text("Client Code"));
    return codes;
  }
};

TEST_F(ClientsSortedTest, GetClientCDBSorted_EachKey_SortsWithoutCase) {
  EXPECT_EQ(Codes(Query_GetClientCDBSorted(*app_, 0)), (Lines{"C3", "a1", "B2"}));
  EXPECT_EQ(Codes(Query_GetClientCDBSorted(*app_, 1)), (Lines{"B2", "a1", "C3"}));
  EXPECT_EQ(Codes(Query_GetClientCDBSorted(*app_, 2)), (Lines{"a1", "B2", "C3"}));
}

TEST_F(ClientsSortedTest, GetClientCDBSorted_BadKey_MessageAndAllRows) {
  for (int key : {3, -1}) {
    ui_.Expect("Incorrect value to Sort Clients by", "Error");
    EXPECT_EQ(Codes(Query_GetClientCDBSorted(*app_, key)).size(), 3u) << key;
  }
}

TEST_F(QueryBuildersTest, GetClient_CodeInOtherCase_Found) {
  EXPECT_EQ(Select(*app_->client, Query_GetClient("doe01")).Next(), true);
  EXPECT_EQ(Select(*app_->central, Query_GetClientCDB("doe01")).Next(), true);
  EXPECT_EQ(Select(*app_->central, Query_GetClientCDB("DOE0")).Next(), false);
}

// Table names cannot be bound: only the program's own tables are accepted,
// and a refused name changes nothing.
struct BadTableCase {
  const char* name;
  const char* table;
};

class BadTableTest : public QueryBuildersTest,
                     public ::testing::WithParamInterface<BadTableCase> {};

TEST_P(BadTableTest, ClearTable_UnknownName_Refused) {
  InsertBlock("01/02/2024-1", "01/02/2024");
  try {
    Query_ClearTable(GetParam().table);
    ADD_FAILURE() << "accepted " << GetParam().table;
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kObjectNotFound);
  }
  EXPECT_THROW(Query_DeleteTrans(GetParam().table, 1), LwError);
  EXPECT_THROW(Query_GetTransaction(GetParam().table, 1), LwError);
  EXPECT_EQ(CountClientRows("Blocks"), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Names, BadTableTest,
    ::testing::Values(BadTableCase{"Unknown", "Lots"}, BadTableCase{"Empty", ""},
                      BadTableCase{"Injection", R"(Blocks"; DROP TABLE "Buy)"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(QueryBuildersTest, ClearTable_KnownName_EmptiesIt) {
  InsertBlock("01/02/2024-1", "01/02/2024");
  InsertBlock("01/03/2024-1", "01/03/2024");
  Execute(*app_->client, Query_ClearTable("Blocks"));
  EXPECT_EQ(CountClientRows("Blocks"), 0);
}

// A portfolio name is matched whole and without regard to case: "%" and
// "_" in it are plain characters.
TEST_F(QueryBuildersTest, PortQueries_WildcardCharacters_MatchLiterally) {
  AddSecurity("100%_Fund", "ZZ");
  AddSecurity("100%_Fund", "AA");
  AddSecurity("100xyFund", "MM");
  Lines ports;
  Query port = Select(*app_->client, Query_GetPort("100%_fund"));
  while (port.Next()) ports.push_back(port.Text("Port Name"));
  EXPECT_EQ(ports, Lines{"100%_Fund"});

  Lines symbols;
  Query secs = Select(*app_->client, Query_SecsInPort("100%_FUND"));
  while (secs.Next()) symbols.push_back(secs.Text("Sec Symbol"));
  EXPECT_EQ(symbols, (Lines{"AA", "ZZ"}));
}

// Blocks come oldest first, then by block id; the dated form keeps to its
// date and security; the deletes touch only the named row.
TEST_F(QueryBuildersTest, BlockQueries_OrderAndScope) {
  int64_t other_sec = AddSecurity(kPort, "MSFT");
  InsertBlock("03/01/2024-2", "03/01/2024");
  int64_t first = InsertBlock("01/02/2024-1", "01/02/2024");
  InsertBlock("03/01/2024-1", "03/01/2024");
  InsertBlock("03/01/2024-1", "03/01/2024", other_sec);

  Lines all;
  Query q = Select(*app_->client, Query_GetBlocksInSec(sec_id_));
  while (q.Next()) all.push_back(q.Text("Block ID"));
  EXPECT_EQ(all, (Lines{"01/02/2024-1", "03/01/2024-1", "03/01/2024-2"}));

  Lines dated;
  Query d = Select(*app_->client, Query_GetBlocksInSecWithDate(sec_id_, D("03/01/2024")));
  while (d.Next()) dated.push_back(d.Text("Block ID"));
  EXPECT_EQ(dated, (Lines{"03/01/2024-1", "03/01/2024-2"}));

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
