// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>

namespace twinsweep::ui {

// What the progress window shows for a pair of counts.
struct ProgressTexts {
    QString filesScanned; // "120/4500 Files Scaned", or "0/0 Files Scanned" before any file
    QString percents;     // one decimal then "%", e.g. "2.7%"
    float percent = 0.0f; // the bar's value, 0 to 100
};

ProgressTexts progressTexts(std::int64_t total, std::int64_t checked);

} // namespace twinsweep::ui
