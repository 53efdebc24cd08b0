// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <set>
#include <string>

#include "FaultSupport.h"
#include "engine/FileTools.h"
#include "engine/SearchJob.h"
#include "removal/PlatformRemover.h"
#include "selection/Cleaning.h"
#include "settings/SettingsManager.h"

namespace twinsweep::testing {

// The groups of a search job over root (0 threads: the plain comparison loop).
inline FileList searchJob(const std::string& root, unsigned threads) {
    const auto settings = SettingsManager::shared();
    settings->duplicateFileList.clear();
    settings->fileList.clear();
    settings->listFolderPaths = {root};
    settings->minimumFileSize = 0;
    settings->maximumFileSize = UINT64_MAX;
    settings->customFileTypes = false;
    settings->ignorePackages = true;
    settings->searchCanceledByUser = false;
    FileTools tools;
    tools.locationGate = LocationGate::anywhere();
    tools.digestThreads = threads;
    runSearchJob(*settings, tools);
    return settings->duplicateFileList;
}

// Each group as the set of its members' paths relative to root.
inline std::set<std::set<std::string>> groupSets(const FileList& groups, const std::string& root) {
    std::set<std::set<std::string>> out;
    for (const FilePtr& g : groups) {
        std::set<std::string> members;
        for (const DuplicateFilePtr& m : g->duplicates) {
            members.insert(rel(root, m->path));
        }
        out.insert(members);
    }
    return out;
}

struct SayYes : CleaningPrompt {
    bool ask(CleaningAlert) override { return true; }
};

// Cleans every group of the shared results for good, answering yes.
inline CleaningReport cleanForGood() {
    const auto settings = SettingsManager::shared();
    settings->moveToTrash = false;
    SayYes yes;
    PlatformRemover remover;
    return clean(settings->duplicateFileList, *settings, yes, remover);
}

} // namespace twinsweep::testing
