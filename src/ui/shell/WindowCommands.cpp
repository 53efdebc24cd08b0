// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/shell/WindowCommands.h"

#include <QAction>
#include <QCoreApplication>
#include <QKeySequence>
#include <QList>
#include <QMenu>
#include <QMenuBar>

#include "ui/platform/HelpPages.h"

namespace twinsweep::ui {

void addWindowMenu(QMenuBar* bar, std::function<void()> onMinimize) {
    QMenu* menu = bar->addMenu(QCoreApplication::translate("WindowCommands", "&Window"));
    menu->setObjectName(QStringLiteral("menuWindow"));
    QAction* minimize = menu->addAction(QCoreApplication::translate("WindowCommands", "&Minimise"));
    minimize->setObjectName(QStringLiteral("actionMinimize"));
    minimize->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_M));
    QObject::connect(minimize, &QAction::triggered, bar, [onMinimize] { onMinimize(); });
}

void addHelpMenu(QMenuBar* bar, std::function<void()> onRemoveDuplicates,
                 std::function<void()> onCustomSelect) {
    QMenu* menu = bar->addMenu(QCoreApplication::translate("WindowCommands", "&Help"));
    menu->setObjectName(QStringLiteral("menuHelp"));
    QAction* removing =
        menu->addAction(QCoreApplication::translate("WindowCommands", "&Removing Duplicate Files"));
    removing->setObjectName(QStringLiteral("actionHelpRemoveDuplicates"));
    removing->setShortcut(QKeySequence::HelpContents);
    QObject::connect(removing, &QAction::triggered, bar,
                     [onRemoveDuplicates] { onRemoveDuplicates(); });
    QAction* custom = menu->addAction(
        QCoreApplication::translate("WindowCommands", "&Custom Selection of Duplicates"));
    custom->setObjectName(QStringLiteral("actionHelpCustomSelect"));
    custom->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F1));
    QObject::connect(custom, &QAction::triggered, bar, [onCustomSelect] { onCustomSelect(); });
}

QMenu* addCommandMenu(QMenuBar* bar, const QString& title) {
    auto* menu = new QMenu(title, bar);
    const QList<QAction*> existing = bar->actions();
    // After the window's own menus, before Window and Help.
    QAction* before = nullptr;
    for (QAction* a : existing) {
        if (a->menu() != nullptr && (a->menu()->objectName() == QLatin1String("menuWindow") ||
                                     a->menu()->objectName() == QLatin1String("menuHelp"))) {
            before = a;
            break;
        }
    }
    bar->insertMenu(before, menu);
    return menu;
}

QAction* addCommand(QMenu* menu, const QString& text, const QKeySequence& shortcut,
                    std::function<void()> run, QWidget* focus) {
    QAction* action = menu->addAction(text);
    action->setShortcut(shortcut);
    if (focus != nullptr) {
        action->setShortcutContext(Qt::WidgetShortcut);
        focus->addAction(action);
    }
    QObject::connect(action, &QAction::triggered, menu, [run = std::move(run)] { run(); });
    return action;
}

void openRemoveDuplicatesHelp() {
    OpenHelpVideo(helpPageAddress(HelpTopic::RemovingDuplicates));
}

void openCustomSelectHelp() {
    OpenHelpVideo(helpPageAddress(HelpTopic::CustomSelection));
}

} // namespace twinsweep::ui
