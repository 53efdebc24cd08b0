// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's controls and menus, kept apart from what they do.
#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

#include "ui/main/FolderModel.h"
#include "ui/main/FolderTableView.h"
#include "ui/main/SizeStops.h"
#include "ui/main/StringListModel.h"
#include "ui/main/ViewController.h"
#include "ui/shell/WindowCommands.h"

namespace twinsweep::ui {

namespace {

template <class Widget> Widget* named(Widget* widget, const char* name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

QSlider* sizeSlider(QWidget* parent, const char* name) {
    auto* slider = named(new QSlider(Qt::Horizontal, parent), name);
    slider->setRange(0, kSizeStopCount - 1);
    slider->setSingleStep(1);
    slider->setPageStep(1);
    slider->setTickInterval(1);
    slider->setTickPosition(QSlider::TicksBelow);
    slider->setMinimumWidth(220);
    return slider;
}

QLabel* sizeLabel(QWidget* parent, const char* name) {
    auto* label = named(new QLabel(parent), name);
    label->setMinimumWidth(80);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return label;
}

} // namespace

void ViewController::buildLayout() {
    auto* central = new QWidget(this);
    auto* page = new QVBoxLayout(central);

    // Folders to scan.
    auto* folders = new QGroupBox(tr("Folders to scan"), central);
    auto* folderColumn = new QVBoxLayout(folders);
    auto* folderRow = new QHBoxLayout;
    folderColumn->addLayout(folderRow, 1);
    folderColumn->addWidget(buildOutsideLocationsLine(folders));
    tableViewFolders = named(new FolderTableView(folders), "TableViewFolderPaths");
    tableViewFolders->setModel(folderModel_);
    FolderModel::fitColumns(tableViewFolders);
    tableViewFolders->setToolTip(tr("Add folders with the buttons, or drag them here "
                                    "from your file manager."));
    tableViewFolders->setMinimumHeight(120);
    folderRow->addWidget(tableViewFolders, 1);
    auto* folderButtons = new QVBoxLayout;
    buttonAddFolder = named(new QPushButton(tr("Add Folder..."), folders), "buttonAddFolder");
    buttonRemoveSelected = named(new QPushButton(tr("Remove"), folders), "buttonRemoveSelected");
    buttonRemoveAll = named(new QPushButton(tr("Remove All"), folders), "buttonRemoveAll");
    for (QPushButton* b : {buttonAddFolder, buttonRemoveSelected, buttonRemoveAll}) {
        b->setAutoDefault(false);
        folderButtons->addWidget(b);
    }
    folderButtons->addStretch(1);
    folderRow->addLayout(folderButtons);
    page->addWidget(folders, 1);

    // File sizes.
    auto* sizes = new QGroupBox(tr("File size"), central);
    auto* sizeGrid = new QGridLayout(sizes);
    sliderMinimumFileSize = sizeSlider(sizes, "sliderMinimumFileSize");
    textFieldMinimumFileSize = sizeLabel(sizes, "textFieldMinimumFileSize");
    sliderMaximumFileSize = sizeSlider(sizes, "sliderMaximumFileSize");
    textFieldMaximumFileSize = sizeLabel(sizes, "textFieldMaximumFileSize");
    sizeGrid->addWidget(new QLabel(tr("Smallest:"), sizes), 0, 0);
    sizeGrid->addWidget(sliderMinimumFileSize, 0, 1);
    sizeGrid->addWidget(textFieldMinimumFileSize, 0, 2);
    sizeGrid->addWidget(new QLabel(tr("Largest:"), sizes), 1, 0);
    sizeGrid->addWidget(sliderMaximumFileSize, 1, 1);
    sizeGrid->addWidget(textFieldMaximumFileSize, 1, 2);
    sizeGrid->setColumnStretch(1, 1);
    page->addWidget(sizes);

    // File types.
    auto* types = new QGroupBox(tr("File types"), central);
    auto* typeGrid = new QGridLayout(types);
    radioScanAllFileTypes =
        named(new QRadioButton(tr("All file types"), types), "radioScanAllFileTypes");
    radioCustomFileTypes =
        named(new QRadioButton(tr("Only these extensions:"), types), "radioCustomFileTypes");
    auto* typeGroup = new QButtonGroup(types);
    typeGroup->addButton(radioScanAllFileTypes);
    typeGroup->addButton(radioCustomFileTypes);
    tableViewFileTypes = named(new QTableView(types), "TableViewFileTypes");
    tableViewFileTypes->setModel(extensionModel_);
    tableViewFileTypes->setSelectionBehavior(QAbstractItemView::SelectRows);
    tableViewFileTypes->setSelectionMode(QAbstractItemView::SingleSelection);
    tableViewFileTypes->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tableViewFileTypes->horizontalHeader()->setStretchLastSection(true);
    tableViewFileTypes->verticalHeader()->setVisible(false);
    tableViewFileTypes->setShowGrid(false);
    tableViewFileTypes->setTabKeyNavigation(false);
    tableViewFileTypes->setMaximumHeight(110);
    textFieldCustomFileTypesExtension =
        named(new QLineEdit(types), "textFieldCustomFileTypesExtension");
    textFieldCustomFileTypesExtension->setPlaceholderText(tr("extension, e.g. jpg"));
    buttonCustomFileTypesAddFileExtension =
        named(new QPushButton(tr("Add"), types), "buttonCustomFileTypesAddFileExtension");
    buttonCustomFileTypesRemoveSelected =
        named(new QPushButton(tr("Remove"), types), "buttonCustomFileTypesRemoveSelected");
    buttonCustomFileTypesRemoveAll =
        named(new QPushButton(tr("Remove All"), types), "buttonCustomFileTypesRemoveAll");
    // The two choices share a row: the window fits a small screen.
    auto* choiceRow = new QHBoxLayout;
    choiceRow->addWidget(radioScanAllFileTypes);
    choiceRow->addWidget(radioCustomFileTypes);
    choiceRow->addStretch(1);
    typeGrid->addLayout(choiceRow, 0, 0, 1, 2);
    typeGrid->addWidget(tableViewFileTypes, 1, 0, 4, 1);
    auto* addRow = new QHBoxLayout;
    addRow->addWidget(textFieldCustomFileTypesExtension);
    addRow->addWidget(buttonCustomFileTypesAddFileExtension);
    typeGrid->addLayout(addRow, 1, 1);
    typeGrid->addWidget(buttonCustomFileTypesRemoveSelected, 2, 1);
    typeGrid->addWidget(buttonCustomFileTypesRemoveAll, 3, 1);
    typeGrid->setRowStretch(4, 1);
    typeGrid->setColumnStretch(0, 1);
    for (QPushButton* b : {buttonCustomFileTypesAddFileExtension,
                           buttonCustomFileTypesRemoveSelected, buttonCustomFileTypesRemoveAll}) {
        b->setAutoDefault(false);
    }
    page->addWidget(types);

    // What cleaning does, and the search options.
    auto* options = new QGroupBox(tr("Options"), central);
    auto* optionRows = new QGridLayout(options);
    radioMoveDuplicateFilesToTrash =
        named(new QRadioButton(tr("Move duplicate files to the Trash"), options),
              "radioMoveDuplicateFilesToTrash");
    radioRemoveDuplicateFilesPermanently =
        named(new QRadioButton(tr("Delete duplicate files permanently"), options),
              "radioRemoveDuplicateFilesPermanently");
    radioReplaceWithHardLinks =
        named(new QRadioButton(tr("Replace duplicate files with hard links"), options),
              "radioReplaceWithHardLinks");
    radioReplaceWithHardLinks->setToolTip(
        tr("Each removed copy becomes a hard link to a kept copy: every path keeps "
           "working and the contents are stored once."));
    radioShareStorage =
        named(new QRadioButton(tr("Share the storage of duplicate files (copy-on-write)"), options),
              "radioShareStorage");
    radioShareStorage->setToolTip(
        tr("On Btrfs and XFS, each copy shares its storage with a kept copy: nothing "
           "is removed, and every file keeps its own path, owner and later edits."));
    auto* removalGroup = new QButtonGroup(options);
    removalGroup->addButton(radioMoveDuplicateFilesToTrash);
    removalGroup->addButton(radioRemoveDuplicateFilesPermanently);
    removalGroup->addButton(radioReplaceWithHardLinks);
    removalGroup->addButton(radioShareStorage);
    checkIgnoreBundles =
        named(new QCheckBox(tr("Skip packages (application bundles and similar folders)"), options),
              "checkIgnoreBundles");
    checkCompareLargeFilesByContent =
        named(new QCheckBox(tr("Compare large files by content"), options),
              "checkCompareLargeFilesByContent");
    checkCompareLargeFilesByContent->setToolTip(
        tr("Files of 100 MB and more are otherwise matched by size alone."));
    checkRememberFingerprints =
        named(new QCheckBox(tr("Remember file fingerprints between searches"), options),
              "checkRememberFingerprints");
    checkRememberFingerprints->setToolTip(
        tr("Files unchanged since an earlier search are not read again."));
    checkIdleSearch =
        named(new QCheckBox(tr("Search at idle disk priority"), options), "checkIdleSearch");
    checkIdleSearch->setToolTip(
        tr("The search reads only when no other program is waiting for the disk: slower, "
           "but the desktop stays responsive."));
    checkExactKeepTimes =
        named(new QCheckBox(tr("Decide oldest and newest by exact time"), options),
              "checkExactKeepTimes");
    checkExactKeepTimes->setToolTip(
        tr("Keep Oldest and Keep Newest compare the exact creation times instead of "
           "the dates shown, which go by the second on a 12-hour clock."));
    checkSearchAnyLocation =
        named(new QCheckBox(tr("Search any location"), options), "checkSearchAnyLocation");
    checkSearchAnyLocation->setToolTip(
        tr("Search listed folders wherever they are, not only under /home, /opt and "
           "the volume folders."));
    // Two columns, what cleaning does beside what the search does, so the
    // window fits a small screen with every option in sight.
    int row = 0;
    for (QWidget* w : std::initializer_list<QWidget*>{
             radioMoveDuplicateFilesToTrash, radioRemoveDuplicateFilesPermanently,
             radioReplaceWithHardLinks, radioShareStorage, checkExactKeepTimes}) {
        optionRows->addWidget(w, row++, 0);
    }
    row = 0;
    for (QWidget* w : std::initializer_list<QWidget*>{
             checkIgnoreBundles, checkCompareLargeFilesByContent, checkRememberFingerprints,
             checkIdleSearch, checkSearchAnyLocation}) {
        optionRows->addWidget(w, row++, 1);
    }
    page->addWidget(options);

    auto* bottom = new QHBoxLayout;
    bottom->addStretch(1);
    buttonFindDuplicateFiles =
        named(new QPushButton(tr("Find Duplicate Files"), central), "buttonFindDuplicateFiles");
    buttonFindDuplicateFiles->setDefault(true);
    bottom->addWidget(buttonFindDuplicateFiles);
    page->addLayout(bottom);
    setCentralWidget(central);
    // Room for a folder table of four rows on a 1366x768 screen with a panel.
    resize(760, 680);

    connect(buttonAddFolder, &QPushButton::clicked, this, &ViewController::OnAddFolder);
    connect(buttonRemoveSelected, &QPushButton::clicked, this, &ViewController::OnRemoveSelected);
    connect(buttonRemoveAll, &QPushButton::clicked, this, &ViewController::OnRemoveAll);
    connect(sliderMinimumFileSize, &QSlider::valueChanged, this,
            &ViewController::OnMinimumFileSizeChanged);
    connect(sliderMaximumFileSize, &QSlider::valueChanged, this,
            &ViewController::OnMaximumFileSizeChanged);
    connect(radioScanAllFileTypes, &QRadioButton::clicked, this,
            &ViewController::OnScanAllFileTypesSelected);
    connect(radioCustomFileTypes, &QRadioButton::clicked, this,
            &ViewController::OnCustomFileTypesSelected);
    connect(buttonCustomFileTypesAddFileExtension, &QPushButton::clicked, this,
            &ViewController::OncustomFileTypesAddFileExtension);
    connect(textFieldCustomFileTypesExtension, &QLineEdit::returnPressed, this,
            &ViewController::OncustomFileTypesAddFileExtension);
    connect(buttonCustomFileTypesRemoveSelected, &QPushButton::clicked, this,
            &ViewController::OnCustomFileTypesRemoveSelected);
    connect(buttonCustomFileTypesRemoveAll, &QPushButton::clicked, this,
            &ViewController::OnCustomFileTypesRemoveAll);
    connect(radioMoveDuplicateFilesToTrash, &QRadioButton::clicked, this,
            &ViewController::OnMoveDuplicateFilesToTrashSelected);
    connect(radioRemoveDuplicateFilesPermanently, &QRadioButton::clicked, this,
            &ViewController::OnRemoveDuplicateFilesPermanentlySelected);
    connect(radioReplaceWithHardLinks, &QRadioButton::clicked, this,
            &ViewController::OnReplaceWithHardLinksSelected);
    connect(radioShareStorage, &QRadioButton::clicked, this,
            &ViewController::OnShareStorageSelected);
    connect(checkIgnoreBundles, &QCheckBox::clicked, this, &ViewController::OnIgnoreBundlesChecked);
    connect(checkCompareLargeFilesByContent, &QCheckBox::clicked, this,
            &ViewController::OnCompareLargeFilesByContentChecked);
    connect(checkRememberFingerprints, &QCheckBox::clicked, this, &ViewController::UpdateSettings);
    connect(checkIdleSearch, &QCheckBox::clicked, this,
            &ViewController::OnCompareLargeFilesByContentChecked); // both just update the settings
    connect(checkExactKeepTimes, &QCheckBox::clicked, this, &ViewController::UpdateSettings);
    connect(checkSearchAnyLocation, &QCheckBox::clicked, this, &ViewController::UpdateSettings);
    connect(buttonFindDuplicateFiles, &QPushButton::clicked, this,
            &ViewController::OnFindDuplicateFiles);
}

QWidget* ViewController::buildOutsideLocationsLine(QWidget* parent) {
    outsideLocationsLine_ = new QWidget(parent);
    auto* row = new QHBoxLayout(outsideLocationsLine_);
    row->setContentsMargins(0, 0, 0, 0);
    auto* icon = new QLabel(outsideLocationsLine_);
    const int side = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(side, side));
    row->addWidget(icon, 0, Qt::AlignTop);
    labelOutsideLocations = named(new QLabel(outsideLocationsLine_), "labelOutsideLocations");
    labelOutsideLocations->setWordWrap(true);
    labelOutsideLocations->setTextFormat(Qt::PlainText);
    row->addWidget(labelOutsideLocations, 1);
    buttonSearchAnyLocation =
        named(new QPushButton(tr("Search Any Location"), outsideLocationsLine_),
              "buttonSearchAnyLocation");
    buttonSearchAnyLocation->setAutoDefault(false);
    buttonSearchAnyLocation->setToolTip(
        tr("Tick \"Search any location\" so these folders are searched too."));
    connect(buttonSearchAnyLocation, &QPushButton::clicked, this, [this] {
        checkSearchAnyLocation->setChecked(true);
        UpdateSettings();
    });
    row->addWidget(buttonSearchAnyLocation, 0, Qt::AlignTop);
    outsideLocationsLine_->hide();
    const auto update = [this] {
        updateOutsideLocationsLine();
        saveChoices();
    };
    connect(folderModel_, &QAbstractItemModel::modelReset, this, update);
    connect(folderModel_, &QAbstractItemModel::rowsInserted, this, update);
    connect(folderModel_, &QAbstractItemModel::rowsRemoved, this, update);
    connect(folderModel_, &QAbstractItemModel::rowsMoved, this, update);
    connect(folderModel_, &QAbstractItemModel::dataChanged, this, [this] { saveChoices(); });
    return outsideLocationsLine_;
}

void ViewController::buildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    QAction* fileNew = file->addAction(tr("&New"));
    fileNew->setObjectName(QStringLiteral("actionFileNew"));
    fileNew->setShortcut(QKeySequence::New);
    connect(fileNew, &QAction::triggered, this, &ViewController::OnFileNew);
    addCommand(file, tr("&Add Folder..."), QKeySequence::Open, [this] {
        OnAddFolder();
    })->setObjectName(QStringLiteral("actionAddFolder"));
    QAction* reopen =
        addCommand(file, tr("&Reopen Last Folders"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O),
                   [this] { restoreSavedChoices(); });
    reopen->setObjectName(QStringLiteral("actionReopenFolders"));
    connect(file, &QMenu::aboutToShow, this,
            [this, reopen] { reopen->setEnabled(hasSavedFolders()); });
    addCommand(file, tr("&Find Duplicate Files"), QKeySequence::Find, [this] {
        OnFindDuplicateFiles();
    })->setObjectName(QStringLiteral("actionFindDuplicateFiles"));
    file->addSeparator();
    addCommand(file, tr("Clear Remembered &Fingerprints"),
               QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Delete),
               [this] { OnClearRememberedFingerprints(); })
        ->setObjectName(QStringLiteral("actionClearRememberedFingerprints"));
    file->addSeparator();
    QAction* quit = file->addAction(tr("&Quit"));
    quit->setObjectName(QStringLiteral("actionQuit"));
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, this, &ViewController::OnAppQuit);
    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    actionUndoClean = edit->addAction(tr("&Undo Clean"));
    actionUndoClean->setObjectName(QStringLiteral("actionUndoClean"));
    actionUndoClean->setShortcut(QKeySequence::Undo);
    connect(actionUndoClean, &QAction::triggered, this, &ViewController::OnUndoClean);
    connect(edit, &QMenu::aboutToShow, this, &ViewController::updateUndoClean);
    edit->addSeparator();
    buildListCommands(edit);
    addWindowMenu(menuBar(), [this] { OnMinimize(); });
    addHelpMenu(
        menuBar(), [this] { OnRemoveDuplicatesFromMac(); }, [this] { OnCustomSelectDuplicates(); });
}

