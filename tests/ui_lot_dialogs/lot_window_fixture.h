#pragma once

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <QRadioButton>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "app/application.h"
#include "app/number_text.h"
#include "app/security_display.h"
#include "data/database.h"
#include "data/transaction_store.h"
#include "support/app_fixture.h"
#include "support/tests_c_helpers.h"
#include "support/values.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"

namespace lotwise::testing {

using Strings = std::vector<std::string>;

// The security "T" ("AT&T") of portfolio "Growth", and the real windows of
// the lot dialogs shown offscreen: a test scripts each window it expects
// with a drive that plays the user's part on the real widgets while the
// window runs modally; message boxes stay scripted on ui_.
class LotWindowTest : public AppTest {
 protected:
  using Drive = std::function<void(QDialog&)>;

  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
    OpenFreshTaxpayer();
    Portfolio("Growth");
    sec_id_ = Security("T");
    SecurityName("T", "AT&T");
    app_->current.port_name = "Growth";
    app_->current.sec_id = sec_id_;
    app_->current.sec_symbol = "T";
  }

  // Expects the window of form `name` next; `drive` runs once it is shown
  // and must close it (a window left open fails the test and is closed).
  void OnWindow(const char* name, Drive drive) {
    ui_.ExpectDialog(name, [this, drive = std::move(drive)](DialogForm& form) {
      const ui::DialogRunner* runner = registry_.Find(form);
      ASSERT_NE(runner, nullptr) << form.Name();
      QTimer::singleShot(0, [drive, name = std::string(form.Name())] {
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
      (*runner)(*app_, form, outer);
      // Nor is the window below activated again when it closes.
      if (outer != nullptr) QApplication::setActiveWindow(outer);
    });
  }

  void Buy(Day date, double shares, Amount cost) { Scenario::Buy(sec_id_, date, shares, cost); }
  // Gives the security its sell method and opens it in the main window.
  void Open(int method) {
    SellMethod("T", method);
    ShowSecDisplay(*app_, "T");
  }

  template <class W = QLineEdit>
  static W* Get(QDialog& dialog, const char* name) {
    W* control = dialog.findChild<W*>(QString::fromUtf8(name));
    EXPECT_NE(control, nullptr) << name;
    return control;
  }
  static std::string Shown(QDialog& dialog, const char* name) {
    QLineEdit* field = Get(dialog, name);
    return field == nullptr ? "" : ui::FromQ(field->displayText());
  }
  // Clicks into field `name` and replaces its text by typing `keys`; with
  // `tab` leaves it with Tab.
  static void Type(QDialog& dialog, const char* name, const char* keys, bool tab = false) {
    QLineEdit* edit = Get(dialog, name);
    if (edit == nullptr) return;
    QTest::mouseClick(edit, Qt::LeftButton);
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClick(edit, Qt::Key_Home);
    QTest::keyClicks(edit, QString::fromUtf8(keys));
    if (tab) QTest::keyClick(edit, Qt::Key_Tab);
  }
  static void TypeTab(QDialog& dialog, const char* name, const char* keys) {
    Type(dialog, name, keys, true);
  }
  static void Click(QDialog& dialog, const char* name) {
    auto* control = Get<QWidget>(dialog, name);
    if (control == nullptr) return;
    // A check box or option takes clicks on its box and caption only; its
    // row may be wider.
    const bool boxed = qobject_cast<QCheckBox*>(control) || qobject_cast<QRadioButton*>(control);
    QTest::mouseClick(control, Qt::LeftButton, {},
                      boxed ? QPoint(6, control->height() / 2) : control->rect().center());
  }
  static std::string FocusName() {
    QWidget* focus = QApplication::focusWidget();
    return focus == nullptr ? "(none)" : ui::FromQ(focus->objectName());
  }

  // Each row of `sql` with its columns joined by "|"; `kinds` gives each
  // column's kind: t text, n number, m money.
  Strings Rows(const char* sql, const char* kinds) {
    Strings rows;
    Query q = app_->client->Select(sql);
    while (q.Next()) {
      std::string row;
      for (int i = 0; kinds[i] != '\0'; ++i) {
        const std::string column = q.ColumnName(i);
        if (i > 0) row += "|";
        if (kinds[i] == 'n') row += NumberText(q.Double(column.c_str()));
        if (kinds[i] == 'm') row += q.Money(column.c_str()).ToString();
        if (kinds[i] == 't') row += q.Text(column.c_str());
      }
      rows.push_back(row);
    }
    return rows;
  }
  Strings BuyRows() {
    return Rows(R"(SELECT B."Block ID", T."Shares", T."Cost", T."Fee", T."Notes" FROM "Buy" AS T )"
                R"(JOIN "Blocks" AS B USING ("Block No") ORDER BY B."Date", B."Block ID")",
                "tnmmt");
  }
  Strings SellRows() {
    return Rows(R"(SELECT B."Block ID", T."Shares", T."Sale Price", T."Fee" FROM "Sell" AS T )"
                R"(JOIN "Blocks" AS B USING ("Block No") ORDER BY B."Date", B."Block ID")",
                "tnmm");
  }

  int64_t sec_id_ = 0;
  ui::DialogRegistry registry_ = ui::AllDialogs();
};

}  // namespace lotwise::testing
