#include <QCheckBox>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>

#include "UiTestSupport.h"
#include "selection/Cleaning.h"
#include "selection/CustomMarking.h"
#include "selection/KeepOptions.h"
#include "ui/customkeep/ViewControllerCustomKeep.h"
#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/SegmentedControl.h"
#include "ui/info/ViewControllerInfo.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using twinsweep::ui::GroupsModel;
using twinsweep::ui::ViewControllerCustomKeep;
using twinsweep::ui::ViewControllerDuplicates;
using twinsweep::ui::ViewControllerInfo;
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
        // The second photo is the oldest, the third the newest, whatever the
        // file system records.
        const char* dates[] = {"20-01-01 01:00:00", "19-01-01 01:00:00", "21-01-01 01:00:00"};
        for (std::size_t i = 0; i < 3; ++i) {
            photos->duplicates[i]->date = dates[i];
        }
    }
};

int rowOf(const ViewControllerDuplicates& w, const FilePtr& group) {
    const auto at = std::find(w.fileList.begin(), w.fileList.end(), group);
    return at == w.fileList.end() ? -1 : static_cast<int>(at - w.fileList.begin());
}

void selectGroup(ViewControllerDuplicates& w, const FilePtr& group) {
    w.tableViewFiles->selectRow(rowOf(w, group));
    QCOMPARE(w.selectedRow, rowOf(w, group));
}

// Clicks a keep option and, unless told not to, waits for its update.
void choose(ViewControllerDuplicates& w, int segment, bool wait = true) {
    w.segmentedControlKeep->segmentButton(segment)->click();
    QVERIFY(!wait || settled(w));
}

// Ticks the box of a member of the selected group, as a click in the table does.
void tick(ViewControllerDuplicates& w, int row) {
    QAbstractItemModel* members = w.tableViewDuplicates->model();
    QVERIFY(members->setData(members->index(row, 0), Qt::Checked, Qt::CheckStateRole));
}

QString sizeText(std::uint64_t bytes) {
    return QString::fromStdString(FileTools::fileSizeText(bytes));
}

// The space saved shown, in its colour: green when anything is marked.
void expectSaved(const ViewControllerDuplicates& w, std::uint64_t bytes) {
    QCOMPARE(w.labelSpaceSaved->text(), sizeText(bytes));
    QCOMPARE(w.labelSpaceSaved->palette().color(QPalette::WindowText),
             bytes == 0 ? QColor(Qt::black) : QColor(27, 209, 51));
}

QString text(CleaningAlert a) {
    return QString::fromStdString(alertText(a).informativeText);
}

} // namespace

// The results window on real search results: set-up, keep options, hand
// marks, categories, folded updates, the custom rules and cleaning.
class DuplicatesWindowTest : public QObject {
    Q_OBJECT
  public slots:
    void openedUrl(const QUrl& url) { opened_ << url; }

  private slots:
    void init() { SettingsManager::shared()->moveToTrash = true; }
    void cleanup() { SettingsManager::shared()->duplicateFileList.clear(); }

    void opensOnTheSearchResult() {
        Found found;
        found.docs->duplicates[1]->checkState = 1; // left over from an earlier look
        ViewControllerDuplicates& w = found.open();
        QCOMPARE(w.tableViewFiles->model()->rowCount(), 3);
        QCOMPARE(w.tableViewDuplicates->model()->rowCount(), int(w.fileList[0]->duplicates.size()));
        QCOMPARE(marksOf(found.docs), (Marks{0, 0}));
        expectSaved(w, 0);
        // Pictures 60%, music 13%, documents 27% of the 15000 bytes held.
        QStringList percents;
        for (QLabel* label : w.categoryPercents) {
            percents << label->text();
        }
        QCOMPARE(percents, (QStringList{"60%", "13%", "0%", "0%", "27%", "0%"}));
        const int row = rowOf(w, found.photos);
        QCOMPARE(cell(w.tableViewFiles, row, GroupsModel::ColumnName), u"photo.jpg"_s);
        QCOMPARE(cell(w.tableViewFiles, row, GroupsModel::ColumnSize), sizeText(3000));
        QCOMPARE(cell(w.tableViewFiles, row, GroupsModel::ColumnCount), u"0/3"_s);
        // Escape would drop the results: only closing the window does.
        QTest::keyClick(&w, Qt::Key_Escape);
        QVERIFY(w.isVisible());
        w.close();
        QVERIFY(SettingsManager::shared()->duplicateFileList.empty());
    }

