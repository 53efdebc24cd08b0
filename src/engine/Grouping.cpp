// Size ordering and the content digest used by the comparison.
#include <algorithm>
#include <utility>
#include <vector>

#include "engine/Digest.h"
#include "engine/FileTools.h"

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

namespace {

// True when every entry of [low, high] has the same size.
bool allEqual(const FileList& list, std::int64_t low, std::int64_t high) {
    const std::uint64_t size = list[static_cast<std::size_t>(high)]->size;
    for (std::int64_t k = low; k < high; ++k) {
        if (list[static_cast<std::size_t>(k)]->size != size) {
            return false;
        }
    }
    return true;
}

} // namespace

void FileTools::quickSort(std::int64_t low, std::int64_t high) {
    // The recursive scheme, with the recursion on the left part kept on an
    // explicit stack: an already sorted list would otherwise nest n calls deep.
    // Parts are disjoint, so the order in which they are sorted does not change
    // the result.
    std::vector<std::pair<std::int64_t, std::int64_t>> pending;
    pending.emplace_back(low, high);
    while (!pending.empty()) {
        auto [lo, hi] = pending.back();
        pending.pop_back();
        while (lo < hi) {
            if (canceled()) {
                return;
            }
            if (allEqual(fileList, lo, hi)) {
                // Partitioning equal entries peels off one at a time, each time
                // swapping the last entry to the front: the net effect is one
                // rotation to the right, done here in one pass instead of n.
                std::rotate(fileList.begin() + lo, fileList.begin() + hi,
                            fileList.begin() + hi + 1);
                break;
            }
            const std::int64_t p = partition(lo, hi);
            pending.emplace_back(lo, p - 1);
            lo = p + 1;
        }
    }
}

std::array<unsigned char, 16> FileTools::contentDigest(const std::string& path) {
    return streamDigest(path);
}

} // namespace twinsweep
