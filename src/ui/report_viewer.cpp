#include "ui/report_viewer.h"

#include "app/lw_error.h"

namespace lotwise::ui {

void ShowReportViewer(const ReportDocument&, QWidget*) {}
int PrintReportDocument(const ReportDocument&, QWidget*) { return err::kNoDefaultPrinter; }
bool RunPrintSetup(QWidget*) { return false; }
void ShowHelpWindow(const std::string&, const std::string&, QWidget*) {}

}  // namespace lotwise::ui
