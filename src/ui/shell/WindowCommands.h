#pragma once

#include <functional>

class QMenuBar;
class QWidget;

namespace twinsweep::ui {

// The commands every window carries, as menus on the window's menu bar:
// Window > Minimise (Ctrl+M) and the two help pages (F1 for the first).
void addWindowMenu(QMenuBar* bar, std::function<void()> onMinimize);
void addHelpMenu(QMenuBar* bar, std::function<void()> onRemoveDuplicates,
                 std::function<void()> onCustomSelect);

// The help commands themselves, the same in every window.
void openRemoveDuplicatesHelp();
void openCustomSelectHelp();

} // namespace twinsweep::ui
