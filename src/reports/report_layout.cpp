#include "reports/report_layout.h"

#include "ground/lw_error.h"
#include "reports/pdf_writer.h"

namespace lotwise {

namespace {

// Room between a cell's text and its column's edges.
constexpr double kCellPad = 2;
// Line height as a multiple of the font size.
constexpr double kLeading = 1.35;

// What one layout command puts on the page: texts and rules placed from the
// top of its own band, and the band's height.
struct Band {
  std::vector<ReportText> texts;
  std::vector<ReportRule> rules;
  double height = 0;
  bool is_gap = false;
};

// A body command: a band, or the control commands "keep" and "page".
struct BodyItem {
  enum class Kind { kBand, kKeep, kPage } kind = Kind::kBand;
  Band band;
  int keep = 0;
};

[[noreturn]] void Fail(std::string_view source, const std::string& what) {
  throw LwError(err::kUnexpected, "Report definition " + std::string(source) + ": " + what);
}

std::string Unescape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    out += text[i];
  }
  return out;
}

// Splits at the "|" that are not escaped, unescaping each piece.
std::vector<std::string> SplitCells(std::string_view text) {
  std::vector<std::string> cells(1);
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) {
      cells.back() += text[++i];
    } else if (text[i] == '|') {
      cells.emplace_back();
    } else {
      cells.back() += text[i];
    }
  }
  return cells;
}

std::string_view Trim(std::string_view text) {
  size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return {};
  size_t end = text.find_last_not_of(" \t\r");
  return text.substr(begin, end - begin + 1);
}

class Layout {
 public:
  Layout(const LayoutSettings& settings, std::string_view source)
      : s_(settings),
        source_(source),
        left_(settings.margin_left),
        width_(settings.page_width - settings.margin_left - settings.margin_right) {}

  // Turns expanded template text into body items.
  std::vector<BodyItem> Parse(std::string_view expanded) const {
    std::vector<BodyItem> items;
    size_t start = 0;
    while (start <= expanded.size()) {
      size_t end = expanded.find('\n', start);
      if (end == std::string_view::npos) end = expanded.size();
      std::string_view line = Trim(expanded.substr(start, end - start));
      start = end + 1;
      if (line.empty()) continue;
      items.push_back(Command(line));
    }
    return items;
  }

  // Lays out a page template's commands from `top`; returns their bands'
  // total height. "keep" and "page" mean nothing there and are passed over.
  double Place(const std::vector<BodyItem>& items, double top, ReportPage* page) const {
    double y = top;
    for (const BodyItem& item : items) {
      if (item.kind != BodyItem::Kind::kBand) continue;
      if (page) Put(item.band, y, *page);
      y += item.band.height;
    }
    return y - top;
  }

  static void Put(const Band& band, double top, ReportPage& page) {
    for (ReportText text : band.texts) {
      text.y += top;
      page.texts.push_back(std::move(text));
    }
    for (ReportRule rule : band.rules) {
      rule.y1 += top;
      rule.y2 += top;
      page.rules.push_back(rule);
    }
  }

 private:
  BodyItem Command(std::string_view line) const {
    size_t blank = line.find(' ');
    std::string_view word = line.substr(0, blank);
    std::string_view rest =
        blank == std::string_view::npos ? std::string_view{} : line.substr(blank + 1);
    double f = s_.font_size;
    BodyItem item;
    if (word == "title") {
      item.band = Lines(Unescape(rest), f + 5, true, ReportText::Align::kCenter, 1.4);
    } else if (word == "center" || word == "center-bold") {
      item.band = Lines(Unescape(rest), f, word == "center-bold", ReportText::Align::kCenter);
    } else if (word == "text" || word == "bold") {
      item.band = Lines(Unescape(rest), f, word == "bold", ReportText::Align::kLeft);
    } else if (word == "small") {
      item.band = Lines(Unescape(rest), f - 2, false, ReportText::Align::kLeft);
    } else if (word == "split") {
      item.band = Split(rest, f - 1);
    } else if (word == "heading") {
      item.band = Heading(Columns(Trim(rest), line));
    } else if (word == "row" || word == "bold-row") {
      size_t name_end = rest.find(' ');
      std::string_view set = rest.substr(0, name_end);
      std::string_view cells =
          name_end == std::string_view::npos ? std::string_view{} : rest.substr(name_end + 1);
      item.band = Row(Columns(set, line), SplitCells(cells), word == "bold-row", line);
    } else if (word == "rule") {
      item.band = Rule(Trim(rest), line);
    } else if (word == "gap") {
      item.band.height = rest.empty() ? f * 0.7 : Number(Trim(rest), line);
      item.band.is_gap = true;
    } else if (word == "keep") {
      item.kind = BodyItem::Kind::kKeep;
      item.keep = static_cast<int>(Number(Trim(rest), line));
    } else if (word == "page") {
      item.kind = BodyItem::Kind::kPage;
    } else {
      Fail(source_, "unknown layout command \"" + std::string(line) + "\"");
    }
    return item;
  }

