// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "engine/File.h"
#include "engine/RunContents.h"

namespace twinsweep {

class AtomicFlag;
class Diagnostics;
class FingerprintStore;

// Compares the contents within the equal-size runs of a sorted file list on
// worker threads, a bounded stretch ahead of the comparison loop that consumes
// them in order (see compareRunContents). No digest is computed here: the
// loop asks only which later member of a run has the same contents.
class DigestPipeline {
  public:
    struct Run {
        std::size_t begin; // first index in the list
        std::size_t end;   // one past the last
    };

    DigestPipeline(const FileList& list, std::vector<Run> runs, unsigned threads,
                   const AtomicFlag& cancel, ByteProgress& progress, Diagnostics& diagnostics,
                   FingerprintStore* store = nullptr);
    ~DigestPipeline();
    DigestPipeline(const DigestPipeline&) = delete;
    DigestPipeline& operator=(const DigestPipeline&) = delete;

    // Waits until run r is compared. False when the search was cancelled first.
    bool waitFor(std::size_t r);
    // For member k of run r (k counted from the run's start): the next member
    // with the same contents, or 0 when there is none.
    std::uint32_t nextCopy(std::size_t r, std::size_t k) const;

  private:
    void work(unsigned id);
    void wake();
    bool loopShouldWake() const; // lock_ held
    bool digestRun(std::size_t r);

    const FileList& list_;
    std::vector<Run> runs_;
    const AtomicFlag& cancel_;
    ByteProgress& progress_;
    Diagnostics& diagnostics_;
    FingerprintStore* store_; // remembered fingerprints; none when null
    // Per run, per member: distance to the next member with the same digest.
    std::vector<std::vector<std::uint32_t>> next_;
    std::vector<char> done_;

    std::mutex lock_;
    std::condition_variable changed_;     // for the warm readers
    std::condition_variable coldChanged_; // for the others
    std::condition_variable runDone_;     // for the loop
    std::size_t ready_ = SIZE_MAX;        // the loop's: the run it last found done
    std::size_t nextToTake_ = 0;
    std::size_t consumed_ = 0; // first run the loop has not finished with
    bool stop_ = false;
    std::vector<std::thread> workers_;
    // Workers that may compare at once: as many as cores while the data comes
    // from memory, more while it comes from the disk.
    unsigned warmReaders_ = 1;
    unsigned coldReaders_ = 1;
    ReadSignals signals_;
};

} // namespace twinsweep
