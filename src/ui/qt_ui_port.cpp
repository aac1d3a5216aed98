#include "ui/qt_ui_port.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QStringList>
#include <QVBoxLayout>
#include <algorithm>

#include "data/application.h"
#include "ui/form_widgets.h"
#include "ui/main_window.h"
#include "ui/report_viewer.h"

namespace lotwise::ui {

namespace {

QMessageBox::Icon ToQtIcon(Icon icon) {
  switch (icon) {
    case Icon::kCritical:
      return QMessageBox::Critical;
    case Icon::kQuestion:
      return QMessageBox::Question;
    case Icon::kExclamation:
      return QMessageBox::Warning;
    case Icon::kInformation:
      return QMessageBox::Information;
    case Icon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ToQtButtons(Buttons buttons) {
  switch (buttons) {
    case Buttons::kOk:
      return QMessageBox::Ok;
    case Buttons::kOkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::kYesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case Buttons::kYesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case Buttons::kRetryCancel:
      return QMessageBox::Retry | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

// A box closed without a button (the program is ending) counts as the
// cautious answer of its kind.
Answer FromQtButton(int button, Buttons buttons) {
  switch (button) {
    case QMessageBox::Ok:
      return Answer::kOk;
    case QMessageBox::Yes:
      return Answer::kYes;
    case QMessageBox::No:
      return Answer::kNo;
    case QMessageBox::Retry:
      return Answer::kRetry;
    case QMessageBox::Cancel:
      return Answer::kCancel;
    default:
      break;
  }
  if (buttons == Buttons::kOk) return Answer::kOk;
  return buttons == Buttons::kYesNo ? Answer::kNo : Answer::kCancel;
}

// dlgChkFiles: the user decides what becomes of one mismatch between the
// taxpayer index and the files on disk. Closing it decides nothing.
ChkFilesChoice RunChkFilesDialog(QWidget* parent, std::string_view caption, std::string_view text,
                                 bool create_enabled) {
  QDialog dialog(parent);
  dialog.setObjectName("dlgChkFiles");
  dialog.setWindowTitle(ToQ(caption));
  auto* label = new QLabel(ToQ(text), &dialog);
  label->setObjectName("lblMessage");
  label->setWordWrap(true);
  label->setMinimumWidth(420);

  ChkFilesChoice choice = ChkFilesChoice::kIgnore;
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  auto add_button = [&](const char* name, const char* caption_text, ChkFilesChoice result) {
    auto* button = new QPushButton(QString::fromUtf8(caption_text), &dialog);
    button->setObjectName(name);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &dialog, [&dialog, &choice, result] {
      choice = result;
      dialog.accept();
    });
    buttons->addWidget(button);
    return button;
  };
  add_button("btnDelete", "&Delete", ChkFilesChoice::kDelete);
  add_button("btnCreate", "&Create", ChkFilesChoice::kCreate)->setEnabled(create_enabled);
  add_button("btnIgnore", "&Ignore", ChkFilesChoice::kIgnore);

  auto* layout = new QVBoxLayout(&dialog);
  layout->addWidget(label);
  layout->addLayout(buttons);
  dialog.exec();
  return choice;
}

QString WithSeparator(const QString& folder) {
  if (folder.isEmpty() || folder.endsWith('/')) return folder;
  return folder + '/';
}

}  // namespace

QString QtFileFilter(std::string_view filter) {
  const QString text = ToQ(filter);
  if (!text.contains('|')) return text;
  const QStringList parts = text.split('|', Qt::SkipEmptyParts);
  QStringList entries;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString description = parts[i];
    const qsizetype open = description.indexOf('(');
    if (open >= 0) description = description.left(open);
    QStringList patterns = parts[i + 1].split(';', Qt::SkipEmptyParts);
    for (QString& pattern : patterns) {
      pattern = pattern.trimmed();
      if (pattern == "*.*") pattern = "*";
    }
    entries << description.trimmed() + " (" + patterns.join(' ') + ")";
  }
  return entries.join(";;");
}

QtUiPort::QtUiPort(DialogRegistry registry) : registry_(std::move(registry)) {}

QtUiPort::~QtUiPort() {
  while (hourglass_depth_ > 0) PopHourglass();
}

void QtUiPort::SetMainWindow(MainWindow* window) {
  window_ = window;
  if (window_ && !help_text_.empty()) window_->SetHelpBarText(ToQ(help_text_));
}

QWidget* QtUiPort::DialogParent() const {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  if (window_ && window_->isVisible()) return window_.data();
  return nullptr;
}

Answer QtUiPort::MessageBox(std::string_view text, std::string_view title, Icon icon,
                            Buttons buttons) {
  QMessageBox box(ToQtIcon(icon), ToQ(title), ToQ(text), ToQtButtons(buttons), DialogParent());
  box.setObjectName("msgBox");
  // The wait cursor must not hide that the program waits for an answer.
  const bool waiting = hourglass_depth_ > 0;
  if (waiting) QApplication::setOverrideCursor(Qt::ArrowCursor);
  const int pressed = box.exec();
  if (waiting) QApplication::restoreOverrideCursor();
  return FromQtButton(pressed, buttons);
}

void QtUiPort::SetHelpBarText(std::string_view text) {
  help_text_ = std::string(text);
  if (window_) window_->SetHelpBarText(ToQ(text));
}

void QtUiPort::ProcessEvents() {
  // Paint and timers only: a click during a long operation must not start
  // a second command in the middle of the first.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void QtUiPort::StartGauge() {
  gauge_percent_ = 0;
  if (window_) window_->ShowGauge(0);
}

void QtUiPort::SetGauge(int percent) {
  gauge_percent_ = std::clamp(percent, 0, 100);
  if (window_) window_->ShowGauge(gauge_percent_);
}

void QtUiPort::AddGauge(int percent) { SetGauge(gauge_percent_ + percent); }

void QtUiPort::StopGauge() {
  gauge_percent_ = 0;
  if (window_) window_->HideGauge();
}

void QtUiPort::PushHourglass() {
  ++hourglass_depth_;
  QApplication::setOverrideCursor(Qt::WaitCursor);
}

void QtUiPort::PopHourglass() {
  if (hourglass_depth_ == 0) return;
  --hourglass_depth_;
  QApplication::restoreOverrideCursor();
}

std::string QtUiPort::PickFile(const FileRequest& request) {
  if (request.filter.empty()) {
    const QString folder = QFileDialog::getExistingDirectory(DialogParent(), ToQ(request.title),
                                                             ToQ(request.initial_folder));
    if (folder.isEmpty()) return {};
    return FromQ(WithSeparator(folder) + ToQ(request.file_name));
  }
  const QString start = WithSeparator(ToQ(request.initial_folder)) + ToQ(request.file_name);
  return FromQ(QFileDialog::getOpenFileName(DialogParent(), ToQ(request.title), start,
                                            QtFileFilter(request.filter)));
}

std::string QtUiPort::PickSaveFile(const FileRequest& request) {
  const QString start = WithSeparator(ToQ(request.initial_folder)) + ToQ(request.file_name);
  return FromQ(QFileDialog::getSaveFileName(DialogParent(), ToQ(request.title), start,
                                            QtFileFilter(request.filter)));
}

ChkFilesChoice QtUiPort::ChkFiles(std::string_view caption, std::string_view text,
                                  bool create_enabled) {
  return RunChkFilesDialog(DialogParent(), caption, text, create_enabled);
}

void QtUiPort::RunModal(DialogForm& form) {
  const DialogRunner* runner = registry_.Find(form);
  if (runner == nullptr || app_ == nullptr) {
    MessageBox("The window " + std::string(form.Name()) +
                   " is not available in this version of Lotwise. Nothing has been changed.",
               "Window Not Available", Icon::kExclamation, Buttons::kOk);
    return;
  }
  (*runner)(*app_, form, DialogParent());
}

void QtUiPort::ShowReport(const ReportDocument& report) {
  ShowReportViewer(report, window_.data());
}

int QtUiPort::PrintReport(const ReportDocument& report) {
  return PrintReportDocument(report, DialogParent());
}

bool QtUiPort::PrintSetup() { return RunPrintSetup(DialogParent()); }

void QtUiPort::ShowHelp(std::string_view path, std::string_view anchor) {
  ShowHelpWindow(std::string(path), std::string(anchor), window_.data());
}

void QtUiPort::PrintLines(std::string_view title, const std::vector<std::string>& lines) {
  QPrinter printer;
  printer.setDocName(ToQ(title));
  QPrintDialog dialog(&printer, DialogParent());
  if (dialog.exec() != QDialog::Accepted) return;

  QPainter painter;
  if (!painter.begin(&printer)) {
    MessageBox("The printer could not be started.", "Print", Icon::kExclamation, Buttons::kOk);
    return;
  }
  const QRect page = painter.viewport();
  const int line_height = painter.fontMetrics().lineSpacing();
  int y = line_height;
  auto draw = [&](const QString& text) {
    if (y + line_height > page.height()) {
      printer.newPage();
      y = line_height;
    }
    painter.drawText(0, y, text);
    y += line_height;
  };
  draw(ToQ(title));
  draw(QString());
  for (const std::string& line : lines) draw(ToQ(line));
  painter.end();
}

}  // namespace lotwise::ui
