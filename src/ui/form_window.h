#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ground/currency.h"

class QButtonGroup;
class QCheckBox;
class QEvent;
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

// Calls `hook` with every event `target` receives and the object it is
// for (`target` itself, or any object when `target` is the application); a
// true answer swallows the event. The hook lives as long as `owner`.
void HookEvents(QObject* target, QObject* owner, std::function<bool(QObject*, QEvent*)> hook);

// Shows `text` as a label shows it: the core keeps captions with every "&"
// doubled (so that a menu would not take it for an access key) and line
// breaks as CR LF; a label without a buddy would show both.
QString LabelText(std::string_view text);

// An option group `name` captioned `caption`, one radio button per (value,
// caption), not yet placed. Each option is named `name`, `infix` and its
// value ("CSoptBlocks_1") and speaks for its group in help and focus.
QButtonGroup* NewOptions(QWidget* parent, const char* name, const char* caption,
                         const std::vector<std::pair<int, const char*>>& choices,
                         const char* infix = "_");

// The modal window of one core dialog form, named after the form
// ("dlgBuyReinvest") so that tests and accessibility tools find it. The
// form (caption, fields, closed flag, focus request) lives in the core with
// its procedures; the window only mirrors it and decides nothing. Every
// procedure runs the same way: the widgets are written into the form, the
// procedure runs, the form is shown again (a check may have reset a value)
// and the focus goes where the procedure asked. The window closes when the
// form says it is closed, or when the program ends (Exec then throws
// ProgramEnded).
//
// Enter moves between fields as Tab does; Escape and the close box run the
// Cancel procedure; a named control shows the form's help text for it.
class FormWindow : public QDialog {
 public:
  FormWindow(Application& app, DialogForm& form, QWidget* parent);
  ~FormWindow() override;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  // Returns the open window of `form`, or null when none shows it.
  static FormWindow* Of(const DialogForm& form);

  // Shows the window until the form is closed; a form closed before it
  // shows is not shown. Throws ProgramEnded when a procedure of the window
  // ended the program.
  void Exec();
  // Called when a procedure shows this window's form again while it is
  // open: the window shows the form's values and stays up.
  void ShowAgain();

  // Runs a procedure of the form as described above. A procedure started
  // while another runs (a focus change made by the first), or once the
  // window has closed, is skipped. Unless `any_text` (a cancel), a number
  // or amount field whose text is no number of its kind (a half-typed
  // "1,23", too many digits) is refused first, the field named and focused.
  void Run(const std::function<void()>& procedure, bool any_text = false);

  // Field rows in tab order, each with its caption on the left (none when
  // `caption` is null: the control takes the whole row). The field's object
  // name is `name`; its value is bound to the form's member.
  QLineEdit* AddText(const char* name, const char* caption, std::string& field, int max_length = 0);
  // A masked date field "__/__/____"; the form holds the text as typed.
  QLineEdit* AddDate(const char* name, const char* caption, std::string& field);
  QLineEdit* AddNumber(const char* name, const char* caption, double& field);
  QLineEdit* AddMoney(const char* name, const char* caption, Currency& field);
  // A display-only amount: shown from the form, never typed or tabbed into.
  QLineEdit* AddMoneyDisplay(const char* name, const char* caption, const Currency& field);
  // A framed panel `panel_name` holding the label `label_name` that shows
  // `text()`; `label_name` may equal `panel_name` for a panel that is its
  // own label.
  QLabel* AddPanel(const char* panel_name, const char* label_name, const char* caption,
                   std::function<std::string()> text);
  // A word-wrapped note across the row showing `text()` as it is.
  QLabel* AddNote(const char* name, std::function<std::string()> text);
  QCheckBox* AddCheck(const char* name, const char* caption, bool& field);
  // An option group (NewOptions); none is checked while `field` holds no
  // listed value.
  QButtonGroup* AddOptions(const char* name, const char* caption,
                           const std::vector<std::pair<int, const char*>>& choices, int& field,
                           const char* infix = "_");
  // A read-only grid of the rows `rows()` gives, whose selected row is
  // `selected` (-1 when empty). Double-clicking a row runs `on_choose`
  // when it is set.
  QTableWidget* AddGrid(const char* name, const QStringList& headings,
                        std::function<std::vector<QStringList>()> rows, int& selected,
                        std::function<void()> on_choose = nullptr);
  // A widget of the dialog's own, placed as the next row; returns the
  // caption's label (null without a caption).
  QLabel* AddRow(const char* caption, QWidget* widget);
  // A button of the bottom row running `procedure`.
  QPushButton* AddButton(const char* name, const QString& caption, std::function<void()> procedure);
  // A button beside the last field added (a picker, a calculator), out of
  // the Tab and Enter chain.
  QPushButton* AddFieldButton(const char* name, const QString& caption,
                              std::function<void()> procedure);
  // The Cancel button running `procedure`, also run by Escape and the
  // close box. A field left for this button is checked only when the
  // focus moves on without cancelling: nobody wants to be told that the
  // date is missing from an entry being thrown away.
  QPushButton* AddCancelButton(const char* name, const QString& caption,
                               std::function<void()> procedure);
  // What Escape and the close box run when there is no Cancel button.
  void OnCancel(std::function<void()> procedure) { cancel_ = std::move(procedure); }

  // Binds a widget of the dialog's own: `store` writes it into the form,
  // `load` shows the form in it (after each procedure and before the
  // window first shows).
  void Bind(std::function<void()> store, std::function<void()> load);
  void OnRefresh(std::function<void()> load) {
    Bind([] {}, std::move(load));
  }
  // Binds an option group to the form's member: the chosen option's value.
  void BindOptions(QButtonGroup* group, int& field);
  // Runs `check` when `field` loses the focus to another control.
  void OnLeaveField(QWidget* field, std::function<void()> check);

  // Completes the window: caption, minimum width, the form shown, the
  // help-bar text of every named control through `help` (keyed by object
  // name or by the "lw_help" property; none when null). Call once, last.
  void Finish(const std::string& caption, std::function<std::string(std::string_view)> help);

  // Writes every bound widget into the form / shows the form in them.
  void Store();
  void Load();

 protected:
  void reject() override;

  Application& app_;

 private:
  void ApplyFocus();
  bool RefuseAmounts();

  DialogForm& form_;
  std::function<void()> cancel_;
  QPushButton* cancel_button_ = nullptr;
  // The check of the field left for the Cancel button, until it is known
  // whether the user cancels.
  std::function<void()> pending_check_;
  std::vector<std::function<void()>> stores_;
  std::vector<std::function<void()>> loads_;
  // The number and amount fields with their captions, for Run's refusal.
  std::vector<std::pair<QLineEdit*, std::string>> amount_fields_;
  QGridLayout* fields_ = nullptr;
  QHBoxLayout* buttons_ = nullptr;
  int next_row_ = 0;
  bool running_ = false;
  bool finished_ = false;
  // Set when a procedure ended the program.
  bool program_ended_ = false;
};

// Shows the window `Window` (built from the app, its form and the parent)
// until its form closes.
template <class Window, class Form>
void ShowWindow(Application& app, Form& form, QWidget* parent) {
  Window window(app, form, parent);
  window.Exec();
}

}  // namespace ui
}  // namespace lotwise
