// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAction>
#include <QCheckBox>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <chrono>
#include <thread>

#include "UiTestSupport.h"
#include "selection/KeepOptions.h"
#include "support/Csv.h"
#include "ui/info/ViewControllerInfo.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using namespace twinsweep::ui;

namespace {

// The file names of the groups as the table shows them, top to bottom.
QStringList shownNames(QTableView* table) {
    QStringList names;
    for (int row = 0; row < table->model()->rowCount(); ++row) {
        names << cell(table, row, GroupsModel::ColumnName);
    }
    return names;
}

void clickHeader(QTableView* table, int section) {
    QHeaderView* header = table->horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(section) + 5, 5));
}

QStringList texts(const QMenu& menu) {
    QStringList out;
    for (const QAction* action : menu.actions()) {
        if (!action->isSeparator()) {
            out << action->text() + (action->isEnabled() ? QString() : u" (off)"_s);
        }
    }
    return out;
}

QAction* action(const QMenu& menu, const QString& text) {
    for (QAction* a : menu.actions()) {
        if (a->text() == text) {
            return a;
        }
    }
    return nullptr;
}

} // namespace

// Reviewing many groups: sorting, the filter, totals, the row menu and the
// size-only mark.
class ResultsReviewTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup() {
        const auto settings = SettingsManager::shared();
        settings->duplicateFileList.clear();
        settings->protectedFolders.clear();
        settings->listFolderPaths.clear();
        settings->compareLargeFilesByContent = false;
    }

    void sortFilterAndTotals() {
        Results r;
        ViewControllerDuplicates& w = *r.w;
        QTableView* groups = w.tableViewFiles;
        const QStringList searched = shownNames(groups);
        QCOMPARE(searched.size(), 3);
        QCOMPARE(w.labelTotals->text(), u"3 groups, 7 copies, 14.6 KB"_s);

        // Size: smallest first, then largest first, then the search's order again.
        clickHeader(groups, GroupsModel::ColumnSize);
        QCOMPARE(shownNames(groups), (QStringList{u"song.mp3"_s, u"report.pdf"_s, u"photo.jpg"_s}));
        clickHeader(groups, GroupsModel::ColumnSize);
        QCOMPARE(shownNames(groups), (QStringList{u"photo.jpg"_s, u"report.pdf"_s, u"song.mp3"_s}));
        // The top row is the photos wherever they sit in the list.
        groups->selectRow(0);
        QCOMPARE(w.selectedRow, r.row(r.photos));
        QCOMPARE(cell(w.tableViewDuplicates, 0, 1).toStdString(), r.photos->duplicates[0]->path);
        clickHeader(groups, GroupsModel::ColumnSize);
        QCOMPARE(shownNames(groups), searched);
        clickHeader(groups, GroupsModel::ColumnName);
        QCOMPARE(shownNames(groups), (QStringList{u"photo.jpg"_s, u"report.pdf"_s, u"song.mp3"_s}));

        // The filter: any member's path, in any case.
        w.textFieldFilter->setText(u"REPORT"_s);
        QCOMPARE(shownNames(groups), QStringList{u"report.pdf"_s});
        QCOMPARE(w.labelTotals->text(), u"1 of 3 groups, 2 copies, 3.9 KB"_s);
        QCOMPARE(w.selectedRow, r.row(r.docs)); // the members table follows
        w.textFieldFilter->setText(u"/c/"_s);
        QCOMPARE(shownNames(groups), (QStringList{u"photo.jpg"_s, u"song.mp3"_s}));
        w.textFieldFilter->setText(u"nowhere"_s);
        QCOMPARE(groups->model()->rowCount(), 0);
        QCOMPARE(w.labelTotals->text(), u"0 of 3 groups, 0 copies, 0 B"_s);
        r.choose(kRemoveAll); // no group is selected: nothing to mark
        QCOMPARE(markedCount(*r.photos) + markedCount(*r.docs) + markedCount(*r.songs), 0);
        w.textFieldFilter->clear();
        QCOMPARE(groups->model()->rowCount(), 3);

        // The copies sort too: by date as the dates read (the second photo
        // is the oldest), by path backwards; a tick lands on the copy shown.
        r.select(r.photos);
        QTableView* members = w.tableViewDuplicates;
        clickHeader(members, 2);
        QCOMPARE(cell(members, 0, 1).toStdString(), r.photos->duplicates[1]->path);
        QCOMPARE(cell(members, 2, 1).toStdString(), r.photos->duplicates[2]->path);
        clickHeader(members, 1);
        clickHeader(members, 1);
        QCOMPARE(cell(members, 0, 1).toStdString(), r.tree.path("c/photo.jpg"));
        r.tick(0);
        for (const DuplicateFilePtr& m : r.photos->duplicates) {
            QCOMPARE(m->checkState.load(), m->path == r.tree.path("c/photo.jpg") ? 1 : 0);
        }
        r.tick(0);
        r.select(r.docs); // the order holds for the next group
        QCOMPARE(cell(members, 0, 1).toStdString(), r.tree.path("b/report.pdf"));
        clickHeader(members, 1); // the group's own order again
        QCOMPARE(cell(members, 0, 1).toStdString(), r.docs->duplicates[0]->path);

        // A keep option for all still marks every group, sorted or not.
        w.checkApplyForAll->click();
        r.choose(kRemoveAll);
        QCOMPARE(cell(groups, 0, GroupsModel::ColumnCount), u"3/3"_s);
        QCOMPARE(cell(groups, 2, GroupsModel::ColumnCount), u"2/2"_s);
    }

    void rowMenuMarksInformsAndProtects() {
        Results r;
        ViewControllerDuplicates& w = *r.w;
        r.select(r.photos);
        QTableView* members = w.tableViewDuplicates;
        const auto menuAt = [&](QTableView* table, int row) {
            return std::unique_ptr<QMenu>(
                w.contextMenuAt(table, table->visualRect(table->model()->index(row, 1)).center()));
        };
        QVERIFY(!w.contextMenuAt(members, QPoint(5, members->viewport()->height() - 2)));
        std::unique_ptr<QMenu> menu = menuAt(members, 1);
        QCOMPARE(texts(*menu), (QStringList{u"File Info"_s, u"Show in File Manager"_s, u"Mark"_s,
                                            u"Unmark (off)"_s, u"Protect This Folder"_s}));
        action(*menu, u"Mark"_s)->trigger();
        QCOMPARE(marksOf(r.photos), (std::vector<std::int64_t>{0, 1, 0}));
        QVERIFY(settled(w));
        QCOMPARE(r.count(r.photos), u"1/3"_s);
        r.expectSaved(3000);
        menu = menuAt(members, 1);
        QCOMPARE(texts(*menu),
                 (QStringList{u"File Info"_s, u"Show in File Manager"_s, u"Mark (off)"_s,
                              u"Unmark"_s, u"Protect This Folder"_s}));
        action(*menu, u"Unmark"_s)->trigger();
        QCOMPARE(marksOf(r.photos), (std::vector<std::int64_t>{0, 0, 0}));

        // File Info from a group's row: its head, with the path.
        std::string infoPath;
        r.answers.on<ViewControllerInfo>([&](ViewControllerInfo* info) {
            infoPath = info->labelPath->text().toStdString();
            info->close();
        });
        menu = menuAt(w.tableViewFiles, r.row(r.docs));
        QCOMPARE(w.selectedRow, r.row(r.docs));
        action(*menu, u"File Info"_s)->trigger();
        QVERIFY(r.answers.allAnswered());
        QCOMPARE(infoPath, r.docs->path);

        // Protecting b/: its copies are unmarked, never marked again, and the
        // folder is listed and protected for the next search.
        r.select(r.photos);
        r.choose(kRemoveAll);
        const int inB = r.photos->duplicates[1]->path == r.tree.path("b/photo.jpg") ? 1 : 2;
        menu = menuAt(members, inB);
        action(*menu, u"Protect This Folder"_s)->trigger();
        QVERIFY(settled(w));
        const auto settings = SettingsManager::shared();
        QCOMPARE(settings->protectedFolders, std::vector<std::string>{r.tree.path("b")});
        QCOMPARE(settings->listFolderPaths, std::vector<std::string>{r.tree.path("b")});
        QVERIFY(r.photos->duplicates[static_cast<std::size_t>(inB)]->isProtected);
        QVERIFY(
            r.docs->duplicates[r.docs->duplicates[0]->path == r.tree.path("b/report.pdf") ? 0 : 1]
                ->isProtected);
        QCOMPARE(r.count(r.photos), u"2/3"_s);
        r.choose(kRemoveAll);
        QCOMPARE(r.count(r.photos), u"2/3"_s);
        menu = menuAt(members, inB);
        QCOMPARE(texts(*menu),
                 (QStringList{u"File Info"_s, u"Show in File Manager"_s, u"Mark (off)"_s,
                              u"Unmark (off)"_s, u"Protect This Folder (off)"_s}));
        QCOMPARE(snapshot(r.tree.root()), r.before);
    }

    void exactTimeBoxKeepsTheTrueOriginal() {
        FoundDuplicates found;
        const std::string original = found.tree.write("dl/report.pdf", "report");
        // Longer than a clock tick: file times come from the coarse clock.
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        const std::string copy = found.tree.write("dl/report (1).pdf", "report");
        QCOMPARE(found.search(), std::size_t{1});
        const FilePtr group = SettingsManager::shared()->duplicateFileList.front();
        // Three seconds apart across noon, as the 12-hour texts show them.
        for (const DuplicateFilePtr& m : group->duplicates) {
            m->date = m->path == original ? "24-05-01 11:59:59" : "24-05-01 12:00:02";
        }
        const auto kept = [&] {
            std::vector<std::string> out;
            for (const DuplicateFilePtr& m : group->duplicates) {
                if (m->checkState == 0) {
                    out.push_back(m->path);
                }
            }
            return out;
        };
        ViewControllerDuplicates& w = found.open();
        w.segmentedControlKeep->segmentButton(kKeepOldest)->click();
        QVERIFY(settled(w));
        QCOMPARE(kept(), std::vector<std::string>{copy}); // the dates shown mislead
        SettingsManager::shared()->exactKeepTimes = true; // as the main window's box sets it
        w.segmentedControlKeep->segmentButton(kKeepAll)->click();
        w.segmentedControlKeep->segmentButton(kKeepOldest)->click();
        QVERIFY(settled(w));
        SettingsManager::shared()->exactKeepTimes = false;
        QCOMPARE(kept(), std::vector<std::string>{original});
    }

    void sizeOnlyGroupsAreMarkedInTheWindowAndTheExports() {
        FoundDuplicates found;
        // Two different 100 MiB backups (sparse) and two equal small files.
        for (const char* name : {"a.bak", "b.bak"}) {
            std::filesystem::resize_file(found.tree.write(name, name), 104857600);
        }
        found.tree.write("c.txt", "same");
        found.tree.write("d.txt", "same");
        QCOMPARE(found.search(), std::size_t{2});
        ViewControllerDuplicates& w = found.open();
        QTableView* groups = w.tableViewFiles;
        const int big = cell(groups, 0, GroupsModel::ColumnName).endsWith(u".bak"_s) ? 0 : 1;
        QCOMPARE(cell(groups, big, GroupsModel::ColumnSize, Qt::ToolTipRole),
                 u"Matched by size only; contents not compared"_s);
        QVERIFY(!groups->model()
                     ->index(big, GroupsModel::ColumnSize)
                     .data(Qt::DecorationRole)
                     .isNull());
        QVERIFY(cell(groups, big, GroupsModel::ColumnName, Qt::ToolTipRole)
                    .endsWith(u"\nMatched by size only; contents not compared"_s));
        QCOMPARE(cell(groups, 1 - big, GroupsModel::ColumnSize, Qt::ToolTipRole), QString());
        QVERIFY(groups->model()
                    ->index(1 - big, GroupsModel::ColumnSize)
                    .data(Qt::DecorationRole)
                    .isNull());
        // The dates say what they are.
        QCOMPARE(w.tableViewDuplicates->model()->headerData(2, Qt::Horizontal, Qt::ToolTipRole),
                 QVariant(u"When each copy was created (its modification date where the file "
                          "system keeps no creation date)"_s));

        TempTree out;
        QSignalSpy finished(&w, &ViewControllerDuplicates::exportFinished);
        w.startExport(QString::fromStdString(out.path("d.csv")), ui::ExportFormat::Csv);
        w.startExport(QString::fromStdString(out.path("d.json")), ui::ExportFormat::Json);
        QVERIFY(finished.wait(20000) && (finished.size() == 2 || finished.wait(20000)));
        std::vector<std::vector<std::string>> rows;
        QVERIFY(parseCsv(slurp(out.path("d.csv")), rows));
        QCOMPARE(rows.at(0), (std::vector<std::string>{"group", "path", "size", "date", "category",
                                                       "marked", "size_only"}));
        QStringList csv;
        for (std::size_t k = 1; k < rows.size(); ++k) {
            csv << QString::fromStdString(rows[k][2] + " " + rows[k][6]);
        }
        csv.sort();
        QCOMPARE(csv, (QStringList{u"104857600 1"_s, u"104857600 1"_s, u"4 0"_s, u"4 0"_s}));
        const QJsonArray json =
            QJsonDocument::fromJson(QByteArray::fromStdString(slurp(out.path("d.json"))))["groups"]
                .toArray();
        QCOMPARE(json.size(), 2);
        QCOMPARE(json[big]["sizeOnly"], QJsonValue(true));
        QCOMPARE(json[1 - big]["sizeOnly"], QJsonValue(false));
    }
};

UI_TEST_MAIN(ResultsReviewTest)

#include "ResultsReviewTest.moc"
