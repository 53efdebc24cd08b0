// SPDX-License-Identifier: GPL-3.0-or-later
// Opens the results window on a large made-up result (50,000 groups of three
// by default) and records the longest time the GUI thread went without
// handling an event while the window opens, selects groups, sorts by each
// column, filters by path, applies a keep option to every group and hides a
// category. The groups are records only:
// nothing is read from disk or removed.
//
// usage: results-window-bench [GROUPS]
#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTableView>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "selection/KeepOptions.h"
#include "settings/SettingsManager.h"
#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/SegmentedControl.h"
#include "ui/duplicates/ViewControllerDuplicates.h"

using namespace twinsweep;

namespace {

// Ticks every millisecond on the GUI thread; the largest gap between two ticks
// is the longest the thread was busy elsewhere.
class StallMeter {
  public:
    StallMeter() {
        QObject::connect(&timer_, &QTimer::timeout, [this] { tick(); });
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.start(1);
        clock_.start();
    }
    void reset() {
        worst_ = 0;
        last_ = clock_.nsecsElapsed();
    }
    double worstMs() const { return static_cast<double>(worst_) / 1e6; }
    void tick() {
        const qint64 now = clock_.nsecsElapsed();
        worst_ = std::max(worst_, now - last_);
        last_ = now;
    }

  private:
    QTimer timer_;
    QElapsedTimer clock_;
    qint64 last_ = 0;
    qint64 worst_ = 0;
};

void waitFor(const std::function<bool()>& done) {
    while (!done()) {
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    }
}

FileList madeUpGroups(int count) {
    static const char* const kExt[] = {"jpg", "mp3", "mp4", "zip", "pdf", "dat"};
    FileList groups;
    groups.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const std::string name = "/home/user/data/" + std::to_string(i % 997) + "/file" +
                                 std::to_string(i) + "." + kExt[i % 6];
        // Records only: nothing on disk is looked at.
        auto group = std::make_shared<File>(name, FileIdentity{}, File::Seen{});
        group->ext = kExt[i % 6];
        group->size = 4096 + static_cast<std::uint64_t>(i);
        for (int m = 0; m < 3; ++m) {
            const std::string date = "2" + std::to_string(m) + "-0" + std::to_string(1 + i % 9) +
                                     "-1" + std::to_string(m) + " 10:00:00";
            group->duplicates.push_back(std::make_shared<DuplicateFile>(
                m == 0 ? name : "/home/user/copy" + std::to_string(m) + name, date, 0));
        }
        groups.push_back(group);
    }
    return groups;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 50000;
    auto settings = SettingsManager::shared();
    settings->duplicateFileList = madeUpGroups(count);

    StallMeter meter;
    QElapsedTimer phase;
    const auto idle = [](const ui::ViewControllerDuplicates& w) {
        return !w.updating && w.jobsInFlight() == 0;
    };

    meter.reset();
    phase.start();
    auto window = std::make_unique<ui::ViewControllerDuplicates>(nullptr);
    window->show();
    waitFor([&] { return idle(*window) && !window->fileList.empty(); });
    QApplication::processEvents();
    std::printf("open: %d groups listed in %.1f ms, longest GUI stall %.1f ms\n",
                static_cast<int>(window->fileList.size()), phase.nsecsElapsed() / 1e6,
                meter.worstMs());

    meter.reset();
    phase.start();
    for (int row : {1, 100, 25000 % count, count - 1, 0}) {
        window->tableViewFiles->selectRow(row);
        window->tableViewFiles->scrollTo(window->tableViewFiles->model()->index(row, 0));
        QApplication::processEvents();
    }
    std::printf("select: 5 groups in %.1f ms, longest GUI stall %.1f ms\n",
                phase.nsecsElapsed() / 1e6, meter.worstMs());

    // Sorting by each column (the records themselves are compared), then the
    // search's order again; then the path filter, typed one letter at a time.
    for (int column : {int{ui::GroupsModel::ColumnName}, int{ui::GroupsModel::ColumnSize},
                       int{ui::GroupsModel::ColumnCount}, -1}) {
        meter.reset();
        phase.start();
        window->tableViewFiles->sortByColumn(column, Qt::DescendingOrder);
        QApplication::processEvents();
        std::printf("sort by column %d: %.1f ms, longest GUI stall %.1f ms\n", column,
                    phase.nsecsElapsed() / 1e6, meter.worstMs());
    }
    for (const char* text : {"f", "fi", "file1", "file12", "copy2/home", ""}) {
        meter.reset();
        phase.start();
        window->textFieldFilter->setText(QString::fromLatin1(text));
        QApplication::processEvents();
        std::printf("filter \"%s\": %d groups shown in %.1f ms, longest GUI stall %.1f ms\n", text,
                    window->tableViewFiles->model()->rowCount(), phase.nsecsElapsed() / 1e6,
                    meter.worstMs());
    }

    window->checkApplyForAll->click();
    for (int segment : {kKeepOldest, kRemoveAll, kKeepAll}) {
        meter.reset();
        phase.start();
        window->segmentedControlKeep->segmentButton(segment)->click();
        waitFor([&] { return idle(*window); });
        QApplication::processEvents();
        std::printf("apply option %d to all: %.1f ms, longest GUI stall %.1f ms, marked in "
                    "group 0: %lld\n",
                    segment, phase.nsecsElapsed() / 1e6, meter.worstMs(),
                    static_cast<long long>(markedCount(*window->fileList.front())));
    }

    meter.reset();
    phase.start();
    window->categoryChecks[0]->click();
    waitFor([&] { return idle(*window); });
    QApplication::processEvents();
    std::printf("hide pictures: %d groups listed in %.1f ms, longest GUI stall %.1f ms\n",
                static_cast<int>(window->fileList.size()), phase.nsecsElapsed() / 1e6,
                meter.worstMs());

    meter.reset();
    phase.start();
    window->close();
    std::printf("close: %.1f ms\n", phase.nsecsElapsed() / 1e6);
    return 0;
}
