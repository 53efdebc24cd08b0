// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/shell/ModalWindow.h"

namespace twinsweep::ui {

// Stands in for a window that is not built yet: a titled window with the
// shared commands and a Close button, run modally like the real one.
class PlaceholderWindow : public ModalWindow {
    Q_OBJECT
  public:
    // A window that stands in for the results window empties the search
    // results when it goes away, as that window does.
    PlaceholderWindow(QWidget* opener, const QString& title, bool ownsResults = false);

  protected:
    void viewDidDisappear() override;

  private:
    bool ownsResults_;
};

} // namespace twinsweep::ui
