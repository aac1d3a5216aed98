#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "reports/report_document.h"

namespace lotwise {

// Writes the documents one after another into one PDF file at `path`, in
// Helvetica and Helvetica-Bold (WinAnsi: characters outside it print as
// "?"). Throws LwError 75 when the file cannot be written.
void WriteReportPdf(const std::vector<ReportDocument>& documents, const std::string& path);

// Returns the width in points of UTF-8 `text` in Helvetica (Helvetica-Bold
// when `bold`) at `size` points: the metrics the PDF is written with, which
// the layout uses to align and wrap.
double MeasureText(std::string_view text, bool bold, double size);

}  // namespace lotwise
