#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

#include "reports_engine/report_fixture.h"

namespace lotwise::testing {
namespace {

struct DefinitionCase {
  const char* golden;  // golden/<golden>.txt holds the plain text
  const char* file;
  const char* script;  // "" leaves the tables empty
};

// Each shipped definition lays its tables out as a preparer reads them:
// the taxpayer heading (the second line under the name, never twice),
// groups in order, detail lines formatted as printed, the totals, the usage
// count and page numbers; rows the report must leave out are not there;
// empty tables give the report's own note; a long table breaks into pages
// under the repeated header with the total on the last.
class DefinitionTest : public ReportTest, public ::testing::WithParamInterface<DefinitionCase> {};

TEST_P(DefinitionTest, RenderReport_Golden) {
  if (*GetParam().script) Fill(GetParam().script);
  ReportDocument document = Render(GetParam().file);
  EXPECT_EQ(document.title, "Caption");
  ExpectGolden(__FILE__, std::string(GetParam().golden) + ".txt", document.PlainText());
}

INSTANTIATE_TEST_SUITE_P(
    Shipped, DefinitionTest,
    ::testing::Values(DefinitionCase{"basis_detail", "BASIS_DT.RPT", "basis_run.sql"},
                      DefinitionCase{"basis_detail_no0", "BASIS_DT_No0.RPT", "basis_run.sql"},
                      DefinitionCase{"basis_summary", "BASIS_SM.RPT", "basis_run.sql"},
                      DefinitionCase{"basis_summary_no0", "BASIS_SM_No0.RPT", "basis_run.sql"},
                      DefinitionCase{"sched_d_detail", "SCHED_D1.RPT", "basis_run.sql"},
                      DefinitionCase{"sched_d_summary", "SCHED_D2.RPT", "basis_run.sql"},
                      DefinitionCase{"elections", "ELECTION.RPT", "basis_run.sql"},
                      DefinitionCase{"trans_list", "TRNSLIST.RPT", "trans_list.sql"},
                      DefinitionCase{"taxpayer_list", "TAXPAYER.RPT", "listings.sql"},
                      DefinitionCase{"sec_list_by_symbol", "SECLIST1.RPT", "listings.sql"},
                      DefinitionCase{"sec_list_by_portfolio", "SECLIST2.RPT", "listings.sql"},
                      DefinitionCase{"empty_basis_detail", "BASIS_DT.RPT", ""},
                      DefinitionCase{"empty_sched_d", "SCHED_D1.RPT", ""},
                      DefinitionCase{"empty_elections", "ELECTION.RPT", ""},
                      DefinitionCase{"empty_trans_list", "TRNSLIST.RPT", ""},
                      DefinitionCase{"empty_taxpayer_list", "TAXPAYER.RPT", ""},
                      DefinitionCase{"second_line_joined", "BASIS_SM.RPT", "second_joined.sql"},
                      DefinitionCase{"second_line_name_only", "BASIS_SM.RPT", "second_name.sql"},
                      DefinitionCase{"second_line_separate", "BASIS_SM.RPT", "second_separate.sql"},
                      DefinitionCase{"second_line_blank", "BASIS_SM.RPT", "second_blank.sql"},
                      DefinitionCase{"long_table", "BASIS_SM.RPT", "long_table.sql"}),
    [](const auto& info) { return std::string(info.param.golden); });

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
