#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "reports_engine/report_fixture.h"

namespace lotwise::testing {
namespace {

// Each shipped definition lays its tables out as a preparer reads them:
// the taxpayer heading (the second line under the name, never twice),
// groups in order, detail lines formatted as printed, the totals, the usage
// count and page numbers; rows the report must leave out are not there;
// empty tables give the report's own note; a long table breaks into pages
// under the repeated header with the total on the last.
class DefinitionTest : public ReportTest, public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(DefinitionTest, RenderReport_Golden) {
  std::istringstream words(GetParam().Lines("").at(0));
  std::string file, script;
  words >> file >> script;
  if (!script.empty()) Fill(script);
  ReportDocument document = Render(file);
  EXPECT_EQ(document.title, "Caption");
  ExpectGolden(__FILE__, GetParam().name + ".txt", document.PlainText());
}

INSTANTIATE_TEST_SUITE_P(Shipped, DefinitionTest,
                         ::testing::ValuesIn(ReadCases(__FILE__, "definitions.txt")),
                         [](const auto& info) { return info.param.name; });

// The detail basis report is landscape, its title bold and centred across
// the page.
TEST_F(ReportTest, RenderReport_BasisDetail_LandscapeCentredTitle) {
  Fill("basis_run.sql");
  ReportDocument document = Render("BASIS_DT.RPT");
  const ReportText& title = document.pages.at(0).texts.front();
  EXPECT_EQ(fmt::format("{}x{} {} {} {} {} {} {}", document.page_width, document.page_height,
                        title.text, title.bold, title.align == ReportText::Align::kCenter, title.x,
                        title.width, title.size),
            "792x612 Basis Analysis Report true true 36 720 14");
}

}  // namespace
}  // namespace lotwise::testing
