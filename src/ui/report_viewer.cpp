#include "ui/report_viewer.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPageSetupDialog>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "ground/lw_error.h"
#include "reports/pdf_writer.h"
#include "reports/report_document.h"
#include "ui/form_widgets.h"

namespace lotwise::ui {

namespace {

// Pixels around and between the pages on the screen.
constexpr int kGap = 16;

// The report's font: Helvetica where installed, else the system's sans
// serif, which has near enough the metrics the layout was measured with.
QFont ReportFont(double size, bool bold) {
  QFont font(QStringLiteral("Helvetica"));
  font.setStyleHint(QFont::SansSerif);
  font.setPointSizeF(size);
  font.setBold(bold);
  return font;
}

// Draws one page with its top left corner at the painter's origin; `sx`
// and `sy` are the device's pixels per point. Fonts are sized in points,
// which the painter turns into the device's pixels itself.
void DrawPage(QPainter& painter, const ReportPage& page, double sx, double sy) {
  painter.setPen(Qt::black);
  for (const ReportRule& rule : page.rules) {
    QPen pen(Qt::black);
    pen.setWidthF(std::max(rule.thickness * sx, 1.0));
    painter.setPen(pen);
    painter.drawLine(QPointF(rule.x1 * sx, rule.y1 * sy), QPointF(rule.x2 * sx, rule.y2 * sy));
  }
  painter.setPen(Qt::black);
  std::map<std::pair<double, bool>, QFont> fonts;
  for (const ReportText& text : page.texts) {
    auto key = std::make_pair(text.size, text.bold);
    auto found = fonts.find(key);
    if (found == fonts.end()) found = fonts.emplace(key, ReportFont(text.size, text.bold)).first;
    const QFont& font = found->second;
    const QString words = ToQ(text.text);
    double width = QFontMetricsF(font, painter.device()).horizontalAdvance(words);
    // The layout placed the words with Helvetica's widths. A wider stand-in
    // font is narrowed to them, so that neighbouring columns never overlap.
    const double planned = MeasureText(text.text, text.bold, text.size) * sx;
    if (width > planned + 0.5) {
      QFont narrowed = font;
      narrowed.setStretch(std::max(1, static_cast<int>(100.0 * planned / width)));
      painter.setFont(narrowed);
      width = QFontMetricsF(narrowed, painter.device()).horizontalAdvance(words);
    } else {
      painter.setFont(font);
    }
    double x = text.x * sx;
    if (text.align == ReportText::Align::kRight) x += text.width * sx - width;
    if (text.align == ReportText::Align::kCenter) x += (text.width * sx - width) / 2;
    painter.drawText(QPointF(x, text.y * sy), words);
  }
}

// The pages one under the other on a grey ground, centred in the width the
// scroll area gives.
class PagesWidget : public QWidget {
 public:
  PagesWidget(std::shared_ptr<const ReportDocument> report, QWidget* parent)
      : QWidget(parent), report_(std::move(report)) {
    setObjectName(QStringLiteral("pnlPages"));
    // Screen readers get the report's words.
    setAccessibleName(ToQ(report_->title));
    setAccessibleDescription(ToQ(report_->PlainText()));
    QPalette ground = palette();
    ground.setColor(QPalette::Window, QColor(128, 128, 128));
    setPalette(ground);
    setAutoFillBackground(true);
    setMinimumSize(sizeHint());
  }

  double ScaleX() const { return logicalDpiX() / 72.0; }
  double ScaleY() const { return logicalDpiY() / 72.0; }
  QSize PageSize() const {
    return QSize(qRound(report_->page_width * ScaleX()), qRound(report_->page_height * ScaleY()));
  }
  QSize sizeHint() const override {
    const QSize page = PageSize();
    const int count = std::max<int>(1, static_cast<int>(report_->pages.size()));
    return QSize(page.width() + 2 * kGap, count * (page.height() + kGap) + kGap);
  }
  // The page's rectangle in this widget.
  QRect PageRect(int index) const {
    const QSize page = PageSize();
    const int left = std::max(kGap, (width() - page.width()) / 2);
    return QRect(QPoint(left, kGap + index * (page.height() + kGap)), page);
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    for (int i = 0; i < static_cast<int>(report_->pages.size()); ++i) {
      const QRect rect = PageRect(i);
      if (!rect.adjusted(0, 0, 4, 4).intersects(event->rect())) continue;
      painter.fillRect(rect.translated(3, 3), QColor(64, 64, 64));
      painter.fillRect(rect, Qt::white);
      painter.save();
      painter.translate(rect.topLeft());
      painter.setClipRect(QRect(QPoint(0, 0), rect.size()));
      DrawPage(painter, report_->pages[static_cast<size_t>(i)], ScaleX(), ScaleY());
      painter.restore();
    }
  }

