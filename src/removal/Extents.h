// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace twinsweep {

// Where a file's bytes lie on its device, as FIEMAP tells it (written out
// first, so delayed allocations have a place).
struct Extent {
    std::uint64_t physical = 0;
    std::uint64_t length = 0;
    bool shared = false; // the file system says another file (or snapshot) uses it too
};

// The extents of the open file; absent when the file system can't say.
std::optional<std::vector<Extent>> extentsOf(int fd);

// Bytes of the extents of a that lie within those of b (by physical address).
std::uint64_t bytesWithin(const std::vector<Extent>& a, const std::vector<Extent>& b);

// Bytes of before that were not shared and are no longer used in after: what
// a file's change of extents gave back to the file system.
std::uint64_t bytesLetGo(const std::vector<Extent>& before, const std::vector<Extent>& after);

} // namespace twinsweep
