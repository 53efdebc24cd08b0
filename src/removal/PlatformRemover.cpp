// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/PlatformRemover.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "removal/Fd.h"
#include "removal/HardLink.h"
#include "removal/Share.h"
#include "removal/StateFolder.h"
#include "removal/Trash.h"
#include "removal/TreeWalk.h"

namespace twinsweep {

namespace {

RemovalResult failure(const std::string& path, const std::string& why) {
    RemovalResult r;
    r.ok = false;
    r.error = path + ": " + why;
    return r;
}

// Only a folder no other user can change: nobody else can hold the lock
// there, or swap the lock file.
PrivateFolder openLockFolder() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && runtime[0] == '/') {
        PrivateFolder f = openPrivateFolder(runtime);
        if (f.ok()) {
            return f;
        }
    }
    return openStateFolder();
}

} // namespace

RemovalResult PlatformRemover::moveToTrash(const RemovalTarget& target) {
#ifdef __APPLE__
    // The user's Trash on the start-up volume, by rename only, never over
    // another item.
    const char* home = std::getenv("HOME");
    const Fd trash(home != nullptr ? openOrMakeFolder(std::string(home) + "/.Trash") : -1);
    if (!trash.ok()) {
        return failure(target.path, std::string("no Trash: ") + std::strerror(errno));
    }
    for (int i = 0; i < 200; ++i) {
        const std::string name = i == 0 ? target.name : target.name + " " + std::to_string(i + 1);
        if (renameNoReplace(target.folderFd, target.entry, trash.get(), name) == 0) {
            RemovalResult r;
            r.trashed = {target.path, std::string(home) + "/.Trash/" + name, ""};
            return r;
        }
        if (errno != EEXIST) {
            return failure(target.path, std::strerror(errno));
        }
    }
    return failure(target.path, "the Trash holds too many items of this name");
#else
    return Trash::moveAt(target.folderFd, target.entry, target.path, &record_);
#endif
}

RemovalResult PlatformRemover::replaceWithLink(const RemovalTarget& target) {
    return replaceWithHardLink(target);
}

RemovalResult PlatformRemover::shareStorage(const RemovalTarget& target) {
    return shareWithKept(target);
}

RemovalResult PlatformRemover::removeForGood(const RemovalTarget& target) {
    struct stat st {};
    if (::fstatat(target.folderFd, target.entry.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
        return failure(target.path, std::strerror(errno));
    }
    if (!S_ISDIR(st.st_mode)) {
        if (::unlinkat(target.folderFd, target.entry.c_str(), 0) != 0) {
            return failure(target.path, std::strerror(errno));
        }
        return {};
    }
    const TreeRemoval t = removeTreeAt(target.folderFd, target.entry);
    if (t.complete) {
        return {};
    }
    RemovalResult r;
    r.ok = false;
    r.partial = t.bytesFreed > 0 || t.remaining.size() > 1 ||
                (t.remaining.size() == 1 && t.remaining[0].rfind(".: ", 0) != 0);
    r.bytesFreed = t.bytesFreed;
    std::string left;
    for (std::size_t i = 0; i < t.remaining.size() && i < 3; ++i) {
        left += (i ? "; " : "") + t.remaining[i];
    }
    if (t.remaining.size() > 3) {
        left += "; and " + std::to_string(t.remaining.size() - 3) + " more";
    }
    r.error = target.path + ": " +
              (r.partial ? "removed only in part, what remains: " : "not removed: ") + left;
    return r;
}

CleaningLock::~CleaningLock() {
    if (fd_ >= 0) {
        ::close(fd_); // closing the descriptor releases the lock
    }
}

CleaningLock::Outcome CleaningLock::open() {
    if (fd_ >= 0) {
        return Outcome::Taken;
    }
    const PrivateFolder folder = openLockFolder();
    if (!folder.ok()) {
        message_ = "no safe place for the cleaning lock: " + folder.error;
        return Outcome::Failed;
    }
    const std::string path = folder.path + "/twinsweep-clean.lock";
    fd_ = ::openat(folder.fd.get(), "twinsweep-clean.lock",
                   O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    struct stat st {};
    if (fd_ >= 0 && (::fstat(fd_, &st) != 0 || !S_ISREG(st.st_mode))) {
        ::close(fd_);
        fd_ = -1;
        errno = EINVAL;
    }
    if (fd_ < 0) {
        message_ = "can't open the cleaning lock " + path + ": " + std::strerror(errno);
        return Outcome::Failed;
    }
    message_ = "another cleaning is running (lock " + path + ")";
    return Outcome::Busy;
}

CleaningLock::Outcome CleaningLock::tryTake() {
    const Outcome opened = open();
    if (opened == Outcome::Failed) {
        return opened;
    }
    if (::flock(fd_, LOCK_EX | LOCK_NB) == 0) {
        return Outcome::Taken;
    }
    if (errno != EWOULDBLOCK) {
        message_ = std::string("can't take the cleaning lock: ") + std::strerror(errno);
        return Outcome::Failed;
    }
    return Outcome::Busy;
}

CleaningLock::Outcome CleaningLock::take(bool (*stop)()) {
    const Outcome first = tryTake();
    if (first != Outcome::Busy) {
        return first;
    }
    while (::flock(fd_, LOCK_EX) != 0) {
        if (errno != EINTR) {
            message_ = std::string("can't take the cleaning lock: ") + std::strerror(errno);
            return Outcome::Failed;
        }
        if (stop != nullptr && stop()) {
            return Outcome::Interrupted;
        }
    }
    return Outcome::Taken;
}

} // namespace twinsweep
