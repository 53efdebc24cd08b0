// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/LinkTrust.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace twinsweep {

namespace {

// Deeper than any real tree: a folder whose ".." chain does not end by then
// is not trusted.
constexpr int kMaxDepth = 4096;

DevIno idOf(const struct stat& st) {
    return {static_cast<std::uint64_t>(st.st_dev), static_cast<std::uint64_t>(st.st_ino)};
}

} // namespace

LinkTrust::LinkTrust(const std::set<DevIno>& tops) : tops_(tops), user_(::geteuid()) {}

LinkTrust::Link LinkTrust::read(int dirFd, const std::string& name) {
    Link link;
    struct stat st {};
    if (::fstatat(dirFd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(st.st_mode)) {
        link = {true, st.st_dev, st.st_ino, st.st_uid};
    }
    return link;
}

bool LinkTrust::trusted(const Link& before, int dirFd, const std::string& name, int target) const {
    // Read again once followed: a link swapped in between is not trusted.
    const Link after = read(dirFd, name);
    if (!before.read || !after.read || after.device != before.device ||
        after.inode != before.inode || after.owner != before.owner) {
        return false;
    }
    if (before.owner != 0 && before.owner != user_) {
        return false;
    }
    return user_ != 0 || insideTops(target);
}

bool LinkTrust::trustedEntry(int dirFd, const std::string& name) const {
    const Link link = read(dirFd, name);
    const int fd = ::openat(dirFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool ok = fd >= 0 && trusted(link, dirFd, name, fd);
    if (fd >= 0) {
        ::close(fd);
    }
    return ok;
}

bool LinkTrust::insideTops(int target) const {
    // Up through "..", which is where the folder really is (a mount's root
    // leads to the folder it is mounted on), never the path text.
    int fd = ::dup(target);
    struct stat st {};
    bool inside = false;
    for (int depth = 0; fd >= 0 && depth < kMaxDepth && ::fstat(fd, &st) == 0; ++depth) {
        if (tops_.contains(idOf(st))) {
            inside = true;
            break;
        }
        const int up = ::openat(fd, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(fd);
        fd = up;
        struct stat parent {};
        if (fd < 0 || ::fstat(fd, &parent) != 0 || idOf(parent) == idOf(st)) {
            break; // the root: no folder given holds it
        }
    }
    if (fd >= 0) {
        ::close(fd);
    }
    return inside;
}

} // namespace twinsweep
