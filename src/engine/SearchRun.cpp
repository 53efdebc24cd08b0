// SPDX-License-Identifier: GPL-3.0-or-later
// The search run: nested folders dropped, walk, size order, comparison,
// collection of the group heads, with progress and cancellation throughout.
#include <algorithm>
#include <fcntl.h>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <thread>

#include "engine/Digest.h"
#include "engine/DigestPipeline.h"
#include "engine/FileTools.h"
#include "engine/WalkedFolders.h"
#include "settings/SettingsManager.h"

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

FileList FileTools::findDuplicateFiles(const std::vector<std::string>& folders,
                                       std::uint64_t minimum, std::uint64_t maximum,
                                       bool ignorePackages,
                                       const std::vector<std::string>& extensions) {
    const WalkedFolderSession openFolders;
    finishedPosted_ = false;
    byteProgress->start(0);
    // The walk posts once more when its top-level call returns: that is the
    // post after the walk.
    scanFolders(removeNestedFolders(folders), ignorePackages, extensions, minimum, maximum);
    takeEachFileOnce();
    if (canceled()) {
        post(kSearchThreadFinished);
        return {};
    }
    if (fileList.size() < 2) {
        return fileList;
    }
    quickSort(0, static_cast<std::int64_t>(fileList.size()) - 1);
    if (canceled()) {
        post(kSearchThreadFinished);
        return {};
    }
    if (!compareFiles()) {
        return {};
    }
    userInfo[kCheckedFiles] = static_cast<std::int64_t>(fileList.size());
    post(kUpdateProgress);

    // The heads are gathered in place: a second list beside the first would
    // hold a million more pointers at the peak. The records of the copies go
    // with their last owner (their member entries keep only the path).
    std::size_t kept = 0;
    for (std::size_t k = 0; k < fileList.size(); ++k) {
        if (canceled()) {
            post(kSearchThreadFinished);
            return {};
        }
        if (!fileList[k]->wasFound) {
            if (kept != k) {
                fileList[kept] = std::move(fileList[k]);
            }
            ++kept;
        }
    }
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

bool FileTools::compareFiles() {
    const std::size_t n = fileList.size();
    auto sameSize = [&](std::size_t a, std::size_t b) {
        return fileList[a]->size == fileList[b]->size;
    };

    // Runs of equal size that are compared by content go to the digest workers.
    std::vector<DigestPipeline::Run> runs;
    std::vector<std::size_t> runOf; // for each run start: its run number
    // What the readers fingerprinted is kept however the comparison ends,
    // once the readers have stopped (the pipeline goes first).
    struct Flush {
        FingerprintStore* store;
        ~Flush() {
            if (store != nullptr) {
                store->flush();
            }
        }
    } flush{fingerprints.get()};
    std::optional<DigestPipeline> pipeline;
    std::uint64_t bytesToCompare = 0;
    for (std::size_t i = 0; i < n;) {
        std::size_t j = i + 1;
        while (j < n && sameSize(i, j)) {
            ++j;
        }
        if (j - i >= 2 && byContent(fileList[i]->size)) {
            runs.push_back({i, j});
            bytesToCompare += (j - i) * fileList[i]->size;
        }
        i = j;
    }
    ByteProgress& progress = *byteProgress;
    progress.start(bytesToCompare);
    if (digestThreads > 0 && !runs.empty()) {
        pipeline.emplace(fileList, runs, digestThreads, settingsManager->searchCanceledByUser,
                         progress, fingerprints.get());
    }
    // The plain loop counts each file's bytes once it is digested.
    auto digest = [&](File& f) {
        if (f.MD5Hash.empty()) {
            f.MD5Hash = base64Text(streamDigest(f.path, f.folder));
            progress.add(f.size);
        }
    };
    auto cancelled = [&] {
        if (!canceled()) {
            return false;
        }
        post(kSearchThreadFinished);
        return true;
    };

    std::size_t run = 0;
    std::int64_t& checked = userInfo[kCheckedFiles];
    for (std::size_t i = 0; i + 1 < n; ++i) {
        checked = static_cast<std::int64_t>(i) + 1;
        post(kUpdateProgress);
        if (cancelled()) {
            return false;
        }
        File& a = *fileList[i];
        if (a.wasFound || !sameSize(i, i + 1)) {
            continue;
        }
        if (cancelled()) {
            return false;
        }
        if (!byContent(a.size)) {
            // Large files: equal size alone makes them copies.
            for (std::size_t j = i + 1; j < n && sameSize(i, j); ++j) {
                File& b = *fileList[j];
                b.wasFound = true;
                a.duplicates.push_back(memberFor(b));
                if (j + 1 < n && sameSize(i, j + 1) && cancelled()) {
                    return false;
                }
            }
            continue;
        }
        if (pipeline) {
            while (runs[run].end <= i) {
                ++run;
            }
            if (!pipeline->waitFor(run)) {
                post(kSearchThreadFinished);
                return false;
            }
            // Follow the chain of equal digests instead of testing every pair:
            // the same copies, in the same order.
            const std::size_t begin = runs[run].begin;
            for (std::size_t k = i - begin, step = 0; (step = pipeline->nextCopy(run, k)) != 0;) {
                k += step;
                File& b = *fileList[begin + k];
                b.wasFound = true;
                a.duplicates.push_back(memberFor(b));
                if (cancelled()) {
                    return false;
                }
            }
            continue;
        }
        for (std::size_t j = i + 1; j < n && sameSize(i, j); ++j) {
            File& b = *fileList[j];
            digest(a);
            digest(b);
            if (a.MD5Hash == b.MD5Hash) {
                b.wasFound = true;
                a.duplicates.push_back(memberFor(b));
            }
            if (j + 1 < n && sameSize(i, j + 1) && cancelled()) {
                return false;
            }
        }
    }
    return true;
}

} // namespace twinsweep
