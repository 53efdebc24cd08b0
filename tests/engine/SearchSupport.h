#pragma once

#include <algorithm>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "engine/FileTools.h"
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

// An engine that may look anywhere, with the shared cancel flag cleared.
inline void prepare(FileTools& tools, unsigned threads) {
    tools.locationGate = LocationGate::anywhere();
    tools.digestThreads = threads;
    tools.settingsManager->searchCanceledByUser = false;
}

inline FileList search(FileTools& tools, const std::vector<std::string>& folders,
                       bool ignorePackages = true) {
    return tools.findDuplicateFiles(folders, 0, UINT64_MAX, ignorePackages, {});
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
