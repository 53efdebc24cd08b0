#include "DuplicatesWindowTest.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <sys/stat.h>

#include "ResultsSupport.h"
#include "selection/Cleaning.h"
#include "selection/CustomMarking.h"
#include "selection/KeepOptions.h"
#include "ui/customkeep/ViewControllerCustomKeep.h"
#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/SegmentedControl.h"

using twinsweep::FileList;
using twinsweep::FilePtr;
using twinsweep::FileTools;
using twinsweep::SettingsManager;
using twinsweep::testing::cell;
using twinsweep::testing::FoundDuplicates;
using twinsweep::testing::marksOf;
using twinsweep::testing::ModalAnswers;
using twinsweep::testing::setDates;
using twinsweep::testing::settled;
using twinsweep::testing::typeKey;
using twinsweep::ui::GroupsModel;
using twinsweep::ui::ViewControllerCustomKeep;
using twinsweep::ui::ViewControllerDuplicates;
using Marks = std::vector<std::int64_t>;

namespace {

// Three pictures, two documents and two songs: 9000 + 4000 + 2000 bytes.
struct Found : FoundDuplicates {
    FilePtr photos, docs, songs;
    Found() {
        for (const char* p : {"a/photo.jpg", "b/photo.jpg", "c/photo.jpg"}) {
            tree.write(p, std::string(3000, 'p'));
        }
        tree.write("a/report.pdf", std::string(2000, 'd'));
        tree.write("b/report.pdf", std::string(2000, 'd'));
        tree.write("a/song.mp3", std::string(1000, 'm'));
        tree.write("c/song.mp3", std::string(1000, 'm'));
        tree.write("a/single.txt", std::string(1000, 's'));
        search();
        photos = group("photo.jpg");
        docs = group("report.pdf");
        songs = group("song.mp3");
        // The second photo is the oldest, the third the newest.
        setDates(photos, {"20-01-01 01:00:00", "19-01-01 01:00:00", "21-01-01 01:00:00"});
    }
    // The results window on these groups, shown; destroyed before the tree.
    ViewControllerDuplicates& open() {
        shown = std::make_unique<ViewControllerDuplicates>(nullptr);
        shown->show();
        return *shown;
    }
    std::unique_ptr<ViewControllerDuplicates> shown;
};

int rowOf(const ViewControllerDuplicates& w, const FilePtr& group) {
    for (std::size_t i = 0; i < w.fileList.size(); ++i) {
        if (w.fileList[i] == group) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

void selectGroup(ViewControllerDuplicates& w, const FilePtr& group) {
    w.tableViewFiles->selectRow(rowOf(w, group));
    QCOMPARE(w.selectedRow, rowOf(w, group));
}

void chooseSegment(ViewControllerDuplicates& w, int segment) {
    w.segmentedControlKeep->segmentButton(segment)->click();
}

// Ticks the box of a member of the selected group, as a click in the table does.
void tick(ViewControllerDuplicates& w, int row) {
    QAbstractItemModel* members = w.tableViewDuplicates->model();
    QVERIFY(members->setData(members->index(row, 0), Qt::Checked, Qt::CheckStateRole));
}

QString sizeText(std::uint64_t bytes) {
    return QString::fromStdString(FileTools::fileSizeText(bytes));
}

QColor spaceColour(const ViewControllerDuplicates& w) {
    return w.labelSpaceSaved->palette().color(QPalette::WindowText);
}

bool inTrash(const QString& dataHome, const std::string& name) {
    struct stat info {};
    const std::string path = dataHome.toStdString() + "/Trash/files/" + name;
    return ::stat(path.c_str(), &info) == 0;
}

using Alert = twinsweep::CleaningAlert;
QString text(Alert a) {
    return QString::fromStdString(twinsweep::alertText(a).informativeText);
}

bool exists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

} // namespace

void DuplicatesWindowTest::init() {
    SettingsManager::shared()->moveToTrash = true;
}

void DuplicatesWindowTest::cleanup() {
    SettingsManager::shared()->duplicateFileList.clear();
    SettingsManager::shared()->moveToTrash = true;
}

void DuplicatesWindowTest::opensOnTheSearchResult() {
    Found found;
    QCOMPARE(SettingsManager::shared()->duplicateFileList.size(), std::size_t{3});
    found.docs->duplicates[1]->checkState = 1; // left over from an earlier look
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));

