#include <QApplication>
#include <QDialog>
#include <QImage>
#include <QMessageBox>
#include <QPrinterInfo>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <filesystem>
#include <fstream>
#include <functional>

#include "lots/sell_shares.h"
#include "reports/report_dialogs.h"
#include "reports_basis/basis_fixture.h"
#include "support/real_windows.h"
#include "ui/qt_ui_port.h"
#include "ui/report_viewer.h"

namespace lotwise::testing {
namespace {

namespace fs = std::filesystem;

QList<QWidget*> TopLevels(const char* name) {
  QList<QWidget*> found;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() == QLatin1String(name) && widget->isVisible()) found.push_back(widget);
  }
  return found;
}

// The taxpayer's ledger of the core's tests, driven through the desktop
// program's own port: its dialog windows, message boxes and report viewer.
class UiReportsTest : public BasisTest {
 protected:
  void SetUp() override {
    BasisTest::SetUp();
    Sell(Buy(AddSecurity("IBM", SellMethod::kFifo), "01/05/2024", 10, "100"), "06/03/2025", 4,
         "60");
    Sell(Buy(AddSecurity("MSFT", SellMethod::kFifo), "02/05/2024", 5, "50"), "03/03/2025", 5, "80");
    desk_ = std::make_unique<Application>(port_, *env_, program_folder_, "lotwise");
    for (auto member : {&Application::temp_folder, &Application::ssf_folder,
                        &Application::taxpayer_folder, &Application::report_db_path}) {
      (*desk_).*member = (*app_).*member;
    }
    desk_->window = app_->window;
    desk_->current = app_->current;
    desk_->central = std::move(app_->central);
    desk_->client = std::move(app_->client);
    port_.Attach(*desk_);
  }
  void TearDown() override {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (widget->objectName() == "frmReportViewer" || widget->objectName() == "frmHelp") {
        delete widget;
      }
    }
    desk_.reset();
    BasisTest::TearDown();
  }

  // Runs `show` (which opens a modal window) while `user` plays on the
  // window that opens. A window still open after ten seconds is closed
  // and fails the test rather than hanging it.
  void Drive(const std::function<void()>& show, const std::function<void(QWidget*)>& user) {
    QTimer::singleShot(0, [user] { user(QApplication::activeModalWidget()); });
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, [] {
      for (int i = 0; i < 5 && QApplication::activeModalWidget(); ++i) {
        QWidget* modal = QApplication::activeModalWidget();
        ADD_FAILURE() << "window left open: " << modal->objectName().toStdString();
        if (auto* dialog = qobject_cast<QDialog*>(modal)) dialog->done(QDialog::Rejected);
      }
    });
    watchdog.start(10000);
    show();
  }

  // Answers the next message box with OK and returns its text.
  void AnswerNextMessage(std::string* text) {
    QTimer::singleShot(0, [text] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      *text = box->text().toStdString();
      box->button(QMessageBox::Ok)->click();
    });
  }

  ui::QtUiPort port_;
  std::unique_ptr<Application> desk_;
};

// In the Basis Analysis window Enter moves to the next field and never
// runs the report; a refused year end keeps the window open with the focus
// back on the date. View shows the report in a viewer window captioned
// with its title, with the ledger's figures; the choices are kept for the
// next time.
TEST_F(UiReportsTest, BasisOptions_RefusedThenView) {
  std::string message;
  Drive([&] { ShowBasisAnalysisDialog(*desk_); },
        [&](QWidget* dialog) {
          ASSERT_NE(dialog, nullptr);
          EXPECT_EQ(dialog->windowTitle(), "Basis Analysis Options");
          auto* date = Get<QLineEdit>(*dialog, "dtYearEnd");
          EXPECT_EQ(date->displayText(), "12/31/2025");
          date->setFocus();
          QTest::keyClick(date, Qt::Key_Return);
          EXPECT_EQ(dialog->focusWidget()->objectName(), "CSoptScope0");
          date->setFocus();
          date->selectAll();
          QTest::keyClicks(date, "13452025");
          AnswerNextMessage(&message);
          Click(*dialog, "btnView");
          EXPECT_TRUE(dialog->isVisible() && TopLevels("frmReportViewer").empty());
          EXPECT_EQ(dialog->focusWidget(), date);
          EXPECT_EQ(desk_->prefs.basis_ye, "13/45/2025");
          date->selectAll();
          QTest::keyClicks(date, "06302025");
          Click(*dialog, "CSoptReportType1");
          Click(*dialog, "btnView");
        });
  EXPECT_EQ(message, ReadSaid(kReportsSource, "invalid_year_end").text);
  const QList<QWidget*> viewers = TopLevels("frmReportViewer");
  ASSERT_EQ(viewers.size(), 1);
  EXPECT_EQ(viewers[0]->windowTitle(), "Basis Analysis Report");
  const std::string text =
      Get<QWidget>(*viewers[0], "pnlPages")->accessibleDescription().toStdString();
  EXPECT_NE(text.find("Summary"), std::string::npos);
  EXPECT_NE(text.find("Year End: 06/30/2025"), std::string::npos);
  EXPECT_NE(text.find("IBM IBM Corp FIFO 6 60.00 10.00"), std::string::npos) << text;
  EXPECT_EQ(desk_->prefs.basis_ye, "06/30/2025");
}

