// SPDX-License-Identifier: GPL-3.0-or-later
// Edit > Undo Clean: puts back what the newest clean to the Trash moved
// there, as its record in the state folder lists (so it survives the
// application, and covers the command-line tool's cleans too).
#include <QAction>
#include <QFile>
#include <QRadioButton>

#include "removal/PlatformRemover.h"
#include "removal/UndoHistory.h"
#include "settings/SettingsManager.h"
#include "ui/main/ViewController.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

void ViewController::updateUndoClean() {
    actionUndoClean->setEnabled(hasCleanToUndo());
}

void ViewController::OnUndoClean() {
    CleaningLock lock;
    if (lock.tryTake() != CleaningLock::Outcome::Taken) {
        showInformation(
            this, tr("%1. Nothing was restored.").arg(QString::fromStdString(lock.message())));
        return;
    }
    const UndoReport report = undoNewestClean();
    updateUndoClean();
    if (!report.error.empty()) {
        showInformation(this, QFile::decodeName(QByteArray::fromStdString(report.error)));
        return;
    }
    const RestoreOutcome& outcome = report.outcome;
    const std::size_t done = outcome.restored.size();
    QString text = done == 1 ? tr("1 file was put back where it was.")
                             : tr("%1 files were put back where they were.").arg(done);
    if (!outcome.problems.empty()) {
        text += tr(" These could not be:\n");
        constexpr std::size_t kShown = 10;
        for (std::size_t i = 0; i < outcome.problems.size() && i < kShown; ++i) {
            text += QStringLiteral("\n") +
                    QFile::decodeName(QByteArray::fromStdString(outcome.problems[i]));
        }
        if (outcome.problems.size() > kShown) {
            text += tr("\n… and %1 more.").arg(outcome.problems.size() - kShown);
        }
    }
    showInformation(this, text);
}

void ViewController::OnReplaceWithHardLinksSelected() {
    radioReplaceWithHardLinks->setChecked(true);
    radioMoveDuplicateFilesToTrash->setChecked(false);
    radioRemoveDuplicateFilesPermanently->setChecked(false);
    radioShareStorage->setChecked(false);
    UpdateSettings();
}

void ViewController::OnShareStorageSelected() {
    radioShareStorage->setChecked(true);
    radioReplaceWithHardLinks->setChecked(false);
    radioMoveDuplicateFilesToTrash->setChecked(false);
    radioRemoveDuplicateFilesPermanently->setChecked(false);
    UpdateSettings();
}

} // namespace twinsweep::ui
