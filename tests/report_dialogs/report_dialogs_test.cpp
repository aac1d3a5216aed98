#include "reports/report_dialogs.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "app/app_state.h"
#include "data/central_file.h"
#include "lots/sell_shares.h"
#include "reports_basis/basis_fixture.h"

namespace lotwise::testing {
namespace {

namespace fs = std::filesystem;

// Each document's title, then its text: which reports ran, from which
// definitions and over which figures.
std::string Documents(const std::vector<ReportDocument>& documents) {
  std::string text;
  for (const ReportDocument& document : documents) {
    text += "=== " + document.title + "\n" + document.PlainText();
  }
  return text;
}

// A taxpayer (year end 12/31/2025) holding IBM, partly sold, and MSFT, sold
// out: enough for every report to have something to print.
class ReportDialogsTest : public BasisTest {
 protected:
  void SetUp() override {
    BasisTest::SetUp();
    Sell(Buy(AddSecurity("IBM", SellMethod::kFifo), "01/05/2024", 10, "100"), "06/03/2025", 4,
         "60");
    Sell(Buy(AddSecurity("MSFT", SellMethod::kFifo), "02/05/2024", 5, "50"), "03/03/2025", 5, "80");
  }

  // Shows the dialog through `show`, lets `user` fill it in and press a
  // button, and returns the form as it was when the dialog closed.
  template <class Form>
  Form Play(void (*show)(Application&), const char* name, std::function<void(Form&)> user) {
    Form seen;
    ui_.ExpectDialog(name, [&](DialogForm& f) {
      auto& form = static_cast<Form&>(f);
      user(form);
      seen = form;
    });
    show(*app_);
    return seen;
  }
};

// The dialogs open with the stored preferences; a year end never stored is
// the taxpayer's, and an unknown choice opens as the dialog's default.
// "basis year end [D: with Schedule D] [X: exclusion] | Schedule D year end |
// listing scope and dates | taxpayer sort | security sort".
std::string Opened(Application& app) {
  const BasisOptionsForm basis = LoadBasisOptions(app, BasisOptionsForm::kBasisCaption);
  const BasisOptionsForm sched_d = LoadBasisOptions(app, BasisOptionsForm::kSchedDCaption);
  const TransListOptionsForm trans = LoadTransListOptions(app);
  return basis.year_end + (basis.include_sched_d ? " D" : "") + (basis.exclude_empty ? " X" : "") +
         "|" + sched_d.year_end + (sched_d.include_sched_d || sched_d.exclude_empty ? " ?" : "") +
         "|" + std::to_string(trans.scope) + " " + trans.begin_date + "-" + trans.end_date + "|" +
         std::to_string(LoadClientListOptions(app).sort_by) +
         std::to_string(LoadSecListOptions(app).sort_by);
}

TEST_F(ReportDialogsTest, LoadOptions_PrefsElseDefaults) {
  EXPECT_EQ(Opened(*app_), "12/31/2025|12/31/2025|0 01/01/1900-12/31/9999|10");
  Prefs& prefs = app_->prefs;
  prefs.basis_ye = "12/31/2024";
  prefs.remove_0_sec = prefs.add_sch_d_rpt = true;
  prefs.xact_scope = 2;
  prefs.xact_start = "1/1/2025";
  prefs.xact_end = "06/30/2025";
  prefs.client_order = 0;
  prefs.sec_order = 1;
  EXPECT_EQ(Opened(*app_), "12/31/2024 D X|12/31/2025|2 01/01/2025-06/30/2025|01");
  prefs.basis_ye = "  /  /    ";
  prefs.xact_scope = 7;
  prefs.client_order = -1;
  prefs.sec_order = 9;
  app_->current.year_end.clear();
  EXPECT_EQ(Opened(*app_), "__/__/____ D X|__/__/____|0 01/01/2025-06/30/2025|10");
}

// View and Print run the reports the dialog's choices name, store the
// choices as preferences and close the dialog; a Schedule D run leaves the
// Basis choices alone.
TEST_F(ReportDialogsTest, BasisViewThenSchedDPrint) {
  auto basis = Play<BasisOptionsForm>(ShowBasisAnalysisDialog, "dlgBasisOptions", [&](auto& f) {
    ExpectSaid(ui_, kReportsSource, "export_question", Answer::kNo);
    EXPECT_EQ(f.caption, "Basis Analysis Options");
    EXPECT_EQ(f.year_end, "12/31/2025");
    f.include_sched_d = true;
    f.exclude_empty = true;
    BasisOptions_View(*app_, f);
  });
  // MSFT was sold out before the year end: the exclusion leaves it out.
  ExpectGolden(__FILE__, "basis_view.txt", Documents(ui_.reports_shown()));
  EXPECT_EQ(app_->prefs.basis_ye + "|" + app_->prefs.sch_d_fye, "12/31/2025|  /  /    ");
  EXPECT_TRUE(app_->prefs.remove_0_sec && app_->prefs.add_sch_d_rpt);
  const size_t shown = ui_.reports_shown().size();

  auto sched_d = Play<BasisOptionsForm>(ShowScheduleDDialog, "dlgBasisOptions", [&](auto& f) {
    ExpectSaid(ui_, kReportsSource, "export_question", Answer::kNo);
    f.year_end = "6/30/2025";
    f.report_type = BasisOptionsForm::kSummary;
    f.elections = true;
    BasisOptions_Print(*app_, f);
  });
  EXPECT_TRUE(basis.closed && sched_d.closed && ui_.reports_shown().size() == shown);
  ExpectGolden(__FILE__, "sched_d_print.txt", Documents(ui_.reports_printed()));
  EXPECT_EQ(app_->prefs.sch_d_fye + "|" + app_->prefs.basis_ye, "06/30/2025|12/31/2025");
  EXPECT_TRUE(app_->prefs.remove_0_sec && app_->prefs.add_sch_d_rpt);
}

// Only the 2025 sales fall in the transaction listing's range.
TEST_F(ReportDialogsTest, ListingsViewAndPrint_RangeAndSortChoices) {
  auto trans =
      Play<TransListOptionsForm>(ShowTransListingDialog, "dlgTransListOptions", [&](auto& f) {
        f.begin_date = "01/01/2025";
        f.end_date = "12/31/2025";
        TransListOptions_View(*app_, f);
      });
  auto client =
      Play<ClientListOptionsForm>(ShowTaxpayerListingDialog, "dlgClientListOptions", [&](auto& f) {
        f.sort_by = 0;
        ClientListOptions_View(*app_, f);
      });
  auto sec = Play<SecListOptionsForm>(ShowSecListingDialog, "dlgSecListOptions", [&](auto& f) {
    f.sort_by = 1;
    SecListOptions_Print(*app_, f);
  });
  EXPECT_TRUE(trans.closed && client.closed && sec.closed);
  ExpectGolden(__FILE__, "listings.txt",
               Documents(ui_.reports_shown()) + Documents(ui_.reports_printed()));
  EXPECT_EQ(app_->prefs.xact_start + "-" + app_->prefs.xact_end, "01/01/2025-12/31/2025");
  EXPECT_EQ(std::to_string(app_->prefs.client_order) + std::to_string(app_->prefs.sec_order), "01");
}

// A refused run keeps the dialog open as the user left it, with the focus
// on the field to correct.
TEST_F(ReportDialogsTest, RefusedRun_StaysOpenFocusOnField) {
  auto basis = Play<BasisOptionsForm>(ShowBasisAnalysisDialog, "dlgBasisOptions", [&](auto& f) {
    ExpectSaid(ui_, kReportsSource, "invalid_year_end");
    f.year_end = "13/45/2025";
    f.focus.clear();
    BasisOptions_View(*app_, f);
  });
  auto trans =
      Play<TransListOptionsForm>(ShowTransListingDialog, "dlgTransListOptions", [&](auto& f) {
        ui_.Expect("The Ending Date must be after the beginning date. Please correct this.",
                   "Please Correct!", Icon::kInformation, Buttons::kOk);
        f.begin_date = f.end_date = "03/03/2025";
        TransListOptions_Print(*app_, f);
      });
  EXPECT_FALSE(basis.closed || trans.closed);
  EXPECT_EQ(basis.focus + "|" + trans.focus, "dtYearEnd|dtEndDate");
}

// The dialogs that report on a taxpayer do not open without one.
TEST_F(ReportDialogsTest, Show_NoTaxpayer_NothingShown) {
  app_->client.reset();
  for (auto show : {ShowSecListingDialog, ShowTransListingDialog, ShowBasisAnalysisDialog,
                    ShowScheduleDDialog}) {
    show(*app_);
  }
  EXPECT_TRUE(ui_.Done());
}

// The about box counts the program's starts and names the data folders.
TEST_F(ReportDialogsTest, About_UsageCountAndFolders) {
  AddUsage(*app_, *app_->central);
  AddUsage(*app_, *app_->central);
  auto form = Play<AboutForm>(ShowAbout, "dlgAbout", [&](auto& f) { About_OK(*app_, f); });
  EXPECT_TRUE(form.closed);
  EXPECT_EQ(form.caption + "|" + form.program_name + "|" + form.version + "|" + form.usage,
            "About Lotwise|Lotwise|Version LW2005.20|Usage Count: 2");
  EXPECT_EQ(form.ssf_folder, app_->ssf_folder);
  EXPECT_EQ(form.client_folder, app_->taxpayer_folder);
}

// Help opens the manual's pages through the port, and says so when the
// manual is missing.
class HelpUi : public ScriptedUi {
 public:
  void ShowHelp(std::string_view path, std::string_view anchor) override {
    opened.push_back(std::string(path) + "#" + std::string(anchor));
  }
  Rows opened;
};

TEST_F(ReportDialogsTest, ShowHelp_OpensManualPages) {
  HelpUi help_ui;
  Application app(help_ui, *env_, program_folder_, "lotwise");
  const std::string folder = root_ + "help/";
  fs::create_directories(folder);
  std::ofstream(folder + "index.html") << "<html></html>";
  std::ofstream(folder + "using_help.html") << "<html></html>";
  app.help_path = folder + "index.html";
  ShowHelpContents(app);
  ShowHelpOnHelp(app);
  EXPECT_EQ(help_ui.opened, (Rows{folder + "index.html#", folder + "using_help.html#"}));

  fs::remove(folder + "index.html");
  help_ui.Expect("The help file " + folder +
                     "index.html could not be found. Please reinstall Lotwise to restore it.",
                 "Help Not Found", Icon::kExclamation, Buttons::kOk);
  ShowHelpContents(app);
  help_ui.VerifyDone();
}

// Every link of the shipped manual leads to a page that exists and, where
// it names one, to an anchor on that page.
TEST(ShippedManual, LinksResolve) {
  // The manual's sources, from this folder's golden files up to the root.
  const fs::path folder = fs::path(GoldenPath(__FILE__, "")).parent_path() / "../../../src/ui/help";
  ASSERT_TRUE(fs::exists(folder / "index.html"));
  ASSERT_TRUE(fs::exists(folder / kHelpOnHelpPage));
  std::map<std::string, std::set<std::string>> anchors;
  std::map<std::string, std::string> pages;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() != ".html") continue;
    const std::string name = entry.path().filename().string();
    pages[name] = ReadText(entry.path().string());
    const std::regex id_pattern(R"re((?:id|name)="([^"]+)")re");
    for (std::sregex_iterator it(pages[name].begin(), pages[name].end(), id_pattern), end;
         it != end; ++it) {
      anchors[name].insert((*it)[1]);
    }
  }
  const std::regex link_pattern(R"re(href="([^"#]*)(?:#([^"]*))?")re");
  Rows broken;
  for (const auto& [name, text] : pages) {
    for (std::sregex_iterator it(text.begin(), text.end(), link_pattern), end; it != end; ++it) {
      const std::string target = (*it)[1].length() ? (*it)[1].str() : name;
      const std::string anchor = (*it)[2];
      if (target.find(':') != std::string::npos) continue;  // not a page of the manual
      if (!pages.count(target) || (!anchor.empty() && !anchors[target].count(anchor))) {
        broken.push_back(name + " -> " + target + "#" + anchor);
      }
    }
  }
  EXPECT_EQ(broken, Rows{});
}

}  // namespace
}  // namespace lotwise::testing
