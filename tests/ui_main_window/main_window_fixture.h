#pragma once

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTableView>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/security_commands.h"
#include "app/taxpayer_file.h"
#include "app_state/window_fixture.h"
#include "data/application.h"
#include "lots/security_list.h"
#include "ui/form_widgets.h"
#include "ui/main_window.h"

namespace lotwise::testing {

// The one QApplication of the test program, on the platform CTest names
// (offscreen, or the X server of xvfb-run); made on first use and deleted
// when the tests are over, before the program's statics go.
QApplication& QtApp();

// The texts of `column` of a grid, row by row, as the view shows them.
inline std::vector<std::string> Column(QTableView* grid, int column) {
  std::vector<std::string> texts;
  const QAbstractItemModel* model = grid->model();
  for (int row = 0; row < model->rowCount(); ++row) {
    texts.push_back(ui::FromQ(model->index(row, column).data().toString()));
  }
  return texts;
}

// Clicks row `row` of a grid as a user would.
inline void ClickRow(QTableView* grid, int row) {
  const QModelIndex index = grid->model()->index(row, 0);
  grid->scrollTo(index);
  QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(index).center());
}

// The main window over a taxpayer with the portfolio "Growth" (see
// WindowTest), shown, and helpers that find its controls by name and move
// the program between states through the core's own procedures.
class MainWindowTest : public WindowTest {
 protected:
  void SetUp() override {
    QtApp();
    WindowTest::SetUp();
    window_ = std::make_unique<ui::MainWindow>(*app_);
    window_->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
  }

  void TearDown() override {
    window_.reset();
    WindowTest::TearDown();
  }

  template <typename T = QWidget>
  T* Find(const char* name) {
    T* found = window_->findChild<T*>(name);
    EXPECT_NE(found, nullptr) << name;
    return found;
  }
  QAction* Action(const std::string& name) { return Find<QAction>(name.c_str()); }
  QMenu* Menu(const std::string& name) { return Find<QMenu>(name.c_str()); }

  // Moves to `state`: the taxpayer closed or open, the portfolio "Growth"
  // open, or IBM (added on first use) open in it.
  void Enter(int16_t state) {
    if (state >= kPortOpen && ibm_ == 0) {
      ibm_ = AddSecurity("IBM", "Intl Business Machines", "459200101");
      Buy(ibm_, "01/15/2024", 100);
    }
    switch (state) {
      case kClientClosed:
        State(*app_, kClientClosed);
        break;
      case kClientOpen:
        State(*app_, kClientOpen);
        break;
      case kPortOpen:
        ASSERT_TRUE(OpenPort(*app_, kPort));
        break;
      case kSecOpen:
        ASSERT_TRUE(OpenPort(*app_, kPort));
        SecList_Select(*app_, 0);
        break;
    }
    ASSERT_EQ(app_->window.state, state);
    window_->Refresh();
  }

  std::unique_ptr<ui::MainWindow> window_;
  int64_t ibm_ = 0;
};

}  // namespace lotwise::testing
