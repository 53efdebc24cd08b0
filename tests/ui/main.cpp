#include <QApplication>
#include <QTemporaryDir>
#include <cstring>

#include "UiTestSupport.h"
#include "ui/platform/FileTypeIcons.h"

// ui_tests [Class] [QTest options]: runs every class, or only the one named
// first (each class is its own ctest entry).
int main(int argc, char** argv) {
    // Help pages are written to the cache folder; keep the user's untouched.
    QTemporaryDir cache;
    qputenv("XDG_CACHE_HOME", cache.path().toLocal8Bit());
    // The cleaning lock lives there: the windows' cleans must not wait on (or
    // hold up) the command-line tool run by other test programs meanwhile.
    QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
    // Cleans to the Trash go to one of our own, never the user's.
    QTemporaryDir data;
    qputenv("XDG_DATA_HOME", data.path().toLocal8Bit());
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("twinsweep-tests"));
    // The tests open and close main windows one after another.
    QApplication::setQuitOnLastWindowClosed(false);
    twinsweep::ui::chooseIconTheme(); // as the application does at launch
    const char* only = nullptr;
    if (argc > 1 && argv[1][0] != '-') {
        only = argv[1];
        argv[1] = argv[0];
        ++argv;
        --argc;
    }
    int failed = 0;
    bool found = false;
    for (const auto& [name, make] : twinsweep::testing::testClasses()) {
        if (only == nullptr || std::strcmp(only, name) == 0) {
            found = true;
            std::unique_ptr<QObject> test = make();
            failed += QTest::qExec(test.get(), argc, argv);
        }
    }
    return found && failed == 0 ? 0 : 1;
}
