#include <gtest/gtest.h>

#include <QApplication>

#include "ui_main_window/main_window_fixture.h"

namespace lotwise::testing {

namespace {

QApplication* qt_app = nullptr;

// Deletes the application while the test program still runs: left to the
// exit handlers, its X connection would go after the platform it needs.
class QtAppEnvironment : public ::testing::Environment {
 public:
  void TearDown() override {
    delete qt_app;
    qt_app = nullptr;
  }
};

const auto* const registered = ::testing::AddGlobalTestEnvironment(new QtAppEnvironment);

}  // namespace

QApplication& QtApp() {
  static int argc = 1;
  static char name[] = "ui_main_window_tests";
  static char* argv[] = {name, nullptr};
  if (qt_app == nullptr) qt_app = new QApplication(argc, argv);
  return *qt_app;
}

}  // namespace lotwise::testing
