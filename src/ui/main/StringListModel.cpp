// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/main/StringListModel.h"

#include <QFile>
#include <QFileIconProvider>
#include <QIcon>
#include <QMimeData>
#include <algorithm>
#include <sys/stat.h>

namespace twinsweep::ui {

namespace {

// The path's own bytes: a name that is not valid UTF-8 arrives percent-encoded
// and must not be decoded as text.
std::string localPath(const QUrl& url) {
    if (!url.isLocalFile()) {
        return {};
    }
    QByteArray bytes = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    while (bytes.size() > 1 && bytes.endsWith('/')) {
        bytes.chop(1);
    }
    return bytes.toStdString();
}

bool isFolder(const std::string& path) {
    struct stat info {};
    return !path.empty() && ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isFolderUrl(const QUrl& url) {
    return isFolder(localPath(url));
}

QIcon folderIcon() {
    static const QIcon icon = [] {
        const QIcon themed = QIcon::fromTheme(QStringLiteral("folder"));
        return themed.isNull() ? QFileIconProvider().icon(QFileIconProvider::Folder) : themed;
    }();
    return icon;
}

} // namespace

StringListModel::StringListModel(std::vector<std::string>& list, Kind kind, QObject* parent)
    : QAbstractTableModel(parent), list_(list), kind_(kind) {}

int StringListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(list_.size());
}

int StringListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 1;
}

QVariant StringListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= static_cast<int>(list_.size())) {
        return {};
    }
    const std::string& item = list_[static_cast<std::size_t>(index.row())];
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
        return kind_ == Kind::FolderPaths ? QFile::decodeName(QByteArray::fromStdString(item))
                                          : QString::fromStdString(item);
    }
    if (role == Qt::DecorationRole && kind_ == Kind::FolderPaths) {
        return folderIcon();
    }
    return {};
}

QVariant StringListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal || section != 0) {
        return {};
    }
    return kind_ == Kind::FolderPaths ? tr("Folder") : tr("Extension");
}

Qt::ItemFlags StringListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        // Only the table itself takes drops, so a drop never lands on a row.
        return kind_ == Kind::FolderPaths ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

void StringListModel::reload() {
    beginResetModel();
    endResetModel();
}

QStringList StringListModel::mimeTypes() const {
    return {QStringLiteral("text/uri-list")};
}

Qt::DropActions StringListModel::supportedDropActions() const {
    if (kind_ != Kind::FolderPaths) {
        return Qt::IgnoreAction;
    }
    return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
}

bool StringListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                      const QModelIndex& parent) const {
    if (kind_ != Kind::FolderPaths || parent.isValid() || data == nullptr || !data->hasUrls()) {
        return false;
    }
    const QList<QUrl> urls = data->urls();
    return std::any_of(urls.begin(), urls.end(), isFolderUrl);
}

bool StringListModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row,
                                   int column, const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent)) {
        return false;
    }
    insertFolders(data->urls(), row);
    return true;
}

int StringListModel::insertFolders(const QList<QUrl>& urls, int row) {
    int at =
        (row < 0 || row > static_cast<int>(list_.size())) ? static_cast<int>(list_.size()) : row;
    int inserted = 0;
    for (const QUrl& url : urls) {
        const std::string path = localPath(url);
        if (!isFolder(path) || std::find(list_.begin(), list_.end(), path) != list_.end()) {
            continue;
        }
        beginInsertRows({}, at, at);
        list_.insert(list_.begin() + at, path);
        endInsertRows();
        ++at;
        ++inserted;
    }
    return inserted;
}

} // namespace twinsweep::ui
