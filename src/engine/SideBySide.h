// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace twinsweep {

class AtomicFlag;

// Block size of the side-by-side comparison: the kernel's read-ahead sizes
// the disk requests; larger blocks only cost memory in every reader.
inline constexpr std::size_t kCompareBlock = 32 * 1024;
// At most this many files are open and compared side by side; larger sets
// are first told apart by a hash of their contents.
inline constexpr std::size_t kMaxSideBySide = 16;

// What the side-by-side comparison needs from the run whose files it reads;
// files are named by their number k in the run.
class RunFiles {
  public:
    // File k opened for reading (openForReading), or -1 with errno set.
    virtual int openFile(std::size_t k) const = 0;
    // File k can't be read (errno tells why): its contents count as empty.
    virtual void unreadable(std::size_t k) = 0;
    // Bytes were read (nothing when bytes is not positive).
    virtual void counted(long bytes) = 0;
    // File k gave n bytes at offset (fewer than requested: its end).
    virtual void readBytes(std::size_t /*k*/, std::uint64_t /*offset*/,
                           const unsigned char* /*data*/, long /*n*/, std::size_t /*requested*/) {}

  protected:
    ~RunFiles() = default;
};

// Reads files ks block by block from offset, splitting them where their
// contents part, to their real end. Every set of two or more files that
// reached the end together goes to sets, its numbers in increasing order.
// False when cancelled part way.
bool compareSideBySide(const std::vector<std::size_t>& ks, std::uint64_t offset,
                       const AtomicFlag& cancel, RunFiles& run,
                       std::vector<std::vector<std::size_t>>& sets);

// This thread's buffer of at least the given number of blocks.
std::vector<unsigned char>& blockBuffer(std::size_t blocks);

void closeKeepingErrno(int fd);

} // namespace twinsweep
