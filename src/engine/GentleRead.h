// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <sys/stat.h>

namespace twinsweep {

// A search reads gigabytes; without care it pushes the user's working files
// out of the page cache. Each file opened for the comparison is looked at
// first: when none of its pages were cached, what the search reads of it is
// dropped again once the file is closed. A file that was cached stays cached.
// Nothing of the results depends on it.

// A search starts: files are judged afresh.
void beginGentleSearch();
// Notes whether the file just opened as fd (st) was cached when the search
// first opened it. atFirstRead: the caller's first read tells (firstReadWas),
// which spares a look at the cache when that read finds the head in memory.
void noteOpenedForReading(int fd, const struct stat& st, bool atFirstRead = false);
// How the first read of a file opened with atFirstRead went: its first bytes
// came at once (InMemory: it was cached), or the read would have to wait for
// the disk (FromDisk: it was not; the read that waits may have started the
// disk's read ahead, so the cache can no longer tell). Unknown: judged from
// the cache now, before anything is read.
enum class FirstRead { InMemory, FromDisk, Unknown };
void firstReadWas(int fd, FirstRead how);
// Closes fd, first dropping what was read of it when it was not cached;
// drop false keeps it for a pass that reads it again (the first bytes read
// ahead of the comparison). Keeps errno.
void closeAfterReading(int fd, bool drop = true);

// Runs the calling thread, and the threads it starts from now on, at idle
// I/O priority while the object lives (the previous priority comes back
// after). No effect when idle is false.
class IdleIoPriority {
  public:
    explicit IdleIoPriority(bool idle);
    ~IdleIoPriority();
    IdleIoPriority(const IdleIoPriority&) = delete;
    IdleIoPriority& operator=(const IdleIoPriority&) = delete;

  private:
    int previous_ = -1;
};

} // namespace twinsweep
