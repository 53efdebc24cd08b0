// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QMenuBar;

namespace twinsweep::ui {

// Base of every window other than the main one. Such a window runs
// application-modal (exec()); its going away ends that session, except when
// it was only minimised: the session, and whatever the window is doing, go on.
class ModalWindow : public QDialog {
    Q_OBJECT
  public:
    explicit ModalWindow(QWidget* opener);

    // Runs the window application-modal; returns when its session ends.
    int runModal();

    QMenuBar* menuBar() const { return menuBar_; }

  public slots:
    void OnMinimize();
    void OnRemoveDuplicatesFromMac();
    void OnCustomSelectDuplicates();

  protected:
    // Called once the window is hidden for good (never when it is only
    // minimised); its modal session has ended by then.
    virtual void viewDidDisappear();
    void hideEvent(QHideEvent* event) override;
    // Return that no control took does nothing: a window never closes or acts
    // because the user pressed Return in a table or a field.
    void keyPressEvent(QKeyEvent* event) override;

    // Sets the window's contents below its menu bar.
    void setContents(QWidget* contents);

  private:
    QMenuBar* menuBar_;
};

} // namespace twinsweep::ui
