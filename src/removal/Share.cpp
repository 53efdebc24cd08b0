// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/Share.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>
#endif

#include "removal/Extents.h"
#include "removal/Fd.h"

namespace twinsweep {

const char* const kNothingCanShare =
    "none of the folders searched is on a file system that can share storage (Btrfs, or XFS "
    "made with reflinks); nothing was changed";

namespace {

// Btrfs takes at most this much in one call; other file systems more.
constexpr std::uint64_t kChunk = 16ULL * 1024 * 1024;

RemovalResult leftAlone(const RemovalTarget& t, const std::string& why) {
    RemovalResult r;
    r.ok = false;
    r.error = t.path + ": " + why + ", left as it was";
    return r;
}

RemovalResult tryOther(const RemovalTarget& t, const std::string& why) {
    RemovalResult r = leftAlone(t, why);
    r.tryOtherKept = true;
    return r;
}

std::string kernelSays(int err) {
    if (err == EOPNOTSUPP || err == EINVAL) {
        return "the file system can't share storage";
    }
    if (err == EXDEV) {
        return "on another file system than the kept copy";
    }
    return std::strerror(err);
}

struct Checked {
    Fd copyFd;
    struct stat copy {};
    std::optional<std::vector<Extent>> before;
};

RemovalResult shareChecks(const RemovalTarget& t, Checked& c) {
    if (t.isFolder) {
        return leftAlone(t, "a package (folder) can't share storage");
    }
    if (t.keptFolderFd < 0) {
        return leftAlone(t, "every copy of its group is marked, so there is nothing to share with");
    }
    if (t.keptFd < 0) {
        return tryOther(t, "kept copy is not a regular file");
    }
    // The copy stays at its name: this opens the entry that was checked, and
    // makes sure of it.
    c.copyFd.reset(
        ::openat(t.folderFd, t.entry.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat kept {};
    if (!c.copyFd.ok() || ::fstat(c.copyFd.get(), &c.copy) != 0 || ::fstat(t.keptFd, &kept) != 0) {
        return leftAlone(t, std::strerror(errno));
    }
    if (static_cast<std::uint64_t>(c.copy.st_dev) != t.device ||
        static_cast<std::uint64_t>(c.copy.st_ino) != t.inode || !S_ISREG(c.copy.st_mode)) {
        return leftAlone(t, "replaced by another file during the clean");
    }
    if (kept.st_dev != c.copy.st_dev) {
        return tryOther(t, "on another file system than the kept copy");
    }
    if (!canShareStorage(c.copyFd.get())) {
        return leftAlone(t, "the file system can't share storage");
    }
    RemovalResult fine;
    fine.partial = true; // only what was shared with nothing counts
    c.before = extentsOf(c.copyFd.get());
    const std::optional<std::vector<Extent>> keptExtents = extentsOf(t.keptFd);
    if (c.copy.st_size == 0 ||
        (c.before && keptExtents && !c.before->empty() &&
         bytesWithin(*c.before, *keptExtents) == static_cast<std::uint64_t>(c.copy.st_size))) {
        fine.alreadyShared = true;
        return fine;
    }
    if (c.before) {
        fine.bytesFreed = bytesLetGo(*c.before, {});
    }
    return fine;
}

} // namespace

bool canShareStorage(int fd) {
#ifdef __linux__
    struct statfs fs {};
    if (::fstatfs(fd, &fs) != 0) {
        return false;
    }
    // XFS made without reflinks is of the same type: each copy then gets
    // the kernel's own answer.
    return fs.f_type == BTRFS_SUPER_MAGIC || fs.f_type == XFS_SUPER_MAGIC;
#else
    (void)fd;
    return false;
#endif
}

bool anyCanShareStorage(const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
        const Fd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (fd.ok() && canShareStorage(fd.get())) {
            return true;
        }
    }
    return false;
}

RemovalResult checkShare(const RemovalTarget& t) {
    Checked c;
    return shareChecks(t, c);
}

RemovalResult shareWithKept(const RemovalTarget& t) {
    Checked c;
    RemovalResult done = shareChecks(t, c);
    if (!done.ok || done.alreadyShared) {
        return done;
    }
#ifdef __linux__
    const std::uint64_t size = static_cast<std::uint64_t>(c.copy.st_size);
    std::vector<char> buf(sizeof(file_dedupe_range) + sizeof(file_dedupe_range_info));
    auto* range = reinterpret_cast<file_dedupe_range*>(buf.data());
    std::string why;
    for (std::uint64_t at = 0; at < size && why.empty();) {
        std::fill(buf.begin(), buf.end(), 0);
        range->src_offset = at;
        range->src_length = std::min(kChunk, size - at);
        range->dest_count = 1;
        range->info[0].dest_fd = c.copyFd.get();
        range->info[0].dest_offset = at;
        if (::ioctl(t.keptFd, FIDEDUPERANGE, range) != 0) {
            why = kernelSays(errno);
        } else if (range->info[0].status == FILE_DEDUPE_RANGE_DIFFERS) {
            why = "changed since it was compared";
        } else if (range->info[0].status < 0) {
            why = kernelSays(-range->info[0].status);
        } else if (range->info[0].bytes_deduped == 0) {
            break; // nothing more the kernel will take (a tail it can't share)
        } else {
            at += range->info[0].bytes_deduped;
        }
    }
    // What the copy let go of, whatever happened: a chunk shared before a
    // failure stays shared (its bytes were the same).
    const std::optional<std::vector<Extent>> after = extentsOf(c.copyFd.get());
    done.bytesFreed = c.before && after ? bytesLetGo(*c.before, *after) : 0;
    if (!why.empty()) {
        RemovalResult left = leftAlone(t, why);
        left.tryOtherKept = why == kernelSays(EXDEV);
        left.bytesFreed = done.bytesFreed;
        return left;
    }
    return done;
#else
    return leftAlone(t, "the file system can't share storage");
#endif
}

} // namespace twinsweep
