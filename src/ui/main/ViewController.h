// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>
#include <memory>

class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QRadioButton;
class QSlider;
class QTableView;

namespace twinsweep {
class SettingsManager;
}

namespace twinsweep::ui {

class FolderModel;
class FolderTableView;
class StringListModel;

// The main window, where a search is set up: the folders, the size range,
// the file types, what cleaning does with duplicates and whether packages
// are skipped. Every control writes its option into the shared settings as
// soon as it changes; the search reads them from there.
class ViewController : public QMainWindow {
    Q_OBJECT
  public:
    explicit ViewController(QWidget* parent = nullptr);
    ~ViewController() override;

    std::shared_ptr<SettingsManager> settingsManager;
    FolderTableView* tableViewFolders = nullptr;
    QPushButton* buttonAddFolder = nullptr;
    QPushButton* buttonRemoveSelected = nullptr;
    QPushButton* buttonRemoveAll = nullptr;
    QSlider* sliderMinimumFileSize = nullptr;
    QLabel* textFieldMinimumFileSize = nullptr;
    QSlider* sliderMaximumFileSize = nullptr;
    QLabel* textFieldMaximumFileSize = nullptr;
    QRadioButton* radioScanAllFileTypes = nullptr;
    QRadioButton* radioCustomFileTypes = nullptr;
    QTableView* tableViewFileTypes = nullptr;
    QPushButton* buttonCustomFileTypesAddFileExtension = nullptr;
    QLineEdit* textFieldCustomFileTypesExtension = nullptr;
    QPushButton* buttonCustomFileTypesRemoveSelected = nullptr;
    QPushButton* buttonCustomFileTypesRemoveAll = nullptr;
    QRadioButton* radioMoveDuplicateFilesToTrash = nullptr;
    QRadioButton* radioRemoveDuplicateFilesPermanently = nullptr;
    // Our addition: marked copies become hard links to a kept copy.
    QRadioButton* radioReplaceWithHardLinks = nullptr;
    QRadioButton* radioShareStorage = nullptr;
    // Edit > Undo Clean, enabled while a clean to the Trash can be undone.
    QAction* actionUndoClean = nullptr;
    QCheckBox* checkIgnoreBundles = nullptr;
    QCheckBox* checkCompareLargeFilesByContent = nullptr;
    QCheckBox* checkRememberFingerprints = nullptr;
    QCheckBox* checkIdleSearch = nullptr;
    // Keep oldest / keep newest by the exact creation times, not the date texts.
    QCheckBox* checkExactKeepTimes = nullptr;
    // The search takes folders outside the searched locations too.
    QCheckBox* checkSearchAnyLocation = nullptr;
    QPushButton* buttonFindDuplicateFiles = nullptr;
    // Under the folder table: which listed folders the search will not look
    // in, and where it does look. Hidden while there are none.
    QLabel* labelOutsideLocations = nullptr;
    // Beside that line: ticks "Search any location".
    QPushButton* buttonSearchAnyLocation = nullptr;

  public slots:
    void OnAddFolder();
    void OnRemoveSelected();
    void OnRemoveAll();
    void OnMinimumFileSizeChanged();
    void OnMaximumFileSizeChanged();
    void OnScanAllFileTypesSelected();
    void OnCustomFileTypesSelected();
    void OncustomFileTypesAddFileExtension();
    void OnCustomFileTypesRemoveSelected();
    void OnCustomFileTypesRemoveAll();
    void OnMoveDuplicateFilesToTrashSelected();
    void OnRemoveDuplicateFilesPermanentlySelected();
    void OnReplaceWithHardLinksSelected();
    void OnShareStorageSelected();
    // Puts back what the last clean to the Trash moved there (UndoClean.cpp).
    void OnUndoClean();
    // File > Clear Remembered Fingerprints (RememberedFingerprints.cpp).
    void OnClearRememberedFingerprints();
    void OnIgnoreBundlesChecked();
    void OnCompareLargeFilesByContentChecked();
    void OnFindDuplicateFiles();
    void OnFileNew();
    void OnMinimize();
    void OnAppQuit();
    void OnRemoveDuplicatesFromMac();
    void OnCustomSelectDuplicates();

    // Adds folders by path, in order, skipping empty and listed ones.
    // Returns how many were left out because no folder is there.
    int addFolders(const QStringList& folders);
    void ResetSettings();
    void UpdateSettings();
    void ShowDuplicatesWindow();
    void updateOutsideLocationsLine();
    // The folder list (with its protected folders) is kept between runs: this
    // reads the one saved last and saves every later change (SavedChoices.cpp).
    // The application calls it once for its window; a window made without it
    // starts empty and saves nothing.
    // Saves the folder list from now on, for File > Reopen Last Folders.
    void rememberChoices();
    bool hasSavedFolders() const;
    // Brings back the folder list saved last (and saves from now on).
    void restoreSavedChoices();
    void saveChoices() const;
    // Whether the window may close; asks first when the title ends in "*".
    bool windowShouldClose();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    // Builds the controls and menus (ViewControllerLayout.cpp).
    void buildLayout();
    void buildMenus();
    void updateUndoClean();
    void buildListCommands(QMenu* edit);
    QWidget* buildOutsideLocationsLine(QWidget* parent);
    // Accessible names and descriptions (MainAccessible.cpp).
    void describeControls();
    void setExtensionControlsEnabled(bool enabled);
    int selectedRow(QTableView* table) const;

    FolderModel* folderModel_ = nullptr;
    StringListModel* extensionModel_ = nullptr;
    QWidget* outsideLocationsLine_ = nullptr;
    bool savesChoices_ = false;
    QAction* actionRemoveExtension_ = nullptr;
    QAction* actionRemoveAllExtensions_ = nullptr;
};

} // namespace twinsweep::ui
