// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "engine/File.h"

namespace twinsweep {

// The sizes of a file list in a flat array, with the smallest and largest size
// of every block of 16 entries kept in a tree. It lets the size sort see in
// O(log n) that a partition step would move nothing but its pivot, the steps
// that make an already ordered list cost n^2 under the plain scheme.
class SizeOrderIndex {
  public:
    explicit SizeOrderIndex(const FileList& list);

    std::uint64_t key(std::size_t i) const { return keys_[i]; }
    std::uint64_t maxIn(std::size_t lo, std::size_t hi) const; // inclusive bounds
    std::uint64_t minIn(std::size_t lo, std::size_t hi) const;

    void swap(std::size_t a, std::size_t b);
    // Rotates [lo, hi] one place to the right (the last entry comes first).
    void rotateRight(std::size_t lo, std::size_t hi);
    // Recomputes the blocks of [lo, hi] after the keys there were permuted.
    void refresh(std::size_t lo, std::size_t hi);

    std::vector<std::uint64_t>& keys() { return keys_; }

  private:
    static constexpr std::size_t kBlock = 16;
    void refreshBlock(std::size_t block);

    std::vector<std::uint64_t> keys_;
    std::size_t blocks_ = 0;
    // Bottom-up trees over the blocks: node k has children 2k and 2k+1, the
    // leaves are [blocks_, 2*blocks_).
    std::vector<std::uint64_t> max_;
    std::vector<std::uint64_t> min_;
};

} // namespace twinsweep
