// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/FileTools.h"
#include "engine/LocationGate.h"
#include "engine/SearchJob.h"
#include "settings/SettingsManager.h"
#include "support/TempTree.h"
#include "ui/duplicates/GroupsModel.h"
#include "ui/duplicates/SegmentedControl.h"
#include "ui/duplicates/ViewControllerDuplicates.h"
#include "ui/platform/FileTypeIcons.h"

namespace twinsweep::testing {

using namespace Qt::StringLiterals;

// main() of one test class's program. Help pages, the cleaning lock, the undo records and the Trash
// go to temporary folders: never the user's, nor shared with other test programs.
#define UI_TEST_MAIN(Class)                                                                        \
    int main(int argc, char** argv) {                                                              \
        QTemporaryDir cache, runtime, data, state, config;                                         \
        qputenv("XDG_CACHE_HOME", cache.path().toLocal8Bit());                                     \
        qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());                                   \
        qputenv("XDG_STATE_HOME", state.path().toLocal8Bit());                                     \
        qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());                                  \
        qputenv("XDG_DATA_HOME", data.path().toLocal8Bit());                                       \
        QApplication app(argc, argv);                                                              \
        QApplication::setApplicationName(QStringLiteral("twinsweep-tests"));                       \
        QApplication::setQuitOnLastWindowClosed(false);                                            \
        twinsweep::ui::chooseIconTheme();                                                          \
        Class test;                                                                                \
        return QTest::qExec(&test, argc, argv);                                                    \
    }

// Every path under root with what it holds (a file's mode and bytes, a
// link's target), before and after a clean: only what was marked may go, and
// what stays is unchanged.
using Snapshot = std::map<std::string, std::string>;
inline Snapshot snapshot(const std::string& root) {
    namespace fs = std::filesystem;
    Snapshot out;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const fs::file_status status = entry.symlink_status();
        std::string held = std::to_string(static_cast<int>(status.permissions())) + " ";
        if (fs::is_symlink(status)) {
            held += "link " + fs::read_symlink(entry.path()).string();
        } else if (fs::is_regular_file(status)) {
            std::ifstream in(entry.path(), std::ios::binary);
            held += "file " + std::string(std::istreambuf_iterator<char>(in), {});
        } else {
            held += fs::is_directory(status) ? "folder" : "other";
        }
        out.emplace(entry.path().string(), std::move(held));
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
        handler(modal);
    }

    QTimer timer_;
    QList<std::pair<const char*, Handler>> handlers_;
    QPointer<QWidget> last_;
};

// Answers message boxes without informative text, the toolkit's own (every
// alert of ours has one), keeping their texts.
class ToolkitBoxes : public QObject {
  public:
    ToolkitBoxes() {
        connect(&timer_, &QTimer::timeout, this, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box != nullptr && box->isVisible() && box->informativeText().isEmpty()) {
                texts << box->text();
                box->buttons().front()->click();
            }
        });
        timer_.start(5);
    }
    QStringList texts;

  private:
    QTimer timer_;
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

inline QString sizeText(std::uint64_t bytes) {
    return QString::fromStdString(FileTools::fileSizeText(bytes));
}

// Three pictures, two documents, two songs (9000 + 4000 + 2000 bytes) on show.
struct Results : FoundDuplicates {
    FilePtr photos, docs, songs;
    Snapshot before;
    ui::ViewControllerDuplicates* w = nullptr;
    ModalAnswers answers;

    Results() {
        for (const char* p : {"a/photo.jpg", "b/photo.jpg", "c/photo.jpg"}) {
            tree.write(p, std::string(3000, 'p'));
        }
        tree.write("a/report.pdf", std::string(2000, 'd'));
        tree.write("b/report.pdf", std::string(2000, 'd'));
        tree.write("a/song.mp3", std::string(1000, 'm'));
        tree.write("c/song.mp3", std::string(1000, 'm'));
        tree.write("a/single.txt", std::string(1000, 's'));
        before = snapshot(tree.root());
        search();
        photos = group("photo.jpg");
        docs = group("report.pdf");
        songs = group("song.mp3");
        // The second photo is the oldest, the third the newest.
        const char* dates[] = {"20-01-01 01:00:00", "19-01-01 01:00:00", "21-01-01 01:00:00"};
        for (std::size_t i = 0; i < 3; ++i) {
            photos->duplicates[i]->date = dates[i];
        }
        docs->duplicates[1]->checkState = 1; // left over from an earlier look
        w = &open();
    }
    int row(const FilePtr& group) const {
        const auto at = std::find(w->fileList.begin(), w->fileList.end(), group);
        return at == w->fileList.end() ? -1 : static_cast<int>(at - w->fileList.begin());
    }
    int listed() const { return w->tableViewFiles->model()->rowCount(); }
    QString count(const FilePtr& group, int role = Qt::DisplayRole) const {
        return cell(w->tableViewFiles, row(group), ui::GroupsModel::ColumnCount, role);
    }
    void select(const FilePtr& group) {
        w->tableViewFiles->selectRow(row(group));
        QCOMPARE(w->selectedRow, row(group));
    }
    // Clicks a keep option and, unless told not to, waits for its update.
    void choose(int segment, bool wait = true) {
        w->segmentedControlKeep->segmentButton(segment)->click();
        QVERIFY(!wait || settled(*w));
    }
    // Ticks a member of the selected group, as a click on its box does.
    void tick(int member) {
        QAbstractItemModel* members = w->tableViewDuplicates->model();
        QVERIFY(members->setData(members->index(member, 0), Qt::Checked, Qt::CheckStateRole));
    }
    // Cleans, answering its questions with these buttons in order.
    void clean(std::initializer_list<const char*> buttons) {
        for (const char* button : buttons) {
            answers.alert(QString::fromLatin1(button));
        }
        w->buttonClean->click();
        QVERIFY(answers.allAnswered());
    }
    // The space saved shown, in its colour: green when anything is marked.
    void expectSaved(std::uint64_t bytes) const {
        QCOMPARE(w->labelSpaceSaved->text(), sizeText(bytes));
        QCOMPARE(w->labelSpaceSaved->palette().color(QPalette::WindowText),
                 bytes == 0 ? QColor(Qt::black) : QColor(27, 209, 51));
    }
};

} // namespace twinsweep::testing
