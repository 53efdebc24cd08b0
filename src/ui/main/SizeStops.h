// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

namespace twinsweep::ui {

// The ten stops of the two size sliders, in bytes (1 KB = 1024 bytes).
// Absent for a position that is not one of the stops 0 to 9.
std::optional<std::uint64_t> minimumSizeAtStop(int position);
std::optional<std::uint64_t> maximumSizeAtStop(int position);

inline constexpr int kSizeStopCount = 10;
inline constexpr int kDefaultMinimumStop = 2; // 200 KB
inline constexpr int kDefaultMaximumStop = 8; // 100 GB

} // namespace twinsweep::ui
