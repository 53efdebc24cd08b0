// SPDX-License-Identifier: GPL-3.0-or-later
// Cleaning from the window: the core decides what goes and asks through the
// window's alerts; the platform removes.
#include <QPushButton>
#include <QThread>

#include "engine/Diagnostics.h"
#include "engine/ProtectedFolders.h"
#include "removal/PlatformRemover.h"
#include "removal/TrashRecord.h"
#include "removal/UndoHistory.h"
#include "selection/Cleaning.h"
#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/ViewControllerDuplicates.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

namespace {

class AlertPrompt : public CleaningPrompt {
  public:
    explicit AlertPrompt(QWidget* parent) : parent_(parent) {}
    bool ask(CleaningAlert alert) override {
        const AlertText& text = alertText(alert);
        QStringList buttons;
        for (const std::string& title : text.buttons) {
            buttons << QString::fromStdString(title);
        }
        return runAlert(parent_, QString::fromStdString(text.informativeText), buttons) == 0;
    }

  private:
    QWidget* parent_;
};

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
    CleaningLock::Outcome taken = lock.tryTake();
    for (int i = 0; i < 20 && taken == CleaningLock::Outcome::Busy; ++i) {
        QThread::msleep(100);
        taken = lock.tryTake();
    }
    if (taken != CleaningLock::Outcome::Taken) {
        runAlert(this, QString::fromStdString(lock.message() + ". Nothing was removed."),
                 {QStringLiteral("OK")});
        return;
    }
    // Each clean to the Trash keeps its own record (Edit > Undo Clean reads
    // the newest); without one, nothing goes.
    const bool toTrash = settingsManager->moveToTrash && !settingsManager->replaceWithHardLinks &&
                         !settingsManager->shareStorage;
    if (const PrivateFolder undo = toTrash ? openUndoFolder() : PrivateFolder();
        toTrash && !undo.ok()) {
        runAlert(this,
                 QString::fromStdString("Twinsweep can't keep a record to undo this clean: " +
                                        undo.error + ". Nothing was removed."),
                 {QStringLiteral("OK")});
        return;
    }
    for (const std::string& note : tidyTrashRecords()) {
        printErrorLine("Note:   ", note);
    }
    PlatformRemover remover;
    const CleaningReport report = clean(fileList, *settingsManager, prompt, remover);
    if (const std::string err = remover.trashRecordError(); !err.empty()) {
        runAlert(this,
                 QString::fromStdString("Twinsweep could not keep the record to undo this clean: " +
                                        err + ". Nothing more was moved to the Trash."),
                 {QStringLiteral("OK")});
    }
    if (report.outcome != CleaningOutcome::Cleaned) {
        return;
    }
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
    prompt.ask(settingsManager->shareStorage && none           ? CleaningAlert::NothingShared
               : settingsManager->replaceWithHardLinks && none ? CleaningAlert::NothingLinked
                                                               : CleaningAlert::Done);
    if (settingsManager->duplicateFileList.empty()) {
        close();
    }
}

} // namespace twinsweep::ui
