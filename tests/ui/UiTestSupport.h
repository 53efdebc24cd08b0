#pragma once

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <clocale>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "engine/FileTools.h"
#include "engine/LocationGate.h"
#include "engine/SearchJob.h"
#include "settings/SettingsManager.h"
#include "support/TempTree.h"
#include "ui/duplicates/ViewControllerDuplicates.h"
#include "ui/platform/FileTypeIcons.h"

namespace twinsweep::testing {

using namespace Qt::StringLiterals;

// main() of one test class's program. Help pages, the cleaning lock and the Trash
// go to temporary folders: never the user's, nor shared with other test programs.
#define UI_TEST_MAIN(Class)                                                                        \
    int main(int argc, char** argv) {                                                              \
        QTemporaryDir cache, runtime, data;                                                        \
        qputenv("XDG_CACHE_HOME", cache.path().toLocal8Bit());                                     \
        qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());                                  \
        qputenv("XDG_DATA_HOME", data.path().toLocal8Bit());                                       \
        QApplication app(argc, argv);                                                              \
        QApplication::setApplicationName(QStringLiteral("twinsweep-tests"));                       \
        QApplication::setQuitOnLastWindowClosed(false);                                            \
        twinsweep::ui::chooseIconTheme();                                                          \
        Class test;                                                                                \
        return QTest::qExec(&test, argc, argv);                                                    \
    }

// Every path under root, before and after a clean: only what was marked may go.
using Snapshot = std::set<std::string>;
inline Snapshot snapshot(const std::string& root) {
    Snapshot out;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        out.insert(entry.path().string());
    }
    return out;
}
inline Snapshot without(Snapshot paths, const std::vector<std::string>& gone) {
    for (const std::string& path : gone) {
        paths.erase(path);
    }
    return paths;
}

// Answers modal windows as they come up, each by the next handler if it is of
// the class that handler expects, inside the window's own event loop.
class ModalAnswers : public QObject {
  public:
    using Handler = std::function<void(QWidget* modal)>;

    ModalAnswers() {
        connect(&timer_, &QTimer::timeout, this, [this] { poll(); });
        timer_.start(5);
    }
    void then(const char* className, Handler handler) {
        handlers_.push_back({className, std::move(handler)});
    }
    template <typename Window> void on(std::function<void(Window*)> handler) {
        then(Window::staticMetaObject.className(),
             [handler](QWidget* modal) { handler(qobject_cast<Window*>(modal)); });
    }
    // The next message box: look() runs, its text goes to said, then button is pressed.
    void alert(const QString& button, const std::function<void()>& look = {}) {
        then("QMessageBox", [this, button, look](QWidget* modal) {
            if (look) {
                look();
            }
            auto* box = qobject_cast<QMessageBox*>(modal);
            said << box->informativeText();
            const QList<QAbstractButton*> all = box->buttons();
            const auto b = std::find_if(all.begin(), all.end(),
                                        [&](QAbstractButton* b) { return b->text() == button; });
            QVERIFY2(b != all.end(), qPrintable(button));
            (*b)->click();
        });
    }
    int answered() const { return answered_; }
    bool allAnswered() const { return handlers_.isEmpty(); }
    QStringList said;

  private:
    void poll() {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr || modal == last_ || !modal->isVisible() || handlers_.isEmpty() ||
            !modal->inherits(handlers_.front().first)) {
            return;
        }
        last_ = modal;
        Handler handler = handlers_.takeFirst().second;
        ++answered_;
        handler(modal);
    }

    QTimer timer_;
    QList<std::pair<const char*, Handler>> handlers_;
    QPointer<QWidget> last_;
    int answered_ = 0;
};

// Lets the event loop run until done() holds or the time runs out.
inline bool waitUntil(const std::function<bool()>& done, int timeoutMs = 20000) {
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > timeoutMs) {
            return false;
        }
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

// The menu commands of a menu bar that have no shortcut, by their texts.
inline QStringList commandsWithoutShortcut(const QMenuBar* bar) {
    QStringList missing;
    for (const QAction* action : bar->findChildren<QAction*>()) {
        if (!action->isSeparator() && action->menu() == nullptr && action->shortcut().isEmpty()) {
            missing << action->text();
        }
    }
    return missing;
}

// A key typed into widget after focusing it, so the window's shortcuts see it first.
inline void typeKey(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    widget->window()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(widget->window()));
    widget->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(widget, key, modifiers);
}

// The process locale for a scope, as LANG would set it; !ok() when not installed.
struct ScopedLocale {
    explicit ScopedLocale(const char* name)
        : saved(std::setlocale(LC_ALL, nullptr)), ok(std::setlocale(LC_ALL, name) != nullptr) {}
    ~ScopedLocale() { std::setlocale(LC_ALL, saved.c_str()); }
    const std::string saved;
    const bool ok;
};

// Waits until the window has no update running and nothing queued.
inline bool settled(const ui::ViewControllerDuplicates& window) {
    return waitUntil([&] { return !window.updating && window.jobsInFlight() == 0; });
}

// A real search over a temporary folder, its groups left as the results window finds them.
struct FoundDuplicates {
    TempTree tree;
    std::unique_ptr<ui::ViewControllerDuplicates> shown; // goes before the tree

    // Runs the search over the whole tree and returns the number of groups.
    std::size_t search() {
        FileTools tools;
        tools.locationGate = LocationGate::anywhere();
        auto settings = SettingsManager::shared();
        settings->searchCanceledByUser = false;
        settings->listFolderPaths = {tree.root()};
        settings->minimumFileSize = 0;
        settings->customFileTypes = false;
        settings->duplicateFileList.clear();
        runSearchJob(*settings, tools);
        settings->listFolderPaths.clear();
        return settings->duplicateFileList.size();
    }
    // The results window on these groups, shown and settled.
    ui::ViewControllerDuplicates& open() {
        shown = std::make_unique<ui::ViewControllerDuplicates>(nullptr);
        shown->show();
        QTest::qVerify(settled(*shown), "settled(window)", "", __FILE__, __LINE__);
        return *shown;
    }
    // The group whose head's file name is name, or null.
    static FilePtr group(const std::string& name) {
        for (const FilePtr& g : SettingsManager::shared()->duplicateFileList) {
            if (g->path.ends_with("/" + name)) {
                return g;
            }
        }
        return nullptr;
    }
};

inline std::vector<std::int64_t> marksOf(const FilePtr& group) {
    std::vector<std::int64_t> out;
    for (const auto& m : group->duplicates) {
        out.push_back(m->checkState);
    }
    return out;
}

inline QString cell(QTableView* table, int row, int column, int role = Qt::DisplayRole) {
    return table->model()->index(row, column).data(role).toString();
}

} // namespace twinsweep::testing
