// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "removal/Removal.h"
#include "removal/TrashRecord.h"

namespace twinsweep {

// Removal as the platform does it, always relative to the copy's open folder:
// the user's Trash (our own freedesktop Trash; the system's on macOS), or
// deletion for good. A folder deleted for good goes with everything in it on
// its own file system; what can't go is reported, and only what went counts
// as freed.
class PlatformRemover : public FileRemover {
  public:
    RemovalResult moveToTrash(const RemovalTarget& target) override;
    RemovalResult removeForGood(const RemovalTarget& target) override;
    RemovalResult replaceWithLink(const RemovalTarget& target) override;
    RemovalResult shareStorage(const RemovalTarget& target) override;

    // Each remover that moves something to the Trash keeps the record of
    // its clean, for undo; nothing is moved that it can't note there.
    // Why it could not be kept ("" when it was, or nothing was moved).
    std::string trashRecordError() const override { return record_.error(); }

  private:
    UndoRecord record_;
};

// One cleaning at a time per user: an advisory lock on a file in
// $XDG_RUNTIME_DIR when it is a private folder (see StateFolder.h), else in
// the state folder; refused when neither is. Released when the object goes
// (or the process ends, however it ends).
class CleaningLock {
  public:
    CleaningLock() = default;
    ~CleaningLock();
    CleaningLock(const CleaningLock&) = delete;
    CleaningLock& operator=(const CleaningLock&) = delete;

    enum class Outcome { Taken, Busy, Failed, Interrupted };
    // Takes the lock without waiting (Busy when another cleaning holds it).
    Outcome tryTake();
    // Waits for it; returns Interrupted when a signal arrives meanwhile and
    // stop() says so.
    Outcome take(bool (*stop)());
    // Why it failed, or who holds it, in words.
    const std::string& message() const { return message_; }

  private:
    Outcome open();
    int fd_ = -1;
    std::string message_;
};

} // namespace twinsweep
