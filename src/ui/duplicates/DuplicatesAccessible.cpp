// SPDX-License-Identifier: GPL-3.0-or-later
// What a screen reader says of each control of the results window: its name
// and what it does. The keep buttons and category boxes show a word or two;
// their descriptions say what choosing them does.
#include <QAbstractButton>
#include <QCheckBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>

#include "ui/duplicates/SegmentedControl.h"
#include "ui/duplicates/ViewControllerDuplicates.h"
#include "ui/platform/Describe.h"

namespace twinsweep::ui {

void ViewControllerDuplicates::describeControls() {
    describe(segmentedControlKeep, tr("Keep option"),
             tr("Which copies of the selected group are marked for removal."));
    const QString keepTips[] = {
        tr("Marks no copy: every copy is kept."),
        tr("Marks every copy but the oldest."),
        tr("Marks every copy but the newest."),
        tr("Marks every copy of the group."),
        tr("Opens the custom selection, which marks copies by date and size rules."),
    };
    for (int segment = 0; segment < segmentedControlKeep->segmentCount(); ++segment) {
        QAbstractButton* button = segmentedControlKeep->segmentButton(segment);
        describe(button, button->text(), keepTips[segment]);
    }
    describe(checkApplyForAll, tr("Apply to all groups"),
             tr("When ticked, the keep option chosen applies to every listed group."));
    describe(progressIndicator, tr("Updating"), tr("Shown while the marks are worked out."));
    describe(textFieldFilter, tr("Filter by path"),
             tr("Lists only the groups with a copy whose path holds this text."));
    describe(tableViewFiles, tr("Duplicate groups"),
             tr("One row per group of identical files: name, size and copies marked. Selecting a "
                "row lists its copies."));
    describe(tableViewDuplicates, tr("Copies of the selected group"),
             tr("Every copy with its path and date; a ticked box marks the copy for removal. "
                "Space ticks or unticks the current copy."));
    describe(buttonReveal, tr("Show in File Manager"),
             tr("Opens the folder of the current copy in the file manager."));
    describe(buttonInfo, tr("File Info"), tr("Shows the details of the current copy."));
    describe(buttonExport, tr("Export"),
             tr("Saves the listed groups and their marks as CSV or JSON."));
    for (QCheckBox* box : categoryChecks) {
        describe(box, box->text(), tr("When ticked, the groups of this kind of file are listed."));
    }
    for (QProgressBar* bar : categoryBars) {
        bar->setAccessibleName(tr("Share of the duplicates"));
    }
    describe(buttonClean, tr("Clean"), tr("Removes the marked copies, after asking."));
}

} // namespace twinsweep::ui
