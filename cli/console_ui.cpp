#include "console_ui.h"

#include <ostream>

#include "ground/lw_error.h"

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

void ConsoleUi::Emit(std::string text, Icon icon) {
  if (capture_ != nullptr) {
    capture_->push_back({std::move(text), icon});
  } else {
    err_ << text << '\n';
  }
}

Answer ConsoleUi::MessageBox(std::string_view text, std::string_view title, Icon icon,
                             Buttons buttons) {
  ++messages_shown_;
  Emit(std::string(title) + ": " + ConsoleText(text), icon);
  if (auto it = answers_by_title_.find(title); it != answers_by_title_.end()) return it->second;
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
  Emit(request.title + ": no file can be picked without a window; cancelled", Icon::kNone);
  return {};
}

std::string ConsoleUi::PickSaveFile(const FileRequest& request) {
  if (save_file_answer_.empty()) return PickFile(request);
  return save_file_answer_;
}

ChkFilesChoice ConsoleUi::ChkFiles(std::string_view caption, std::string_view text, bool) {
  ++chk_files_asked_;
  Emit(std::string(caption) + ": " + ConsoleText(text), Icon::kNone);
  Emit(std::string(caption) + ": answered Ignore", Icon::kNone);
  return ChkFilesChoice::kIgnore;
}

void ConsoleUi::RunModal(DialogForm& form) {
  if (modal_handler_ && modal_handler_(form)) return;
  Emit(std::string(form.Name()) + ": cannot be shown without a window; closed", Icon::kNone);
}

void ConsoleUi::PrintLines(std::string_view title, const std::vector<std::string>& lines) {
  out_ << title << '\n';
  for (const std::string& line : lines) out_ << line << '\n';
}

void ConsoleUi::ShowReport(const ReportDocument& report) { reports_.push_back(report); }

int ConsoleUi::PrintReport(const ReportDocument& report) {
  Emit(report.title + ": no printer can be used without a window", Icon::kNone);
  return err::kNoDefaultPrinter;
}

}  // namespace lotwise
