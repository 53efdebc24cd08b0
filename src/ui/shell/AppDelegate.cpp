#include "ui/shell/AppDelegate.h"

#include <QApplication>

#include "ui/platform/FileTypeIcons.h"

namespace twinsweep::ui {

AppDelegate::AppDelegate(QApplication& app) : QObject(&app) {
    chooseIconTheme();
    app.setQuitOnLastWindowClosed(applicationShouldTerminateAfterLastWindowClosed());
    connect(&app, &QCoreApplication::aboutToQuit, this, [this] { applicationWillTerminate(); });
}

} // namespace twinsweep::ui
