// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>

namespace twinsweep::ui {

// What a screen reader says of a control: its name, and what it does.
inline void describe(QWidget* widget, const QString& name, const QString& description) {
    widget->setAccessibleName(name);
    widget->setAccessibleDescription(description);
}

} // namespace twinsweep::ui
