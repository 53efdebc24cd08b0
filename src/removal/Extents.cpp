// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/Extents.h"

#include <algorithm>
#ifdef __linux__
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

namespace twinsweep {

namespace {

constexpr unsigned kBatch = 256;

struct Range {
    std::uint64_t from;
    std::uint64_t to;
};

// The extents of b as sorted, merged ranges.
std::vector<Range> merged(const std::vector<Extent>& b) {
    std::vector<Range> ranges;
    ranges.reserve(b.size());
    for (const Extent& e : b) {
        ranges.push_back({e.physical, e.physical + e.length});
    }
    std::sort(ranges.begin(), ranges.end(),
              [](const Range& x, const Range& y) { return x.from < y.from; });
    std::vector<Range> out;
    for (const Range& r : ranges) {
        if (!out.empty() && r.from <= out.back().to) {
            out.back().to = std::max(out.back().to, r.to);
        } else {
            out.push_back(r);
        }
    }
    return out;
}

// Bytes of [from, to) covered by ranges.
std::uint64_t covered(std::uint64_t from, std::uint64_t to, const std::vector<Range>& ranges) {
    std::uint64_t bytes = 0;
    for (const Range& r : ranges) {
        const std::uint64_t lo = std::max(from, r.from);
        const std::uint64_t hi = std::min(to, r.to);
        if (lo < hi) {
            bytes += hi - lo;
        }
    }
    return bytes;
}

} // namespace

std::optional<std::vector<Extent>> extentsOf(int fd) {
#ifndef __linux__
    (void)fd;
    return std::nullopt;
#else
    std::vector<Extent> out;
    std::vector<char> buf(sizeof(fiemap) + kBatch * sizeof(fiemap_extent));
    auto* map = reinterpret_cast<fiemap*>(buf.data());
    std::uint64_t start = 0;
    bool first = true;
    for (;;) {
        std::fill(buf.begin(), buf.end(), 0);
        map->fm_start = start;
        map->fm_length = FIEMAP_MAX_OFFSET - start;
        map->fm_flags = first ? FIEMAP_FLAG_SYNC : 0;
        map->fm_extent_count = kBatch;
        if (::ioctl(fd, FS_IOC_FIEMAP, map) != 0) {
            return std::nullopt;
        }
        first = false;
        if (map->fm_mapped_extents == 0) {
            return out;
        }
        for (unsigned i = 0; i < map->fm_mapped_extents; ++i) {
            const fiemap_extent& e = map->fm_extents[i];
            // Data with no place of its own on the device can't be compared.
            if ((e.fe_flags & (FIEMAP_EXTENT_UNKNOWN | FIEMAP_EXTENT_DELALLOC |
                               FIEMAP_EXTENT_DATA_INLINE | FIEMAP_EXTENT_ENCODED)) != 0) {
                return std::nullopt;
            }
            out.push_back({e.fe_physical, e.fe_length, (e.fe_flags & FIEMAP_EXTENT_SHARED) != 0});
            if ((e.fe_flags & FIEMAP_EXTENT_LAST) != 0) {
                return out;
            }
            start = e.fe_logical + e.fe_length;
        }
    }
#endif
}

std::uint64_t bytesWithin(const std::vector<Extent>& a, const std::vector<Extent>& b) {
    const std::vector<Range> ranges = merged(b);
    std::uint64_t bytes = 0;
    for (const Extent& e : a) {
        bytes += covered(e.physical, e.physical + e.length, ranges);
    }
    return bytes;
}

std::uint64_t bytesLetGo(const std::vector<Extent>& before, const std::vector<Extent>& after) {
    const std::vector<Range> still = merged(after);
    std::uint64_t bytes = 0;
    for (const Extent& e : before) {
        if (!e.shared) {
            bytes += e.length - covered(e.physical, e.physical + e.length, still);
        }
    }
    return bytes;
}

} // namespace twinsweep
