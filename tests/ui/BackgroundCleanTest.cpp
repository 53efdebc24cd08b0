// SPDX-License-Identifier: GPL-3.0-or-later
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <set>
#include <unistd.h>

#include "UiTestSupport.h"
#include "removal/UndoHistory.h"
#include "ui/duplicates/CleanProgress.h"
#include "ui/duplicates/MembersModel.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using namespace twinsweep::ui;

namespace {

const QString kDone = u"Duplicate files cleaned successfully. "_s;

// Marks every copy but the first of each group.
void markCopies() {
    for (const FilePtr& g : SettingsManager::shared()->duplicateFileList) {
        for (std::size_t m = 1; m < g->duplicates.size(); ++m) {
            g->duplicates[m]->checkState = 1;
        }
    }
}

// Same size, other bytes: the file is no longer what the search saw.
void rewrite(const std::string& path, char fill) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << std::string(16, fill);
}

} // namespace

// The window's clean: removals off the GUI thread, Stop, and the copies the
// checks left in place.
class BackgroundCleanTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup() {
        const auto settings = SettingsManager::shared();
        settings->duplicateFileList.clear();
        settings->moveToTrash = true;
    }

    void theWindowKeepsRunningAndStopsBetweenTwoRemovals() {
        FoundDuplicates found;
        constexpr int kGroups = 1500;
        for (int i = 0; i < kGroups; ++i) {
            const std::string bytes = "group " + std::to_string(i) + std::string(4096, '.');
            found.tree.write("a/" + std::to_string(i), bytes);
            found.tree.write("b/" + std::to_string(i), bytes);
        }
        const Snapshot before = snapshot(found.tree.root());
        QCOMPARE(found.search(), std::size_t{kGroups});
        ViewControllerDuplicates& w = found.open();
        markCopies();
        std::set<std::string> marked;
        for (const FilePtr& g : SettingsManager::shared()->duplicateFileList) {
            marked.insert(g->duplicates[1]->path);
        }

        // Stop as soon as the progress shows, while the worker removes.
        int ticksWhileCleaning = 0;
        QPointer<CleanProgress> shown;
        QTimer ticker;
        connect(&ticker, &QTimer::timeout, [&] { ticksWhileCleaning += shown ? 1 : 0; });
        ticker.start(1);
        ModalAnswers answers;
        answers.on<CleanProgress>([&](CleanProgress* progress) {
            shown = progress;
            QCOMPARE(progress->buttonStop->text(), u"Stop"_s);
            progress->buttonStop->click();
            QVERIFY(!progress->buttonStop->isEnabled());
        });
        answers.alert(u"OK"_s);
        w.buttonClean->click();
        QVERIFY(answers.allAnswered());
        QCOMPARE(answers.said.size(), 1);
        const QRegularExpressionMatch stopped =
            QRegularExpression(
                u"^Cleaning was stopped: (\\d+) of the 1500 marked copies (was|were) "
                u"moved to the Trash before the stop; the others were left as "
                u"they are\\.$"_s)
                .match(answers.said[0]);
        QVERIFY2(stopped.hasMatch(), qPrintable(answers.said[0]));
        const int removed = stopped.captured(1).toInt();
        QVERIFY2(removed < kGroups, qPrintable(answers.said[0]));

        // Nothing beyond what the alert says went, and only marked copies.
        const Snapshot after = snapshot(found.tree.root());
        std::vector<std::string> gone;
        for (const auto& [path, held] : before) {
            if (after.count(path) == 0) {
                gone.push_back(path);
                QVERIFY2(marked.count(path) == 1, path.c_str());
            }
        }
        QCOMPARE(static_cast<int>(gone.size()), removed);
        QCOMPARE(after, without(before, gone));
        QVERIFY(settled(w));
        QCOMPARE(w.tableViewFiles->model()->rowCount(), kGroups - removed);
        // The undo record holds exactly those.
        const UndoReport undone = undoNewestClean();
        QCOMPARE(static_cast<int>(undone.count), removed);
        QCOMPARE(snapshot(found.tree.root()), before);

        // The rest, to the end (the update after a clean applies the keep
        // option again): the window's own timers run meanwhile.
        markCopies();
        ticksWhileCleaning = 0;
        ModalAnswers rest;
        rest.on<CleanProgress>([&](CleanProgress* progress) { shown = progress; });
        rest.alert(u"OK"_s);
        w.buttonClean->click();
        QVERIFY(rest.allAnswered());
        QCOMPARE(rest.said.last(), kDone);
        QVERIFY2(ticksWhileCleaning > 0, qPrintable(QString::number(ticksWhileCleaning)));
        // Those put back are no longer listed, so they stay.
        QCOMPARE(static_cast<int>(snapshot(found.tree.root()).size()), 2 + kGroups + removed);
        QVERIFY(SettingsManager::shared()->duplicateFileList.empty()); // the window closed
    }

    void copiesLeftInPlaceStayListedMarkedAndAreShown() {
        FoundDuplicates found;
        for (const char* name : {"x", "y", "z"}) {
            found.tree.write(std::string("a/") + name, std::string(16, *name));
            found.tree.write(std::string("b/") + name, std::string(16, *name));
        }
        QCOMPARE(found.search(), std::size_t{3});
        ViewControllerDuplicates& w = found.open();
        markCopies();
        const FilePtr x = found.group("x");
        const std::string markedX = x->duplicates[1]->path;
        const std::string markedZ = found.group("z")->duplicates[1]->path;
        // x's kept copy changed since the search, and y's marked copy.
        rewrite(x->duplicates[0]->path, 'k');
        rewrite(found.group("y")->duplicates[1]->path, 'm');
        const Snapshot before = snapshot(found.tree.root());

        ModalAnswers answers;
        answers.alert(u"OK"_s);
        answers.alert(u"Show Them"_s);
        w.buttonClean->click();
        QVERIFY(answers.allAnswered());
        QCOMPARE(answers.said,
                 (QStringList{kDone, u"2 marked copies were left in place, still listed and "
                                     u"marked:\n1 × no kept copy is left to compare with (a kept "
                                     u"copy: changed since the search, not removed), not "
                                     u"removed\n1 × changed since the search, not removed"_s}));
        // Only z's copy went, to the Trash; x and y stay, marked.
        QCOMPARE(snapshot(found.tree.root()), without(before, {markedZ}));
        QCOMPARE(w.tableViewFiles->model()->rowCount(), 2);
        QCOMPARE(marksOf(x), (std::vector<std::int64_t>{0, 1}));
        QCOMPARE(marksOf(found.group("y")), (std::vector<std::int64_t>{0, 1}));
        // Show Them: the first of them is the current member.
        QCOMPARE(w.fileList[static_cast<std::size_t>(w.selectedRow)], x);
        QCOMPARE(w.tableViewDuplicates->currentIndex().row(), 1);
        QCOMPARE(cell(w.tableViewDuplicates, 1, MembersModel::ColumnPath),
                 QString::fromStdString(markedX));
        QVERIFY(w.isVisible());
    }
};

UI_TEST_MAIN(BackgroundCleanTest)

#include "BackgroundCleanTest.moc"
