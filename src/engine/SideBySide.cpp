// SPDX-License-Identifier: GPL-3.0-or-later
// The block-by-block comparison of files whose first bytes agree.
#include "engine/SideBySide.h"
#include "engine/GentleRead.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "engine/Digest.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

namespace {

struct Open {
    std::size_t k;
    int fd;
};

void closeAll(const std::vector<Open>& files) {
    for (const Open& f : files) {
        closeAfterReading(f.fd);
    }
}

} // namespace

void closeKeepingErrno(int fd) {
    closeAfterReading(fd); // keeps errno
}

std::vector<unsigned char>& blockBuffer(std::size_t blocks) {
    thread_local std::vector<unsigned char> buffer;
    if (buffer.size() < blocks * kCompareBlock) {
        buffer.resize(blocks * kCompareBlock);
    }
    return buffer;
}

bool compareSideBySide(const std::vector<std::size_t>& ks, std::uint64_t offset,
                       const AtomicFlag& cancel, RunFiles& run,
                       std::vector<std::vector<std::size_t>>& sets) {
    std::vector<Open> open;
    for (std::size_t k : ks) {
        const int fd = run.openFile(k);
        if (fd < 0) {
            run.unreadable(k);
            continue;
        }
#ifdef POSIX_FADV_SEQUENTIAL
        ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
        open.push_back({k, fd});
    }
    struct Part {
        std::vector<Open> files;
        std::uint64_t offset;
    };
    std::vector<Part> pending;
    pending.push_back({std::move(open), offset});
    std::vector<long> counts;
    bool ok = true;
    while (!pending.empty()) {
        Part part = std::move(pending.back());
        pending.pop_back();
        if (!ok || cancel.load() || part.files.size() < 2) {
            ok = ok && !cancel.load();
            closeAll(part.files);
            continue;
        }
        const std::size_t n = part.files.size();
        std::vector<unsigned char>& buffer = blockBuffer(n);
        auto block = [&](std::size_t slot) { return buffer.data() + slot * kCompareBlock; };
        counts.assign(n, 0);
        std::vector<std::size_t> readable; // slots
        for (std::size_t s = 0; s < n; ++s) {
            counts[s] = preadFully(part.files[s].fd, block(s), kCompareBlock, part.offset);
            run.counted(counts[s]);
            run.readBytes(part.files[s].k, part.offset, block(s), counts[s], kCompareBlock);
            if (counts[s] < 0) {
                closeKeepingErrno(part.files[s].fd);
                run.unreadable(part.files[s].k);
                continue;
            }
            readable.push_back(s);
        }
        // Split by this block's bytes.
        std::vector<std::vector<std::size_t>> groups; // slots
        for (std::size_t s : readable) {
            auto same = [&](const std::vector<std::size_t>& g) {
                return counts[g.front()] == counts[s] &&
                       std::memcmp(block(g.front()), block(s),
                                   static_cast<std::size_t>(counts[s])) == 0;
            };
            auto it = std::find_if(groups.begin(), groups.end(), same);
            if (it == groups.end()) {
                groups.push_back({s});
            } else {
                it->push_back(s);
            }
        }
        for (const auto& g : groups) {
            std::vector<Open> files;
            for (std::size_t s : g) {
                files.push_back(part.files[s]);
            }
            if (files.size() >= 2 && static_cast<std::size_t>(counts[g.front()]) < kCompareBlock) {
                // The real end of every file of the group: the same contents.
                std::vector<std::size_t> set;
                for (const Open& f : files) {
                    set.push_back(f.k);
                }
                std::sort(set.begin(), set.end());
                sets.push_back(std::move(set));
                closeAll(files);
                continue;
            }
            pending.push_back({std::move(files), part.offset + kCompareBlock});
        }
    }
    return ok;
}

} // namespace twinsweep
