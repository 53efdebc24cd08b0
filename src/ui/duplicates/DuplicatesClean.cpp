// SPDX-License-Identifier: GPL-3.0-or-later
// Cleaning from the window: the core decides what goes and asks through the
// window's alerts on the GUI thread; the removals run on a worker thread
// behind a modal progress display, and the lists change back here once the
// worker is done, so the tables never read a list being changed.
#include <QEventLoop>
#include <QItemSelectionModel>
#include <QPushButton>
#include <QTableView>
#include <QThreadPool>
#include <QTimer>
#include <algorithm>
#include <iterator>
#include <thread>

#include "engine/Diagnostics.h"
#include "engine/ProtectedFolders.h"
#include "removal/PlatformRemover.h"
#include "removal/TrashRecord.h"
#include "removal/UndoHistory.h"
#include "selection/Cleaning.h"
#include "selection/CleaningSummary.h"
#include "selection/KeepOptions.h"
#include "ui/duplicates/CleanProgress.h"
#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/MembersModel.h"
#include "ui/duplicates/ViewControllerDuplicates.h"
#include "ui/platform/CoreTexts.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

namespace {

int showAlert(QWidget* parent, const AlertText& text) {
    QStringList buttons;
    for (const std::string& title : text.buttons) {
        buttons << QString::fromStdString(title);
    }
    return runAlert(parent, QString::fromStdString(text.informativeText), buttons);
}

// The counted sentences come from the library as patterns: translated
// first, then filled in, so a translation may move the counts.
QString stoppedText(std::int64_t done, std::int64_t marked, const CleaningChoice& choice) {
    return coreText(stoppedPattern(done, marked, choice))
        .arg(QString::number(done), QString::number(marked));
}

// Empty when no copy was left in place.
QString leftInPlaceText(const std::vector<CleanedCopy>& left) {
    const auto reasons = reasonsLeftInPlace(left);
    std::int64_t total = 0;
    for (const auto& r : reasons) {
        total += r.second;
    }
    if (total == 0) {
        return {};
    }
    QString text = coreText(leftInPlaceHeading(total)).arg(total);
    for (std::size_t i = 0; i < reasons.size() && i < kReasonsShown; ++i) {
        text += QLatin1Char('\n') +
                coreText(std::string(kReasonLine))
                    .arg(QString::number(reasons[i].second), coreText(reasons[i].first));
    }
    if (const std::int64_t rest = otherReasonsCount(reasons); rest > 0) {
        text += QLatin1Char('\n') + coreText(std::string(kOtherReasonsLine)).arg(rest);
    }
    return text;
}

class AlertPrompt : public CleaningPrompt {
  public:
    explicit AlertPrompt(QWidget* parent) : parent_(parent) {}
    bool ask(CleaningAlert alert) override { return showAlert(parent_, alertText(alert)) == 0; }

  private:
    QWidget* parent_;
};

// Waits for the cleaning lock a moment, the window still repainting; false
// (after saying so) when it stays taken.
bool takeLock(CleaningLock& lock, QWidget* parent) {
    CleaningLock::Outcome taken = lock.tryTake();
    for (int i = 0; i < 20 && taken == CleaningLock::Outcome::Busy; ++i) {
        QEventLoop pause;
        QTimer::singleShot(100, &pause, &QEventLoop::quit);
        pause.exec(QEventLoop::ExcludeUserInputEvents);
        taken = lock.tryTake();
    }
    if (taken != CleaningLock::Outcome::Taken) {
        runAlert(parent,
                 ViewControllerDuplicates::tr("%1. Nothing was removed.")
                     .arg(QString::fromStdString(lock.message())),
                 {QStringLiteral("OK")});
        return false;
    }
    return true;
}

// The removals of a clean, on a worker thread, while the progress display
// runs modally here.
struct CleanRun {
    CleaningReport report;
    std::vector<CleanedCopy> attempted;
    LeavingPlan leaving; // worked out by the worker too
};

CleanRun removeInBackground(QWidget* parent, const FileList& groups, const CleaningChoice& choice,
                            const SettingsManager& settings, FileRemover& remover,
                            std::int64_t marked) {
    CleanProgressState state;
    CleanProgress display(parent, state, marked);
    CleanRun out;
    std::uint64_t groupSize = 0; // worker's own
    CleaningRun run;
    run.stop = [&state] { return state.stop.load(); };
    run.starting = [&](const File& group, const DuplicateFile& member) {
        groupSize = group.size;
        state.setCurrent(member.path);
    };
    run.done = [&](const DuplicateFile&, const RemovalResult& r) {
        state.bytes += r.ok && !r.partial ? groupSize : r.bytesFreed;
        ++state.done;
        return true;
    };
    std::thread worker([&] {
        out.report =
            removeMarked(groups, choice, settings.protectedFolders, remover, run, out.attempted);
        // A copy our checks left in place stays listed and marked, for the
        // user to look at.
        out.leaving = planLeaving(out.attempted, choice, settings.duplicateFileList, true);
        QMetaObject::invokeMethod(
            &display, [&display] { display.finish(); }, Qt::QueuedConnection);
    });
    display.exec();
    // The display only closes once the worker is done, unless the whole
    // application is quitting: then the worker stops after its removal.
    state.stop = true;
    worker.join();
    return out;
}

} // namespace

