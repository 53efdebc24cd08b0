// SPDX-License-Identifier: GPL-3.0-or-later
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>
#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>
#include <unistd.h>

#include "UiTestSupport.h"
#include "engine/NotificationCenter.h"
#include "support/AccessWatch.h"
#include "ui/main/ViewController.h"
#include "ui/progress/ProgressText.h"
#include "ui/progress/ViewControllerProgress.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using namespace twinsweep::ui;

namespace {

// Holds the search thread at its first progress post, so it is surely running.
class SearchGate {
  public:
    ~SearchGate() { release(); }
    void release() {
        open_ = true;
        open_.notify_all();
    }
    bool reached() const { return reached_; }

  private:
    std::atomic<bool> open_{false}, reached_{false};
    twinsweep::ScopedObserver observer_{twinsweep::kUpdateProgress, [this](auto&, auto&) {
                                            reached_ = true;
                                            open_.wait(false);
                                        }};
};

// A home folder under a temporary prefix that the search is allowed to see.
struct SearchTree {
    TempTree tree;
    std::string home;
    SearchTree() {
        LocationGate::setProcessDefault(LocationGate::macLayoutUnder(tree.root()));
        home = tree.mkdir("Users/me");
    }
    ~SearchTree() { LocationGate::setProcessDefault(LocationGate::platformDefault()); }
};

// A shown main window set to search these folders, small files included.
std::unique_ptr<ViewController> searchWindow(const QStringList& folders) {
    auto window = std::make_unique<ViewController>();
    window->show();
    window->addFolders(folders);
    window->sliderMinimumFileSize->setValue(0);
    return window;
}

ViewControllerProgress* progressWindow(QWidget* modal) {
    return qobject_cast<ViewControllerProgress*>(modal);
}

} // namespace

// A search from the main window: progress, cancel, hand-over to the results.
class SearchFlowTest : public QObject {
    Q_OBJECT
  private slots:
    void init() { SettingsManager::shared()->duplicateFileList.clear(); }
    void cleanup() { QVERIFY(SettingsManager::shared()->duplicateFileList.empty()); }

    void searchSaysWhenNothingIsFoundAfterTheProgressWindow() {
        SearchTree where;
        where.tree.write("Users/me/a.txt", std::string(3000, 'a'));
        where.tree.write("Users/me/c.txt", std::string(3000, 'c'));
        where.tree.write("Users/me/.hidden", std::string(3000, 'a'));
        // Outside the allowed roots: never looked at, so no group.
        where.tree.write("elsewhere/a.txt", std::string(3000, 'a'));
        auto window = searchWindow({QString::fromStdString(where.home),
                                    QString::fromStdString(where.tree.path("elsewhere"))});
        ModalAnswers answers;
        bool progressStillUp = true;
        answers.alert(u"OK"_s, [&] {
            progressStillUp = false;
            for (QWidget* w : QApplication::topLevelWidgets()) {
                progressStillUp = progressStillUp || (progressWindow(w) && w->isVisible());
            }
        });
        window->buttonFindDuplicateFiles->click();
        QCOMPARE(answers.said, QStringList{"No duplicate files found."});
        QVERIFY(!progressStillUp && !SettingsManager::shared()->openDuplicatesWindow);
    }