    QCOMPARE(w.tableViewFiles->model()->rowCount(), 3);
    QCOMPARE(w.selectedRow, 0);
    QCOMPARE(w.tableViewDuplicates->model()->rowCount(),
             static_cast<int>(w.fileList[0]->duplicates.size()));
    // Set-up clears every mark.
    QCOMPARE(marksOf(found.docs), (Marks{0, 0}));

    // Pictures 60%, music 13%, documents 27% of the 15000 bytes held.
    const QStringList percents{"60%", "13%", "0%", "0%", "27%", "0%"};
    for (int k = 0; k < 6; ++k) {
        QCOMPARE(w.categoryPercents[static_cast<std::size_t>(k)]->text(), percents[k]);
    }
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(0));
    QCOMPARE(spaceColour(w), QColor(Qt::black));

    const int photoRow = rowOf(w, found.photos);
    QCOMPARE(cell(w.tableViewFiles, photoRow, GroupsModel::ColumnName),
             QStringLiteral("photo.jpg"));
    QCOMPARE(cell(w.tableViewFiles, photoRow, GroupsModel::ColumnSize), sizeText(3000));
    QCOMPARE(cell(w.tableViewFiles, photoRow, GroupsModel::ColumnCount), QStringLiteral("0/3"));

    // Escape would drop the results: only closing the window does.
    QTest::keyClick(&w, Qt::Key_Escape);
    QVERIFY(w.isVisible());
    w.close();
    QVERIFY(SettingsManager::shared()->duplicateFileList.empty());
}

void DuplicatesWindowTest::keepOptionsOnOneGroupAndOnAll() {
    Found found;
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    selectGroup(w, found.photos);
    const int row = rowOf(w, found.photos);

    chooseSegment(w, 1);                        // keep the oldest: the second photo stays
    QVERIFY(!w.progressIndicator->isVisible()); // one group: no busy indicator
    QVERIFY(settled(w));
    QCOMPARE(marksOf(found.photos), (Marks{1, 0, 1}));
    QCOMPARE(marksOf(found.docs), (Marks{0, 0}));
    QCOMPARE(cell(w.tableViewFiles, row, GroupsModel::ColumnCount), QStringLiteral("2/3"));
    QCOMPARE(w.tableViewFiles->model()
                 ->index(row, GroupsModel::ColumnCount)
                 .data(Qt::ForegroundRole)
                 .value<QColor>(),
             QColor(27, 209, 51));
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(6000));
    QCOMPARE(spaceColour(w), QColor(27, 209, 51));
    QCOMPARE(SettingsManager::shared()->spaceSaved, std::uint64_t{6000});

    chooseSegment(w, 2); // keep the newest
    QVERIFY(settled(w));
    QCOMPARE(marksOf(found.photos), (Marks{1, 1, 0}));

    // The box alone changes nothing; the next option goes to every group.
    w.checkApplyForAll->click();
    QVERIFY(settled(w));
    QCOMPARE(marksOf(found.docs), (Marks{0, 0}));
    // Every group: busy until shown, and the indicator moves nothing.
    const auto geometries = [&w] {
        QList<QRect> out;
        for (int k = 0; k < w.segmentedControlKeep->segmentCount(); ++k) {
            QWidget* button = w.segmentedControlKeep->segmentButton(k);
            out << QRect(button->mapTo(&w, QPoint(0, 0)), button->size());
        }
        out << QRect(w.checkApplyForAll->mapTo(&w, QPoint(0, 0)), w.checkApplyForAll->size());
        return out;
    };
    const QList<QRect> idle = geometries();
    chooseSegment(w, 3);
    QVERIFY(w.progressIndicator->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QCOMPARE(geometries(), idle);
    QVERIFY(settled(w));
    QVERIFY(!w.progressIndicator->isVisible());
    for (const FilePtr& g : {found.photos, found.docs, found.songs}) {
        QCOMPARE(twinsweep::markedCount(*g), static_cast<std::int64_t>(g->duplicates.size()));
        QCOMPARE(g->keepOption, std::int64_t{3});
    }
    QCOMPARE(cell(w.tableViewFiles, row, GroupsModel::ColumnCount), QStringLiteral("3/3"));
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(15000));

    // Selecting a group shows its own option without applying it.
    found.docs->keepOption = 1;
    selectGroup(w, found.docs);
    QCOMPARE(w.segmentedControlKeep->selectedSegment(), 1);
    QCOMPARE(marksOf(found.docs), (Marks{1, 1}));

    chooseSegment(w, 0);
    QVERIFY(settled(w));
    QCOMPARE(marksOf(found.photos), (Marks{0, 0, 0}));
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(0));
    QCOMPARE(spaceColour(w), QColor(Qt::black));
}

