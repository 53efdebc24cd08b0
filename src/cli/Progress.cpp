// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Progress.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace twinsweep::cli {

namespace {

constexpr std::chrono::milliseconds kInterval(100);

void writeAll(int fd, const char* data, std::size_t length) {
    while (length > 0) {
        const ssize_t n = ::write(fd, data, length);
        if (n <= 0) {
            return; // progress is best effort
        }
        data += n;
        length -= static_cast<std::size_t>(n);
    }
}

} // namespace

TerminalProgress::TerminalProgress(int fd, std::shared_ptr<const ByteProgress> bytes)
    : fd_(fd), bytes_(std::move(bytes)),
      observer_(kUpdateProgress,
                [this](const std::string&, const UserInfo& info) {
                    // Called for every entry and every comparison step: only note the counts.
                    const auto total = info.find(kTotalFiles);
                    const auto checked = info.find(kCheckedFiles);
                    total_.store(total == info.end() ? 0 : total->second,
                                 std::memory_order_relaxed);
                    checked_.store(checked == info.end() ? 0 : checked->second,
                                   std::memory_order_relaxed);
                    counted_.store(true, std::memory_order_relaxed);
                }),
      drawer_([this] { draw(); }) {}

TerminalProgress::~TerminalProgress() {
    finish();
}

void TerminalProgress::draw() {
    std::unique_lock guard(lock_);
    while (!wake_.wait_for(guard, kInterval, [this] { return stop_; })) {
        if (counted_.load(std::memory_order_relaxed)) {
            show(total_.load(std::memory_order_relaxed), checked_.load(std::memory_order_relaxed));
        }
    }
}

void TerminalProgress::show(std::int64_t total, std::int64_t checked) {
    std::string line;
    char counts[96];
    if (checked == 0) {
        std::snprintf(counts, sizeof counts, "\r\033[KFiles found: %lld",
                      static_cast<long long>(total));
        line = counts;
    } else {
        std::snprintf(counts, sizeof counts, "\r\033[KFiles checked: %lld of %lld",
                      static_cast<long long>(checked), static_cast<long long>(total));
        line = counts;
    }
    const std::string bytes =
        timeLeft_.line(*bytes_, TimeLeft::Clock::now(), checked, total);
    if (!bytes.empty()) {
        line += "; " + bytes;
    }
    writeAll(fd_, line.data(), line.size());
    shown_ = true;
}

void TerminalProgress::finish() {
    observer_.reset();
    {
        std::lock_guard guard(lock_);
        stop_ = true;
    }
    wake_.notify_all();
    if (drawer_.joinable()) {
        drawer_.join();
    }
    if (shown_) {
        writeAll(fd_, "\r\033[K", 4);
        shown_ = false;
    }
}

} // namespace twinsweep::cli
