#pragma once

#include <QStringList>
#include <optional>

class QWidget;

namespace twinsweep::ui {

// Asks for one or more folders. Absent when the user cancels; otherwise the
// chosen folders' paths in the order the dialog gives them (possibly none).
std::optional<QStringList> chooseFolders(QWidget* parent);

} // namespace twinsweep::ui
