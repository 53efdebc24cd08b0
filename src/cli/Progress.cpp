// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Progress.h"

#include <cstdio>
#include <string>
#include <unistd.h>

#include "engine/FileTools.h"

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

TerminalProgress::TerminalProgress(int fd, const SearchContext& context)
    : fd_(fd), context_(context), drawer_([this] { draw(); }) {}

TerminalProgress::~TerminalProgress() {
    finish();
}

void TerminalProgress::draw() {
    std::unique_lock guard(lock_);
    while (!wake_.wait_for(guard, kInterval, [this] { return stop_; })) {
        show();
    }
}

std::string TerminalProgress::text(const PhaseProgress::Figures& f, const std::string& bytes) {
    std::string line(phaseName(f.phase));
    line += ": " + std::to_string(f.items);
    if (f.itemsTotal > 0) {
        line += " of " + std::to_string(f.itemsTotal);
    }
    line += " files";
    if (f.phase == SearchPhase::Comparison) {
        if (!bytes.empty()) {
            line += "; " + bytes;
        }
    } else if (f.phase != SearchPhase::Collection) {
        line += ", " + FileTools::fileSizeText(f.bytes);
    }
    return line;
}

void TerminalProgress::show() {
    const PhaseProgress::Figures f = context_.figures();
    if (!f.started) {
        return;
    }
    const std::string bytes = f.phase == SearchPhase::Comparison
                                  ? timeLeft_.line(*context_.bytes, TimeLeft::Clock::now(),
                                                   static_cast<std::int64_t>(f.items),
                                                   static_cast<std::int64_t>(f.itemsTotal))
                                  : std::string();
    const std::string line = "\r\033[K" + text(f, bytes);
    writeAll(fd_, line.data(), line.size());
    shown_ = true;
}

void TerminalProgress::finish() {
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
