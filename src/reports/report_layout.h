#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "reports/report_document.h"

namespace lotwise {

// The page settings and column sets of one report definition.
struct LayoutColumn {
  std::string id;
  double width = 0;
  ReportText::Align align = ReportText::Align::kLeft;
  std::string label;
};

struct LayoutSettings {
  double page_width = 612;
  double page_height = 792;
  double margin_left = 36;
  double margin_top = 36;
  double margin_right = 36;
  double margin_bottom = 36;
  double font_size = 9;
  std::map<std::string, std::vector<LayoutColumn>, std::less<>> column_sets;
};

// Returns `value` with the characters the layout commands read ("\", "|",
// line breaks) escaped, so that a value always stays one piece of text.
std::string EscapeLayoutValue(std::string_view value);

// Expands a page template for page `page` of `pages` into layout commands.
using PageTemplate = std::function<std::string(int page, int pages)>;

// Lays out the body's layout commands (see report_engine.h) on pages,
// breaking pages where the body area is full and honouring "keep" and
// "page"; then lays the header and footer commands, expanded for each page
// with its number and the page count, at its top and foot. Returns the
// pages. Throws LwError 32000 for an unknown command or column set;
// `source` names the definition in that message.
std::vector<ReportPage> LayOutPages(const LayoutSettings& settings, std::string_view body,
                                    const PageTemplate& header, const PageTemplate& footer,
                                    std::string_view source);

// Returns the lines `text` wraps into so that each is at most `width` points
// wide in the given font; a word wider than `width` is broken between
// characters. An empty text gives one empty line.
std::vector<std::string> WrapText(std::string_view text, double width, bool bold, double size);

}  // namespace lotwise
