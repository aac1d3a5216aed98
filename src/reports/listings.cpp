#include "reports/listings.h"

#include <memory>
#include <utility>
#include <vector>

#include "app/application.h"
#include "app/error_handler.h"
#include "app/paths.h"
#include "app/ui_port.h"
#include "data/central_file.h"
#include "data/database.h"
#include "data/query_builders.h"
#include "lots/sell_shares.h"
#include "reports/report_db.h"
#include "reports/report_runner.h"

namespace lotwise {

namespace {

// The sort keys of Query_GetClientCDBSorted.
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
void AddClientToReport(Application& app, Database& report, const Query& client_row) {
  const std::string code = client_row.Text("Client Code");
  const std::string name = client_row.Text("Client Name");
  const std::string file_name = client_row.Text("File Name");
  const std::string path = JoinPath(app.taxpayer_folder, file_name);

  Value second_line;
  Value year_end;
  Value no_file;
  struct Portfolio {
    std::string name;
    std::string second_line;
  };
  std::vector<Portfolio> portfolios;
  if (!FileExists(path)) {
    no_file = std::string("Taxpayer File Missing");
  } else {
    auto taxpayer = Database::Open(path, Database::Mode::kReadOnly);
    Query c = taxpayer->Select(R"(SELECT "2nd Line", "Year End" FROM "Client")");
    if (c.Next()) {
      second_line = JoinNameAnd2ndLine(name, c.Text("2nd Line"));
      if (!c.IsNull("Year End")) year_end = c.DateValue("Year End");
    }
    Query p =
        taxpayer->Select(R"(SELECT "Port Name", "2nd Line" FROM "Portfolio" ORDER BY "Port Name")");
    while (p.Next()) portfolios.push_back({p.Text("Port Name"), p.Text("2nd Line")});
  }

  report.Execute(
      R"(INSERT INTO "Client Report" ("Client Name", "Sort Name", "Client Code", "2nd Line", )"
      R"("Year End", "File Name", "No File") VALUES (:name, :sort, :code, :line, :ye, :file, )"
      R"(:nofile))",
      {{"name", name},
       {"sort", client_row.Text("Sort Name")},
       {"code", code},
       {"line", second_line},
       {"ye", year_end},
       {"file", file_name},
       {"nofile", no_file}});
  for (const Portfolio& port : portfolios) {
    report.Execute(R"(INSERT INTO "Portfolio Report" ("Port Name", "2nd Line", "Client Code") )"
                   R"(VALUES (:port, :line, :code))",
                   {{"port", port.name}, {"line", port.second_line}, {"code", code}});
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
    Query clients = Select(
        *app.central,
        Query_GetClientCDBSorted(app, sort == ClientSort::kCode ? kSortByCode : kSortBySortName));
    while (clients.Next()) {
      AddClientToReport(app, *report, clients);
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
    report->Execute(
        R"(INSERT INTO "Client Report" ("Client Name", "Client Code") VALUES (:name, :code))",
        {{"name", app.current.client_name}, {"code", app.current.client_code}});

    // Read in full first: a fatal error in the look-ups below ends the
    // program, which closes the Taxpayer File, and no query may stay open on
    // it then.
    struct SecRow {
      std::string port_name;
      std::string symbol;
      std::string second_line;
      int16_t method = kSellNotSelected;
    };
    std::vector<SecRow> rows;
    {
      Query secs =
          list_from == static_cast<int>(SecListFrom::kTaxpayer)
              ? app.client->SelectSaved("All Secs")
              : app.client->SelectSaved("Secs In Port", {{"sPortName", app.current.port_name}});
      while (secs.Next()) {
        SecRow row{secs.Text("Port Name"), secs.Text("Sec Symbol"), secs.Text("2nd Line")};
        if (!secs.IsNull("Sell Method")) row.method = static_cast<int16_t>(secs.Int("Sell Method"));
        rows.push_back(std::move(row));
      }
    }
    for (const SecRow& row : rows) {
      const std::string name = GetSecInfoFromCDB(app, row.symbol, "[Sec Name]");
      const std::string cusip = GetSecInfoFromCDB(app, row.symbol, "CUSIP");
      const std::string method = GetSellName(app, row.method);
      report->Execute(
          R"(INSERT INTO "Sec List Report" ("Port Name", "Sec Symbol", "Sec Name", "CUSIP", )"
          R"("2nd Line", "Sell Method") VALUES (:port, :symbol, :name, :cusip, :line, :method))",
          {{"port", row.port_name},
           {"symbol", row.symbol},
           {"name", name},
           {"cusip", cusip},
           {"line", row.second_line},
           {"method", method}});
    }
    unit.Commit();
    return true;
  });
}

}  // namespace lotwise
