#include "reports/sched_d_export.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>

#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "ground/number_text.h"
#include "ground/paths.h"
#include "ground/ui_port.h"
#include "ground/value_helpers.h"
#include "reports/report_db.h"

namespace lotwise {

namespace {

constexpr const char* kInfoTitle = "Export File Information";
constexpr const char* kLineEnd = "\r\n";

enum class ExportOutcome { kWritten, kEmpty, kFailed };

std::string TrimRight(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

// Tax software reads the fields as quoted CSV, so a quote inside a value is
// doubled to keep the line's columns intact.
std::string Quoted(std::string_view value) {
  std::string field = "\"";
  for (char c : value) {
    if (c == '"') field += '"';
    field += c;
  }
  field += '"';
  return field;
}

std::string CsvLine(const std::array<std::string, 5>& fields) {
  std::string line;
  for (const std::string& field : fields) {
    if (!line.empty()) line += ',';
    line += Quoted(TrimRight(field));
  }
  return line + kLineEnd;
}

std::string DateField(const std::optional<Date>& date) {
  return date ? date->ToString() : std::string();
}

std::string MoneyField(const std::optional<Currency>& money) {
  return money ? money->ToString() : std::string();
}

// The shares sold and what they are: the name, else the symbol.
std::string Description(const SchedDExportRow& row) {
  std::string shares = row.shares ? NumberText(*row.shares) : std::string();
  std::string what = TrimRight(row.sec_name);
  if (what.empty()) what = row.sec_symbol;
  return shares + " " + what;
}

LwError FileAccessError(const std::string& file_name) {
  return LwError(err::kPathFileAccess, "Path/File access error: " + file_name);
}

void WriteOrFail(const std::string& file_name, std::ios::openmode mode, const std::string& text) {
  std::ofstream out(file_name, std::ios::binary | mode);
  if (!out) throw FileAccessError(file_name);
  out << text;
  out.close();
  if (!out) throw FileAccessError(file_name);
}

ExportOutcome WriteExportRecords(Application& app, const std::string& file_name,
                                 const std::string& report_db_path) {
  return Trap(app, "AddExportRecords", ExportOutcome::kFailed, [&] {
    auto report = Database::Open(report_db_path, Database::Mode::kReadOnly);
    std::string lines;
    for (const SchedDExportRow& row : ReadSchedDExport(*report)) {
      lines += CsvLine({Description(row), DateField(row.date_acqrd), DateField(row.date_sold),
                        MoneyField(row.sale_price), MoneyField(row.cost)});
    }
    if (lines.empty()) return ExportOutcome::kEmpty;
    WriteOrFail(file_name, std::ios::app, lines);
    return ExportOutcome::kWritten;
  });
}

std::string ClosingMessage(const std::string& file_name) {
  return "The export file, " + file_name +
         ", is a csv file. You may be able to import the csv directly into your tax software "
         "program. If your tax software program requires an Excel spreadsheet file (which ends in "
         ".xls), open " +
         file_name +
         " in Excel. From Excel you can create an .xls file.\r\n\r\nThe first row of the export "
         "file contains column labels.  Do not export that row into your tax preparation "
         "software!";
}

}  // namespace

bool CreateSchDExportFile(Application& app) {
  return Trap(app, "CreateSchDExportFile", false, [&] {
    UiPort& ui = app.ui();
    const Answer answer = ui.MessageBox(
        "This program can create a file that can be used to export the Schedule D information "
        "from the Lotwise into the better tax software programs. We recommend choosing Detailed "
        "as the Report Type in the Schedule D Options screen.\r\n\r\nDo you want to create a "
        "Schedule D export file?",
        "Schedule D Export File", Icon::kQuestion, Buttons::kYesNo);
    if (answer != Answer::kYes) return false;

    const std::string file_name = GetSchDExportFilename(app, app.prefs.exp_path);
    // Without a name there is nothing to write and nothing to tell.
    if (file_name.empty()) return false;
    if (!MakeExportHeader(app, file_name)) return false;

    switch (WriteExportRecords(app, file_name, app.report_db_path)) {
      case ExportOutcome::kWritten:
        ui.MessageBox(ClosingMessage(file_name), kInfoTitle, Icon::kInformation, Buttons::kOk);
        break;
      case ExportOutcome::kEmpty:
        ui.MessageBox("The Schedule D information was empty.", kInfoTitle, Icon::kInformation,
                      Buttons::kOk);
        break;
      case ExportOutcome::kFailed:
        // Already reported; an "empty" message would mislead.
        break;
    }
    return true;
  });
}

std::string GetSchDExportFilename(Application& app, const std::string& initial_folder) {
  return Trap(app, "GetSchDExportFilename", std::string(), [&] {
    FileRequest request;
    request.title = "Select An Export Filename";
    request.file_name = "Untitled.csv";
    request.initial_folder = initial_folder;
    request.filter = "Export Files(*.csv)|*.csv|All Files(*.*)|*.*||";
    std::string chosen = app.ui().PickSaveFile(request);
    if (chosen.empty()) return chosen;
    const std::string folder = chosen.substr(0, chosen.size() - GetFileNameFromPath(chosen).size());
    if (!folder.empty()) app.prefs.exp_path = WithTrailingSeparator(folder);
    return chosen;
  });
}

bool MakeExportHeader(Application& app, const std::string& file_name) {
  return Trap(app, "MakeExportHeader", false, [&] {
    // Removed first so that an old export is replaced, never appended to.
    std::filesystem::remove(file_name);
    WriteOrFail(file_name, std::ios::trunc,
                CsvLine({"DESC", "DATE ACQUIRED", "DATE SOLD", "SALES PRICE", "COST"}));
    return true;
  });
}

bool AddExportRecords(Application& app, const std::string& file_name,
                      const std::string& report_db_path) {
  return WriteExportRecords(app, file_name, report_db_path) == ExportOutcome::kWritten;
}

}  // namespace lotwise
