// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/WalkedFolders.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "engine/FolderRegistry.h"

namespace twinsweep {

namespace {

// Folders kept open between uses: the readers of one search meet the files
// of a deep folder together (they have one size), so a few suffice.
constexpr std::size_t kCachedFolders = 16;

struct Cached {
    std::uint32_t index = 0;
    FolderFdPtr fd;
    std::uint64_t used = 0;
};

struct Cache {
    std::mutex lock;
    std::vector<Cached> entries;
    std::uint64_t clock = 0;

    FolderFdPtr find(std::uint32_t index) {
        for (Cached& c : entries) {
            if (c.index == index) {
                c.used = ++clock;
                return c.fd;
            }
        }
        return nullptr;
    }

    void keep(std::uint32_t index, FolderFdPtr fd) {
        if (entries.size() < kCachedFolders) {
            entries.push_back({index, std::move(fd), ++clock});
            return;
        }
        Cached* oldest = &entries.front();
        for (Cached& c : entries) {
            if (c.used < oldest->used) {
                oldest = &c;
            }
        }
        *oldest = {index, std::move(fd), ++clock};
    }
};

Cache& cache() {
    static Cache c;
    return c;
}

// Opens name relative to at, if it is still the walked folder index.
FolderFdPtr openChecked(int at, const std::string& name, std::uint32_t index) {
    const int fd = ::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return nullptr;
    }
    auto held = std::make_shared<FolderFd>(fd);
    const FolderIdentity walked = FolderRegistry::at(index);
    struct stat st {};
    if (::fstat(fd, &st) != 0) {
        return nullptr;
    }
    if (!walked.known || static_cast<std::uint64_t>(st.st_dev) != walked.device ||
        static_cast<std::uint64_t>(st.st_ino) != walked.inode) {
        errno = ESTALE; // moved or replaced since it was walked
        return nullptr;
    }
    return held;
}

} // namespace

FolderFdPtr openWalkedFolder(std::uint32_t index) {
    Cache& c = cache();
    std::lock_guard guard(c.lock);
    if (FolderFdPtr fd = c.find(index)) {
        return fd;
    }
    // Up to the nearest folder still open, or to a top folder...
    std::vector<std::pair<std::uint32_t, std::string>> down;
    FolderFdPtr at;
    for (std::uint32_t k = index; !at;) {
        FolderRegistry::Place place;
        if (!FolderRegistry::placeOf(k, place)) {
            errno = ENOENT;
            return nullptr;
        }
        down.emplace_back(k, std::move(place.name));
        if (place.parent == 0) {
            break;
        }
        k = place.parent;
        at = c.find(k);
    }
    // ... then down again, one name at a time.
    for (auto it = down.rbegin(); it != down.rend(); ++it) {
        FolderFdPtr next = openChecked(at ? at->get() : AT_FDCWD, it->second, it->first);
        if (!next) {
            return nullptr;
        }
        at = std::move(next);
    }
    c.keep(index, at);
    return at;
}

bool locateItem(std::uint32_t folder, const std::string& path, ItemAt& at) {
    if (folder == 0 || path.size() < PATH_MAX) {
        at.folder.reset();
        at.dirFd = AT_FDCWD;
        at.name = path.c_str();
        return true;
    }
    at.folder = openWalkedFolder(folder);
    if (!at.folder) {
        return false;
    }
    at.dirFd = at.folder->get();
    at.name = path.c_str() + path.find_last_of('/') + 1;
    return true;
}

} // namespace twinsweep
