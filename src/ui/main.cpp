#include <QApplication>
#include <QTimer>

#include "ui/main/ViewController.h"
#include "ui/shell/AppDelegate.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("twinsweep"));
    QApplication::setApplicationDisplayName(QStringLiteral("Twinsweep"));
    QApplication::setDesktopFileName(QStringLiteral("twinsweep"));
    twinsweep::ui::AppDelegate delegate(app);

    twinsweep::ui::ViewController mainWindow;
    mainWindow.show();
    QTimer::singleShot(0, &delegate, [&delegate] { delegate.applicationDidFinishLaunching(); });
    return QApplication::exec();
}
