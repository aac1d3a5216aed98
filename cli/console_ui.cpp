#include "console_ui.h"

#include <ostream>

#include "app/lw_error.h"

namespace lotwise {

namespace {

// Line ends inside a message are shown as plain line ends on the console.
std::string ConsoleText(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    result += text[i];
  }
  return result;
}

}  // namespace

Answer ConsoleUi::MessageBox(std::string_view text, std::string_view title, Icon, Buttons buttons) {
  ++messages_shown_;
  err_ << title << ": " << ConsoleText(text) << '\n';
  switch (buttons) {
    case Buttons::kOk:
      return Answer::kOk;
    case Buttons::kOkCancel:
      return assume_yes_ ? Answer::kOk : Answer::kCancel;
    case Buttons::kYesNo:
    case Buttons::kYesNoCancel:
      return assume_yes_ ? Answer::kYes : Answer::kNo;
    case Buttons::kRetryCancel:
      return assume_yes_ ? Answer::kRetry : Answer::kCancel;
  }
  return Answer::kCancel;
}

void ConsoleUi::SetHelpBarText(std::string_view) {}

std::string ConsoleUi::PickFile(const FileRequest& request) {
  err_ << request.title << ": no file can be picked without a window; cancelled\n";
  return {};
}

std::string ConsoleUi::PickSaveFile(const FileRequest& request) {
  if (save_file_answer_.empty()) return PickFile(request);
  return save_file_answer_;
}

ChkFilesChoice ConsoleUi::ChkFiles(std::string_view caption, std::string_view text, bool) {
  ++chk_files_asked_;
  err_ << caption << ": " << ConsoleText(text) << '\n';
  err_ << caption << ": answered Ignore\n";
  return ChkFilesChoice::kIgnore;
}

void ConsoleUi::RunModal(DialogForm& form) {
  if (modal_handler_ && modal_handler_(form)) return;
  err_ << form.Name() << ": cannot be shown without a window; closed\n";
}

void ConsoleUi::PrintLines(std::string_view title, const std::vector<std::string>& lines) {
  out_ << title << '\n';
  for (const std::string& line : lines) out_ << line << '\n';
}

void ConsoleUi::ShowReport(const ReportDocument& report) { reports_.push_back(report); }

int ConsoleUi::PrintReport(const ReportDocument& report) {
  err_ << report.title << ": no printer can be used without a window\n";
  return err::kNoDefaultPrinter;
}

}  // namespace lotwise
