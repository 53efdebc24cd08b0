// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCheckBox>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>

#include "UiTestSupport.h"
#include "selection/CustomMarking.h"
#include "ui/customkeep/ViewControllerCustomKeep.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using namespace twinsweep::ui;
using Marks = std::vector<std::int64_t>;

namespace {

// The cleaning's messages, word for word.
const QString kNothingMarked = u"You did not select any duplicate files. Please select at least "
                               u"one duplicate file and try again."_s;
const QString kWholeGroups = u"Some files have been selected to be removed completely. Are you "
                             u"sure you want to continue?"_s;
const QString kPermanentDeletion =
    u"You are about to permanently remove the selected duplicate files. Continue?"_s;
const QString kDone = u"Duplicate files cleaned successfully. "_s;

} // namespace

// The results window on real search results.
class DuplicatesWindowTest : public QObject {
    Q_OBJECT
  public slots:
    void openedUrl(const QUrl& url) { opened_ << url; }

  private slots:
    void init() { SettingsManager::shared()->moveToTrash = true; }
    void cleanup() { SettingsManager::shared()->duplicateFileList.clear(); }

    void opensUnmarkedThenKeepOptionsOnOneGroupAndOnAll() {
        Results r;
        ViewControllerDuplicates& w = *r.w;
        QCOMPARE(r.listed(), 3);
        QCOMPARE(marksOf(r.docs), (Marks{0, 0})); // set-up clears every mark
        r.expectSaved(0);
        // Escape would drop the results: only closing the window does.
        QTest::keyClick(&w, Qt::Key_Escape);
        QVERIFY(w.isVisible());
        r.select(r.photos);
        r.choose(1, false);                         // keep the oldest: the second photo stays
        QVERIFY(!w.progressIndicator->isVisible()); // one group: no busy indicator
        QVERIFY(settled(w));
        QCOMPARE(marksOf(r.photos), (Marks{1, 0, 1}));
        QCOMPARE(marksOf(r.docs), (Marks{0, 0}));
        QCOMPARE(r.count(r.photos), u"2/3"_s);
        QCOMPARE(r.count(r.photos, Qt::ForegroundRole), QColor(27, 209, 51).name());
        r.expectSaved(6000);
        r.choose(2); // keep the newest
        QCOMPARE(marksOf(r.photos), (Marks{1, 1, 0}));

        // The box alone changes nothing; the next option goes to every group.
        w.checkApplyForAll->click();
        QVERIFY(settled(w));
        QCOMPARE(marksOf(r.docs), (Marks{0, 0}));
        const auto keepRow = [&w] {
            return QList<QRect>{w.segmentedControlKeep->geometry(), w.checkApplyForAll->geometry()};
        };
        const QList<QRect> idle = keepRow();
        r.choose(3, false);
        QVERIFY(w.progressIndicator->isVisible()); // busy, and nothing moves for it
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        QCOMPARE(keepRow(), idle);
        QVERIFY(settled(w));
        QVERIFY(!w.progressIndicator->isVisible());
        QCOMPARE(r.songs->keepOption, std::int64_t{3});
        QCOMPARE(r.count(r.photos), u"3/3"_s);
        r.expectSaved(15000);

        // Selecting a group shows its own option without applying it.
        r.docs->keepOption = 1;
        r.select(r.docs);
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 1);
        QCOMPARE(marksOf(r.docs), (Marks{1, 1}));
        r.choose(0);
        QCOMPARE(marksOf(r.photos), (Marks{0, 0, 0}));
        r.expectSaved(0);

