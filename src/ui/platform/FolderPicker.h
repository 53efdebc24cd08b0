// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileDialog>
#include <QStringList>
#include <optional>

class QWidget;

namespace twinsweep::ui {

// The panel that chooses folders: the toolkit's own dialog (the desktop
// portals choose only one folder), read-only, confirmed by prompt. A typed
// name that is no folder is handed back like any choice, so the caller says
// so in the application's words, never in the toolkit's.
class FolderDialog : public QFileDialog {
    Q_OBJECT
  public:
    FolderDialog(QWidget* parent, const QString& prompt, bool several);

    void accept() override;
};

// Asks for one or more folders. Absent when the user cancels; otherwise the
// chosen folders' paths in the order the dialog gives them (possibly none).
std::optional<QStringList> chooseFolders(QWidget* parent);

} // namespace twinsweep::ui
