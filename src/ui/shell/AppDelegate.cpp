#include "ui/shell/AppDelegate.h"

#include <QApplication>

namespace twinsweep::ui {

AppDelegate::AppDelegate(QApplication& app) : QObject(&app) {
    app.setQuitOnLastWindowClosed(applicationShouldTerminateAfterLastWindowClosed());
    connect(&app, &QCoreApplication::aboutToQuit, this, [this] { applicationWillTerminate(); });
}

} // namespace twinsweep::ui
