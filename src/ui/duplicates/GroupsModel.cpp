#include "ui/duplicates/GroupsModel.h"

#include <QApplication>
#include <QFile>
#include <QPalette>

#include "engine/FileTools.h"
#include "selection/KeepOptions.h"
#include "ui/platform/FileTypeIcons.h"

namespace twinsweep::ui {

namespace {

QString lastComponent(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return QFile::decodeName(
        QByteArray::fromStdString(slash == std::string::npos ? path : path.substr(slash + 1)));
}

} // namespace

GroupsModel::GroupsModel(const FileList* groups, QObject* parent)
    : QAbstractTableModel(parent), groups_(groups) {}

int GroupsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(groups_->size());
}

int GroupsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

QVariant GroupsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || static_cast<std::size_t>(index.row()) >= groups_->size()) {
        return {};
    }
    const File& group = *(*groups_)[static_cast<std::size_t>(index.row())];
    switch (index.column()) {
    case ColumnIcon:
        return role == Qt::DecorationRole ? QVariant(fileIcon(group.path)) : QVariant();
    case ColumnName:
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
            return lastComponent(group.path);
        }
        return {};
    case ColumnSize:
        if (role == Qt::DisplayRole) {
            return QString::fromStdString(FileTools::fileSizeText(group.size));
        }
        return role == Qt::TextAlignmentRole ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter))
                                             : QVariant();
    default: {
        const auto members = static_cast<std::int64_t>(group.duplicates.size());
        const std::int64_t marked = markedCount(group);
        if (role == Qt::DisplayRole) {
            return QStringLiteral("%1/%2").arg(marked).arg(members);
        }
        if (role == Qt::ForegroundRole) {
            return countColour(members, marked);
        }
        return role == Qt::TextAlignmentRole ? QVariant(int(Qt::AlignCenter)) : QVariant();
    }
    }
}

QVariant GroupsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case ColumnName:
        return QStringLiteral("Name");
    case ColumnSize:
        return QStringLiteral("Size");
    case ColumnCount:
        return QStringLiteral("Marked");
    default:
        return QString();
    }
}

void GroupsModel::reset() {
    beginResetModel();
    endResetModel();
}

void GroupsModel::refresh() {
    if (!groups_->empty()) {
        emit dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
    }
}

void GroupsModel::refreshCount(int row) {
    if (row >= 0 && row < rowCount()) {
        emit dataChanged(index(row, ColumnCount), index(row, ColumnCount));
    }
}

QColor GroupsModel::countColour(std::int64_t members, std::int64_t marked) {
    const std::int64_t kept = members - marked;
    if (kept == 1) {
        return QColor(27, 209, 51);
    }
    if (kept == 0) {
        return QColor(249, 183, 27);
    }
    return QColor(Qt::red);
}

} // namespace twinsweep::ui
