// SPDX-License-Identifier: GPL-3.0-or-later
// What a screen reader says of each control of the custom selection window:
// its name and what it does. The two rules of a kind show the same label,
// so their names tell them apart.
#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "ui/customkeep/Stepper.h"
#include "ui/customkeep/ViewControllerCustomKeep.h"
#include "ui/platform/Describe.h"

namespace twinsweep::ui {

void ViewControllerCustomKeep::describeControls() {
    const auto button = [this](const char* name) {
        return findChild<QPushButton*>(QString::fromLatin1(name));
    };
    describe(checkFirstDate, tr("First date rule"),
             tr("Marks the copies whose date is earlier or later than the date given."));
    describe(comboFirstDateType, tr("Date of the first date rule"),
             tr("Which date of a file the first date rule compares."));
    describe(comboFirstDateTermOfComparison, tr("Comparison of the first date rule"),
             tr("Whether the first date rule marks earlier or later files."));
    describe(dataPickerFirstDate, tr("Day of the first date rule"),
             tr("The day the first date rule compares with."));
    describe(checkSecondDate, tr("Second date rule"),
             tr("Marks the copies whose date is earlier or later than the date given."));
    describe(comboSecondDateType, tr("Date of the second date rule"),
             tr("Which date of a file the second date rule compares."));
    describe(comboSecondDateTermOFComparison, tr("Comparison of the second date rule"),
             tr("Whether the second date rule marks earlier or later files."));
    describe(dataPickerSecondDate, tr("Day of the second date rule"),
             tr("The day the second date rule compares with."));

    describe(checkFirstFileSize, tr("First size rule"),
             tr("Marks the copies that are larger or smaller than the size given."));
    describe(comboFirstFileSizeTermOfComparison, tr("Comparison of the first size rule"),
             tr("Whether the first size rule marks larger or smaller files."));
    describe(textFieldFirstFileSize, tr("Size of the first size rule"),
             tr("A number from 0 to 100000, in the unit chosen next to it."));
    describe(comboFirstFileSizeUnit, tr("Unit of the first size rule"),
             tr("The unit of the size typed: bytes, kilobytes, megabytes or gigabytes."));
    describe(checkSecondFileSize, tr("Second size rule"),
             tr("Marks the copies that are larger or smaller than the size given."));
    describe(comboSecondFileSizeTermOfComparison, tr("Comparison of the second size rule"),
             tr("Whether the second size rule marks larger or smaller files."));
    describe(textFieldSecondFileSize, tr("Size of the second size rule"),
             tr("A number from 0 to 100000, in the unit chosen next to it."));
    describe(comboSecondFileSizeUnit, tr("Unit of the second size rule"),
             tr("The unit of the size typed: bytes, kilobytes, megabytes or gigabytes."));

    describe(checkCustomFileTypes, tr("File type rule"),
             tr("Marks the copies whose extension is in the list."));
    describe(tableViewCustomFileTypes, tr("File extensions"),
             tr("The extensions the file type rule looks for."));
    describe(textFieldExtension, tr("New extension"),
             tr("An extension to add to the list, without the dot."));
    describe(button("buttonAddExtension"), tr("Add extension"),
             tr("Adds the extension typed to the list."));
    describe(button("buttonRemoveExtension"), tr("Remove extension"),
             tr("Removes the selected extension from the list."));
    describe(button("buttonRemoveAllExtensions"), tr("Remove all extensions"),
             tr("Empties the list of extensions."));

    describe(checkCustomFilePath, tr("Folder rule"),
             tr("Marks the copies that are in the folder given."));
    describe(textFieldCustomFilePath, tr("Folder of the folder rule"),
             tr("The full path of the folder."));
    describe(button("buttonBrowse"), tr("Browse for the folder"),
             tr("Opens a window to pick the folder."));
    describe(checkSubfolders, tr("Include subfolders"),
             tr("Whether copies in the folder's subfolders count as in the folder."));

    describe(comboMatch, tr("Match or don't match"),
             tr("Marks the copies that match every rule that is on, or the ones that don't."));
    describe(buttonReset, tr("Reset"), tr("Puts back the rules a new group starts with."));
    describe(buttonCancel, tr("Cancel"), tr("Closes the window and keeps the rules as they were."));
    describe(buttonOk, tr("OK"), tr("Saves the rules and marks the copies by them."));
}

} // namespace twinsweep::ui
