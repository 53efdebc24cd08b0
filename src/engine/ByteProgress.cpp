#include "engine/ByteProgress.h"

#include "engine/FileTools.h"

namespace twinsweep {

namespace {

// An estimate from less than this much of the comparison mostly tells how
// fast the first files happened to be.
constexpr std::chrono::milliseconds kSettle(1000);

} // namespace

std::optional<std::int64_t> TimeLeft::secondsLeft(std::uint64_t done, std::uint64_t total,
                                                  Clock::time_point now) {
    if (total == 0) {
        start_.reset();
        return std::nullopt;
    }
    if (!start_) {
        start_ = now;
        doneAtStart_ = done;
    }
    const auto elapsed = std::chrono::duration<double>(now - *start_).count();
    if (now - *start_ < kSettle || done <= doneAtStart_) {
        return std::nullopt;
    }
    const double rate = static_cast<double>(done - doneAtStart_) / elapsed;
    const double left = static_cast<double>(total - done) / rate;
    return static_cast<std::int64_t>(left + 0.999);
}

std::string TimeLeft::line(std::uint64_t done, std::uint64_t total, Clock::time_point now) {
    const std::optional<std::int64_t> left = secondsLeft(done, total, now);
    return total == 0 ? std::string() : text(done, total, left);
}

std::string TimeLeft::text(std::uint64_t done, std::uint64_t total,
                           std::optional<std::int64_t> secondsLeft) {
    std::string out =
        FileTools::fileSizeText(done) + " of " + FileTools::fileSizeText(total) + " compared";
    if (!secondsLeft || done >= total) {
        return out;
    }
    // Whole units only, rounded up: "about 0 s" would read as done.
    const std::int64_t s = std::max<std::int64_t>(1, *secondsLeft);
    if (s < 90) {
        out += ", about " + std::to_string(s) + " s left";
    } else if (s < 90 * 60) {
        out += ", about " + std::to_string((s + 59) / 60) + " min left";
    } else {
        out += ", about " + std::to_string((s + 3599) / 3600) + " h left";
    }
    return out;
}

} // namespace twinsweep
