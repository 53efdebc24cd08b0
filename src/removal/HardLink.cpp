#include "removal/HardLink.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

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

} // namespace

RemovalResult replaceWithHardLink(const RemovalTarget& t) {
    if (t.isFolder) {
        return leftAlone(t, "a package (folder) can't be replaced by a hard link");
    }
    if (t.keptFolderFd < 0) {
        return leftAlone(t, "every copy of its group is marked, so there is nothing to link to");
    }
    struct stat copy {};
    struct stat kept {};
    struct stat folder {};
    if (::fstatat(t.folderFd, t.entry.c_str(), &copy, AT_SYMLINK_NOFOLLOW) != 0 ||
        ::fstatat(t.keptFolderFd, t.keptEntry.c_str(), &kept, AT_SYMLINK_NOFOLLOW) != 0 ||
        ::fstat(t.folderFd, &folder) != 0) {
        return leftAlone(t, std::strerror(errno));
    }
    if (kept.st_dev != folder.st_dev) {
        RemovalResult r = leftAlone(t, "on another file system than every kept copy");
        r.tryOtherKept = true;
        return r;
    }
    const std::string tmp = linkName(t.name);
    if (::linkat(t.keptFolderFd, t.keptEntry.c_str(), t.folderFd, tmp.c_str(), 0) != 0) {
        const int err = errno;
        RemovalResult r =
            leftAlone(t, std::string("can't link to ") + t.keptPath + ": " + std::strerror(err));
        r.tryOtherKept = err == EXDEV || err == EMLINK;
        return r;
    }
    const auto undoLink = [&](RemovalResult r) {
        ::unlinkat(t.folderFd, tmp.c_str(), 0);
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
    RemovalResult done;
    // A copy with other names elsewhere frees nothing when this one goes.
    if (copy.st_nlink > 1) {
        done.partial = true;
        done.bytesFreed = 0;
    }
    return done;
}

} // namespace twinsweep
