#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ground/lw_error.h"
#include "reports/pdf_writer.h"
#include "reports/report_engine.h"
#include "reports_engine/report_fixture.h"

namespace lotwise::testing {
namespace {

struct FormatCase {
  const char* name;
  const char* format;
  const char* stored;
  bool is_null;
  const char* shown;
  friend void PrintTo(const FormatCase& c, std::ostream* os) { *os << c.name; }
};

// Stored values print as a preparer reads them: money rounded to the cent
// half to even from its ten-thousandths, share counts trimmed at five
// decimals (negative ones rounded by magnitude), dates in the shown form,
// NULL as nothing.
class FormatTest : public ::testing::TestWithParam<FormatCase> {};

TEST_P(FormatTest, FormatReportValue_StoredValue_Shown) {
  EXPECT_EQ(FormatReportValue(GetParam().format, GetParam().stored, GetParam().is_null),
            GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, FormatTest,
    ::testing::Values(
        FormatCase{"DateIso", "date", "2023-02-01", false, "02/01/2023"},
        FormatCase{"DateOtherText", "date", "Various", false, "Various"},
        FormatCase{"DateNull", "date", "", true, ""},
        FormatCase{"MoneyGrouped", "money", "12345678", false, "1,234.57"},
        FormatCase{"MoneyHalfToEvenDown", "money", "12345650", false, "1,234.56"},
        FormatCase{"MoneyHalfToEvenUp", "money", "12345750", false, "1,234.58"},
        FormatCase{"MoneyNegative", "money", "-5000", false, "-0.50"},
        FormatCase{"MoneyBillion", "money", "10000000000000", false, "1,000,000,000.00"},
        FormatCase{"MoneyFromReal", "money", "12345678.0", false, "1,234.57"},
        FormatCase{"MoneyZero", "money", "0", false, "0.00"},
        FormatCase{"MoneyNull", "money", "", true, ""},
        FormatCase{"SharesWhole", "shares", "100.0", false, "100"},
        FormatCase{"SharesFiveDecimals", "shares", "1234.567891", false, "1,234.56789"},
        FormatCase{"SharesNegativeWhole", "shares", "-40.0", false, "-40"},
        FormatCase{"SharesNegativeHalf", "shares", "-0.000005", false, "-0.00001"},
        FormatCase{"SharesResidue", "shares", "-0.000001", false, "0"},
        FormatCase{"PriceTwoDecimalsAtLeast", "price", "10.1", false, "10.10"},
        FormatCase{"PriceFiveDecimals", "price", "33.333333333", false, "33.33333"},
        FormatCase{"LongTerm", "longshort", "1", false, "Long"},
        FormatCase{"ShortTerm", "longshort", "0", false, "Short"},
        FormatCase{"YesNo", "yesno", "0", false, "No"},
        FormatCase{"Trimmed", "trim", "IRA account ", false, "IRA account"},
        FormatCase{"TrimmedBlank", "trim", " ", false, ""},
        FormatCase{"Plain", "", "ABC", false, "ABC"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(FormatTest, FormatReportValue_UnknownFormat_Refused) {
  try {
    FormatReportValue("cents", "1", false);
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kUnexpected);
    EXPECT_EQ(e.text(), "Unknown report format \"cents\"");
  }
}

// A long report breaks into pages, each under the repeated page header and
// numbered "Page n of m"; every row appears once, in order, and the total
// only at the end.
TEST_F(ReportTest, RenderReport_LongTable_BreaksPagesRepeatsHeader) {
  Usage(5);
  BAInfo("John Doe", "DOE01", " ", "2023-12-31", "Taxpayer");
  for (int i = 0; i < 120; ++i) {
    BASec(fmt::format("S{:03}", i), "Fund " + std::to_string(i), "FIFO", 1, 1, 1);
  }
  ReportDocument document = Render("BASIS_SM.RPT");
  ASSERT_EQ(document.pages.size(), 3u);
  std::vector<std::string> pages;
  std::string text = document.PlainText();
  for (size_t start = 0, end = 0; start <= text.size(); start = end + 1) {
    end = text.find('\f', start);
    if (end == std::string::npos) end = text.size();
    pages.push_back(text.substr(start, end - start));
  }
  ASSERT_EQ(pages.size(), 3u);
  for (int p = 0; p < 3; ++p) {
    EXPECT_EQ(pages[p].rfind("Basis Analysis Report\nSummary\nJohn Doe\n", 0), 0u) << p;
    EXPECT_NE(pages[p].find("Symbol Security Name Sell Method"), std::string::npos) << p;
    EXPECT_NE(
        pages[p].find("Usage: 5 Basis Analysis Report Page " + std::to_string(p + 1) + " of 3\n"),
        std::string::npos)
        << p;
  }
  std::vector<std::string> lines = Lines(document);
  int next = 0;
  for (const std::string& line : lines) {
    if (line.rfind("S", 0) == 0 && line.size() > 4 && line[4] == ' ') {
      EXPECT_EQ(line, fmt::format("S{:03} Fund {} FIFO 1 1.00 1.00", next, next));
      ++next;
    }
  }
  EXPECT_EQ(next, 120);
  EXPECT_EQ(pages[0].find("Total cost"), std::string::npos);
  EXPECT_NE(pages[2].find("Total cost of 120 securities 120.00"), std::string::npos);
}

struct KeepCase {
  const char* name;
  const char* control;  // the command before the three lines
  std::vector<size_t> lines_per_page;
  friend void PrintTo(const KeepCase& c, std::ostream* os) { *os << c.name; }
};

// "keep" moves a group that does not fit the rest of the page to the next
// page; without it the page fills up; "page" breaks, but never leaves an
// empty page; a gap at the top of a page is dropped.
class KeepTest : public ReportTest, public ::testing::WithParamInterface<KeepCase> {};

TEST_P(KeepTest, RenderReport_GroupNearPageEnd_Placed) {
  WriteDefinition("KEEP.RPT", std::string("@report\nmargins: 36 36 36 36\n@body\n"
                                          "text first\ngap 690\n") +
                                  GetParam().control + "\ntext a\ntext b\ntext c\n");
  ReportDocument document = Render("KEEP.RPT");
  std::vector<size_t> counts;
  for (const ReportPage& page : document.pages) counts.push_back(page.texts.size());
  EXPECT_EQ(counts, GetParam().lines_per_page);
}

INSTANTIATE_TEST_SUITE_P(Layout, KeepTest,
                         ::testing::Values(KeepCase{"Keep", "keep 3", {1, 3}},
                                           KeepCase{"KeepFits", "keep 1", {2, 2}},
                                           KeepCase{"NoKeep", "gap 0", {2, 2}},
                                           KeepCase{"PageThenGap", "page\npage\ngap 50", {1, 3}}),
                         [](const auto& info) { return std::string(info.param.name); });

// Cells: text wraps inside its column and the row grows; an amount never
// wraps; a "|" in a value stays text; nested rows bind their parent's
// columns.
TEST_F(ReportTest, RenderReport_CellsWrapAndNest) {
  Sql(R"(INSERT INTO "TL Port" VALUES ('A|B'))");
  Sql(R"(INSERT INTO "TL Sec" VALUES ('A|B', 'A very long security name that cannot fit', 'X', 1))");
  Sql(R"(INSERT INTO "TL Sec" VALUES ('Other', 'Not under A|B', 'Y', 2))");
  WriteDefinition("CELLS.RPT", R"(@report
margins: 36 36 36 36
@columns c
name 60 left Name
amount 20 right Amount
@query ports
SELECT "Port Name" FROM "TL Port"
@query secs in ports
SELECT "Sec Name", 1234567.5 AS "Amount:shares" FROM "TL Sec" WHERE "Port Name" = :Port_Name
@body
{{#ports}}
text {{Port Name}}
{{#secs}}
row c {{Sec Name}}|{{Amount}}
{{/secs}}
text after
{{/ports}}
)");
  ReportDocument document = Render("CELLS.RPT");
  const ReportPage& page = document.pages.at(0);
  std::string name;
  double last_name_y = 0;
  std::vector<std::string> amounts;
  double after_y = 0;
  for (const ReportText& text : page.texts) {
    if (text.x == 38) {  // the name cell, inside its padding
      name += (name.empty() ? "" : " ") + text.text;
      EXPECT_LE(MeasureText(text.text, false, 9), 56) << text.text;
      EXPECT_GT(text.y, last_name_y);
      last_name_y = text.y;
    } else if (text.x == 98) {
      amounts.push_back(text.text);
    } else if (text.text == "after") {
      after_y = text.y;
    }
  }
  EXPECT_EQ(name, "A very long security name that cannot fit");
  EXPECT_EQ(amounts, std::vector<std::string>{"1,234,567.5"});
  EXPECT_GT(after_y, last_name_y);
  EXPECT_EQ(Lines(document).front(), "A|B");
  EXPECT_EQ(document.PlainText().find("Not under"), std::string::npos);
}

struct BadDefinitionCase {
  const char* name;
  const char* text;
  const char* message;
  friend void PrintTo(const BadDefinitionCase& c, std::ostream* os) { *os << c.name; }
};

// A faulty definition is refused with the file, the line where known, and
// what is wrong; nothing is laid out.
class BadDefinitionTest : public ReportTest,
                          public ::testing::WithParamInterface<BadDefinitionCase> {};

TEST_P(BadDefinitionTest, RenderReport_FaultyDefinition_Refused) {
  Sql(R"(INSERT INTO "Usage" VALUES (1))");
  WriteDefinition("BAD.RPT", GetParam().text);
  try {
    Render("BAD.RPT");
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kUnexpected);
    EXPECT_EQ(e.text(), GetParam().message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Errors, BadDefinitionTest,
    ::testing::Values(
        BadDefinitionCase{"NoBody", "@report\ntitle: X\n",
                          "Report definition BAD.RPT: the @body section is missing"},
        BadDefinitionCase{"TextBeforeSection", "title: X\n@body\n",
                          "Report definition BAD.RPT, line 1: a section (\"@report\") must come "
                          "first"},
        BadDefinitionCase{"UnknownSection", "@report\n@bogus\n@body\n",
                          "Report definition BAD.RPT, line 2: unknown section \"@bogus\""},
        BadDefinitionCase{"UnknownSetting", "@report\ncolour: red\n@body\n",
                          "Report definition BAD.RPT, line 2: unknown setting \"colour\""},
        BadDefinitionCase{"BadMargins", "@report\nmargins: 36 36 36\n@body\n",
                          "Report definition BAD.RPT, line 2: margins: left top right bottom, 0 "
                          "to 144 points each"},
        BadDefinitionCase{"BadAlignment", "@columns c\na 70 middle A\n@body\n",
                          "Report definition BAD.RPT, line 2: alignment must be left, right or "
                          "center, not \"middle\""},
        BadDefinitionCase{"TooWide", "@columns c\na 300 left A\nb 241 left B\n@body\n",
                          "Report definition BAD.RPT: column set \"c\" is 541 points wide; the "
                          "page has room for 540"},
        BadDefinitionCase{"NotASelect", "@query q\nDELETE FROM \"Usage\"\n@body\n",
                          "Report definition BAD.RPT, line 1: query \"q\" must be a SELECT"},
        BadDefinitionCase{"ParentAfterChild", "@query a in b\nSELECT 1\n@body\n",
                          "Report definition BAD.RPT, line 1: parent query \"b\" must come first"},
        BadDefinitionCase{"ParameterAtTop", "@query q\nSELECT :x\n@body\n",
                          "Report definition BAD.RPT, line 1: query \"q\" is not nested, so :x "
                          "has no value"},
        BadDefinitionCase{"ParameterWithoutColumn",
                          "@query a\nSELECT 1 AS \"x\"\n@query b in a\nSELECT :y\n@body\n",
                          "Report definition BAD.RPT: query \"b\": :y names no column of query "
                          "\"a\""},
        BadDefinitionCase{"UnknownCommand", "@body\nprint hello\n",
                          "Report definition BAD.RPT: unknown layout command \"print hello\""},
        BadDefinitionCase{"UnknownColumnSet", "@body\nrow nope a|b\n",
                          "Report definition BAD.RPT: unknown column set in \"row nope a|b\""},
        BadDefinitionCase{"TooManyCells", "@columns c\na 70 left A\n@body\nrow c 1|2\n",
                          "Report definition BAD.RPT: more cells than columns in \"row c 1|2\""},
        BadDefinitionCase{"UnknownRuleColumn", "@columns c\na 70 left A\n@body\nrule c b\n",
                          "Report definition BAD.RPT: unknown column in \"rule c b\""},
        BadDefinitionCase{"BrokenTemplate", "@body\n{{#open}}\ntext x\n",
                          "Report definition BAD.RPT: @body: Unclosed section \"open\" at 0"}),
    [](const auto& info) { return std::string(info.param.name); });

// Database failures keep their numbers and name the query and the file.
TEST_F(ReportTest, RenderReport_MissingTable_NamesQuery) {
  WriteDefinition("TABLE.RPT", "@query q\nSELECT * FROM \"Nope\"\n@body\n");
  try {
    Render("TABLE.RPT");
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kObjectNotFound);
    EXPECT_TRUE(e.text().ends_with(" (query \"q\" of TABLE.RPT)")) << e.text();
  }
}

TEST_F(ReportTest, RenderReport_MissingFile_20504) {
  std::string path = ReportFilePath(*app_, "GONE.RPT");
  try {
    RenderReport(path, *db_, "Gone");
    FAIL() << "no error";
  } catch (const LwError& e) {
    EXPECT_EQ(e.number(), err::kReportFileMissing);
    EXPECT_EQ(e.text(), "Report file not found: " + path);
  }
}

}  // namespace
}  // namespace lotwise::testing
