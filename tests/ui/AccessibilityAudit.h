// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAccessible>
#include <QAccessibleInterface>
#include <QMetaEnum>
#include <QStringList>
#include <QWidget>
#include <functional>

namespace twinsweep::testing {

// Walks a window's accessibility tree, as a screen reader does, and names
// every control a user acts on that lacks an accessible name or
// description: "objectName (role): name" or ": description" (the class name
// when the control has no object name). A combo box's
// name on Linux is its current item, so there the widget's own accessible
// name must be set.
inline QStringList controlsWithoutAccessibleText(QWidget* window) {
    static const QList<QAccessible::Role> interactive{
        QAccessible::PushButton,   QAccessible::CheckBox,  QAccessible::RadioButton,
        QAccessible::EditableText, QAccessible::ComboBox,  QAccessible::Table,
        QAccessible::List,         QAccessible::Tree,      QAccessible::Slider,
        QAccessible::SpinBox,      QAccessible::ButtonMenu};
    QStringList missing;
    const std::function<void(QAccessibleInterface*)> walk = [&](QAccessibleInterface* node) {
        if (node == nullptr) {
            return;
        }
        auto* widget = qobject_cast<QWidget*>(node->object());
        if (interactive.contains(node->role())) {
            // Hidden controls are not offered to anyone.
            if (widget == nullptr || !widget->isVisibleTo(window)) {
                return;
            }
            const QString what =
                (widget->objectName().isEmpty()
                     ? QString::fromLatin1(widget->metaObject()->className())
                     : widget->objectName()) +
                QStringLiteral(" (") +
                QString::fromLatin1(
                    QMetaEnum::fromType<QAccessible::Role>().valueToKey(node->role())) +
                QStringLiteral(")");
            const QString name = node->role() == QAccessible::ComboBox
                                     ? widget->accessibleName()
                                     : node->text(QAccessible::Name);
            if (name.trimmed().isEmpty()) {
                missing << what + QStringLiteral(": name");
            }
            if (node->text(QAccessible::Description).trimmed().isEmpty()) {
                missing << what + QStringLiteral(": description");
            }
            // A control's parts (a table's cells, a combo box's popup list)
            // are spoken as part of it.
            return;
        }
        for (int i = 0; i < node->childCount(); ++i) {
            walk(node->child(i));
        }
    };
    walk(QAccessible::queryAccessibleInterface(window));
    return missing;
}

} // namespace twinsweep::testing
