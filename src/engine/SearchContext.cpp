// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SearchContext.h"

#include "settings/SettingsManager.h"

namespace twinsweep {

std::string_view phaseName(SearchPhase phase) {
    switch (phase) {
    case SearchPhase::Walk:
        return "walk";
    case SearchPhase::SizeOrder:
        return "size order";
    case SearchPhase::Comparison:
        return "comparison";
    case SearchPhase::Collection:
        return "collection";
    }
    return "";
}

void PhaseProgress::begin(SearchPhase phase, std::uint64_t itemsTotal, std::uint64_t bytesTotal) {
    itemsTotal_.store(itemsTotal, std::memory_order_relaxed);
    bytesTotal_.store(bytesTotal, std::memory_order_relaxed);
    advance(0, 0);
    began_ = Clock::now();
    phase_.store(static_cast<int>(phase), std::memory_order_release);
}

void PhaseProgress::end() {
    const int phase = phase_.load(std::memory_order_relaxed);
    if (phase < 0) {
        return;
    }
    const std::chrono::duration<double> took = Clock::now() - began_;
    std::lock_guard guard(lock_);
    timings_.push_back({static_cast<SearchPhase>(phase), took.count(),
                        items_.load(std::memory_order_relaxed),
                        bytes_.load(std::memory_order_relaxed)});
}

PhaseProgress::Figures PhaseProgress::figures() const {
    Figures f;
    const int phase = phase_.load(std::memory_order_acquire);
    if (phase < 0) {
        return f;
    }
    f.started = true;
    f.phase = static_cast<SearchPhase>(phase);
    f.items = items_.load(std::memory_order_relaxed);
    f.itemsTotal = itemsTotal_.load(std::memory_order_relaxed);
    f.bytes = bytes_.load(std::memory_order_relaxed);
    f.bytesTotal = bytesTotal_.load(std::memory_order_relaxed);
    return f;
}

std::vector<PhaseProgress::Timing> PhaseProgress::timings() const {
    std::lock_guard guard(lock_);
    return timings_;
}

SearchContext::SearchContext(const AtomicFlag& cancelFlag, Diagnostics& sink)
    : cancel(cancelFlag), diagnostics(sink) {}

bool SearchContext::canceled() const {
    return cancel.load();
}

PhaseProgress::Figures SearchContext::figures() const {
    PhaseProgress::Figures f = phases.figures();
    if (f.started && f.phase == SearchPhase::Comparison) {
        f.bytes = bytes->done();
        f.bytesTotal = bytes->total();
    }
    return f;
}

} // namespace twinsweep
