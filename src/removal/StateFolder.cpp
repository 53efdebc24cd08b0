// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/StateFolder.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace twinsweep {

namespace {

std::string modeText(mode_t mode) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "%04o", static_cast<unsigned>(mode & 07777));
    return buf;
}

bool trustedOwner(uid_t uid) {
    return uid == 0 || uid == ::geteuid();
}

PrivateFolder refused(const std::string& path, const std::string& why) {
    PrivateFolder f;
    f.path = path;
    f.error = path + ": " + why;
    return f;
}

} // namespace

PrivateFolder openPrivateFolder(const std::string& path) {
    if (path.empty() || path.front() != '/') {
        return refused(path, "not an absolute path");
    }
    Fd at(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat st {};
    if (!at.ok() || ::fstat(at.get(), &st) != 0) {
        return refused(path, std::strerror(errno));
    }
    std::string walked; // the path so far, for messages
    int linksLeft = 40;
    std::string rest = path;
    std::size_t start = 1;
    while (start < rest.size()) {
        std::size_t end = rest.find('/', start);
        if (end == std::string::npos) {
            end = rest.size();
        }
        const std::string part = rest.substr(start, end - start);
        start = end + 1;
        if (part.empty() || part == ".") {
            continue;
        }
        if (part == "..") {
            return refused(path, "a state folder path may not go through \"..\"");
        }
        const bool othersWrite = (st.st_mode & (S_IWGRP | S_IWOTH)) != 0;
        struct stat next {};
        if (::fstatat(at.get(), part.c_str(), &next, AT_SYMLINK_NOFOLLOW) != 0) {
            if (errno != ENOENT || othersWrite) {
                // Never make our folder where another user could have made it first.
                return refused(path, walked + "/" + part + ": " + std::strerror(errno));
            }
            if (::mkdirat(at.get(), part.c_str(), 0700) != 0 && errno != EEXIST) {
                return refused(path, walked + "/" + part + ": " + std::strerror(errno));
            }
            if (::fstatat(at.get(), part.c_str(), &next, AT_SYMLINK_NOFOLLOW) != 0) {
                return refused(path, walked + "/" + part + ": " + std::strerror(errno));
            }
        }
        if (othersWrite && !((st.st_mode & S_ISVTX) != 0 && trustedOwner(next.st_uid))) {
            return refused(
                path, (walked.empty() ? "/" : walked) + " can be changed by other users (mode " +
                          modeText(st.st_mode) + "), so twinsweep keeps nothing under it");
        }
        if (!trustedOwner(next.st_uid)) {
            return refused(path, walked + "/" + part + " belongs to another user (uid " +
                                     std::to_string(next.st_uid) +
                                     "), so twinsweep keeps nothing under it");
        }
        if (S_ISLNK(next.st_mode)) {
            // A link root or we own: read it and go on from where it leads.
            if (--linksLeft < 0) {
                return refused(path, std::strerror(ELOOP));
            }
            char target[PATH_MAX];
            const ssize_t n = ::readlinkat(at.get(), part.c_str(), target, sizeof target - 1);
            if (n <= 0) {
                return refused(path, walked + "/" + part + ": " + std::strerror(errno));
            }
            const std::string to(target, static_cast<std::size_t>(n));
            const std::string remaining = start < rest.size() ? rest.substr(start) : std::string();
            if (to.front() == '/') {
                rest = to + "/" + remaining;
                at.reset(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
                walked.clear();
                if (!at.ok() || ::fstat(at.get(), &st) != 0) {
                    return refused(path, std::strerror(errno));
                }
            } else {
                rest = "/" + to + "/" + remaining;
            }
            start = 1;
            continue;
        }
        if (!S_ISDIR(next.st_mode)) {
            return refused(path, walked + "/" + part + " is not a folder");
        }
        const int fd =
            ::openat(at.get(), part.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        struct stat opened {};
        if (fd < 0 || ::fstat(fd, &opened) != 0) {
            if (fd >= 0) {
                ::close(fd);
            }
            return refused(path, walked + "/" + part + ": " + std::strerror(errno));
        }
        at.reset(fd);
        if (opened.st_dev != next.st_dev || opened.st_ino != next.st_ino) {
            return refused(path, walked + "/" + part + " changed while it was checked");
        }
        st = opened;
        walked += "/" + part;
    }
    if (st.st_uid != ::geteuid()) {
        return refused(path, "belongs to another user (uid " + std::to_string(st.st_uid) +
                                 "), so twinsweep keeps nothing in it");
    }
    if ((st.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        return refused(path, "can be changed by other users (mode " + modeText(st.st_mode) +
                                 "), so twinsweep keeps nothing in it");
    }
    PrivateFolder f;
    f.fd = std::move(at);
    f.path = path;
    return f;
}

std::string stateFolderPath() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/') {
        return std::string(state) + "/twinsweep";
    }
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] != '/') {
        return {};
    }
    return std::string(home) + "/.local/state/twinsweep";
}

PrivateFolder openStateFolder() {
    const std::string path = stateFolderPath();
    if (path.empty()) {
        PrivateFolder f;
        f.error = "no home folder to keep twinsweep's state in (set HOME or XDG_STATE_HOME)";
        return f;
    }
    return openPrivateFolder(path);
}

} // namespace twinsweep
