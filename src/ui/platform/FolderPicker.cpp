#include "ui/platform/FolderPicker.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFileDialog>
#include <QListView>
#include <QTreeView>

namespace twinsweep::ui {

std::optional<QStringList> chooseFolders(QWidget* parent) {
    const QString prompt = QStringLiteral("Select Folder(s)");
    QFileDialog dialog(parent, prompt, QDir::homePath());
    dialog.setObjectName(QStringLiteral("FolderPicker"));
    dialog.setFileMode(QFileDialog::Directory);
    // The toolkit's own dialog: the desktop portals choose only one folder.
    // Read-only: folders are chosen here, never made or renamed.
    dialog.setOptions(QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog |
                      QFileDialog::ReadOnly);
    dialog.setLabelText(QFileDialog::Accept, prompt);
    if (auto* newFolder = dialog.findChild<QWidget*>(QStringLiteral("newFolderButton"))) {
        newFolder->hide();
    }
    for (QAbstractItemView* view : dialog.findChildren<QAbstractItemView*>()) {
        if (qobject_cast<QListView*>(view) != nullptr ||
            qobject_cast<QTreeView*>(view) != nullptr) {
            view->setSelectionMode(QAbstractItemView::ExtendedSelection);
        }
    }
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