void DuplicatesWindowTest::handMarksRecountAtOnce() {
    Found found;
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    selectGroup(w, found.photos);
    const int row = rowOf(w, found.photos);
    const int updates = w.updatesStarted();

    tick(w, 0);
    tick(w, 2);
    // The count is drawn from the marks at once; the total follows.
    QCOMPARE(cell(w.tableViewFiles, row, GroupsModel::ColumnCount), QStringLiteral("2/3"));
    QCOMPARE(w.tableViewDuplicates->model()->index(0, 0).data(Qt::CheckStateRole).toInt(),
             int(Qt::Checked));
    QVERIFY(settled(w));
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(6000));
    QCOMPARE(w.segmentedControlKeep->selectedSegment(), 0);
    QCOMPARE(w.updatesStarted(), updates); // no results update for a hand mark
    tick(w, 0);
    QVERIFY(settled(w));
    QCOMPARE(marksOf(found.photos), (Marks{0, 0, 1}));
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(3000));

    // Another group keeps its own marks; choosing the option again overrides
    // the hand marks.
    selectGroup(w, found.docs);
    selectGroup(w, found.photos);
    QCOMPARE(marksOf(found.photos), (Marks{0, 0, 1}));
    chooseSegment(w, 0);
    QVERIFY(settled(w));
    QCOMPARE(marksOf(found.photos), (Marks{0, 0, 0}));
}

void DuplicatesWindowTest::categoryBoxesHideGroupsButKeepMarks() {
    Found found;
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    w.checkApplyForAll->click();
    chooseSegment(w, 3);
    QVERIFY(settled(w));
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(15000));

    w.categoryChecks[0]->click(); // hide the pictures
    QVERIFY(settled(w));
    QCOMPARE(w.tableViewFiles->model()->rowCount(), 2);
    QCOMPARE(rowOf(w, found.photos), -1);
    QCOMPARE(marksOf(found.photos), (Marks{1, 1, 1}));
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(6000));
    QCOMPARE(w.categoryPercents[0]->text(), QStringLiteral("60%"));
    QCOMPARE(w.selectedRow, 0);

    for (QCheckBox* box : w.categoryChecks) {
        if (box->isChecked()) {
            box->click();
        }
    }
    QVERIFY(settled(w));
    QCOMPARE(w.tableViewFiles->model()->rowCount(), 0);
    QCOMPARE(w.tableViewDuplicates->model()->rowCount(), 0);
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(0));
    QCOMPARE(spaceColour(w), QColor(Qt::black));
    QCOMPARE(w.categoryPercents[4]->text(), QStringLiteral("27%"));
    // An option with nothing listed does nothing.
    chooseSegment(w, 0);
    QVERIFY(settled(w));
    QCOMPARE(marksOf(found.docs), (Marks{1, 1}));

    w.categoryChecks[0]->click();
    QVERIFY(settled(w));
    QCOMPARE(w.tableViewFiles->model()->rowCount(), 1);
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(9000));
    QCOMPARE(w.segmentedControlKeep->selectedSegment(), 3);
}