void ViewControllerDuplicates::OnClean() {
    // Cleaning changes the groups' member lists, which a running job reads.
    waitForBackgroundJobs();
    categoriesChanged = false;
    AlertPrompt prompt(this);
    // One cleaning at a time per user, the command-line tool included. The
    // window can't wait long on it: after a moment it says so and changes
    // nothing.
    CleaningLock lock;
    if (!takeLock(lock, this)) {
        return;
    }
    // Each clean to the Trash keeps its own record (Edit > Undo Clean reads
    // the newest); without one, nothing goes.
    const bool toTrash = settingsManager->moveToTrash && !settingsManager->replaceWithHardLinks &&
                         !settingsManager->shareStorage;
    if (const PrivateFolder undo = toTrash ? openUndoFolder() : PrivateFolder();
        toTrash && !undo.ok()) {
        runAlert(this,
                 tr("Twinsweep can't keep a record to undo this clean: %1. Nothing was removed.")
                     .arg(QString::fromStdString(undo.error)),
                 {QStringLiteral("OK")});
        return;
    }
    for (const std::string& note : tidyTrashRecords()) {
        printErrorLine("Note:   ", note);
    }
    const CleaningChoice choice = askBeforeCleaning(fileList, *settingsManager, prompt);
    if (choice.outcome != CleaningOutcome::Cleaned) {
        return;
    }
    std::int64_t marked = 0;
    for (const FilePtr& group : fileList) {
        marked += markedCount(*group);
    }
    PlatformRemover remover;
    // The worker reads the listed groups, never changes them; nothing here
    // changes them until it is done.
    const FileList groups = fileList;
    CleanRun run = removeInBackground(this, groups, choice, *settingsManager, remover, marked);
    const CleaningReport report = run.report;
    if (const std::string err = remover.trashRecordError(); !err.empty()) {
        runAlert(this,
                 tr("Twinsweep could not keep the record to undo this clean: %1. Nothing more was "
                    "moved to the Trash.")
                     .arg(QString::fromStdString(err)),
                 {QStringLiteral("OK")});
    }
    applyLeaving(run.leaving, *settingsManager);
    // What the lists held before, and the record of every act, go on
    // another thread: freeing a large clean's records takes a while.
    std::vector<CleanedCopy> left;
    std::copy_if(run.attempted.begin(), run.attempted.end(), std::back_inserter(left),
                 [](const CleanedCopy& c) { return c.leftInPlace; });
    auto done = std::make_shared<CleanRun>(std::move(run));
    QThreadPool::globalInstance()->start([done = std::move(done)]() mutable { done.reset(); });
    // A group left with protected copies alone has nothing more to offer.
    std::erase_if(settingsManager->duplicateFileList,
                  [](const FilePtr& g) { return onlyProtectedCopies(*g); });
    firstUpdate = true;
    groupsModel_->refresh();
    selectGroupRow(0);
    UpdateResults();
    // With hard links or shared storage a clean that linked or shared nothing
    // changed nothing: it says so instead of saying it cleaned.
    const bool none = report.removed == 0;
    if (report.stopped) {
        runAlert(this, stoppedText(report.removed, marked, choice), {QStringLiteral("OK")});
    } else {
        prompt.ask(choice.sharing && none   ? CleaningAlert::NothingShared
                   : choice.linking && none ? CleaningAlert::NothingLinked
                                            : CleaningAlert::Done);
    }
    if (const QString leftText = leftInPlaceText(left); !leftText.isEmpty()) {
        // The update applied the keep option the control shows again; the
        // copies left in place keep the marks the user gave them.
        waitForBackgroundJobs();
        for (const CleanedCopy& c : left) {
            c.member->checkState = 1;
        }
        groupsModel_->refresh();
        membersModel_->refresh();
        UpdateSpaceSaved();
        if (runAlert(this, leftText, {QStringLiteral("Show Them"), QStringLiteral("OK")}) == 0) {
            showLeftInPlace(left);
        }
    }
    if (settingsManager->duplicateFileList.empty()) {
        close();
    }
}

void ViewControllerDuplicates::showLeftInPlace(const std::vector<CleanedCopy>& attempted) {
    for (const CleanedCopy& c : attempted) {
        if (!c.leftInPlace) {
            continue;
        }
        const auto group = std::find(fileList.begin(), fileList.end(), c.group);
        if (group == fileList.end()) {
            continue;
        }
        const auto& members = (*group)->duplicates;
        const auto member = std::find(members.begin(), members.end(), c.member);
        if (member == members.end()) {
            continue;
        }
        selectGroupRow(static_cast<int>(group - fileList.begin()));
        const QModelIndex at = membersModel_->index(static_cast<int>(member - members.begin()),
                                                    MembersModel::ColumnPath);
        tableViewDuplicates->setCurrentIndex(at);
        tableViewDuplicates->scrollTo(at);
        return;
    }
}

} // namespace twinsweep::ui
