// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "engine/ByteProgress.h"
#include "engine/Diagnostics.h"

namespace twinsweep {

class AtomicFlag;

// The steps of a search, in the order they run.
enum class SearchPhase { Walk, SizeOrder, Comparison, Collection };
// "walk", "size order", "comparison", "collection".
std::string_view phaseName(SearchPhase phase);

// Which phase a search is in, how far it got (items and bytes, each out of
// a total where one is known) and how long each finished phase took. Written
// by the search thread; the figures may be read from any thread while it runs,
// the timings once it is over.
class PhaseProgress {
  public:
    struct Figures {
        bool started = false;
        SearchPhase phase = SearchPhase::Walk;
        std::uint64_t items = 0;
        std::uint64_t itemsTotal = 0; // 0: not known yet (the walk)
        std::uint64_t bytes = 0;
        std::uint64_t bytesTotal = 0;
    };
    struct Timing {
        SearchPhase phase;
        double seconds;
        std::uint64_t items;
        std::uint64_t bytes;
    };

    void begin(SearchPhase phase, std::uint64_t itemsTotal, std::uint64_t bytesTotal);
    void advance(std::uint64_t items, std::uint64_t bytes) {
        items_.store(items, std::memory_order_relaxed);
        bytes_.store(bytes, std::memory_order_relaxed);
    }
    // Ends the phase begun last and keeps its timing.
    void end();
    Figures figures() const;
    std::vector<Timing> timings() const;

  private:
    using Clock = std::chrono::steady_clock;
    std::atomic<int> phase_{-1};
    std::atomic<std::uint64_t> items_{0};
    std::atomic<std::uint64_t> itemsTotal_{0};
    std::atomic<std::uint64_t> bytes_{0};
    std::atomic<std::uint64_t> bytesTotal_{0};
    Clock::time_point began_{};
    mutable std::mutex lock_;
    std::vector<Timing> timings_;
};

// Everything one search shares with whoever started it: the cancel flag it
// polls, where its diagnostic lines go, the bytes of its comparison and its
// phases. Made by the starter (the command-line tool, the window's search
// job, a test) and handed to the engine; the engine reads no process-wide
// settings during a run.
class SearchContext {
  public:
    explicit SearchContext(const AtomicFlag& cancel,
                           Diagnostics& diagnostics = processDiagnostics());
    SearchContext(const SearchContext&) = delete;
    SearchContext& operator=(const SearchContext&) = delete;

    bool canceled() const;
    // The phase's figures; the comparison's bytes come from the readers.
    PhaseProgress::Figures figures() const;

    const AtomicFlag& cancel;
    Diagnostics& diagnostics;
    // Shared: a progress display may hold it longer than the search.
    std::shared_ptr<ByteProgress> bytes = std::make_shared<ByteProgress>();
    PhaseProgress phases;
};

} // namespace twinsweep
