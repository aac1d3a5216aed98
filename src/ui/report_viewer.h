#pragma once

#include <string>

class QWidget;

namespace lotwise {

struct ReportDocument;

namespace ui {

// The report viewer window (objectName "frmReportViewer", captioned with the
// report's title): the laid-out pages at 100 % zoom (a point is 1/72 inch at
// the screen's logical resolution), in a scroll area that fills the window
// as it is resized, with Print (btnPrint) and Save as PDF (btnSavePdf).
// Shown modeless; the window deletes itself when closed.
void ShowReportViewer(const ReportDocument& report, QWidget* parent);

// Prints the report on the current printer after the print dialog. Returns
// 0, 20513 when the user cancelled the print job, 20526 when there is no
// printer.
int PrintReportDocument(const ReportDocument& report, QWidget* parent);

// The printer set-up dialog (printer, paper, orientation) whose choices the
// following print jobs use. Returns false when cancelled.
bool RunPrintSetup(QWidget* parent);

// Writes the report as a PDF file at `path`. Returns true iff written;
// otherwise tells the user why not.
bool SaveReportPdf(const ReportDocument& report, const std::string& path, QWidget* parent);

// The help window (objectName "frmHelp") on the HTML manual page `path`,
// scrolled to `anchor` if given, with Back, Forward and Home. One help
// window serves the whole run: a second call shows the page in it.
void ShowHelpWindow(const std::string& path, const std::string& anchor, QWidget* parent);

}  // namespace ui
}  // namespace lotwise
