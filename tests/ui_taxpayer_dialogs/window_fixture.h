#pragma once

#include <gtest/gtest.h>

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/application.h"
#include "data/database.h"
#include "support/app_fixture.h"
#include "support/tests_c_helpers.h"
#include "ui/dialog_registry.h"

namespace lotwise::testing {

// The real windows with a scripted user: the core's dialog forms open the
// registered windows (the taxpayer group's unless told otherwise), while
// messages, pickers and the help bar go to the test's ScriptedUi.
class WindowUi : public UiPort {
 public:
  explicit WindowUi(ScriptedUi& script) : script_(script) {
    ui::RegisterTaxpayerDialogs(registry_);
  }
  void Attach(Application& app) { app_ = &app; }
  void Use(ui::DialogRegistry registry) { registry_ = std::move(registry); }

  Answer MessageBox(std::string_view text, std::string_view title, Icon icon,
                    Buttons buttons) override {
    return script_.MessageBox(text, title, icon, buttons);
  }
  void SetHelpBarText(std::string_view text) override { script_.SetHelpBarText(text); }
  std::string PickFile(const FileRequest& request) override { return script_.PickFile(request); }
  std::string PickSaveFile(const FileRequest& request) override {
    return script_.PickSaveFile(request);
  }
  ChkFilesChoice ChkFiles(std::string_view caption, std::string_view text,
                          bool create_enabled) override {
    return script_.ChkFiles(caption, text, create_enabled);
  }
  void RunModal(DialogForm& form) override {
    if (const ui::DialogRunner* runner = registry_.Find(form)) {
      (*runner)(*app_, form, QApplication::activeModalWidget());
    } else {
      script_.RunModal(form);
    }
  }

 private:
  ScriptedUi& script_;
  ui::DialogRegistry registry_;
  Application* app_ = nullptr;
};

// An Application talking to WindowUi with a fresh central file, and the
// means to play the user's part on a modal window once it shows.
class DialogWindowTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    // The fixture's Application talks to the scripted UI; this one shows
    // the real windows.
    std::unique_ptr<Application> scripted = std::move(app_);
    app_ = std::make_unique<Application>(window_ui_, *env_, program_folder_, "lotwise");
    for (auto field :
         {&Application::settings_store_path, &Application::temp_folder, &Application::ssf_folder,
          &Application::taxpayer_folder, &Application::central_path, &Application::ini_path,
          &Application::report_db_path}) {
      (*app_).*field = (*scripted).*field;
    }
    window_ui_.Attach(*app_);
    OpenFreshCentral();
  }

  void TearDown() override {
    for (const auto& wait : waits_) {
      if (wait->isActive()) ADD_FAILURE() << "a window the test waited for never showed";
    }
    waits_.clear();
    AppTest::TearDown();
  }

  // Once the window `name` (its object name, or else its caption) shows,
  // activates it and runs `script` on it; a
  // window the script leaves open fails the test and is closed.
  void WhenShown(const QString& name, std::function<void(QDialog&)> script) {
    QTimer* wait = waits_.emplace_back(std::make_unique<QTimer>()).get();
    wait->setInterval(5);
    QObject::connect(wait, &QTimer::timeout, [wait, name, script] {
      for (QWidget* top : QApplication::topLevelWidgets()) {
        auto* window = qobject_cast<QDialog*>(top);
        if (window == nullptr || !window->isVisible()) continue;
        if (window->objectName() != name && window->windowTitle() != name) continue;
        wait->stop();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window)) << name.toStdString();
        script(*window);
        if (window->isVisible()) {
          ADD_FAILURE() << name.toStdString() << " was left open";
          window->done(QDialog::Rejected);
        }
        return;
      }
    });
    wait->start();
  }

  // The named control of `window`; fails the test when it is missing.
  template <class Widget = QLineEdit>
  static Widget* Get(QDialog& window, const char* name) {
    auto* control = window.findChild<Widget*>(name);
    EXPECT_NE(control, nullptr) << name;
    return control;
  }
  static std::string Text(QDialog& window, const char* name) {
    return Get(window, name)->displayText().toStdString();
  }
  static void Click(QDialog& window, const char* name) {
    QTest::mouseClick(Get<QPushButton>(window, name), Qt::LeftButton);
  }
  // Gives `name` the focus and types `text` over what it holds.
  static void Type(QDialog& window, const char* name, const QString& text) {
    QLineEdit* field = Get(window, name);
    field->setFocus(Qt::TabFocusReason);
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Backspace);
    QTest::keyClick(field, Qt::Key_Home);
    QTest::keyClicks(field, text);
  }
  // Types "field=keys;..." into the window's fields, leaving each with Tab.
  static void Fill(QDialog& window, const char* entries) {
    for (const QString& entry : QString(entries).split(';')) {
      Type(window, entry.section('=', 0, 0).toLatin1(), entry.section('=', 1));
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
  }
  static void Choose(QDialog& window, const char* grid, int row) {
    Get<QTableWidget>(window, grid)->setCurrentCell(row, 0);
  }
  // The objectName of the control holding the keyboard focus.
  static std::string Focused() {
    QWidget* focus = QApplication::focusWidget();
    return focus == nullptr ? std::string() : focus->objectName().toStdString();
  }
  // The grid's rows as "cell|cell/cell|cell".
  static std::string GridRows(QDialog& window, const char* name) {
    auto* grid = Get<QTableWidget>(window, name);
    QStringList rows;
    for (int r = 0; r < grid->rowCount(); ++r) {
      QStringList cells;
      for (int c = 0; c < grid->columnCount(); ++c) cells << grid->item(r, c)->text();
      rows << cells.join('|');
    }
    return rows.join('/').toStdString();
  }
  // The rows `sql` selects from `db`, "value|value;" per row.
  static std::string Rows(Database& db, const std::string& sql) {
    std::string out;
    Query q = db.Select(sql);
    while (q.Next()) {
      for (int c = 0; c < q.ColumnCount(); ++c)
        out += (c > 0 ? "|" : "") + q.Text(q.ColumnName(c).c_str());
      out += ";";
    }
    return out;
  }

  WindowUi window_ui_{ui_};

 private:
  std::vector<std::unique_ptr<QTimer>> waits_;
};

}  // namespace lotwise::testing
