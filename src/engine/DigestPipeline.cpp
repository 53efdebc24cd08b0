#include "engine/DigestPipeline.h"

#include <algorithm>

#include "engine/RunContents.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

namespace {

// How far the workers may run ahead of the comparison loop, in files: enough
// to keep every core busy, small enough that progress follows the real work.
constexpr std::size_t kLookAheadFiles = 8192;

} // namespace

DigestPipeline::DigestPipeline(const FileList& list, std::vector<Run> runs, unsigned threads,
                               const AtomicFlag& cancel)
    : list_(list), runs_(std::move(runs)), cancel_(cancel), next_(runs_.size()),
      done_(runs_.size(), 0) {
    threads = std::max(1U, threads);
    workers_.reserve(threads);
    for (unsigned t = 0; t < threads; ++t) {
        workers_.emplace_back([this] { work(); });
    }
}

DigestPipeline::~DigestPipeline() {
    {
        std::lock_guard guard(lock_);
        stop_ = true;
    }
    changed_.notify_all();
    for (std::thread& t : workers_) {
        t.join();
    }
}

bool DigestPipeline::waitFor(std::size_t r) {
    std::unique_lock guard(lock_);
    if (r > consumed_) {
        consumed_ = r;
        changed_.notify_all();
    }
    // Wake every so often to notice a cancellation, which nobody signals.
    while (!done_[r]) {
        if (cancel_.load()) {
            return false;
        }
        changed_.wait_for(guard, std::chrono::milliseconds(20));
    }
    return true;
}

std::uint32_t DigestPipeline::nextCopy(std::size_t r, std::size_t k) const {
    return next_[r][k];
}

void DigestPipeline::work() {
    for (;;) {
        std::size_t r = 0;
        {
            std::unique_lock guard(lock_);
            changed_.wait(guard, [&] {
                if (stop_ || nextToTake_ >= runs_.size()) {
                    return true;
                }
                // A run may start once it is within reach of the loop; the
                // run the loop waits for may always start.
                const std::size_t loopAt = runs_[std::min(consumed_, runs_.size() - 1)].begin;
                return nextToTake_ <= consumed_ ||
                       runs_[nextToTake_].begin <= loopAt + kLookAheadFiles;
            });
            if (stop_ || nextToTake_ >= runs_.size()) {
                return;
            }
            r = nextToTake_++;
        }
        if (cancel_.load()) {
            return;
        }
        if (!digestRun(r)) {
            return; // cancelled: the loop notices by itself
        }
        {
            std::lock_guard guard(lock_);
            done_[r] = 1;
        }
        changed_.notify_all();
    }
}

bool DigestPipeline::digestRun(std::size_t r) {
    const Run run = runs_[r];
    const std::size_t count = run.end - run.begin;
    std::vector<std::uint32_t>& next = next_[r];
    std::vector<std::uint32_t> setOf;
    if (!compareRunContents(list_, run.begin, run.end, cancel_, setOf)) {
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
