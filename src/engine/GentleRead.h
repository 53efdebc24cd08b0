#pragma once

#include <cstdint>

namespace twinsweep {

// A search reads gigabytes; without care it pushes the user's working files
// out of the page cache. Each file opened for the comparison is looked at
// first: when none of its pages were cached, what the search reads of it is
// dropped again once the file is closed. A file that was cached stays cached.
// Nothing of the results depends on it.

// Notes whether the file just opened as fd (size bytes) was cached.
void noteOpenedForReading(int fd, std::uint64_t size);
// Closes fd, first dropping what was read of it when it was not cached.
// Keeps errno.
void closeAfterReading(int fd);

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
