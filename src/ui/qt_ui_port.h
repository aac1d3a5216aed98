#pragma once

#include <QPointer>
#include <QString>
#include <string>
#include <string_view>
#include <vector>

#include "ground/ui_port.h"
#include "ui/dialog_registry.h"

class QWidget;

namespace lotwise {

class Application;

namespace ui {

class MainWindow;

// Returns Qt's file-dialog filter for `filter`. The pipe form
// "Export Files(*.csv)|*.csv|All Files(*.*)|*.*||" (description, pattern,
// description, pattern, ...) becomes "Export Files (*.csv);;All Files (*)";
// a filter without "|" is Qt's form already and is returned unchanged.
QString QtFileFilter(std::string_view filter);

// The desktop program's port: Qt message boxes, the main window's help bar
// and gauge, the wait cursor, the standard file and print dialogs, and the
// windows of the core's dialog forms.
class QtUiPort : public UiPort {
 public:
  explicit QtUiPort(DialogRegistry registry = AllDialogs());
  ~QtUiPort() override;

  // The program whose dialog forms RunModal shows; set before the first one.
  void Attach(Application& app) { app_ = &app; }
  // The window that holds the help bar and gauge and parents the dialogs;
  // until it exists the help bar's last text is kept for it.
  void SetMainWindow(MainWindow* window);

  Answer MessageBox(std::string_view text, std::string_view title, Icon icon,
                    Buttons buttons) override;
  void SetHelpBarText(std::string_view text) override;
  void ProcessEvents() override;
  void StartGauge() override;
  void SetGauge(int percent) override;
  void AddGauge(int percent) override;
  void StopGauge() override;
  void PushHourglass() override;
  void PopHourglass() override;
  // A request without a filter picks a folder (the data-location dialog's
  // use): the answer is that folder, a separator and the preset file name.
  std::string PickFile(const FileRequest& request) override;
  std::string PickSaveFile(const FileRequest& request) override;
  ChkFilesChoice ChkFiles(std::string_view caption, std::string_view text,
                          bool create_enabled) override;
  // A form without a window tells the user so and leaves the form as it was.
  void RunModal(DialogForm& form) override;
  void ShowReport(const ReportDocument& report) override;
  int PrintReport(const ReportDocument& report) override;
  bool PrintSetup() override;
  void ShowHelp(std::string_view path, std::string_view anchor) override;
  void PrintLines(std::string_view title, const std::vector<std::string>& lines) override;

  // The last text shown on the help bar.
  const std::string& help_text() const { return help_text_; }

 private:
  // The window a new dialog belongs to: the open modal dialog, else the
  // main window, else none.
  QWidget* DialogParent() const;

  DialogRegistry registry_;
  Application* app_ = nullptr;
  QPointer<MainWindow> window_;
  std::string help_text_;
  int gauge_percent_ = 0;
  int hourglass_depth_ = 0;
};

}  // namespace ui
}  // namespace lotwise
