#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

class QGridLayout;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

namespace lotwise {

class Application;
class DialogForm;

namespace ui {

// A modal window over one core dialog form. It mirrors the form's fields in
// its widgets and runs the form's procedures: every procedure starts from
// what the widgets hold and ends with the widgets showing what the form
// holds; the window closes when the form says it is closed. It decides
// nothing itself.
class FormWindow : public QDialog {
 public:
  // `closed` and `focus` are the form's own flags: the procedures set
  // `closed` when the dialog unloads and `focus` to the control that should
  // take the focus next ("txtPortName"; empty for none).
  FormWindow(Application& app, DialogForm& form, QWidget* parent, const bool& closed,
             std::string* focus);
  ~FormWindow() override;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  // Returns the open window of `form`, or null when none shows it.
  static FormWindow* Of(const DialogForm& form);

  // Shows the window until the form is closed. The Cancel procedure is what
  // Escape and the title bar's close button run.
  void RunModal(std::function<void()> cancel);
  // Called when a procedure shows this window's form again while it is
  // open: the window shows the form's values and stays up.
  void ShowAgain();

  // Runs a procedure of the form as described above. A procedure started
  // while another runs (a focus change made by the first), or once the
  // window has closed, is skipped.
  void Run(const std::function<void()>& procedure);

  Application& app() { return app_; }

  // Widgets bound to the form, laid out in a grid of caption and control
  // in the order they are added, which is also the Tab order.
  QLabel* AddNote(const char* name, const QString& text);
  // A text field of at most `max_length` characters (0: no limit).
  QLineEdit* AddText(const char* label_name, const QString& label, const char* name,
                     std::string& field, int max_length);
  // A masked date field "__/__/____"; the form holds the text as typed.
  QLineEdit* AddDate(const char* label_name, const QString& label, const char* name,
                     std::string& field);
  // A sunken panel showing text the form sets (not bound: the refreshers
  // fill it).
  QLabel* AddPanel(const char* label_name, const QString& label, const char* name);
  // A read-only grid of the rows `rows()` gives, whose selected row is
  // `selected` (-1 when empty). Double-clicking a row runs `on_choose`
  // when it is set.
  QTableWidget* AddGrid(const char* name, const QStringList& headings,
                        std::function<std::vector<QStringList>()> rows, int& selected,
                        std::function<void()> on_choose = nullptr);
  // A push button in the button row that runs `procedure`.
  QPushButton* AddButton(const char* name, const QString& caption, std::function<void()> procedure);
  // A button beside the last field added (a picker, a calculator).
  QPushButton* AddFieldButton(const char* name, const QString& caption,
                              std::function<void()> procedure);
  // Extra mirroring from the form (captions, visibility) after each
  // procedure and before the window first shows.
  void OnRefresh(std::function<void()> refresh) { refreshers_.push_back(std::move(refresh)); }

  // Shows `help(control name)` on the help bar for every named control.
  void InstallHelp(std::function<std::string(std::string_view)> help);

 protected:
  void reject() override;

 private:
  struct Binding {
    std::function<void()> to_form;
    std::function<void()> from_form;
  };
  void ToForm();
  void FromForm();
  void FinishRun();
  void PlaceField(QLabel* label, QWidget* field);

  Application& app_;
  const DialogForm& form_;
  const bool& closed_;
  std::string* focus_;
  std::function<void()> cancel_;
  std::vector<Binding> bindings_;
  std::vector<std::function<void()>> refreshers_;
  QGridLayout* fields_ = nullptr;
  QHBoxLayout* buttons_ = nullptr;
  int next_row_ = 0;
  bool running_ = false;
  bool finished_ = false;
};

// The windows of the taxpayer group, each a DialogRunner.
void RunFileLocWindow(Application& app, DialogForm& form, QWidget* parent);
void RunNewModClientWindow(Application& app, DialogForm& form, QWidget* parent);
void RunOpenClientWindow(Application& app, DialogForm& form, QWidget* parent);
void RunNewModPortWindow(Application& app, DialogForm& form, QWidget* parent);
void RunOpenDelPortWindow(Application& app, DialogForm& form, QWidget* parent);
void RunAddModSecWindow(Application& app, DialogForm& form, QWidget* parent);
void RunSecSymbolWindow(Application& app, DialogForm& form, QWidget* parent);

}  // namespace ui
}  // namespace lotwise
