// SPDX-License-Identifier: GPL-3.0-or-later
// Size ordering, and the content digest of the plain comparison and of the
// outputs that show it.
#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "engine/Digest.h"
#include "engine/FileTools.h"
#include "engine/SizeOrderIndex.h"

namespace twinsweep {

std::int64_t FileTools::partition(std::int64_t low, std::int64_t high) {
    // Lomuto, pivot the last entry. Equal sizes are not moved: the tie order
    // decides which copy heads a group, so the scheme must not change.
    const std::uint64_t pivot = fileList[static_cast<std::size_t>(high)]->size;
    std::int64_t i = low;
    for (std::int64_t j = low; j < high; ++j) {
        if (fileList[static_cast<std::size_t>(j)]->size > pivot) {
            std::swap(fileList[static_cast<std::size_t>(i)], fileList[static_cast<std::size_t>(j)]);
            ++i;
        }
    }
    std::swap(fileList[static_cast<std::size_t>(i)], fileList[static_cast<std::size_t>(high)]);
    return i;
}

void FileTools::quickSort(std::int64_t low, std::int64_t high) {
    // The recursive scheme, step for step, so ties end up exactly where it puts
    // them. Two things make it affordable on any input: the recursion on the
    // left part is kept on an explicit stack (an ordered list would otherwise
    // nest n calls deep; parts are disjoint, so the order in which they are
    // sorted does not matter), and the sizes live in an index that tells in
    // O(log n) when a step would move nothing but its pivot, so such steps
    // cost no scan.
    if (low >= high) {
        return;
    }
    SizeOrderIndex index(fileList);
    auto& keys = index.keys();
    auto at = [](std::int64_t k) { return static_cast<std::size_t>(k); };
    std::vector<std::pair<std::int64_t, std::int64_t>> pending;
    pending.emplace_back(low, high);
    while (!pending.empty()) {
        auto [lo, hi] = pending.back();
        pending.pop_back();
        while (lo < hi) {
            if (canceled()) {
                return;
            }
            const std::uint64_t pivot = keys[at(hi)];
            std::int64_t p = lo;
            if (index.maxIn(at(lo), at(hi - 1)) <= pivot) {
                if (index.minIn(at(lo), at(hi - 1)) == pivot) {
                    // All equal: the steps peel off one entry at a time, each
                    // swapping the last entry to the front; together they
                    // rotate the part one place to the right.
                    std::rotate(fileList.begin() + lo, fileList.begin() + hi,
                                fileList.begin() + hi + 1);
                    index.rotateRight(at(lo), at(hi));
                    break;
                }
                // Nothing is larger than the pivot: only the pivot moves.
                std::swap(fileList[at(lo)], fileList[at(hi)]);
                index.swap(at(lo), at(hi));
            } else if (index.minIn(at(lo), at(hi - 1)) > pivot) {
                p = hi; // everything is larger and stays where it is
            } else {
                // The plain step, on the flat keys; the same swaps on the list.
                for (std::int64_t j = lo; j < hi; ++j) {
                    if (keys[at(j)] > pivot) {
                        std::swap(keys[at(p)], keys[at(j)]);
                        std::swap(fileList[at(p)], fileList[at(j)]);
                        ++p;
                    }
                }
                std::swap(keys[at(p)], keys[at(hi)]);
                std::swap(fileList[at(p)], fileList[at(hi)]);
                index.refresh(at(lo), at(hi));
            }
            pending.emplace_back(lo, p - 1);
            lo = p + 1;
        }
    }
}

std::array<unsigned char, 16> FileTools::contentDigest(const std::string& path) {
    return streamDigest(path);
}

std::string FileTools::digestText(File& file) const {
    static std::mutex lock;
    std::lock_guard guard(lock);
    if (file.MD5Hash.empty() && !file.duplicates.empty() && byContent(file.size)) {
        // Every member has the group's bytes, and the head's own entry (first
        // while it is there) may have been cleaned since: the first member
        // that can still be read gives the digest.
        for (const DuplicateFilePtr& m : file.duplicates) {
            const int fd = openForReading(m->path, m->folder);
            if (fd >= 0) {
                file.MD5Hash = base64Text(streamDigestOf(fd, m->path));
                break;
            }
        }
        if (file.MD5Hash.empty()) {
            file.MD5Hash = base64Text(streamDigest(file.path, file.folder));
        }
    }
    return file.MD5Hash.str();
}

} // namespace twinsweep
