// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace twinsweep {

// An open file descriptor, closed when the object goes.
class Fd {
  public:
    Fd() = default;
    explicit Fd(int fd) : fd_(fd) {}
    ~Fd() { reset(); }
    Fd(Fd&& other) noexcept : fd_(other.release()) {}
    Fd& operator=(Fd&& other) noexcept {
        if (this != &other) {
            reset(other.release());
        }
        return *this;
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;

    int get() const { return fd_; }
    bool ok() const { return fd_ >= 0; }
    int release() {
        const int fd = fd_;
        fd_ = -1;
        return fd;
    }
    void reset(int fd = -1) {
        if (fd_ >= 0) {
            ::close(fd_);
        }
        fd_ = fd;
    }

  private:
    int fd_ = -1;
};

// Writes all of text, going on after interruptions; false with errno set.
bool writeFully(int fd, std::string_view text);

// Reads fd to its end, or until text holds limit bytes or more; false (errno
// set) on a read error.
bool readAll(int fd, std::string& text, std::size_t limit = SIZE_MAX);

// The names in the open folder, "." and ".." left out; empty when it can't
// be listed. The folder's own descriptor keeps its position.
std::vector<std::string> entryNames(int folderFd);

// The folder part and the last component of a path ("/a/b" -> "/a", "b").
std::string parentOf(const std::string& path);
std::string lastComponent(const std::string& path);

// Renames from in fromFd to to in toFd, never over an existing entry.
int renameNoReplace(int fromFd, const std::string& from, int toFd, const std::string& to);

// Opens the folder at path (created with its missing parents, each 0700),
// refusing a final symbolic link. Returns -1 with errno set on failure.
int openOrMakeFolder(const std::string& path);

// Opens (or makes, 0700) the folder name inside dirFd, never through a link.
int openOrMakeFolderAt(int dirFd, const std::string& name);

} // namespace twinsweep
