#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ground/lw_error.h"
#include "reports/pdf_writer.h"
#include "reports/report_engine.h"
#include "reports_engine/report_fixture.h"

namespace lotwise::testing {
namespace {

// Stored values print as a preparer reads them: money rounded to the cent
// half to even from its ten-thousandths, share counts trimmed at five
// decimals (negative ones rounded by magnitude), dates in the shown form,
// NULL as nothing. golden/formats.txt: "format|stored|shown", NULL for a
// null value.
TEST(FormatTest, FormatReportValue_StoredValue_Shown) {
  std::istringstream rows(ReadText(GoldenPath(__FILE__, "formats.txt")));
  int count = 0;
  for (std::string format, stored, shown;
       std::getline(rows, format, '|') && std::getline(rows, stored, '|') &&
       std::getline(rows, shown);
       ++count) {
    EXPECT_EQ(FormatReportValue(format, stored, stored == "NULL"), shown)
        << format << " " << stored;
  }
  EXPECT_EQ(count, 24);
  EXPECT_EQ(ErrorOf([] { FormatReportValue("cents", "1", false); }),
            "32000: Unknown report format \"cents\"");
}

// "keep" moves a group that does not fit the rest of the page to the next
// page; without it the page fills up; "page" breaks, but never leaves an
// empty page; a gap at the top of a page is dropped.
TEST_F(ReportTest, RenderReport_GroupNearPageEnd_Placed) {
  const std::pair<const char*, std::vector<size_t>> cases[] = {
      {"keep 3", {1, 3}}, {"keep 1", {2, 2}}, {"gap 0", {2, 2}}, {"page\npage\ngap 50", {1, 3}}};
  for (const auto& [control, lines_per_page] : cases) {
    WriteDefinition("KEEP.RPT", std::string("@report\nmargins: 36 36 36 36\n@body\ntext first\n") +
                                    "gap 690\n" + control + "\ntext a\ntext b\ntext c\n");
    std::vector<size_t> counts;
    for (const ReportPage& page : Render("KEEP.RPT").pages) counts.push_back(page.texts.size());
    EXPECT_EQ(counts, lines_per_page) << control;
  }
}

// Cells (golden/cells.rpt): text wraps inside its column and the row grows; an amount never
// wraps; a "|" in a value stays text; nested rows bind their parent's
// columns. golden/cells.txt: "x y width text" of each text of the page.
TEST_F(ReportTest, RenderReport_CellsWrapAndNest) {
  Fill("cells.sql");
  WriteDefinition("CELLS.RPT", ReadText(GoldenPath(__FILE__, "cells.rpt")));
  const ReportDocument document = Render("CELLS.RPT");
  std::ostringstream texts;
  for (const ReportText& text : document.pages.at(0).texts) {
    texts << text.x << " " << text.y << " " << text.width << " " << text.text << "\n";
  }
  ExpectGolden(__FILE__, "cells.txt", texts.str());
}

// A faulty definition (golden/bad_definitions.txt) is refused with the
// file, the line where known, and what is wrong; a database failure keeps
// its number and names the query and the file.
TEST_F(ReportTest, RenderReport_FaultyDefinition_Refused) {
  Sql(R"(INSERT INTO "Usage" VALUES (1))");
  for (const GoldenCase& c : ReadCases(__FILE__, "bad_definitions.txt")) {
    WriteDefinition("BAD.RPT", c.Text(""));
    EXPECT_EQ(ErrorOf([&] { Render("BAD.RPT"); }), "32000: " + c.Lines("message").at(0)) << c.name;
  }
  WriteDefinition("TABLE.RPT", "@query q\nSELECT * FROM \"Nope\"\n@body\n");
  EXPECT_EQ(ErrorOf([&] { Render("TABLE.RPT"); }),
            "3011: Could not find the object: no such table: Nope (query \"q\" of TABLE.RPT)");
  EXPECT_EQ(ErrorOf([&] { Render("GONE.RPT"); }),
            "20504: Report file not found: " + ReportFilePath(*app_, "GONE.RPT"));
}

}  // namespace
}  // namespace lotwise::testing
