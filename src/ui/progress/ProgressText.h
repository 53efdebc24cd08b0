// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace twinsweep::ui {

// What the progress window shows for a pair of counts.
struct ProgressTexts {
    QString filesScanned; // "120/4500 Files Scaned", or "0/0 Files Scanned" before any file
    QString percents;     // one decimal then "%", e.g. "2.7%"
    float percent = 0.0f; // the bar's value, 0 to 100
    // Nothing to measure yet (the walk is still finding files): the bar
    // moves without an amount.
    bool busy = false;
};

ProgressTexts progressTexts(std::int64_t total, std::int64_t checked);

// The same with the comparison's bytes: once the bytes to compare are known
// (bytesTotal above 0) the percentage is bytesDone of bytesTotal, the same
// figures the bytes line shows, so bar, percentage and line agree; before
// that, the files checked of the files found.
ProgressTexts progressTexts(std::int64_t total, std::int64_t checked, std::uint64_t bytesDone,
                            std::uint64_t bytesTotal);

// The comparison's line, "1.2 GB of 3.4 GB compared, about 12 s left", in
// the user's language; secondsLeft absent: no estimate.
QString comparedText(std::uint64_t done, std::uint64_t total,
                     std::optional<std::int64_t> secondsLeft);

} // namespace twinsweep::ui
