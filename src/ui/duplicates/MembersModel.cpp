// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/duplicates/MembersModel.h"

#include <QFile>

namespace twinsweep::ui {

MembersModel::MembersModel(QObject* parent) : QAbstractTableModel(parent) {}

void MembersModel::setGroup(FilePtr group) {
    beginResetModel();
    group_ = std::move(group);
    endResetModel();
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
    const DuplicateFile& member = *group_->duplicates[static_cast<std::size_t>(index.row())];
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
        onToggle(index.row());
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
    return group_ && row >= 0 && static_cast<std::size_t>(row) < group_->duplicates.size() &&
           group_->duplicates[static_cast<std::size_t>(row)]->isProtected;
}

QString MembersModel::protectedCopyTip() {
    return QStringLiteral("In a protected folder: never marked or removed.");
}

QVariant MembersModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::ToolTipRole && section == ColumnDate) {
        return QStringLiteral("When each copy was created (its modification date where the file "
                              "system keeps no creation date)");
    }
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case ColumnPath:
        return QStringLiteral("Path");
    case ColumnDate:
        return QStringLiteral("Date");
    default:
        return QString();
    }
}

} // namespace twinsweep::ui