    void keepOptionsOnOneGroupAndOnAll() {
        Found found;
        ViewControllerDuplicates& w = found.open();
        selectGroup(w, found.photos);
        const int row = rowOf(w, found.photos);
        choose(w, 1, false);                        // keep the oldest: the second photo stays
        QVERIFY(!w.progressIndicator->isVisible()); // one group: no busy indicator
        QVERIFY(settled(w));
        QCOMPARE(marksOf(found.photos), (Marks{1, 0, 1}));
        QCOMPARE(marksOf(found.docs), (Marks{0, 0}));
        QCOMPARE(cell(w.tableViewFiles, row, GroupsModel::ColumnCount), u"2/3"_s);
        QCOMPARE(cell(w.tableViewFiles, row, GroupsModel::ColumnCount, Qt::ForegroundRole),
                 QColor(27, 209, 51).name());
        expectSaved(w, 6000);
        choose(w, 2); // keep the newest
        QCOMPARE(marksOf(found.photos), (Marks{1, 1, 0}));

        // The box alone changes nothing; the next option goes to every group,
        // busy until shown, and the indicator moves nothing.
        w.checkApplyForAll->click();
        QVERIFY(settled(w));
        QCOMPARE(marksOf(found.docs), (Marks{0, 0}));
        const auto geometries = [&w] {
            QList<QRect> out;
            for (int k = 0; k < w.segmentedControlKeep->segmentCount(); ++k) {
                QWidget* button = w.segmentedControlKeep->segmentButton(k);
                out << QRect(button->mapTo(&w, QPoint(0, 0)), button->size());
            }
            return out << QRect(w.checkApplyForAll->mapTo(&w, QPoint()),
                                w.checkApplyForAll->size());
        };
        const QList<QRect> idle = geometries();
        choose(w, 3, false);
        QVERIFY(w.progressIndicator->isVisible());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        QCOMPARE(geometries(), idle);
        QVERIFY(settled(w));
        QVERIFY(!w.progressIndicator->isVisible());
        QCOMPARE(found.songs->keepOption, std::int64_t{3});
        QCOMPARE(cell(w.tableViewFiles, row, GroupsModel::ColumnCount), u"3/3"_s);
        expectSaved(w, 15000);

        // Selecting a group shows its own option without applying it.
        found.docs->keepOption = 1;
        selectGroup(w, found.docs);
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 1);
        QCOMPARE(marksOf(found.docs), (Marks{1, 1}));
        choose(w, 0);
        QCOMPARE(marksOf(found.photos), (Marks{0, 0, 0}));
        expectSaved(w, 0);
    }

    void categoryBoxesHideGroupsButKeepMarks() {
        Found found;
        ViewControllerDuplicates& w = found.open();
        w.checkApplyForAll->click();
        choose(w, 3);
        w.categoryChecks[0]->click(); // hide the pictures
        QVERIFY(settled(w));
        QCOMPARE(w.tableViewFiles->model()->rowCount(), 2);
        QCOMPARE(marksOf(found.photos), (Marks{1, 1, 1}));
        expectSaved(w, 6000);
        QCOMPARE(w.categoryPercents[0]->text(), u"60%"_s); // of everything found
        for (QCheckBox* box : w.categoryChecks) {
            if (box->isChecked()) {
                box->click();
            }
        }
        QVERIFY(settled(w));
        QCOMPARE(w.tableViewFiles->model()->rowCount(), 0);
        QCOMPARE(w.tableViewDuplicates->model()->rowCount(), 0);
        expectSaved(w, 0);
        choose(w, 0); // nothing listed: does nothing
        QCOMPARE(marksOf(found.docs), (Marks{1, 1}));
        w.categoryChecks[0]->click();
        QVERIFY(settled(w));
        QCOMPARE(w.tableViewFiles->model()->rowCount(), 1);
        expectSaved(w, 9000);
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 3);
    }

    void segmentsChosenDuringAnUpdateFoldAndStay() {
        Found found;
        ViewControllerDuplicates& w = found.open();
        selectGroup(w, found.photos);
        const int before = w.updatesStarted();
        // No event is handled between the clicks, so the first update is
        // still running when the others arrive; the last segment wins.
        choose(w, 1, false);
        QVERIFY(w.updating);
        choose(w, 2, false);
        QVERIFY(w.selectionChanged);
        choose(w, 3);
        QCOMPARE(w.updatesStarted(), before + 2);
        QVERIFY(!w.selectionChanged);
        QCOMPARE(marksOf(found.photos), (Marks{1, 1, 1}));
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 3);
        expectSaved(w, 9000);
        // As after a cleaning: a full update runs on row 0 while the user
        // picks another option. That option is applied and stays shown; the
        // option stored by the running update does not replace it.
        QCOMPARE(w.fileList.front(), found.photos);
        w.firstUpdate = true;
        choose(w, 1, false);
        QVERIFY(w.updating);
        choose(w, 2);
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 2);
        QCOMPARE(found.photos->keepOption, std::int64_t{2});
        QCOMPARE(marksOf(found.photos), (Marks{1, 1, 0}));
    }

    void customWindowOkCancelAndTheKeepOneQuestion() {
        Found found;
        ViewControllerDuplicates& w = found.open();
        selectGroup(w, found.photos);
        choose(w, 1);
        ModalAnswers answers;
        QString shownFolder;
        answers.on<ViewControllerCustomKeep>([&](ViewControllerCustomKeep* custom) {
            shownFolder = custom->textFieldCustomFilePath->text();
            custom->buttonCancel->click();
        });
        choose(w, 4, false);
        QCOMPARE(shownFolder.toStdString(),
                 found.photos->path.substr(0, found.photos->path.rfind('/')));
        // Cancel: the group's option comes back and is applied again.
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 1);
        QVERIFY(settled(w));
        QCOMPARE(marksOf(found.photos), (Marks{1, 0, 1}));

        // OK with the type rule on: every photo matches, none is spared.
        answers.on<ViewControllerCustomKeep>([](ViewControllerCustomKeep* custom) {
            custom->checkCustomFileTypes->setChecked(true);
            custom->textFieldExtension->setText(u"JPG"_s);
            custom->OncustomFileTypesAddFileExtension();
            custom->buttonOk->click();
        });
        choose(w, 4);
        QCOMPARE(marksOf(found.photos), (Marks{1, 1, 1}));
        QCOMPARE(found.photos->keepOption, std::int64_t{4});
        QCOMPARE(marksOf(found.docs), (Marks{0, 0}));

        // For every group the question comes once, after OK, before the update.
        w.checkApplyForAll->click();
        int storedRules = 0;
        answers.on<ViewControllerCustomKeep>([&](ViewControllerCustomKeep* custom) {
            storedRules = custom->tableViewCustomFileTypes->count(); // the group's own
            custom->buttonOk->click();
        });
        answers.alert(u"Yes, keep the oldest file"_s);
        choose(w, 4);
        QCOMPARE(answers.answered(), 4);
        QCOMPARE(storedRules, 1);
        QCOMPARE(answers.said,
                 QStringList{QString::fromStdString(keepOneCopyQuestion().informativeText)});
        QCOMPARE(SettingsManager::shared()->customMessageRespone, std::int64_t{1});
        QCOMPARE(marksOf(found.photos), (Marks{1, 0, 1}));
        QCOMPARE(marksOf(found.songs), (Marks{0, 0}));
    }

    void cleaningAsksFirstAndMovesToTheTrash() {
        Found found;
        const Snapshot before = snapshot(found.tree.root());
        ViewControllerDuplicates& w = found.open();
        ModalAnswers answers;
        answers.alert(u"OK"_s);
        w.buttonClean->click();
        // Marks only in a hidden category count as nothing.
        selectGroup(w, found.photos);
        tick(w, 1);
        w.categoryChecks[0]->click();
        QVERIFY(settled(w));
        answers.alert(u"OK"_s);
        w.buttonClean->click();
        QCOMPARE(answers.said, QStringList(2, text(CleaningAlert::NothingMarked)));
        w.categoryChecks[0]->click();
        QVERIFY(settled(w));

        // One copy to the Trash: no question, then the done message.
        const std::string trashed = found.photos->duplicates[1]->path;
        answers.alert(u"OK"_s);
        w.buttonClean->click();
        QCOMPARE(answers.said.back(), text(CleaningAlert::Done));
        QVERIFY(settled(w));
        QCOMPARE(snapshot(found.tree.root()), without(before, {trashed}));
        QVERIFY(std::filesystem::exists(qgetenv("XDG_DATA_HOME").toStdString() +
                                        "/Trash/files/photo.jpg"));
        QCOMPARE(found.photos->duplicates.size(), std::size_t{2});
        QCOMPARE(w.tableViewFiles->model()->rowCount(), 3);
        QVERIFY(answers.allAnswered() && w.isVisible());
    }

    void cleaningForGoodAndClosingAfterTheLastGroup() {
        Found found;
        const Snapshot before = snapshot(found.tree.root());
        SettingsManager::shared()->moveToTrash = false;
        ViewControllerDuplicates& w = found.open();
        ModalAnswers answers;
        // One document and both songs: whole groups first, then for good.
        selectGroup(w, found.docs);
        tick(w, 1);
        selectGroup(w, found.songs);
        tick(w, 0);
        tick(w, 1);
        const std::vector<std::string> marked{found.docs->duplicates[1]->path,
                                              found.songs->duplicates[0]->path,
                                              found.songs->duplicates[1]->path};
        answers.alert(u"Yes"_s);
        answers.alert(u"No"_s);
        w.buttonClean->click();
        QCOMPARE(answers.said, (QStringList{text(CleaningAlert::WholeGroups),
                                            text(CleaningAlert::PermanentDeletion)}));
        QCOMPARE(snapshot(found.tree.root()), before);
        for (const char* button : {"Yes", "Yes", "OK"}) {
            answers.alert(QString::fromLatin1(button));
        }
        w.buttonClean->click();
        QCOMPARE(answers.said.back(), text(CleaningAlert::Done));
        QVERIFY(settled(w));
        QCOMPARE(snapshot(found.tree.root()), without(before, marked));
        // Groups left with one copy or none are gone; the rest is listed anew.
        QCOMPARE(SettingsManager::shared()->duplicateFileList, FileList{found.photos});
        QCOMPARE(w.tableViewFiles->model()->rowCount(), 1);
        QCOMPARE(w.categoryPercents[0]->text(), u"100%"_s);

        // Cleaning the last group closes the window, which empties the lists.
        const std::vector<std::string> photos{found.photos->duplicates[0]->path,
                                              found.photos->duplicates[2]->path};
        selectGroup(w, found.photos);
        choose(w, 1);
        answers.alert(u"Yes"_s);
        answers.alert(u"OK"_s);
        w.buttonClean->click();
        QVERIFY(answers.allAnswered() && !w.isVisible());
        QVERIFY(SettingsManager::shared()->duplicateFileList.empty());
        QVERIFY(SettingsManager::shared()->fileList.empty());
        QCOMPARE(snapshot(found.tree.root()), without(without(before, marked), photos));
    }

    void keyboardMarksAndNeitherRevealNorReturnOpensFiles() {
        Found found;
        // No session bus here: revealing opens the folder itself.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        QDesktopServices::setUrlHandler(u"file"_s, this, "openedUrl");
        ViewControllerDuplicates& w = found.open();
        QCOMPARE(commandsWithoutShortcut(w.menuBar()), QStringList());
        selectGroup(w, found.photos);
        QTableView* members = w.tableViewDuplicates;
        const int updates = w.updatesStarted();
        // Space marks the current member from any column of its row; the box
        // and the count follow at once, the total once counted, and no
        // results update runs for a hand mark.
        for (int column = 0; column < members->model()->columnCount(); ++column) {
            members->setCurrentIndex(members->model()->index(1, column));
            typeKey(members, Qt::Key_Space);
            QCOMPARE(marksOf(found.photos), (Marks{0, column % 2 == 0 ? 1 : 0, 0}));
        }
        QCOMPARE(cell(members, 1, 0, Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QCOMPARE(cell(w.tableViewFiles, rowOf(w, found.photos), GroupsModel::ColumnCount),
                 u"1/3"_s);
        QVERIFY(settled(w));
        expectSaved(w, 3000);
        QCOMPARE(w.updatesStarted(), updates);
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 0);
        selectGroup(w, found.docs); // another group keeps its own marks
        selectGroup(w, found.photos);
        QCOMPARE(marksOf(found.photos), (Marks{0, 1, 0}));
        // Return in either table neither reveals nor opens anything; Tab leaves.
        for (QTableView* table : {w.tableViewFiles, members}) {
            typeKey(table, Qt::Key_Return);
            typeKey(table, Qt::Key_Enter);
            QApplication::processEvents();
            QCOMPARE(QApplication::activeModalWidget(), &w);
            typeKey(table, Qt::Key_Tab);
            QVERIFY(!table->hasFocus());
        }
        members->clearSelection();
        w.buttonReveal->click(); // no member selected: nothing to show
        QVERIFY(opened_.isEmpty());
        members->selectRow(2);
        w.buttonReveal->click();
        QDesktopServices::unsetUrlHandler(u"file"_s);
        const std::string path = found.photos->duplicates[2]->path;
        QCOMPARE(opened_, QList<QUrl>{QUrl::fromLocalFile(
                              QString::fromStdString(path.substr(0, path.rfind('/'))))});
        // File Info shows the selected member, its preview in place.
        ModalAnswers answers;
        QString shown;
        answers.on<ViewControllerInfo>([&](ViewControllerInfo* info) {
            QVERIFY(waitUntil([&] { return info->previewShown(); }));
            shown = info->labelFileName->text() + u'.' + info->labelExtension->text();
            info->close();
        });
        typeKey(members, Qt::Key_I, Qt::ControlModifier);
        QCOMPARE(shown, u"photo.jpg"_s);
        QCOMPARE(SettingsManager::shared()->currentSelectedFilePath, path);
        // The keep options, which override hand marks, and apply-to-all from
        // the keyboard.
        typeKey(w.tableViewFiles, Qt::Key_3, Qt::ControlModifier);
        QVERIFY(settled(w));
        QCOMPARE(marksOf(found.photos), (Marks{1, 1, 0}));
        typeKey(w.tableViewFiles, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(w.checkApplyForAll->isChecked());
    }

  private:
    QList<QUrl> opened_;
};

UI_TEST_CLASS(DuplicatesWindowTest);

#include "DuplicatesWindowTest.moc"
