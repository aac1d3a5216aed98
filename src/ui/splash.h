#pragma once

#include <QElapsedTimer>
#include <QSplashScreen>
#include <chrono>
#include <memory>

namespace lotwise::ui {

// The start-up window: the program's name, what it is for and its data
// version, shown at once while the files are opened.
std::unique_ptr<QSplashScreen> ShowSplash();

// Waits until `minimum` has passed since `shown`, keeping the splash
// painted; user input waits until the main window is there.
void KeepSplashUp(const QElapsedTimer& shown, std::chrono::milliseconds minimum);

}  // namespace lotwise::ui
