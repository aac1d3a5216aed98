// lotwise: the desktop program.

#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSocketNotifier>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "app/startup.h"
#include "data/application.h"
#include "ground/environment.h"
#include "ground/program_ended.h"
#include "ui/main_window.h"
#include "ui/qt_ui_port.h"
#include "ui/splash.h"

namespace {

using lotwise::Application;

// The end of the process is the end of the event loop, so that windows,
// files and the scratch report database are let go in order; every nested
// loop (an open dialog) returns too.
class QtEnvironment : public lotwise::SystemEnvironment {
 public:
  void EndProcess(int exit_code) override {
    end_requested_ = true;
    exit_code_ = exit_code;
    QCoreApplication::exit(exit_code);
  }
  bool end_requested() const { return end_requested_; }
  int exit_code() const { return exit_code_; }

 private:
  bool end_requested_ = false;
  int exit_code_ = 0;
};

// A termination request (the session ending, kill) closes the main window
// as the user would, so that the INI file is written back and the scratch
// report database removed. The handler only wakes the event loop.
int termination_pipe[2] = {-1, -1};

void OnTermination(int) {
  const char byte = 1;
  [[maybe_unused]] const ssize_t written = write(termination_pipe[1], &byte, 1);
}

void CloseOnTermination(QWidget& window) {
  if (pipe(termination_pipe) != 0) return;
  auto* notifier = new QSocketNotifier(termination_pipe[0], QSocketNotifier::Read, &window);
  QObject::connect(notifier, &QSocketNotifier::activated, &window, [&window] {
    char byte = 0;
    [[maybe_unused]] const ssize_t got = read(termination_pipe[0], &byte, 1);
    window.close();
  });
  std::signal(SIGTERM, OnTermination);
  std::signal(SIGINT, OnTermination);
}

bool HasDisplay() {
  for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (!HasDisplay()) {
    std::fprintf(stderr,
                 "lotwise: no display is available (neither DISPLAY nor WAYLAND_DISPLAY is set), "
                 "so the desktop program cannot open its window.\n"
                 "Without a display, run the command-line program instead:\n"
                 "  lotwise-cli demo\n"
                 "(it builds a sample taxpayer and writes every report).\n");
    return 2;
  }

  QApplication qt_app(argc, argv);
  QApplication::setApplicationName("Lotwise");

  QElapsedTimer shown;
  shown.start();
  auto splash = lotwise::ui::ShowSplash();

  lotwise::ui::QtUiPort ui;
  QtEnvironment env;
  const QFileInfo exe(QCoreApplication::applicationFilePath());
  Application app(ui, env, exe.absolutePath().toStdString(), exe.completeBaseName().toStdString());
  ui.Attach(app);

  // The wait cursor from the files' opening until the window is up.
  auto hourglass = std::make_unique<lotwise::HourglassGuard>(ui);
  try {
    lotwise::Main(app);
  } catch (const lotwise::ProgramEnded&) {
    lotwise::EndProgram(app);
    return env.end_requested() ? env.exit_code() : 1;
  }

  lotwise::ui::MainWindow window(app);
  ui.SetMainWindow(&window);
  lotwise::ui::KeepSplashUp(shown, std::chrono::seconds(2));
  window.Refresh();
  window.RecordGoodSize();
  splash->finish(&window);
  window.show();
  QCoreApplication::processEvents();
  hourglass.reset();
  CloseOnTermination(window);

  const int exit_code = QApplication::exec();
  lotwise::EndProgram(app);
  ui.SetMainWindow(nullptr);
  return env.end_requested() ? env.exit_code() : exit_code;
}
