// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <memory>

class QWidget;

namespace twinsweep::ui {

class ModalWindow;

inline const QString kWindowControllerProgress = QStringLiteral("WindowControllerProgress");
inline const QString kWindowControllerDuplicates = QStringLiteral("WindowControllerDuplicates");
inline const QString kWindowControllerCustomKeep = QStringLiteral("WindowControllerCustomKeep");
inline const QString kWindowControllerInfo = QStringLiteral("WindowControllerInfo");

// Makes each window other than the main one from its identifier. Every
// identifier has a maker from the start; a window written later replaces its
// maker with registerWindow().
class WindowFactory {
  public:
    using Maker = std::function<std::unique_ptr<ModalWindow>(QWidget* opener)>;

    static void registerWindow(const QString& identifier, Maker maker);
    // Null for an unknown identifier.
    static std::unique_ptr<ModalWindow> make(const QString& identifier, QWidget* opener);
    // Makes the window and runs it application-modal until its session ends.
    // Returns false when the identifier is unknown.
    static bool runModal(const QString& identifier, QWidget* opener);
};

} // namespace twinsweep::ui
