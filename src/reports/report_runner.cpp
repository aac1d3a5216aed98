#include "reports/report_runner.h"

#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "ground/lw_error.h"
#include "ground/ui_port.h"
#include "reports/report_engine.h"

namespace lotwise {

namespace {

std::string PrintErrorText(int number) {
  switch (number) {
    case err::kPrintCancelled:
      return "Print job cancelled";
    case err::kNoDefaultPrinter:
      return "No default printer";
    default:
      return "Printing failed";
  }
}

}  // namespace

std::string ReportFilePath(const Application& app, std::string_view file_name) {
  return app.ProgramFile(std::string(file_name));
}

int RunReport(Application& app, const std::string& report_path, const std::string& report_db_path,
              ReportDestination destination, const std::string& title) {
  HourglassGuard hourglass(app.ui());
  try {
    // The definition is looked for first: a missing one is the likelier
    // fault and has a message of its own.
    CheckReportFile(report_path);
    ReportDocument document;
    {
      std::unique_ptr<Database> report_db =
          Database::Open(report_db_path, Database::Mode::kReadOnly, app.storage_faults);
      document = RenderReport(report_path, *report_db, title);
    }
    document.title = title;
    if (destination == ReportDestination::kScreen) {
      app.ui().ShowReport(document);
      return 0;
    }
    int result = app.ui().PrintReport(document);
    if (result != 0) throw LwError(result, PrintErrorText(result));
    return 0;
  } catch (...) {
    LwError error = CurrentError();
    ReportError(app, error, "RunReport");
    return error.number() != 0 ? error.number() : err::kUnexpected;
  }
}

void PrintSetup(Application& app) {
  // A cancelled dialog simply ends the command: nothing was changed.
  TrapVoid(app, "PrintSetup", [&] { app.ui().PrintSetup(); });
}

}  // namespace lotwise
