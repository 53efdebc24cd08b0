// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <functional>

#include "engine/File.h"

namespace twinsweep::ui {

// The members table of the selected group: a check box (marked for removal),
// the path and the date. Reads the group's own member list; a tick is handed
// to the window, which decides what it changes.
class MembersModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum Column { ColumnCheck, ColumnPath, ColumnDate, kColumns };

    explicit MembersModel(QObject* parent = nullptr);

    // Shows group's members (none for a null group).
    void setGroup(FilePtr group);
    const FilePtr& group() const { return group_; }
    // Marks changed in place.
    void refresh();

    // Called with the row whose box the user clicked.
    std::function<void(int row)> onToggle;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // Copies under a protected folder: the box is shown disabled.
    bool isProtectedRow(int row) const;
    static QString protectedCopyTip();

  private:
    FilePtr group_;
};

} // namespace twinsweep::ui
