// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

// One line of what the GUI thread's ticks saw: the run's time, the ticks, the
// longest gap and when it ended, the 99th percentile, the gaps over 100 ms,
// then what the caller adds (", 12 repaints of the counts").
inline void printGaps(qint64 elapsedMs, const std::vector<qint64>& gaps, qint64 longestEndsAt,
                      const std::string& more) {
    std::vector<qint64> sorted = gaps;
    std::sort(sorted.begin(), sorted.end());
    const qint64 longest = sorted.empty() ? 0 : sorted.back();
    const qint64 p99 = sorted.empty() ? 0 : sorted[sorted.size() * 99 / 100];
    const auto over = std::count_if(gaps.begin(), gaps.end(), [](qint64 g) { return g > 100; });
    std::printf("%.3f s, %zu ticks, longest gap %lld ms (ending %.3f s in), p99 gap %lld ms, "
                "%ld gaps over 100 ms%s\n",
                static_cast<double>(elapsedMs) / 1000.0, gaps.size(),
                static_cast<long long>(longest), static_cast<double>(longestEndsAt) / 1000.0,
                static_cast<long long>(p99), static_cast<long>(over), more.c_str());
}
