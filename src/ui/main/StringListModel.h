// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QUrl>
#include <string>
#include <vector>

namespace twinsweep::ui {

// A one-column table over a list of byte strings held elsewhere (the shared
// settings). Folder paths are shown through the file-name codec, so names
// that are not valid UTF-8 still show and round-trip.
class StringListModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum class Kind { FolderPaths, Extensions };

    StringListModel(std::vector<std::string>& list, Kind kind, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // Call after the list was changed behind the model's back.
    void reload();

    // Dropping folders (folder table only): accepted between rows, never onto
    // a row, and only when at least one dragged item is an existing folder.
    QStringList mimeTypes() const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

    // Inserts the folders among urls at row (the end when row is out of
    // range), in their order, skipping what is gone, not a folder or listed.
    // Returns how many were inserted.
    int insertFolders(const QList<QUrl>& urls, int row);

  private:
    std::vector<std::string>& list_;
    Kind kind_;
};

} // namespace twinsweep::ui
