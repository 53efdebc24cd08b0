// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/main/ViewController.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFile>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTableView>
#include <algorithm>
#include <sys/stat.h>

#include "engine/FileTools.h"
#include "engine/LocationGate.h"
#include "engine/TextCase.h"
#include "settings/SettingsManager.h"
#include "ui/main/FolderModel.h"
#include "ui/main/FolderTableView.h"
#include "ui/main/OutsideLocations.h"
#include "ui/main/SizeStops.h"
#include "ui/main/StringListModel.h"
#include "ui/platform/FolderPicker.h"
#include "ui/shell/Alert.h"
#include "ui/shell/WindowCommands.h"
#include "ui/shell/WindowFactory.h"

namespace twinsweep::ui {

namespace {

QString sizeText(std::uint64_t bytes) {
    return QString::fromStdString(FileTools::fileSizeText(bytes));
}

} // namespace

ViewController::ViewController(QWidget* parent)
    : QMainWindow(parent), settingsManager(SettingsManager::shared()) {
    setObjectName(QStringLiteral("WindowControllerMain"));
    setWindowTitle(QStringLiteral("Twinsweep"));
    folderModel_ =
        new FolderModel(settingsManager->listFolderPaths, settingsManager->protectedFolders, this);
    extensionModel_ = new StringListModel(settingsManager->listFileExtensions,
                                          StringListModel::Kind::Extensions, this);
    buildLayout();
    buildMenus();
    describeControls();
    ResetSettings();
    updateUndoClean();
}

ViewController::~ViewController() = default;

int ViewController::selectedRow(QTableView* table) const {
    const QModelIndexList rows = table->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.front().row();
}

void ViewController::OnAddFolder() {
    const std::optional<QStringList> chosen = chooseFolders(this);
    if (!chosen) {
        return;
    }
    // A folder that vanished meanwhile, or whose name did not survive the
    // dialog, is reported the same way as an empty choice.
    if (chosen->isEmpty() || addFolders(*chosen) > 0) {
        showInformation(this, tr("The selected folder(s) could not be added."));
    }
}

int ViewController::addFolders(const QStringList& folders) {
    auto& list = settingsManager->listFolderPaths;
    int notFolders = 0;
    for (const QString& folder : folders) {
        const std::string path = QFile::encodeName(folder).toStdString();
        if (path.empty() || std::find(list.begin(), list.end(), path) != list.end()) {
            continue;
        }
        struct stat info {};
        if (::stat(path.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
            ++notFolders;
            continue;
        }
        list.push_back(path);
    }
    folderModel_->reload();
    return notFolders;
}

void ViewController::OnRemoveSelected() {
    auto& list = settingsManager->listFolderPaths;
    const int row = selectedRow(tableViewFolders);
    if (list.empty() || row < 0 || row >= static_cast<int>(list.size())) {
        return;
    }
    list.erase(list.begin() + row);
    folderModel_->reload();
}

void ViewController::OnRemoveAll() {
    if (settingsManager->listFolderPaths.empty()) {
        return;
    }
    if (!askYesNo(this, tr("Are you sure you want to remove all folders from the list?"))) {
        return;
    }
    settingsManager->listFolderPaths.clear();
    folderModel_->reload();
}

void ViewController::OnMinimumFileSizeChanged() {
    if (const auto size = minimumSizeAtStop(sliderMinimumFileSize->value())) {
        settingsManager->minimumFileSize = *size;
    }
    textFieldMinimumFileSize->setText(sizeText(settingsManager->minimumFileSize));
}

void ViewController::OnMaximumFileSizeChanged() {
    if (const auto size = maximumSizeAtStop(sliderMaximumFileSize->value())) {
        settingsManager->maximumFileSize = *size;
    }
    textFieldMaximumFileSize->setText(sizeText(settingsManager->maximumFileSize));
}

void ViewController::setExtensionControlsEnabled(bool enabled) {
    tableViewFileTypes->setEnabled(enabled);
    textFieldCustomFileTypesExtension->setEnabled(enabled);
    buttonCustomFileTypesAddFileExtension->setEnabled(enabled);
    buttonCustomFileTypesRemoveSelected->setEnabled(enabled);
    buttonCustomFileTypesRemoveAll->setEnabled(enabled);
    actionRemoveExtension_->setEnabled(enabled);
    actionRemoveAllExtensions_->setEnabled(enabled);
}

void ViewController::OnScanAllFileTypesSelected() {
    radioScanAllFileTypes->setChecked(true);
    radioCustomFileTypes->setChecked(false);
    setExtensionControlsEnabled(false);
    UpdateSettings();
}

void ViewController::OnCustomFileTypesSelected() {
    radioCustomFileTypes->setChecked(true);
    radioScanAllFileTypes->setChecked(false);
    setExtensionControlsEnabled(true);
    UpdateSettings();
}

void ViewController::OncustomFileTypesAddFileExtension() {
    // Stored as typed, only lower-cased: a leading dot or blanks are the
    // user's to see in the list and remove.
    const std::string typed = lowerCased(textFieldCustomFileTypesExtension->text().toStdString());
    auto& list = settingsManager->listFileExtensions;
    if (!typed.empty() && std::find(list.begin(), list.end(), typed) == list.end()) {
        list.push_back(typed);
    }
    extensionModel_->reload();
}

void ViewController::OnCustomFileTypesRemoveSelected() {
    auto& list = settingsManager->listFileExtensions;
    const int row = selectedRow(tableViewFileTypes);
    if (!list.empty() && row >= 0 && row < static_cast<int>(list.size())) {
        list.erase(list.begin() + row);
    }
    extensionModel_->reload();
}

void ViewController::OnCustomFileTypesRemoveAll() {
    if (!settingsManager->listFileExtensions.empty()) {
        settingsManager->listFileExtensions.clear();
        extensionModel_->reload();
    }
}

void ViewController::OnMoveDuplicateFilesToTrashSelected() {
    radioMoveDuplicateFilesToTrash->setChecked(true);
    radioRemoveDuplicateFilesPermanently->setChecked(false);
    radioReplaceWithHardLinks->setChecked(false);
    radioShareStorage->setChecked(false);
    UpdateSettings();
}

void ViewController::OnRemoveDuplicateFilesPermanentlySelected() {
    radioRemoveDuplicateFilesPermanently->setChecked(true);
    radioMoveDuplicateFilesToTrash->setChecked(false);
    radioReplaceWithHardLinks->setChecked(false);
    radioShareStorage->setChecked(false);
    UpdateSettings();
}

void ViewController::OnIgnoreBundlesChecked() {
    UpdateSettings();
}

void ViewController::OnCompareLargeFilesByContentChecked() {
    UpdateSettings();
}

void ViewController::UpdateSettings() {
    settingsManager->customFileTypes = radioCustomFileTypes->isChecked();
    settingsManager->moveToTrash = radioMoveDuplicateFilesToTrash->isChecked();
    settingsManager->replaceWithHardLinks = radioReplaceWithHardLinks->isChecked();
    settingsManager->shareStorage = radioShareStorage->isChecked();
    settingsManager->ignorePackages = checkIgnoreBundles->isChecked();
    settingsManager->compareLargeFilesByContent = checkCompareLargeFilesByContent->isChecked();
    settingsManager->rememberFingerprints = checkRememberFingerprints->isChecked();
    settingsManager->idleSearch = checkIdleSearch->isChecked();
    settingsManager->exactKeepTimes = checkExactKeepTimes->isChecked();
    if (settingsManager->searchAnyLocation != checkSearchAnyLocation->isChecked()) {
        settingsManager->searchAnyLocation = checkSearchAnyLocation->isChecked();
        updateOutsideLocationsLine();
    }
}

void ViewController::ResetSettings() {
    const QSignalBlocker minimumQuiet(sliderMinimumFileSize);
    const QSignalBlocker maximumQuiet(sliderMaximumFileSize);
    sliderMinimumFileSize->setValue(kDefaultMinimumStop);
    sliderMaximumFileSize->setValue(kDefaultMaximumStop);
    textFieldMinimumFileSize->setText(QString::asprintf("%.1f", 200.0) + QStringLiteral(" KB"));
    textFieldMaximumFileSize->setText(QString::asprintf("%.1f", 100.0) + QStringLiteral(" GB"));

    radioScanAllFileTypes->setChecked(true);
    radioCustomFileTypes->setChecked(false);
    setExtensionControlsEnabled(false);
    textFieldCustomFileTypesExtension->setText(QStringLiteral("jpg"));

    radioMoveDuplicateFilesToTrash->setChecked(true);
    radioRemoveDuplicateFilesPermanently->setChecked(false);
    radioReplaceWithHardLinks->setChecked(false);
    radioShareStorage->setChecked(false);
    checkIgnoreBundles->setChecked(true);
    checkCompareLargeFilesByContent->setChecked(false);
    checkRememberFingerprints->setChecked(false);
    checkIdleSearch->setChecked(false);
    checkExactKeepTimes->setChecked(false);
    checkSearchAnyLocation->setChecked(false);

    SettingsManager& s = *settingsManager;
    s.listFolderPaths.clear();
    s.protectedFolders.clear();
    s.listFileExtensions.clear();
    s.minimumFileSize = 204800;
    s.maximumFileSize = 107374182400ULL;
    s.customFileTypes = false;
    s.moveToTrash = true;
    s.replaceWithHardLinks = false;
    s.shareStorage = false;
    s.ignorePackages = true;
    s.compareLargeFilesByContent = false;
    s.rememberFingerprints = false;
    s.idleSearch = false;
    s.exactKeepTimes = false;
    s.searchAnyLocation = false;

    folderModel_->reload();
    extensionModel_->reload();
}

void ViewController::OnFindDuplicateFiles() {
    if (settingsManager->listFolderPaths.empty()) {
        showInformation(this, tr("There are no folders to scan. Please add at least "
                                 "one folder and try again."));
        return;
    }
    settingsManager->searchCanceledByUser = false;
    settingsManager->openDuplicatesWindow = false;
    WindowFactory::runModal(kWindowControllerProgress, this);
    if (settingsManager->openDuplicatesWindow) {
        ShowDuplicatesWindow();
    }
}

void ViewController::ShowDuplicatesWindow() {
    WindowFactory::runModal(kWindowControllerDuplicates, this);
    updateUndoClean();
}

void ViewController::updateOutsideLocationsLine() {
    const QString text =
        outsideLocationsText(settingsManager->searchAnyLocation ? LocationGate::anywhere()
                                                                : LocationGate::processDefault(),
                             settingsManager->listFolderPaths);
    labelOutsideLocations->setText(text);
    outsideLocationsLine_->setVisible(!text.isEmpty());
}

void ViewController::OnFileNew() {
    ResetSettings();
}

void ViewController::OnMinimize() {
    showMinimized();
}

void ViewController::OnAppQuit() {
    // Straight out of the event loop: quitting asks nothing, unlike closing.
    QCoreApplication::exit(0);
}

void ViewController::OnRemoveDuplicatesFromMac() {
    openRemoveDuplicatesHelp();
}

void ViewController::OnCustomSelectDuplicates() {
    openCustomSelectHelp();
}

bool ViewController::windowShouldClose() {
    if (!windowTitle().endsWith(QLatin1Char('*'))) {
        return true;
    }
    return askYesNo(this, tr("You have unsaved changes that will be lost. Are you "
                             "sure you want to exit the application?"));
}

void ViewController::closeEvent(QCloseEvent* event) {
    if (windowShouldClose()) {
        event->accept();
    } else {
        event->ignore();
    }
}

} // namespace twinsweep::ui
