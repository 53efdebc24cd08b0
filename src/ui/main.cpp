#include <QApplication>
#include <QIcon>
#include <QTimer>

#include "ui/main/ViewController.h"
#include "ui/shell/AppDelegate.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("twinsweep"));
    QApplication::setApplicationDisplayName(QStringLiteral("Twinsweep"));
    QApplication::setDesktopFileName(QStringLiteral(TWINSWEEP_APP_ID));
    // Every window's icon: the installed theme's, else the built-in copy.
    QApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral(TWINSWEEP_APP_ID),
                         QIcon(QStringLiteral(":/icons/" TWINSWEEP_APP_ID ".svg"))));
    twinsweep::ui::AppDelegate delegate(app);

    twinsweep::ui::ViewController mainWindow;
    mainWindow.show();
    QTimer::singleShot(0, &delegate, [&delegate] { delegate.applicationDidFinishLaunching(); });
    return QApplication::exec();
}
