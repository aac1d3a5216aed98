#include "reports/report_document.h"

#include <algorithm>
#include <cmath>

namespace lotwise {

namespace {

// Baselines closer than this are one line.
constexpr double kSameLine = 0.01;

}  // namespace

std::string ReportDocument::PlainText() const {
  std::string out;
  for (size_t p = 0; p < pages.size(); ++p) {
    if (p > 0) out += '\f';
    std::vector<const ReportText*> texts;
    for (const ReportText& text : pages[p].texts) {
      if (!text.text.empty()) texts.push_back(&text);
    }
    std::stable_sort(texts.begin(), texts.end(), [](const ReportText* a, const ReportText* b) {
      if (std::abs(a->y - b->y) >= kSameLine) return a->y < b->y;
      return a->x < b->x;
    });
    for (size_t i = 0; i < texts.size(); ++i) {
      bool same_line = i > 0 && std::abs(texts[i]->y - texts[i - 1]->y) < kSameLine;
      if (i > 0) out += same_line ? ' ' : '\n';
      out += texts[i]->text;
    }
    if (!texts.empty()) out += '\n';
  }
  return out;
}

}  // namespace lotwise
