#include "support/scripted_ui.h"

#include <gtest/gtest.h>

namespace lotwise::testing {

namespace {

const char* KindName(int kind) {
  static const char* const names[] = {"message", "dlgChkFiles", "file picker", "dialog"};
  return names[kind];
}

}  // namespace

ScriptedUi::~ScriptedUi() = default;

ScriptedUi& ScriptedUi::Expect(std::string text, std::string title, Answer answer) {
  Step step;
  step.kind = Kind::kMessage;
  step.text = std::move(text);
  step.title = std::move(title);
  step.answer = answer;
  steps_.push_back(std::move(step));
  return *this;
}

ScriptedUi& ScriptedUi::Expect(std::string text, std::string title, Icon icon, Buttons buttons,
                               Answer answer) {
  Step step;
  step.kind = Kind::kMessage;
  step.text = std::move(text);
  step.title = std::move(title);
  step.icon = icon;
  step.buttons = buttons;
  step.answer = answer;
  steps_.push_back(std::move(step));
  return *this;
}

ScriptedUi& ScriptedUi::ExpectChkFiles(std::string caption, std::string text, bool create_enabled,
                                       ChkFilesChoice choice) {
  Step step;
  step.kind = Kind::kChkFiles;
  step.text = std::move(text);
  step.title = std::move(caption);
  step.create_enabled = create_enabled;
  step.choice = choice;
  steps_.push_back(std::move(step));
  return *this;
}

ScriptedUi& ScriptedUi::ExpectPick(std::string title, std::string path) {
  Step step;
  step.kind = Kind::kPick;
  step.text = "";
  step.title = std::move(title);
  step.path = std::move(path);
  steps_.push_back(std::move(step));
  return *this;
}

ScriptedUi& ScriptedUi::ExpectDialog(std::string name, std::function<void(DialogForm&)> script) {
  Step step;
  step.kind = Kind::kDialog;
  step.text = std::move(name);
  step.title = "";
  step.script = std::move(script);
  steps_.push_back(std::move(step));
  return *this;
}

void ScriptedUi::VerifyDone() {
  for (const Step& step : steps_) {
    ADD_FAILURE() << "expected " << KindName(static_cast<int>(step.kind)) << " never came: title \""
                  << step.title << "\", text \"" << step.text << "\"";
  }
  steps_.clear();
}

std::optional<ScriptedUi::Step> ScriptedUi::Take(Kind kind, const std::string& what) {
  if (steps_.empty()) {
    ADD_FAILURE() << "unexpected " << KindName(static_cast<int>(kind)) << ": " << what;
    return std::nullopt;
  }
  if (steps_.front().kind != kind) {
    ADD_FAILURE() << "expected " << KindName(static_cast<int>(steps_.front().kind)) << " \""
                  << steps_.front().title << "\" but got " << KindName(static_cast<int>(kind))
                  << ": " << what;
    return std::nullopt;
  }
  Step step = std::move(steps_.front());
  steps_.pop_front();
  return step;
}

Answer ScriptedUi::MessageBox(std::string_view text, std::string_view title, Icon icon,
                              Buttons buttons) {
  shown_.push_back(std::string(title) + ": " + std::string(text));
  if (buttons != Buttons::kOk && holding_lock_ && holding_lock_()) {
    ADD_FAILURE() << "question asked inside a unit of work: " << title << ": " << text;
  }
  auto step =
      Take(Kind::kMessage, "\"" + std::string(title) + "\" / \"" + std::string(text) + "\"");
  // Without a script, the answer that changes the least.
  if (!step)
    return buttons == Buttons::kYesNo || buttons == Buttons::kYesNoCancel ? Answer::kNo
                                                                          : Answer::kCancel;
  EXPECT_EQ(step->title, title);
  EXPECT_EQ(step->text, text);
  if (step->icon) {
    EXPECT_EQ(static_cast<int>(*step->icon), static_cast<int>(icon)) << step->title;
  }
  if (step->buttons) {
    EXPECT_EQ(static_cast<int>(*step->buttons), static_cast<int>(buttons)) << step->title;
  }
  return step->answer;
}

void ScriptedUi::SetHelpBarText(std::string_view text) { help_texts_.emplace_back(text); }

std::string ScriptedUi::Pick(const FileRequest& request) {
  auto step = Take(Kind::kPick, request.title);
  if (!step) return {};
  EXPECT_EQ(step->title, request.title);
  return step->path;
}

std::string ScriptedUi::PickFile(const FileRequest& request) { return Pick(request); }

std::string ScriptedUi::PickSaveFile(const FileRequest& request) { return Pick(request); }

ChkFilesChoice ScriptedUi::ChkFiles(std::string_view caption, std::string_view text,
                                    bool create_enabled) {
  shown_.push_back(std::string(caption) + ": " + std::string(text));
  auto step = Take(Kind::kChkFiles, std::string(caption) + " / " + std::string(text));
  if (!step) return ChkFilesChoice::kIgnore;
  EXPECT_EQ(step->title, caption);
  EXPECT_EQ(step->text, text);
  EXPECT_EQ(step->create_enabled, create_enabled) << caption;
  return step->choice;
}

void ScriptedUi::RunModal(DialogForm& form) {
  auto step = Take(Kind::kDialog, std::string(form.Name()));
  if (!step) return;
  EXPECT_EQ(step->text, form.Name());
  if (step->script) step->script(form);
}

void ScriptedUi::PrintLines(std::string_view title, const std::vector<std::string>& lines) {
  printed_.push_back(std::string(title));
  printed_.insert(printed_.end(), lines.begin(), lines.end());
}

void ScriptedUi::ShowReport(const ReportDocument& report) { reports_shown_.push_back(report); }

int ScriptedUi::PrintReport(const ReportDocument& report) {
  if (print_result_ == 0) reports_printed_.push_back(report);
  return print_result_;
}

}  // namespace lotwise::testing
