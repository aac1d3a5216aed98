// `demo`: a sample taxpayer in a fresh data folder, its ledger imported, and
// every report saved, so that a new user sees the whole program at once.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "app/taxpayer_file.h"
#include "commands.h"
#include "data/application.h"
#include "demo_ledger.h"
#include "ground/date.h"
#include "import_ledger.h"
#include "lots/sell_shares.h"
#include "report_output.h"
#include "reports/listings.h"
#include "reports/trans_list.h"

namespace lotwise::cli {
namespace {

namespace fs = std::filesystem;

constexpr int kUsageError = 2;

struct DemoOptions {
  std::string out = "lotwise-demo";
};

// Runs the demo's reports one after another and saves what each showed,
// remembering the files written.
class DemoReports {
 public:
  DemoReports(Session& session, fs::path out_dir, fs::path shown_dir)
      : session_(session), out_dir_(std::move(out_dir)), shown_dir_(std::move(shown_dir)) {}

  // A basis run; its documents go to `pdf_names` in the order shown (one
  // name per document). Returns true iff the run and every file succeeded.
  bool Basis(const BasisReportRequest& request, const std::vector<std::string>& pdf_names,
             const std::string& csv_name = {}, const std::string& json_name = {}) {
    const size_t first = session_.ui.reports().size();
    const std::string csv = csv_name.empty() ? std::string() : Path(csv_name);
    if (!Quietly(
            [&] { return RunBasisWithoutWindow(session_, request, SellMethod::kFifo, csv); })) {
      return false;
    }
    if (!csv_name.empty()) Wrote(csv_name);
    if (!json_name.empty()) {
      if (!WriteTablesJson(session_, kBasisTables, Path(json_name))) return false;
      Wrote(json_name);
    }
    return SaveEach(first, pdf_names);
  }

  // Any other report: `run` runs it; its documents go into `pdf_name`.
  template <class Run>
  bool Other(Run run, const std::string& pdf_name) {
    const size_t first = session_.ui.reports().size();
    if (!Quietly([&] { return run(session_.app); })) return false;
    return SaveEach(first, {pdf_name});
  }

  const std::vector<std::string>& written() const { return written_; }

 private:
  // The questions and notes of a report run that succeeds (the export
  // question, the export's closing note) are the demo's own business; a run
  // that fails shows them all, since they say why.
  template <class Run>
  bool Quietly(Run run) {
    std::vector<ConsoleUi::ShownLine> lines;
    session_.ui.SetCapture(&lines);
    const bool ran = run();
    session_.ui.SetCapture(nullptr);
    if (!ran) {
      for (const ConsoleUi::ShownLine& line : lines) std::cerr << line.text << '\n';
    }
    return ran;
  }

  std::string Path(const std::string& name) const { return (out_dir_ / name).string(); }
  void Wrote(const std::string& name) { written_.push_back((shown_dir_ / name).string()); }

  // Saves each document shown since `first` into its own PDF; documents
  // beyond the names given go into the last file.
  bool SaveEach(size_t first, const std::vector<std::string>& pdf_names) {
    std::vector<ReportDocument> shown = DocumentsSince(session_, first);
    if (shown.size() < pdf_names.size()) {
      std::cerr << "demo: the run showed " << shown.size() << " reports, " << pdf_names.size()
                << " were expected\n";
      return false;
    }
    for (size_t i = 0; i < pdf_names.size(); ++i) {
      const bool last = i + 1 == pdf_names.size();
      std::vector<ReportDocument> documents(
          shown.begin() + static_cast<std::ptrdiff_t>(i),
          last ? shown.end() : shown.begin() + static_cast<std::ptrdiff_t>(i + 1));
      if (!WriteDocumentsPdf(documents, Path(pdf_names[i]))) return false;
      Wrote(pdf_names[i]);
    }
    return true;
  }

