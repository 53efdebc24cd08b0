// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/Fd.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace twinsweep {

bool writeFully(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t n = ::write(fd, text.data(), text.size());
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

bool readAll(int fd, std::string& text, std::size_t limit) {
    char buf[65536];
    while (text.size() < limit) {
        const ssize_t n = ::read(fd, buf, sizeof buf);
        if (n == 0) {
            return true;
        }
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        text.append(buf, static_cast<std::size_t>(n));
    }
    return true;
}

std::vector<std::string> entryNames(int folderFd) {
    std::vector<std::string> names;
    const int listFd = ::openat(folderFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* dir = listFd >= 0 ? ::fdopendir(listFd) : nullptr;
    if (dir == nullptr) {
        if (listFd >= 0) {
            ::close(listFd);
        }
        return names;
    }
    while (const dirent* e = ::readdir(dir)) {
        const char* n = e->d_name;
        if (!(n[0] == '.' && (n[1] == '\0' || (n[1] == '.' && n[2] == '\0')))) {
            names.emplace_back(n);
        }
    }
    ::closedir(dir);
    return names;
}

std::string parentOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string lastComponent(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

int renameNoReplace(int fromFd, const std::string& from, int toFd, const std::string& to) {
#ifdef __APPLE__
    return ::renameatx_np(fromFd, from.c_str(), toFd, to.c_str(), RENAME_EXCL);
#else
    return ::renameat2(fromFd, from.c_str(), toFd, to.c_str(), RENAME_NOREPLACE);
#endif
}

int openOrMakeFolderAt(int dirFd, const std::string& name) {
    const int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    int fd = ::openat(dirFd, name.c_str(), flags);
    if (fd < 0 && errno == ENOENT) {
        if (::mkdirat(dirFd, name.c_str(), 0700) != 0 && errno != EEXIST) {
            return -1;
        }
        fd = ::openat(dirFd, name.c_str(), flags);
    }
    return fd;
}

int openOrMakeFolder(const std::string& path) {
    if (path.empty() || path.front() != '/') {
        errno = EINVAL;
        return -1;
    }
    // One component at a time from the root, so a missing parent is made
    // where the path says and nowhere else.
    Fd at(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::size_t start = 1;
    while (at.ok() && start < path.size()) {
        std::size_t end = path.find('/', start);
        if (end == std::string::npos) {
            end = path.size();
        }
        const std::string part = path.substr(start, end - start);
        start = end + 1;
        if (part.empty() || part == ".") {
            continue;
        }
        const bool last = start >= path.size();
        int next = ::openat(at.get(), part.c_str(),
                            O_RDONLY | O_DIRECTORY | O_CLOEXEC | (last ? O_NOFOLLOW : 0));
        if (next < 0 && errno == ENOENT) {
            next = openOrMakeFolderAt(at.get(), part);
        }
        if (next < 0) {
            return -1;
        }
        at.reset(next);
    }
    return at.release();
}

} // namespace twinsweep
