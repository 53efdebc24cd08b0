#pragma once

#include <chrono>
#include <cstdint>

#include "engine/NotificationCenter.h"

namespace twinsweep::cli {

// Shows the search's counts on one terminal line, a few times a second:
// files found during the walk, then files checked out of the total.
class TerminalProgress {
  public:
    explicit TerminalProgress(int fd);
    ~TerminalProgress();
    // Clears the line.
    void finish();

  private:
    void update(const UserInfo& info);
    void show(std::int64_t total, std::int64_t checked);

    int fd_;
    std::chrono::steady_clock::time_point next_{};
    bool shown_ = false;
    ScopedObserver observer_;
};

} // namespace twinsweep::cli
