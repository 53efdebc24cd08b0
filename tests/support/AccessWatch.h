// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

namespace twinsweep::testing {

// Holds the first read of a file in folder in the kernel (fanotify permission
// event, as root) while whileHeld runs: a race made exact under any load.
// Reads by this process are let through, unless anyProcess is set.
class AccessWatch {
  public:
    static bool available(); // fanotify needs root
    explicit AccessWatch(const std::string& folder, bool anyProcess = false);
    ~AccessWatch();
    AccessWatch(const AccessWatch&) = delete;
    AccessWatch& operator=(const AccessWatch&) = delete;
    // False when no read came within a minute (or fanotify is refused).
    bool holdFirstAccess(const std::function<void()>& whileHeld);

  private:
    void allow(int eventFd);
    int fan_ = -1;
    bool anyProcess_ = false;
};

} // namespace twinsweep::testing
