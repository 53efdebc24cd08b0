// SPDX-License-Identifier: GPL-3.0-or-later
// The search run: nested folders dropped, then its phases (walk, size order,
// comparison in Comparison.cpp, collection of the group heads) over the
// context its starter hands in, with one way out for a cancelled run.
#include <algorithm>
#include <fcntl.h>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <thread>

#include "engine/Digest.h"
#include "engine/FileTools.h"
#include "engine/WalkedFolders.h"

namespace twinsweep {

namespace {

bool liesInside(const std::string& inner, const std::string& outer) {
    if (outer == "/") {
        return inner != "/" && !inner.empty() && inner.front() == '/';
    }
    return inner.size() > outer.size() + 1 && inner.compare(0, outer.size(), outer) == 0 &&
           inner[outer.size()] == '/';
}

std::ptrdiff_t firstPosition(const std::vector<std::string>& list, const std::string& value) {
    const auto it = std::find(list.begin(), list.end(), value);
    return it == list.end() ? -1 : it - list.begin();
}

} // namespace

unsigned FileTools::defaultDigestThreads() {
    return std::max(1U, std::thread::hardware_concurrency());
}

std::vector<std::string> FileTools::removeNestedFolders(const std::vector<std::string>& folders) {
    std::vector<std::string> reduced = folders;
    for (const std::string& a : folders) {
        const std::vector<std::string> snapshot = reduced;
        for (const std::string& b : snapshot) {
            // Equal entries share their first position, so both are kept.
            if (firstPosition(reduced, a) == firstPosition(reduced, b) || !liesInside(b, a)) {
                continue;
            }
            const auto it = std::find(reduced.begin(), reduced.end(), b);
            if (it != reduced.end()) {
                reduced.erase(it);
            }
        }
    }
    return reduced;
}

bool FileTools::byContent(std::uint64_t size) const {
    return size < kLargeFileThreshold || compareLargeFilesByContent;
}

DuplicateFilePtr FileTools::memberFor(const File& file) const {
    // A file that vanished since the walk has no date to show: the empty text.
    // The member shares the record's path text rather than copying it.
    auto member = std::make_shared<DuplicateFile>(
        file.path, fileDateText(file.path, DateKind::Creation, file.folder).value_or(""), 0);
    member->seen = file.seen;
    member->folder = file.folder;
    return member;
}

FileList FileTools::findDuplicateFiles(SearchContext& context,
                                       const std::vector<std::string>& folders,
                                       std::uint64_t minimum, std::uint64_t maximum,
                                       bool ignorePackages,
                                       const std::vector<std::string>& extensions) {
    SearchContext* const before = context_;
    context_ = &context;
    const WalkedFolderSession openFolders;
    finishedPosted_ = false;
    context.bytes->start(0);
    std::optional<FileList> heads;
    walkPhase(removeNestedFolders(folders), ignorePackages, extensions, minimum, maximum);
    if (canceled()) {
        heads.reset();
    } else if (fileList.size() < 2) {
        heads = fileList;
    } else if (sizeOrderPhase() && comparisonPhase()) {
        heads = collectionPhase();
    }
    context_ = before;
    if (!heads) {
        // The one way out of a cancelled run, whichever phase noticed.
        post(kSearchThreadFinished);
        return {};
    }
    return std::move(*heads);
}

namespace {

// Keeps the time of the phase however it ends.
struct PhaseTimer {
    PhaseProgress& phases;
    ~PhaseTimer() { phases.end(); }
};

} // namespace

void FileTools::walkPhase(const std::vector<std::string>& folders, bool ignorePackages,
                          const std::vector<std::string>& extensions, std::uint64_t minimum,
                          std::uint64_t maximum) {
    PhaseProgress& phases = context_->phases;
    phases.begin(SearchPhase::Walk, 0, 0);
    const PhaseTimer timer{phases};
    walkCounted_ = fileList.size();
    walkBytes_ = 0;
    // The walk posts once more when its top-level call returns: that is the
    // post after the walk.
    scanFolders(folders, ignorePackages, extensions, minimum, maximum);
    takeEachFileOnce();
    if (walkCounted_ != fileList.size()) {
        walkBytes_ = 0;
        for (const FilePtr& f : fileList) {
            walkBytes_ += f->size;
        }
    }
    phases.advance(fileList.size(), walkBytes_);
}

bool FileTools::sizeOrderPhase() {
    PhaseProgress& phases = context_->phases;
    phases.begin(SearchPhase::SizeOrder, fileList.size(), walkBytes_);
    const PhaseTimer timer{phases};
    quickSort(0, static_cast<std::int64_t>(fileList.size()) - 1);
    if (canceled()) {
        return false;
    }
    phases.advance(fileList.size(), walkBytes_);
    return true;
}

std::optional<FileList> FileTools::collectionPhase() {
    PhaseProgress& phases = context_->phases;
    phases.begin(SearchPhase::Collection, fileList.size(), 0);
    const PhaseTimer timer{phases};
    // The heads are gathered in place: a second list beside the first would
    // hold a million more pointers at the peak. The records of the copies go
    // with their last owner (their member entries keep only the path).
    std::size_t kept = 0;
    std::uint64_t bytes = 0;
    for (std::size_t k = 0; k < fileList.size(); ++k) {
        if (canceled()) {
            // What was moved up leaves empty places behind: close them.
            std::erase_if(fileList, [](const FilePtr& f) { return !f; });
            return std::nullopt;
        }
        if (!fileList[k]->wasFound) {
            bytes += fileList[k]->size;
            if (kept != k) {
                fileList[kept] = std::move(fileList[k]);
            }
            ++kept;
        }
    }
    phases.advance(fileList.size(), bytes);
    fileList.resize(kept);
    fileList.shrink_to_fit();
    return std::move(fileList);
}

void FileTools::takeEachFileOnce() {
    // The walk takes a file with several hard links once, but a regular file
    // with a package extension goes its own way there (as a package of size
    // 0). Reached under two names it would be its own copy: keep the name met
    // first. Such files are rare, so the common case costs one pass over sizes.
    std::set<std::pair<std::uint32_t, std::uint64_t>> linked;
    for (const FilePtr& f : fileList) {
        if (f->size != 0 || !f->seen.known || !packageSet_.contains(f->ext.view())) {
            continue;
        }
        // Through the folder the walk found it in, as every read of the search.
        ItemAt at;
        struct stat st {};
        if (locateItem(f->folder, f->path, at) &&
            ::fstatat(at.dirFd, at.name, &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(st.st_mode) &&
            st.st_nlink > 1) {
            linked.insert({f->seen.device, f->seen.inode});
        }
    }
    if (linked.empty()) {
        return;
    }
    std::set<std::pair<std::uint32_t, std::uint64_t>> taken;
    std::erase_if(fileList, [&](const FilePtr& f) {
        const std::pair<std::uint32_t, std::uint64_t> id{f->seen.device, f->seen.inode};
        return f->seen.known && linked.contains(id) && !taken.insert(id).second;
    });
    userInfo[kTotalFiles] = static_cast<std::int64_t>(fileList.size());
}

} // namespace twinsweep
