// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/platform/FolderPicker.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFileInfo>
#include <QListView>
#include <QTreeView>
#include <algorithm>

namespace twinsweep::ui {

FolderDialog::FolderDialog(QWidget* parent, const QString& prompt, bool several)
    : QFileDialog(parent, prompt, QDir::homePath()) {
    setFileMode(QFileDialog::Directory);
    // Read-only: folders are chosen here, never made or renamed.
    setOptions(QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog |
               QFileDialog::ReadOnly);
    setLabelText(QFileDialog::Accept, prompt);
    if (auto* newFolder = findChild<QWidget*>(QStringLiteral("newFolderButton"))) {
        newFolder->hide();
    }
    if (several) {
        for (QAbstractItemView* view : findChildren<QAbstractItemView*>()) {
            if (qobject_cast<QListView*>(view) != nullptr ||
                qobject_cast<QTreeView*>(view) != nullptr) {
                view->setSelectionMode(QAbstractItemView::ExtendedSelection);
            }
        }
    }
}

void FolderDialog::accept() {
    const QStringList chosen = selectedFiles();
    const bool allFolders = std::all_of(
        chosen.begin(), chosen.end(), [](const QString& path) { return QFileInfo(path).isDir(); });
    if (allFolders) {
        QFileDialog::accept();
        return;
    }
    // The toolkit would answer with its own box and keep the panel open.
    QDialog::accept();
}

std::optional<QStringList> chooseFolders(QWidget* parent) {
    FolderDialog dialog(parent, FolderDialog::tr("Select Folder(s)"), true);
    dialog.setObjectName(QStringLiteral("FolderPicker"));
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    QStringList folders;
    for (const QString& chosen : dialog.selectedFiles()) {
        folders.push_back(QDir::cleanPath(chosen));
    }
    return folders;
}

} // namespace twinsweep::ui
