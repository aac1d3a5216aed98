#pragma once

#include <string>
#include <string_view>

#include "reports/basis_request.h"

namespace lotwise {

class Application;

// The report folder holds the report definition files: the program folder.
// Returns folder & separator & `file_name`.
std::string ReportFilePath(const Application& app, std::string_view file_name);

// Runs one report definition file over the report database at
// `report_db_path` and shows it (destination screen) or prints it. Shows the
// hourglass meanwhile. Returns 0, or the error number that was reported
// (20504 missing report file, 20513 cancelled print job, 20526 no default
// printer, or another engine failure), all through the central handler
// under "RunReport".
int RunReport(Application& app, const std::string& report_path, const std::string& report_db_path,
              ReportDestination destination, const std::string& title);

// The File menu's printer set-up; a cancel simply ends the command.
void PrintSetup(Application& app);

}  // namespace lotwise