  double Number(std::string_view text, std::string_view line) const {
    try {
      size_t used = 0;
      double value = std::stod(std::string(text), &used);
      if (used == text.size() && value >= 0) return value;
    } catch (const std::exception&) {
    }
    Fail(source_, "a number is missing in \"" + std::string(line) + "\"");
  }

  const std::vector<LayoutColumn>& Columns(std::string_view name, std::string_view line) const {
    auto found = s_.column_sets.find(name);
    if (found == s_.column_sets.end()) {
      Fail(source_, "unknown column set in \"" + std::string(line) + "\"");
    }
    return found->second;
  }

  static double Baseline(double size) { return size * 1.05; }

  Band Lines(const std::string& text, double size, bool bold, ReportText::Align align,
             double leading = kLeading) const {
    Band band;
    for (std::string& piece : WrapText(text, width_, bold, size)) {
      band.texts.push_back(
          {left_, band.height + Baseline(size), width_, std::move(piece), align, bold, size});
      band.height += size * leading;
    }
    return band;
  }

  Band Split(std::string_view rest, double size) const {
    std::vector<std::string> parts = SplitCells(rest);
    parts.resize(3);
    const ReportText::Align aligns[3] = {ReportText::Align::kLeft, ReportText::Align::kCenter,
                                         ReportText::Align::kRight};
    Band band;
    for (int i = 0; i < 3; ++i) {
      band.texts.push_back({left_, Baseline(size), width_, parts[i], aligns[i], false, size});
    }
    band.height = size * kLeading;
    return band;
  }

  Band Heading(const std::vector<LayoutColumn>& columns) const {
    std::vector<std::string> labels;
    for (const LayoutColumn& column : columns) labels.push_back(column.label);
    Band band = Cells(columns, labels, true);
    band.height += 2;
    band.rules.push_back({left_, band.height, left_ + Span(columns), band.height, 0.75});
    band.height += 3;
    return band;
  }

  Band Row(const std::vector<LayoutColumn>& columns, const std::vector<std::string>& cells,
           bool bold, std::string_view line) const {
    if (cells.size() > columns.size()) {
      Fail(source_, "more cells than columns in \"" + std::string(line) + "\"");
    }
    return Cells(columns, cells, bold);
  }

  Band Cells(const std::vector<LayoutColumn>& columns, const std::vector<std::string>& cells,
             bool bold) const {
    Band band;
    double size = s_.font_size;
    double x = left_;
    size_t lines = 1;
    for (size_t i = 0; i < columns.size() && i < cells.size(); ++i) {
      const LayoutColumn& column = columns[i];
      double inner = column.width - 2 * kCellPad;
      // Amounts never wrap: a number cut in two would read as two numbers.
      std::vector<std::string> pieces = column.align == ReportText::Align::kRight
                                            ? std::vector<std::string>{cells[i]}
                                            : WrapText(cells[i], inner, bold, size);
      lines = std::max(lines, pieces.size());
      for (size_t k = 0; k < pieces.size(); ++k) {
        band.texts.push_back({x + kCellPad, Baseline(size) + k * size * kLeading, inner,
                              std::move(pieces[k]), column.align, bold, size});
      }
      x += column.width;
    }
    band.height = lines * size * kLeading;
    return band;
  }

  static double Span(const std::vector<LayoutColumn>& columns) {
    double span = 0;
    for (const LayoutColumn& column : columns) span += column.width;
    return span;
  }

  Band Rule(std::string_view rest, std::string_view line) const {
    Band band;
    band.height = s_.font_size * 0.5;
    double y = band.height / 2;
    if (rest.empty()) {
      band.rules.push_back({left_, y, left_ + width_, y, 0.5});
      return band;
    }
    size_t name_end = rest.find(' ');
    const std::vector<LayoutColumn>& columns = Columns(rest.substr(0, name_end), line);
    std::string_view ids =
        name_end == std::string_view::npos ? std::string_view{} : rest.substr(name_end + 1);
    size_t start = 0;
    while (start < ids.size()) {
      size_t end = ids.find(' ', start);
      if (end == std::string_view::npos) end = ids.size();
      std::string_view id = ids.substr(start, end - start);
      start = end + 1;
      if (id.empty()) continue;
      double x = left_;
      bool found = false;
      for (const LayoutColumn& column : columns) {
        if (column.id == id) {
          band.rules.push_back({x + kCellPad, y, x + column.width - kCellPad, y, 0.5});
          found = true;
          break;
        }
        x += column.width;
      }
      if (!found) Fail(source_, "unknown column in \"" + std::string(line) + "\"");
    }
    return band;
  }

