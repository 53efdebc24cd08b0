// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/duplicates/ViewControllerDuplicates.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QEventLoop>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>

#include "engine/FileTools.h"
#include "selection/CustomSettingsText.h"
#include "selection/KeepOptions.h"
#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/GroupsProxy.h"
#include "ui/duplicates/MembersModel.h"
#include "ui/duplicates/RevealFile.h"
#include "ui/duplicates/SegmentedControl.h"
#include "ui/info/ViewControllerInfo.h"
#include "ui/shell/WindowFactory.h"

namespace twinsweep::ui {

ViewControllerDuplicates::ViewControllerDuplicates(QWidget* opener)
    : ModalWindow(opener), settingsManager(SettingsManager::shared()) {
    buildLayout();
    buildCommands();
    buildReview();
    viewDidLoad();
}

ViewControllerDuplicates::~ViewControllerDuplicates() = default;

void ViewControllerDuplicates::viewDidLoad() {
    connect(tableViewFiles->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { tableViewSelectionDidChange(); });
    membersModel_->onToggle = [this](int row) { toggleMember(row); };
    connect(segmentedControlKeep, &SegmentedControl::clicked, this,
            &ViewControllerDuplicates::OnSegmentedControlKeepChanged);
    connect(checkApplyForAll, &QCheckBox::clicked, this,
            &ViewControllerDuplicates::OnApplyForAllChecked);
    for (QCheckBox* box : categoryChecks) {
        connect(box, &QCheckBox::clicked, this, &ViewControllerDuplicates::OnCategoryChecked);
    }
    connect(buttonClean, &QPushButton::clicked, this, &ViewControllerDuplicates::OnClean);
    connect(buttonReveal, &QPushButton::clicked, this,
            &ViewControllerDuplicates::OnGoToSourceDirectoryButton);
    connect(buttonInfo, &QPushButton::clicked, this, &ViewControllerDuplicates::OnShowInfo);
    connect(buttonExport, &QPushButton::clicked, this, &ViewControllerDuplicates::OnExport);
    connect(tableViewDuplicates, &QTableView::doubleClicked, this,
            &ViewControllerDuplicates::OnShowInfo);
    ResetResultsWindow();
    UpdateResults();
}

void ViewControllerDuplicates::ResetResultsWindow() {
    categoriesChanged = false;
    setBusy(false);
    segmentedControlKeep->setSelectedSegment(kKeepAll);
    checkApplyForAll->setChecked(false);
    for (QCheckBox* box : categoryChecks) {
        box->setChecked(true);
    }
    resetKeepOptions(settingsManager->duplicateFileList);
    resetCustomSettings(*settingsManager);
    showSpaceSaved(SpaceSaved{0, FileTools::fileSizeText(0), kPlainTextColour});
}

std::string ViewControllerDuplicates::groupFolder(std::int64_t row) const {
    if (row < 0 || static_cast<std::size_t>(row) >= fileList.size()) {
        return {};
    }
    return parentFolder(fileList[static_cast<std::size_t>(row)]->path);
}

void ViewControllerDuplicates::tableViewSelectionDidChange() {
    const QModelIndexList rows = tableViewFiles->selectionModel()->selectedRows();
    // The table shows the groups sorted and filtered; fileList keeps the
    // search's order, and selectedRow is its index.
    const int s = rows.isEmpty() ? -1 : groupsProxy_->mapToSource(rows.front()).row();
    if (s < 0 || static_cast<std::size_t>(s) >= fileList.size()) {
        selectedRow = 0;
        return;
    }
    selectedRow = s;
    const FilePtr& group = fileList[static_cast<std::size_t>(s)];
    segmentedControlKeep->setSelectedSegment(static_cast<int>(group->keepOption));
    membersModel_->setGroup(group);
}

void ViewControllerDuplicates::selectGroupRow(int row) {
    // Row indexes fileList; one the filter hides gives way to the first shown.
    QModelIndex shown = row >= 0 && row < groupsModel_->rowCount()
                            ? groupsProxy_->mapFromSource(groupsModel_->index(row, 0))
                            : QModelIndex();
    if (!shown.isValid() && row >= 0 && groupsProxy_->rowCount() > 0) {
        shown = groupsProxy_->index(0, 0);
    }
    if (shown.isValid()) {
        tableViewFiles->selectRow(shown.row());
        tableViewFiles->scrollTo(shown);
        // Selecting the row already selected sends no change; the members
        // table must follow the list all the same.
        tableViewSelectionDidChange();
    } else {
        tableViewFiles->clearSelection();
        membersModel_->setGroup(nullptr);
        selectedRow = 0;
    }
}

void ViewControllerDuplicates::toggleMember(int row) {
    // The group the members table shows: while an update runs, the selected
    // row may already name another group.
    const FilePtr& shown = membersModel_->group();
    if (!shown) {
        return;
    }
    const File& group = *shown;
    if (row < 0 || static_cast<std::size_t>(row) >= group.duplicates.size()) {
        return;
    }
    const auto index = static_cast<std::size_t>(row);
    DuplicateFile& member = *group.duplicates[index];
    if (member.isProtected) {
        return;
    }
    member.checkState = member.checkState == 0 ? 1 : 0;
    // The member just ticked is the one File Info and Show in File Manager
    // act on.
    const int shownRow = membersModel_->rowOf(row);
    const QModelIndex ticked = membersModel_->index(shownRow, MembersModel::ColumnCheck);
    if (tableViewDuplicates->currentIndex().row() != shownRow) {
        tableViewDuplicates->setCurrentIndex(ticked);
    }
    // Another entry of the same group (never the case with shared records)
    // carries the same mark.
    for (const FilePtr& other : settingsManager->duplicateFileList) {
        if (other->path == group.path && other->duplicates.size() > index) {
            other->duplicates[index]->checkState = member.checkState;
        }
    }
    UpdateSpaceSaved();
}

DuplicateFilePtr ViewControllerDuplicates::selectedMember() const {
    // The members table selects nothing visibly; its current row is the
    // selected member.
    const FilePtr& group = membersModel_->group();
    const QModelIndex current = tableViewDuplicates->currentIndex();
    if (!group || !current.isValid()) {
        return nullptr;
    }
    const int member = membersModel_->memberAt(current.row());
    return member >= 0 && static_cast<std::size_t>(member) < group->duplicates.size()
               ? group->duplicates[static_cast<std::size_t>(member)]
               : nullptr;
}

void ViewControllerDuplicates::OnGoToSourceDirectoryButton() {
    if (const DuplicateFilePtr member = selectedMember()) {
        revealInFileManager(member->path);
    }
}

void ViewControllerDuplicates::OnShowInfo() {
    const DuplicateFilePtr member = selectedMember();
    if (!member) {
        return;
    }
    settingsManager->currentSelectedFilePath = member->path;
    std::unique_ptr<ModalWindow> window = WindowFactory::make(kWindowControllerInfo, this);
    if (auto* info = qobject_cast<ViewControllerInfo*>(window.get())) {
        info->fillLabels(member->path, membersModel_->group()->size);
    }
    if (window) {
        window->runModal();
    }
}

void ViewControllerDuplicates::viewDidDisappear() {
    // The running job reads the result lists; let it end before they go.
    waitForBackgroundJobs();
    settingsManager->fileList.clear();
    settingsManager->duplicateFileList.clear();
    ModalWindow::viewDidDisappear();
}

void ViewControllerDuplicates::keyPressEvent(QKeyEvent* event) {
    // Closing drops the results; a stray Escape must not do that.
    if (event->key() == Qt::Key_Escape) {
        event->ignore();
        return;
    }
    ModalWindow::keyPressEvent(event);
}

void ViewControllerDuplicates::waitForBackgroundJobs() {
    while (jobsInFlight_ > 0) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                        QEventLoop::WaitForMoreEvents);
    }
}

} // namespace twinsweep::ui
