// Edit > Undo Clean: puts back what the last clean to the Trash moved there.
#include "ui/main/UndoClean.h"

#include <QAction>
#include <QFile>
#include <QRadioButton>

#include "removal/PlatformRemover.h"
#include "removal/TrashRestore.h"
#include "settings/SettingsManager.h"
#include "ui/main/ViewController.h"
#include "ui/shell/Alert.h"

namespace twinsweep::ui {

std::vector<TrashedCopy>& lastCleanTrashed() {
    static std::vector<TrashedCopy> copies;
    return copies;
}

void ViewController::updateUndoClean() {
    actionUndoClean->setEnabled(!lastCleanTrashed().empty());
}

void ViewController::OnUndoClean() {
    std::vector<TrashedCopy>& copies = lastCleanTrashed();
    if (copies.empty()) {
        return;
    }
    CleaningLock lock;
    if (lock.tryTake() != CleaningLock::Outcome::Taken) {
        showInformation(this, QString::fromStdString(lock.message() + ". Nothing was restored."));
        return;
    }
    const RestoreOutcome outcome = restoreFromTrash(copies);
    copies = outcome.left;
    updateUndoClean();
    const std::size_t done = outcome.restored.size();
    QString text = done == 1 ? QStringLiteral("1 file was put back where it was.")
                             : QStringLiteral("%1 files were put back where they were.").arg(done);
    if (!outcome.problems.empty()) {
        text += QStringLiteral(" These could not be:\n");
        constexpr std::size_t kShown = 10;
        for (std::size_t i = 0; i < outcome.problems.size() && i < kShown; ++i) {
            text += QStringLiteral("\n") +
                    QFile::decodeName(QByteArray::fromStdString(outcome.problems[i]));
        }
        if (outcome.problems.size() > kShown) {
            text += QStringLiteral("\n… and %1 more.").arg(outcome.problems.size() - kShown);
        }
    }
    showInformation(this, text);
}

void ViewController::OnReplaceWithHardLinksSelected() {
    radioReplaceWithHardLinks->setChecked(true);
    radioMoveDuplicateFilesToTrash->setChecked(false);
    radioRemoveDuplicateFilesPermanently->setChecked(false);
    UpdateSettings();
}

} // namespace twinsweep::ui
