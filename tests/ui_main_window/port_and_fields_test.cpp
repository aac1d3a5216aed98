#include <gtest/gtest.h>

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <functional>
#include <string>

#include "data/application.h"
#include "lots/buy_reinvest.h"
#include "support/golden.h"
#include "support/real_windows.h"
#include "ui/dialog_registry.h"
#include "ui/form_widgets.h"
#include "ui/qt_ui_port.h"

namespace lotwise::testing {
namespace {

// Runs `act` on the modal window that opens next, once it is up.
void OnNextModal(std::function<void(QWidget*)> act) {
  QTimer::singleShot(0, [act = std::move(act)] {
    QWidget* modal = QApplication::activeModalWidget();
    ASSERT_NE(modal, nullptr);
    act(modal);
  });
}

// The pipe-separated filters of the program's file requests become Qt's.
TEST(QtUiPortTest, QtFileFilter_Converts) {
  const std::pair<const char*, const char*> cases[] = {
      {"Export Files(*.csv)|*.csv|All Files(*.*)|*.*||", "Export Files (*.csv);;All Files (*)"},
      {"Data(*.mdb;*.bak)|*.mdb;*.bak", "Data (*.mdb *.bak)"},
      {"CSV Files (*.csv)", "CSV Files (*.csv)"},
      {"", ""}};
  for (const auto& [filter, expected] : cases) EXPECT_EQ(ui::QtFileFilter(filter), expected);
}

// The port's message box carries the exact text, title, icon and buttons
// asked for and answers with the button pressed.
TEST(QtUiPortTest, MessageBox_ShowsTextAndAnswers) {
  ui::QtUiPort port;
  OnNextModal([](QWidget* modal) {
    auto* box = qobject_cast<QMessageBox*>(modal);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text() + "|" + box->windowTitle(), "Delete this Block?|Delete Block");
    EXPECT_EQ(box->icon(), QMessageBox::Question);
    EXPECT_EQ(box->standardButtons(), QMessageBox::Yes | QMessageBox::No);
    box->button(QMessageBox::No)->click();
  });
  EXPECT_EQ(port.MessageBox("Delete this Block?", "Delete Block", Icon::kQuestion, Buttons::kYesNo),
            Answer::kNo);
}

// dlgChkFiles offers Delete, Create and Ignore, Create only when allowed;
// closing it decides nothing.
TEST(QtUiPortTest, ChkFiles_ButtonsAndChoice) {
  ui::QtUiPort port;
  OnNextModal([](QWidget* modal) {
    EXPECT_EQ(modal->objectName() + "|" + modal->windowTitle(),
              "dlgChkFiles|Taxpayer Record Missing...");
    EXPECT_EQ(modal->findChild<QLabel*>("lblMessage")->text(), "A Taxpayer File was found.");
    EXPECT_FALSE(modal->findChild<QPushButton*>("btnCreate")->isEnabled());
    modal->findChild<QPushButton*>("btnDelete")->click();
  });
  EXPECT_EQ(port.ChkFiles("Taxpayer Record Missing...", "A Taxpayer File was found.", false),
            ChkFilesChoice::kDelete);
  OnNextModal([](QWidget* modal) {
    EXPECT_TRUE(modal->findChild<QPushButton*>("btnCreate")->isEnabled());
    modal->close();
  });
  EXPECT_EQ(port.ChkFiles("Taxpayer File Missing...", "text", true), ChkFilesChoice::kIgnore);
}

// A form whose window is not registered is reported, not run; windows are
// found by the form's type, not by a name another form may borrow.
struct NamesakeForm : DialogForm {
  std::string_view Name() const override { return "dlgBuyReinvest"; }
};

TEST(QtUiPortTest, RunModal_UnknownFormIsReported) {
  ui::QtUiPort port{ui::DialogRegistry()};
  OnNextModal([](QWidget* modal) {
    auto* box = qobject_cast<QMessageBox*>(modal);
    ASSERT_NE(box, nullptr);
    const Said said = ReadSaid(__FILE__, "no window");
    EXPECT_EQ(box->windowTitle().toStdString() + "|" + box->text().toStdString(),
              said.title + "|" + said.text);
    box->button(QMessageBox::Ok)->click();
  });
  NamesakeForm form;
  port.RunModal(form);
  const ui::DialogRegistry registry = ui::AllDialogs();
  EXPECT_NE(registry.Find(BuyReinvestForm()), nullptr);
  EXPECT_EQ(registry.Find(NamesakeForm()), nullptr);
}

// Masked dates read back as the forms and the INI file hold them.
TEST(FormWidgetsTest, DateEdit_MaskAndTexts) {
  QLineEdit edit;
  ui::MakeDateEdit(&edit);
  EXPECT_EQ(ui::DateEditText(&edit), "__/__/____");
  EXPECT_EQ(ui::DateEditMaskText(&edit), kEmptyDateMask);
  ui::SetDateEditText(&edit, "1/5/2024");
  EXPECT_EQ(ui::DateEditText(&edit), "01/05/2024");
  ui::SetDateEditText(&edit, kEmptyDateMask);
  EXPECT_EQ(ui::DateEditText(&edit), "__/__/____");
  QTest::keyClicks(&edit, "12312024");
  EXPECT_EQ(ui::DateEditText(&edit), "12/31/2024");
  edit.clear();
  QTest::keyClicks(&edit, "1a2");
  EXPECT_EQ(ui::DateEditText(&edit), "12/__/____");
}

// Money and number fields take what the core can read, and nothing else.
TEST(FormWidgetsTest, AmountFields_TakeCoreAmounts) {
  for (const GoldenCase& c : ReadCases(__FILE__, "fields.txt")) {
    SCOPED_TRACE(c.name);
    QLineEdit money, number;
    ui::MakeMoneyEdit(&money);
    ui::MakeNumberEdit(&number);
    QTest::keyClicks(&money, QString::fromStdString(c.name));
    QTest::keyClicks(&number, QString::fromStdString(c.name));
    const auto result = [&](QLineEdit& edit, const char* kind) {
      return std::string(kind) + (edit.text().toStdString() == c.name ? " takes" : " refuses");
    };
    EXPECT_EQ(c.Lines(""),
              (std::vector<std::string>{result(money, "money"), result(number, "number")}));
  }
}

// In a dialog Enter moves from field to field and never presses the
// default button; leaving a field runs its check once, and the check's own
// message box does not run it again.
TEST(FormWidgetsTest, EnterMovesFocusAndLeaveRunsCheck) {
  QDialog dialog;
  auto* first = new QLineEdit(&dialog);
  auto* second = new QLineEdit(&dialog);
  auto* ok = new QPushButton("OK", &dialog);
  ok->setDefault(true);
  auto* layout = new QVBoxLayout(&dialog);
  for (QWidget* widget :
       {static_cast<QWidget*>(first), static_cast<QWidget*>(second), static_cast<QWidget*>(ok)}) {
    layout->addWidget(widget);
  }
  bool accepted = false;
  QObject::connect(ok, &QPushButton::clicked, [&] { accepted = true; });
  ui::InstallEnterMovesFocus(&dialog);
  int checks = 0;
  ui::OnLeave(first, [&] {
    ++checks;
    QMessageBox box(QMessageBox::Warning, "Invalid Date", "bad", QMessageBox::Ok, &dialog);
    QTimer::singleShot(0, &box, [&box] { box.accept(); });
    box.exec();
  });
  dialog.show();
  dialog.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  first->setFocus();
  QTest::keyClick(first, Qt::Key_Return);
  // The check's message box took the activation; the dialog gets it back.
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  EXPECT_TRUE(second->hasFocus());
  QTest::keyClick(second, Qt::Key_Enter);
  EXPECT_TRUE(ok->hasFocus());
  EXPECT_FALSE(accepted || !dialog.isVisible());
  QTest::keyClick(ok, Qt::Key_Return);
  EXPECT_TRUE(accepted);
  EXPECT_EQ(checks, 1);
}

}  // namespace
}  // namespace lotwise::testing
