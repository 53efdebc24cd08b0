// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QApplication;

namespace twinsweep::ui {

// The application's delegate: the main window shows itself, and closing the
// last window ends the application. Nothing is saved at the end. At launch,
// copies a stopped clean left hidden are put back (StoppedCleans.h).
class AppDelegate : public QObject {
    Q_OBJECT
  public:
    explicit AppDelegate(QApplication& app);

    // Puts back what a stopped clean left hidden, and says what came back.
    void applicationDidFinishLaunching();
    void applicationWillTerminate() {}
    bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }
};

} // namespace twinsweep::ui
