// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/WalkedFolders.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <vector>

#include "engine/FolderRegistry.h"

namespace twinsweep {

namespace {

// The comparison meets files in size order, so from every folder at random:
// a cache that holds every walked folder turns each open into a one-name
// look-up. Bounded by a share of the descriptor limit, leaving the rest to
// the files being read, the walk and whatever else the process has open.
constexpr std::size_t kMinCached = 16;
constexpr std::size_t kMaxCached = 16384;
// The soft limit is raised this far when the hard limit allows it: the
// descriptors are only ever used with poll and friends, never select.
constexpr rlim_t kWantedLimit = 65536;

std::size_t folderBudget() {
    struct rlimit limit {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return kMinCached;
    }
    if (limit.rlim_cur != RLIM_INFINITY && limit.rlim_cur < kWantedLimit) {
        struct rlimit raised = limit;
        raised.rlim_cur =
            limit.rlim_max == RLIM_INFINITY ? kWantedLimit : std::min(limit.rlim_max, kWantedLimit);
        if (raised.rlim_cur > limit.rlim_cur && ::setrlimit(RLIMIT_NOFILE, &raised) == 0) {
            limit = raised;
        }
    }
    const rlim_t soft = limit.rlim_cur == RLIM_INFINITY ? kWantedLimit : limit.rlim_cur;
    return std::clamp<std::size_t>(static_cast<std::size_t>(soft / 2), kMinCached, kMaxCached);
}

struct Cache {
    std::mutex lock;
    std::size_t budget = folderBudget();
    std::unordered_map<std::uint32_t, FolderFdPtr> entries;
    int sessions = 0;
    // Changes whenever a session starts or the last one ends: what a thread
    // copied from an older one is let go.
    std::atomic<std::uint64_t> generation{1};
    std::atomic<bool> inSession{false};

    FolderFdPtr find(std::uint32_t index) const {
        const auto it = entries.find(index);
        return it == entries.end() ? nullptr : it->second;
    }

    // Whether fd is now kept until the sessions end. During a search nothing
    // is let go (threads hold copies), so past the budget a folder is opened
    // for each use; outside one, a few are kept for a window's occasional look.
    bool keep(std::uint32_t index, FolderFdPtr fd) {
        if (sessions > 0) {
            return entries.size() < budget && entries.emplace(index, std::move(fd)).second;
        }
        if (entries.size() >= kMinCached) {
            entries.erase(entries.begin());
        }
        entries.emplace(index, std::move(fd));
        return false;
    }
};

// Each thread's own copy of what the search keeps open: a look-up that finds
// its folder here takes no lock and touches no count shared with the other
// readers.
// Indexed by the folder's registry index (dense, from 1): one load finds it.
struct Front {
    std::uint64_t generation = 0;
    std::vector<FolderFdPtr> held;
    std::vector<int> fds; // -1: not held

    int find(std::uint32_t index) const { return index < fds.size() ? fds[index] : -1; }
    void hold(std::uint32_t index, FolderFdPtr fd) {
        if (index >= fds.size()) {
            fds.resize(index + 1024, -1);
            held.resize(index + 1024);
        }
        fds[index] = fd->get();
        held[index] = std::move(fd);
    }
    void clear() {
        held.clear();
        fds.clear();
    }
};
thread_local Front front;

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

WalkedFolderSession::WalkedFolderSession() {
    Cache& c = cache();
    const std::lock_guard guard(c.lock);
    if (c.sessions++ == 0) {
        c.entries.clear();
        c.generation.fetch_add(1);
        c.inSession.store(true);
    }
}

WalkedFolderSession::~WalkedFolderSession() {
    front.clear();
    Cache& c = cache();
    const std::lock_guard guard(c.lock);
    if (--c.sessions == 0) {
        c.entries.clear();
        c.generation.fetch_add(1);
        c.inSession.store(false);
    }
}

void keepWalkedFolder(std::uint32_t index, const FolderFdPtr& fd) {
    if (index == 0 || !fd || fd->get() < 0) {
        return;
    }
    Cache& c = cache();
    const std::lock_guard guard(c.lock);
    if (c.sessions > 0) {
        c.keep(index, fd);
    }
}

namespace {

FolderFdPtr openWalked(Cache& c, std::uint32_t index, bool& kept) {
    const std::lock_guard guard(c.lock);
    if (FolderFdPtr fd = c.find(index)) {
        kept = c.sessions > 0;
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
    // ... then down again, one name at a time; each folder opened on the way
    // is kept too, so that its siblings are one name away.
    for (auto it = down.rbegin(); it != down.rend(); ++it) {
        FolderFdPtr next = openChecked(at ? at->get() : AT_FDCWD, it->second, it->first);
        if (!next) {
            return nullptr;
        }
        at = std::move(next);
        kept = c.keep(it->first, at);
    }
    return at;
}

} // namespace

FolderFdPtr openWalkedFolder(std::uint32_t index) {
    Cache& c = cache();
    const bool session = c.inSession.load(std::memory_order_acquire);
    if (session) {
        const std::uint64_t generation = c.generation.load(std::memory_order_acquire);
        if (front.generation != generation) {
            front.clear();
            front.generation = generation;
        }
        if (front.find(index) >= 0) {
            return front.held[index];
        }
    }
    bool kept = false;
    FolderFdPtr fd = openWalked(c, index, kept);
    if (fd && kept && session) {
        front.hold(index, fd);
    }
    return fd;
}

bool locateItem(std::uint32_t folder, PathArg path, ItemAt& at) {
    const auto slash = path.view().find_last_of('/');
    if (folder == 0 || slash == std::string::npos) {
        at.folder.reset();
        at.dirFd = AT_FDCWD;
        at.name = path.c_str();
        return true;
    }
    at.folder.reset();
    const int held = front.find(folder);
    if (held >= 0 && front.generation == cache().generation.load(std::memory_order_acquire)) {
        at.dirFd = held; // this thread's copy keeps it open
    } else {
        at.folder = openWalkedFolder(folder);
        if (!at.folder) {
            return false;
        }
        at.dirFd = at.folder->get();
    }
    at.name = path.c_str() + slash + 1;
    return true;
}

} // namespace twinsweep
