#include "ui/form_window.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <map>

#include "app/startup.h"
#include "data/application.h"
#include "ground/program_ended.h"
#include "ground/ui_port.h"
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

// The windows open now, by the form they show.
std::map<const DialogForm*, FormWindow*>& OpenWindows() {
  static std::map<const DialogForm*, FormWindow*> windows;
  return windows;
}

// Sets the text of a field only when it differs, so that showing the form
// again does not move the cursor of the field being typed in.
void SetIfChanged(QLineEdit* edit, const QString& text) {
  if (edit->text() != text) edit->setText(text);
}

// The name of the control a help text or a focus request is keyed by: an
// option speaks for its group.
QString ControlKey(const QWidget* control) {
  const QString key = control->property("lw_help").toString();
  return key.isEmpty() ? control->objectName() : key;
}

// Wide enough for a security's name and a long label beside its field.
constexpr int kMinimumWidth = 380;

}  // namespace

void HookEvents(QObject* target, QObject* owner, std::function<bool(QObject*, QEvent*)> hook) {
  target->installEventFilter(new EventHook(owner, std::move(hook)));
}

QString LabelText(std::string_view text) {
  QString shown = ToQ(text);
  shown.remove(QLatin1Char('\r'));
  shown.replace(QStringLiteral("&&"), QStringLiteral("&"));
  return shown;
}

QButtonGroup* NewOptions(QWidget* parent, const char* name, const char* caption,
                         const std::vector<std::pair<int, const char*>>& choices,
                         const char* infix) {
  auto* frame = new QGroupBox(QString::fromUtf8(caption), parent);
  frame->setObjectName(name);
  auto* inside = new QVBoxLayout(frame);
  auto* group = new QButtonGroup(frame);
  group->setObjectName(name);
  for (const auto& [value, text] : choices) {
    auto* option = new QRadioButton(QString::fromUtf8(text), frame);
    option->setObjectName(QString::fromUtf8(name) + QString::fromUtf8(infix) +
                          QString::number(value));
    option->setProperty("lw_help", QString::fromUtf8(name));
    group->addButton(option, value);
    inside->addWidget(option);
  }
  return group;
}

FormWindow::FormWindow(Application& app, DialogForm& form, QWidget* parent)
    : QDialog(parent), app_(app), form_(form) {
  setModal(true);
  setObjectName(ToQ(form.Name()));
  auto* outer = new QVBoxLayout(this);
  fields_ = new QGridLayout;
  fields_->setColumnStretch(1, 1);
  outer->addLayout(fields_);
  buttons_ = new QHBoxLayout;
  buttons_->addStretch(1);
  outer->addLayout(buttons_);
  InstallEnterMovesFocus(this);
  OpenWindows()[&form] = this;
}

FormWindow::~FormWindow() {
  OpenWindows().erase(&form_);
  // The field holding the focus loses it as it goes, which would run its
  // check; the controls go while the window is still whole, and a finished
  // window runs nothing.
  finished_ = true;
  qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

FormWindow* FormWindow::Of(const DialogForm& form) {
  auto it = OpenWindows().find(&form);
  return it == OpenWindows().end() ? nullptr : it->second;
}

void FormWindow::Exec() {
  if (form_.closed) return;
  ApplyFocus();
  exec();
  // The program ended in a procedure of this window: the core that showed
  // the window unwinds too, up to the command that started it.
  if (program_ended_) throw ProgramEnded{};
}

void FormWindow::ShowAgain() {
  Load();
  if (!isVisible()) show();
}

void FormWindow::Run(const std::function<void()>& procedure, bool any_text) {
  if (running_ || finished_) return;
  if (!any_text && RefuseAmounts()) return;
  running_ = true;
  Store();
  try {
    procedure();
  } catch (const ProgramEnded&) {
    // Qt must not see the exception: the program shuts down here, the
    // window closes and Exec passes the end on.
    EndProgram(app_);
    program_ended_ = true;
  }
  if (form_.closed || program_ended_) {
    finished_ = true;
    done(form_.closed ? QDialog::Accepted : QDialog::Rejected);
  } else {
    Load();
    ApplyFocus();
  }
  running_ = false;
}

bool FormWindow::RefuseAmounts() {
  // The form holds numbers, not text: a text that is no number would reach
  // it as 0, so it is refused here, where the text is.
  for (const auto& [edit, caption] : amount_fields_) {
    std::string field = caption;
    if (!field.empty() && field.back() == ':') field.pop_back();
    const std::string complaint = AmountFieldComplaint(edit, field);
    if (complaint.empty()) continue;
    app_.ui().MessageBox(complaint, "Invalid Number", Icon::kExclamation, Buttons::kOk);
    edit->setFocus(Qt::OtherFocusReason);
    return true;
  }
  return false;
}

void FormWindow::reject() {
  if (cancel_) {
    Run(cancel_, true);
  } else {
    finished_ = true;
    done(QDialog::Rejected);
  }
}

QLabel* FormWindow::AddRow(const char* caption, QWidget* widget) {
  QLabel* label = nullptr;
  if (caption != nullptr) {
    label = new QLabel(QString::fromUtf8(caption), this);
    label->setBuddy(widget);
    fields_->addWidget(label, next_row_, 0);
    fields_->addWidget(widget, next_row_, 1);
  } else {
    fields_->addWidget(widget, next_row_, 0, 1, 3);
  }
  ++next_row_;
  return label;
}

QLineEdit* FormWindow::AddText(const char* name, const char* caption, std::string& field,
                               int max_length) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  if (max_length > 0) edit->setMaxLength(max_length);
  AddRow(caption, edit);
  Bind([edit, &field] { field = FromQ(edit->text()); },
       [edit, &field] { SetIfChanged(edit, ToQ(field)); });
  return edit;
}

