// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace twinsweep {

// An open folder descriptor, closed when the last user lets it go.
class FolderFd {
  public:
    explicit FolderFd(int fd) : fd_(fd) {}
    ~FolderFd();
    FolderFd(const FolderFd&) = delete;
    FolderFd& operator=(const FolderFd&) = delete;
    int get() const { return fd_; }

  private:
    int fd_;
};
using FolderFdPtr = std::shared_ptr<FolderFd>;

// The folders from where a walk started down to the one it is in, each with
// its descriptor. A tree can be deeper than any descriptor limit and than
// PATH_MAX, so only the innermost levels keep their descriptors open; an
// outer level is opened again when needed, from its child ("..") or from its
// nearest open ancestor by name, and used only if it is still the folder
// that was walked (same device and inode).
class FolderChain {
  public:
    // The base level: the folder every name of the first pushed level is
    // relative to (AT_FDCWD for absolute paths). Never let go.
    explicit FolderChain(FolderFdPtr base);

    // Enters the folder name (relative to the current level) that is open as fd.
    void push(FolderFdPtr fd, std::string name, std::uint64_t device, std::uint64_t inode);
    void pop();
    std::size_t depth() const { return levels_.size() - 1; }

    // The descriptor of the innermost level; -1 with errno set when it can't
    // be opened again or is no longer the same folder.
    int fd();

  private:
    struct Level {
        FolderFdPtr fd;
        std::string name;
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
    };
    int fdAt(std::size_t k);

    std::vector<Level> levels_;
};

} // namespace twinsweep
