// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/main/SizeStops.h"

#include <array>

namespace twinsweep::ui {

namespace {

constexpr std::uint64_t KB = 1024;
constexpr std::uint64_t MB = 1024 * KB;
constexpr std::uint64_t GB = 1024 * MB;
constexpr std::uint64_t TB = 1024 * GB;

constexpr std::array<std::uint64_t, kSizeStopCount> kMinimumStops = {
    1, 50 * KB, 200 * KB, 500 * KB, 1 * MB, 5 * MB, 10 * MB, 20 * MB, 50 * MB, 100 * MB};
constexpr std::array<std::uint64_t, kSizeStopCount> kMaximumStops = {
    1 * MB, 5 * MB, 10 * MB, 50 * MB, 100 * MB, 500 * MB, 1 * GB, 10 * GB, 100 * GB, 1 * TB};

std::optional<std::uint64_t> at(const std::array<std::uint64_t, kSizeStopCount>& stops,
                                int position) {
    if (position < 0 || position >= kSizeStopCount) {
        return std::nullopt;
    }
    return stops[static_cast<std::size_t>(position)];
}

} // namespace

std::optional<std::uint64_t> minimumSizeAtStop(int position) {
    return at(kMinimumStops, position);
}

std::optional<std::uint64_t> maximumSizeAtStop(int position) {
    return at(kMaximumStops, position);
}

} // namespace twinsweep::ui