QLineEdit* FormWindow::AddDate(const char* name, const char* caption, std::string& field) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  MakeDateEdit(edit);
  AddRow(caption, edit);
  Bind([edit, &field] { field = DateEditText(edit); },
       [edit, &field] {
         if (DateEditText(edit) != field) SetDateEditText(edit, field);
       });
  return edit;
}

QLineEdit* FormWindow::AddNumber(const char* name, const char* caption, double& field) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  MakeNumberEdit(edit);
  edit->setAlignment(Qt::AlignRight);
  AddRow(caption, edit);
  amount_fields_.emplace_back(edit, caption != nullptr ? caption : "");
  Bind([edit, &field] { field = NumberEditValue(edit); },
       [edit, &field] {
         // "1,000" and "1000" are the same number: leave what was typed.
         if (NumberEditValue(edit) != field || edit->text().isEmpty()) {
           SetNumberEditValue(edit, field);
         }
       });
  return edit;
}

QLineEdit* FormWindow::AddMoney(const char* name, const char* caption, Currency& field) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  MakeMoneyEdit(edit);
  edit->setAlignment(Qt::AlignRight);
  AddRow(caption, edit);
  amount_fields_.emplace_back(edit, caption != nullptr ? caption : "");
  Bind([edit, &field] { field = MoneyEditValue(edit); },
       [edit, &field] {
         if (MoneyEditValue(edit) != field || edit->text().isEmpty()) {
           SetMoneyEditValue(edit, field);
         }
       });
  return edit;
}

QLineEdit* FormWindow::AddMoneyDisplay(const char* name, const char* caption,
                                       const Currency& field) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  edit->setReadOnly(true);
  edit->setFocusPolicy(Qt::NoFocus);
  edit->setAlignment(Qt::AlignRight);
  AddRow(caption, edit);
  OnRefresh([edit, &field] { SetIfChanged(edit, ToQ(field.ToString())); });
  return edit;
}

QLabel* FormWindow::AddPanel(const char* panel_name, const char* label_name, const char* caption,
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
  OnRefresh([label, text = std::move(text)] { label->setText(LabelText(text())); });
  return label;
}

QLabel* FormWindow::AddNote(const char* name, std::function<std::string()> text) {
  auto* note = new QLabel(this);
  note->setObjectName(name);
  note->setWordWrap(true);
  AddRow(nullptr, note);
  OnRefresh([note, text = std::move(text)] { note->setText(ToQ(text())); });
  return note;
}

QCheckBox* FormWindow::AddCheck(const char* name, const char* caption, bool& field) {
  auto* box = new QCheckBox(QString::fromUtf8(caption), this);
  box->setObjectName(name);
  AddRow(nullptr, box);
  Bind([box, &field] { field = box->isChecked(); }, [box, &field] { box->setChecked(field); });
  return box;
}

QButtonGroup* FormWindow::AddOptions(const char* name, const char* caption,
                                     const std::vector<std::pair<int, const char*>>& choices,
                                     int& field, const char* infix) {
  QButtonGroup* group = NewOptions(this, name, caption, choices, infix);
  AddRow(nullptr, static_cast<QWidget*>(group->parent()));
  BindOptions(group, field);
  return group;
}

void FormWindow::BindOptions(QButtonGroup* group, int& field) {
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
}

