#include "report_output.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <ostream>
#include <utility>

#include "data/database.h"
#include "ground/lw_error.h"
#include "ground/value_helpers.h"
#include "lots/sell_method.h"
#include "lots/sell_shares.h"
#include "report_json.h"
#include "reports/pdf_writer.h"

namespace lotwise::cli {

const std::vector<std::string> kBasisTables = {"Usage",     "BA Info",  "BA Secs",
                                               "BA Blocks", "BA Trans", "Sched D"};
const std::vector<std::string> kTransListTables = {"Usage", "TL Info", "TL Port", "TL Sec",
                                                   "TL Trans"};
const std::vector<std::string> kTaxpayerListTables = {"Usage", "Client Report", "Portfolio Report"};
const std::vector<std::string> kSecurityListTables = {"Usage", "Client Report", "Sec List Report"};

namespace {

constexpr const char* kExportQuestionTitle = "Schedule D Export File";

// Console text sets each text at the column of its place on the page: a
// character stands for about the advance of a digit at the reports' 9-point
// size, so that dates and amounts fit their columns.
constexpr double kPointsPerChar = 5.0;
// Texts whose baselines are closer than this share a line.
constexpr double kSameBaseline = 0.01;

bool SameNameIgnoringCase(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
    return std::tolower(x) == std::tolower(y);
  });
}

}  // namespace

SellMethod SellMethodFromName(const std::string& name) {
  static const std::array<std::pair<const char*, SellMethod>, 4> kNames{{
      {"FIFO", SellMethod::kFifo},
      {"Specific", SellMethod::kSpecificId},
      {"AvgSingle", SellMethod::kAvgSingle},
      {"AvgDouble", SellMethod::kAvgDouble},
  }};
  for (const auto& [text, code] : kNames) {
    if (SameNameIgnoringCase(name, text)) return code;
  }
  return SellMethod::kNotSelected;
}

bool RunBasisWithoutWindow(Session& session, const BasisReportRequest& request,
                           SellMethod unsold_method, const std::string& csv_path) {
  ConsoleUi& ui = session.ui;
  Application& app = session.app;
  ui.SetAnswerFor(kExportQuestionTitle, csv_path.empty() ? Answer::kNo : Answer::kYes);
  ui.SetSaveFileAnswer(csv_path);
  const ConsoleUi::ModalHandler previous = ui.modal_handler();
  ui.SetModalHandler([&app, &ui, &previous, unsold_method](DialogForm& dialog) {
    auto* form = dynamic_cast<MethodForm*>(&dialog);
    if (form == nullptr) return previous && previous(dialog);
    if (unsold_method == SellMethod::kNotSelected) {
      ui.Note(form->message_line +
              ": no sell method chosen yet; left out of the report (see --unsold-method)");
      Method_Cancel(app, *form);
      return true;
    }
    form->method = unsold_method;
    form->option1 = true;
    Method_OK(app, *form);
    return true;
  });
  bool export_made = false;
  const bool ran = RunBasisSchedDReport(app, request, &export_made);
  ui.SetModalHandler(previous);
  ui.SetSaveFileAnswer({});
  if (ran && !csv_path.empty() && !export_made) {
    ui.Note("the Schedule D export file was not written: " + csv_path);
    return false;
  }
  return ran;
}

bool WriteTablesJson(Session& session, const std::vector<std::string>& tables,
                     const std::string& path) {
  std::string json;
  try {
    auto report_db = Database::Open(session.app.report_db_path, Database::Mode::kReadOnly);
    json = ReportTablesJson(*report_db, tables);
  } catch (const LwError& error) {
    std::cerr << "cannot read the report tables for " << path << ": " << error.text() << '\n';
    return false;
  }
  errno = 0;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << json;
  out.close();
  if (!out) {
    std::cerr << "cannot write " << path;
    if (errno != 0) std::cerr << ": " << std::strerror(errno);
    std::cerr << '\n';
    return false;
  }
  return true;
}

bool WriteDocumentsPdf(const std::vector<ReportDocument>& documents, const std::string& path) {
  try {
    WriteReportPdf(documents, path);
    return true;
  } catch (const LwError& error) {
    std::cerr << "cannot write " << path << ": " << error.text() << '\n';
    return false;
  }
}

std::string ColumnText(const ReportDocument& document) {
  std::vector<const ReportText*> texts;
  double left = document.page_width;
  for (const ReportPage& page : document.pages) {
    for (const ReportText& text : page.texts) {
      if (!text.text.empty()) left = std::min(left, text.x);
    }
  }
  std::string out;
  for (size_t p = 0; p < document.pages.size(); ++p) {
    if (p > 0) out += '\f';
    texts.clear();
    for (const ReportText& text : document.pages[p].texts) {
      if (!text.text.empty()) texts.push_back(&text);
    }
    std::stable_sort(texts.begin(), texts.end(), [](const ReportText* a, const ReportText* b) {
      if (std::abs(a->y - b->y) >= kSameBaseline) return a->y < b->y;
      return a->x < b->x;
    });
    size_t used = 0;  // characters on the line so far
    for (size_t i = 0; i < texts.size(); ++i) {
      const ReportText& text = *texts[i];
      if (i > 0 && std::abs(text.y - texts[i - 1]->y) >= kSameBaseline) {
        out += '\n';
        used = 0;
      }
      const auto length = static_cast<double>(CharacterCount(text.text));
      double start = (text.x - left) / kPointsPerChar;
      if (text.align == ReportText::Align::kRight) {
        start = (text.x + text.width - left) / kPointsPerChar - length;
      } else if (text.align == ReportText::Align::kCenter) {
        start = (text.x + text.width / 2 - left) / kPointsPerChar - length / 2;
      }
      // A text wider than its cell pushes the next one on, a blank apart.
      const size_t first = used == 0 ? 0 : used + 1;
      const size_t column = std::max(first, static_cast<size_t>(std::max(0.0, std::round(start))));
      out.append(column - used, ' ');
      out += text.text;
      used = column + CharacterCount(text.text);
    }
    if (!texts.empty()) out += '\n';
  }
  return out;
}

void PrintDocuments(std::ostream& out, const std::vector<ReportDocument>& documents) {
  for (size_t i = 0; i < documents.size(); ++i) {
    if (i > 0) out << '\f';
    out << ColumnText(documents[i]);
  }
}

std::vector<ReportDocument> DocumentsSince(const Session& session, size_t first) {
  const std::vector<ReportDocument>& shown = session.ui.reports();
  if (first >= shown.size()) return {};
  return {shown.begin() + static_cast<std::ptrdiff_t>(first), shown.end()};
}

}  // namespace lotwise::cli
