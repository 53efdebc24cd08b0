// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/SameContents.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>
#include <vector>

#include "engine/Digest.h"

namespace twinsweep {

namespace {

constexpr std::size_t kChunk = 64 * 1024;

std::string failure(const std::string& path, int err) {
    return path + ": " + std::strerror(err);
}

std::string differ(const std::string& a, const std::string& b) {
    return a + ": not byte for byte the same as " + b;
}

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

  private:
    int fd_;
};

bool sameBytes(int fa, int fb, const std::string& a, const std::string& b, std::string& reason) {
    std::vector<unsigned char> bufA(kChunk);
    std::vector<unsigned char> bufB(kChunk);
    for (;;) {
        const ssize_t na = readFully(fa, bufA.data(), kChunk);
        if (na < 0) {
            reason = failure(a, errno);
            return false;
        }
        const ssize_t nb = readFully(fb, bufB.data(), kChunk);
        if (nb < 0) {
            reason = failure(b, errno);
            return false;
        }
        if (na != nb || std::memcmp(bufA.data(), bufB.data(), static_cast<std::size_t>(na)) != 0) {
            reason = differ(a, b);
            return false;
        }
        if (static_cast<std::size_t>(na) < kChunk) {
            return true;
        }
    }
}

// The names inside an open folder, sorted; false with errno set when it can't be listed.
bool folderNames(int fd, std::vector<std::string>& names) {
    DIR* dir = ::fdopendir(::dup(fd));
    if (dir == nullptr) {
        return false;
    }
    errno = 0;
    while (const dirent* de = ::readdir(dir)) {
        const char* n = de->d_name;
        if (n[0] == '.' && (n[1] == '\0' || (n[1] == '.' && n[2] == '\0'))) {
            continue;
        }
        names.emplace_back(n);
    }
    const int err = errno;
    ::closedir(dir);
    errno = err;
    std::sort(names.begin(), names.end());
    return err == 0;
}

bool linkText(int dirFd, const std::string& entry, std::string& out) {
    char buf[PATH_MAX];
    const ssize_t n = ::readlinkat(dirFd, entry.c_str(), buf, sizeof buf);
    if (n < 0) {
        return false;
    }
    out.assign(buf, static_cast<std::size_t>(n));
    return true;
}

// Opens an entry for reading without following a link or blocking on
// something that is not a file, and checks it is what was expected.
int openEntry(const EntryAt& e, struct stat& st, std::string& reason) {
    const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    const int fd = ::openat(e.folderFd, e.entry.c_str(), flags);
    if (fd < 0) {
        reason = failure(e.path, errno == ELOOP ? ENOENT : errno);
        return -1;
    }
    if (::fstat(fd, &st) != 0 || (e.expected != nullptr && (st.st_dev != e.expected->st_dev ||
                                                            st.st_ino != e.expected->st_ino))) {
        reason = e.path + ": replaced by another file since the search, not removed";
        ::close(fd);
        return -1;
    }
    return fd;
}

bool sameItems(const EntryAt& a, const EntryAt& b, std::string& reason) {
    struct stat sa {};
    struct stat sb {};
    if (::fstatat(a.folderFd, a.entry.c_str(), &sa, AT_SYMLINK_NOFOLLOW) != 0) {
        reason = failure(a.path, errno);
        return false;
    }
    if (::fstatat(b.folderFd, b.entry.c_str(), &sb, AT_SYMLINK_NOFOLLOW) != 0) {
        reason = failure(b.path, errno);
        return false;
    }
    if (sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino) {
        reason = a.path + ": the same file as " + b.path;
        return false;
    }
    if ((sa.st_mode & S_IFMT) != (sb.st_mode & S_IFMT)) {
        reason = differ(a.path, b.path);
        return false;
    }
    if (S_ISLNK(sa.st_mode)) {
        std::string ta;
        std::string tb;
        if (!linkText(a.folderFd, a.entry, ta)) {
            reason = failure(a.path, errno);
            return false;
        }
        if (!linkText(b.folderFd, b.entry, tb)) {
            reason = failure(b.path, errno);
            return false;
        }
        if (ta != tb) {
            reason = differ(a.path, b.path);
            return false;
        }
        return true;
    }
    if (!S_ISREG(sa.st_mode) && !S_ISDIR(sa.st_mode)) {
        reason = differ(a.path, b.path); // nothing to compare in a FIFO, socket or device
        return false;
    }
    const Descriptor fa(openEntry(a, sa, reason));
    if (fa.get() < 0) {
        return false;
    }
    const Descriptor fb(openEntry(b, sb, reason));
    if (fb.get() < 0) {
        return false;
    }
    if ((sa.st_mode & S_IFMT) != (sb.st_mode & S_IFMT)) {
        reason = differ(a.path, b.path);
        return false;
    }
    if (S_ISREG(sa.st_mode)) {
        if (sa.st_size != sb.st_size) {
            reason = differ(a.path, b.path);
            return false;
        }
        return sameBytes(fa.get(), fb.get(), a.path, b.path, reason);
    }
    std::vector<std::string> na;
    std::vector<std::string> nb;
    if (!folderNames(fa.get(), na)) {
        reason = failure(a.path, errno);
        return false;
    }
    if (!folderNames(fb.get(), nb)) {
        reason = failure(b.path, errno);
        return false;
    }
    if (na != nb) {
        reason = differ(a.path, b.path);
        return false;
    }
    for (const std::string& name : na) {
        const std::string pa = a.path + "/" + name;
        const std::string pb = b.path + "/" + name;
        if (!sameItems({fa.get(), name, pa}, {fb.get(), name, pb}, reason)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool sameContents(const EntryAt& a, const EntryAt& b, std::string& reason) {
    return sameItems(a, b, reason);
}

} // namespace twinsweep
