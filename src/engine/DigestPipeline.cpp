// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/DigestPipeline.h"

#include <algorithm>
#include <sys/resource.h>

#include "engine/RunContents.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

namespace {

// How far the workers may run ahead of the comparison loop, in files: enough
// to keep every core busy, small enough that progress follows the real work.
constexpr std::size_t kLookAheadFiles = 8192;
// Runs done ahead of the loop before it is woken (loopShouldWake).
constexpr std::size_t kLoopBatch = 64;
// Readers while the data comes from the disk: a disk serves many requests in
// flight far faster than one at a time. Each holds at most a run's side-by-side
// set of files open.
constexpr unsigned kColdReaders = 16;
constexpr unsigned kFilesPerReader = 17;

unsigned readersAllowedByOpenFiles() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return kColdReaders;
    }
    // Leave room for the rest of the process.
    const rlim_t spare = limit.rlim_cur > 128 ? limit.rlim_cur - 128 : 0;
    return static_cast<unsigned>(std::min<rlim_t>(kColdReaders, spare / kFilesPerReader));
}

} // namespace

DigestPipeline::DigestPipeline(const FileList& list, std::vector<Run> runs, unsigned threads,
                               const AtomicFlag& cancel, ByteProgress& progress,
                               Diagnostics& diagnostics, FingerprintStore* store)
    : list_(list), runs_(std::move(runs)), cancel_(cancel), progress_(progress),
      diagnostics_(diagnostics), store_(store), next_(runs_.size()), done_(runs_.size(), 0) {
    warmReaders_ = std::max(1U, threads);
    coldReaders_ = std::max(warmReaders_, readersAllowedByOpenFiles());
    workers_.reserve(coldReaders_);
    for (unsigned t = 0; t < coldReaders_; ++t) {
        workers_.emplace_back([this, t] { work(t); });
    }
}

DigestPipeline::~DigestPipeline() {
    {
        std::lock_guard guard(lock_);
        stop_ = true;
    }
    changed_.notify_all();
    coldChanged_.notify_all();
    runDone_.notify_all();
    for (std::thread& t : workers_) {
        t.join();
    }
}

void DigestPipeline::wake() {
    changed_.notify_all();
    // The extra readers sleep apart, so that on data in memory they are not
    // woken for every run.
    if (signals_.cold()) {
        coldChanged_.notify_all();
    }
}

bool DigestPipeline::waitFor(std::size_t r) {
    // The loop asks once per file of a run: after the first answer, the run
    // stays done.
    if (r == ready_) {
        return true;
    }
    std::unique_lock guard(lock_);
    if (r > consumed_) {
        consumed_ = r;
        wake();
    }
    // Wake every so often to notice a cancellation, which nobody signals.
    while (!done_[r]) {
        if (cancel_.load()) {
            return false;
        }
        runDone_.wait_for(guard, std::chrono::milliseconds(20));
    }
    ready_ = r;
    return true;
}

std::uint32_t DigestPipeline::nextCopy(std::size_t r, std::size_t k) const {
    return next_[r][k];
}

void DigestPipeline::work(unsigned id) {
    for (;;) {
        std::size_t r = 0;
        {
            std::unique_lock guard(lock_);
            (id < warmReaders_ ? changed_ : coldChanged_).wait(guard, [&] {
                if (stop_ || nextToTake_ >= runs_.size()) {
                    return true;
                }
                // A run may start once it is within reach of the loop; the
                // run the loop waits for may always start.
                const std::size_t loopAt = runs_[std::min(consumed_, runs_.size() - 1)].begin;
                // The same few workers while the data is in memory, so that
                // the others never touch their own allocator memory.
                const unsigned readers = signals_.cold() ? coldReaders_ : warmReaders_;
                return id < readers && (nextToTake_ <= consumed_ ||
                                        runs_[nextToTake_].begin <= loopAt + kLookAheadFiles);
            });
            if (stop_ || nextToTake_ >= runs_.size()) {
                return;
            }
            r = nextToTake_++;
        }
        const bool compared = !cancel_.load() && digestRun(r);
        {
            std::lock_guard guard(lock_);
            done_[r] = compared ? 1 : 0;
            // Only the loop waits for a run's end, and only for the one it
            // is at; the readers wait for the loop to move on.
            if (loopShouldWake()) {
                runDone_.notify_one();
            }
        }
        if (signals_.cold()) {
            coldChanged_.notify_all(); // the disk is slow: the extra readers join in
        }
        if (!compared) {
            return; // cancelled: the loop notices by itself
        }
    }
}

bool DigestPipeline::loopShouldWake() const {
    // On data in memory the loop keeps up with the readers: woken for each
    // run, it would sleep and wake once per run. It is woken when a batch of
    // runs from where it is are done, when they all are, or when the readers
    // can take no more until it moves on.
    std::size_t k = consumed_;
    while (k < runs_.size() && done_[k] && k - consumed_ < kLoopBatch) {
        ++k;
    }
    if (k == consumed_) {
        return false;
    }
    if (k - consumed_ >= kLoopBatch || k == runs_.size() || cancel_.load()) {
        return true;
    }
    if (k < nextToTake_) {
        return false; // a run in progress ends the gap, and looks again
    }
    const std::size_t loopAt = runs_[std::min(consumed_, runs_.size() - 1)].begin;
    return nextToTake_ >= runs_.size() || runs_[nextToTake_].begin > loopAt + kLookAheadFiles;
}

bool DigestPipeline::digestRun(std::size_t r) {
    const Run run = runs_[r];
    const std::size_t count = run.end - run.begin;
    std::vector<std::uint32_t>& next = next_[r];
    std::vector<std::uint32_t> setOf;
    if (!compareRunContents(list_, run.begin, run.end, cancel_, signals_, progress_, diagnostics_,
                            store_, setOf)) {
        return false;
    }
    // Link each member of a set to the next one of the same set.
    next.assign(count, 0);
    constexpr std::uint32_t kNone = UINT32_MAX;
    std::vector<std::uint32_t> lastOfSet(count + 1, kNone); // sets are numbered from 1
    for (std::size_t k = count; k-- > 0;) {
        std::uint32_t& last = lastOfSet[setOf[k]];
        if (setOf[k] != 0 && last != kNone) {
            next[k] = last - static_cast<std::uint32_t>(k);
        }
        last = static_cast<std::uint32_t>(k);
    }
    return true;
}

} // namespace twinsweep
