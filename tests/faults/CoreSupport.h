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
#include "support/PlainComparison.h"

namespace twinsweep::testing {

// The groups of a search job over root, read by that many threads (0 counts as 1).
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

// The groups as a search job would leave them had the comparison gone by
// digests alone (the plain loop): what cleaning must still refuse when two
// different files share a digest.
inline FileList plainSearchJob(const std::string& root) {
    const auto settings = SettingsManager::shared();
    settings->duplicateFileList.clear();
    FileTools tools;
    tools.locationGate = LocationGate::anywhere();
    const AtomicFlag never;
    SearchContext context(never);
    for (const FilePtr& head : plainSearch(tools, context, {root}, true)) {
        if (!head->duplicates.empty()) {
            auto own = std::make_shared<DuplicateFile>(head->path, "", 0);
            own->seen = head->seen;
            own->folder = head->folder;
            head->duplicates.insert(head->duplicates.begin(), std::move(own));
            settings->duplicateFileList.push_back(head);
        }
    }
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
