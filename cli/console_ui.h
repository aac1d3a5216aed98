#pragma once

#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ground/environment.h"
#include "ground/ui_port.h"
#include "reports/report_document.h"

namespace lotwise {

// The UI port of the command-line front: every message goes to the error
// stream as "title: text"; a question takes the answer that --yes gives
// (Yes, OK, Retry) or else the one that changes nothing (No, Cancel); the
// reconciliation dialog is always answered Ignore, pickers are cancelled
// unless a command gave the file, a dialog is filled by the command's
// handler or else reported and closed unseen, reports shown are kept for
// the command to save, and nothing can be printed.
class ConsoleUi : public UiPort {
 public:
  ConsoleUi(std::ostream& out, std::ostream& err, bool assume_yes)
      : out_(out), err_(err), assume_yes_(assume_yes) {}

  Answer MessageBox(std::string_view text, std::string_view title, Icon icon,
                    Buttons buttons) override;
  void SetHelpBarText(std::string_view text) override;
  std::string PickFile(const FileRequest& request) override;
  std::string PickSaveFile(const FileRequest& request) override;
  ChkFilesChoice ChkFiles(std::string_view caption, std::string_view text,
                          bool create_enabled) override;
  void RunModal(DialogForm& form) override;
  void PrintLines(std::string_view title, const std::vector<std::string>& lines) override;
  void ShowReport(const ReportDocument& report) override;
  // There is no printer without a window: answers 20526 (no default printer).
  int PrintReport(const ReportDocument& report) override;

  // Plays the user's part on a modal dialog; returns true iff it handled
  // the dialog (filled it and pressed its buttons).
  using ModalHandler = std::function<bool(DialogForm&)>;
  void SetModalHandler(ModalHandler handler) { modal_handler_ = std::move(handler); }
  const ModalHandler& modal_handler() const { return modal_handler_; }
  // The save-file picker answers this path (empty: cancelled).
  void SetSaveFileAnswer(std::string path) { save_file_answer_ = std::move(path); }
  // Questions titled `title` take `answer` whatever --yes says (a command
  // that decides a question by its own option).
  void SetAnswerFor(std::string title, Answer answer) {
    answers_by_title_[std::move(title)] = answer;
  }
  // The reports shown so far, in order.
  const std::vector<ReportDocument>& reports() const { return reports_; }

  // How many reconciliation questions were answered (all with Ignore).
  int chk_files_asked() const { return chk_files_asked_; }
  // How many messages were shown.
  int messages_shown() const { return messages_shown_; }

  // One line the console shows: a message as "title: text", a dialog closed
  // unseen, or a note of the front itself; with the message's icon.
  struct ShownLine {
    std::string text;
    Icon icon = Icon::kNone;
  };
  // While a capture is set, every line goes there instead of to the error
  // stream, so that a command can tell which of its steps said what and
  // print it in its own words; null prints them again.
  void SetCapture(std::vector<ShownLine>* capture) { capture_ = capture; }
  // A line of the front itself (not one of the program's messages).
  void Note(std::string_view text) { Emit(std::string(text), Icon::kNone); }

 private:
  std::ostream& out_;
  std::ostream& err_;
  bool assume_yes_;
  ModalHandler modal_handler_;
  std::string save_file_answer_;
  std::map<std::string, Answer, std::less<>> answers_by_title_;
  std::vector<ReportDocument> reports_;
  int chk_files_asked_ = 0;
  int messages_shown_ = 0;
  std::vector<ShownLine>* capture_ = nullptr;

  void Emit(std::string text, Icon icon);
};

// The real surroundings, except that the end of the process is only noted:
// the front finishes its report and returns the exit code itself.
class ConsoleEnvironment : public SystemEnvironment {
 public:
  void EndProcess(int exit_code) override {
    end_requested_ = true;
    exit_code_ = exit_code;
  }
  bool end_requested() const { return end_requested_; }
  int exit_code() const { return exit_code_; }

 private:
  bool end_requested_ = false;
  int exit_code_ = 0;
};

}  // namespace lotwise