 private:
  std::shared_ptr<const ReportDocument> report_;
};

class ReportViewer : public QWidget {
 public:
  ReportViewer(const ReportDocument& report, QWidget* parent)
      : QWidget(parent, Qt::Window), report_(std::make_shared<const ReportDocument>(report)) {
    setObjectName(QStringLiteral("frmReportViewer"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(ToQ(report_->title));

    auto* print = new QPushButton(tr("&Print..."), this);
    print->setObjectName(QStringLiteral("btnPrint"));
    auto* save = new QPushButton(tr("Save as P&DF..."), this);
    save->setObjectName(QStringLiteral("btnSavePdf"));
    const size_t count = report_->pages.size();
    auto* pages_label =
        new QLabel(count == 1 ? tr("1 page") : tr("%1 pages").arg(static_cast<int>(count)), this);
    pages_label->setObjectName(QStringLiteral("lblPages"));
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(6, 6, 6, 6);
    buttons->addWidget(print);
    buttons->addWidget(save);
    buttons->addStretch(1);
    buttons->addWidget(pages_label);

    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("scrReport"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* pages = new PagesWidget(report_, scroll);
    scroll->setWidget(pages);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(buttons);
    layout->addWidget(scroll, 1);

    connect(print, &QPushButton::clicked, this, [this] { Print(); });
    connect(save, &QPushButton::clicked, this, [this] { SaveAs(); });

    // A page's width at full size, and as much of its height as the screen
    // allows.
    QSize size = pages->sizeHint() + QSize(scroll->verticalScrollBar()->sizeHint().width(), 0);
    size.rheight() += buttons->sizeHint().height();
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
      const QRect available = screen->availableGeometry();
      size = size.boundedTo(QSize(available.width() * 9 / 10, available.height() * 9 / 10));
    }
    resize(size);
  }

 private:
  void Print() {
    if (PrintReportDocument(*report_, this) == err::kNoDefaultPrinter) {
      QMessageBox::information(
          this, tr("No Printer"),
          tr("No printer is set up on this computer. Set up a printer and try again, or save the "
             "report as PDF and print that file elsewhere."));
    }
  }

  void SaveAs() {
    const QString name = QFileDialog::getSaveFileName(this, tr("Save Report as PDF"),
                                                      ToQ(report_->title) + QStringLiteral(".pdf"),
                                                      tr("PDF Files (*.pdf);;All Files (*)"));
    if (name.isEmpty()) return;
    QString path = name;
    if (QFileInfo(path).suffix().isEmpty()) path += QStringLiteral(".pdf");
    SaveReportPdf(*report_, FromQ(path), this);
  }

  // The window keeps its own copy, shared with its pages: the report
  // outlives the run that made it.
  std::shared_ptr<const ReportDocument> report_;
};

// The printer of this run: the set-up dialog's choices stay for the next
// print job. Never freed: Qt's printing must not be torn down after the
// application object at exit.
QPrinter& CurrentPrinter() {
  static QPrinter* printer = new QPrinter(QPrinter::HighResolution);
  return *printer;
}

bool PrinterAvailable() {
  return !QPrinterInfo::availablePrinters().isEmpty() || !QPrinterInfo::defaultPrinter().isNull();
}

QPointer<QWidget>& HelpWindowSlot() {
  static QPointer<QWidget> window;
  return window;
}

class HelpWindow : public QWidget {
 public:
  HelpWindow(const QUrl& home, QWidget* parent) : QWidget(parent, Qt::Window), home_(home) {
    setObjectName(QStringLiteral("frmHelp"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Lotwise Help"));

    auto* back = new QPushButton(tr("&Back"), this);
    back->setObjectName(QStringLiteral("btnBack"));
    auto* forward = new QPushButton(tr("&Forward"), this);
    forward->setObjectName(QStringLiteral("btnForward"));
    auto* contents = new QPushButton(tr("&Home"), this);
    contents->setObjectName(QStringLiteral("btnHome"));
    browser_ = new QTextBrowser(this);
    browser_->setObjectName(QStringLiteral("txtHelp"));
    browser_->setOpenExternalLinks(true);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(back);
    buttons->addWidget(forward);
    buttons->addWidget(contents);
    buttons->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addWidget(browser_, 1);

    back->setEnabled(false);
    forward->setEnabled(false);
    connect(browser_, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
    connect(browser_, &QTextBrowser::forwardAvailable, forward, &QPushButton::setEnabled);
    connect(back, &QPushButton::clicked, browser_, &QTextBrowser::backward);
    connect(forward, &QPushButton::clicked, browser_, &QTextBrowser::forward);
    connect(contents, &QPushButton::clicked, this, [this] { browser_->setSource(home_); });
    resize(640, 720);
  }

  void Show(const QUrl& page) {
    browser_->setSource(page);
    show();
    raise();
    activateWindow();
  }

 private:
  QUrl home_;
  QTextBrowser* browser_ = nullptr;
};

}  // namespace

void ShowReportViewer(const ReportDocument& report, QWidget* parent) {
  auto* viewer = new ReportViewer(report, parent);
  viewer->show();
}

int PrintReportDocument(const ReportDocument& report, QWidget* parent) {
  if (!PrinterAvailable()) return err::kNoDefaultPrinter;
  QPrinter& printer = CurrentPrinter();
  printer.setDocName(ToQ(report.title));
  // Positions are measured from the paper's corner, not the printable
  // area's.
  printer.setFullPage(true);
  printer.setPageOrientation(report.page_width > report.page_height ? QPageLayout::Landscape
                                                                    : QPageLayout::Portrait);
  QPrintDialog dialog(&printer, parent);
  dialog.setObjectName(QStringLiteral("dlgPrint"));
  dialog.setOptions(QAbstractPrintDialog::PrintPageRange |
                    QAbstractPrintDialog::PrintCollateCopies |
                    QAbstractPrintDialog::PrintShowPageSize);
  dialog.setMinMax(1, std::max(1, static_cast<int>(report.pages.size())));
  if (dialog.exec() != QDialog::Accepted) return err::kPrintCancelled;

  int first = 1;
  int last = static_cast<int>(report.pages.size());
  if (printer.printRange() == QPrinter::PageRange) {
    first = std::max(first, printer.fromPage());
    last = std::min(last, printer.toPage());
  }
  QPainter painter;
  if (!painter.begin(&printer)) return err::kDeviceUnavailable;
  const double sx = printer.logicalDpiX() / 72.0;
  const double sy = printer.logicalDpiY() / 72.0;
  for (int page = first; page <= last; ++page) {
    if (page > first) printer.newPage();
    DrawPage(painter, report.pages[static_cast<size_t>(page - 1)], sx, sy);
  }
  painter.end();
  return 0;
}

bool RunPrintSetup(QWidget* parent) {
  QPageSetupDialog dialog(&CurrentPrinter(), parent);
  dialog.setObjectName(QStringLiteral("dlgPrintSetup"));
  return dialog.exec() == QDialog::Accepted;
}

bool SaveReportPdf(const ReportDocument& report, const std::string& path, QWidget* parent) {
  try {
    WriteReportPdf({report}, path);
    return true;
  } catch (const LwError& error) {
    QMessageBox::warning(
        parent, QObject::tr("Report Not Saved"),
        QObject::tr("The report could not be saved as %1: %2").arg(ToQ(path), ToQ(error.text())));
    return false;
  }
}

void ShowHelpWindow(const std::string& path, const std::string& anchor, QWidget* parent) {
  const QUrl page_file = QUrl::fromLocalFile(ToQ(path));
  QUrl page = page_file;
  if (!anchor.empty()) page.setFragment(ToQ(anchor));
  QPointer<QWidget>& slot = HelpWindowSlot();
  if (!slot) {
    // Home is the manual's contents beside the page, when it is there.
    const QFileInfo contents(QFileInfo(ToQ(path)).dir(), QStringLiteral("index.html"));
    const QUrl home = contents.exists() ? QUrl::fromLocalFile(contents.filePath()) : page_file;
    slot = new HelpWindow(home, parent);
  }
  static_cast<HelpWindow*>(slot.data())->Show(page);
}

}  // namespace lotwise::ui
