// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/duplicates/MembersModel.h"

#include <QFile>
#include <algorithm>
#include <numeric>

#include "selection/KeepOptions.h"

namespace twinsweep::ui {

MembersModel::MembersModel(QObject* parent) : QAbstractTableModel(parent) {}

void MembersModel::setGroup(FilePtr group) {
    beginResetModel();
    group_ = std::move(group);
    placeRows();
    endResetModel();
}

int MembersModel::memberAt(int row) const {
    return row >= 0 && static_cast<std::size_t>(row) < order_.size()
               ? order_[static_cast<std::size_t>(row)]
               : -1;
}

int MembersModel::rowOf(int member) const {
    const auto at = std::find(order_.begin(), order_.end(), member);
    return at == order_.end() ? -1 : static_cast<int>(at - order_.begin());
}

void MembersModel::placeRows() {
    order_.resize(group_ ? group_->duplicates.size() : 0);
    std::iota(order_.begin(), order_.end(), 0);
    if (!group_ || sortColumn_ < 0) {
        return;
    }
    const auto& members = group_->duplicates;
    const auto key = [&](int m) {
        const DuplicateFile& d = *members[static_cast<std::size_t>(m)];
        // Dates by the time they show, not their text (a 12-hour clock).
        const std::int64_t number = sortColumn_ == ColumnCheck ? std::int64_t{d.checkState}
                                    : sortColumn_ == ColumnDate
                                        ? parseMemberDate(d.date).value_or(0)
                                        : 0;
        return std::pair<std::int64_t, std::string_view>(number, d.path.view());
    };
    std::stable_sort(order_.begin(), order_.end(), [&](int a, int b) {
        return sortOrder_ == Qt::AscendingOrder ? key(a) < key(b) : key(b) < key(a);
    });
}

void MembersModel::sort(int column, Qt::SortOrder order) {
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList kept = persistentIndexList();
    std::vector<int> keptMembers;
    for (const QModelIndex& index : kept) {
        keptMembers.push_back(memberAt(index.row()));
    }
    sortColumn_ = column;
    sortOrder_ = order;
    placeRows();
    for (int i = 0; i < kept.size(); ++i) {
        const int row = rowOf(keptMembers[static_cast<std::size_t>(i)]);
        changePersistentIndex(kept[i], row < 0 ? QModelIndex() : index(row, kept[i].column()));
    }
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void MembersModel::refresh() {
    // Only marks change in place; the member list keeps its length.
    if (rowCount() > 0) {
        emit dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
    }
}

int MembersModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !group_ ? 0 : static_cast<int>(group_->duplicates.size());
}

int MembersModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

QVariant MembersModel::data(const QModelIndex& index, int role) const {
    if (!group_ || !index.isValid() ||
        static_cast<std::size_t>(index.row()) >= group_->duplicates.size()) {
        return {};
    }
    const DuplicateFile& member =
        *group_->duplicates[static_cast<std::size_t>(memberAt(index.row()))];
    switch (index.column()) {
    case ColumnCheck:
        if (role == Qt::CheckStateRole) {
            return member.checkState == 1 ? Qt::Checked : Qt::Unchecked;
        }
        if (role == Qt::ToolTipRole && member.isProtected) {
            return protectedCopyTip();
        }
        return {};
    case ColumnPath:
        if (role == Qt::DisplayRole) {
            return QFile::decodeName(QByteArray::fromStdString(member.path));
        }
        if (role == Qt::ToolTipRole) {
            const QString path = QFile::decodeName(QByteArray::fromStdString(member.path));
            return member.isProtected ? path + QLatin1Char('\n') + protectedCopyTip() : path;
        }
        return {};
    default:
        return role == Qt::DisplayRole ? QVariant(QString::fromStdString(member.date)) : QVariant();
    }
}

bool MembersModel::setData(const QModelIndex& index, const QVariant&, int role) {
    // The value passed is not used: a click flips the mark.
    if (!group_ || role != Qt::CheckStateRole || index.column() != ColumnCheck ||
        index.row() >= rowCount() || isProtectedRow(index.row())) {
        return false;
    }
    if (onToggle) {
        onToggle(memberAt(index.row()));
    }
    emit dataChanged(index, index, {Qt::CheckStateRole});
    return true;
}

Qt::ItemFlags MembersModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (index.column() == ColumnCheck) {
        if (isProtectedRow(index.row())) {
            f &= ~Qt::ItemIsEnabled; // shown, never ticked
        } else {
            f |= Qt::ItemIsUserCheckable;
        }
    }
    return f;
}

bool MembersModel::isProtectedRow(int row) const {
    const int member = memberAt(row);
    return group_ && member >= 0 && static_cast<std::size_t>(member) < group_->duplicates.size() &&
           group_->duplicates[static_cast<std::size_t>(member)]->isProtected;
}

QString MembersModel::protectedCopyTip() {
    return tr("In a protected folder: never marked or removed.");
}

QVariant MembersModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::ToolTipRole && section == ColumnDate) {
        return tr("When each copy was created (its modification date where the file system keeps "
                  "no creation date)");
    }
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case ColumnPath:
        return tr("Path");
    case ColumnDate:
        return tr("Date");
    default:
        return QString();
    }
}

} // namespace twinsweep::ui
