#pragma once

#include <QAbstractItemModel>
#include <QTableView>
#include <string>
#include <vector>

#include "UiTestSupport.h"
#include "engine/FileTools.h"
#include "engine/LocationGate.h"
#include "engine/SearchJob.h"
#include "settings/SettingsManager.h"
#include "support/TempTree.h"
#include "ui/duplicates/ViewControllerDuplicates.h"

namespace twinsweep::testing {

// A real search over a temporary folder, its groups left in the shared
// settings as the progress window leaves them for the results window.
struct FoundDuplicates {
    TempTree tree;

    // Runs the search over the whole tree and returns the number of groups.
    std::size_t search() {
        FileTools tools;
        tools.locationGate = LocationGate::anywhere();
        auto settings = SettingsManager::shared();
        settings->searchCanceledByUser = false;
        settings->listFolderPaths = {tree.root()};
        settings->minimumFileSize = 0;
        settings->customFileTypes = false;
        settings->duplicateFileList.clear();
        runSearchJob(*settings, tools);
        settings->listFolderPaths.clear();
        return settings->duplicateFileList.size();
    }

    // The group whose head's file name is name, or null.
    static FilePtr group(const std::string& name) {
        for (const FilePtr& g : SettingsManager::shared()->duplicateFileList) {
            if (g->path.size() >= name.size() &&
                g->path.compare(g->path.size() - name.size(), name.size(), name) == 0) {
                return g;
            }
        }
        return nullptr;
    }
};

// Member dates as the search writes them, so keep oldest / newest have a
// known answer whatever the file system records.
inline void setDates(const FilePtr& group, const std::vector<std::string>& dates) {
    for (std::size_t i = 0; i < dates.size() && i < group->duplicates.size(); ++i) {
        group->duplicates[i]->date = dates[i];
    }
}

inline std::vector<std::int64_t> marksOf(const FilePtr& group) {
    std::vector<std::int64_t> out;
    for (const auto& m : group->duplicates) {
        out.push_back(m->checkState);
    }
    return out;
}

// Waits until the window has no update running and nothing queued.
inline bool settled(const ui::ViewControllerDuplicates& window) {
    return waitUntil([&] { return !window.updating && window.jobsInFlight() == 0; });
}

inline QString cell(QTableView* table, int row, int column, int role = Qt::DisplayRole) {
    return table->model()->index(row, column).data(role).toString();
}

} // namespace twinsweep::testing
