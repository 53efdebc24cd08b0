// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/GentleRead.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace twinsweep {

namespace {

// One state per descriptor number: Drop while that descriptor is a file the
// search opened uncached. Descriptors beyond the table are left alone.
constexpr int kTracked = 1 << 16;
enum : unsigned char { Keep, Drop, Undecided };
std::array<std::atomic<unsigned char>, kTracked> dropOnClose{};

// The file opened last on this thread whose judgement waits for its first
// read; that read follows on the same thread.
struct Waiting {
    int fd = -1;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
};
thread_local Waiting waiting;

constexpr std::uint64_t kSample = 256 * 1024; // the head of the file, where every pass starts

#ifndef SYS_cachestat
#define SYS_cachestat 451
#endif
struct CachestatRange {
    std::uint64_t off;
    std::uint64_t len;
};
struct Cachestat {
    std::uint64_t nrCache, nrDirty, nrWriteback, nrEvicted, nrRecentlyEvicted;
};

// Whether any page of the head of the file is in the page cache: cachestat
// where the kernel has it (6.5 and later), else mincore on a small mapping.
bool anyCached(int fd, std::uint64_t size) {
    const std::uint64_t length = size < kSample ? size : kSample;
    static std::atomic<bool> noCachestat{false};
    if (!noCachestat.load(std::memory_order_relaxed)) {
        CachestatRange range{0, length};
        Cachestat stat{};
        if (::syscall(SYS_cachestat, fd, &range, &stat, 0) == 0) {
            return stat.nrCache > 0;
        }
        if (errno != ENOSYS) {
            return true; // can't tell: leave the cache as it is
        }
        noCachestat.store(true, std::memory_order_relaxed);
    }
    void* map = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, fd, 0);
    if (map == MAP_FAILED) {
        return true;
    }
    const long page = ::sysconf(_SC_PAGESIZE);
    std::vector<unsigned char> resident((length + static_cast<std::uint64_t>(page) - 1) /
                                        static_cast<std::uint64_t>(page));
    bool cached = true;
    if (::mincore(map, length, resident.data()) == 0) {
        cached = false;
        for (const unsigned char r : resident) {
            cached = cached || (r & 1) != 0;
        }
    }
    ::munmap(map, length);
    return cached;
}

struct Uncached {
    std::mutex lock;
    std::set<std::pair<std::uint64_t, std::uint64_t>> files; // device, inode
};

Uncached& uncached() {
    static Uncached u;
    return u;
}

} // namespace

void beginGentleSearch() {
    Uncached& u = uncached();
    const std::lock_guard guard(u.lock);
    u.files.clear();
}

namespace {

// Whether what is read of the file (device, inode) open as fd is dropped at
// close, judged from the cache now; an uncached file is remembered.
bool judge(int fd, std::uint64_t device, std::uint64_t inode, std::uint64_t size) {
    if (anyCached(fd, size)) {
        return false;
    }
    Uncached& u = uncached();
    const std::lock_guard guard(u.lock);
    u.files.insert({device, inode});
    return true;
}

// A file read in several passes keeps the judgement of its first opening:
// what an earlier pass left cached is the search's own.
bool judgedBefore(std::uint64_t device, std::uint64_t inode) {
    Uncached& u = uncached();
    const std::lock_guard guard(u.lock);
    return u.files.count({device, inode}) != 0;
}

} // namespace

void noteOpenedForReading(int fd, const struct stat& st, bool atFirstRead) {
    if (fd < 0 || fd >= kTracked || st.st_size == 0) {
        return;
    }
    const int err = errno;
    const auto device = static_cast<std::uint64_t>(st.st_dev);
    const auto inode = static_cast<std::uint64_t>(st.st_ino);
    const auto size = static_cast<std::uint64_t>(st.st_size);
    const bool known = judgedBefore(device, inode);
    unsigned char state = Drop;
    if (!known && atFirstRead) {
        waiting = {fd, device, inode, size};
        state = Undecided;
    } else if (!known && !judge(fd, device, inode, size)) {
        state = Keep;
    }
    dropOnClose[static_cast<std::size_t>(fd)].store(state, std::memory_order_relaxed);
    errno = err;
}

void firstReadWas(int fd, FirstRead how) {
    if (fd < 0 || fd >= kTracked ||
        dropOnClose[static_cast<std::size_t>(fd)].load(std::memory_order_relaxed) != Undecided) {
        return;
    }
    const int err = errno;
    unsigned char state = Keep; // not the file noted last: can't tell, leave the cache alone
    if (waiting.fd == fd) {
        bool drop = how == FirstRead::FromDisk;
        if (how == FirstRead::Unknown) {
            drop = judge(fd, waiting.device, waiting.inode, waiting.size);
        } else if (drop) {
            Uncached& u = uncached();
            const std::lock_guard guard(u.lock);
            u.files.insert({waiting.device, waiting.inode});
        }
        state = drop ? Drop : Keep;
    }
    waiting.fd = -1;
    dropOnClose[static_cast<std::size_t>(fd)].store(state, std::memory_order_relaxed);
    errno = err;
}

void closeAfterReading(int fd, bool drop) {
    const int err = errno;
    if (fd >= 0 && fd < kTracked &&
        dropOnClose[static_cast<std::size_t>(fd)].exchange(Keep, std::memory_order_relaxed) ==
            Drop &&
        drop) {
        ::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
    }
    ::close(fd);
    errno = err;
}

namespace {

constexpr int kIoprioClassShift = 13;
constexpr int kIoprioClassIdle = 3;
constexpr int kIoprioWhoProcess = 1;

} // namespace

IdleIoPriority::IdleIoPriority(bool idle) {
    if (!idle) {
        return;
    }
    // Who 0 with IOPRIO_WHO_PROCESS is the calling thread; threads it starts
    // inherit its priority.
    previous_ = static_cast<int>(::syscall(SYS_ioprio_get, kIoprioWhoProcess, 0));
    ::syscall(SYS_ioprio_set, kIoprioWhoProcess, 0, kIoprioClassIdle << kIoprioClassShift);
}

IdleIoPriority::~IdleIoPriority() {
    if (previous_ >= 0) {
        ::syscall(SYS_ioprio_set, kIoprioWhoProcess, 0, previous_);
    }
}

} // namespace twinsweep
