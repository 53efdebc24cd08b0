// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AccessWatch.h"

#include <atomic>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <sys/fanotify.h>
#include <thread>
#include <unistd.h>

#include "support/TempTree.h"

namespace twinsweep::testing {

bool AccessWatch::available() {
    static const bool ok = AccessWatch(TempTree().root()).fan_ >= 0;
    return ok;
}

AccessWatch::AccessWatch(const std::string& folder, bool anyProcess) : anyProcess_(anyProcess) {
    fan_ = ::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC, O_RDONLY | O_LARGEFILE);
    if (fan_ >= 0 && ::fanotify_mark(fan_, FAN_MARK_ADD, FAN_ACCESS_PERM | FAN_EVENT_ON_CHILD,
                                     AT_FDCWD, folder.c_str()) != 0) {
        ::close(fan_);
        fan_ = -1;
    }
}

AccessWatch::~AccessWatch() {
    if (fan_ >= 0) {
        ::close(fan_); // every read still waiting is allowed
    }
}

void AccessWatch::allow(int eventFd) {
    const fanotify_response r{eventFd, FAN_ALLOW};
    if (::write(fan_, &r, sizeof r) != static_cast<ssize_t>(sizeof r)) {
        std::perror("fanotify answer");
    }
    ::close(eventFd);
}

bool AccessWatch::holdFirstAccess(const std::function<void()>& whileHeld) {
    if (fan_ < 0) {
        return false;
    }
    // whileHeld runs on its own thread: reads it causes in folder are allowed here.
    int held = -1;
    std::atomic<bool> done{false};
    std::thread worker;
    alignas(fanotify_event_metadata) char buf[8192];
    while (held < 0 || !done) {
        pollfd p{fan_, POLLIN, 0};
        const int ready = ::poll(&p, 1, held >= 0 ? 10 : 60000);
        if (ready == 0 && held < 0) {
            return false;
        }
        if (ready <= 0) {
            continue;
        }
        ssize_t n = ::read(fan_, buf, sizeof buf);
        for (auto* m = reinterpret_cast<fanotify_event_metadata*>(buf); FAN_EVENT_OK(m, n);
             m = FAN_EVENT_NEXT(m, n)) {
            if (m->fd < 0) {
                continue;
            }
            if (held < 0 && (anyProcess_ || m->pid != ::getpid())) {
                held = m->fd;
                worker = std::thread([&] {
                    whileHeld();
                    done = true;
                });
                continue;
            }
            allow(m->fd);
        }
    }
    worker.join();
    allow(held);
    ::close(fan_);
    fan_ = -1;
    return true;
}

} // namespace twinsweep::testing
