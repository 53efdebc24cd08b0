// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/TreeWalk.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "removal/Fd.h"

namespace twinsweep {

namespace {

// The mount an open item is on; folders on another mount are not entered.
std::uint64_t mountId(int fd) {
#ifdef STATX_MNT_ID
    struct statx sx {};
    if (::statx(fd, "", AT_EMPTY_PATH, STATX_MNT_ID, &sx) == 0 &&
        (sx.stx_mask & STATX_MNT_ID) != 0) {
        return sx.stx_mnt_id;
    }
#endif
    struct stat st {};
    return ::fstat(fd, &st) == 0 ? static_cast<std::uint64_t>(st.st_dev) | (1ULL << 63) : 0;
}

int openFolderAt(int dirFd, const std::string& name) {
    return ::openat(dirFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

std::uint64_t sizeOf(int fd, std::uint64_t mount) {
    std::uint64_t total = 0;
    for (const std::string& name : entryNames(fd)) {
        struct stat st {};
        if (::fstatat(fd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
            continue;
        }
        if (S_ISREG(st.st_mode)) {
            total += static_cast<std::uint64_t>(st.st_size);
        } else if (S_ISDIR(st.st_mode)) {
            const Fd sub(openFolderAt(fd, name));
            if (sub.ok() && mountId(sub.get()) == mount) {
                total += sizeOf(sub.get(), mount);
            }
        }
    }
    return total;
}

void removeInside(int fd, std::uint64_t mount, const std::string& rel, TreeRemoval& r) {
    const auto leave = [&](const std::string& what, const std::string& why) {
        r.complete = false;
        r.remaining.push_back(what + ": " + why);
    };
    for (const std::string& name : entryNames(fd)) {
        const std::string here = rel.empty() ? name : rel + "/" + name;
        struct stat st {};
        if (::fstatat(fd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
            continue; // gone meanwhile
        }
        if (S_ISDIR(st.st_mode)) {
            const Fd sub(openFolderAt(fd, name));
            if (!sub.ok()) {
                leave(here, std::strerror(errno));
                continue;
            }
            if (mountId(sub.get()) != mount) {
                leave(here, "another file system is mounted there, left alone");
                continue;
            }
            removeInside(sub.get(), mount, here, r);
            if (::unlinkat(fd, name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOTEMPTY &&
                errno != EEXIST) {
                leave(here, std::strerror(errno));
            }
            continue;
        }
        if (::unlinkat(fd, name.c_str(), 0) != 0) {
            leave(here, std::strerror(errno));
        } else if (S_ISREG(st.st_mode) && st.st_nlink <= 1) {
            r.bytesFreed += static_cast<std::uint64_t>(st.st_size);
        }
    }
}

} // namespace

std::uint64_t treeSizeAt(int dirFd, const std::string& entry) {
    const Fd fd(openFolderAt(dirFd, entry));
    return fd.ok() ? sizeOf(fd.get(), mountId(fd.get())) : 0;
}

TreeRemoval removeTreeAt(int dirFd, const std::string& entry) {
    TreeRemoval r;
    const Fd fd(openFolderAt(dirFd, entry));
    if (!fd.ok()) {
        r.complete = false;
        r.remaining.push_back(std::string(".: ") + std::strerror(errno));
        return r;
    }
    const std::uint64_t mount = mountId(dirFd);
    if (mountId(fd.get()) != mount) {
        r.complete = false;
        r.remaining.push_back(".: another file system is mounted there, left alone");
        return r;
    }
    removeInside(fd.get(), mount, "", r);
    if (r.complete && ::unlinkat(dirFd, entry.c_str(), AT_REMOVEDIR) != 0) {
        r.complete = false;
        r.remaining.push_back(std::string(".: ") + std::strerror(errno));
    }
    return r;
}

} // namespace twinsweep
