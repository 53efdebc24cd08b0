// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QStyledItemDelegate>

#include "engine/File.h"

namespace twinsweep::ui {

// The groups table: icon, name, size and the marked count ("2/3"), read
// straight from the window's listed groups. The model keeps a pointer to that
// list, never a copy; whoever replaces the list calls reset().
class GroupsModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum Column { ColumnIcon, ColumnName, ColumnSize, ColumnCount, kColumns };

    explicit GroupsModel(const FileList* groups, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // The group at row, null when out of range.
    const File* groupAt(int row) const;
    // Whether the search compared files of 100 MiB and more by content; when
    // not, their groups carry a mark saying they were matched by size alone.
    void setLargeByContent(bool byContent) { largeByContent_ = byContent; }
    static QString sizeOnlyTip();

    // The list was replaced or its length changed.
    void reset();
    // Marks changed in place: every visible cell is drawn again.
    void refresh();
    void refreshCount(int row);

    // The count text's colour, chosen by how many members stay.
    static QColor countColour(std::int64_t members, std::int64_t marked);

  private:
    const FileList* groups_;
    bool largeByContent_ = false;
};

// Draws the count in its colour on the selected row too, where the style
// would paint every text in the selection's text colour.
class CountDelegate : public QStyledItemDelegate {
    Q_OBJECT
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

} // namespace twinsweep::ui
