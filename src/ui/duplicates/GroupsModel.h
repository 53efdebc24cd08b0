#pragma once

#include <QAbstractTableModel>
#include <QColor>

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

    // The list was replaced or its length changed.
    void reset();
    // Marks changed in place: every visible cell is drawn again.
    void refresh();
    void refreshCount(int row);

    // The count text's colour, chosen by how many members stay.
    static QColor countColour(std::int64_t members, std::int64_t marked);

  private:
    const FileList* groups_;
};

} // namespace twinsweep::ui
