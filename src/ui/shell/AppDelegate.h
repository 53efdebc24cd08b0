#pragma once

#include <QObject>

class QApplication;

namespace twinsweep::ui {

// The application's delegate: the main window shows itself, and closing the
// last window ends the application. Nothing is saved at the end.
class AppDelegate : public QObject {
    Q_OBJECT
  public:
    explicit AppDelegate(QApplication& app);

    void applicationDidFinishLaunching() {}
    void applicationWillTerminate() {}
    bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }
};

} // namespace twinsweep::ui