void ViewController::buildListCommands(QMenu* edit) {
    // Delete acts on the table that has the focus, as in a file manager.
    const QKeySequence removeAll(Qt::SHIFT | Qt::Key_Delete);
    addCommand(
        edit, tr("&Remove Folder"), QKeySequence::Delete, [this] { OnRemoveSelected(); },
        tableViewFolders)
        ->setObjectName(QStringLiteral("actionRemoveFolder"));
    addCommand(
        edit, tr("Remove All F&olders..."), removeAll, [this] { OnRemoveAll(); }, tableViewFolders);
    edit->addSeparator();
    // These two go with the extension controls: off while all file types
    // are searched (setExtensionControlsEnabled).
    actionRemoveExtension_ = addCommand(
        edit, tr("Remove E&xtension"), QKeySequence::Delete,
        [this] { OnCustomFileTypesRemoveSelected(); }, tableViewFileTypes);
    actionRemoveExtension_->setObjectName(QStringLiteral("actionRemoveExtension"));
    actionRemoveAllExtensions_ = addCommand(
        edit, tr("Remove All Ex&tensions"), removeAll, [this] { OnCustomFileTypesRemoveAll(); },
        tableViewFileTypes);
    actionRemoveAllExtensions_->setObjectName(QStringLiteral("actionRemoveAllExtensions"));
}

} // namespace twinsweep::ui
