#pragma once

// Driving a dialog's real Qt window from a test: show the window of a core
// form, find its widgets by name, type, click, and read what it shows.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <QRadioButton>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "data/application.h"
#include "support/scripted_ui.h"
#include "ui/dialog_registry.h"

namespace lotwise::testing {

// The one QApplication of a window test program, made before the first
// test and gone before the exit handlers run: left to them, it would go
// after the parts of Qt it needs. Without a platform named the windows
// still need no display.
class QtEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    app_ = std::make_unique<QApplication>(argc_, argv_);
    // The offscreen platform warns about every window it cannot pass size
    // hints on to; that is the platform's limit, not the window's.
    previous_ = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
          if (!text.contains(QLatin1String("propagateSizeHints")) && previous_ != nullptr) {
            previous_(type, context, text);
          }
        });
  }
  void TearDown() override { app_.reset(); }

 private:
  static inline QtMessageHandler previous_ = nullptr;
  int argc_ = 1;
  char name_[16] = "lotwise_windows";
  char* argv_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> app_;
};
inline ::testing::Environment* const kQtEnvironment =
    ::testing::AddGlobalTestEnvironment(new QtEnvironment);

// The texts of `column` of a grid, row by row, as the view shows them.
inline std::vector<std::string> Column(QTableView* grid, int column) {
  std::vector<std::string> texts;
  const QAbstractItemModel* model = grid->model();
  for (int row = 0; row < model->rowCount(); ++row) {
    texts.push_back(model->index(row, column).data().toString().toStdString());
  }
  return texts;
}

// Clicks row `row` of a grid as a user would.
inline void ClickRow(QTableView* grid, int row) {
  const QModelIndex index = grid->model()->index(row, 0);
  grid->scrollTo(index);
  QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(index).center());
}

// Shows the real window of `form` modally over the active modal window;
// `drive` (none for a form shown again) plays the user's part once it is up and must close it (a
// window left open fails the test and is closed).
inline void ShowWindow(Application& app, DialogForm& form, std::function<void(QDialog&)> drive) {
  static const ui::DialogRegistry registry = ui::AllDialogs();
  const ui::DialogRunner* runner = registry.Find(form);
  ASSERT_NE(runner, nullptr) << form.Name();
  // A form shown again while its window is up (a refused write) comes back
  // to that window, which its drive still plays.
  if (ui::FormWindow::Of(form) != nullptr) return (*runner)(app, form, nullptr);
  auto played = std::make_shared<bool>(false);
  QTimer::singleShot(0, [drive, played, name = std::string(form.Name())] {
    *played = true;
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr) << name;
    // Offscreen, a window opened from inside another window's event
    // handling is not activated by being shown.
    QApplication::setActiveWindow(dialog);
    EXPECT_TRUE(QTest::qWaitForWindowActive(dialog)) << name;
    drive(*dialog);
    if (dialog->isVisible()) {
      ADD_FAILURE() << name << " is still open";
      dialog->done(QDialog::Rejected);
    }
  });
  QWidget* outer = QApplication::activeModalWidget();
  (*runner)(app, form, outer);
  EXPECT_TRUE(*played) << form.Name() << " never showed";
  // Nor is the window below activated again when it closes.
  if (outer != nullptr) QApplication::setActiveWindow(outer);
}

// Expects the form `name` next on `ui` and shows its real window.
inline void OnWindow(ScriptedUi& ui, Application& app, const char* name,
                     std::function<void(QDialog&)> drive) {
  ui.ExpectDialog(name, [&app, drive](DialogForm& form) { ShowWindow(app, form, drive); });
}

// The controls of a real window, found by name (a missing one fails the
// test), and the user's keys and clicks on them.
template <class W = QLineEdit>
W* Get(QWidget& window, const char* name) {
  W* control = window.findChild<W*>(QString::fromUtf8(name));
  EXPECT_NE(control, nullptr) << name;
  return control;
}
inline std::string Shown(QWidget& window, const char* name) {
  QLineEdit* field = Get(window, name);
  return field == nullptr ? "" : field->displayText().toStdString();
}
// Clicks into field `name` and replaces its text by typing `keys`; with
// `tab` leaves it with Tab.
inline void Type(QWidget& window, const char* name, const QString& keys, bool tab = false) {
  QLineEdit* edit = Get(window, name);
  if (edit == nullptr) return;
  QTest::mouseClick(edit, Qt::LeftButton);
  edit->selectAll();
  QTest::keyClick(edit, Qt::Key_Backspace);
  QTest::keyClick(edit, Qt::Key_Home);
  QTest::keyClicks(edit, keys);
  if (tab) QTest::keyClick(edit, Qt::Key_Tab);
}
inline void TypeTab(QWidget& window, const char* name, const QString& keys) {
  Type(window, name, keys, true);
}
inline void Click(QWidget& window, const char* name) {
  auto* control = Get<QWidget>(window, name);
  if (control == nullptr) return;
  // A check box or option takes clicks on its box and caption only; its row
  // may be wider.
  const bool boxed = qobject_cast<QCheckBox*>(control) || qobject_cast<QRadioButton*>(control);
  QTest::mouseClick(control, Qt::LeftButton, {},
                    boxed ? QPoint(6, control->height() / 2) : control->rect().center());
}
// The objectName of the control holding the keyboard focus.
inline std::string FocusName() {
  QWidget* focus = QApplication::focusWidget();
  return focus == nullptr ? "(none)" : focus->objectName().toStdString();
}

}  // namespace lotwise::testing
