#include "ui/dlg_lots_form.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QEvent>
#include <QFormLayout>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "app/application.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

class EventHook : public QObject {
 public:
  EventHook(QObject* owner, std::function<bool(QObject*, QEvent*)> hook)
      : QObject(owner), hook_(std::move(hook)) {}
  bool eventFilter(QObject* watched, QEvent* event) override { return hook_(watched, event); }

 private:
  std::function<bool(QObject*, QEvent*)> hook_;
};

// Sets the text of a field only when it differs, so that showing the form
// again does not move the cursor of the field being typed in.
void SetIfChanged(QLineEdit* edit, const QString& text) {
  if (edit->text() != text) edit->setText(text);
}

// Wide enough for a security's name and a long label beside its field.
constexpr int kMinimumWidth = 380;

}  // namespace

void HookEvents(QObject* target, QObject* owner, std::function<bool(QObject*, QEvent*)> hook) {
  target->installEventFilter(new EventHook(owner, std::move(hook)));
}

QString LabelText(std::string_view text) {
  QString shown = ToQ(text);
  shown.replace(QStringLiteral("&&"), QStringLiteral("&"));
  return shown;
}

LotFormWindow::LotFormWindow(Application& app, std::string& focus, const bool& closed,
                             QWidget* parent)
    : QDialog(parent), app_(app), focus_(focus), closed_(closed) {
  setModal(true);
  auto* layout = new QVBoxLayout(this);
  rows_ = new QFormLayout;
  layout->addLayout(rows_);
  buttons_ = new QHBoxLayout;
  buttons_->addStretch();
  layout->addLayout(buttons_);
}

void LotFormWindow::reject() {
  if (cancel_) {
    Run(cancel_, true);
  } else {
    done(Rejected);
  }
}

QLineEdit* LotFormWindow::AddDate(const char* name, const char* label, std::string& field) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  MakeDateEdit(edit);
  AddRow(label, edit);
  Bind([edit, &field] { field = DateEditText(edit); },
       [edit, &field] {
         if (DateEditText(edit) != field) SetDateEditText(edit, field);
       });
  return edit;
}

QLineEdit* LotFormWindow::AddNumber(const char* name, const char* label, double& field) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  MakeNumberEdit(edit);
  edit->setAlignment(Qt::AlignRight);
  AddRow(label, edit);
  amount_fields_.emplace_back(edit, label != nullptr ? label : "");
  Bind([edit, &field] { field = NumberEditValue(edit); },
       [edit, &field] {
         // "1,000" and "1000" are the same number: leave what was typed.
         if (NumberEditValue(edit) != field || edit->text().isEmpty()) {
           SetNumberEditValue(edit, field);
         }
       });
  return edit;
}

QLineEdit* LotFormWindow::AddMoney(const char* name, const char* label, Currency& field) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  MakeMoneyEdit(edit);
  edit->setAlignment(Qt::AlignRight);
  AddRow(label, edit);
  amount_fields_.emplace_back(edit, label != nullptr ? label : "");
  Bind([edit, &field] { field = MoneyEditValue(edit); },
       [edit, &field] {
         if (MoneyEditValue(edit) != field || edit->text().isEmpty()) {
           SetMoneyEditValue(edit, field);
         }
       });
  return edit;
}

QLineEdit* LotFormWindow::AddText(const char* name, const char* label, std::string& field,
                                  int max_length) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  edit->setMaxLength(max_length);
  AddRow(label, edit);
  Bind([edit, &field] { field = FromQ(edit->text()); },
       [edit, &field] { SetIfChanged(edit, ToQ(field)); });
  return edit;
}

QLineEdit* LotFormWindow::AddMoneyDisplay(const char* name, const char* label,
                                          const Currency& field) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  edit->setReadOnly(true);
  edit->setFocusPolicy(Qt::NoFocus);
  edit->setAlignment(Qt::AlignRight);
  AddRow(label, edit);
  Bind([] {}, [edit, &field] { SetIfChanged(edit, ToQ(field.ToString())); });
  return edit;
}

QLabel* LotFormWindow::AddPanel(const char* panel_name, const char* label_name, const char* caption,
                                std::function<std::string()> text) {
  auto* label = new QLabel(this);
  label->setObjectName(label_name);
  label->setTextFormat(Qt::PlainText);
  QWidget* row = label;
  if (std::string_view(panel_name) == label_name) {
    label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  } else {
    auto* panel = new QFrame(this);
    panel->setObjectName(panel_name);
    panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    auto* inside = new QHBoxLayout(panel);
    inside->setContentsMargins(4, 2, 4, 2);
    label->setParent(panel);
    inside->addWidget(label);
    row = panel;
  }
  AddRow(caption, row);
  Bind([] {}, [label, text = std::move(text)] { label->setText(LabelText(text())); });
  return label;
}

QCheckBox* LotFormWindow::AddCheck(const char* name, const char* caption, bool& field) {
  auto* box = new QCheckBox(QString::fromUtf8(caption), this);
  box->setObjectName(name);
  AddRow(nullptr, box);
  Bind([box, &field] { field = box->isChecked(); }, [box, &field] { box->setChecked(field); });
  return box;
}

