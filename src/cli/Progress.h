// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

#include "engine/ByteProgress.h"
#include "engine/NotificationCenter.h"

namespace twinsweep::cli {

// Shows the search's counts on one terminal line, a few times a second:
// files found during the walk, then files checked out of the total with the
// bytes compared and the time left. Drawn by its own thread, so the line
// moves while one large file is read and no count changes.
class TerminalProgress {
  public:
    TerminalProgress(int fd, std::shared_ptr<const ByteProgress> bytes);
    ~TerminalProgress();
    // Stops drawing and clears the line.
    void finish();

  private:
    void draw();
    void show(std::int64_t total, std::int64_t checked);

    int fd_;
    std::shared_ptr<const ByteProgress> bytes_;
    TimeLeft timeLeft_;
    std::atomic<std::int64_t> total_{0};
    std::atomic<std::int64_t> checked_{0};
    std::atomic<bool> counted_{false};
    bool shown_ = false;
    ScopedObserver observer_;

    std::mutex lock_;
    std::condition_variable wake_;
    bool stop_ = false;
    std::thread drawer_;
};

} // namespace twinsweep::cli