    void minimisedProgressKeepsItsSessionAndCancelWaitsForTheSearch() {
        SearchTree where;
        where.tree.write("Users/me/a.txt", std::string(3000, 'a'));
        where.tree.write("Users/me/b.txt", std::string(3000, 'a'));
        auto window = searchWindow({QString::fromStdString(where.home)});
        SearchGate gate;
        ModalAnswers answers;
        QString buttonAfterCancel;
        bool minimisedAndRunning = false, restoredOnClosing = false, stayedOpen = false;
        answers.on<ViewControllerProgress>([&](ViewControllerProgress* progress) {
            QObject::connect(progress, &QDialog::finished, progress,
                             [&, progress] { restoredOnClosing = !progress->isMinimized(); });
            QVERIFY(waitUntil([&] { return gate.reached(); }));
            progress->findChild<QAction*>(u"actionMinimize"_s)->trigger();
            QTRY_VERIFY(progress->isMinimized());
            minimisedAndRunning =
                progress->isMinimized() && QApplication::activeModalWidget() == progress;
            progress->buttonCancelSearch->click();
            buttonAfterCancel = progress->buttonCancelSearch->isEnabled()
                                    ? QString()
                                    : progress->buttonCancelSearch->text();
            QVERIFY(SettingsManager::shared()->searchCanceledByUser);
            // The close button cancels too, but the window waits for the search.
            progress->close();
            QTest::keyClick(progress, Qt::Key_Escape);
            QApplication::processEvents();
            stayedOpen = progress->isVisible();
            gate.release();
        });
        window->buttonFindDuplicateFiles->click();
        QVERIFY(minimisedAndRunning && stayedOpen && restoredOnClosing);
        QCOMPARE(buttonAfterCancel, u"Cancelling..."_s);
        // No alert and no results window (either would wait here unanswered).
        QVERIFY(answers.allAnswered());
        QVERIFY(!SettingsManager::shared()->openDuplicatesWindow);
    }

    void progressTellsBytesComparedOfLargeFiles();

    void percentageFollowsFilesThenBytes() {
        // During the walk nothing can be measured: the bar moves without an amount.
        const ProgressTexts walking = progressTexts(120, 0, 0, 0);
        QVERIFY(walking.busy);
        QCOMPARE(walking.filesScanned + u' ' + walking.percents, u"0/120 Files Scaned 0.0%"_s);
        // No bytes to compare: the files checked.
        const ProgressTexts files = progressTexts(6, 3, 0, 0);
        QCOMPARE(files.percents + (files.busy ? u" busy"_s : QString()), u"50.0%"_s);
        // Once the bytes are known, they alone.
        const ProgressTexts bytes = progressTexts(6, 5, 1, 4);
        QCOMPARE(bytes.filesScanned + u' ' + bytes.percents, u"5/6 Files Scaned 25.0%"_s);
        QCOMPARE(bytes.percent, 25.0f);
        QCOMPARE(progressTexts(6, 6, 9, 8).percents, u"100.0%"_s); // a file grew meanwhile
    }

    void resultsCountWhatTheSearchCouldNotRead() {
        SearchTree where;
        for (const char* name : {"a", "b", "c", "d", "e"}) {
            where.tree.write(std::string("Users/me/") + name, std::string(64, 't'));
        }
        // Once the walk has all five, e goes: the comparison can't read it.
        std::atomic<bool> gone{false};
        ScopedObserver vanish(kUpdateProgress, [&](const std::string&, const UserInfo& info) {
            if (info.at(kTotalFiles) == 5 && !gone.exchange(true)) {
                ::unlink(where.tree.path("Users/me/e").c_str());
            }
        });
        auto window = searchWindow({QString::fromStdString(where.home)});
        ModalAnswers answers;
        QString said, tip;
        bool hidden = true;
        answers.then("twinsweep::ui::ViewControllerDuplicates", [&](QWidget* modal) {
            auto* results = qobject_cast<ViewControllerDuplicates*>(modal);
            QVERIFY(results != nullptr);
            said = results->textFieldUnread->text();
            tip = results->textFieldUnread->toolTip();
            hidden = results->textFieldUnread->isHidden();
            modal->close();
        });
        window->buttonFindDuplicateFiles->click();
        QCOMPARE(said, u"1 item could not be read"_s);
        QVERIFY(!hidden);
        QCOMPARE(tip, QString::fromStdString(
                          "Ooops! Something went wrong: " + where.tree.path("Users/me/e") +
                          ": No such file or directory"));
        QCOMPARE(SettingsManager::shared()->searchRefusals.size(), 1U);
        // A search that read everything shows no count.
        FoundDuplicates found;
        found.tree.write("x", "same");
        found.tree.write("y", "same");
        SettingsManager::shared()->searchRefusals.clear();
        QCOMPARE(found.search(), 1U);
        QVERIFY(found.open().textFieldUnread->isHidden());
        found.shown.reset();
        SettingsManager::shared()->duplicateFileList.clear();
    }
};

