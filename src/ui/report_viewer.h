#pragma once

#include <string>

class QWidget;

namespace lotwise {

struct ReportDocument;

namespace ui {

// The report viewer window: the laid-out pages at 100 % zoom, filling the
// window as it is resized, with Print and Save as PDF. Shown modeless; the
// window deletes itself when closed.
void ShowReportViewer(const ReportDocument& report, QWidget* parent);

// Prints the report on the current printer. Returns 0, 20513 when the user
// cancelled the print job, 20526 when there is no printer.
int PrintReportDocument(const ReportDocument& report, QWidget* parent);

// The printer set-up dialog. Returns false when cancelled.
bool RunPrintSetup(QWidget* parent);

// The help window on the HTML manual page `path`, at `anchor` if given.
void ShowHelpWindow(const std::string& path, const std::string& anchor, QWidget* parent);

}  // namespace ui
}  // namespace lotwise
