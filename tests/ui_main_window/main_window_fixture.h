#pragma once

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <memory>

#include "app/app_state.h"
#include "app/security_commands.h"
#include "app/taxpayer_file.h"
#include "app_state/window_fixture.h"
#include "data/application.h"
#include "lots/security_list.h"
#include "support/real_windows.h"
#include "ui/main_window.h"

namespace lotwise::testing {

// The main window over a taxpayer with the portfolio "Growth" (see
// WindowTest), shown, and helpers that find its controls by name and move
// the program between states through the core's own procedures.
class MainWindowTest : public WindowTest {
 protected:
  void SetUp() override {
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
  QAction* Action(const char* name) { return Find<QAction>(name); }
  std::string Label(const char* name) { return Find<QLabel>(name)->text().toStdString(); }

  // Moves to `state`; from PORTOPEN on with IBM (added on first use) in
  // "Growth", SECOPEN with IBM open.
  void Enter(int16_t state) {
    if (state >= kPortOpen && ibm_ == 0) {
      ibm_ = AddSecurity("IBM", "Intl Business Machines", "459200101");
      Buy(ibm_, "01/15/2024", 100);
    }
    if (state < kPortOpen) {
      State(*app_, state);
    } else {
      ASSERT_TRUE(OpenPort(*app_, kPort));
    }
    if (state == kSecOpen) SecList_Select(*app_, 0);
    ASSERT_EQ(app_->window.state, state);
    window_->Refresh();
  }

  std::unique_ptr<ui::MainWindow> window_;
  int64_t ibm_ = 0;
};

}  // namespace lotwise::testing
