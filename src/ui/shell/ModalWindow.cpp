// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/shell/ModalWindow.h"

#include <QHideEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QVBoxLayout>

#include "ui/shell/WindowCommands.h"

namespace twinsweep::ui {

ModalWindow::ModalWindow(QWidget* opener) : QDialog(opener) {
    // A top-level window with a minimise button, not a transient dialog.
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    setWindowModality(Qt::ApplicationModal);
    auto* layout = new QVBoxLayout(this);
    menuBar_ = new QMenuBar(this);
    layout->setMenuBar(menuBar_);
    addWindowMenu(menuBar_, [this] { OnMinimize(); });
    addHelpMenu(
        menuBar_, [this] { OnRemoveDuplicatesFromMac(); }, [this] { OnCustomSelectDuplicates(); });
}

int ModalWindow::runModal() {
    setWindowModality(Qt::ApplicationModal);
    return exec();
}

void ModalWindow::OnMinimize() {
    showMinimized();
}

void ModalWindow::OnRemoveDuplicatesFromMac() {
    openRemoveDuplicatesHelp();
}

void ModalWindow::OnCustomSelectDuplicates() {
    openCustomSelectHelp();
}

void ModalWindow::viewDidDisappear() {
    // Nothing more to do: a dialog that is hidden leaves exec(), which ends
    // the session, while a minimised one is not hidden and keeps it.
}

void ModalWindow::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    // A spontaneous hide is the window system iconifying the window.
    if (!event->spontaneous()) {
        viewDidDisappear();
    }
}

void ModalWindow::keyPressEvent(QKeyEvent* event) {
    // A focused button takes Return itself; what reaches the window would
    // otherwise press the dialog's default button.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void ModalWindow::setContents(QWidget* contents) {
    layout()->addWidget(contents);
}

} // namespace twinsweep::ui
