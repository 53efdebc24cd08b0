// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTableView>

namespace twinsweep::ui {

// The folder table: takes folders dragged in from a file manager. Rows can't
// be reordered, so drags that start inside this application are refused.
// Drops are taken as copies: the file manager never removes what it dragged.
class FolderTableView : public QTableView {
    Q_OBJECT
  public:
    explicit FolderTableView(QWidget* parent);

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
};

} // namespace twinsweep::ui
