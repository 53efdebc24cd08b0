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

bool GroupsProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    const File* a = groups_->groupAt(left.row());
    const File* b = groups_->groupAt(right.row());
    if (a == nullptr || b == nullptr) {
        return a == nullptr && b != nullptr;
    }
    int order = 0;
    switch (left.column()) {
    case GroupsModel::ColumnIcon:
        order = compareFolded(a->ext.view(), b->ext.view());
        break;
    case GroupsModel::ColumnSize:
        order = a->size == b->size ? 0 : (a->size < b->size ? -1 : 1);
        break;
    case GroupsModel::ColumnCount: {
        const std::int64_t ma = markedCount(*a), mb = markedCount(*b);
        const auto na = a->duplicates.size(), nb = b->duplicates.size();
        order = ma != mb ? (ma < mb ? -1 : 1) : (na == nb ? 0 : (na < nb ? -1 : 1));
        break;
    }
    default:
        break;
    }
    if (order == 0) {
        order = compareFolded(lastComponent(a->path), lastComponent(b->path));
    }
    // Ties keep the search's order.
    return order != 0 ? order < 0 : left.row() < right.row();
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
