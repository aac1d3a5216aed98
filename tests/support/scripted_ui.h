#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ground/ui_port.h"
#include "reports/report_document.h"

namespace lotwise::testing {

// A UiPort that plays a script: each message box, choice dialog, picker or
// modal dialog must be the next one expected, with exactly the expected
// text and title. Anything unexpected fails the running test.
class ScriptedUi : public UiPort {
 public:
  ~ScriptedUi() override;

  // Expects a message with this text and title and answers it.
  ScriptedUi& Expect(std::string text, std::string title, Answer answer = Answer::kOk);
  // As Expect, also checking the icon and the buttons.
  ScriptedUi& Expect(std::string text, std::string title, Icon icon, Buttons buttons,
                     Answer answer = Answer::kOk);
  // Expects dlgChkFiles with this caption and text.
  ScriptedUi& ExpectChkFiles(std::string caption, std::string text, bool create_enabled,
                             ChkFilesChoice choice);
  // Expects a file picker (open or save) and answers with `path` ("" cancels).
  ScriptedUi& ExpectPick(std::string title, std::string path);
  // Expects the modal dialog `name`; `script` plays the user's part on it.
  ScriptedUi& ExpectDialog(std::string name, std::function<void(DialogForm&)> script);

  // Fails the test whenever a question (Yes/No, OK/Cancel…) is asked while
  // `holding_lock` returns true.
  void ForbidQuestionsWhile(std::function<bool()> holding_lock) {
    holding_lock_ = std::move(holding_lock);
  }

  // Fails the test when an expected step did not happen.
  void VerifyDone();
  // True iff every expected step has happened.
  bool Done() const { return steps_.empty(); }

  // What the help bar showed, in order.
  const std::vector<std::string>& help_texts() const { return help_texts_; }
  // Every message shown, "title: text", in order.
  const std::vector<std::string>& shown() const { return shown_; }
  int hourglass_depth() const { return hourglass_depth_; }
  int gauge_percent() const { return gauge_percent_; }
  const std::vector<std::string>& printed() const { return printed_; }
  // The reports shown (destination screen) and printed, in order.
  const std::vector<ReportDocument>& reports_shown() const { return reports_shown_; }
  const std::vector<ReportDocument>& reports_printed() const { return reports_printed_; }
  // What PrintReport answers from now on (0, 20513 cancelled, 20526 no printer).
  void SetPrintResult(int result) { print_result_ = result; }

  Answer MessageBox(std::string_view text, std::string_view title, Icon icon,
                    Buttons buttons) override;
  void SetHelpBarText(std::string_view text) override;
  void StartGauge() override { gauge_percent_ = 0; }
  void SetGauge(int percent) override { gauge_percent_ = percent; }
  void AddGauge(int percent) override { gauge_percent_ += percent; }
  void StopGauge() override { gauge_percent_ = 0; }
  void PushHourglass() override { ++hourglass_depth_; }
  void PopHourglass() override { --hourglass_depth_; }
  std::string PickFile(const FileRequest& request) override;
  std::string PickSaveFile(const FileRequest& request) override;
  ChkFilesChoice ChkFiles(std::string_view caption, std::string_view text,
                          bool create_enabled) override;
  void RunModal(DialogForm& form) override;
  void PrintLines(std::string_view title, const std::vector<std::string>& lines) override;
  void ShowReport(const ReportDocument& report) override;
  int PrintReport(const ReportDocument& report) override;

 private:
  enum class Kind { kMessage, kChkFiles, kPick, kDialog };
  struct Step {
    Kind kind = Kind::kMessage;
    std::string text;   // message text / chk text / dialog name
    std::string title;  // message title / chk caption / picker title
    std::optional<Icon> icon;
    std::optional<Buttons> buttons;
    Answer answer = Answer::kOk;
    bool create_enabled = true;
    ChkFilesChoice choice = ChkFilesChoice::kIgnore;
    std::string path;
    std::function<void(DialogForm&)> script;
  };
  std::optional<Step> Take(Kind kind, const std::string& what);
  std::string Pick(const FileRequest& request);

  std::deque<Step> steps_;
  std::function<bool()> holding_lock_;
  std::vector<std::string> help_texts_;
  std::vector<std::string> shown_;
  std::vector<std::string> printed_;
  std::vector<ReportDocument> reports_shown_;
  std::vector<ReportDocument> reports_printed_;
  int print_result_ = 0;
  int hourglass_depth_ = 0;
  int gauge_percent_ = 0;
};

}  // namespace lotwise::testing