QButtonGroup* LotFormWindow::AddOptions(const char* name, const char* caption,
                                        const std::vector<std::pair<int, const char*>>& choices,
                                        int& field) {
  auto* frame = new QGroupBox(QString::fromUtf8(caption), this);
  frame->setObjectName(name);
  auto* inside = new QVBoxLayout(frame);
  auto* group = new QButtonGroup(frame);
  group->setObjectName(name);
  for (const auto& [value, text] : choices) {
    auto* option = new QRadioButton(QString::fromUtf8(text), frame);
    option->setObjectName(QStringLiteral("%1_%2").arg(QString::fromUtf8(name)).arg(value));
    option->setProperty("lw_help", QString::fromUtf8(name));
    group->addButton(option, value);
    inside->addWidget(option);
  }
  AddRow(nullptr, frame);
  Bind(
      [group, &field] {
        if (group->checkedId() != -1) field = group->checkedId();
      },
      [group, &field] {
        if (QAbstractButton* option = group->button(field)) {
          option->setChecked(true);
        } else if (QAbstractButton* checked = group->checkedButton()) {
          // An exclusive group cannot uncheck its last button directly.
          group->setExclusive(false);
          checked->setChecked(false);
          group->setExclusive(true);
        }
      });
  return group;
}

void LotFormWindow::AddRow(const char* label, QWidget* widget) {
  if (label == nullptr) {
    rows_->addRow(widget);
  } else {
    rows_->addRow(QString::fromUtf8(label), widget);
  }
}

QPushButton* LotFormWindow::AddButton(const char* name, const char* caption,
                                      std::function<void()> procedure) {
  auto* button = new QPushButton(QString::fromUtf8(caption), this);
  button->setObjectName(name);
  // Only a click, or Enter on the button itself, presses it.
  button->setAutoDefault(false);
  buttons_->addWidget(button);
  connect(button, &QPushButton::clicked, this,
          [this, procedure = std::move(procedure)] { Run(procedure); });
  return button;
}

QPushButton* LotFormWindow::AddCancelButton(const char* name, const char* caption,
                                            std::function<void()> procedure) {
  cancel_ = procedure;
  cancel_button_ = new QPushButton(QString::fromUtf8(caption), this);
  cancel_button_->setObjectName(name);
  cancel_button_->setAutoDefault(false);
  buttons_->addWidget(cancel_button_);
  // Throwing an entry away needs no number typed right.
  connect(cancel_button_, &QPushButton::clicked, this,
          [this, procedure = std::move(procedure)] { Run(procedure, true); });
  OnLeave(cancel_button_, [this] {
    if (!pending_check_ || closed_) return;
    std::function<void()> check = std::move(pending_check_);
    pending_check_ = nullptr;
    Run(check);
  });
  return cancel_button_;
}

void LotFormWindow::Bind(std::function<void()> store, std::function<void()> load) {
  stores_.push_back(std::move(store));
  loads_.push_back(std::move(load));
}

void LotFormWindow::OnLeaveField(QWidget* field, std::function<void()> check) {
  OnLeave(field, [this, check = std::move(check)] {
    // The focus has already moved on when a field hears that it lost it.
    if (cancel_button_ != nullptr && QApplication::focusWidget() == cancel_button_) {
      pending_check_ = check;
      return;
    }
    Run(check);
  });
}

void LotFormWindow::Run(const std::function<void()>& procedure, bool any_text) {
  // The form holds numbers, not text: a text that is no number would reach
  // it as 0, so it is refused here, where the text is.
  for (const auto& [edit, label] : amount_fields_) {
    if (any_text) break;
    std::string field = label;
    if (!field.empty() && field.back() == ':') field.pop_back();
    const std::string complaint = AmountFieldComplaint(edit, field);
    if (complaint.empty()) continue;
    app_.ui().MessageBox(complaint, "Invalid Number", Icon::kExclamation, Buttons::kOk);
    edit->setFocus(Qt::OtherFocusReason);
    return;
  }
  Store();
  procedure();
  if (closed_) {
    done(Accepted);
    return;
  }
  Load();
  ApplyFocus();
}

void LotFormWindow::Finish(const std::string& caption,
                           std::function<std::string(std::string_view)> help) {
  setWindowTitle(ToQ(caption));
  setMinimumWidth(kMinimumWidth);
  for (QWidget* control : findChildren<QWidget*>()) {
    QString key = control->property("lw_help").toString();
    if (key.isEmpty()) key = control->objectName();
    // Qt's own inner widgets carry names beginning "qt_".
    if (key.isEmpty() || key.startsWith(QStringLiteral("qt_"))) continue;
    OnHelp(
        control, [help, name = FromQ(key)] { return help(name); }, app_.ui());
  }
  InstallEnterMovesFocus(this);
  Load();
  ApplyFocus();
}

void LotFormWindow::Store() {
  for (const auto& store : stores_) store();
}

void LotFormWindow::Load() {
  for (const auto& load : loads_) load();
}

void LotFormWindow::ApplyFocus() {
  if (focus_.empty()) return;
  if (auto* control = findChild<QWidget*>(ToQ(focus_))) control->setFocus(Qt::OtherFocusReason);
  focus_.clear();
}

}  // namespace lotwise::ui
