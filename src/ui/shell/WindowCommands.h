// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class QAction;
class QKeySequence;
class QMenu;
class QMenuBar;
class QString;
class QWidget;

namespace twinsweep::ui {

// The commands every window carries, as menus on the window's menu bar:
// Window > Minimise (Ctrl+M) and the two help pages (F1 and Ctrl+F1).
void addWindowMenu(QMenuBar* bar, std::function<void()> onMinimize);
void addHelpMenu(QMenuBar* bar, std::function<void()> onRemoveDuplicates,
                 std::function<void()> onCustomSelect);

// A menu placed before the shared Window and Help menus.
QMenu* addCommandMenu(QMenuBar* bar, const QString& title);
// A menu command with its shortcut. With a focus widget, the shortcut works
// only while that widget has the focus (Delete in one table, Space in
// another); the menu lists it all the same.
QAction* addCommand(QMenu* menu, const QString& text, const QKeySequence& shortcut,
                    std::function<void()> run, QWidget* focus = nullptr);

// The help commands themselves, the same in every window.
void openRemoveDuplicatesHelp();
void openCustomSelectHelp();

} // namespace twinsweep::ui
