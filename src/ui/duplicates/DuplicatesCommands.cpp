// SPDX-License-Identifier: GPL-3.0-or-later
// The results window's keyboard: every command in a menu with its shortcut,
// and Space marking the current member wherever the cursor is in its row.
#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QItemSelectionModel>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTableView>

#include "selection/KeepOptions.h"
#include "ui/duplicates/MembersModel.h"
#include "ui/duplicates/SegmentedControl.h"
#include "ui/duplicates/ViewControllerDuplicates.h"
#include "ui/shell/WindowCommands.h"

namespace twinsweep::ui {

void ViewControllerDuplicates::buildCommands() {
    QMenu* file = addCommandMenu(menuBar(), tr("&File"));
    addCommand(file, tr("Show in File &Manager"), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_O),
               [this] { OnGoToSourceDirectoryButton(); });
    addCommand(file, tr("File &Info"), QKeySequence(Qt::CTRL | Qt::Key_I),
               [this] { OnShowInfo(); });
    file->addSeparator();
    addCommand(file, tr("&Clean..."), QKeySequence(Qt::CTRL | Qt::Key_Delete),
               [this] { buttonClean->click(); });
    addCommand(file, tr("&Export..."), QKeySequence(Qt::CTRL | Qt::Key_E),
               [this] { buttonExport->click(); });

    QMenu* edit = addCommandMenu(menuBar(), tr("&Edit"));
    addCommand(
        edit, tr("&Mark or Unmark"), QKeySequence(Qt::Key_Space), [this] { toggleCurrentMember(); },
        tableViewDuplicates)
        ->setObjectName(QStringLiteral("actionToggleMark"));
    edit->addSeparator();
    for (int segment = 0; segment < segmentedControlKeep->segmentCount(); ++segment) {
        QAbstractButton* button = segmentedControlKeep->segmentButton(segment);
        addCommand(edit, button->text(), QKeySequence(Qt::CTRL | (Qt::Key_1 + segment)),
                   [button] { button->click(); });
    }
    QAction* all = edit->addAction(tr("&Apply to All Groups"));
    all->setCheckable(true);
    all->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A));
    connect(all, &QAction::triggered, this, [this](bool on) {
        if (checkApplyForAll->isChecked() != on) {
            checkApplyForAll->click();
        }
    });
    connect(checkApplyForAll, &QCheckBox::toggled, all, &QAction::setChecked);

    // Return in a table must not press a button the user did not choose.
    for (QPushButton* button : findChildren<QPushButton*>()) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
}

void ViewControllerDuplicates::toggleCurrentMember() {
    const QModelIndex current = tableViewDuplicates->currentIndex();
    if (!current.isValid()) {
        return;
    }
    membersModel_->setData(membersModel_->index(current.row(), MembersModel::ColumnCheck),
                           QVariant(), Qt::CheckStateRole);
}

} // namespace twinsweep::ui
