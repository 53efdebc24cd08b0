#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <functional>
#include <poll.h>
#include <sys/fanotify.h>
#include <thread>
#include <unistd.h>

#include "UiTestSupport.h"
#include "engine/NotificationCenter.h"
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

// Holds this process's openings of one file (fanotify permission events, as
// root) until until() says so, or 20 s have passed.
class OpenHold {
  public:
    OpenHold(const std::string& path, std::function<bool()> until) : until_(std::move(until)) {
        fan_ = ::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC, O_RDONLY | O_LARGEFILE);
        if (fan_ >= 0 &&
            ::fanotify_mark(fan_, FAN_MARK_ADD, FAN_OPEN_PERM, AT_FDCWD, path.c_str()) == 0) {
            thread_ = std::thread([this] { answer(); });
        }
    }
    ~OpenHold() {
        stop_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
        if (fan_ >= 0) {
            ::close(fan_);
        }
    }
    bool held() const { return held_; }

  private:
    void answer() {
        alignas(fanotify_event_metadata) char buf[4096];
        while (!stop_) {
            pollfd p{fan_, POLLIN, 0};
            if (::poll(&p, 1, 20) != 1) {
                continue;
            }
            ssize_t n = ::read(fan_, buf, sizeof buf);
            for (auto* m = reinterpret_cast<fanotify_event_metadata*>(buf); FAN_EVENT_OK(m, n);
                 m = FAN_EVENT_NEXT(m, n)) {
                if (m->fd < 0) {
                    continue;
                }
                for (int i = 0; !held_ && !stop_ && !until_() && i < 1000; ++i) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(20));
                }
                held_ = true;
                const fanotify_response r{m->fd, FAN_ALLOW};
                (void)!::write(fan_, &r, sizeof r);
                ::close(m->fd);
            }
        }
    }
    std::function<bool()> until_;
    int fan_ = -1;
    std::thread thread_;
    std::atomic<bool> stop_{false};
    std::atomic<bool> held_{false};
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
            QTest::qWait(50);
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
};

void SearchFlowTest::progressTellsBytesComparedOfLargeFiles() {
    SearchTree where;
    // Two pairs of copies, of two sizes: the larger pair is compared first,
    // and the opening of the smaller pair's last file is held, so the bytes
    // stop part way for as long as the estimate needs to show.
    std::string body(16 << 20, 'x');
    where.tree.write("Users/me/a1", body + "a");
    where.tree.write("Users/me/a2", body + "a");
    where.tree.write("Users/me/b1", body);
    const std::string held = where.tree.write("Users/me/b2", body);
    std::atomic<bool> estimated{false};
    OpenHold hold(held, [&] { return estimated.load(); });
    auto window = searchWindow({QString::fromStdString(where.home)});

    ModalAnswers answers;
    QStringList lines;
    answers.then("twinsweep::ui::ViewControllerProgress", [&](QWidget* modal) {
        ViewControllerProgress* progress = progressWindow(modal);
        QVERIFY(progress != nullptr);
        // Note every line shown until the window goes.
        auto* watch = new QTimer(progress);
        QObject::connect(watch, &QTimer::timeout, progress, [&lines, &estimated, progress] {
            const QString line = progress->textFieldBytesCompared->text();
            if (lines.isEmpty() || lines.back() != line) {
                lines.push_back(line);
            }
            estimated = estimated || line.endsWith(QStringLiteral(" left"));
        });
        watch->start(2);
    });
    answers.then("twinsweep::ui::ViewControllerDuplicates", [](QWidget* modal) { modal->close(); });
    window->buttonFindDuplicateFiles->click();

    // Empty during the walk (if the window saw it), then bytes of the 64 MB.
    if (!lines.isEmpty() && lines.front().isEmpty()) {
        lines.removeFirst();
    }
    const QRegularExpression shape(QStringLiteral(
        "^(\\d+(\\.\\d)? [KMG]?B) of 64\\.0 MB compared(, about \\d+ (s|min) left)?$"));
    int partial = 0;
    for (const QString& line : lines) {
        const auto match = shape.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        partial += match.captured(1) != QStringLiteral("64.0 MB") ? 1 : 0;
    }
    QVERIFY2(partial >= 1, qPrintable(lines.join(QLatin1Char('|'))));
    if (!hold.held()) {
        QSKIP("opens can be held only as root (fanotify): the estimate was not waited for");
    }
    QVERIFY2(estimated, qPrintable(lines.join(QLatin1Char('|'))));
}

UI_TEST_MAIN(SearchFlowTest)

#include "SearchFlowTest.moc"