// The viewer draws each page at 100 % (a point is 1/72 inch) and its pages
// fill the window whatever its size.
ReportDocument TwoPages() {
  const ReportPage page{{{.x = 72,
                          .y = 200,
                          .width = 300,
                          .text = "X",
                          .align = ReportText::Align::kRight,
                          .size = 20}},
                        {{72, 100, 540, 100, 2}}};
  return {.title = "Test Report", .pages = {page, page}};
}

TEST_F(UiReportsTest, Viewer_FullSizePagesFollowWindow) {
  ui::ShowReportViewer(TwoPages(), nullptr);
  QWidget* viewer = TopLevels("frmReportViewer").value(0);
  ASSERT_NE(viewer, nullptr);
  EXPECT_EQ(viewer->windowTitle(), "Test Report");
  auto* pages = Get<QWidget>(*viewer, "pnlPages");
  const double scale = pages->logicalDpiX() / 72.0;
  EXPECT_EQ(pages->minimumWidth(), qRound(612 * scale) + 32);
  auto* scroll = Get<QScrollArea>(*viewer, "scrReport");
  for (QSize size : {QSize(400, 300), QSize(1400, 1100)}) {
    viewer->resize(size);
    QApplication::processEvents();
    EXPECT_EQ(scroll->width(), viewer->width());
    EXPECT_EQ(scroll->geometry().bottom(), viewer->height() - 1);
    EXPECT_GE(pages->width(), scroll->viewport()->width());
  }

  // The rule is drawn across the page; the right-aligned text sits at the
  // right end of its cell.
  QImage image = pages->grab().toImage();
  const int left = (pages->width() - qRound(612 * scale)) / 2;
  auto dark = [&](double x1, double x2, double y1, double y2) {
    for (int y = qRound(16 + y1 * scale); y <= qRound(16 + y2 * scale); ++y) {
      for (int x = qRound(left + x1 * scale); x <= qRound(left + x2 * scale); ++x) {
        if (qGray(image.pixel(x, y)) < 128) return true;
      }
    }
    return false;
  };
  EXPECT_TRUE(dark(300, 300, 99, 101));
  EXPECT_TRUE(dark(352, 372, 180, 200));
  EXPECT_FALSE(dark(72, 340, 180, 200));
}

TEST_F(UiReportsTest, SaveReportPdf_WritesFile) {
  const std::string path = root_ + "report.pdf";
  ASSERT_TRUE(ui::SaveReportPdf(TwoPages(), path, nullptr));
  std::ifstream in(path, std::ios::binary);
  std::string head(5, '\0');
  in.read(head.data(), 5);
  EXPECT_EQ(head, "%PDF-");
}

TEST_F(UiReportsTest, PrintReport_NoPrinter_20526) {
  if (!QPrinterInfo::availablePrinters().isEmpty()) GTEST_SKIP() << "this machine has a printer";
  EXPECT_EQ(ui::PrintReportDocument(TwoPages(), nullptr), 20526);
}

// Help opens one help window on the manual's page and anchor, and reuses it.
TEST_F(UiReportsTest, HelpWindow_OpensPageOnce) {
  const std::string folder = root_ + "help/";
  fs::create_directories(folder);
  std::ofstream(folder + "index.html") << "<h1><a name=\"top\">Contents</a></h1>";
  std::ofstream(folder + "reports.html") << "<h1><a name=\"basis\">Basis</a></h1>";
  ui::ShowHelpWindow(folder + "reports.html", "basis", nullptr);
  ui::ShowHelpWindow(folder + "index.html", "", nullptr);
  const QList<QWidget*> windows = TopLevels("frmHelp");
  ASSERT_EQ(windows.size(), 1);
  auto* browser = Get<QTextBrowser>(*windows[0], "txtHelp");
  EXPECT_EQ(browser->source().fileName(), "index.html");
  EXPECT_TRUE(Get<QPushButton>(*windows[0], "btnBack")->isEnabled());
  Click(*windows[0], "btnBack");
  EXPECT_EQ(browser->source().fileName() + "#" + browser->source().fragment(),
            "reports.html#basis");
}

}  // namespace
}  // namespace lotwise::testing
