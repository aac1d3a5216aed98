#include "ui/splash.h"

#include <QApplication>
#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>
#include <QThread>

#include "data/schema.h"

namespace lotwise::ui {

namespace {

QPixmap SplashPicture() {
  QPixmap picture(520, 300);
  QPainter painter(&picture);
  QLinearGradient background(0, 0, 0, picture.height());
  background.setColorAt(0, QColor(18, 58, 102));
  background.setColorAt(1, QColor(40, 110, 160));
  painter.fillRect(picture.rect(), background);
  painter.fillRect(QRect(0, 220, picture.width(), 4), QColor(232, 176, 48));

  painter.setPen(Qt::white);
  QFont title = painter.font();
  title.setPointSize(36);
  title.setBold(true);
  painter.setFont(title);
  painter.drawText(QRect(32, 48, 460, 70), Qt::AlignLeft | Qt::AlignVCenter, "Lotwise");

  QFont text = painter.font();
  text.setPointSize(12);
  text.setBold(false);
  painter.setFont(text);
  painter.drawText(QRect(34, 122, 460, 60), Qt::AlignLeft | Qt::TextWordWrap,
                   "Tax cost basis of stocks and mutual-fund shares");
  painter.setPen(QColor(220, 230, 240));
  text.setPointSize(9);
  painter.setFont(text);
  painter.drawText(QRect(34, 236, 460, 24), Qt::AlignLeft | Qt::AlignVCenter,
                   QString("Data version ") + kCurrentDataVersion);
  painter.drawText(QRect(34, 260, 460, 24), Qt::AlignLeft | Qt::AlignVCenter, "Tarnwick Software");
  return picture;
}

}  // namespace

std::unique_ptr<QSplashScreen> ShowSplash() {
  auto splash = std::make_unique<QSplashScreen>(SplashPicture());
  splash->setObjectName("frmSplash");
  splash->show();
  splash->showMessage("Loading...", Qt::AlignRight | Qt::AlignBottom, Qt::white);
  QCoreApplication::processEvents();
  return splash;
}

void KeepSplashUp(const QElapsedTimer& shown, std::chrono::milliseconds minimum) {
  while (shown.elapsed() < minimum.count()) {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    QThread::msleep(20);
  }
}

}  // namespace lotwise::ui