  const LayoutSettings& s_;
  std::string_view source_;
  double left_;
  double width_;
};

}  // namespace

std::string EscapeLayoutValue(std::string_view value) {
  std::string out;
  out.reserve(value.size());
  for (char c : value) {
    if (c == '\\' || c == '|') {
      out += '\\';
      out += c;
    } else if (c == '\n' || c == '\r' || c == '\t') {
      out += ' ';
    } else {
      out += c;
    }
  }
  return out;
}

std::vector<std::string> WrapText(std::string_view text, double width, bool bold, double size) {
  std::vector<std::string> lines;
  if (MeasureText(text, bold, size) <= width) return {std::string(text)};
  std::string line;
  auto fits = [&](const std::string& candidate) {
    return MeasureText(candidate, bold, size) <= width;
  };
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(' ', start);
    if (end == std::string_view::npos) end = text.size();
    std::string word(text.substr(start, end - start));
    start = end + 1;
    if (word.empty()) continue;
    std::string candidate = line.empty() ? word : line + " " + word;
    if (fits(candidate)) {
      line = std::move(candidate);
      continue;
    }
    if (!line.empty()) lines.push_back(std::move(line));
    line.clear();
    // A word wider than the line is broken between characters (never
    // inside a UTF-8 sequence).
    while (!fits(word)) {
      size_t cut = word.size();
      while (cut > 1 && !fits(word.substr(0, cut))) {
        do {
          --cut;
        } while (cut > 1 && (static_cast<unsigned char>(word[cut]) & 0xC0) == 0x80);
      }
      lines.push_back(word.substr(0, cut));
      word.erase(0, cut);
    }
    line = std::move(word);
  }
  if (!line.empty() || lines.empty()) lines.push_back(std::move(line));
  return lines;
}

std::vector<ReportPage> LayOutPages(const LayoutSettings& settings, std::string_view body,
                                    const PageTemplate& header, const PageTemplate& footer,
                                    std::string_view source) {
  Layout layout(settings, source);
  // The page templates are measured once; their height does not depend on
  // the page number.
  double header_height = layout.Place(layout.Parse(header(1, 1)), 0, nullptr);
  double footer_height = layout.Place(layout.Parse(footer(1, 1)), 0, nullptr);
  double body_top = settings.margin_top + header_height;
  double body_bottom = settings.page_height - settings.margin_bottom - footer_height;
  if (body_bottom - body_top < settings.font_size * 3) {
    Fail(source, "the page header and footer leave no room for the report");
  }
  double room = body_bottom - body_top;

  std::vector<BodyItem> items = layout.Parse(body);
  // Each page's bands with their tops.
  std::vector<std::vector<std::pair<const Band*, double>>> placed(1);
  double y = 0;
  auto new_page = [&] {
    placed.emplace_back();
    y = 0;
  };
  for (size_t i = 0; i < items.size(); ++i) {
    const BodyItem& item = items[i];
    if (item.kind == BodyItem::Kind::kPage) {
      if (!placed.back().empty()) new_page();
      continue;
    }
    if (item.kind == BodyItem::Kind::kKeep) {
      double group = 0;
      int taken = 0;
      for (size_t k = i + 1; k < items.size() && taken < item.keep; ++k) {
        if (items[k].kind == BodyItem::Kind::kPage) break;
        if (items[k].kind != BodyItem::Kind::kBand) continue;
        group += items[k].band.height;
        ++taken;
      }
      if (!placed.back().empty() && y + group > room) new_page();
      continue;
    }
    const Band& band = item.band;
    if (band.is_gap && placed.back().empty()) continue;
    if (!placed.back().empty() && y + band.height > room) {
      new_page();
      if (band.is_gap) continue;
    }
    placed.back().emplace_back(&band, y);
    y += band.height;
  }

  int pages = static_cast<int>(placed.size());
  std::vector<ReportPage> result(placed.size());
  for (int p = 0; p < pages; ++p) {
    ReportPage& page = result[p];
    layout.Place(layout.Parse(header(p + 1, pages)), settings.margin_top, &page);
    for (const auto& [band, top] : placed[p]) Layout::Put(*band, body_top + top, page);
    layout.Place(layout.Parse(footer(p + 1, pages)), body_bottom, &page);
  }
  return result;
}

}  // namespace lotwise
