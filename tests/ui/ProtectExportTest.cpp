// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCheckBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPushButton>
#include <QSignalSpy>

#include "UiTestSupport.h"
#include "selection/KeepOptions.h"
#include "support/Csv.h"
#include "ui/main/ViewController.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using namespace twinsweep::ui;

// Protected copies, the results window's export, hard links and Undo Clean.
class ProtectExportTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup() {
        const auto settings = SettingsManager::shared();
        settings->duplicateFileList.clear();
        settings->protectedFolders.clear();
        settings->moveToTrash = true;
        settings->replaceWithHardLinks = false;
    }

    void protectedCopiesCannotBeTickedOrCleaned() {
        FoundDuplicates found;
        for (const char* p : {"dl/a.jpg", "photos/a.jpg", "photos/b.jpg"}) {
            found.tree.write(p, std::string(500, 'p'));
        }
        found.tree.write("dl/song.mp3", "tune");
        found.tree.write("music/song.mp3", "tune");
        const auto settings = SettingsManager::shared();
        settings->protectedFolders = {found.tree.path("photos")};
        settings->moveToTrash = false;
        QCOMPARE(found.search(), std::size_t{2});
        const Snapshot before = snapshot(found.tree.root());
        ViewControllerDuplicates& w = found.open();
        const FilePtr pictures = w.fileList[0], songs = w.fileList[1];
        QCOMPARE(pictures->duplicates.size(), std::size_t{3});
        const auto protectedMarked = [&] {
            return std::any_of(pictures->duplicates.begin(), pictures->duplicates.end(),
                               [](const auto& m) { return m->isProtected && m->checkState != 0; });
        };

        // The two copies in the protected folder have no box to tick, and say why.
        QAbstractItemModel* members = w.tableViewDuplicates->model();
        QStringList tickable;
        for (int row = 0; row < members->rowCount(); ++row) {
            const QModelIndex box = members->index(row, 0);
            if (members->flags(box) & (Qt::ItemIsEnabled | Qt::ItemIsUserCheckable)) {
                tickable << cell(w.tableViewDuplicates, row, 1);
            } else {
                QVERIFY(box.data(Qt::ToolTipRole).toString().contains(u"protected"_s));
                QVERIFY(!members->setData(box, Qt::Checked, Qt::CheckStateRole));
            }
        }
        QCOMPARE(tickable, QStringList{QString::fromStdString(found.tree.path("dl/a.jpg"))});

        // Ticks while a category change is on its way, the songs still shown:
        // whatever row they land on, a protected copy stays unmarked.
        w.tableViewFiles->selectRow(1);
        QCOMPARE(cell(w.tableViewDuplicates, 0, 1).toStdString(), songs->duplicates[0]->path);
        w.categoryChecks[4]->click(); // documents: neither group
        for (int row = 0; row < 2; ++row) {
            members->setData(members->index(row, 0), Qt::Checked, Qt::CheckStateRole);
        }
        QVERIFY(!protectedMarked());
        // A tick belongs to the group whose box was clicked.
        QCOMPARE(markedCount(*pictures), std::int64_t{0});
        QVERIFY(settled(w));
        w.tableViewFiles->selectRow(1);
        w.segmentedControlKeep->segmentButton(0)->click(); // the songs unmarked again
        QVERIFY(settled(w));

        // Remove All marks the one unprotected copy; no whole-group question.
        w.tableViewFiles->selectRow(0);
        w.segmentedControlKeep->segmentButton(3)->click();
        QVERIFY(settled(w));
        QCOMPARE(markedCount(*pictures), std::int64_t{1});
        QVERIFY(!protectedMarked());
        ModalAnswers answers;
        answers.alert(u"Yes"_s);
        answers.alert(u"OK"_s);
        w.buttonClean->click();
        QVERIFY(answers.allAnswered());
        QVERIFY(answers.said.front().contains(u"permanently"_s));
        QCOMPARE(snapshot(found.tree.root()), without(before, {found.tree.path("dl/a.jpg")}));
        QVERIFY(settled(w)); // the update after the clean
        QCOMPARE(w.fileList, FileList{songs}); // protected copies alone are not listed
    }

    void exportsReadBackWithTheirMarks() {
        Results r;
        ViewControllerDuplicates& w = *r.w;
        w.checkApplyForAll->click();
        r.choose(1); // keep the oldest in every group
        TempTree out;
        QSignalSpy finished(&w, &ViewControllerDuplicates::exportFinished);
        w.startExport(QString::fromStdString(out.path("d.csv")), ui::ExportFormat::Csv);
        w.startExport(QString::fromStdString(out.path("d.json")), ui::ExportFormat::Json);
        QVERIFY(finished.wait(20000) && (finished.size() == 2 || finished.wait(20000)));
        QCOMPARE(finished.at(0).at(0).toString() + finished.at(1).at(0).toString(), QString());

        // Each member as "group path marked": as held, and as each file reads back.
        QStringList held, csv, json;
        for (std::size_t g = 0; g < w.fileList.size(); ++g) {
            for (const auto& m : w.fileList[g]->duplicates) {
                held << QString::fromStdString(std::to_string(g + 1) + ' ' + m->path + ' ' +
                                               (m->checkState == 1 ? '1' : '0'));
            }
        }
        std::vector<std::vector<std::string>> rows;
        QVERIFY(parseCsv(slurp(out.path("d.csv")), rows));
        QCOMPARE(rows.at(0).back(), "size_only");
        for (std::size_t r = 1; r < rows.size(); ++r) {
            csv << QString::fromStdString(rows[r][0] + ' ' + rows[r][1] + ' ' + rows[r][5]);
        }
        const QJsonArray groups =
            QJsonDocument::fromJson(QByteArray::fromStdString(slurp(out.path("d.json"))))["groups"]
                .toArray();
        for (int g = 0; g < groups.size(); ++g) {
            for (const QJsonValue m : groups[g]["members"].toArray()) {
                json << QString::number(g + 1) + ' ' + m["path"].toString() + ' ' +
                            (m["marked"].toBool() ? '1' : '0');
            }
        }
        QCOMPARE(held.size(), 7);
        QCOMPARE(csv, held);
        QCOMPARE(json, held);

        // A folder that isn't there: an alert, and nothing half written.
        r.answers.alert(u"OK"_s);
        w.startExport(QString::fromStdString(out.path("none/d.csv")), ui::ExportFormat::Csv);
        QVERIFY(finished.wait(20000));
        QVERIFY(!finished.back().at(0).toString().isEmpty());
        QVERIFY(r.answers.allAnswered() && !std::filesystem::exists(out.path("none")));
    }

    void linksAskNothingAndUndoPutsTrashedCopiesBack() {
        const auto settings = SettingsManager::shared();
        settings->replaceWithHardLinks = true; // as the main window's choice sets it
        settings->moveToTrash = false;
        {
            // Keep oldest with links: each group becomes one file under its names.
            Results r;
            r.w->checkApplyForAll->click();
            r.choose(1);
            r.clean({"OK"}); // the done message alone
            QVERIFY(!r.w->isVisible());
            QCOMPARE(snapshot(r.tree.root()), r.before);
            QVERIFY(
                std::filesystem::equivalent(r.tree.path("a/song.mp3"), r.tree.path("c/song.mp3")));
        }
        // Now to the Trash, then Edit > Undo Clean in the main window.
        settings->replaceWithHardLinks = false;
        settings->moveToTrash = true;
        Results r;
        r.w->checkApplyForAll->click();
        r.choose(1);
        r.clean({"OK"});
        QCOMPARE(snapshot(r.tree.root()).size(), r.before.size() - 4);
        ViewController main;
        QVERIFY(main.actionUndoClean->isEnabled());
        r.answers.alert(u"OK"_s);
        main.actionUndoClean->trigger();
        QCOMPARE(r.answers.said.back(), u"4 files were put back where they were."_s);
        QCOMPARE(snapshot(r.tree.root()), r.before);
        QVERIFY(!main.actionUndoClean->isEnabled());
    }
};

UI_TEST_MAIN(ProtectExportTest)

#include "ProtectExportTest.moc"
