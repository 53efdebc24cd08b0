// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ByteProgress.h"

#include <algorithm>

#include "engine/FileTools.h"

namespace twinsweep {

namespace {

// An estimate from less than this much of the comparison mostly tells how
// fast the first files happened to be.
constexpr std::chrono::milliseconds kSettle(1000);
// What checking one file costs beyond its bytes (an open, a first read, a
// record), in bytes read: measured at about 16 KiB, hot or cold, on trees
// of small files, where the bytes alone promise far too early an end.
constexpr double kFileCost = 16 * 1024;

double work(std::uint64_t bytes, std::int64_t files) {
    return static_cast<double>(bytes) +
           static_cast<double>(std::max<std::int64_t>(files, 0)) * kFileCost;
}

} // namespace

std::optional<std::int64_t> TimeLeft::secondsLeft(std::uint64_t done, std::uint64_t total,
                                                  Clock::time_point now, std::int64_t checked,
                                                  std::int64_t files) {
    if (total == 0) {
        start_.reset();
        return std::nullopt;
    }
    checked = std::min(checked, files);
    const double doneWork = work(done, checked);
    if (!start_) {
        start_ = now;
        workAtStart_ = doneWork;
    }
    if (now - *start_ < kSettle || doneWork <= workAtStart_) {
        return std::nullopt;
    }
    const double elapsed = std::chrono::duration<double>(now - *start_).count();
    const double rate = (doneWork - workAtStart_) / elapsed;
    const double left = std::max(0.0, work(total, files) - doneWork) / rate;
    return static_cast<std::int64_t>(left + 0.999);
}

std::string TimeLeft::line(std::uint64_t done, std::uint64_t total, Clock::time_point now,
                           std::int64_t checked, std::int64_t files) {
    const std::optional<std::int64_t> left = secondsLeft(done, total, now, checked, files);
    return total == 0 ? std::string() : text(done, total, left);
}

std::string TimeLeft::line(const ByteProgress& bytes, Clock::time_point now, std::int64_t checked,
                           std::int64_t files) {
    const std::uint64_t total = bytes.total();
    if (total > 0 && start_ != bytes.started()) {
        // Nothing was done at the comparison's start, whenever we first look.
        start_ = bytes.started();
        workAtStart_ = 0;
    }
    return line(bytes.done(), total, now, checked, files);
}

TimeLeft::Pattern TimeLeft::pattern(std::uint64_t done, std::uint64_t total,
                                    std::optional<std::int64_t> secondsLeft) {
    if (!secondsLeft || done >= total) {
        return {"%1 of %2 compared", 0};
    }
    // Whole units only, rounded up: "about 0 s" would read as done.
    const std::int64_t s = std::max<std::int64_t>(1, *secondsLeft);
    if (s < 90) {
        return {"%1 of %2 compared, about %3 s left", s};
    }
    if (s < 90 * 60) {
        return {"%1 of %2 compared, about %3 min left", (s + 59) / 60};
    }
    return {"%1 of %2 compared, about %3 h left", (s + 3599) / 3600};
}

std::string TimeLeft::text(std::uint64_t done, std::uint64_t total,
                           std::optional<std::int64_t> secondsLeft) {
    const Pattern p = pattern(done, total, secondsLeft);
    std::string out;
    for (const char* c = p.text; *c != '\0'; ++c) {
        if (c[0] == '%' && c[1] >= '1' && c[1] <= '3') {
            out += c[1] == '1'   ? FileTools::fileSizeText(done)
                   : c[1] == '2' ? FileTools::fileSizeText(total)
                                 : std::to_string(p.count);
            ++c;
        } else {
            out += *c;
        }
    }
    return out;
}

} // namespace twinsweep