void DuplicatesWindowTest::segmentChangesDuringAnUpdateFoldIntoOne() {
    Found found;
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    selectGroup(w, found.photos);
    const int before = w.updatesStarted();

    // No event is handled between the clicks, so the first update is still
    // running when the others arrive.
    chooseSegment(w, 1);
    QVERIFY(w.updating);
    chooseSegment(w, 2);
    QVERIFY(w.selectionChanged);
    chooseSegment(w, 3);
    QVERIFY(settled(w));
    QCOMPARE(w.updatesStarted(), before + 2);
    QVERIFY(!w.selectionChanged);
    // The last segment wins.
    QCOMPARE(marksOf(found.photos), (Marks{1, 1, 1}));
    QCOMPARE(w.segmentedControlKeep->selectedSegment(), 3);
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(9000));
}

void DuplicatesWindowTest::segmentChosenDuringAFullUpdateIsKept() {
    Found found;
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    QCOMPARE(w.fileList.front(), found.photos);
    // As after a cleaning: a full update runs on row 0 while the user picks
    // another option. That option is applied and stays shown; the group's
    // option stored by the running update does not replace it.
    w.firstUpdate = true;
    chooseSegment(w, 1);
    QVERIFY(w.updating);
    chooseSegment(w, 2);
    QVERIFY(settled(w));
    QCOMPARE(w.segmentedControlKeep->selectedSegment(), 2);
    QCOMPARE(found.photos->keepOption, std::int64_t{2});
    QCOMPARE(marksOf(found.photos), (Marks{1, 1, 0}));
}

void DuplicatesWindowTest::customWindowOkCancelAndTheKeepOneQuestion() {
    Found found;
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    selectGroup(w, found.photos);
    chooseSegment(w, 1);
    QVERIFY(settled(w));
    const std::string folder = found.photos->path.substr(0, found.photos->path.rfind('/'));

    ModalAnswers answers;
    QString shownFolder;
    answers.then("twinsweep::ui::ViewControllerCustomKeep", [&](QWidget* modal) {
        auto* custom = qobject_cast<ViewControllerCustomKeep*>(modal);
        QVERIFY(custom != nullptr);
        shownFolder = custom->textFieldCustomFilePath->text();
        custom->buttonCancel->click();
    });
    chooseSegment(w, 4);
    QCOMPARE(shownFolder, QString::fromStdString(folder));
    // Cancel: the group's option comes back and is applied again.
    QCOMPARE(w.segmentedControlKeep->selectedSegment(), 1);
    QVERIFY(settled(w));
    QCOMPARE(marksOf(found.photos), (Marks{1, 0, 1}));

    // OK with the type rule on: every photo matches, none is spared.
    answers.then("twinsweep::ui::ViewControllerCustomKeep", [&](QWidget* modal) {
        auto* custom = qobject_cast<ViewControllerCustomKeep*>(modal);
        QVERIFY(custom != nullptr);
        custom->checkCustomFileTypes->setChecked(true);
        custom->textFieldExtension->setText(QStringLiteral("JPG"));
        custom->OncustomFileTypesAddFileExtension();
        custom->buttonOk->click();
    });
    chooseSegment(w, 4);
    QVERIFY(settled(w));
    QCOMPARE(answers.answered(), 2);
    QCOMPARE(marksOf(found.photos), (Marks{1, 1, 1}));
    QCOMPARE(found.photos->keepOption, std::int64_t{4});
    QCOMPARE(marksOf(found.docs), (Marks{0, 0}));

    // For every group the question comes once, after OK, before the update.
    w.checkApplyForAll->click();
    answers.then("twinsweep::ui::ViewControllerCustomKeep", [](QWidget* modal) {
        auto* custom = qobject_cast<ViewControllerCustomKeep*>(modal);
        QVERIFY(custom != nullptr);
        // The group's stored rules come back into the window.
        QCOMPARE(custom->tableViewCustomFileTypes->count(), 1);
        custom->buttonOk->click();
    });
    answers.alert(QStringLiteral("Yes, keep the oldest file"));
    chooseSegment(w, 4);
    QVERIFY(settled(w));
    QCOMPARE(answers.answered(), 4);
    QCOMPARE(answers.said,
             QStringList{QString::fromStdString(twinsweep::keepOneCopyQuestion().informativeText)});
    QCOMPARE(SettingsManager::shared()->customMessageRespone, std::int64_t{1});
    QCOMPARE(marksOf(found.photos), (Marks{1, 0, 1}));
    QCOMPARE(marksOf(found.songs), (Marks{0, 0}));
}

