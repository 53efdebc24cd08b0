// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/FolderListing.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/File.h"

namespace twinsweep {

namespace {

// Entries gathered ahead and not yet used by the walk (about 100 bytes each
// plus the name), and folder descriptors held for waiting subfolders.
constexpr std::size_t kBudgetEntries = 4096;
constexpr int kBudgetFds = 128;

std::atomic<int> heldFds{0};

// A folder descriptor that counts against the pool's descriptor budget.
class CountedFd : public FolderFd {
  public:
    explicit CountedFd(int fd) : FolderFd(fd) { heldFds.fetch_add(1, std::memory_order_relaxed); }
    ~CountedFd() { heldFds.fetch_sub(1, std::memory_order_relaxed); }
};

void fill(EntryAttrs& a, const struct stat& st) {
    a.device = static_cast<std::uint64_t>(st.st_dev);
    a.inode = static_cast<std::uint64_t>(st.st_ino);
    a.size = static_cast<std::uint64_t>(st.st_size);
    a.mtimeSec = static_cast<std::int64_t>(st.st_mtim.tv_sec);
    a.mtimeNsec = static_cast<std::int32_t>(st.st_mtim.tv_nsec);
    a.mode = static_cast<std::uint32_t>(st.st_mode);
    a.links = static_cast<std::uint32_t>(st.st_nlink);
    a.error = 0;
}

bool statAt(int dirFd, const std::string& name, int flags, EntryAttrs& a) {
    struct stat st {};
    if (::fstatat(dirFd, name.c_str(), &st, flags) != 0) {
        a.error = errno;
        return false;
    }
    fill(a, st);
    return true;
}

} // namespace

NameRules::Verdict NameRules::judge(std::string_view path, std::string_view name) const {
    Verdict v;
    if (!gate->allows(path, name) || name.front() == '.') {
        return v;
    }
    const std::string ext = extensionOf(std::string(name));
    v.package = packages->contains(ext);
    if (ignorePackages && v.package) {
        return v;
    }
    v.examined = true;
    v.extension = extensions->empty() ||
                  std::find(extensions->begin(), extensions->end(), ext) != extensions->end();
    return v;
}

void readEntryAttrs(int dirFd, ListedEntry& e, bool regular) {
    switch (e.type) {
    case DT_UNKNOWN:
        e.read = true;
        if (!statAt(dirFd, e.name, AT_SYMLINK_NOFOLLOW, e.attrs)) {
            return; // stays unknown: it can't be taken
        }
        e.type = static_cast<unsigned char>(IFTODT(e.attrs.mode));
        if (e.type == DT_LNK) {
            statAt(dirFd, e.name, 0, e.attrs);
        }
        return;
    case DT_LNK:
        e.read = true;
        statAt(dirFd, e.name, 0, e.attrs);
        return;
    case DT_REG:
        if (regular) {
            e.read = true;
            statAt(dirFd, e.name, AT_SYMLINK_NOFOLLOW, e.attrs);
        }
        return;
    default:
        return;
    }
}

FolderFdPtr gatherListing(FolderListing& out, int parentFd, const char* name,
                          const std::string& path, const NameRules* rules, bool children) {
    const int fd = ::openat(parentFd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        out.error = errno;
        return nullptr;
    }
    auto held = std::make_shared<CountedFd>(fd);
    struct stat st {};
    if (::fstat(fd, &st) != 0) {
        out.error = errno;
        return nullptr;
    }
    out.device = static_cast<std::uint64_t>(st.st_dev);
    out.inode = static_cast<std::uint64_t>(st.st_ino);
    // The listing reads through its own descriptor so that fd stays open.
    const int listFd = ::dup(fd);
    DIR* dir = listFd < 0 ? nullptr : ::fdopendir(listFd);
    if (dir == nullptr) {
        out.error = errno;
        if (listFd >= 0) {
            ::close(listFd);
        }
        return nullptr;
    }
    errno = 0;
    while (const dirent* de = ::readdir(dir)) {
        const char* n = de->d_name;
        if (n[0] == '.' && (n[1] == '\0' || (n[1] == '.' && n[2] == '\0'))) {
            continue;
        }
        out.entries.push_back({std::string(n), de->d_type, false, {}, nullptr});
    }
    out.error = errno;
    ::closedir(dir);
    if (out.error != 0) {
        out.entries.clear();
        return nullptr;
    }
    std::sort(out.entries.begin(), out.entries.end(),
              [](const ListedEntry& a, const ListedEntry& b) { return a.name < b.name; });
    if (rules == nullptr) {
        return held;
    }
    std::string p = path;
    if (p.empty() || p.back() != '/') {
        p.push_back('/');
    }
    const std::size_t base = p.size();
    for (ListedEntry& e : out.entries) {
        p.resize(base);
        p.append(e.name);
        const NameRules::Verdict v = rules->judge(p, e.name);
        if (!v.examined) {
            continue;
        }
        const bool asPackage = !rules->ignorePackages && v.package;
        readEntryAttrs(fd, e, !asPackage && v.extension);
        if (children && e.type == DT_DIR && !asPackage) {
            e.child = std::make_shared<FolderListing>();
            e.child->name = e.name;
            e.child->path = p;
        }
    }
    return held;
}

ListingPool::ListingPool(unsigned threads, const NameRules& rules) : rules_(rules) {
    for (unsigned k = 0; k < threads; ++k) {
        threads_.emplace_back([this] { work(); });
    }
}

ListingPool::~ListingPool() {
    {
        std::lock_guard guard(lock_);
        stop_ = true;
    }
    wake_.notify_all();
    for (std::thread& t : threads_) {
        t.join();
    }
}

void ListingPool::submit(FolderListing& parent, const FolderFdPtr& fd) {
    std::lock_guard guard(lock_);
    // Pushed to the front in reverse, so the first subfolder is gathered next:
    // the pool stays just ahead of the walk's depth-first order.
    for (auto it = parent.entries.rbegin(); it != parent.entries.rend(); ++it) {
        if (it->child && it->child->state == FolderListing::State::Pending) {
            it->child->parentFd = fd;
            queue_.push_front(it->child);
        }
    }
    wake_.notify_all();
}

void ListingPool::work() {
    std::unique_lock guard(lock_);
    while (true) {
        if (stop_) {
            return;
        }
        const bool overBudget =
            buffered_ >= kBudgetEntries || heldFds.load(std::memory_order_relaxed) >= kBudgetFds;
        if (queue_.empty() || overBudget) {
            // Descriptors are let go without a signal: look again soon.
            wake_.wait_for(guard, std::chrono::milliseconds(overBudget ? 2 : 50));
            continue;
        }
        std::shared_ptr<FolderListing> node = std::move(queue_.front());
        queue_.pop_front();
        if (node->state != FolderListing::State::Pending) {
            continue; // taken by the walk itself, or abandoned
        }
        node->state = FolderListing::State::Busy;
        FolderFdPtr parentFd = std::move(node->parentFd);
        const std::string path = std::move(node->path);
        guard.unlock();

        FolderFdPtr fd =
            gatherListing(*node, parentFd->get(), node->name.c_str(), path, &rules_, true);
        parentFd.reset();

        guard.lock();
        node->state = FolderListing::State::Done;
        node->fd = fd;
        if (!node->abandoned) {
            node->counted = true;
            buffered_ += node->entries.size();
            for (auto it = node->entries.rbegin(); it != node->entries.rend(); ++it) {
                if (it->child) {
                    it->child->parentFd = fd;
                    queue_.push_front(it->child);
                }
            }
        }
        done_.notify_all();
        if (!queue_.empty()) {
            wake_.notify_one();
        }
    }
}

bool ListingPool::take(FolderListing& node) {
    std::unique_lock guard(lock_);
    if (node.state == FolderListing::State::Pending) {
        node.state = FolderListing::State::Busy;
        node.parentFd.reset();
        node.path.clear();
        return false;
    }
    done_.wait(guard, [&] { return node.state == FolderListing::State::Done; });
    return true;
}

void ListingPool::release(FolderListing& node) {
    std::lock_guard guard(lock_);
    releaseLocked(node);
}

void ListingPool::releaseLocked(FolderListing& node) {
    if (node.counted) {
        node.counted = false;
        buffered_ -= node.entries.size();
        wake_.notify_all();
    }
}

void ListingPool::abandon(FolderListing& node) {
    std::lock_guard guard(lock_);
    abandonLocked(node);
}

void ListingPool::abandonLocked(FolderListing& top) {
    std::vector<FolderListing*> todo{&top};
    while (!todo.empty()) {
        FolderListing& node = *todo.back();
        todo.pop_back();
        releaseLocked(node);
        if (node.state != FolderListing::State::Done) {
            // Not started: never start it; being gathered: drop what it finds.
            node.abandoned = true;
            if (node.state == FolderListing::State::Pending) {
                node.state = FolderListing::State::Busy;
                node.parentFd.reset();
            }
            continue;
        }
        for (ListedEntry& e : node.entries) {
            if (e.child) {
                todo.push_back(e.child.get());
            }
        }
    }
}

} // namespace twinsweep
