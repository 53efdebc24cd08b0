// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <QIcon>
#include <QTimer>
#include <cstdio>
#include <cstring>

#include "ui/main/ViewController.h"
#include "ui/platform/Translations.h"
#include "ui/shell/AppDelegate.h"

int main(int argc, char** argv) {
    // Answered before any window system is asked for: these work without a display.
    // Every other argument is left to Qt, as before.
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            std::fputs("Usage: twinsweep [Qt options]\n"
                       "Finds duplicate files in the folders picked in its window.\n"
                       "  --help     show this text and exit\n"
                       "  --version  show the version and exit\n"
                       "See also twinsweep-cli --help for the command-line tool.\n",
                       stdout);
            return 0;
        }
        if (std::strcmp(argv[i], "--version") == 0) {
            std::fputs("twinsweep " TWINSWEEP_VERSION "\n", stdout);
            return 0;
        }
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("twinsweep"));
    QApplication::setApplicationDisplayName(QStringLiteral("Twinsweep"));
    QApplication::setDesktopFileName(QStringLiteral(TWINSWEEP_APP_ID));
    // Every window's icon: the installed theme's, else the built-in copy.
    QApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral(TWINSWEEP_APP_ID),
                         QIcon(QStringLiteral(":/icons/" TWINSWEEP_APP_ID ".svg"))));
    // The desktop's language (LANGUAGE, LC_ALL, LC_MESSAGES, LANG); dates
    // and sizes keep their fixed formats whatever it is.
    twinsweep::ui::Translations translations(&app);
    translations.use(QLocale::system());
    twinsweep::ui::AppDelegate delegate(app);

    twinsweep::ui::ViewController mainWindow;
    // Every start begins from the defaults; the folder list is saved from
    // now on for File > Reopen Last Folders.
    mainWindow.rememberChoices();
    mainWindow.show();
    QTimer::singleShot(0, &delegate, [&delegate] { delegate.applicationDidFinishLaunching(); });
    return QApplication::exec();
}
