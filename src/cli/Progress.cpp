#include "cli/Progress.h"

#include <cstdio>
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

TerminalProgress::TerminalProgress(int fd)
    : fd_(fd), observer_(kUpdateProgress,
                         [this](const std::string&, const UserInfo& info) { update(info); }) {}

TerminalProgress::~TerminalProgress() {
    finish();
}

void TerminalProgress::update(const UserInfo& info) {
    // Called for every entry and every comparison step: keep it cheap.
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) {
        return;
    }
    next_ = now + kInterval;
    const auto total = info.find(kTotalFiles);
    const auto checked = info.find(kCheckedFiles);
    show(total == info.end() ? 0 : total->second, checked == info.end() ? 0 : checked->second);
}

void TerminalProgress::show(std::int64_t total, std::int64_t checked) {
    char line[128];
    int n = 0;
    if (checked == 0) {
        n = std::snprintf(line, sizeof line, "\r\033[KFiles found: %lld",
                          static_cast<long long>(total));
    } else {
        n = std::snprintf(line, sizeof line, "\r\033[KFiles checked: %lld of %lld",
                          static_cast<long long>(checked), static_cast<long long>(total));
    }
    writeAll(fd_, line, static_cast<std::size_t>(n));
    shown_ = true;
}

void TerminalProgress::finish() {
    observer_.reset();
    if (shown_) {
        writeAll(fd_, "\r\033[K", 4);
        shown_ = false;
    }
}

} // namespace twinsweep::cli
