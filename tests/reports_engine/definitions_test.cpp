#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "reports_engine/report_fixture.h"

namespace lotwise::testing {
namespace {

// Fails unless `expected` appear among the document's lines in this order.
void ExpectLinesInOrder(const ReportDocument& document, const std::vector<std::string>& expected) {
  std::vector<std::string> lines = ReportTest::Lines(document);
  size_t at = 0;
  for (const std::string& line : expected) {
    while (at < lines.size() && lines[at] != line) ++at;
    if (at == lines.size()) {
      ADD_FAILURE() << "missing or out of order: \"" << line << "\" in\n" << document.PlainText();
      return;
    }
    ++at;
  }
}

struct DefinitionCase {
  const char* name;
  const char* file;
  void (ReportTest::*fill)();
  std::vector<std::string> lines;   // in this order
  std::vector<std::string> absent;  // nowhere in the text
  friend void PrintTo(const DefinitionCase& c, std::ostream* os) { *os << c.name; }
};

// Each shipped definition lays its tables out as a preparer reads them:
// the taxpayer heading, groups in order, detail lines formatted as printed
// (dates, cents, trimmed shares), the totals, the usage count and page
// numbers; rows the report must leave out are not there.
class DefinitionTest : public ReportTest, public ::testing::WithParamInterface<DefinitionCase> {};

TEST_P(DefinitionTest, RenderReport_FilledTables_LinesInOrder) {
  (this->*GetParam().fill)();
  ReportDocument document = Render(GetParam().file, "Caption");
  EXPECT_EQ(document.title, "Caption");
  ExpectLinesInOrder(document, GetParam().lines);
  std::string text = document.PlainText();
  for (const std::string& absent : GetParam().absent) {
    EXPECT_EQ(text.find(absent), std::string::npos) << absent;
  }
}

const std::vector<std::string> kBasisHeading = {"Basis Analysis Report", "John Doe", "Family Trust",
                                                "Taxpayer Code: DOE01",
                                                "Year End: 12/31/2023     Report On: Taxpayer"};

std::vector<std::string> Join(std::vector<std::string> a, const std::vector<std::string>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

const std::vector<std::string> kBasisDetailAbc = {
    "Date Transaction Shares Sale Price Cost Fee Total Shares Total Cost Basis/Share",
    "ABC   Abc Growth Fund",
    "Sell Method: FIFO",
    "Portfolio: Growth     Block: 01/03/2022-1     Acquired: 01/03/2022",
    "01/03/2022 Buy 100 1,010.00 10.00 100 1,010.00 10.10",
    "06/01/2023 Sell -40 600.00 -404.00 5.00 60 606.00 10.10",
    "Total ABC 60 606.00 10.10",
    "MMM   Mmm Money Fund",
    "Sell Method: Average Cost - Double Cat.",
    "Total MMM 1,234.56789 12,345.67 10.00001"};

const std::vector<std::string> kBasisSummaryRows = {
    "Symbol Security Name Sell Method Total Shares Total Cost Basis/Share",
    "ABC Abc Growth Fund FIFO 60 606.00 10.10",
    "MMM Mmm Money Fund Average Cost - Double Cat. 1,234.56789 12,345.67 10.00001"};

INSTANTIATE_TEST_SUITE_P(
    Shipped, DefinitionTest,
    ::testing::Values(
        DefinitionCase{"BasisDetail",
                       "BASIS_DT.RPT",
                       &ReportTest::FillBasisRun,
                       Join(Join(kBasisHeading, kBasisDetailAbc),
                            {"XYZ   Xyz Income Fund", "Sell Method: Average Cost - Single Cat.",
                             "Portfolio: Growth     Block: 02/01/2023-1     Acquired: 02/01/2023",
                             "09/01/2023 Sell -50 450.00 -500.00 5.00 0 0.00 0.00",
                             "Pool: Average Cost", "02/01/2023 Buy 50 500.00 50 500.00 10.00",
                             "Total XYZ 0 0.00 0.00", "Total cost of all securities 12,951.67",
                             "Usage: 12 Basis Analysis Report Page 1 of 1"}),
                       {"Portfolio: Income", "ZZZZ", "01/01/1900", "John Doe Family Trust"}},
        DefinitionCase{"BasisDetailNo0",
                       "BASIS_DT_No0.RPT",
                       &ReportTest::FillBasisRun,
                       Join(Join(kBasisHeading, kBasisDetailAbc),
                            {"Total cost of all securities 12,951.67",
                             "Usage: 12 Basis Analysis Report Page 1 of 1"}),
                       {"XYZ", "Pool:"}},
        DefinitionCase{"BasisSummary",
                       "BASIS_SM.RPT",
                       &ReportTest::FillBasisRun,
                       Join(Join(kBasisHeading, kBasisSummaryRows),
                            {"XYZ Xyz Income Fund Average Cost - Single Cat. 0 0.00 0.00",
                             "Total cost of 3 securities 12,951.67",
                             "Usage: 12 Basis Analysis Report Page 1 of 1"}),
                       {"Buy", "Block"}},
        DefinitionCase{
            "BasisSummaryNo0",
            "BASIS_SM_No0.RPT",
            &ReportTest::FillBasisRun,
            Join(Join(kBasisHeading, kBasisSummaryRows), {"Total cost of 2 securities 12,951.67"}),
            {"XYZ"}},
        DefinitionCase{
            "SchedDDetail",
            "SCHED_D1.RPT",
            &ReportTest::FillBasisRun,
            {"Schedule D Attachment", "Detail", "John Doe", "Family Trust",
             "Tax Year Ended 12/31/2023     Report On: Taxpayer",
             "Description of Property Acquired Date Sold Sales Price Cost Gain or Loss",
             "Part I - Short-Term Capital Gains and Losses - Assets Held One Year or Less",
             "30 shares XYZ/Xyz Income Fund 02/01/2023 09/01/2023 270.00 303.00 -33.00",
             "20 shares XYZ/Xyz Income Fund 02/01/2023 09/15/2023 180.00 202.00 -22.00",
             "Total Part I 450.00 505.00 -55.00",
             "Part II - Long-Term Capital Gains and Losses - Assets Held More Than One Year",
             "40 shares ABC/Abc Growth Fund 01/03/2022 06/01/2023 600.00 409.00 191.00",
             "Total Part II 600.00 409.00 191.00", "Usage: 12 Schedule D Attachment Page 1 of 1"},
            {"MMM", "No short-term", "No long-term"}},
        DefinitionCase{"SchedDSummary",
                       "SCHED_D2.RPT",
                       &ReportTest::FillBasisRun,
                       {"Schedule D Attachment", "Summary",
                        "50 shares XYZ/Xyz Income Fund 02/01/2023 Various 450.00 505.00 -55.00",
                        "Total Part I 450.00 505.00 -55.00",
                        "40 shares ABC/Abc Growth Fund 01/03/2022 06/01/2023 600.00 409.00 191.00",
                        "Total Part II 600.00 409.00 191.00"},
                       {"30 shares"}},
        DefinitionCase{"Elections",
                       "ELECTION.RPT",
                       &ReportTest::FillBasisRun,
                       {"Schedule D Elections", "John Doe", "Family Trust",
                        "Election to Use the Average Basis Method for Regulated Investment "
                        "Company Shares",
                        "Symbol Security Name Method",
                        "MMM Mmm Money Fund Average basis, double-category method",
                        "XYZ Xyz Income Fund Average basis, single-category method",
                        "Usage: 12 Schedule D Elections Page 1 of 1"},
                       {"ABC", "no election"}},
        DefinitionCase{
            "TransactionList",
            "TRNSLIST.RPT",
            &ReportTest::FillTransList,
            {"Transaction Listing Report", "Jane Roe", "Taxpayer Code: ROE01",
             "Transactions from 01/01/2023 through 12/31/2023     Report On: Portfolio",
             "Date Transaction Shares Cost Fee Sale Price", "Portfolio: bonds", "Portfolio: Income",
             "ABC   Abc Growth Fund", "03/01/2023 Buy 25.5 255.00",
             "07/01/2023 Sell -10 0.00 5.00 150.00", "08/01/2023 Stock Split (1 to 2) 15.5 0.00",
             "abd   Abd Old Fund", "DEF   Def | Co \"Class A\"", "No transactions in this period.",
             "Usage: 7 Transaction Listing Report Page 1 of 1"},
            {"0.01"}},
        DefinitionCase{
            "TaxpayerList",
            "TAXPAYER.RPT",
            &ReportTest::FillListings,
            {"Taxpayer Listing Report", "Code Taxpayer Year End Taxpayer File",
             "ADA01 Zed Adams 12/31/2023 ADA0101.mdb", "Portfolio: Retirement IRA account",
             "Portfolio: Brokerage", "BRO01 Bob Brown Estate BRO0101.mdb Taxpayer File Missing",
             "Taxpayers listed: 2", "Usage: 3 Taxpayer Listing Report Page 1 of 1"},
            {}},
        DefinitionCase{"SecListBySymbol",
                       "SECLIST1.RPT",
                       &ReportTest::FillListings,
                       {"Security Listing Report", "By Symbol", "Zed Adams", "Taxpayer Code: ADA01",
                        "Symbol Security Name CUSIP Portfolio 2nd Line Sell Method",
                        "ABC Abc Growth Fund NO CUSIP Brokerage NOT SELECTED",
                        "XYZ Xyz Income Fund 123456789 Brokerage held in street name FIFO",
                        "XYZ Xyz Income Fund 123456789 Retirement Average Cost - Single Cat.",
                        "Securities listed: 3", "Usage: 3 Security Listing Report Page 1 of 1"},
                       {"Bob Brown"}},
        DefinitionCase{"SecListByPortfolio",
                       "SECLIST2.RPT",
                       &ReportTest::FillListings,
                       {"Security Listing Report", "By Portfolio",
                        "Portfolio Symbol Security Name CUSIP 2nd Line Sell Method",
                        "Brokerage ABC Abc Growth Fund NO CUSIP NOT SELECTED",
                        "Brokerage XYZ Xyz Income Fund 123456789 held in street name FIFO",
                        "Retirement XYZ Xyz Income Fund 123456789 Average Cost - Single Cat.",
                        "Securities listed: 3"},
                       {}}),
    [](const auto& info) { return std::string(info.param.name); });

// Empty tables give the reports' own notes instead of blank pages, and the
// totals read zero.
struct EmptyCase {
  const char* name;
  const char* file;
  std::vector<std::string> lines;
  friend void PrintTo(const EmptyCase& c, std::ostream* os) { *os << c.name; }
};

class EmptyDefinitionTest : public ReportTest, public ::testing::WithParamInterface<EmptyCase> {};

TEST_P(EmptyDefinitionTest, RenderReport_EmptyTables_SaysSo) {
  ReportDocument document = Render(GetParam().file);
  ASSERT_EQ(document.pages.size(), 1u);
  ExpectLinesInOrder(document, GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Shipped, EmptyDefinitionTest,
    ::testing::Values(
        EmptyCase{"BasisDetail",
                  "BASIS_DT.RPT",
                  {"There are no securities in this report.", "Total cost of all securities 0.00",
                   "Basis Analysis Report Page 1 of 1"}},
        EmptyCase{"SchedD",
                  "SCHED_D1.RPT",
                  {"No short-term sales in this tax year.", "Total Part I 0.00 0.00 0.00",
                   "No long-term sales in this tax year.", "Total Part II 0.00 0.00 0.00"}},
        EmptyCase{"Elections",
                  "ELECTION.RPT",
                  {"No security of this report is sold under an average cost method, so no "
                   "election is made."}},
        EmptyCase{"TransactionList", "TRNSLIST.RPT", {"There are no transactions in this report."}},
        EmptyCase{"TaxpayerList", "TAXPAYER.RPT", {"There are no taxpayers to list."}}),
    [](const auto& info) { return std::string(info.param.name); });

// The page header of the detail basis report, exactly: landscape, the title
// centred across the page, the column headings under a rule.
TEST_F(ReportTest, RenderReport_BasisDetailHeader_Golden) {
  FillBasisRun();
  ReportDocument document = Render("BASIS_DT.RPT");
  EXPECT_EQ(document.page_width, 792);
  EXPECT_EQ(document.page_height, 612);
  std::vector<std::string> lines = Lines(document);
  lines.resize(7);
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "Basis Analysis Report", "Detail", "John Doe", "Family Trust",
                       "Taxpayer Code: DOE01", "Year End: 12/31/2023     Report On: Taxpayer",
                       "Date Transaction Shares Sale Price Cost Fee Total Shares Total Cost "
                       "Basis/Share"}));
  const ReportText& title = document.pages[0].texts.front();
  EXPECT_EQ(title.text, "Basis Analysis Report");
  EXPECT_TRUE(title.bold);
  EXPECT_EQ(title.align, ReportText::Align::kCenter);
  EXPECT_EQ(title.x, 36);
  EXPECT_EQ(title.width, 720);
  EXPECT_EQ(title.size, 14);
}

// The election statement names the taxpayer with the second line and the
// year; wrapped at the margins, it reads as one paragraph.
TEST_F(ReportTest, RenderReport_Election_Statement) {
  FillBasisRun();
  std::vector<std::string> lines = Lines(Render("ELECTION.RPT"));
  auto first = std::find(lines.begin(), lines.end(),
                         "Election to Use the Average Basis Method for Regulated Investment "
                         "Company Shares");
  auto last = std::find(lines.begin(), lines.end(), "Symbol Security Name Method");
  ASSERT_LT(first, last);
  std::string statement;
  for (auto it = first + 1; it != last; ++it) statement += (statement.empty() ? "" : " ") + *it;
  EXPECT_EQ(statement,
            "The taxpayer, John Doe Family Trust, hereby elects under Regulations section "
            "1.1012-1(e) to determine the basis of the shares of the regulated investment "
            "companies (mutual funds) listed below by the average basis method, beginning with "
            "the tax year ended 12/31/2023. For each security the statement names the method "
            "used, single category or double category.");
  EXPECT_GT(last - first, 2);  // wrapped
}

struct SecondLineCase {
  const char* name;
  const char* stored;  // "2nd Line" of the heading table
  std::vector<std::string> heading;
  friend void PrintTo(const SecondLineCase& c, std::ostream* os) { *os << c.name; }
};

// The heading tables hold the second line joined to the name: the name
// prints alone and the rest under it, never twice; a second line stored on
// its own prints as it is.
class SecondLineTest : public ReportTest, public ::testing::WithParamInterface<SecondLineCase> {};

TEST_P(SecondLineTest, RenderReport_SecondLine_UnderName) {
  Usage(1);
  BAInfo("Mary Major", "MAJ01", GetParam().stored, "2024-06-30", "Security");
  std::vector<std::string> lines = Lines(Render("BASIS_SM.RPT"));
  // Title and "Summary" above; the column heading, the note, the total and
  // the footer below.
  std::vector<std::string> heading(lines.begin() + 2, lines.end() - 4);
  EXPECT_EQ(heading, GetParam().heading);
}

INSTANTIATE_TEST_SUITE_P(
    Heading, SecondLineTest,
    ::testing::Values(SecondLineCase{"Joined",
                                     "Mary Major Trustee",
                                     {"Mary Major", "Trustee", "Taxpayer Code: MAJ01",
                                      "Year End: 06/30/2024     Report On: Security"}},
                      SecondLineCase{"NameOnly",
                                     "Mary Major",
                                     {"Mary Major", "Taxpayer Code: MAJ01",
                                      "Year End: 06/30/2024     Report On: Security"}},
                      SecondLineCase{"Separate",
                                     "Trustee ",
                                     {"Mary Major", "Trustee", "Taxpayer Code: MAJ01",
                                      "Year End: 06/30/2024     Report On: Security"}},
                      SecondLineCase{"Blank",
                                     " ",
                                     {"Mary Major", "Taxpayer Code: MAJ01",
                                      "Year End: 06/30/2024     Report On: Security"}}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace lotwise::testing
