// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "ui/main/StringListModel.h"

class QTableView;

namespace twinsweep::ui {

// The folder table: the folder list of StringListModel plus a "Protected" box
// per folder, kept in a second list (a folder is protected when its path is in
// it). Folders taken off the list lose their protection.
class FolderModel : public StringListModel {
    Q_OBJECT
  public:
    enum Column { ColumnPath, ColumnProtected, kColumns };

    FolderModel(std::vector<std::string>& folders, std::vector<std::string>& protectedFolders,
                QObject* parent);

    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // As StringListModel::reload, after dropping protection from folders no
    // longer listed.
    void reload();

    bool isProtected(int row) const;
    void setProtected(int row, bool on);

    // The path column takes the width; the box column only what it needs.
    static void fitColumns(QTableView* table);

  private:
    std::vector<std::string>& folders_;
    std::vector<std::string>& protected_;
};

} // namespace twinsweep::ui
