// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace twinsweep::ui {

// Every message of the application: a modal warning with an empty message
// text, the whole sentence as informative text and the buttons in the given
// order. Texts of the plain C++ libraries are translated here (coreText).
// Returns the index of the button pressed; the last button (the one
// that declines) also answers Escape and the window's close button.
int runAlert(QWidget* parent, const QString& informativeText, const QStringList& buttons);

// One "OK" button.
void showInformation(QWidget* parent, const QString& informativeText);

// "Yes" (first) and "No" (second); only "No" declines.
bool askYesNo(QWidget* parent, const QString& informativeText);

} // namespace twinsweep::ui
