// SPDX-License-Identifier: GPL-3.0-or-later
// Reviewing many groups: the totals above the tables, the filter on path
// text, and the menu a right click opens on a row.
#include <QAction>
#include <QContextMenuEvent>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTableView>
#include <algorithm>

#include "engine/FileTools.h"
#include "engine/ProtectedFolders.h"
#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/GroupsProxy.h"
#include "ui/duplicates/MembersModel.h"
#include "ui/duplicates/RevealFile.h"
#include "ui/duplicates/ViewControllerDuplicates.h"

namespace twinsweep::ui {

void ViewControllerDuplicates::buildReview() {
    connect(textFieldFilter, &QLineEdit::textChanged, this, [this](const QString& text) {
        groupsProxy_->setPathFilter(text.trimmed());
        // The members table follows the selection, which the filter may have hidden.
        selectGroupRow(static_cast<int>(selectedRow));
        showTotals();
    });
    for (QTableView* table : {tableViewFiles, tableViewDuplicates}) {
        table->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(table, &QWidget::customContextMenuRequested, this, [this, table](QPoint at) {
            if (QMenu* menu = contextMenuAt(table, at)) {
                menu->setAttribute(Qt::WA_DeleteOnClose);
                menu->popup(table->viewport()->mapToGlobal(at));
            }
        });
    }
}

void ViewControllerDuplicates::showTotals() {
    std::uint64_t copies = 0;
    std::uint64_t bytes = 0;
    const int shown = groupsProxy_->rowCount();
    for (int row = 0; row < shown; ++row) {
        const File* group =
            groupsModel_->groupAt(groupsProxy_->mapToSource(groupsProxy_->index(row, 0)).row());
        copies += group->duplicates.size();
        bytes += group->size * group->duplicates.size();
    }
    const std::uint64_t listed = fileList.size();
    const QString groups = static_cast<std::uint64_t>(shown) == listed
                               ? (listed == 1 ? tr("1 group") : tr("%1 groups").arg(listed))
                               : (listed == 1 ? tr("%1 of 1 group").arg(shown)
                                              : tr("%1 of %2 groups").arg(shown).arg(listed));
    const QString copiesText = copies == 1 ? tr("1 copy") : tr("%1 copies").arg(copies);
    labelTotals->setText(
        tr("%1, %2, %3")
            .arg(groups, copiesText, QString::fromStdString(FileTools::fileSizeText(bytes))));
}

int ViewControllerDuplicates::headMemberRow(const File& group) const {
    for (std::size_t i = 0; i < group.duplicates.size(); ++i) {
        if (group.duplicates[i]->path == group.path) {
            return static_cast<int>(i);
        }
    }
    return 0;
}

QMenu* ViewControllerDuplicates::contextMenuAt(QTableView* table, QPoint position) {
    const QModelIndex at = table->indexAt(position);
    if (!at.isValid()) {
        return nullptr;
    }
    // The commands act on the selected group's current member: a right
    // click makes the row under it so, as a left click would.
    if (table == tableViewFiles) {
        selectGroupRow(groupsProxy_->mapToSource(at).row());
    }
    const FilePtr group = membersModel_->group();
    if (!group || group->duplicates.empty()) {
        return nullptr;
    }
    const int row =
        table == tableViewFiles ? headMemberRow(*group) : membersModel_->memberAt(at.row());
    if (row < 0 || static_cast<std::size_t>(row) >= group->duplicates.size()) {
        return nullptr;
    }
    tableViewDuplicates->setCurrentIndex(
        membersModel_->index(membersModel_->rowOf(row), MembersModel::ColumnPath));
    const DuplicateFilePtr member = group->duplicates[static_cast<std::size_t>(row)];

    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("menuRow"));
    menu->addAction(tr("File Info"), this, [this] { OnShowInfo(); });
    menu->addAction(tr("Show in File Manager"), this,
                    [path = member->path] { revealInFileManager(path); });
    menu->addSeparator();
    QAction* mark = menu->addAction(tr("Mark"), this, [this, row] { setMemberMark(row, true); });
    QAction* unmark =
        menu->addAction(tr("Unmark"), this, [this, row] { setMemberMark(row, false); });
    mark->setEnabled(!member->isProtected && member->checkState == 0);
    unmark->setEnabled(!member->isProtected && member->checkState == 1);
    menu->addSeparator();
    QAction* protect = menu->addAction(tr("Protect This Folder"), this,
                                       [this, path = member->path] { protectFolderOf(path); });
    protect->setEnabled(!member->isProtected);
    protect->setToolTip(MembersModel::protectedCopyTip());
    return menu;
}

void ViewControllerDuplicates::setMemberMark(int row, bool marked) {
    const FilePtr& group = membersModel_->group();
    if (!group || row < 0 || static_cast<std::size_t>(row) >= group->duplicates.size()) {
        return;
    }
    if ((group->duplicates[static_cast<std::size_t>(row)]->checkState == 1) != marked) {
        toggleMember(row);
        membersModel_->refresh();
    }
}

void ViewControllerDuplicates::protectFolderOf(const std::string& path) {
    const std::string folder = parentFolder(path);
    if (folder.empty()) {
        return;
    }
    // Background jobs read the members' flags; none may run while they change.
    waitForBackgroundJobs();
    // Listed with its box ticked, as the main window's folder table would
    // show it: the clean's last guard and later searches honour it.
    auto& listed = settingsManager->listFolderPaths;
    if (std::find(listed.begin(), listed.end(), folder) == listed.end()) {
        listed.push_back(folder);
    }
    auto& folders = settingsManager->protectedFolders;
    if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
        folders.push_back(folder);
    }
    for (const FilePtr& group : settingsManager->duplicateFileList) {
        for (const DuplicateFilePtr& member : group->duplicates) {
            if (isInsideFolder(member->path, folder)) {
                member->isProtected = true;
                member->checkState = 0;
            }
        }
    }
    groupsModel_->refresh();
    membersModel_->refresh();
    UpdateSpaceSaved();
}

} // namespace twinsweep::ui
