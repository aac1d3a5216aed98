#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <map>
#include <utility>

#include "app/application.h"
#include "app/ui_port.h"
#include "ui/dialog_registry.h"
#include "ui/dlg_taxpayer_window.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

// The windows open now, by the form they show.
std::map<const DialogForm*, FormWindow*>& OpenWindows() {
  static std::map<const DialogForm*, FormWindow*> windows;
  return windows;
}

bool IsControlName(const QString& name) {
  for (const char* prefix : {"txt", "dt", "btn", "SSdg", "pnl", "lbl"}) {
    if (name.startsWith(QLatin1String(prefix))) return true;
  }
  return false;
}

}  // namespace

void RegisterTaxpayerDialogs(DialogRegistry& registry) {
  const std::pair<const char*, DialogRunner> windows[] = {
      {"dlgFileLoc", RunFileLocWindow},         {"dlgNewModClient", RunNewModClientWindow},
      {"dlgOpenClient", RunOpenClientWindow},   {"dlgNewModPort", RunNewModPortWindow},
      {"dlgOpenDelPort", RunOpenDelPortWindow}, {"dlgAddModSec", RunAddModSecWindow},
      {"dlgSecSymbol", RunSecSymbolWindow}};
  for (const auto& [name, run] : windows) {
    registry.Add(name, [run](Application& app, DialogForm& form, QWidget* parent) {
      // A procedure showing its form again while the form's window is up (a
      // refused write showing the user's values once more) finds that
      // window, not a second one.
      if (FormWindow* open = FormWindow::Of(form)) {
        open->ShowAgain();
        return;
      }
      run(app, form, parent);
    });
  }
}

FormWindow::FormWindow(Application& app, DialogForm& form, QWidget* parent, const bool& closed,
                       std::string* focus)
    : QDialog(parent), app_(app), form_(form), closed_(closed), focus_(focus) {
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

void FormWindow::RunModal(std::function<void()> cancel) {
  cancel_ = std::move(cancel);
  FromForm();
  if (closed_ || app_.ended) return;
  // The focus request is applied once the window shows.
  QMetaObject::invokeMethod(
      this,
      [this] {
        running_ = true;
        FinishRun();
        running_ = false;
      },
      Qt::QueuedConnection);
  exec();
}

void FormWindow::ShowAgain() {
  FromForm();
  if (!isVisible()) show();
}

void FormWindow::Run(const std::function<void()>& procedure) {
  if (running_ || finished_) return;
  running_ = true;
  ToForm();
  procedure();
  FinishRun();
  running_ = false;
}

void FormWindow::FinishRun() {
  if (closed_ || app_.ended) {
    finished_ = true;
    done(closed_ ? QDialog::Accepted : QDialog::Rejected);
    return;
  }
  FromForm();
  if (focus_ == nullptr || focus_->empty()) return;
  if (auto* control = findChild<QWidget*>(ToQ(*focus_))) control->setFocus(Qt::OtherFocusReason);
  focus_->clear();
}

void FormWindow::reject() {
  if (cancel_) {
    Run(cancel_);
  } else {
    finished_ = true;
    done(QDialog::Rejected);
  }
}

void FormWindow::ToForm() {
  for (const Binding& binding : bindings_) binding.to_form();
}

void FormWindow::FromForm() {
  for (const Binding& binding : bindings_) binding.from_form();
  for (const auto& refresh : refreshers_) refresh();
}

void FormWindow::PlaceField(QLabel* label, QWidget* field) {
  if (label != nullptr) {
    label->setBuddy(field);
    fields_->addWidget(label, next_row_, 0);
    fields_->addWidget(field, next_row_, 1);
  } else {
    fields_->addWidget(field, next_row_, 0, 1, 3);
  }
  ++next_row_;
}

QLabel* FormWindow::AddNote(const char* name, const QString& text) {
  auto* note = new QLabel(text, this);
  note->setObjectName(name);
  note->setWordWrap(true);
  fields_->addWidget(note, next_row_++, 0, 1, 3);
  return note;
}

QLineEdit* FormWindow::AddText(const char* label_name, const QString& label, const char* name,
                               std::string& field, int max_length) {
  auto* caption = new QLabel(label, this);
  caption->setObjectName(label_name);
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  if (max_length > 0) edit->setMaxLength(max_length);
  PlaceField(caption, edit);
  bindings_.push_back({[edit, &field] { field = FromQ(edit->text()); },
                       [edit, &field] {
                         if (edit->text() != ToQ(field)) edit->setText(ToQ(field));
                       }});
  return edit;
}

QLineEdit* FormWindow::AddDate(const char* label_name, const QString& label, const char* name,
                               std::string& field) {
  auto* caption = new QLabel(label, this);
  caption->setObjectName(label_name);
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  MakeDateEdit(edit);
  PlaceField(caption, edit);
  bindings_.push_back({[edit, &field] { field = DateEditText(edit); },
                       [edit, &field] {
                         if (DateEditText(edit) != field) SetDateEditText(edit, field);
                       }});
  return edit;
}

QLabel* FormWindow::AddPanel(const char* label_name, const QString& label, const char* name) {
  auto* caption = new QLabel(label, this);
  caption->setObjectName(label_name);
  auto* panel = new QLabel(this);
  panel->setObjectName(name);
  panel->setTextFormat(Qt::PlainText);
  panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  PlaceField(caption, panel);
  return panel;
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
  PlaceField(nullptr, grid);
  if (on_choose) {
    connect(grid, &QTableWidget::cellDoubleClicked, this,
            [this, on_choose](int, int) { Run(on_choose); });
  }
  bindings_.push_back(
      {[grid, &selected] {
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
       }});
  return grid;
}

QPushButton* FormWindow::AddButton(const char* name, const QString& caption,
                                   std::function<void()> procedure) {
  auto* button = new QPushButton(caption, this);
  button->setObjectName(name);
  // Enter presses the focused button only; no button is the window's default.
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

void FormWindow::InstallHelp(std::function<std::string(std::string_view)> help) {
  for (QWidget* control : findChildren<QWidget*>()) {
    const QString name = control->objectName();
    if (!IsControlName(name)) continue;
    OnHelp(
        control, [help, key = FromQ(name)] { return help(key); }, app_.ui());
  }
}

}  // namespace lotwise::ui
