// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

#include <string>

#include "engine/ByteProgress.h"
#include "engine/SearchContext.h"

namespace twinsweep::cli {

// Shows the search's phase and its figures on one terminal line, a few times
// a second: files and bytes found during the walk, then files checked out of
// the total with the bytes compared and the time left. Drawn by its own
// thread, so the line moves while one large file is read and no count changes.
class TerminalProgress {
  public:
    // context must outlive the object.
    TerminalProgress(int fd, const SearchContext& context);
    // The line for these figures (without the terminal's control codes).
    static std::string text(const PhaseProgress::Figures& figures, const std::string& bytes);
    ~TerminalProgress();
    // Stops drawing and clears the line.
    void finish();

  private:
    void draw();
    void show();

    int fd_;
    const SearchContext& context_;
    TimeLeft timeLeft_;
    bool shown_ = false;

    std::mutex lock_;
    std::condition_variable wake_;
    bool stop_ = false;
    std::thread drawer_;
};

} // namespace twinsweep::cli
