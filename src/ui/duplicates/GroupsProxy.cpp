// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/duplicates/GroupsProxy.h"

#include <QFile>
#include <string_view>

#include "selection/KeepOptions.h"
#include "ui/duplicates/GroupsModel.h"

namespace twinsweep::ui {

namespace {

std::string_view lastComponent(std::string_view path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// Byte order with ASCII letters folded: names sort as a listing does, without
// decoding 30,000 of them for each comparison.
int compareFolded(std::string_view a, std::string_view b) {
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        auto fold = [](char c) {
            const auto u = static_cast<unsigned char>(c);
            return u >= 'A' && u <= 'Z' ? u + 32 : u;
        };
        const unsigned x = fold(a[i]), y = fold(b[i]);
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool holds(const std::string& path, const QString& text) {
    return QFile::decodeName(QByteArray::fromStdString(path)).contains(text, Qt::CaseInsensitive);
}

} // namespace

GroupsProxy::GroupsProxy(GroupsModel* groups, QObject* parent)
    : QSortFilterProxyModel(parent), groups_(groups) {
    setSourceModel(groups);
    // Ticking a mark must not move the row under the pointer.
    setDynamicSortFilter(false);
}

void GroupsProxy::setPathFilter(const QString& text) {
    if (text == filter_) {
        return;
    }
    filter_ = text;
    invalidateFilter();
}

void GroupsProxy::sort(int column, Qt::SortOrder order) {
    // The keys point into the records, which stay put while the sort runs.
    keys_.clear();
    if (column >= 0) {
        const int rows = groups_->rowCount();
        keys_.resize(static_cast<std::size_t>(rows));
        for (int row = 0; row < rows; ++row) {
            const File& group = *groups_->groupAt(row);
            Key& key = keys_[static_cast<std::size_t>(row)];
            key.name =
                column == GroupsModel::ColumnIcon ? group.ext.view() : lastComponent(group.path);
            if (column == GroupsModel::ColumnSize) {
                key.number = static_cast<std::int64_t>(group.size);
            } else if (column == GroupsModel::ColumnCount) {
                // Marked first, then how many copies: "2/3" before "2/4".
                key.number = markedCount(group) * (std::int64_t{1} << 32) +
                             static_cast<std::int64_t>(group.duplicates.size());
            }
        }
    }
    QSortFilterProxyModel::sort(column, order);
    keys_.clear();
    keys_.shrink_to_fit();
}

bool GroupsProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    const auto a = static_cast<std::size_t>(left.row());
    const auto b = static_cast<std::size_t>(right.row());
    if (a >= keys_.size() || b >= keys_.size()) {
        return a < b; // outside a sort: the search's order
    }
    const Key& x = keys_[a];
    const Key& y = keys_[b];
    if (x.number != y.number) {
        return x.number < y.number;
    }
    const int order = compareFolded(x.name, y.name);
    // Ties keep the search's order.
    return order != 0 ? order < 0 : a < b;
}

bool GroupsProxy::filterAcceptsRow(int sourceRow, const QModelIndex&) const {
    if (filter_.isEmpty()) {
        return true;
    }
    const File* group = groups_->groupAt(sourceRow);
    if (group == nullptr) {
        return false;
    }
    if (holds(group->path, filter_)) {
        return true;
    }
    for (const DuplicateFilePtr& member : group->duplicates) {
        if (member->path != group->path && holds(member->path, filter_)) {
            return true;
        }
    }
    return false;
}

} // namespace twinsweep::ui
