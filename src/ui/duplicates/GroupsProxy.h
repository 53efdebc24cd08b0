// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSortFilterProxyModel>
#include <cstdint>
#include <string_view>
#include <vector>

namespace twinsweep::ui {

class GroupsModel;

// The groups table as the user arranges it: sorted by the column whose
// header was clicked (the search's order until then, and again when the
// sort is cleared), and only the groups whose head or any member path holds
// the filter text, in any case. Compares the records themselves, never the
// shown texts, so 30,000 groups sort in a blink. Rows do not move while
// marks change; a new sort or filter, or a new list, places them again.
class GroupsProxy : public QSortFilterProxyModel {
    Q_OBJECT
  public:
    GroupsProxy(GroupsModel* groups, QObject* parent = nullptr);

    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    void setPathFilter(const QString& text);
    const QString& pathFilter() const { return filter_; }

  protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

  private:
    // Each row's sort key, read once per sort rather than once per comparison.
    struct Key {
        std::int64_t number = 0;
        std::string_view name;
    };
    GroupsModel* groups_;
    QString filter_;
    std::vector<Key> keys_;
};

} // namespace twinsweep::ui
