// SPDX-License-Identifier: GPL-3.0-or-later
// How responsive the progress window stays while a large search runs: drives
// the real main and progress windows (offscreen) and ticks a timer on the GUI
// thread every 10 ms from the click on Find Duplicate Files to the results.
// A tick that comes late means the GUI thread was busy; the longest gap is
// what a user would feel as a stall.
//
// usage: progress-frame-gaps [--any-location] FOLDER...
// Prints: seconds, ticks, longest gap, 99th percentile gap, gaps over 100 ms,
// and how many times the progress texts were repainted.
#include "GapSummary.h"
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

#include "engine/LocationGate.h"
#include "settings/SettingsManager.h"
#include "ui/main/ViewController.h"
#include "ui/placeholder/PlaceholderWindow.h"
#include "ui/progress/ViewControllerProgress.h"
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
        std::fprintf(stderr, "usage: progress-frame-gaps [--any-location] FOLDER...\n");
        return 2;
    }

    QElapsedTimer clock;
    qint64 lastTick = 0;
    qint64 longestSoFar = -1;
    qint64 longestEndsAt = 0;
    std::vector<qint64> gaps;
    gaps.reserve(1 << 16);
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(10);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        if (now - lastTick > longestSoFar) {
            longestSoFar = now - lastTick;
            longestEndsAt = now;
        }
        gaps.push_back(now - lastTick);
        lastTick = now;
    });

    // Counts the changes of the progress texts that the ticks see: what the
    // user sees of the progress.
    int repaints = 0;
    QString shown;
    ui::WindowFactory::registerWindow(ui::kWindowControllerProgress, [&](QWidget* opener) {
        auto window = std::make_unique<ui::ViewControllerProgress>(opener);
        QLabel* label = window->textFieldFilesScanned;
        QObject::connect(&ticker, &QTimer::timeout, label, [&, label] {
            if (label->text() != shown) {
                shown = label->text();
                ++repaints;
            }
        });
        return window;
    });
    qint64 elapsedMs = -1;
    ui::WindowFactory::registerWindow(ui::kWindowControllerDuplicates, [&](QWidget* opener) {
        elapsedMs = clock.elapsed();
        ticker.stop();
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
        ticker.start();
        window.OnFindDuplicateFiles();
        if (elapsedMs < 0) {
            elapsedMs = clock.elapsed(); // nothing found
        }
        ticker.stop();
        QApplication::exit(0);
    });
    QApplication::exec();

    printGaps(elapsedMs, gaps, longestEndsAt,
              ", " + std::to_string(repaints) + " repaints of the counts");
    return 0;
}