void DuplicatesWindowTest::cleaningAsksFirstAndMovesToTheTrash() {
    Found found;
    const QByteArray savedDataHome = qgetenv("XDG_DATA_HOME");
    const QString dataHome = QString::fromStdString(found.tree.mkdir("data"));
    qputenv("XDG_DATA_HOME", dataHome.toLocal8Bit());
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    ModalAnswers answers;
    const QStringList& said = answers.said;

    answers.alert("OK");
    w.buttonClean->click();
    QCOMPARE(said, QStringList{text(Alert::NothingMarked)});

    // Marks only in a hidden category count as nothing.
    selectGroup(w, found.photos);
    tick(w, 1);
    w.categoryChecks[0]->click();
    QVERIFY(settled(w));
    answers.alert("OK");
    w.buttonClean->click();
    QCOMPARE(said.size(), 2);
    QCOMPARE(said.back(), text(Alert::NothingMarked));
    w.categoryChecks[0]->click();
    QVERIFY(settled(w));

    // One copy to the Trash: no question, then the done message.
    const std::string trashed = found.photos->duplicates[1]->path;
    answers.alert("OK");
    w.buttonClean->click();
    QCOMPARE(said.back(), text(Alert::Done));
    QVERIFY(settled(w));
    QVERIFY(!exists(trashed));
    QVERIFY(inTrash(dataHome, "photo.jpg"));
    QCOMPARE(found.photos->duplicates.size(), std::size_t{2});
    QCOMPARE(SettingsManager::shared()->duplicateFileList.size(), std::size_t{3});
    QCOMPARE(w.tableViewFiles->model()->rowCount(), 3);
    QVERIFY(w.isVisible());

    // Whole groups marked: asked first, and "No" keeps everything.
    w.checkApplyForAll->click();
    chooseSegment(w, 3);
    QVERIFY(settled(w));
    answers.alert("No");
    w.buttonClean->click();
    QCOMPARE(said.back(), text(Alert::WholeGroups));
    for (const FilePtr& g : {found.photos, found.docs, found.songs}) {
        for (const auto& m : g->duplicates) {
            QVERIFY(exists(m->path));
        }
    }
    QVERIFY(answers.allAnswered());
    w.close();
    if (savedDataHome.isNull()) {
        qunsetenv("XDG_DATA_HOME");
    } else {
        qputenv("XDG_DATA_HOME", savedDataHome);
    }
}

