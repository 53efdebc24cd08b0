// SPDX-License-Identifier: GPL-3.0-or-later
// The results update as the window runs it: copies of the controls go to a
// background job, whose figures and new listed groups come back and are
// installed here, on the GUI thread.
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPalette>
#include <QProgressBar>
#include <QTableView>

#include "engine/FileTools.h"
#include "selection/CustomMarking.h"
#include "selection/CustomSettingsText.h"
#include "selection/KeepOptions.h"
#include "ui/duplicates/BackgroundJob.h"
#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/GroupsProxy.h"
#include "ui/duplicates/MembersModel.h"
#include "ui/duplicates/SegmentedControl.h"
#include "ui/duplicates/ViewControllerDuplicates.h"
#include "ui/shell/Alert.h"
#include "ui/shell/WindowFactory.h"

namespace twinsweep::ui {

template <class Work, class Done> void ViewControllerDuplicates::runJob(Work work, Done done) {
    ++jobsInFlight_;
    runInBackground(this, std::move(work), [this, done = std::move(done)](auto result) mutable {
        --jobsInFlight_;
        done(std::move(result));
    });
}

void ViewControllerDuplicates::OnSegmentedControlKeepChanged() {
    // With every group filtered out no group is selected: nothing to apply to.
    if (fileList.empty() || (!checkApplyForAll->isChecked() && groupsProxy_->rowCount() == 0)) {
        return;
    }
    settingsManager->selectedFile = selectedRow;
    if (segmentedControlKeep->selectedSegment() == kKeepCustom) {
        // The rule fields are about to change; a running job may be reading
        // them.
        waitForBackgroundJobs();
        ShowCustomWindow();
        if (checkApplyForAll->isChecked() && settingsManager->customSettingsOption == "OK") {
            ShowCustomSettingsMessage();
        }
    }
    UpdateResults();
}

void ViewControllerDuplicates::OnApplyForAllChecked() {
    // Read by the next keep option change and by every update.
}

void ViewControllerDuplicates::OnCategoryChecked() {
    selectedRow = 0;
    categoriesChanged = true;
    UpdateResults();
}

void ViewControllerDuplicates::UpdateResults() {
    if (updating) {
        selectionChanged = true;
        return;
    }
    updating = true;
    ++updatesStarted_;
    lastSelectedRow = selectedRow;
    ResultsRequest request;
    request.listed = fileList;
    request.lastSelectedRow = lastSelectedRow;
    request.firstUpdate = firstUpdate;
    request.categoriesChanged = categoriesChanged;
    for (std::size_t k = 0; k < categoryChecks.size(); ++k) {
        request.categoryShown[k] = categoryChecks[k]->isChecked();
    }
    request.applyForAll = checkApplyForAll->isChecked();
    request.segment = segmentedControlKeep->selectedSegment();
    request.figures = shownFigures_;
    if (request.applyForAll || firstUpdate || categoriesChanged) {
        setBusy(true);
    }
    runJob([request = std::move(request),
            settings = settingsManager] { return computeResults(request, *settings); },
           [this](ComputedResults results) { ShowResults(std::move(results)); });
}

void ViewControllerDuplicates::installList(FileList list) {
    fileList = std::move(list);
    groupsModel_->reset();
    // A new list is placed in the order the user chose, if any.
    if (groupsProxy_->sortColumn() >= 0) {
        groupsProxy_->sort(groupsProxy_->sortColumn(), groupsProxy_->sortOrder());
    }
    membersModel_->setGroup(nullptr);
    showTotals();
}

void ViewControllerDuplicates::installFoldedList(FileList list) {
    // The next run applies the option the control shows, which is what the
    // user chose meanwhile: selecting a row must not put the group's stored
    // option in its place. The run works on the selected index, as before.
    const int shown = segmentedControlKeep->selectedSegment();
    const std::int64_t row = selectedRow;
    installList(std::move(list));
    selectGroupRow(static_cast<std::size_t>(row) < fileList.size() ? static_cast<int>(row) : 0);
    segmentedControlKeep->setSelectedSegment(shown);
}

void ViewControllerDuplicates::ShowResults(ComputedResults results) {
    updating = false;
    if (selectionChanged) {
        selectionChanged = false;
        // The next run starts from the list this one built; its figures are
        // not shown.
        if (results.listedRebuilt) {
            installFoldedList(std::move(results.listed));
        }
        UpdateResults();
        return;
    }
    setBusy(false);
    showFigures(results.figures);
    showSpaceSaved(results.spaceSaved);
    if (!categoriesChanged && !firstUpdate) {
        groupsModel_->refresh();
        membersModel_->refresh();
        return;
    }
    categoriesChanged = false;
    firstUpdate = false;
    installList(std::move(results.listed));
    selectGroupRow(0);
}

void ViewControllerDuplicates::setBusy(bool busy) {
    progressIndicator->setVisible(busy);
}

void ViewControllerDuplicates::showFigures(const CategoryFigures& figures) {
    shownFigures_ = figures;
    for (std::size_t k = 0; k < categoryBars.size(); ++k) {
        categoryBars[k]->setValue(static_cast<int>(figures.bars[k] + 0.5));
        categoryPercents[k]->setText(QString::fromStdString(figures.texts[k]));
    }
}

void ViewControllerDuplicates::showSpaceSaved(const SpaceSaved& saved) {
    settingsManager->spaceSaved = saved.bytes;
    QPalette palette = labelSpaceSaved->palette();
    // The plain figure in the palette's own text colour, which reads on a
    // dark palette as on a light one.
    const QColor colour = saved.colour == kPlainTextColour
                              ? QApplication::palette().color(QPalette::WindowText)
                              : QColor(saved.colour.red, saved.colour.green, saved.colour.blue);
    palette.setColor(QPalette::WindowText, colour);
    labelSpaceSaved->setPalette(palette);
    labelSpaceSaved->setText(QString::fromStdString(saved.text));
}

void ViewControllerDuplicates::UpdateSpaceSaved() {
    const std::int64_t row = selectedRow;
    runJob([listed = fileList] { return spaceSaved(FileTools(), listed); },
           [this, row](SpaceSaved saved) {
               showSpaceSaved(saved);
               groupsModel_->refreshCount(static_cast<int>(row));
           });
}

void ViewControllerDuplicates::ShowCustomWindow() {
    if (static_cast<std::size_t>(selectedRow) >= fileList.size()) {
        return;
    }
    const FilePtr group = fileList[static_cast<std::size_t>(selectedRow)];
    loadCustomSettings(*settingsManager, group->customSettings);
    WindowFactory::runModal(kWindowControllerCustomKeep, this);
    if (settingsManager->customSettingsOption == "Cancel") {
        segmentedControlKeep->setSelectedSegment(static_cast<int>(group->keepOption));
    }
}

void ViewControllerDuplicates::ShowCustomSettingsMessage() {
    setBusy(false);
    const AlertText& question = keepOneCopyQuestion();
    QStringList buttons;
    for (const std::string& title : question.buttons) {
        buttons << QString::fromStdString(title);
    }
    const int answer = runAlert(this, QString::fromStdString(question.informativeText), buttons);
    settingsManager->customMessageRespone = keepOneCopyAnswer(answer);
    setBusy(true);
}

} // namespace twinsweep::ui
