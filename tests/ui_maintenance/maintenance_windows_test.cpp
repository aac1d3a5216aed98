#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "app/maintenance.h"
#include "ground/paths.h"
#include "maintenance/maint_fixture.h"
#include "support/golden.h"
#include "support/real_windows.h"

namespace lotwise::testing {
namespace {

// The maintenance windows shown for real (see ShowWindow).
class MaintenanceWindowTest : public MaintenanceTest {
 protected:
  static QString Text(QWidget& window, const char* name) {
    auto* label = Get<QLabel>(window, name);
    return label != nullptr ? label->text() : QString();
  }
};

// Repair through the real window: the user picks the damaged taxpayer in
// the list and presses Repair; the window shows the statuses the run left,
// the file comes back sound with every readable row, and Close closes.
TEST_F(MaintenanceWindowTest, RepairWindow_RepairsPickedDamagedFile) {
  WriteTaxpayerFile("AAA.mdb", "A1", "Adams");
  WriteTaxpayerFile("DOE.mdb", "D1", "Doe & Co");
  Index("A1", "Adams", "AAA.mdb");
  Index("D1", "Doe & Co", "DOE.mdb");
  const std::string path = app_->taxpayer_folder + "DOE.mdb";
  FillTaxpayer(path, 800);
  const Rows before = ReadRows(path);
  DamagePages(path, {{"Buy", 2, 3}});
  const Rows readable = ReadableRows(path, before);
  ASSERT_LT(RowCount(readable), RowCount(before));
  ExpectSaid(ui_, __FILE__, "rebuilt");

  CompressRepairForm form;
  LoadCompressRepair(*app_, form, kRepairCaption);
  ShowWindow(*app_, form, [&](QDialog& window) {
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Repair Files"));
    EXPECT_TRUE(Get<QPushButton>(window, "btnRepair")->isVisibleTo(&window));
    EXPECT_FALSE(Get<QPushButton>(window, "btnCompress")->isVisibleTo(&window));
    EXPECT_EQ(Text(window, "lblSelStatus"), QStringLiteral("Waiting..."));
    auto* list = Get<QListWidget>(window, "lstTaxpayers");
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(1)->text(), QStringLiteral("Doe & Co"));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualItemRect(list->item(1)).center());
    EXPECT_TRUE(Get<QCheckBox>(window, "chkSelTaxpayers")->isChecked());

    QTest::mouseClick(Get<QPushButton>(window, "btnRepair"), Qt::LeftButton);

    EXPECT_EQ(Text(window, "lblSelStatus"), QStringLiteral("Finished"));
    EXPECT_EQ(Text(window, "lblSelTime"), QStringLiteral("00:00:00"));
    EXPECT_EQ(Text(window, "lblSSFStatus"), QStringLiteral("Waiting..."));
    EXPECT_EQ(Text(window, "lblAllStatus"), QStringLiteral("Waiting..."));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Repair Files"));
    QTest::mouseClick(Get<QPushButton>(window, "btnClose"), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
  });

  EXPECT_EQ(form.picked, (std::vector<bool>{false, true}));
  EXPECT_EQ(Integrity(path), "ok");
  EXPECT_EQ(Diff(ReadRows(path), readable), "");
  EXPECT_FALSE(FileExists(app_->taxpayer_folder + "AAA.bak"));
}

// The delete-backups window: Delete with nothing to delete says so in its
// status line and a message; Close closes.
TEST_F(MaintenanceWindowTest, DelBackupsWindow_NoBackups) {
  ExpectSaid(ui_, __FILE__, "no backups");
  DelBackupsForm form;
  ShowWindow(*app_, form, [&](QDialog& window) {
    QTest::mouseClick(Get<QPushButton>(window, "btnDelete"), Qt::LeftButton);
    EXPECT_EQ(Text(window, "lblStatus"), QStringLiteral("There are no backup files to delete"));
    QTest::mouseClick(Get<QPushButton>(window, "btnClose"), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
  });
  EXPECT_TRUE(form.closed);
}

// The backup notice names the two data folders above its text.
TEST_F(MaintenanceWindowTest, BackupWindow_ShowsFolders) {
  BackupNoticeForm form;
  form.ssf_folder = app_->ssf_folder;
  form.taxpayer_folder = app_->taxpayer_folder;
  form.notice = BackupNoticeText();
  ShowWindow(*app_, form, [&](QDialog& window) {
    EXPECT_EQ(Text(window, "lblSSFFolder").toStdString(), app_->ssf_folder);
    EXPECT_EQ(Text(window, "lblTaxpayerFolder").toStdString(), app_->taxpayer_folder);
    EXPECT_TRUE(Text(window, "lblNotice").startsWith(QStringLiteral("As of version LW2000.20")));
    QTest::mouseClick(Get<QPushButton>(window, "btnOK"), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
  });
  EXPECT_TRUE(form.closed);
}

}  // namespace
}  // namespace lotwise::testing
