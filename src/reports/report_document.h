#pragma once

#include <string>
#include <vector>

namespace lotwise {

// A report laid out on pages: what the viewer window shows, the printer
// prints and the PDF holds. Positions are in points (1/72 inch) from the
// page's top left corner; each renderer measures text with its own fonts
// and aligns it inside its cell.
struct ReportText {
  enum class Align { kLeft, kRight, kCenter };
  double x = 0;      // left edge of the cell
  double y = 0;      // baseline
  double width = 0;  // cell width, for right and centred alignment
  std::string text;  // UTF-8
  Align align = Align::kLeft;
  bool bold = false;
  double size = 9;  // font size in points
};

// A straight rule (underlines, total lines, boxes).
struct ReportRule {
  double x1 = 0;
  double y1 = 0;
  double x2 = 0;
  double y2 = 0;
  double thickness = 0.5;
};

struct ReportPage {
  std::vector<ReportText> texts;
  std::vector<ReportRule> rules;
};

struct ReportDocument {
  std::string title;        // the viewer window's caption
  double page_width = 612;  // US Letter portrait
  double page_height = 792;
  std::vector<ReportPage> pages;

  // The document's words, page by page and line by line (texts of one
  // baseline joined left to right by blanks), pages separated by a form feed:
  // what tests and the console compare.
  std::string PlainText() const;
};

}  // namespace lotwise