  Session& session_;
  fs::path out_dir_;
  fs::path shown_dir_;
  std::vector<std::string> written_;
};

// Returns true iff `folder` may hold the demo's data: absent or empty.
bool FreshFolder(const fs::path& folder) {
  std::error_code ec;
  if (!fs::exists(folder, ec)) return !ec;
  return fs::is_directory(folder, ec) && fs::is_empty(folder, ec) && !ec;
}

bool CreateDemoTaxpayer(Application& app) {
  const std::optional<Date> year_end = Date::Parse(kDemoYearEnd);
  if (!year_end || !NewClient(app, kDemoTaxpayerName, kDemoSortName, kDemoTaxpayerCode,
                              kDemo2ndLine, *year_end)) {
    return false;
  }
  for (const DemoPortfolio& portfolio : kDemoPortfolios) {
    if (!NewPort(app, portfolio.name, portfolio.second_line)) return false;
  }
  return true;
}

bool RunDemoReports(DemoReports& reports) {
  BasisReportRequest basis;
  basis.kind = BasisKind::kBasis;
  basis.scope = ReportScope::kTaxpayer;
  basis.year_end = kDemoYearEnd;
  BasisReportRequest basis_summary = basis;
  basis_summary.detail = false;
  BasisReportRequest basis_held = basis;
  basis_held.exclude_empty = true;
  BasisReportRequest schedule_d = basis;
  schedule_d.kind = BasisKind::kScheduleD;
  schedule_d.elections = true;
  BasisReportRequest schedule_d_summary = schedule_d;
  schedule_d_summary.detail = false;
  schedule_d_summary.elections = false;

  return reports.Basis(basis, {"basis_detail.pdf"}, {}, "basis_detail.json") &&
         reports.Basis(basis_summary, {"basis_summary.pdf"}) &&
         reports.Basis(basis_held, {"basis_detail_held_at_year_end.pdf"}) &&
         reports.Basis(schedule_d, {"schedule_d_elections.pdf", "schedule_d_detail.pdf"},
                       "schedule_d_export.csv") &&
         reports.Basis(schedule_d_summary, {"schedule_d_summary.pdf"}) &&
         reports.Other(
             [](Application& app) {
               return RunTransListRpt(app, ReportScope::kTaxpayer, kDemoListFrom, kDemoYearEnd,
                                      ReportDestination::kScreen);
             },
             "transaction_listing.pdf") &&
         reports.Other(
             [](Application& app) {
               return RunClientReport(app, ReportDestination::kScreen, ClientSort::kCode);
             },
             "taxpayer_listing.pdf") &&
         reports.Other(
             [](Application& app) {
               return RunSecReport(app, ReportDestination::kScreen,
                                   static_cast<int>(SecListFrom::kTaxpayer), 0);
             },
             "security_listing.pdf");
}

int RunDemo(const Context& context, const DemoOptions& options) {
  const fs::path shown_dir = options.out;
  std::error_code ec;
  const fs::path out_dir = fs::absolute(shown_dir, ec);
  GlobalOptions global = context.global;
  const fs::path data_shown =
      global.data_folder.empty() ? shown_dir / "data" : fs::path(global.data_folder);
  if (global.data_folder.empty()) global.data_folder = (out_dir / "data").string();
  if (ec || !FreshFolder(global.data_folder)) {
    std::cerr << "demo: " << data_shown.string()
              << " is not an empty folder; the demo needs a fresh data folder\n";
    return kUsageError;
  }
  fs::create_directories(out_dir, ec);
  if (ec) {
    std::cerr << "demo: cannot create " << shown_dir.string() << ": " << ec.message() << '\n';
    return 1;
  }

  Session session(context.location, global);
  return session.Run([&] {
    if (!session.Start()) return false;
    std::cout << "data folder: " << data_shown.string() << '\n';
    if (!CreateDemoTaxpayer(session.app)) {
      std::cerr << "demo: the sample taxpayer could not be created\n";
      return false;
    }
    std::istringstream ledger(kDemoLedger);
    int stored = 0;
    if (!ImportLedger(session, kDemoTaxpayerCode, ledger, "demo ledger", &stored)) {
      return false;
    }
    std::cout << "taxpayer " << kDemoTaxpayerCode << ": " << stored << " transactions imported\n";

    DemoReports reports(session, out_dir, shown_dir);
    const bool ran = RunDemoReports(reports);
    for (const std::string& file : reports.written()) std::cout << file << '\n';
    return ran;
  });
}

}  // namespace

void AddDemoCommand(CLI::App& parser, Context& context, std::vector<Command>& commands) {
  auto options = std::make_shared<DemoOptions>();
  CLI::App* demo = parser.add_subcommand(
      "demo", "Create a sample taxpayer in a fresh data folder and save every report");
  demo->add_option("--out", options->out, "Folder for the reports (and data/ when no --data)")
      ->capture_default_str();
  commands.push_back({demo, [&context, options] { return RunDemo(context, *options); }});
}

}  // namespace lotwise::cli
