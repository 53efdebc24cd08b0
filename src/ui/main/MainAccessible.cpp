// SPDX-License-Identifier: GPL-3.0-or-later
// What a screen reader says of each control of the main window: its name and
// what it does. The two rows of buttons show the same labels ("Remove",
// "Remove All"), so their names tell them apart.
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTableView>

#include "ui/main/FolderTableView.h"
#include "ui/main/ViewController.h"
#include "ui/platform/Describe.h"

namespace twinsweep::ui {

void ViewController::describeControls() {
    describe(tableViewFolders, tr("Folders to scan"),
             tr("The folders the search looks in. Tick Protected beside a folder so no copy in "
                "it is marked or removed."));
    describe(buttonAddFolder, tr("Add folder"), tr("Opens a window to pick folders to scan."));
    describe(buttonRemoveSelected, tr("Remove folder"),
             tr("Removes the selected folder from the list."));
    describe(buttonRemoveAll, tr("Remove all folders"), tr("Empties the list of folders."));
    describe(buttonSearchAnyLocation, tr("Search any location"),
             tr("Ticks Search any location, so the folders named beside it are searched too."));

    describe(sliderMinimumFileSize, tr("Smallest file size"),
             tr("Files smaller than this are left out of the search."));
    describe(sliderMaximumFileSize, tr("Largest file size"),
             tr("Files larger than this are left out of the search."));

    describe(radioScanAllFileTypes, tr("All file types"), tr("The search looks at every file."));
    describe(radioCustomFileTypes, tr("Only these extensions"),
             tr("The search looks only at files whose extension is in the list."));
    describe(tableViewFileTypes, tr("File extensions"), tr("The extensions the search looks for."));
    describe(textFieldCustomFileTypesExtension, tr("New extension"),
             tr("An extension to add to the list, without the dot."));
    describe(buttonCustomFileTypesAddFileExtension, tr("Add extension"),
             tr("Adds the extension typed to the list."));
    describe(buttonCustomFileTypesRemoveSelected, tr("Remove extension"),
             tr("Removes the selected extension from the list."));
    describe(buttonCustomFileTypesRemoveAll, tr("Remove all extensions"),
             tr("Empties the list of extensions."));

    describe(radioMoveDuplicateFilesToTrash, tr("Move duplicate files to the Trash"),
             tr("Cleaning moves the marked copies to the Trash, from where they can be put "
                "back."));
    describe(radioRemoveDuplicateFilesPermanently, tr("Delete duplicate files permanently"),
             tr("Cleaning deletes the marked copies; they cannot be put back."));
    describe(radioReplaceWithHardLinks, tr("Replace duplicate files with hard links"),
             radioReplaceWithHardLinks->toolTip());
    describe(radioShareStorage, tr("Share the storage of duplicate files"),
             radioShareStorage->toolTip());
    describe(checkExactKeepTimes, tr("Decide oldest and newest by exact time"),
             checkExactKeepTimes->toolTip());
    describe(checkIgnoreBundles, tr("Skip packages"),
             tr("Application bundles and similar folders are not searched."));
    describe(checkCompareLargeFilesByContent, tr("Compare large files by content"),
             checkCompareLargeFilesByContent->toolTip());
    describe(checkRememberFingerprints, tr("Remember file fingerprints between searches"),
             checkRememberFingerprints->toolTip());
    describe(checkIdleSearch, tr("Search at idle disk priority"), checkIdleSearch->toolTip());
    describe(checkSearchAnyLocation, tr("Search any location"), checkSearchAnyLocation->toolTip());
    describe(buttonFindDuplicateFiles, tr("Find duplicate files"),
             tr("Searches the folders listed with these options and shows the duplicates "
                "found."));
}

} // namespace twinsweep::ui
