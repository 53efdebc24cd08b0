// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/FolderChain.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace twinsweep {

namespace {

// Levels that keep their descriptors while deeper ones are entered; deeper
// trees reopen outer levels on the way back, one openat each.
constexpr std::size_t kOpenLevels = 48;

// Opens name relative to at as a folder if it is still the folder (device, inode).
int reopen(int at, const char* name, std::uint64_t device, std::uint64_t inode) {
    const int fd = ::openat(at, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return -1;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0 || static_cast<std::uint64_t>(st.st_dev) != device ||
        static_cast<std::uint64_t>(st.st_ino) != inode) {
        ::close(fd);
        errno = ESTALE; // moved or replaced since it was walked
        return -1;
    }
    return fd;
}

} // namespace

FolderFd::~FolderFd() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

FolderChain::FolderChain(FolderFdPtr base) {
    levels_.push_back({std::move(base), {}, 0, 0});
}

void FolderChain::push(FolderFdPtr fd, std::string name, std::uint64_t device,
                       std::uint64_t inode) {
    levels_.push_back({std::move(fd), std::move(name), device, inode});
    if (levels_.size() > kOpenLevels + 1) {
        levels_[levels_.size() - 1 - kOpenLevels].fd.reset();
    }
}

void FolderChain::pop() {
    Level inner = std::move(levels_.back());
    levels_.pop_back();
    Level& outer = levels_.back();
    if (!outer.fd && inner.fd && levels_.size() > 1) {
        const int fd = reopen(inner.fd->get(), "..", outer.device, outer.inode);
        if (fd >= 0) {
            outer.fd = std::make_shared<FolderFd>(fd);
        }
        // Otherwise (entered through a link, or moved) it is opened by name
        // when it is needed.
    }
}

int FolderChain::fd() {
    return fdAt(levels_.size() - 1);
}

int FolderChain::fdAt(std::size_t k) {
    // Find the nearest open ancestor, then open downwards by name, keeping
    // only the innermost levels' descriptors.
    std::size_t open = k;
    while (!levels_[open].fd) {
        --open; // the base level is always open
    }
    const std::size_t keepFrom = levels_.size() > kOpenLevels ? levels_.size() - kOpenLevels : 0;
    FolderFdPtr at = levels_[open].fd;
    for (std::size_t j = open + 1; j <= k; ++j) {
        const int fd =
            reopen(at->get(), levels_[j].name.c_str(), levels_[j].device, levels_[j].inode);
        if (fd < 0) {
            return -1;
        }
        at = std::make_shared<FolderFd>(fd);
        if (j >= keepFrom || j == k) {
            levels_[j].fd = at;
        }
    }
    return levels_[k].fd->get();
}

} // namespace twinsweep