void SearchFlowTest::progressTellsBytesComparedOfLargeFiles() {
    SearchTree where;
    // Three pairs of copies, of three sizes, compared largest first. The
    // first read in the middle pair's folder is held, so the bytes stop at
    // nearly all done while half the files are, for as long as the estimate
    // needs to show (20 s at most).
    std::string body(16 << 20, 'x');
    where.tree.write("Users/me/a1", body + "a");
    where.tree.write("Users/me/a2", body + "a");
    where.tree.write("Users/me/small/b1", body.substr(0, 1 << 20));
    where.tree.write("Users/me/small/b2", body.substr(0, 1 << 20));
    where.tree.write("Users/me/c1", body.substr(0, 4096));
    where.tree.write("Users/me/c2", body.substr(0, 4096));
    std::atomic<bool> estimated{false}, held{false};
    AccessWatch reads(where.tree.path("Users/me/small"), true);
    std::thread holder([&] {
        held = reads.holdFirstAccess([&] {
            for (int i = 0; i < 1000 && !estimated; ++i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        });
    });
    auto window = searchWindow({QString::fromStdString(where.home)});

    ModalAnswers answers;
    // What the window showed at once: the bytes line, the percentage, the bar
    // (-1 while it moves without an amount).
    QStringList shown;
    answers.then("twinsweep::ui::ViewControllerProgress", [&](QWidget* modal) {
        ViewControllerProgress* progress = progressWindow(modal);
        QVERIFY(progress != nullptr);
        auto* watch = new QTimer(progress);
        QObject::connect(watch, &QTimer::timeout, progress, [&, progress] {
            const QString line = progress->textFieldBytesCompared->text();
            estimated = estimated || line.endsWith(QStringLiteral(" left"));
            const QProgressBar* bar = progress->progressIndicator;
            const QString now = line + u'|' + progress->textFieldPercents->text() + u'|' +
                                QString::number(bar->maximum() == 100 ? bar->value() : -1);
            if (shown.isEmpty() || shown.back() != now) {
                shown.push_back(now);
            }
        });
        watch->start(2);
    });
    answers.then("twinsweep::ui::ViewControllerDuplicates", [](QWidget* modal) { modal->close(); });
    window->buttonFindDuplicateFiles->click();
    holder.join();

    // Moving without an amount during the walk (if the window saw it); then
    // bytes of the 34 MB, the percentage those same bytes, the bar with it.
    const QRegularExpression walk(QStringLiteral("^\\|0\\.0%\\|-1$"));
    const QRegularExpression compare(QStringLiteral(
        "^(\\d+(\\.\\d)?) ([KM]?B) of 34\\.0 MB compared(, about \\d+ (s|min) left)?\\|"
        "(\\d+\\.\\d)%\\|(\\d+)$"));
    int partial = 0;
    for (const QString& at : shown) {
        if (walk.match(at).hasMatch()) {
            continue;
        }
        const auto match = compare.match(at);
        QVERIFY2(match.hasMatch(), qPrintable(at));
        const double unit = match.captured(3) == u"MB"_s   ? 1.0
                            : match.captured(3) == u"KB"_s ? 1.0 / 1024
                                                           : 1.0 / (1024 * 1024);
        const double percent = match.captured(6).toDouble();
        // The line's figure is rounded to a tenth of its unit.
        QVERIFY2(std::abs(match.captured(1).toDouble() * unit / 34.0 * 100 - percent) < 0.3,
                 qPrintable(at));
        QCOMPARE(match.captured(7).toInt(), static_cast<int>(std::lround(percent)));
        partial += percent > 0 && percent < 100 ? 1 : 0;
    }
    QVERIFY2(partial >= 1, qPrintable(shown.join(u' ')));
    if (!held) {
        QSKIP("opens can be held only as root (fanotify): the estimate was not waited for");
    }
    QVERIFY2(estimated, qPrintable(shown.join(u' ')));
}

UI_TEST_MAIN(SearchFlowTest)

#include "SearchFlowTest.moc"
