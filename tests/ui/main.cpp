#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

#include "DetailWindowsTest.h"
#include "DuplicatesWindowTest.h"
#include "MainWindowTest.h"
#include "ProtectExportTest.h"
#include "SearchFlowTest.h"
#include "ShellTest.h"
#include "ui/platform/FileTypeIcons.h"

int main(int argc, char** argv) {
    // Help pages are written to the cache folder; keep the user's untouched.
    QTemporaryDir cache;
    qputenv("XDG_CACHE_HOME", cache.path().toLocal8Bit());
    // The cleaning lock lives there: the windows' cleans must not wait on (or
    // hold up) the command-line tool run by other test programs meanwhile.
    QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("twinsweep-tests"));
    // The tests open and close main windows one after another.
    QApplication::setQuitOnLastWindowClosed(false);
    twinsweep::ui::chooseIconTheme(); // as the application does at launch
    int failed = 0;
    {
        ShellTest shell;
        failed += QTest::qExec(&shell, argc, argv);
    }
    {
        MainWindowTest mainWindow;
        failed += QTest::qExec(&mainWindow, argc, argv);
    }
    {
        SearchFlowTest search;
        failed += QTest::qExec(&search, argc, argv);
    }
    {
        DuplicatesWindowTest results;
        failed += QTest::qExec(&results, argc, argv);
    }
    {
        DetailWindowsTest details;
        failed += QTest::qExec(&details, argc, argv);
    }
    {
        ProtectExportTest additions;
        failed += QTest::qExec(&additions, argc, argv);
    }
    return failed == 0 ? 0 : 1;
}
