// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/HardLink.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <stdio.h>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "removal/Fd.h"
#include "removal/RemovalJournal.h"

namespace twinsweep {

namespace {

RemovalResult leftAlone(const RemovalTarget& t, const std::string& why) {
    RemovalResult r;
    r.ok = false;
    r.error = t.path + ": " + why + ", left alone";
    return r;
}

std::string linkName(const std::string& name) {
    static std::atomic<unsigned> counter{0};
    std::string tmp = ".twinsweep-link-" + std::to_string(::getpid()) + "-" +
                      std::to_string(counter.fetch_add(1)) + "-" + name;
    if (tmp.size() > 255) {
        tmp.resize(255);
    }
    return tmp;
}

bool sameInode(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The value of one extended attribute; "" with absent set when there is none.
std::string attr(int fd, const char* name, bool& absent) {
    absent = false;
    for (;;) {
        const ssize_t size = ::fgetxattr(fd, name, nullptr, 0);
        if (size < 0) {
            absent = true;
            return {};
        }
        std::string value(static_cast<std::size_t>(size), '\0');
        const ssize_t got = ::fgetxattr(fd, name, value.data(), value.size());
        if (got >= 0) {
            value.resize(static_cast<std::size_t>(got));
            return value;
        }
        if (errno != ERANGE) {
            absent = true;
            return {};
        }
    }
}

std::set<std::string> securityAttrs(int fd) {
    std::set<std::string> names;
    const ssize_t size = ::flistxattr(fd, nullptr, 0);
    if (size <= 0) {
        return names;
    }
    std::string list(static_cast<std::size_t>(size), '\0');
    const ssize_t got = ::flistxattr(fd, list.data(), list.size());
    for (std::size_t at = 0; got > 0 && at < static_cast<std::size_t>(got);) {
        const std::string name(list.c_str() + at);
        if (name.rfind("security.", 0) == 0) {
            names.insert(name);
        }
        at += name.size() + 1;
    }
    return names;
}

// Whether one inode may stand for both: a link gives the copy's path the kept
// file's owner, group, mode, ACL and security labels.
bool sameAccess(int copyFd, const struct stat& copy, int keptFd, const struct stat& kept) {
    if (copy.st_uid != kept.st_uid || copy.st_gid != kept.st_gid || copy.st_mode != kept.st_mode) {
        return false;
    }
    std::set<std::string> names = securityAttrs(copyFd);
    names.merge(securityAttrs(keptFd));
    names.insert("system.posix_acl_access");
    for (const std::string& name : names) {
        bool copyAbsent = false;
        bool keptAbsent = false;
        const std::string a = attr(copyFd, name.c_str(), copyAbsent);
        const std::string b = attr(keptFd, name.c_str(), keptAbsent);
        if (copyAbsent != keptAbsent || a != b) {
            return false;
        }
    }
    return true;
}

// A new name for the open file, in folderFd: straight from the descriptor
// when we may (CAP_DAC_READ_SEARCH), else through /proc, which names the same
// open file. Never a second look-up of the kept path.
int linkFromFd(int fd, int folderFd, const std::string& name) {
    if (::linkat(fd, "", folderFd, name.c_str(), AT_EMPTY_PATH) == 0) {
        return 0;
    }
    if (errno != EPERM && errno != EACCES) {
        return -1;
    }
    const std::string self = "/proc/self/fd/" + std::to_string(fd);
    return ::linkat(AT_FDCWD, self.c_str(), folderFd, name.c_str(), AT_SYMLINK_FOLLOW);
}

RemovalResult tryOther(const RemovalTarget& t, const std::string& why) {
    RemovalResult r = leftAlone(t, why);
    r.tryOtherKept = true;
    return r;
}

// The checks a link must pass, on the copy as it stands (under t.entry).
struct Checked {
    Fd copyFd;
    struct stat copy {};
    struct stat kept {};
    struct stat folder {};
};

RemovalResult linkChecks(const RemovalTarget& t, Checked& c) {
    if (t.isFolder) {
        return leftAlone(t, "a package (folder) can't be replaced by a hard link");
    }
    if (t.keptFolderFd < 0) {
        return leftAlone(t, "every copy of its group is marked, so there is nothing to link to");
    }
    if (t.keptProtected) {
        // Through the link, editing the copy would rewrite the protected file.
        return tryOther(t, "kept copy is protected");
    }
    if (t.keptFd < 0) {
        return tryOther(t, "kept copy is not a regular file");
    }
    c.copyFd.reset(
        ::openat(t.folderFd, t.entry.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!c.copyFd.ok() || ::fstat(c.copyFd.get(), &c.copy) != 0 ||
        ::fstat(t.keptFd, &c.kept) != 0 || ::fstat(t.folderFd, &c.folder) != 0) {
        return leftAlone(t, std::strerror(errno));
    }
    if (c.kept.st_dev != c.folder.st_dev) {
        return tryOther(t, "on another file system than every kept copy");
    }
    if (!sameAccess(c.copyFd.get(), c.copy, t.keptFd, c.kept)) {
        return tryOther(t, "owner or mode differ from the kept copy");
    }
    RemovalResult fine;
    // A copy with other names elsewhere frees nothing when this one goes.
    if (c.copy.st_nlink > 1) {
        fine.partial = true;
        fine.bytesFreed = 0;
    }
    return fine;
}

} // namespace

RemovalResult checkHardLink(const RemovalTarget& t) {
    Checked c;
    return linkChecks(t, c);
}

RemovalResult replaceWithHardLink(const RemovalTarget& t) {
    Checked c;
    RemovalResult done = linkChecks(t, c);
    if (!done.ok) {
        return done;
    }
    const struct stat& copy = c.copy;
    const struct stat& kept = c.kept;
    const struct stat& folder = c.folder;
    const std::string tmp = linkName(t.name);
    JournalRecord record = thisProcessRecord();
    record.kind = JournalRecord::Kind::Link;
    record.folder = parentOf(t.path);
    record.device = static_cast<std::uint64_t>(folder.st_dev);
    record.inode = static_cast<std::uint64_t>(folder.st_ino);
    record.hidden = tmp;
    record.name = t.name;
    record.copyInode = static_cast<std::uint64_t>(copy.st_ino);
    record.keptInode = static_cast<std::uint64_t>(kept.st_ino);
    std::string why;
    const std::string journalled = journalNote(record, why);
    if (journalled.empty()) {
        return leftAlone(t, why);
    }
    if (linkFromFd(t.keptFd, t.folderFd, tmp) != 0) {
        const int err = errno;
        journalForget(journalled);
        RemovalResult r =
            leftAlone(t, std::string("can't link to ") + t.keptPath + ": " + std::strerror(err));
        r.tryOtherKept = err == EXDEV || err == EMLINK || err == ENOENT;
        return r;
    }
    const auto undoLink = [&](RemovalResult r) {
        if (::unlinkat(t.folderFd, tmp.c_str(), 0) == 0) {
            journalForget(journalled);
        }
        return r;
    };
    struct stat linked {};
    if (::fstatat(t.folderFd, tmp.c_str(), &linked, AT_SYMLINK_NOFOLLOW) != 0 ||
        !sameInode(linked, kept)) {
        return undoLink(leftAlone(t, "the kept copy changed while it was linked"));
    }
    // The copy waits under an aside name: give it its name back first, so
    // the swap below replaces it in one step.
    if (t.entry != t.name && ::renameat2(t.folderFd, t.entry.c_str(), t.folderFd, t.name.c_str(),
                                         RENAME_NOREPLACE) != 0) {
        return undoLink(leftAlone(t, std::strerror(errno)));
    }
    if (::renameat2(t.folderFd, tmp.c_str(), t.folderFd, t.name.c_str(), RENAME_EXCHANGE) != 0) {
        return undoLink(leftAlone(t, std::strerror(errno)));
    }
    // tmp now names what stood at the path: it must be the checked copy.
    struct stat swapped {};
    if (::fstatat(t.folderFd, tmp.c_str(), &swapped, AT_SYMLINK_NOFOLLOW) != 0 ||
        !sameInode(swapped, copy)) {
        ::renameat2(t.folderFd, tmp.c_str(), t.folderFd, t.name.c_str(), RENAME_EXCHANGE);
        return undoLink(leftAlone(t, "replaced by another file during the clean"));
    }
    if (::unlinkat(t.folderFd, tmp.c_str(), 0) != 0) {
        RemovalResult r;
        r.ok = false;
        r.error =
            t.path + ": linked, but the old copy waits under " + tmp + ": " + std::strerror(errno);
        return r;
    }
    journalForget(journalled);
    return done;
}

} // namespace twinsweep
