// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/shell/AppDelegate.h"

#include <QApplication>
#include <QFile>

#include "removal/PlatformRemover.h"
#include "removal/StoppedCleans.h"
#include "removal/UndoHistory.h"
#include "ui/platform/FileTypeIcons.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

AppDelegate::AppDelegate(QApplication& app) : QObject(&app) {
    chooseIconTheme();
    app.setQuitOnLastWindowClosed(applicationShouldTerminateAfterLastWindowClosed());
    connect(&app, &QCoreApplication::aboutToQuit, this, [this] { applicationWillTerminate(); });
}

void AppDelegate::applicationDidFinishLaunching() {
    // Only with the cleaning lock: a clean running now (the command-line
    // tool's) is never mistaken for a stopped one. When it is busy, that
    // clean resolves what stopped ones left before it acts.
    CleaningLock lock;
    if (lock.tryTake() != CleaningLock::Outcome::Taken) {
        return;
    }
    std::vector<std::string> notes = recoverStoppedCleans().notes;
    for (std::string& note : tidyTrashRecords()) {
        notes.push_back(std::move(note));
    }
    if (notes.empty()) {
        return;
    }
    QString text = tr("Finished what a stopped clean left behind:");
    for (const std::string& note : notes) {
        text += QLatin1Char('\n') + QFile::decodeName(note.c_str());
    }
    showInformation(QApplication::activeWindow(), text);
}

} // namespace twinsweep::ui
