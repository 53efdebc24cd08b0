// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/main/FolderModel.h"

#include <QHeaderView>
#include <QTableView>
#include <algorithm>

namespace twinsweep::ui {

FolderModel::FolderModel(std::vector<std::string>& folders,
                         std::vector<std::string>& protectedFolders, QObject* parent)
    : StringListModel(folders, Kind::FolderPaths, parent), folders_(folders),
      protected_(protectedFolders) {}

int FolderModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

bool FolderModel::isProtected(int row) const {
    if (row < 0 || row >= static_cast<int>(folders_.size())) {
        return false;
    }
    const std::string& path = folders_[static_cast<std::size_t>(row)];
    return std::find(protected_.begin(), protected_.end(), path) != protected_.end();
}

void FolderModel::setProtected(int row, bool on) {
    if (row < 0 || row >= static_cast<int>(folders_.size()) || isProtected(row) == on) {
        return;
    }
    const std::string& path = folders_[static_cast<std::size_t>(row)];
    if (on) {
        protected_.push_back(path);
    } else {
        std::erase(protected_, path);
    }
    const QModelIndex cell = index(row, ColumnProtected);
    emit dataChanged(cell, cell, {Qt::CheckStateRole});
}

QVariant FolderModel::data(const QModelIndex& index, int role) const {
    if (index.column() != ColumnProtected) {
        return StringListModel::data(index, role);
    }
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    if (role == Qt::CheckStateRole) {
        return isProtected(index.row()) ? Qt::Checked : Qt::Unchecked;
    }
    if (role == Qt::ToolTipRole) {
        return tr("Copies in a protected folder are never marked or removed.");
    }
    return {};
}

bool FolderModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || index.column() != ColumnProtected || role != Qt::CheckStateRole) {
        return false;
    }
    setProtected(index.row(), value.value<Qt::CheckState>() == Qt::Checked);
    return true;
}

QVariant FolderModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (section == ColumnProtected && orientation == Qt::Horizontal && role == Qt::DisplayRole) {
        return tr("Protected");
    }
    return StringListModel::headerData(section, orientation, role);
}

Qt::ItemFlags FolderModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags f = StringListModel::flags(index);
    if (index.isValid() && index.column() == ColumnProtected) {
        f |= Qt::ItemIsUserCheckable;
    }
    return f;
}

void FolderModel::reload() {
    std::erase_if(protected_, [this](const std::string& p) {
        return std::find(folders_.begin(), folders_.end(), p) == folders_.end();
    });
    StringListModel::reload();
}

void FolderModel::fitColumns(QTableView* table) {
    QHeaderView* header = table->horizontalHeader();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(ColumnPath, QHeaderView::Stretch);
    header->setSectionResizeMode(ColumnProtected, QHeaderView::ResizeToContents);
}

} // namespace twinsweep::ui