void DuplicatesWindowTest::cleaningForGoodAndClosingAfterTheLastGroup() {
    Found found;
    SettingsManager::shared()->moveToTrash = false;
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    ModalAnswers answers;
    const QStringList& said = answers.said;

    // One document and both songs: whole groups first, then for good.
    selectGroup(w, found.docs);
    tick(w, 1);
    selectGroup(w, found.songs);
    tick(w, 0);
    tick(w, 1);
    const std::string doc = found.docs->duplicates[1]->path;
    const std::string keptDoc = found.docs->duplicates[0]->path;
    const std::vector<std::string> songs{found.songs->duplicates[0]->path,
                                         found.songs->duplicates[1]->path};
    answers.alert("Yes");
    answers.alert("No");
    w.buttonClean->click();
    QCOMPARE(said, (QStringList{text(Alert::WholeGroups), text(Alert::PermanentDeletion)}));
    QVERIFY(exists(doc));

    answers.alert("Yes");
    answers.alert("Yes");
    answers.alert("OK");
    w.buttonClean->click();
    QCOMPARE(said.back(), text(Alert::Done));
    QVERIFY(settled(w));
    QVERIFY(!exists(doc) && !exists(songs[0]) && !exists(songs[1]));
    QVERIFY(exists(keptDoc));
    // Groups left with one copy or none are gone; the rest is listed anew.
    QCOMPARE(SettingsManager::shared()->duplicateFileList, FileList{found.photos});
    QCOMPARE(w.tableViewFiles->model()->rowCount(), 1);
    QCOMPARE(w.selectedRow, 0);
    QCOMPARE(w.categoryPercents[0]->text(), QStringLiteral("100%"));
    QVERIFY(w.isVisible());

    // Cleaning the last group closes the window, which empties the lists.
    selectGroup(w, found.photos);
    chooseSegment(w, 1);
    QVERIFY(settled(w));
    answers.alert("Yes");
    answers.alert("OK");
    w.buttonClean->click();
    QVERIFY(answers.allAnswered());
    QVERIFY(!w.isVisible());
    QVERIFY(SettingsManager::shared()->duplicateFileList.empty());
    QVERIFY(SettingsManager::shared()->fileList.empty());
    QCOMPARE(found.photos->duplicates.size(), std::size_t{1});
    QVERIFY(exists(found.photos->duplicates[0]->path));
}

void DuplicatesWindowTest::revealFallsBackToTheFolder() {
    Found found;
    // No session bus here: the folder itself is opened.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openedUrl");
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    selectGroup(w, found.photos);
    w.buttonReveal->click(); // no member selected: nothing to show
    QVERIFY(opened_.isEmpty());
    w.tableViewDuplicates->selectRow(2);
    w.buttonReveal->click();
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    const std::string path = found.photos->duplicates[2]->path;
    QCOMPARE(opened_, QList<QUrl>{QUrl::fromLocalFile(
                          QString::fromStdString(path.substr(0, path.rfind('/'))))});
    opened_.clear();
}

void DuplicatesWindowTest::keyboardMarksAndReturnOpensNothing() {
    Found found;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openedUrl");
    ViewControllerDuplicates& w = found.open();
    QVERIFY(settled(w));
    QCOMPARE(twinsweep::testing::commandsWithoutShortcut(w.menuBar()), QStringList());
    selectGroup(w, found.photos);
    QTableView* members = w.tableViewDuplicates;

    // Space marks the current member from any column of its row.
    for (int column = 0; column < members->model()->columnCount(); ++column) {
        members->setCurrentIndex(members->model()->index(1, column));
        typeKey(members, Qt::Key_Space);
        QCOMPARE(marksOf(found.photos), (Marks{0, column % 2 == 0 ? 1 : 0, 0}));
    }
    QVERIFY(settled(w));
    QCOMPARE(cell(w.tableViewFiles, rowOf(w, found.photos), GroupsModel::ColumnCount),
             QStringLiteral("1/3"));

    // Return in either table neither reveals nor opens anything; Tab leaves.
    for (QTableView* table : {w.tableViewFiles, members}) {
        typeKey(table, Qt::Key_Return);
        typeKey(table, Qt::Key_Enter);
        QApplication::processEvents();
        QCOMPARE(QApplication::activeModalWidget(), &w);
        QVERIFY(w.isVisible());
        typeKey(table, Qt::Key_Tab);
        QVERIFY(!table->hasFocus());
    }
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    QVERIFY(opened_.isEmpty());

    // The keep options and apply-to-all from the keyboard.
    typeKey(w.tableViewFiles, Qt::Key_3, Qt::ControlModifier);
    QVERIFY(settled(w));
    QCOMPARE(w.segmentedControlKeep->selectedSegment(), 2);
    QCOMPARE(marksOf(found.photos), (Marks{1, 1, 0}));
    typeKey(w.tableViewFiles, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(w.checkApplyForAll->isChecked());
}
