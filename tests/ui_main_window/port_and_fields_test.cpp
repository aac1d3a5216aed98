#include <gtest/gtest.h>

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <functional>
#include <ostream>
#include <string>

#include "data/application.h"
#include "lots/buy_reinvest.h"
#include "ui/form_widgets.h"
#include "ui/qt_ui_port.h"
#include "ui_main_window/main_window_fixture.h"

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
struct FilterCase {
  const char* label;
  const char* filter;
  const char* expected;
};

void PrintTo(const FilterCase& c, std::ostream* os) { *os << c.label; }

class FileFilterTest : public ::testing::TestWithParam<FilterCase> {};

TEST_P(FileFilterTest, QtFileFilter_Converts) {
  EXPECT_EQ(ui::QtFileFilter(GetParam().filter), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Filters, FileFilterTest,
    ::testing::Values(FilterCase{"Export", "Export Files(*.csv)|*.csv|All Files(*.*)|*.*||",
                                 "Export Files (*.csv);;All Files (*)"},
                      FilterCase{"TwoPatterns", "Data(*.mdb;*.bak)|*.mdb;*.bak",
                                 "Data (*.mdb *.bak)"},
                      FilterCase{"QtForm", "CSV Files (*.csv)", "CSV Files (*.csv)"},
                      FilterCase{"Empty", "", ""}),
    [](const auto& info) { return std::string(info.param.label); });

// The port's message box carries the exact text, title, icon and buttons
// asked for and answers with the button pressed.
TEST(QtUiPortTest, MessageBox_ShowsTextAndAnswers) {
  QtApp();
  ui::QtUiPort port;
  OnNextModal([](QWidget* modal) {
    auto* box = qobject_cast<QMessageBox*>(modal);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), "Delete this Block?");
    EXPECT_EQ(box->windowTitle(), "Delete Block");
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
  QtApp();
  ui::QtUiPort port;
  OnNextModal([](QWidget* modal) {
    EXPECT_EQ(modal->objectName(), "dlgChkFiles");
    EXPECT_EQ(modal->windowTitle(), "Taxpayer Record Missing...");
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

// A form whose window is not registered is reported, not run.
struct UnknownForm : DialogForm {
  std::string_view Name() const override { return "dlgNowhere"; }
};

TEST(QtUiPortTest, RunModal_UnknownFormIsReported) {
  QtApp();
  ui::QtUiPort port{ui::DialogRegistry()};
  OnNextModal([](QWidget* modal) {
    auto* box = qobject_cast<QMessageBox*>(modal);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowTitle(), "Window Not Available");
    EXPECT_EQ(box->text(),
              "The window dlgNowhere is not available in this version of Lotwise. Nothing has "
              "been changed.");
    box->button(QMessageBox::Ok)->click();
  });
  UnknownForm form;
  port.RunModal(form);
}

// Windows are found by the form's type: a form that only borrows a known
// dialog's name gets no window built for another form's fields.
struct NamesakeForm : DialogForm {
  std::string_view Name() const override { return "dlgBuyReinvest"; }
};

TEST(DialogRegistryTest, Find_ByTheFormsType) {
  const ui::DialogRegistry registry = ui::AllDialogs();
  EXPECT_NE(registry.Find(BuyReinvestForm()), nullptr);
  EXPECT_EQ(registry.Find(NamesakeForm()), nullptr);
}

// Masked dates read back as the forms and the INI file hold them.
TEST(FormWidgetsTest, DateEdit_MaskAndTexts) {
  QtApp();
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
struct AmountCase {
  const char* typed;
  bool money_takes;
  bool number_takes;
};

void PrintTo(const AmountCase& c, std::ostream* os) { *os << '"' << c.typed << '"'; }

class AmountFieldTest : public ::testing::TestWithParam<AmountCase> {};

TEST_P(AmountFieldTest, Validator_AcceptsCoreAmounts) {
  QtApp();
  QLineEdit money;
  QLineEdit number;
  ui::MakeMoneyEdit(&money);
  ui::MakeNumberEdit(&number);
  QTest::keyClicks(&money, GetParam().typed);
  QTest::keyClicks(&number, GetParam().typed);
  EXPECT_EQ(money.text() == GetParam().typed, GetParam().money_takes);
  EXPECT_EQ(number.text() == GetParam().typed, GetParam().number_takes);
}

INSTANTIATE_TEST_SUITE_P(
    Amounts, AmountFieldTest,
    ::testing::Values(AmountCase{"-1,234.5678", true, true}, AmountCase{"1234.56789", false, true},
                      AmountCase{"0.123456", false, false}, AmountCase{"12a", false, false},
                      AmountCase{"1.2.3", false, false}, AmountCase{"--1", false, false},
                      AmountCase{".5", true, true}));

// In a dialog Enter moves from field to field and never presses the
// default button; leaving a field runs its check once, and the check's own
// message box does not run it again.
TEST(FormWidgetsTest, EnterMovesFocusAndLeaveRunsCheck) {
  QtApp();
  QDialog dialog;
  auto* first = new QLineEdit(&dialog);
  auto* second = new QLineEdit(&dialog);
  auto* ok = new QPushButton("OK", &dialog);
  ok->setDefault(true);
  auto* layout = new QVBoxLayout(&dialog);
  layout->addWidget(first);
  layout->addWidget(second);
  layout->addWidget(ok);
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
  EXPECT_EQ(checks, 1);
  QTest::keyClick(second, Qt::Key_Enter);
  EXPECT_TRUE(ok->hasFocus());
  EXPECT_FALSE(accepted);
  EXPECT_TRUE(dialog.isVisible());
  QTest::keyClick(ok, Qt::Key_Return);
  EXPECT_TRUE(accepted);
  EXPECT_EQ(checks, 1);
}

}  // namespace
}  // namespace lotwise::testing
