// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/ByteProgress.h"
#include "engine/File.h"

namespace twinsweep {

class AtomicFlag;
class Diagnostics;
class FingerprintStore;

// What the readers of one search tell each other; relaxed counters, read for
// pacing only.
struct ReadSignals {
    // Rises with first reads that had to wait for the disk and falls with
    // those served from memory. While it is high, many reads in flight pay;
    // on data already in memory extra readers would only compete for the
    // cores. A read from memory can now and then be refused as well (pages
    // marked for read-ahead), hence a score and not a single sighting.
    std::atomic<int> coldScore{0};

    bool cold() const { return coldScore.load(std::memory_order_relaxed) >= kColdAbove; }
    void sawRead(bool wasCold) {
        const int now = coldScore.load(std::memory_order_relaxed);
        const int next = wasCold ? std::min(now + kColdStep, kMaxScore) : std::max(now - 1, 0);
        if (next != now) {
            coldScore.store(next, std::memory_order_relaxed);
        }
    }
    static constexpr int kColdStep = 16;
    static constexpr int kColdAbove = 64;
    static constexpr int kMaxScore = 1024;
};

// Finds which files of one run of equal size (entries begin to end of a
// sorted list) have the same contents, reading as little as it can: files
// whose first bytes match no other file's are read no further, files that
// agree are compared side by side to their real end. The walk's size only
// chose the run: a file that grew or shrank since is read as it is now.
// Unreadable files count as empty, after their "Ooops! ..." line, so they
// are copies of each other and of files that now read as empty.
//
// setOf[k] (k counted from begin) is 0 for a file with no copy in the run,
// else a number shared by exactly the files with the same contents. Files
// whose contents are empty get the empty digest in MD5Hash; no other digest
// is computed. The run's bytes (its size times its files) are added to
// progress as they are read, the rest when the run is done. Returns false
// when cancelled part way. With a store, a run whose members are all
// remembered is told apart by fingerprints, reading nothing; any other run is
// read as without one, and its members are remembered (see RunFingerprints).
bool compareRunContents(const FileList& list, std::size_t begin, std::size_t end,
                        const AtomicFlag& cancel, ReadSignals& signals, ByteProgress& progress,
                        Diagnostics& diagnostics, FingerprintStore* store,
                        std::vector<std::uint32_t>& setOf);

} // namespace twinsweep
