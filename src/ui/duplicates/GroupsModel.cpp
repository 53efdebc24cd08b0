// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/duplicates/GroupsModel.h"

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <QPalette>
#include <QStyle>

#include "engine/FileTools.h"
#include "export/ResultsExport.h"
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
    case ColumnName: {
        if (role == Qt::DisplayRole) {
            return lastComponent(group.path);
        }
        if (role != Qt::ToolTipRole) {
            return {};
        }
        const QString path = QFile::decodeName(QByteArray::fromStdString(group.path));
        return matchedBySizeOnly(group, largeByContent_) ? path + QLatin1Char('\n') + sizeOnlyTip()
                                                         : path;
    }
    case ColumnSize:
        if (role == Qt::DisplayRole) {
            return QString::fromStdString(FileTools::fileSizeText(group.size));
        }
        if (role == Qt::DecorationRole || role == Qt::ToolTipRole) {
            if (!matchedBySizeOnly(group, largeByContent_)) {
                return {};
            }
            return role == Qt::ToolTipRole ? QVariant(sizeOnlyTip())
                                           : QVariant(QApplication::style()->standardIcon(
                                                 QStyle::SP_MessageBoxWarning));
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
        return tr("Name");
    case ColumnSize:
        return tr("Size");
    case ColumnCount:
        return tr("Marked");
    default:
        return QString();
    }
}

const File* GroupsModel::groupAt(int row) const {
    return row >= 0 && static_cast<std::size_t>(row) < groups_->size()
               ? (*groups_)[static_cast<std::size_t>(row)].get()
               : nullptr;
}

QString GroupsModel::sizeOnlyTip() {
    return tr("Matched by size only; contents not compared");
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

void CountDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    if (!(option.state & QStyle::State_Selected)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem cell(option);
    initStyleOption(&cell, index);
    const QString text = cell.text;
    cell.text.clear();
    const QWidget* view = option.widget;
    QStyle* style = view != nullptr ? view->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, view);

    // The count on a small plate of the table's own background, so its
    // colour reads on the selection colour.
    const QFontMetrics metrics(cell.font);
    const int width = metrics.horizontalAdvance(text) + 10;
    const int height = std::min(cell.rect.height() - 4, metrics.height() + 2);
    QRect plate(0, 0, std::min(width, cell.rect.width() - 2), height);
    plate.moveCenter(cell.rect.center());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(cell.palette.color(QPalette::Base));
    painter->drawRoundedRect(plate, 4, 4);
    painter->setPen(index.data(Qt::ForegroundRole).value<QColor>());
    painter->setFont(cell.font);
    painter->drawText(plate, Qt::AlignCenter, text);
    painter->restore();
}

} // namespace twinsweep::ui
