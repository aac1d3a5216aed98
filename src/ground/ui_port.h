#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lotwise {

struct ReportDocument;

enum class Icon { kNone, kCritical, kQuestion, kExclamation, kInformation };
enum class Buttons { kOk, kOkCancel, kYesNo, kYesNoCancel, kRetryCancel };
enum class Answer { kOk, kCancel, kYes, kNo, kRetry };

// The three choices of the reconciliation dialog dlgChkFiles; the values are
// the program-wide result codes the dialog leaves behind.
enum class ChkFilesChoice { kDelete = 100, kCreate = 101, kIgnore = 102 };

// A file picker's request: the dialog's title, a preset file name, the
// folder to start in and the file-type filter ("CSV Files (*.csv)").
struct FileRequest {
  std::string title;
  std::string file_name;
  std::string initial_folder;
  std::string filter;
};

// A dialog's form model: its caption and fields live in the core together
// with its Show/Check/_OK procedures; the port only shows it and lets the
// user fill it in and press its buttons, which call those procedures.
class DialogForm {
 public:
  virtual ~DialogForm() = default;
  // The dialog's name ("dlgNewModClient", "dlgFileLoc").
  virtual std::string_view Name() const = 0;

  // The window's title; a dialog with several modes tells them apart by it
  // ("New Taxpayer", "Modify Taxpayer").
  std::string caption;
  // Set when the dialog unloads: an operation that finished, or Cancel. The
  // window closes when it sees it.
  bool closed = false;
  // The control that takes the focus next when a procedure moves it
  // ("txtPortName"); empty for none. The window clears it once applied.
  std::string focus;
};

// Every word the program says to its user goes through this port: message
// boxes and questions, help-bar text, the gauge, the hourglass and the
// pickers. The desktop program implements it with windows; tests script it.
class UiPort {
 public:
  virtual ~UiPort() = default;

  // Shows a modal message and returns the button pressed. A message with
  // only an OK button returns kOk.
  virtual Answer MessageBox(std::string_view text, std::string_view title, Icon icon,
                            Buttons buttons) = 0;

  // The main window's help bar (status line) text.
  virtual void SetHelpBarText(std::string_view text) = 0;

  // Lets pending window events run during long operations.
  virtual void ProcessEvents() {}

  // The help-bar progress gauge: start at 0, set, add, stop and hide.
  virtual void StartGauge() {}
  virtual void SetGauge(int percent) { (void)percent; }
  virtual void AddGauge(int percent) { (void)percent; }
  virtual void StopGauge() {}

  // Hourglass pointer on/off; use the HourglassGuard below rather than these.
  virtual void PushHourglass() {}
  virtual void PopHourglass() {}

  // The open-file dialog used to pick a folder; returns the chosen full path,
  // empty on cancel.
  virtual std::string PickFile(const FileRequest& request) = 0;
  // The save-file dialog; returns the chosen full path, empty on cancel.
  virtual std::string PickSaveFile(const FileRequest& request) = 0;

  // dlgChkFiles: shows `text` under `caption` with Delete, Create and Ignore;
  // Create is disabled when `create_enabled` is false.
  virtual ChkFilesChoice ChkFiles(std::string_view caption, std::string_view text,
                                  bool create_enabled) = 0;

  // Shows a dialog modally until the user closes it.
  virtual void RunModal(DialogForm& form) = 0;

  // Destination 0 of a report: shows the laid-out report in the viewer
  // window (captioned with the report's title) at 100 % zoom.
  virtual void ShowReport(const ReportDocument& report) { (void)report; }
  // Destination 1: prints the report on the current printer. Returns 0, or
  // the report engine's error number: 20513 when the print job was
  // cancelled, 20526 when there is no default printer.
  virtual int PrintReport(const ReportDocument& report) {
    (void)report;
    return 0;
  }
  // The printer set-up dialog. Returns false when the user cancelled it.
  virtual bool PrintSetup() { return false; }

  // Opens the help window on the HTML manual page at `path`, scrolled to
  // `anchor` when not empty.
  virtual void ShowHelp(std::string_view path, std::string_view anchor) {
    (void)path;
    (void)anchor;
  }

  // Prints plain lines of text (the removed-blocks list and the like).
  virtual void PrintLines(std::string_view title, const std::vector<std::string>& lines) {
    (void)title;
    (void)lines;
  }
};

// Shows the hourglass for its lifetime and restores the previous pointer on
// every exit path.
class HourglassGuard {
 public:
  explicit HourglassGuard(UiPort& ui) : ui_(ui) { ui_.PushHourglass(); }
  ~HourglassGuard() { ui_.PopHourglass(); }
  HourglassGuard(const HourglassGuard&) = delete;
  HourglassGuard& operator=(const HourglassGuard&) = delete;

 private:
  UiPort& ui_;
};

// Shows the help bar's gauge for its lifetime and stops it on every exit
// path of a long operation.
class GaugeGuard {
 public:
  explicit GaugeGuard(UiPort& ui) : ui_(ui) { ui_.StartGauge(); }
  ~GaugeGuard() { ui_.StopGauge(); }
  GaugeGuard(const GaugeGuard&) = delete;
  GaugeGuard& operator=(const GaugeGuard&) = delete;

 private:
  UiPort& ui_;
};

}  // namespace lotwise