QTableWidget* FormWindow::AddGrid(const char* name, const QStringList& headings,
                                  std::function<std::vector<QStringList>()> rows, int& selected,
                                  std::function<void()> on_choose) {
  auto* grid = new QTableWidget(0, static_cast<int>(headings.size()), this);
  grid->setObjectName(name);
  grid->setHorizontalHeaderLabels(headings);
  grid->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid->setSelectionMode(QAbstractItemView::SingleSelection);
  grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid->verticalHeader()->hide();
  grid->horizontalHeader()->setStretchLastSection(true);
  grid->setMinimumSize(420, 200);
  AddRow(nullptr, grid);
  if (on_choose) {
    connect(grid, &QTableWidget::cellDoubleClicked, this,
            [this, on_choose](int, int) { Run(on_choose); });
  }
  Bind(
      [grid, &selected] {
        if (grid->rowCount() > 0 && grid->currentRow() >= 0) selected = grid->currentRow();
      },
      [grid, rows = std::move(rows), &selected] {
        const std::vector<QStringList> wanted = rows();
        bool same = grid->rowCount() == static_cast<int>(wanted.size());
        for (int r = 0; same && r < grid->rowCount(); ++r) {
          for (int c = 0; same && c < grid->columnCount(); ++c) {
            const QTableWidgetItem* item = grid->item(r, c);
            same = item != nullptr && item->text() == wanted[static_cast<size_t>(r)].value(c);
          }
        }
        if (!same) {
          grid->setRowCount(static_cast<int>(wanted.size()));
          for (int r = 0; r < grid->rowCount(); ++r) {
            for (int c = 0; c < grid->columnCount(); ++c) {
              grid->setItem(r, c, new QTableWidgetItem(wanted[static_cast<size_t>(r)].value(c)));
            }
          }
          grid->resizeColumnsToContents();
          grid->horizontalHeader()->setStretchLastSection(true);
        }
        if (selected >= 0 && selected < grid->rowCount() && grid->currentRow() != selected) {
          grid->setCurrentCell(selected, 0);
        }
      });
  return grid;
}

QPushButton* FormWindow::AddButton(const char* name, const QString& caption,
                                   std::function<void()> procedure) {
  auto* button = new QPushButton(caption, this);
  button->setObjectName(name);
  // Only a click, or Enter on the button itself, presses it; no button is
  // the window's default.
  button->setAutoDefault(false);
  buttons_->addWidget(button);
  connect(button, &QPushButton::clicked, this,
          [this, procedure = std::move(procedure)] { Run(procedure); });
  return button;
}

QPushButton* FormWindow::AddFieldButton(const char* name, const QString& caption,
                                        std::function<void()> procedure) {
  auto* button = new QPushButton(caption, this);
  button->setObjectName(name);
  button->setAutoDefault(false);
  // Out of the Tab and Enter chain: moving on from a field with Enter must
  // not land on a button that replaces what was just typed.
  button->setFocusPolicy(Qt::ClickFocus);
  fields_->addWidget(button, next_row_ - 1, 2);
  connect(button, &QPushButton::clicked, this,
          [this, procedure = std::move(procedure)] { Run(procedure); });
  return button;
}

QPushButton* FormWindow::AddCancelButton(const char* name, const QString& caption,
                                         std::function<void()> procedure) {
  cancel_ = procedure;
  cancel_button_ = new QPushButton(caption, this);
  cancel_button_->setObjectName(name);
  cancel_button_->setAutoDefault(false);
  buttons_->addWidget(cancel_button_);
  // Throwing an entry away needs no number typed right.
  connect(cancel_button_, &QPushButton::clicked, this,
          [this, procedure = std::move(procedure)] { Run(procedure, true); });
  OnLeave(cancel_button_, [this] {
    if (!pending_check_ || form_.closed) return;
    std::function<void()> check = std::move(pending_check_);
    pending_check_ = nullptr;
    Run(check);
  });
  return cancel_button_;
}

void FormWindow::Bind(std::function<void()> store, std::function<void()> load) {
  stores_.push_back(std::move(store));
  loads_.push_back(std::move(load));
}

void FormWindow::OnLeaveField(QWidget* field, std::function<void()> check) {
  OnLeave(field, [this, check = std::move(check)] {
    // The focus has already moved on when a field hears that it lost it.
    if (cancel_button_ != nullptr && QApplication::focusWidget() == cancel_button_) {
      pending_check_ = check;
      return;
    }
    Run(check);
  });
}

void FormWindow::Finish(const std::string& caption,
                        std::function<std::string(std::string_view)> help) {
  setWindowTitle(ToQ(caption));
  setMinimumWidth(kMinimumWidth);
  Load();
  if (!help) return;
  for (QWidget* control : findChildren<QWidget*>()) {
    const QString key = ControlKey(control);
    // Qt's own inner widgets carry names beginning "qt_".
    if (key.isEmpty() || key.startsWith(QStringLiteral("qt_"))) continue;
    OnHelp(
        control, [help, name = FromQ(key)] { return help(name); }, app_.ui());
  }
}

void FormWindow::Store() {
  for (const auto& store : stores_) store();
}

void FormWindow::Load() {
  for (const auto& load : loads_) load();
}

void FormWindow::ApplyFocus() {
  if (form_.focus.empty()) return;
  QWidget* control = findChild<QWidget*>(ToQ(form_.focus));
  form_.focus.clear();
  if (control == nullptr) return;
  // An option group takes the focus on its chosen option.
  if (qobject_cast<QGroupBox*>(control)) {
    for (QRadioButton* option : control->findChildren<QRadioButton*>()) {
      if (option->isChecked()) control = option;
    }
  }
  control->setFocus(Qt::OtherFocusReason);
}

}  // namespace lotwise::ui
