#pragma once

#include <QDialog>
#include <QString>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/currency.h"
#include "app/ui_port.h"

class QBoxLayout;
class QButtonGroup;
class QCheckBox;
class QEvent;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace lotwise {

class Application;

namespace ui {

// Calls `hook` with every event `target` receives and the object it is
// for (`target` itself, or any object when `target` is the application); a
// true answer swallows the event. The hook lives as long as `owner`.
void HookEvents(QObject* target, QObject* owner, std::function<bool(QObject*, QEvent*)> hook);

// Shows `text` as a label shows it: the core keeps captions with every "&"
// doubled (so that a menu would not take it for an access key); a label
// without a buddy would show both.
QString LabelText(std::string_view text);

// The window of one lot-entry dialog form. The form (caption, fields,
// closed flag, focus request) lives in the core with its procedures; this
// window only mirrors it. Every procedure runs the same way: the widgets
// are written into the form, the procedure runs, the form is shown again
// (a check may have reset a value) and the focus goes where the procedure
// asked. The window closes when the form says it is closed.
class LotFormWindow : public QDialog {
 public:
  // `focus` and `closed` are the form's focus request and closed flag.
  LotFormWindow(Application& app, std::string& focus, const bool& closed, QWidget* parent);

  // Escape and the window's close box run the Cancel procedure set with
  // AddCancelButton; the window closes only when the form says so.
  void reject() override;

 protected:
  // Field rows, in tab order, each with its label on the left. The field's
  // object name is `name`; its value is bound to the form's member.
  QLineEdit* AddDate(const char* name, const char* label, std::string& field);
  QLineEdit* AddNumber(const char* name, const char* label, double& field);
  QLineEdit* AddMoney(const char* name, const char* label, Currency& field);
  QLineEdit* AddText(const char* name, const char* label, std::string& field, int max_length);
  // A display-only amount: shown from the form, never typed or tabbed into.
  QLineEdit* AddMoneyDisplay(const char* name, const char* label, const Currency& field);
  // A framed panel `panel_name` holding the label `label_name` that shows
  // `text()`; `label_name` may equal `panel_name` for a panel that is its
  // own label. `caption` (may be null) labels the row.
  QLabel* AddPanel(const char* panel_name, const char* label_name, const char* caption,
                   std::function<std::string()> text);
  QCheckBox* AddCheck(const char* name, const char* caption, bool& field);
  // An option group `name` captioned `caption` with one radio button per
  // (value, caption); none is checked while `field` holds no listed value.
  QButtonGroup* AddOptions(const char* name, const char* caption,
                           const std::vector<std::pair<int, const char*>>& choices, int& field);
  // A widget of the dialog's own, placed as the next row.
  void AddRow(const char* label, QWidget* widget);
  // A button of the bottom row running `procedure` through Run.
  QPushButton* AddButton(const char* name, const char* caption, std::function<void()> procedure);
  // The Cancel button `button` running `procedure`, also run by Escape and
  // the close box. A field left for this button is checked only when the
  // focus moves on without cancelling: nobody wants to be told that the
  // date is missing from an entry being thrown away.
  QPushButton* AddCancelButton(const char* name, const char* caption,
                               std::function<void()> procedure);

  // Binds a widget of the dialog's own: `store` writes it into the form,
  // `load` shows the form in it.
  void Bind(std::function<void()> store, std::function<void()> load);
  // Runs `check` when `field` loses the focus to another control.
  void OnLeaveField(QWidget* field, std::function<void()> check);
  // Runs a procedure of the form as described above. Unless `any_text` (a
  // cancel), a number or amount field whose text is no number of its kind
  // (a half-typed "1,23", too many digits) is refused first, the field
  // named and focused.
  void Run(const std::function<void()>& procedure, bool any_text = false);

  // Completes the window: caption, help-bar texts of every named control
  // (through `help`, keyed by object name or by the "lw_help" property),
  // Enter moving between fields, the form shown. Call once, last.
  void Finish(const std::string& caption, std::function<std::string(std::string_view)> help);

  // Writes every bound widget into the form / shows the form in them.
  void Store();
  void Load();

  Application& app_;

 private:
  void ApplyFocus();

  std::string& focus_;
  const bool& closed_;
  std::function<void()> cancel_;
  QPushButton* cancel_button_ = nullptr;
  // The check of the field left for the Cancel button, until it is known
  // whether the user cancels.
  std::function<void()> pending_check_;
  std::vector<std::function<void()>> stores_;
  std::vector<std::function<void()>> loads_;
  // The number and amount fields with their labels, for Run's refusal.
  std::vector<std::pair<QLineEdit*, std::string>> amount_fields_;
  QFormLayout* rows_ = nullptr;
  QBoxLayout* buttons_ = nullptr;
};

// Shows a lot window modally, named after its form ("dlgBuyReinvest") so
// that tests and accessibility tools find it by the form's name.
template <class Window, class Form>
void ExecLotWindow(Application& app, DialogForm& form, QWidget* parent) {
  Window window(app, static_cast<Form&>(form), parent);
  const std::string_view name = form.Name();
  window.setObjectName(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
  window.exec();
}

}  // namespace ui
}  // namespace lotwise
