#include "ui/platform/FolderPicker.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFileDialog>
#include <QListView>
#include <QTreeView>

namespace twinsweep::ui {

std::optional<QStringList> chooseFolders(QWidget* parent) {
    QFileDialog dialog(parent, QStringLiteral("Add Folders"), QDir::homePath());
    dialog.setObjectName(QStringLiteral("FolderPicker"));
    dialog.setFileMode(QFileDialog::Directory);
    // The toolkit's own dialog: the desktop portals choose only one folder.
    dialog.setOptions(QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
    dialog.setLabelText(QFileDialog::Accept, QStringLiteral("Add"));
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
