#include "ui/shell/WindowCommands.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

#include "ui/platform/HelpPages.h"

namespace twinsweep::ui {

void addWindowMenu(QMenuBar* bar, std::function<void()> onMinimize) {
    QMenu* menu = bar->addMenu(QStringLiteral("&Window"));
    QAction* minimize = menu->addAction(QStringLiteral("&Minimise"));
    minimize->setObjectName(QStringLiteral("actionMinimize"));
    minimize->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_M));
    QObject::connect(minimize, &QAction::triggered, bar, [onMinimize] { onMinimize(); });
}

void addHelpMenu(QMenuBar* bar, std::function<void()> onRemoveDuplicates,
                 std::function<void()> onCustomSelect) {
    QMenu* menu = bar->addMenu(QStringLiteral("&Help"));
    QAction* removing = menu->addAction(QStringLiteral("&Removing Duplicate Files"));
    removing->setObjectName(QStringLiteral("actionHelpRemoveDuplicates"));
    removing->setShortcut(QKeySequence::HelpContents);
    QObject::connect(removing, &QAction::triggered, bar,
                     [onRemoveDuplicates] { onRemoveDuplicates(); });
    QAction* custom = menu->addAction(QStringLiteral("&Custom Selection of Duplicates"));
    custom->setObjectName(QStringLiteral("actionHelpCustomSelect"));
    QObject::connect(custom, &QAction::triggered, bar, [onCustomSelect] { onCustomSelect(); });
}

void openRemoveDuplicatesHelp() {
    OpenHelpVideo(helpPageAddress(HelpTopic::RemovingDuplicates));
}

void openCustomSelectHelp() {
    OpenHelpVideo(helpPageAddress(HelpTopic::CustomSelection));
}

} // namespace twinsweep::ui
