#include <gtest/gtest.h>

#include <QApplication>

namespace lotwise::testing {
namespace {

// The one QApplication of the test program, made before the first test and
// deleted before the exit handlers run: among the static objects it would
// go after Qt's own and crash the exit.
class QtEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    app_ = new QApplication(argc_, argv_);
  }
  void TearDown() override {
    delete app_;
    app_ = nullptr;
  }

 private:
  int argc_ = 1;
  char name_[21] = "ui_lot_dialogs_tests";
  char* argv_[2] = {name_, nullptr};
  QApplication* app_ = nullptr;
};

const auto* const registered = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
}  // namespace lotwise::testing
