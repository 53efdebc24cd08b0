#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTableView>
#include <QTest>
#include <QUrl>
#include <memory>

#include "MainWindowTest.h"
#include "UiTestSupport.h"
#include "engine/LocationGate.h"
#include "settings/SettingsManager.h"
#include "support/TempTree.h"
#include "ui/main/FolderTableView.h"
#include "ui/main/ViewController.h"

using twinsweep::SettingsManager;
using twinsweep::testing::ModalAnswers;
using twinsweep::testing::TempTree;
using twinsweep::testing::typeKey;
using twinsweep::ui::ViewController;

namespace {

std::vector<std::string> folders() {
    return SettingsManager::shared()->listFolderPaths;
}

QList<QUrl> urls(std::initializer_list<std::string> paths) {
    QList<QUrl> out;
    for (const std::string& p : paths) {
        out.push_back(QUrl::fromLocalFile(QString::fromStdString(p)));
    }
    return out;
}

// Sends a real drag-and-drop sequence to the folder table at pos.
bool dropOnFolderTable(ViewController& window, const QList<QUrl>& dragged, QPoint pos) {
    QMimeData mime;
    mime.setUrls(dragged);
    QWidget* target = window.tableViewFolders->viewport();
    const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(pos, offered, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    QDragMoveEvent move(pos, offered, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &move);
    if (!move.isAccepted()) {
        return false;
    }
    QDropEvent drop(pos, offered, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
    // Taken as a copy, so a file manager never removes what was dragged.
    return drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
}

// Just inside the top edge of a row: a drop between that row and the one above.
QPoint aboveRow(ViewController& window, int row) {
    const QRect cell =
        window.tableViewFolders->visualRect(window.tableViewFolders->model()->index(row, 0));
    return {cell.center().x(), cell.top() + 1};
}

} // namespace

void MainWindowTest::init() {
    window_ = std::make_unique<ViewController>();
    window_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
}

void MainWindowTest::cleanup() {
    window_.reset();
}

void MainWindowTest::folderPanelAddsEachFolderOnce() {
    TempTree tree;
    const std::string a = tree.mkdir("a");
    const std::string b = tree.mkdir("b");
    ModalAnswers answers;
    const auto choose = [](QStringList paths) {
        return [paths](QWidget* modal) {
            auto* dialog = qobject_cast<QFileDialog*>(modal);
            QVERIFY(dialog != nullptr);
            // Folders are chosen here, never made.
            QCOMPARE(dialog->labelText(QFileDialog::Accept), QStringLiteral("Select Folder(s)"));
            QVERIFY(dialog->testOption(QFileDialog::ReadOnly));
            QVERIFY(!dialog->findChild<QWidget*>(QStringLiteral("newFolderButton"))->isVisible());
            QStringList quoted;
            for (const QString& p : paths) {
                quoted << QLatin1Char('"') + p + QLatin1Char('"');
            }
            dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
                ->setText(quoted.join(QLatin1Char(' ')));
            QMetaObject::invokeMethod(dialog, "accept");
        };
    };
    answers.then("QFileDialog", choose({QString::fromStdString(a), QString::fromStdString(b)}));
    window_->OnAddFolder();
    QCOMPARE(folders(), (std::vector<std::string>{a, b}));

    answers.then("QFileDialog", choose({QString::fromStdString(b)}));
    window_->OnAddFolder();
    QCOMPARE(folders(), (std::vector<std::string>{a, b}));

    // Cancelling the panel changes nothing and says nothing.
    answers.then("QFileDialog", [](QWidget* modal) { qobject_cast<QDialog*>(modal)->reject(); });
    window_->OnAddFolder();
    QCOMPARE(folders(), (std::vector<std::string>{a, b}));
    QVERIFY(answers.allAnswered());
    QCOMPARE(window_->tableViewFolders->model()->rowCount(), 2);
    const QModelIndex first = window_->tableViewFolders->model()->index(0, 0);
    QVERIFY(!first.data(Qt::DecorationRole).value<QIcon>().isNull());
}

void MainWindowTest::droppedFoldersGoBetweenRowsInOrder() {
    TempTree tree;
    const std::string a = tree.mkdir("a"), b = tree.mkdir("b");
    const std::string x = tree.mkdir("x"), y = tree.mkdir("y"), z = tree.mkdir("z");
    const std::string file = tree.write("note.txt", "not a folder");
    window_->addFolders({QString::fromStdString(a), QString::fromStdString(b)});

    // Three folders and a file dropped above row 1: the folders take rows
    // 1 to 3 in the dragged order, the file is ignored.
    QVERIFY(dropOnFolderTable(*window_, urls({x, file, y, z}), aboveRow(*window_, 1)));
    QCOMPARE(folders(), (std::vector<std::string>{a, x, y, z, b}));
    QCOMPARE(window_->tableViewFolders->model()->rowCount(), 5);

    // A folder already listed, one that is gone and the file: nothing new.
    const std::string gone = tree.path("gone");
    QVERIFY(dropOnFolderTable(*window_, urls({y, gone, file}), aboveRow(*window_, 0)));
    QCOMPARE(folders().size(), std::size_t{5});

    // Only files: the drop is refused outright.
    QVERIFY(!dropOnFolderTable(*window_, urls({file}), aboveRow(*window_, 0)));

    // Below the last row appends.
    const std::string w = tree.mkdir("w");
    const QPoint empty(10, window_->tableViewFolders->viewport()->height() - 3);
    QVERIFY(dropOnFolderTable(*window_, urls({w}), empty));
    QCOMPARE(folders().back(), w);
}

void MainWindowTest::folderRemovalAsksOnlyForAll() {
    TempTree tree;
    window_->addFolders({QString::fromStdString(tree.mkdir("a")),
                         QString::fromStdString(tree.mkdir("b")),
                         QString::fromStdString(tree.mkdir("c"))});
    // No selection: nothing is removed.
    window_->OnRemoveSelected();
    QCOMPARE(folders().size(), std::size_t{3});
    window_->tableViewFolders->selectRow(1);
    window_->OnRemoveSelected();
    QCOMPARE(folders(), (std::vector<std::string>{tree.path("a"), tree.path("c")}));

    ModalAnswers answers;
    answers.alert(QStringLiteral("No"));
    window_->OnRemoveAll();
    QCOMPARE(answers.said,
             QStringList{"Are you sure you want to remove all folders from the list?"});
    QCOMPARE(folders().size(), std::size_t{2});

    answers.alert(QStringLiteral("Yes"));
    window_->OnRemoveAll();
    QVERIFY(folders().empty());
    QCOMPARE(window_->tableViewFolders->model()->rowCount(), 0);

    // An empty list asks nothing: an unexpected question would stay unanswered.
    window_->OnRemoveAll();
    QCOMPARE(answers.answered(), 2);
}

void MainWindowTest::extensionsAreLowerCasedAndUnique() {
    QVERIFY(!window_->textFieldCustomFileTypesExtension->isEnabled());
    QTest::mouseClick(window_->radioCustomFileTypes, Qt::LeftButton, {},
                      QPoint(8, window_->radioCustomFileTypes->height() / 2));
    QVERIFY(window_->radioCustomFileTypes->isChecked());
    QVERIFY(!window_->radioScanAllFileTypes->isChecked());
    QVERIFY(SettingsManager::shared()->customFileTypes);
    for (QWidget* w : std::initializer_list<QWidget*>{
             window_->tableViewFileTypes, window_->textFieldCustomFileTypesExtension,
             window_->buttonCustomFileTypesAddFileExtension,
             window_->buttonCustomFileTypesRemoveSelected,
             window_->buttonCustomFileTypesRemoveAll}) {
        QVERIFY(w->isEnabled());
    }

    auto add = [this](const QString& typed) {
        window_->textFieldCustomFileTypesExtension->setText(typed);
        window_->buttonCustomFileTypesAddFileExtension->click();
        QCOMPARE(window_->textFieldCustomFileTypesExtension->text(), typed);
    };
    const auto& list = SettingsManager::shared()->listFileExtensions;
    add(QStringLiteral("Jpg"));
    QCOMPARE(list, (std::vector<std::string>{"jpg"}));
    add(QStringLiteral("JPG"));
    add(QString());
    QCOMPARE(list, (std::vector<std::string>{"jpg"}));
    add(QStringLiteral("ÉPS"));
    add(QStringLiteral(".PNG"));
    QCOMPARE(list, (std::vector<std::string>{"jpg", "éps", ".png"}));
    QCOMPARE(window_->tableViewFileTypes->model()->rowCount(), 3);

    window_->OnCustomFileTypesRemoveSelected();
    QCOMPARE(list.size(), std::size_t{3});
    window_->tableViewFileTypes->selectRow(0);
    window_->buttonCustomFileTypesRemoveSelected->click();
    QCOMPARE(list, (std::vector<std::string>{"éps", ".png"}));
    window_->buttonCustomFileTypesRemoveAll->click();
    QVERIFY(list.empty());

    window_->radioScanAllFileTypes->click();
    QVERIFY(!SettingsManager::shared()->customFileTypes);
    QVERIFY(!window_->buttonCustomFileTypesRemoveAll->isEnabled());
}

void MainWindowTest::slidersStopOnTheTenSizes() {
    const auto settings = SettingsManager::shared();
    QCOMPARE(window_->sliderMinimumFileSize->maximum(), 9);
    // The texts ignore the locale the environment asks for.
    const twinsweep::testing::ScopedLocale german("de_DE.UTF-8");
    const struct {
        int stop;
        std::uint64_t minimum, maximum;
        const char *minimumText, *maximumText;
    } stops[] = {{0, 1, 1048576, "1 B", "1.0 MB"},
                 {3, 512000, 52428800, "500.0 KB", "50.0 MB"},
                 {9, 104857600, 1099511627776ULL, "100.0 MB", "1.0 TB"}};
    for (const auto& s : stops) {
        window_->sliderMinimumFileSize->setValue(s.stop);
        window_->sliderMaximumFileSize->setValue(s.stop);
        QCOMPARE(settings->minimumFileSize, s.minimum);
        QCOMPARE(window_->textFieldMinimumFileSize->text(), QString::fromUtf8(s.minimumText));
        QCOMPARE(settings->maximumFileSize, s.maximum);
        QCOMPARE(window_->textFieldMaximumFileSize->text(), QString::fromUtf8(s.maximumText));
    }
    // The keyboard moves one stop at a time.
    window_->sliderMaximumFileSize->setValue(0);
    window_->sliderMaximumFileSize->setFocus();
    QTest::keyClick(window_->sliderMaximumFileSize, Qt::Key_Right);
    QCOMPARE(settings->maximumFileSize, std::uint64_t{5242880});
}

void MainWindowTest::fileNewPutsEveryOptionBack() {
    TempTree tree;
    const auto settings = SettingsManager::shared();
    window_->addFolders({QString::fromStdString(tree.mkdir("a"))});
    window_->sliderMinimumFileSize->setValue(0);
    window_->sliderMaximumFileSize->setValue(9);
    window_->radioCustomFileTypes->click();
    window_->buttonCustomFileTypesAddFileExtension->click();
    window_->textFieldCustomFileTypesExtension->setText(QStringLiteral("png"));
    window_->radioRemoveDuplicateFilesPermanently->click();
    window_->checkIgnoreBundles->click();
    window_->checkCompareLargeFilesByContent->click();
    QVERIFY(!settings->moveToTrash && !settings->ignorePackages);
    QVERIFY(settings->compareLargeFilesByContent);
    window_->findChild<QAction*>(QStringLiteral("actionFileNew"))->trigger();

    QVERIFY(settings->listFolderPaths.empty());
    QVERIFY(settings->listFileExtensions.empty());
    QCOMPARE(settings->minimumFileSize, std::uint64_t{204800});
    QCOMPARE(settings->maximumFileSize, std::uint64_t{107374182400ULL});
    QVERIFY(!settings->customFileTypes);
    QVERIFY(settings->moveToTrash);
    QVERIFY(settings->ignorePackages);
    QVERIFY(!settings->compareLargeFilesByContent);
    QCOMPARE(window_->sliderMinimumFileSize->value(), 2);
    QCOMPARE(window_->textFieldMinimumFileSize->text(), QStringLiteral("200.0 KB"));
    QVERIFY(window_->radioScanAllFileTypes->isChecked());
    QVERIFY(!window_->textFieldCustomFileTypesExtension->isEnabled());
    QVERIFY(window_->radioMoveDuplicateFilesToTrash->isChecked());
    QVERIFY(window_->checkIgnoreBundles->isChecked());
    QCOMPARE(window_->tableViewFolders->model()->rowCount(), 0);
}

void MainWindowTest::findWithoutFoldersOnlyWarns() {
    ModalAnswers answers;
    answers.alert(QStringLiteral("OK"));
    window_->buttonFindDuplicateFiles->click();
    QCOMPARE(answers.said, QStringList{"There are no folders to scan. Please add at least one "
                                       "folder and try again."});
}

void MainWindowTest::closingAsksOnlyWithUnsavedMark() {
    ModalAnswers answers;
    window_->setWindowTitle(QStringLiteral("Twinsweep*"));
    answers.alert(QStringLiteral("No"));
    QVERIFY(!window_->close());
    QVERIFY(window_->isVisible());
    QCOMPARE(answers.said, QStringList{"You have unsaved changes that will be lost. Are you sure "
                                       "you want to exit the application?"});
    answers.alert(QStringLiteral("Yes"));
    QVERIFY(window_->close());

    window_->show();
    window_->setWindowTitle(QString());
    QVERIFY(window_->close());
    QCOMPARE(answers.said.size(), 2);
}

void MainWindowTest::keyboardLeavesTablesAndDeleteRemoves() {
    QCOMPARE(twinsweep::testing::commandsWithoutShortcut(window_->menuBar()), QStringList());
    TempTree tree;
    window_->addFolders(
        {QString::fromStdString(tree.mkdir("a")), QString::fromStdString(tree.mkdir("b"))});
    window_->OnCustomFileTypesSelected();
    window_->textFieldCustomFileTypesExtension->setText(QStringLiteral("png"));
    typeKey(window_->textFieldCustomFileTypesExtension, Qt::Key_Return);
    QCOMPARE(SettingsManager::shared()->listFileExtensions, std::vector<std::string>{"png"});

    // Tab and Shift+Tab move out of a table, not from cell to cell.
    for (QTableView* table :
         {static_cast<QTableView*>(window_->tableViewFolders), window_->tableViewFileTypes}) {
        table->selectRow(0);
        typeKey(table, Qt::Key_Tab);
        QVERIFY(!table->hasFocus());
        typeKey(table, Qt::Key_Backtab, Qt::ShiftModifier);
        QVERIFY(!table->hasFocus());
    }

    // Delete removes from the table that has the focus, and only there.
    window_->tableViewFolders->selectRow(0);
    window_->tableViewFileTypes->selectRow(0);
    typeKey(window_->tableViewFolders, Qt::Key_Delete);
    QCOMPARE(folders(), std::vector<std::string>{tree.path("b")});
    QCOMPARE(SettingsManager::shared()->listFileExtensions.size(), std::size_t{1});
    typeKey(window_->tableViewFileTypes, Qt::Key_Delete);
    QVERIFY(SettingsManager::shared()->listFileExtensions.empty());
    QCOMPARE(folders().size(), std::size_t{1});
}

void MainWindowTest::foldersOutsideTheSearchedLocationsAreNamed() {
    using twinsweep::LocationGate;
    TempTree tree;
    const std::string mac = tree.mkdir("mac");
    const std::string home = tree.mkdir("mac/Users/bob");
    const std::string volume = tree.mkdir("mac/Volumes/Disk");
    const std::string data = tree.mkdir("data");
    LocationGate::setProcessDefault(LocationGate::macLayoutUnder(mac));
    const auto line = [this] {
        return window_->labelOutsideLocations->isVisibleTo(window_.get())
                   ? window_->labelOutsideLocations->text()
                   : QString();
    };

    window_->addFolders({QString::fromStdString(home), QString::fromStdString(volume)});
    QCOMPARE(line(), QString());
    const QString roots =
        QString::fromStdString(mac + "/Users, " + mac + "/Applications and " + mac + "/Volumes");
    window_->addFolders({QString::fromStdString(data), QString::fromStdString(mac)});
    QCOMPARE(line(), QStringLiteral("The search looks only under ") + roots +
                         QStringLiteral(". Outside those locations: ") +
                         QString::fromStdString(data + ", " + mac) + QLatin1Char('.'));

    // The line follows the list, and a gate that lets everything pass has none.
    window_->tableViewFolders->selectRow(2);
    window_->OnRemoveSelected();
    QVERIFY(line().endsWith(QString::fromStdString(": " + mac + ".")));
    LocationGate::setProcessDefault(LocationGate::anywhere());
    window_->addFolders({});
    QCOMPARE(line(), QString());
    LocationGate::setProcessDefault(LocationGate::platformDefault());
    window_->OnFileNew();
    QCOMPARE(line(), QString());
}