        // On a dark palette the plain figure takes the palette's own text colour.
        const QPalette light = QApplication::palette();
        QPalette dark = light;
        dark.setColor(QPalette::Window, QColor(30, 30, 30));
        dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
        QApplication::setPalette(dark);
        r.choose(3);
        r.choose(0);
        QApplication::setPalette(light);
        QCOMPARE(w.labelSpaceSaved->text(), sizeText(0));
        QCOMPARE(w.labelSpaceSaved->palette().color(QPalette::WindowText), QColor(230, 230, 230));
    }

    void categoryBoxesHideGroupsButKeepMarks() {
        Results r;
        ViewControllerDuplicates& w = *r.w;
        w.checkApplyForAll->click();
        r.choose(3);
        w.categoryChecks[0]->click(); // hide the pictures
        QVERIFY(settled(w));
        QCOMPARE(r.listed(), 2);
        QCOMPARE(marksOf(r.photos), (Marks{1, 1, 1}));
        r.expectSaved(6000);
        QCOMPARE(w.categoryPercents[0]->text(), u"60%"_s); // of everything found
        for (QCheckBox* box : w.categoryChecks) {
            if (box->isChecked()) {
                box->click();
            }
        }
        QVERIFY(settled(w));
        QCOMPARE(r.listed() + w.tableViewDuplicates->model()->rowCount(), 0);
        r.expectSaved(0);
        r.choose(0); // nothing listed: does nothing
        QCOMPARE(marksOf(r.docs), (Marks{1, 1}));
        w.categoryChecks[0]->click();
        QVERIFY(settled(w));
        QCOMPARE(r.listed(), 1);
        r.expectSaved(9000);
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 3);
    }

    void segmentsChosenDuringAnUpdateFoldAndStay() {
        Results r;
        ViewControllerDuplicates& w = *r.w;
        r.select(r.photos);
        const int before = w.updatesStarted();
        // No event is handled between the clicks: the last segment wins.
        r.choose(1, false);
        QVERIFY(w.updating);
        r.choose(2, false);
        QVERIFY(w.selectionChanged);
        r.choose(3);
        QCOMPARE(w.updatesStarted(), before + 2);
        QVERIFY(!w.selectionChanged);
        QCOMPARE(marksOf(r.photos), (Marks{1, 1, 1}));
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 3);
        r.expectSaved(9000);
        // An option picked during a full update (as after a cleaning) stays.
        QCOMPARE(r.row(r.photos), 0);
        w.firstUpdate = true;
        r.choose(1, false);
        QVERIFY(w.updating);
        r.choose(2);
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 2);
        QCOMPARE(r.photos->keepOption, std::int64_t{2});
        QCOMPARE(marksOf(r.photos), (Marks{1, 1, 0}));
    }

    void customWindowOkCancelAndTheKeepOneQuestion() {
        Results r;
        ViewControllerDuplicates& w = *r.w;
        r.select(r.photos);
        r.choose(1);
        QString shownFolder;
        r.answers.on<ViewControllerCustomKeep>([&](ViewControllerCustomKeep* custom) {
            shownFolder = custom->textFieldCustomFilePath->text();
            custom->buttonCancel->click();
        });
        r.choose(4, false);
        QCOMPARE(shownFolder.toStdString(), r.photos->path.substr(0, r.photos->path.rfind('/')));
        // Cancel: the group's option comes back and is applied again.
        QCOMPARE(w.segmentedControlKeep->selectedSegment(), 1);
        QVERIFY(settled(w));
        QCOMPARE(marksOf(r.photos), (Marks{1, 0, 1}));

        // OK with the type rule on: every photo matches, none is spared.
        r.answers.on<ViewControllerCustomKeep>([](ViewControllerCustomKeep* custom) {
            custom->checkCustomFileTypes->setChecked(true);
            custom->textFieldExtension->setText(u"JPG"_s);
            custom->OncustomFileTypesAddFileExtension();
            custom->buttonOk->click();
        });
        r.choose(4);
        QCOMPARE(marksOf(r.photos), (Marks{1, 1, 1}));
        QCOMPARE(marksOf(r.docs), (Marks{0, 0}));

        // For every group the question comes once, after OK, before the update.
        w.checkApplyForAll->click();
        int storedRules = 0;
        r.answers.on<ViewControllerCustomKeep>([&](ViewControllerCustomKeep* custom) {
            storedRules = custom->tableViewCustomFileTypes->count(); // the group's own
            custom->buttonOk->click();
        });
        r.answers.alert(u"Yes, keep the oldest file"_s);
        r.choose(4);
        QVERIFY(r.answers.allAnswered());
        QCOMPARE(storedRules, 1);
        QCOMPARE(r.answers.said,
                 QStringList{u"Do you want to keep at least one copy of each duplicate file?"_s});
        QCOMPARE(marksOf(r.photos), (Marks{1, 0, 1}));
        QCOMPARE(marksOf(r.songs), (Marks{0, 0}));
    }

    void cleaningToTheTrashThenForGoodUntilTheLastGroup() {
        Results r;
        ViewControllerDuplicates& w = *r.w;
        r.clean({"OK"});
        // Marks only in a hidden category count as nothing.
        r.select(r.photos);
        r.tick(1);
        w.categoryChecks[0]->click();
        QVERIFY(settled(w));
        r.clean({"OK"});
        QCOMPARE(r.answers.said, QStringList(2, kNothingMarked));
        w.categoryChecks[0]->click();
        QVERIFY(settled(w));
        // One copy to the Trash: no question, then the done message.
        std::vector<std::string> gone{r.photos->duplicates[1]->path};
        r.clean({"OK"});
        QCOMPARE(r.answers.said.back(), kDone);
        QVERIFY(settled(w));
        QCOMPARE(snapshot(r.tree.root()), without(r.before, gone));
        QVERIFY(std::filesystem::exists(qgetenv("XDG_DATA_HOME").toStdString() +
                                        "/Trash/files/photo.jpg"));
        QCOMPARE(r.listed(), 3);

        // One document and both songs for good: the whole-group question first.
        SettingsManager::shared()->moveToTrash = false;
        r.select(r.docs);
        r.tick(1);
        r.select(r.songs);
        r.tick(0);
        r.tick(1);
        const Snapshot trashed = snapshot(r.tree.root());
        r.answers.said.clear();
        r.clean({"Yes", "No"});
        QCOMPARE(r.answers.said, (QStringList{kWholeGroups, kPermanentDeletion}));
        QCOMPARE(snapshot(r.tree.root()), trashed);
        gone.insert(gone.end(), {r.docs->duplicates[1]->path, r.songs->duplicates[0]->path,
                                 r.songs->duplicates[1]->path});
        r.clean({"Yes", "Yes", "OK"});
        QCOMPARE(r.answers.said.back(), kDone);
        QVERIFY(settled(w));
        QCOMPARE(snapshot(r.tree.root()), without(r.before, gone));
        // Groups left with one copy or none are gone; the rest is listed anew.
        QCOMPARE(SettingsManager::shared()->duplicateFileList, FileList{r.photos});
        QCOMPARE(r.listed(), 1);
        QCOMPARE(w.categoryPercents[0]->text(), u"100%"_s);

        // Cleaning the last group closes the window, which empties the lists.
        r.select(r.photos);
        r.choose(2); // keep the newest of the two left
        gone.push_back(r.photos->duplicates[0]->path);
        r.clean({"Yes", "OK"});
        QVERIFY(!w.isVisible());
        QVERIFY(SettingsManager::shared()->duplicateFileList.empty());
        QCOMPARE(snapshot(r.tree.root()), without(r.before, gone));
    }

    void keyboardMarksAndNeitherRevealNorReturnOpensFiles() {
        // No session bus here: revealing opens the folder itself.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        QDesktopServices::setUrlHandler(u"file"_s, this, "openedUrl");
        Results r;
        ViewControllerDuplicates& w = *r.w;
        QCOMPARE(commandsWithoutShortcut(w.menuBar()), QStringList());
        r.select(r.photos);
        QTableView* members = w.tableViewDuplicates;
        const int updates = w.updatesStarted();
        // Space marks from any column; no results update runs for a hand mark.
        for (int column = 0; column < members->model()->columnCount(); ++column) {
            members->setCurrentIndex(members->model()->index(1, column));
            typeKey(members, Qt::Key_Space);
            QCOMPARE(marksOf(r.photos), (Marks{0, column % 2 == 0 ? 1 : 0, 0}));
        }
        QCOMPARE(r.count(r.photos), u"1/3"_s);
        QVERIFY(settled(w));
        r.expectSaved(3000);
        QCOMPARE(w.updatesStarted(), updates);
        r.select(r.docs); // another group keeps its own marks
        r.select(r.photos);
        QCOMPARE(marksOf(r.photos), (Marks{0, 1, 0}));
        // Return in either table neither reveals nor opens anything; Tab leaves.
        for (QTableView* table : {w.tableViewFiles, members}) {
            typeKey(table, Qt::Key_Return);
            typeKey(table, Qt::Key_Enter);
            QApplication::processEvents();
            QCOMPARE(QApplication::activeModalWidget(), &w);
            typeKey(table, Qt::Key_Tab);
            QVERIFY(!table->hasFocus());
        }
        members->setCurrentIndex({});
        w.buttonReveal->click(); // no member selected: nothing to show
        QVERIFY(opened_.isEmpty());
        // The member the commands act on looks like any other (the boxes
        // tell the marks); ticking its box, by a click, makes it that member.
        w.tableViewFiles->setFocus();
        const QImage plain = members->viewport()->grab().toImage();
        for (int row : {1, 2}) {
            members->selectRow(row);
            members->setCurrentIndex(members->model()->index(row, 1));
            QCOMPARE(members->viewport()->grab().toImage(), plain);
        }
        members->setCurrentIndex({});
        const QRect box = members->visualRect(members->model()->index(2, 0));
        QTest::mouseClick(members->viewport(), Qt::LeftButton, {}, box.center());
        QCOMPARE(marksOf(r.photos), (Marks{0, 1, 1}));
        w.buttonReveal->click();
        QDesktopServices::unsetUrlHandler(u"file"_s);
        const std::string path = r.photos->duplicates[2]->path;
        QCOMPARE(opened_, QList<QUrl>{QUrl::fromLocalFile(
                              QString::fromStdString(path.substr(0, path.rfind('/'))))});
        // File Info shows the selected member.
        r.answers.then("twinsweep::ui::ViewControllerInfo", [](QWidget* info) { info->close(); });
        typeKey(members, Qt::Key_I, Qt::ControlModifier);
        QVERIFY(r.answers.allAnswered());
        QCOMPARE(SettingsManager::shared()->currentSelectedFilePath, path);
        r.tick(0); // a tick however it comes
        r.answers.then("twinsweep::ui::ViewControllerInfo", [](QWidget* info) { info->close(); });
        w.buttonInfo->click();
        QCOMPARE(SettingsManager::shared()->currentSelectedFilePath, r.photos->duplicates[0]->path);
        // The keep options and apply-to-all from the keyboard.
        typeKey(w.tableViewFiles, Qt::Key_3, Qt::ControlModifier);
        QVERIFY(settled(w));
        QCOMPARE(marksOf(r.photos), (Marks{1, 1, 0}));
        typeKey(w.tableViewFiles, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(w.checkApplyForAll->isChecked());
    }

  private:
    QList<QUrl> opened_;
};

UI_TEST_MAIN(DuplicatesWindowTest)

#include "DuplicatesWindowTest.moc"
