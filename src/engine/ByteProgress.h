// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace twinsweep {

// Bytes of the content comparison: how many there are to compare, and how
// many are done (read, or known to need no reading). The readers add as they
// go; the progress displays read from other threads. Relaxed counters: they
// order nothing, and cost the search nothing it would notice.
class ByteProgress {
  public:
    using Clock = std::chrono::steady_clock;
    void start(std::uint64_t total) {
        done_.store(0, std::memory_order_relaxed);
        remembered_.store(0, std::memory_order_relaxed);
        total_.store(total, std::memory_order_relaxed);
        started_.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
    }
    // When the comparison began: the origin of every estimate, however late
    // a display first looks.
    Clock::time_point started() const {
        return Clock::time_point(Clock::duration(started_.load(std::memory_order_relaxed)));
    }
    void add(std::uint64_t bytes) { done_.fetch_add(bytes, std::memory_order_relaxed); }
    std::uint64_t total() const { return total_.load(std::memory_order_relaxed); }
    // Never more than the total: a file that grew since the walk is read
    // further than its size.
    std::uint64_t done() const {
        const std::uint64_t d = done_.load(std::memory_order_relaxed);
        const std::uint64_t t = total();
        return d < t ? d : t;
    }
    // Of the bytes done, those that remembered fingerprints spared reading.
    void remembered(std::uint64_t bytes) {
        remembered_.fetch_add(bytes, std::memory_order_relaxed);
    }
    std::uint64_t remembered() const { return remembered_.load(std::memory_order_relaxed); }

  private:
    std::atomic<std::uint64_t> total_{0};
    std::atomic<std::uint64_t> done_{0};
    std::atomic<std::uint64_t> remembered_{0};
    std::atomic<Clock::rep> started_{0};
};

// Turns readings of a ByteProgress into the line the progress displays show:
// "1.2 GB of 3.4 GB compared, about 12 s left". Before the comparison the
// line is empty; the estimate comes once the comparison has run a moment.
// Fed from one thread.
class TimeLeft {
  public:
    using Clock = ByteProgress::Clock;
    // The line for the comparison bytes counts now, timed from its start.
    std::string line(const ByteProgress& bytes, Clock::time_point now, std::int64_t checked,
                     std::int64_t files);
    // done of total bytes compared, checked of files files (the comparison's
    // counts, which weigh in the estimate: the largest files come first, and
    // many small ones can take longer than their bytes say).
    std::string line(std::uint64_t done, std::uint64_t total, Clock::time_point now,
                     std::int64_t checked = 0, std::int64_t files = 0);
    // Seconds left at the rate so far; absent while there is too little to go by.
    std::optional<std::int64_t> secondsLeft(std::uint64_t done, std::uint64_t total,
                                            Clock::time_point now, std::int64_t checked = 0,
                                            std::int64_t files = 0);

    // The line's text for given figures; secondsLeft absent: no estimate.
    static std::string text(std::uint64_t done, std::uint64_t total,
                            std::optional<std::int64_t> secondsLeft);
    // The same line as a pattern, so a window can translate it before filling
    // it in: "%1" the bytes done, "%2" the total, "%3" the time left in the
    // pattern's unit (count), when the pattern has an estimate.
    struct Pattern {
        const char* text;
        std::int64_t count;
    };
    static Pattern pattern(std::uint64_t done, std::uint64_t total,
                           std::optional<std::int64_t> secondsLeft);

  private:
    std::optional<Clock::time_point> start_;
    double workAtStart_ = 0;
};

} // namespace twinsweep
