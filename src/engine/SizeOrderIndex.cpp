// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SizeOrderIndex.h"

#include <algorithm>
#include <limits>

namespace twinsweep {

SizeOrderIndex::SizeOrderIndex(const FileList& list) {
    keys_.reserve(list.size());
    for (const FilePtr& f : list) {
        keys_.push_back(f->size);
    }
    blocks_ = std::max<std::size_t>(1, (keys_.size() + kBlock - 1) / kBlock);
    max_.assign(2 * blocks_, 0);
    min_.assign(2 * blocks_, std::numeric_limits<std::uint64_t>::max());
    for (std::size_t b = 0; b < blocks_; ++b) {
        const std::size_t first = b * kBlock;
        const std::size_t last = std::min(keys_.size(), first + kBlock);
        for (std::size_t i = first; i < last; ++i) {
            max_[blocks_ + b] = std::max(max_[blocks_ + b], keys_[i]);
            min_[blocks_ + b] = std::min(min_[blocks_ + b], keys_[i]);
        }
    }
    for (std::size_t k = blocks_ - 1; k >= 1; --k) {
        max_[k] = std::max(max_[2 * k], max_[2 * k + 1]);
        min_[k] = std::min(min_[2 * k], min_[2 * k + 1]);
    }
}

void SizeOrderIndex::refreshBlock(std::size_t block) {
    const std::size_t first = block * kBlock;
    const std::size_t last = std::min(keys_.size(), first + kBlock);
    std::uint64_t hi = 0;
    std::uint64_t lo = std::numeric_limits<std::uint64_t>::max();
    for (std::size_t i = first; i < last; ++i) {
        hi = std::max(hi, keys_[i]);
        lo = std::min(lo, keys_[i]);
    }
    std::size_t k = blocks_ + block;
    max_[k] = hi;
    min_[k] = lo;
    for (k /= 2; k >= 1; k /= 2) {
        const std::uint64_t nmax = std::max(max_[2 * k], max_[2 * k + 1]);
        const std::uint64_t nmin = std::min(min_[2 * k], min_[2 * k + 1]);
        if (nmax == max_[k] && nmin == min_[k]) {
            break; // nothing above changes either
        }
        max_[k] = nmax;
        min_[k] = nmin;
    }
}

void SizeOrderIndex::refresh(std::size_t lo, std::size_t hi) {
    for (std::size_t b = lo / kBlock; b <= hi / kBlock; ++b) {
        refreshBlock(b);
    }
}

void SizeOrderIndex::swap(std::size_t a, std::size_t b) {
    std::swap(keys_[a], keys_[b]);
    refreshBlock(a / kBlock);
    if (b / kBlock != a / kBlock) {
        refreshBlock(b / kBlock);
    }
}

void SizeOrderIndex::rotateRight(std::size_t lo, std::size_t hi) {
    std::rotate(keys_.begin() + static_cast<std::ptrdiff_t>(lo),
                keys_.begin() + static_cast<std::ptrdiff_t>(hi),
                keys_.begin() + static_cast<std::ptrdiff_t>(hi) + 1);
    refresh(lo, hi);
}

std::uint64_t SizeOrderIndex::maxIn(std::size_t lo, std::size_t hi) const {
    std::uint64_t best = 0;
    std::size_t bl = lo / kBlock;
    std::size_t bh = hi / kBlock;
    if (bl == bh || bh == bl + 1) {
        for (std::size_t i = lo; i <= hi; ++i) {
            best = std::max(best, keys_[i]);
        }
        return best;
    }
    for (std::size_t i = lo; i < (bl + 1) * kBlock; ++i) {
        best = std::max(best, keys_[i]);
    }
    for (std::size_t i = bh * kBlock; i <= hi; ++i) {
        best = std::max(best, keys_[i]);
    }
    // Whole blocks bl+1 .. bh-1.
    for (std::size_t l = blocks_ + bl + 1, r = blocks_ + bh; l < r; l /= 2, r /= 2) {
        if (l & 1) {
            best = std::max(best, max_[l++]);
        }
        if (r & 1) {
            best = std::max(best, max_[--r]);
        }
    }
    return best;
}

std::uint64_t SizeOrderIndex::minIn(std::size_t lo, std::size_t hi) const {
    std::uint64_t best = std::numeric_limits<std::uint64_t>::max();
    std::size_t bl = lo / kBlock;
    std::size_t bh = hi / kBlock;
    if (bl == bh || bh == bl + 1) {
        for (std::size_t i = lo; i <= hi; ++i) {
            best = std::min(best, keys_[i]);
        }
        return best;
    }
    for (std::size_t i = lo; i < (bl + 1) * kBlock; ++i) {
        best = std::min(best, keys_[i]);
    }
    for (std::size_t i = bh * kBlock; i <= hi; ++i) {
        best = std::min(best, keys_[i]);
    }
    for (std::size_t l = blocks_ + bl + 1, r = blocks_ + bh; l < r; l /= 2, r /= 2) {
        if (l & 1) {
            best = std::min(best, min_[l++]);
        }
        if (r & 1) {
            best = std::min(best, min_[--r]);
        }
    }
    return best;
}

} // namespace twinsweep
