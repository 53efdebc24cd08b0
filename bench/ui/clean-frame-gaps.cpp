// SPDX-License-Identifier: GPL-3.0-or-later
// How responsive the results window stays while Clean runs: searches FOLDER,
// opens the real results window (offscreen) on the groups, marks every copy
// but the first of each group, and clicks Clean, answering its questions,
// deleting for good (or to the Trash with --trash). A timer on the GUI thread
// ticks every 10 ms from the click until the done message; a tick that comes
// late means the GUI thread was busy, and the longest gap is what a user
// would feel as a stall.
//
// usage: clean-frame-gaps [--trash] FOLDER
// Prints: seconds, ticks, longest gap, 99th percentile gap, gaps over 100 ms
// and the copies marked.
#include "GapSummary.h"
#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

#include "engine/FileTools.h"
#include "engine/LocationGate.h"
#include "engine/SearchJob.h"
#include "settings/SettingsManager.h"
#include "ui/duplicates/ViewControllerDuplicates.h"

using namespace twinsweep;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    LocationGate::setProcessDefault(LocationGate::anywhere());
    bool toTrash = false;
    std::string folder;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--trash") == 0) {
            toTrash = true;
        } else {
            folder = argv[i];
        }
    }
    if (folder.empty()) {
        std::fprintf(stderr, "usage: clean-frame-gaps [--trash] FOLDER\n");
        return 2;
    }

    const auto settings = SettingsManager::shared();
    settings->listFolderPaths = {folder};
    settings->minimumFileSize = 1;
    settings->maximumFileSize = std::numeric_limits<std::uint64_t>::max();
    settings->moveToTrash = toTrash;
    FileTools tools;
    runSearchJob(*settings, tools);

    ui::ViewControllerDuplicates window(nullptr);
    window.show();
    while (window.updating || window.jobsInFlight() > 0) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    // Marked once the window's set-up (which clears every mark) is done.
    std::size_t marked = 0;
    for (const FilePtr& group : settings->duplicateFileList) {
        for (std::size_t m = 1; m < group->duplicates.size(); ++m) {
            group->duplicates[m]->checkState = 1;
            ++marked;
        }
    }

    QElapsedTimer clock;
    qint64 lastTick = 0;
    qint64 longestSoFar = -1;
    qint64 longestEndsAt = 0;
    qint64 elapsedMs = -1;
    std::vector<qint64> gaps;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(10);
    const auto tick = [&] {
        const qint64 now = clock.elapsed();
        if (now - lastTick > longestSoFar) {
            longestSoFar = now - lastTick;
            longestEndsAt = now;
        }
        gaps.push_back(now - lastTick);
        lastTick = now;
    };
    QObject::connect(&ticker, &QTimer::timeout, tick);
    // The last stretch, up to the done message, counts as a gap too.
    const auto finish = [&] {
        if (elapsedMs < 0) {
            tick();
            elapsedMs = clock.elapsed();
            ticker.stop();
        }
    };
    // Answers the questions with their first button; the done message ends
    // the measure.
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr || !box->isVisible()) {
            return;
        }
        if (box->informativeText().startsWith(QStringLiteral("Duplicate files cleaned"))) {
            finish();
        }
        box->buttons().front()->click();
    });
    answer.start(5);

    QTimer::singleShot(0, &window, [&] {
        clock.start();
        ticker.start();
        window.buttonClean->click();
        finish();
        QApplication::exit(0);
    });
    QApplication::exec();

    printGaps(elapsedMs, gaps, longestEndsAt, ", " + std::to_string(marked) + " copies marked");
    return 0;
}
