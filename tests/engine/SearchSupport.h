// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "engine/FileTools.h"
#include "fingerprints/FingerprintCache.h"
#include "settings/SettingsManager.h"

namespace twinsweep::testing {

// Records every notification of a run, and may act on one (to cancel).
struct PostLog {
    struct Post {
        std::string name;
        std::int64_t total;
        std::int64_t checked;
    };
    std::vector<Post> posts;
    std::function<void(const Post&)> onPost;
    ScopedObserver progress{kUpdateProgress, [this](auto& n, auto& i) { record(n, i); }};
    ScopedObserver finished{kSearchThreadFinished, [this](auto& n, auto& i) { record(n, i); }};

    void record(const std::string& name, const UserInfo& info) {
        const Post p{name, info.count(kTotalFiles) ? info.at(kTotalFiles) : -1,
                     info.count(kCheckedFiles) ? info.at(kCheckedFiles) : -1};
        posts.push_back(p);
        if (onPost) {
            onPost(p);
        }
    }
    long count(const std::string& name) const {
        return std::count_if(posts.begin(), posts.end(), [&](auto& p) { return p.name == name; });
    }
    // The "checkedFiles" values of the comparison posts, in order.
    std::vector<std::int64_t> checkedSequence() const {
        std::vector<std::int64_t> out;
        for (const Post& p : posts) {
            if (p.name == kUpdateProgress && p.checked > 0) {
                out.push_back(p.checked);
            }
        }
        return out;
    }
};

// An engine that may look anywhere, with the shared cancel flag cleared. With
// TWINSWEEP_TEST_FINGERPRINTS set, it remembers fingerprints in a new store
// (removed with the engine's last reference to it), so that every search
// gives what it gives without one while filling it.
inline void prepare(FileTools& tools, unsigned threads) {
    tools.locationGate = LocationGate::anywhere();
    tools.digestThreads = threads;
    tools.settingsManager->searchCanceledByUser = false;
    if (std::getenv("TWINSWEEP_TEST_FINGERPRINTS") != nullptr) {
        std::string folder = "/tmp/twinsweep-fingerprints-XXXXXX";
        if (::mkdtemp(folder.data()) != nullptr) {
            std::shared_ptr<FingerprintStore> store = openFingerprintCache(folder);
            tools.fingerprints.reset(store.get(), [store, folder](FingerprintStore*) mutable {
                store.reset();
                std::filesystem::remove_all(folder);
            });
        }
    }
}

inline FileList search(FileTools& tools, const std::vector<std::string>& folders,
                       bool ignorePackages = true) {
    return tools.findDuplicateFiles(tools.context(), folders, 0, UINT64_MAX, ignorePackages, {});
}

// One line per group: the head, then its copies, relative to root.
inline std::vector<std::string> groupLines(const FileList& heads, const std::string& root) {
    std::vector<std::string> out;
    for (const FilePtr& h : heads) {
        std::string line = h->path.substr(root.size() + 1);
        for (const DuplicateFilePtr& d : h->duplicates) {
            line += " " + d->path.substr(root.size() + 1);
        }
        out.push_back(line);
    }
    return out;
}

} // namespace twinsweep::testing
