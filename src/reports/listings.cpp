#include "reports/listings.h"

#include <memory>
#include <utility>
#include <vector>

#include "data/application.h"
#include "data/central_file.h"
#include "data/client_index.h"
#include "data/client_info.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/query_builders.h"
#include "data/security_rows.h"
#include "ground/paths.h"
#include "ground/ui_port.h"
#include "lots/sell_shares.h"
#include "reports/report_db.h"
#include "reports/report_runner.h"

namespace lotwise {

namespace {

// The sort keys of ReadClientIndexSorted.
constexpr int kSortBySortName = 1;
constexpr int kSortByCode = 2;

// Returns true iff the list can be made: a portfolio's list needs an open
// portfolio. Tells the user otherwise.
bool PortfolioOpenFor(Application& app, int list_from) {
  if (list_from != static_cast<int>(SecListFrom::kPortfolio) || app.window.state >= kPortOpen) {
    return true;
  }
  app.ui().MessageBox(
      "You must have a Portfolio open to view or print a report from a Portfolio. Either select "
      "'this Taxpayer' or open a Portfolio first.",
      "No Portfolio open", Icon::kInformation, Buttons::kOk);
  return false;
}

// Adds the "Client Report" row of one indexed taxpayer and, when its file
// is there, the taxpayer's year end, second line and portfolios.
void AddClientToReport(Application& app, Database& report, const IndexedClient& client) {
  ClientReportRow row;
  row.client_name = client.name;
  row.sort_name = client.sort_name;
  row.client_code = client.code;
  row.file_name = client.file_name;
  const std::string path = JoinPath(app.taxpayer_folder, client.file_name);
  std::vector<PortfolioOnFile> portfolios;
  if (!FileExists(path)) {
    row.no_file = "Taxpayer File Missing";
  } else {
    auto taxpayer = Database::Open(path, Database::Mode::kReadOnly);
    if (const std::optional<ClientOnFile> heading = ReadClientHeading(*taxpayer)) {
      row.second_line = JoinNameAnd2ndLine(client.name, heading->second_line);
      row.year_end = heading->year_end;
    }
    portfolios = ListPortfolios(*taxpayer);
  }
  AddClientReport(report, row);
  for (const PortfolioOnFile& port : portfolios) {
    AddPortfolioReport(report, port.name, port.second_line, client.code);
  }
}

}  // namespace

bool RunClientReport(Application& app, ReportDestination destination, ClientSort sort) {
  return Trap(app, "RunClientReport", false, [&] {
    app.ui().SetHelpBarText("Preparing Taxpayer Report, Please Wait...");
    if (!CreateClientReportTables(app, sort)) {
      app.ui().MessageBox(
          "The report can't be generated. If an error was reported you should try to correct it "
          "first and then try the report again.",
          "Can't Create Report", Icon::kExclamation, Buttons::kOk);
      return false;
    }
    return RunReport(app, ReportFilePath(app, "TAXPAYER.RPT"), app.report_db_path, destination,
                     "Taxpayer Listing Report") == 0;
  });
}

bool CreateClientReportTables(Application& app, ClientSort sort) {
  return Trap(app, "CreateClientReportTables", false, [&] {
    HourglassGuard hourglass(app.ui());
    std::unique_ptr<Database> report = OpenReportDb(app);
    Database::Transaction unit(*report);
    ClearReportTables(*report, {"Client Report", "Portfolio Report", "Usage"});
    AddUsageRow(app, *report);
    for (const IndexedClient& client : ReadClientIndexSorted(
             app, *app.central, sort == ClientSort::kCode ? kSortByCode : kSortBySortName)) {
      AddClientToReport(app, *report, client);
      app.ui().ProcessEvents();
    }
    unit.Commit();
    return true;
  });
}

bool RunSecReport(Application& app, ReportDestination destination, int list_from, int sort_choice) {
  return Trap(app, "RunSecReport", false, [&] {
    if (!PortfolioOpenFor(app, list_from)) return false;
    app.ui().SetHelpBarText("Preparing Security Listing Report, Please wait...");
    if (!CreateSecReportTables(app, list_from)) {
      app.ui().MessageBox(
          "The Report can not be generated. If an error message was displayed you should try to "
          "correct the error first.You will need to run the report again.",
          "Can't create Report", Icon::kExclamation, Buttons::kOk);
      return false;
    }
    const char* file = sort_choice == 0 ? "SECLIST1.RPT" : "SECLIST2.RPT";
    return RunReport(app, ReportFilePath(app, file), app.report_db_path, destination,
                     "Security Listing Report") == 0;
  });
}

bool CreateSecReportTables(Application& app, int list_from) {
  return Trap(app, "CreateSecReportTables", false, [&] {
    if (list_from != static_cast<int>(SecListFrom::kTaxpayer) &&
        list_from != static_cast<int>(SecListFrom::kPortfolio)) {
      app.ui().MessageBox("Error in CSOptListFrom.listindex in CreateSecReportTables", "Error",
                          Icon::kCritical, Buttons::kOk);
      return false;
    }
    if (!PortfolioOpenFor(app, list_from)) return false;

    HourglassGuard hourglass(app.ui());
    std::unique_ptr<Database> report = OpenReportDb(app);
    Database::Transaction unit(*report);
    ClearReportTables(*report, {"Sec List Report", "Client Report", "Usage"});
    AddUsageRow(app, *report);
    AddClientReportHeading(*report, app.current.client_name, app.current.client_code);

    // Read in full first: a fatal error in the look-ups below ends the
    // program, which closes the Taxpayer File, and no query may stay open on
    // it then.
    struct SecRow {
      std::string port_name;
      std::string symbol;
      std::string second_line;
      SellMethod method = SellMethod::kNotSelected;
    };
    std::vector<SecRow> rows;
    for (SecurityOnFile& sec : list_from == static_cast<int>(SecListFrom::kTaxpayer)
                                   ? AllSecurities(*app.client)
                                   : SecuritiesInPort(*app.client, app.current.port_name)) {
      rows.push_back({std::move(sec.port_name), std::move(sec.symbol), sec.second_line.value_or(""),
                      sec.sell_method.value_or(SellMethod::kNotSelected)});
    }
    for (const SecRow& row : rows) {
      const std::string name = GetSecInfoFromCDB(app, row.symbol, "[Sec Name]");
      const std::string cusip = GetSecInfoFromCDB(app, row.symbol, "CUSIP");
      const std::string method = GetSellName(app, row.method);
      AddSecListReport(*report, {row.port_name, row.symbol, name, cusip, row.second_line, method});
    }
    unit.Commit();
    return true;
  });
}

}  // namespace lotwise
