#include "reports/basis_report.h"

#include <string>
#include <vector>

#include "data/application.h"
#include "data/current_context.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/security_rows.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"
#include "ground/window_state.h"
#include "reports/basis_walk.h"
#include "reports/report_db.h"
#include "reports/report_runner.h"
#include "reports/sched_d_export.h"

namespace lotwise {

namespace {

const char* ScopeType(ReportScope scope) {
  switch (scope) {
    case ReportScope::kPortfolio:
      return "Portfolio";
    case ReportScope::kSecurity:
      return "Security";
    case ReportScope::kTaxpayer:
      break;
  }
  return "Taxpayer";
}

void AddBAInfoRow(Application& app, Database& report_db, ReportScope scope, Date year_end) {
  const std::string name = GetCurrClientInfo(app, "[Client Name]");
  AddBAInfo(report_db, name, GetCurrClientInfo(app, "[Client Code]"),
            JoinNameAnd2ndLine(name, GetCurrClientInfo(app, "[2nd Line]")), year_end,
            ScopeType(scope));
}

struct ReportRun {
  const char* status;
  const char* title;
  std::string file;
};

}  // namespace

bool RunBasisSchedDReport(Application& app, const BasisReportRequest& request, bool* export_made) {
  if (export_made != nullptr) *export_made = false;
  return Trap(app, "RunBasisSchedDReport", false, [&] {
    UiPort& ui = app.ui();
    Date year_end;
    if (!DateValid(ui, request.year_end, "Year End Date", year_end)) return false;
    const int16_t state = app.window.state;
    if (state < kClientOpen || !app.client) {
      ui.MessageBox(
          "You must have a taxpayer open to do a Basis Analysis or Schedule D "
          "attachment.",
          "Invalid Input", Icon::kInformation, Buttons::kOk);
      return false;
    }
    if (request.scope == ReportScope::kSecurity && state < kSecOpen) {
      ui.MessageBox(
          "You must have a security open to do a Basis Analysis or Schedule D "
          "attachment on one.",
          "Invalid Input", Icon::kInformation, Buttons::kOk);
      return false;
    }
    if (request.scope == ReportScope::kPortfolio && state < kPortOpen) {
      ui.MessageBox(
          "You must have a portfolio open that has at least one security in it to do a "
          "Basis Analysis or Schedule D attachment on it.",
          "Invalid Input", Icon::kInformation, Buttons::kOk);
      return false;
    }
    if (request.scope == ReportScope::kPortfolio &&
        ui.MessageBox(
            "Basis for a security, for U.S. tax purposes, should be determined without regard to "
            "portfolio.  If a security is held in more than one portfolio, we recommend that you "
            "use the Taxpayer or Security option instead of the Portfolio option. \n\n"
            "Click CANCEL to cancel the report\n"
            "Click OK to proceed, knowing that if one security is owned in more than one "
            "portfolio (for a Taxpayer) the report might not be correct for tax purposes.",
            "Warning!", Icon::kInformation, Buttons::kOkCancel) != Answer::kOk) {
      return false;
    }

    const bool computed = CalcBasisSchedDRpt(app, request.scope, year_end, request.kind);
    ui.SetHelpBarText("Preparing report, Please wait...");
    if (!computed) {
      ui.MessageBox(
          "The Report can not be generated. If an error message was displayed you "
          "should try to correct the error first.You will need to run the report again.",
          "Can't create Report", Icon::kExclamation, Buttons::kOk);
      return false;
    }

    // A report that cannot run (a definition file missing, a print job
    // cancelled) has been reported; the others and the export file still
    // come, since the tables they read are complete.
    bool all_ran = true;
    auto run_report = [&](const ReportRun& report) {
      ui.SetHelpBarText(report.status);
      if (RunReport(app, ReportFilePath(app, report.file), app.report_db_path, request.destination,
                    report.title) != 0) {
        all_ran = false;
      }
    };
    if (request.kind != BasisKind::kBasis) {
      if (request.elections) {
        run_report({"Preparing Schedule D Elections, please wait...", "Schedule D Elections",
                    "ELECTION.RPT"});
      }
      run_report({"Preparing Schedule D attachment, please wait...", "Schedule D Attachment",
                  request.detail ? "SCHED_D1.RPT" : "SCHED_D2.RPT"});
      const bool made = CreateSchDExportFile(app);
      if (export_made != nullptr) *export_made = made;
    }
    if (request.kind != BasisKind::kScheduleD) {
      std::string file = request.detail ? "BASIS_DT" : "BASIS_SM";
      if (request.exclude_empty) file += "_No0";
      run_report(
          {"Preparing Basis Analysis, please wait...", "Basis Analysis Report", file + ".RPT"});
    }
    return all_ran;
  });
}

bool CalcBasisSchedDRpt(Application& app, ReportScope scope, Date year_end, BasisKind kind) {
  return Trap(app, "CalcBasisSchedDRpt", false, [&] {
    UiPort& ui = app.ui();
    HourglassGuard hourglass(ui);
    ui.SetHelpBarText("Preparing to calculate...");
    GaugeGuard gauge(ui);
    if (!app.client) throw LwError(err::kUnexpected, "No Taxpayer File is open.");
    std::string port_filter = "*";
    std::string sec_filter = "*";
    if (scope == ReportScope::kPortfolio) port_filter = app.current.port_name;
    if (scope == ReportScope::kSecurity) sec_filter = app.current.sec_symbol;

    std::unique_ptr<Database> report = OpenReportDb(app);
    ClearReportTables(*report, {"BA Trans", "BA Blocks", "Sched D", "BA Secs", "BA Info", "Usage"});
    AddUsageRow(app, *report);
    AddBAInfoRow(app, *report, scope, year_end);

    // The whole walk is one unit: its many rows are committed together, and
    // a failure anywhere leaves none of them. The unit outlives the walk's
    // queries, which close before it rolls back.
    Database::Transaction unit(*report);
    BasisRun run{.app = app,
                 .client = *app.client,
                 .report = *report,
                 .kind = kind,
                 .year_end = year_end,
                 .year_start = YearStart(year_end),
                 .port_filter = port_filter,
                 .sec_filter = sec_filter};
    // The blocks the walk will visit, so that the gauge can show its progress.
    run.blocks_total = CountBlocksInScope(*app.client, port_filter, sec_filter);
    if (!CalcSecurities(run)) {
      CloseBasisRecordsets(run);
      return false;
    }
    CloseBasisRecordsets(run);
    unit.Commit();
    ui.SetGauge(100);
    ui.ProcessEvents();
    return true;
  });
}

}  // namespace lotwise
