#include "ui/shell/AppDelegate.h"

#include <QApplication>

#include "removal/StoppedCleans.h"
#include "ui/platform/FileTypeIcons.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

AppDelegate::AppDelegate(QApplication& app) : QObject(&app) {
    chooseIconTheme();
    app.setQuitOnLastWindowClosed(applicationShouldTerminateAfterLastWindowClosed());
    connect(&app, &QCoreApplication::aboutToQuit, this, [this] { applicationWillTerminate(); });
}

void AppDelegate::applicationDidFinishLaunching() {
    const Recovery recovered = recoverStoppedCleans();
    if (recovered.notes.empty()) {
        return;
    }
    QString text = QStringLiteral("A clean that was stopped left files hidden:");
    for (const std::string& note : recovered.notes) {
        text += QLatin1Char('\n') + QString::fromStdString(note);
    }
    showInformation(QApplication::activeWindow(), text);
}

} // namespace twinsweep::ui
