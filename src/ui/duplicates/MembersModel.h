// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <vector>

#include "engine/File.h"

namespace twinsweep::ui {

// The members table of the selected group: a check box (marked for removal),
// the path and the date. Reads the group's own member list; a tick is handed
// to the window, which decides what it changes. Rows are in the group's
// order until a header is clicked; the sort stays while other groups are
// shown. "Member" below is an index into the group's list, "row" a table row.
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

    // Called with the member whose box the user clicked.
    std::function<void(int member)> onToggle;

    // The member shown on row, and the row that shows member (-1 when none).
    int memberAt(int row) const;
    int rowOf(int member) const;
    // Orders the rows by column (-1: the group's order); keeps the current row
    // on its member.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

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
    void placeRows();

    FilePtr group_;
    std::vector<int> order_; // row -> member
    int sortColumn_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

} // namespace twinsweep::ui
