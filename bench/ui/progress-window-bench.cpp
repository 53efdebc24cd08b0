// SPDX-License-Identifier: GPL-3.0-or-later
// Times a whole search driven through the real main and progress windows,
// from Find Duplicate Files to the results window coming up, so it can be set
// against the command-line tool on the same tree.
//
// usage: progress-window-bench [--any-location] FOLDER...
// Prints the seconds and the number of groups. Options match the command-line
// tool's defaults: every size from 1 byte up, all file types.
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <cstdio>
#include <cstring>
#include <limits>

#include "engine/LocationGate.h"
#include "settings/SettingsManager.h"
#include "ui/main/ViewController.h"
#include "ui/placeholder/PlaceholderWindow.h"
#include "ui/shell/WindowFactory.h"

using namespace twinsweep;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QStringList folders;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--any-location") == 0) {
            LocationGate::setProcessDefault(LocationGate::anywhere());
        } else {
            folders << QFile::decodeName(argv[i]);
        }
    }
    if (folders.isEmpty()) {
        std::fprintf(stderr, "usage: progress-window-bench [--any-location] FOLDER...\n");
        return 2;
    }

    QElapsedTimer clock;
    qint64 elapsedMs = -1;
    std::size_t groups = 0;
    // The results window marks the end: note the time and close it at once.
    ui::WindowFactory::registerWindow(ui::kWindowControllerDuplicates, [&](QWidget* opener) {
        elapsedMs = clock.elapsed();
        groups = SettingsManager::shared()->duplicateFileList.size();
        auto window =
            std::make_unique<ui::PlaceholderWindow>(opener, QStringLiteral("Results"), true);
        QTimer::singleShot(0, window.get(), &QDialog::close);
        return window;
    });

    ui::ViewController window;
    window.show();
    window.addFolders(folders);
    const auto settings = SettingsManager::shared();
    settings->minimumFileSize = 1;
    settings->maximumFileSize = std::numeric_limits<std::uint64_t>::max();

    QTimer::singleShot(0, &window, [&] {
        clock.start();
        window.OnFindDuplicateFiles();
        if (elapsedMs < 0) {
            elapsedMs = clock.elapsed(); // nothing found
        }
        QApplication::exit(0);
    });
    QApplication::exec();
    std::printf("%.3f s, %zu groups\n", static_cast<double>(elapsedMs) / 1000.0, groups);
    return 0;
}
