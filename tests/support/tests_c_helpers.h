#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTableView>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

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

}  // namespace lotwise::testing
