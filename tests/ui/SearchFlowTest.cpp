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
    QStringList lines, percents;
    QList<int> barAt, expectedAt;
    answers.then("twinsweep::ui::ViewControllerProgress", [&](QWidget* modal) {
        ViewControllerProgress* progress = progressWindow(modal);
        QVERIFY(progress != nullptr);
        // Note every line shown until the window goes, and the bar beside
        // each percentage.
        auto* watch = new QTimer(progress);
        QObject::connect(watch, &QTimer::timeout, progress, [&, progress] {
            const QString line = progress->textFieldBytesCompared->text();
            if (lines.isEmpty() || lines.back() != line) {
                lines.push_back(line);
            }
            estimated = estimated || line.endsWith(QStringLiteral(" left"));
            const QString percent = progress->textFieldPercents->text();
            const QProgressBar* indicator = progress->progressIndicator;
            // The bar (0 to 100) at the text's percentage, rounded to whole.
            const int bar = indicator->maximum() == 100 ? indicator->value() : -1;
            const int expected = static_cast<int>(std::lround(percent.chopped(1).toDouble()));
            if (percents.isEmpty() || percents.back() != percent || barAt.back() != bar) {
                percents.push_back(percent);
                barAt.push_back(bar);
                expectedAt.push_back(expected);
            }
        });
        watch->start(2);
    });
    answers.then("twinsweep::ui::ViewControllerDuplicates", [](QWidget* modal) { modal->close(); });
    window->buttonFindDuplicateFiles->click();
    holder.join();

    // Empty during the walk (if the window saw it), then bytes of the 34 MB.
    const QRegularExpression shape(QStringLiteral(
        "^(\\d+(\\.\\d)? [KMG]?B) of 34\\.0 MB compared(, about \\d+ (s|min) left)?$"));
    int partial = 0;
    for (const QString& line : lines.mid(!lines.isEmpty() && lines.front().isEmpty() ? 1 : 0)) {
        const auto match = shape.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        partial += match.captured(1) != QStringLiteral("34.0 MB") ? 1 : 0;
    }
    QVERIFY2(partial >= 1, qPrintable(lines.join(QLatin1Char('|'))));
    // The bar shows the files' percentage, whatever the bytes say.
    QCOMPARE(barAt, expectedAt);
    percents.removeDuplicates();
    QVERIFY2(percents.size() >= 2, qPrintable(percents.join(QLatin1Char('|'))));
    for (const QString& percent : percents) {
        QVERIFY2(QStringList({"0.0%", "16.7%", "33.3%", "50.0%", "66.7%", "83.3%", "100.0%"})
                     .contains(percent),
                 qPrintable(percent));
    }
    if (!held) {
        QSKIP("opens can be held only as root (fanotify): the estimate was not waited for");
    }
    QVERIFY2(estimated, qPrintable(lines.join(QLatin1Char('|'))));
}

UI_TEST_MAIN(SearchFlowTest)

#include "SearchFlowTest.moc"
