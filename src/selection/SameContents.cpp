#include "selection/SameContents.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
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

bool sameFileBytes(const std::string& a, const std::string& b, std::string& reason) {
    // Never follow a link and never block on something that is not a file.
    const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    const Descriptor fa(::open(a.c_str(), flags));
    if (fa.get() < 0) {
        reason = failure(a, errno);
        return false;
    }
    const Descriptor fb(::open(b.c_str(), flags));
    if (fb.get() < 0) {
        reason = failure(b, errno);
        return false;
    }
    struct stat sa {};
    struct stat sb {};
    if (::fstat(fa.get(), &sa) != 0 || ::fstat(fb.get(), &sb) != 0 || !S_ISREG(sa.st_mode) ||
        !S_ISREG(sb.st_mode) || sa.st_size != sb.st_size) {
        reason = differ(a, b);
        return false;
    }
    std::vector<unsigned char> bufA(kChunk);
    std::vector<unsigned char> bufB(kChunk);
    for (;;) {
        const ssize_t na = readFully(fa.get(), bufA.data(), kChunk);
        if (na < 0) {
            reason = failure(a, errno);
            return false;
        }
        const ssize_t nb = readFully(fb.get(), bufB.data(), kChunk);
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

// The names inside a folder, sorted; false with errno set when it can't be listed.
bool folderNames(const std::string& path, std::vector<std::string>& names) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    DIR* dir = ::fdopendir(fd);
    if (dir == nullptr) {
        const int err = errno;
        ::close(fd);
        errno = err;
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

bool linkText(const std::string& path, std::string& out) {
    char buf[PATH_MAX];
    const ssize_t n = ::readlink(path.c_str(), buf, sizeof buf);
    if (n < 0) {
        return false;
    }
    out.assign(buf, static_cast<std::size_t>(n));
    return true;
}

bool sameItems(const std::string& a, const std::string& b, std::string& reason) {
    struct stat sa {};
    struct stat sb {};
    if (::lstat(a.c_str(), &sa) != 0) {
        reason = failure(a, errno);
        return false;
    }
    if (::lstat(b.c_str(), &sb) != 0) {
        reason = failure(b, errno);
        return false;
    }
    if (sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino) {
        reason = a + ": the same file as " + b;
        return false;
    }
    if ((sa.st_mode & S_IFMT) != (sb.st_mode & S_IFMT)) {
        reason = differ(a, b);
        return false;
    }
    if (S_ISREG(sa.st_mode)) {
        return sameFileBytes(a, b, reason);
    }
    if (S_ISLNK(sa.st_mode)) {
        std::string ta;
        std::string tb;
        if (!linkText(a, ta)) {
            reason = failure(a, errno);
            return false;
        }
        if (!linkText(b, tb)) {
            reason = failure(b, errno);
            return false;
        }
        if (ta != tb) {
            reason = differ(a, b);
            return false;
        }
        return true;
    }
    if (!S_ISDIR(sa.st_mode)) {
        reason = differ(a, b); // nothing to compare in a FIFO, socket or device
        return false;
    }
    std::vector<std::string> na;
    std::vector<std::string> nb;
    if (!folderNames(a, na)) {
        reason = failure(a, errno);
        return false;
    }
    if (!folderNames(b, nb)) {
        reason = failure(b, errno);
        return false;
    }
    if (na != nb) {
        reason = differ(a, b);
        return false;
    }
    for (const std::string& name : na) {
        if (!sameItems(a + "/" + name, b + "/" + name, reason)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool sameContents(const std::string& a, const std::string& b, std::string& reason) {
    return sameItems(a, b, reason);
}

} // namespace twinsweep
