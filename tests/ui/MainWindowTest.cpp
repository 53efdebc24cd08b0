// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAction>
#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <unistd.h>

#include "UiTestSupport.h"
#include "ui/main/FolderTableView.h"
#include "ui/main/ViewController.h"
#include "ui/shell/Alert.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using namespace twinsweep::ui;
using Paths = std::vector<std::string>;

namespace {

Paths folders() {
    return SettingsManager::shared()->listFolderPaths;
}

QStringList qt(const Paths& paths) {
    QStringList out;
    for (const std::string& p : paths) {
        out << QString::fromStdString(p);
    }
    return out;
}

// Sends a real drag-and-drop sequence to the folder table at pos.
bool dropOnFolderTable(ViewController& window, const Paths& dragged, QPoint pos) {
    QMimeData mime;
    QList<QUrl> urls;
    for (const QString& p : qt(dragged)) {
        urls << QUrl::fromLocalFile(p);
    }
    mime.setUrls(urls);
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

// The main window: folders, file types, sizes, options and its questions.
class MainWindowTest : public QObject {
    Q_OBJECT
    std::unique_ptr<ViewController> window_;
    TempTree tree_;

  private slots:
    void init() {
        window_ = std::make_unique<ViewController>();
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    }
    void cleanup() { window_.reset(); }

    void folderPanelAddsEachFolderOnce() {
        const Paths ab{tree_.mkdir("a"), tree_.mkdir("b")};
        ModalAnswers answers;
        const auto choose = [](const Paths& paths) {
            return [paths](QWidget* modal) {
                auto* dialog = qobject_cast<QFileDialog*>(modal);
                // Folders are chosen here, never made.
                QCOMPARE(dialog->labelText(QFileDialog::Accept), u"Select Folder(s)"_s);
                QVERIFY(dialog->testOption(QFileDialog::ReadOnly));
                QVERIFY(!dialog->findChild<QWidget*>(u"newFolderButton"_s)->isVisible());
                dialog->findChild<QLineEdit*>(u"fileNameEdit"_s)
                    ->setText(QLatin1Char('"') + qt(paths).join(QStringLiteral("\" \"")) +
                              QLatin1Char('"'));
                QMetaObject::invokeMethod(dialog, "accept");
            };
        };
        answers.then("QFileDialog", choose(ab));
        window_->OnAddFolder();
        QCOMPARE(folders(), ab);
        answers.then("QFileDialog", choose({ab[1]}));
        window_->OnAddFolder();
        QCOMPARE(folders(), ab);
        // Cancelling the panel changes nothing and says nothing.
        answers.then("QFileDialog",
                     [](QWidget* modal) { qobject_cast<QDialog*>(modal)->reject(); });
        window_->OnAddFolder();
        QVERIFY(answers.allAnswered());
        QCOMPARE(folders(), ab);
        // A typed folder that is not there gets our alert, not the toolkit's
        // box (which would keep the panel open: then it is cancelled here).
        answers.then("QFileDialog", [&](QWidget* modal) {
            auto* edit = modal->findChild<QLineEdit*>(u"fileNameEdit"_s);
            edit->setText(QString::fromStdString(tree_.path("a/missing")));
            // Typed after this handler returns, so a box it brings is answered.
            QTimer::singleShot(0, modal, [edit, modal] {
                QTest::keyClick(edit, Qt::Key_Return);
                if (modal->isVisible()) {
                    qobject_cast<QDialog*>(modal)->reject();
                }
            });
        });
        QStringList shown;
        answers.then("QMessageBox", [&](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            shown << box->text() + box->informativeText();
            box->buttons().front()->click();
        });
        window_->OnAddFolder();
        QCOMPARE(shown, QStringList{u"The selected folder(s) could not be added."_s});
        QCOMPARE(folders(), ab);
        QVERIFY(!window_->tableViewFolders->model()->index(0, 0).data(Qt::DecorationRole).isNull());
    }

    void droppedFoldersGoBetweenRowsInOrder() {
        const std::string a = tree_.mkdir("a"), b = tree_.mkdir("b"), x = tree_.mkdir("x"),
                          y = tree_.mkdir("y"), z = tree_.mkdir("z");
        const std::string file = tree_.write("note.txt", "not a folder");
        window_->addFolders(qt({a, b}));
        // Three folders and a file dropped above row 1: the folders take rows 1
        // to 3 in the dragged order, the file is ignored.
        QVERIFY(dropOnFolderTable(*window_, {x, file, y, z}, aboveRow(*window_, 1)));
        QCOMPARE(folders(), (Paths{a, x, y, z, b}));
        QCOMPARE(window_->tableViewFolders->model()->rowCount(), 5);
        // A folder already listed, one that is gone and the file: nothing new.
        QVERIFY(dropOnFolderTable(*window_, {y, tree_.path("gone"), file}, aboveRow(*window_, 0)));
        QCOMPARE(folders().size(), std::size_t{5});
        QVERIFY(!dropOnFolderTable(*window_, {file}, aboveRow(*window_, 0))); // only files
        // Below the last row appends.
        const std::string w = tree_.mkdir("w");
        // Tall enough for room below five rows, whatever options the window shows.
        window_->resize(window_->width(), window_->height() + 200);
        QCoreApplication::processEvents();
        const QPoint empty(10, window_->tableViewFolders->viewport()->height() - 3);
        QVERIFY(dropOnFolderTable(*window_, {w}, empty));
        QCOMPARE(folders().back(), w);
    }

    void removeProtectFindAndCloseAskOnlyWhenTheyMust() {
        const Paths abc{tree_.mkdir("a"), tree_.mkdir("b"), tree_.mkdir("c")};
        window_->addFolders(qt(abc));
        QAbstractItemModel* model = window_->tableViewFolders->model();
        for (int row : {1, 2}) {
            QVERIFY(model->setData(model->index(row, 1), Qt::Checked, Qt::CheckStateRole));
        }
        QCOMPARE(model->index(2, 1).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        window_->OnRemoveSelected(); // no selection: nothing is removed
        QCOMPARE(folders().size(), std::size_t{3});
        window_->tableViewFolders->selectRow(1);
        window_->OnRemoveSelected();
        QCOMPARE(folders(), (Paths{abc[0], abc[2]}));
        // A folder taken off the list loses its protection.
        QCOMPARE(SettingsManager::shared()->protectedFolders, Paths{abc[2]});

        ModalAnswers answers;
        answers.alert(u"No"_s);
        window_->OnRemoveAll();
        QCOMPARE(folders().size(), std::size_t{2});
        answers.alert(u"Yes"_s);
        window_->OnRemoveAll();
        QVERIFY(folders().empty() && SettingsManager::shared()->protectedFolders.empty());
        window_->OnRemoveAll(); // an empty list asks nothing
        answers.alert(u"OK"_s);
        window_->buttonFindDuplicateFiles->click();

        // Closing asks only with the unsaved mark in the title.
        window_->setWindowTitle(u"Twinsweep*"_s);
        answers.alert(u"No"_s);
        QVERIFY(!window_->close());
        QVERIFY(window_->isVisible());
        answers.alert(u"Yes"_s);
        QVERIFY(window_->close());
        window_->show();
        window_->setWindowTitle(QString());
        QVERIFY(window_->close());
        const QString all = u"Are you sure you want to remove all folders from the list?"_s;
        const QString unsaved = u"You have unsaved changes that will be lost. Are you sure you "
                                "want to exit the application?"_s;
        const QString none =
            u"There are no folders to scan. Please add at least one folder and try again."_s;
        QCOMPARE(answers.said, (QStringList{all, all, none, unsaved, unsaved}));
    }

    void extensionsAndTheKeyboardInBothTables() {
        QCOMPARE(commandsWithoutShortcut(window_->menuBar()), QStringList());
        QVERIFY(!window_->textFieldCustomFileTypesExtension->isEnabled());
        QTest::mouseClick(window_->radioCustomFileTypes, Qt::LeftButton, {},
                          QPoint(8, window_->radioCustomFileTypes->height() / 2));
        QVERIFY(SettingsManager::shared()->customFileTypes);
        QVERIFY(window_->buttonCustomFileTypesRemoveAll->isEnabled());
        const auto& list = SettingsManager::shared()->listFileExtensions;
        for (const char* typed : {"Jpg", "JPG", "", "ÉPS"}) {
            window_->textFieldCustomFileTypesExtension->setText(QString::fromUtf8(typed));
            window_->buttonCustomFileTypesAddFileExtension->click();
        }
        // Return in the field adds too.
        window_->textFieldCustomFileTypesExtension->setText(u".PNG"_s);
        typeKey(window_->textFieldCustomFileTypesExtension, Qt::Key_Return);
        QCOMPARE(list, (Paths{"jpg", "éps", ".png"}));
        window_->OnCustomFileTypesRemoveSelected(); // nothing selected
        QCOMPARE(list.size(), std::size_t{3});
        window_->tableViewFileTypes->selectRow(0);
        window_->buttonCustomFileTypesRemoveSelected->click();
        QCOMPARE(list, (Paths{"éps", ".png"}));

        window_->addFolders(qt({tree_.mkdir("a"), tree_.mkdir("b")}));
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
        typeKey(window_->tableViewFolders, Qt::Key_Delete);
        QCOMPARE(folders(), Paths{tree_.path("b")});
        QCOMPARE(list.size(), std::size_t{2});
        typeKey(window_->tableViewFileTypes, Qt::Key_Delete);
        QCOMPARE(list, Paths{".png"});
        QCOMPARE(folders().size(), std::size_t{1});
        window_->buttonCustomFileTypesRemoveAll->click();
        QVERIFY(list.empty());
        window_->textFieldCustomFileTypesExtension->setText(u"gif"_s);
        window_->buttonCustomFileTypesAddFileExtension->click();
        window_->tableViewFileTypes->selectRow(0);
        window_->radioScanAllFileTypes->click();
        QVERIFY(!SettingsManager::shared()->customFileTypes);
        QVERIFY(!window_->buttonCustomFileTypesRemoveAll->isEnabled());
        // The menu's extension commands go with the list they act on.
        for (const char* name : {"actionRemoveExtension", "actionRemoveAllExtensions"}) {
            QAction* command = window_->findChild<QAction*>(QString::fromLatin1(name));
            QVERIFY2(command != nullptr && !command->isEnabled(), name);
            command->trigger();
        }
        QCOMPARE(list, Paths{"gif"});
    }

    void sizeStopsAndFileNewPutOptionsBack() {
        const auto settings = SettingsManager::shared();
        window_->addFolders(qt({tree_.mkdir("a")}));
        // The keyboard moves a slider one stop at a time.
        window_->sliderMaximumFileSize->setValue(0);
        window_->sliderMaximumFileSize->setFocus();
        QTest::keyClick(window_->sliderMaximumFileSize, Qt::Key_Right);
        QCOMPARE(settings->maximumFileSize, std::uint64_t{5242880});
        window_->sliderMinimumFileSize->setValue(0);
        QCOMPARE(window_->textFieldMinimumFileSize->text(), u"1 B"_s);
        window_->radioCustomFileTypes->click();
        window_->radioReplaceWithHardLinks->click();
        QVERIFY(settings->replaceWithHardLinks && !settings->moveToTrash);
        window_->radioShareStorage->click();
        QVERIFY(settings->shareStorage && !settings->replaceWithHardLinks);
        QVERIFY(!settings->moveToTrash);
        window_->checkCompareLargeFilesByContent->click();
        window_->checkRememberFingerprints->click();
        QVERIFY(settings->rememberFingerprints);
        window_->checkIdleSearch->click();
        QVERIFY(settings->idleSearch);
        QVERIFY(!settings->exactKeepTimes && !settings->searchAnyLocation);
        window_->checkExactKeepTimes->click();
        window_->checkSearchAnyLocation->click();
        QVERIFY(settings->exactKeepTimes && settings->searchAnyLocation);
        window_->findChild<QAction*>(u"actionFileNew"_s)->trigger();
        QVERIFY(!settings->exactKeepTimes && !window_->checkExactKeepTimes->isChecked());
        QVERIFY(!settings->searchAnyLocation && !window_->checkSearchAnyLocation->isChecked());
        QVERIFY(!settings->rememberFingerprints);
        QVERIFY(settings->listFolderPaths.empty() && !settings->customFileTypes);
        QVERIFY(settings->moveToTrash && !settings->replaceWithHardLinks);
        QVERIFY(!settings->shareStorage && !window_->radioShareStorage->isChecked());
        QVERIFY(!settings->compareLargeFilesByContent && !settings->idleSearch);
        QVERIFY(!window_->checkIdleSearch->isChecked());
        QCOMPARE(settings->minimumFileSize, std::uint64_t{204800});
        // The widgets show the defaults too.
        QCOMPARE(window_->textFieldMinimumFileSize->text(), u"200.0 KB"_s);
        QVERIFY(window_->radioMoveDuplicateFilesToTrash->isChecked());
        QCOMPARE(window_->tableViewFolders->model()->rowCount(), 0);
    }

    void foldersOutsideTheSearchedLocationsAreNamed() {
        const std::string mac = tree_.mkdir("mac");
        const std::string data = tree_.mkdir("data");
        LocationGate::setProcessDefault(LocationGate::macLayoutUnder(mac));
        const auto line = [this] {
            return window_->labelOutsideLocations->isVisibleTo(window_.get())
                       ? window_->labelOutsideLocations->text()
                       : QString();
        };
        window_->addFolders(qt({tree_.mkdir("mac/Users/bob"), tree_.mkdir("mac/Volumes/Disk")}));
        QCOMPARE(line(), QString());
        window_->addFolders(qt({data, mac}));
        QCOMPARE(line(), QString::fromStdString("The search looks only under " + mac + "/Users, " +
                                                mac + "/Applications and " + mac +
                                                "/Volumes. Outside those locations: " + data +
                                                ", " + mac + "."));
        // The line offers the way on: its button ticks "Search any location".
        QVERIFY(window_->buttonSearchAnyLocation->isVisibleTo(window_.get()));
        window_->buttonSearchAnyLocation->click();
        QVERIFY(SettingsManager::shared()->searchAnyLocation);
        QVERIFY(window_->checkSearchAnyLocation->isChecked());
        QCOMPARE(line(), QString());
        window_->checkSearchAnyLocation->click();
        QVERIFY(line().endsWith(QString::fromStdString(data + ", " + mac + ".")));
        window_->OnFileNew(); // the line follows the list
        QCOMPARE(line(), QString());
        LocationGate::setProcessDefault(LocationGate::platformDefault());
        // The desktop's removable disks and network shares count as volumes.
        const LocationGate linux = LocationGate::platformDefault();
        QVERIFY(
            linux.allows("/run/user/" + std::to_string(::getuid()) + "/gvfs/smb-share:x/a", "a"));
        QVERIFY(linux.allows("/run/media/bob/Disk/a", "a"));
        QVERIFY(!linux.allows("/run/user/" + std::to_string(::getuid() + 1) + "/gvfs/s/a", "a"));
        QVERIFY(!linux.allows("/srv/a", "a"));
    }

    void fitsASmallScreenAndKeepsTheFolderList() {
        // A 1366x768 screen with a panel and a title bar leaves about 690
        // pixels; every control, Find included, fits in that at the start.
        const QSize least = window_->minimumSizeHint();
        QVERIFY2(least.width() <= 1366 && least.height() <= 690,
                 qPrintable(u"%1x%2"_s.arg(least.width()).arg(least.height())));
        window_->resize(window_->minimumSizeHint());
        const QRect find(window_->buttonFindDuplicateFiles->mapTo(window_.get(), QPoint(0, 0)),
                         window_->buttonFindDuplicateFiles->size());
        QVERIFY(window_->rect().contains(find));

        // The application's own window saves every change and starts empty,
        // from the defaults; File > Reopen Last Folders brings the list back.
        const std::string a = tree_.mkdir("kept/a"), b = tree_.mkdir("kept/b");
        window_->rememberChoices();
        QVERIFY(!window_->hasSavedFolders());
        QCOMPARE(folders(), Paths{});
        window_->addFolders(qt({a, b}));
        window_->tableViewFolders->model()->setData(window_->tableViewFolders->model()->index(1, 1),
                                                    Qt::Checked, Qt::CheckStateRole);
        QCOMPARE(SettingsManager::shared()->protectedFolders, Paths{b});
        window_.reset();
        window_ = std::make_unique<ViewController>();
        window_->rememberChoices();
        QCOMPARE(folders(), Paths{});
        QVERIFY(window_->hasSavedFolders());
        window_->findChild<QAction*>(u"actionReopenFolders"_s)->trigger();
        QCOMPARE(folders(), (Paths{a, b}));
        QCOMPARE(SettingsManager::shared()->protectedFolders, Paths{b});
        QCOMPARE(window_->tableViewFolders->model()->rowCount(), 2);
        // A folder gone since is left out; File > New empties the saved list too.
        std::filesystem::remove(a);
        window_ = std::make_unique<ViewController>();
        window_->restoreSavedChoices();
        QCOMPARE(folders(), Paths{b});
        window_->OnFileNew();
        window_->addFolders(qt({b})); // a list of one
        window_ = std::make_unique<ViewController>();
        window_->restoreSavedChoices();
        QCOMPARE(folders(), Paths{b});
        window_->OnFileNew();
        window_ = std::make_unique<ViewController>();
        window_->restoreSavedChoices();
        QCOMPARE(folders(), Paths{});
    }

    void escapeDeclinesAndAlertsTellTheButton() {
        // Escape on a question answers No; other alerts tell which button was pressed.
        ModalAnswers answers;
        answers.then("QMessageBox", [](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Escape); });
        QVERIFY(!askYesNo(nullptr, u"Sure?"_s));
        answers.alert(u"C"_s);
        QCOMPARE(runAlert(nullptr, u"Pick"_s, {u"A"_s, u"B"_s, u"C"_s}), 2);
    }
};

UI_TEST_MAIN(MainWindowTest)

#include "MainWindowTest.moc"
