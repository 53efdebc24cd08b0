// SPDX-License-Identifier: GPL-3.0-or-later
// The folder walk: lists folders, applies the location gate, hidden names,
// packages, the extension filter and the size range, and posts progress per
// entry. Depth first, pre-order, each folder's entries in name order.
//
// The walk keeps its own stack instead of recursing, so a tree's depth is
// bounded by memory only; it works relative to open folders (a path may be
// longer than PATH_MAX) and keeps few of them open (FolderChain). Listings and
// attributes may be gathered ahead by a pool of threads (FolderListing.h);
// every decision (the gate, links walked once, hard links, the order of the
// records, every progress post and message) is still taken here, on the
// search thread, in walk order.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "engine/Diagnostics.h"
#include "engine/FolderChain.h"
#include "engine/FolderListing.h"
#include "engine/FolderRegistry.h"
#include "engine/LinkTrust.h"
#include "engine/OtherNames.h"
#include "engine/WalkState.h"
#include "engine/WalkedFolders.h"

namespace twinsweep {

namespace {

const char* const kOoops = "Ooops! Something went wrong: ";

FileIdentity identityOf(const EntryAttrs& a) {
    FileIdentity id;
    id.device = static_cast<std::uint32_t>(a.device);
    id.inode = a.inode;
    id.size = a.size;
    id.mtimeSec = a.mtimeSec;
    id.mtimeNsec = a.mtimeNsec;
    id.known = true;
    return id;
}

FolderFdPtr workingFolder() {
    return std::make_shared<FolderFd>(AT_FDCWD);
}

void appendName(std::string& path, const std::string& name) {
    if (path.empty() || path.back() != '/') {
        path.push_back('/');
    }
    path.append(name);
}

} // namespace

// One search's walk over its top folders.
class FileTools::Walk {
  public:
    Walk(FileTools& tools, bool ignorePackages, const std::vector<std::string>& extensions,
         std::uint64_t minimum, std::uint64_t maximum)
        : tools_(tools), state_(*tools.walk_), rules_{&tools.locationGate, &tools.packageSet_,
                                                      &extensions, ignorePackages},
          minimum_(minimum), maximum_(maximum), chain_(workingFolder()), trust_(state_.tops) {}

    void run(const std::vector<std::string>& folders) {
        if (tools_.canceled() || !listTopFolders(folders)) {
            return;
        }
        while (!frames_.empty()) {
            const std::size_t k = frames_.size() - 1;
            Frame& f = frames_[k];
            if (f.entry == f.dirs[f.dir]->entries.size()) {
                if (f.dir + 1 < f.dirs.size()) {
                    enterTopFolder(f, f.dir + 1);
                } else {
                    endFrame();
                }
                continue;
            }
            ListedEntry& e = f.dirs[f.dir]->entries[f.entry++];
            if (!examine(k, e)) {
                endFrame();
            }
        }
    }

  private:
    // One level of the walk: the top folders, or one subfolder.
    struct Frame {
        std::vector<std::shared_ptr<FolderListing>> dirs;
        std::vector<std::uint32_t> identity; // FolderRegistry index per folder
        // Reached through a link the search does not trust (LinkTrust), here
        // or above: what lies below is listed, never acted on.
        bool foreign = false;
        // Top level only: each folder's path and its descriptor until it is entered.
        std::vector<std::string> paths;
        std::vector<FolderFdPtr> fds;
        std::size_t dir = 0;
        std::size_t entry = 0;
        std::size_t pathLen = 0; // the folder's path in path_
    };

    // Lists every top folder before any entry is examined; one failure means
    // nothing is examined.
    bool listTopFolders(const std::vector<std::string>& folders) {
        Frame top;
        for (std::size_t k = 0; k < folders.size(); ++k) {
            if (k > 0 && tools_.canceled()) {
                return false;
            }
            auto node = std::make_shared<FolderListing>();
            FolderFdPtr fd = gather(*node, AT_FDCWD, folders[k], folders[k]);
            if (!fd) {
                tools_.diagnostics().report(kOoops, folders[k], node->error);
                return false;
            }
            state_.tops.insert({node->device, node->inode});
            if (!state_.folders.insert({node->device, node->inode}).second) {
                continue; // walked already under another path
            }
            top.identity.push_back(
                FolderRegistry::remember(node->device, node->inode, false, 0, folders[k]));
            keepWalkedFolder(top.identity.back(), fd);
            top.dirs.push_back(std::move(node));
            top.paths.push_back(folders[k]);
            top.fds.push_back(std::move(fd));
        }
        if (top.dirs.empty()) {
            return true;
        }
        if (pool_) {
            // Each submission goes to the front: the first folder's last.
            for (std::size_t k = top.dirs.size(); k-- > 0;) {
                pool_->submit(*top.dirs[k], top.fds[k]);
            }
        }
        frames_.push_back(std::move(top));
        enterTopFolder(frames_.back(), 0);
        return true;
    }

    void enterTopFolder(Frame& f, std::size_t k) {
        if (k > 0) {
            chain_.pop();
            release(*f.dirs[f.dir]);
        }
        f.dir = k;
        f.entry = 0;
        chain_.push(std::move(f.fds[k]), f.paths[k], f.dirs[k]->device, f.dirs[k]->inode);
        path_ = f.paths[k];
        f.pathLen = path_.size();
    }

    // Leaves the innermost level; the level it returns to posts, as after
    // any folder walk (the top level's post is the caller's).
    void endFrame() {
        Frame& f = frames_.back();
        release(*f.dirs[f.dir]);
        chain_.pop();
        frames_.pop_back();
        if (!frames_.empty()) {
            path_.resize(frames_.back().pathLen);
            tools_.postWalkProgress();
        }
    }

    static void release(FolderListing& node) { std::vector<ListedEntry>().swap(node.entries); }

    FolderFdPtr gather(FolderListing& node, int parentFd, const std::string& name,
                       const std::string& path) {
        // With a pool, the attributes are read while listing and subfolders
        // are queued; without, each is read when the walk reaches it.
        if (pool_) {
            return gatherListing(node, parentFd, name.c_str(), path, &rules_, true);
        }
        const Clock::time_point start = Clock::now();
        const std::int64_t cpu = threadCpuNanos();
        FolderFdPtr fd = gatherListing(node, parentFd, name.c_str(), path, nullptr, false);
        waited_ +=
            std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start).count() -
            (threadCpuNanos() - cpu);
        // Listings that wait on the disk: the cache is cold, so gather ahead
        // on threads from here on. A warm walk is quicker on its own.
        if (tools_.walkThreads > 0 && waited_ >= tools_.walkAheadAfter.count()) {
            pool_ = std::make_unique<ListingPool>(tools_.walkThreads, rules_);
        }
        return fd;
    }

    static std::int64_t threadCpuNanos() {
        timespec ts{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
        return static_cast<std::int64_t>(ts.tv_sec) * 1000000000 + ts.tv_nsec;
    }

    // One entry; false when the level must end (cancelled).
    bool examine(std::size_t k, ListedEntry& e) {
        tools_.postWalkProgress();
        if (tools_.canceled()) {
            return false;
        }
        path_.resize(frames_[k].pathLen);
        appendName(path_, e.name);
        const NameRules::Verdict v = rules_.judge(path_, e.name);
        if (!v.examined) {
            return true;
        }
        const bool asPackage = !rules_.ignorePackages && v.package;
        if (!e.read && e.type != DT_DIR && e.type != DT_REG) {
            readEntryAttrs(chain_.fd(), e, false);
        }
        bool folder = false;
        switch (e.type) {
        case DT_DIR:
            folder = true;
            break;
        case DT_REG:
            break;
        case DT_LNK:
            // A link to anything but a folder is not a copy of its own: its
            // target is found where it lives.
            if (e.attrs.error != 0 || !S_ISDIR(e.attrs.mode)) {
                return true;
            }
            folder = true;
            break;
        default:
            return true; // FIFOs, sockets, devices: nothing ever blocks on them
        }
        if (tools_.canceled()) {
            return false;
        }
        if (folder && !asPackage) {
            descend(e);
            return true;
        }
        if (!v.extension) {
            return true;
        }
        const std::uint32_t identity = frames_[k].identity[frames_[k].dir];
        if (asPackage) {
            takePackage(e, folder, identity, frames_[k].foreign);
        } else {
            takeFile(e, identity);
        }
        return true;
    }

    void descend(ListedEntry& e) {
        if (tools_.canceled()) {
            tools_.postWalkProgress();
            return;
        }
        std::shared_ptr<FolderListing> node = std::move(e.child);
        FolderFdPtr fd;
        const bool viaLink = e.type == DT_LNK;
        bool foreign = frames_.back().foreign;
        LinkTrust::Link link;
        if (node && pool_ && pool_->take(*node)) {
            fd = node->fd.lock();
            // Entered: it no longer counts as gathered ahead, however deep
            // the walk goes below it.
            pool_->release(*node);
        } else {
            if (!node) {
                node = std::make_shared<FolderListing>(); // entered through a link
            }
            const int parentFd = chain_.fd();
            if (parentFd == -1) {
                node->error = errno;
            } else {
                if (viaLink && !foreign) {
                    link = LinkTrust::read(parentFd, e.name);
                }
                fd = gather(*node, parentFd, e.name, path_);
                if (fd && viaLink && !foreign) {
                    foreign = !trust_.trusted(link, parentFd, e.name, fd->get());
                }
                if (fd && pool_) {
                    pool_->submit(*node, fd);
                }
            }
        }
        if (node->error != 0) {
            // Listed by its parent, but it can't be listed now: it contributes
            // nothing. Only a folder that still exists says so; one that
            // fails the existence test (gone, or its parent can be listed but
            // not searched) is skipped silently.
            if (exists(e.name)) {
                tools_.diagnostics().report(kOoops, path_, node->error);
            }
            tools_.postWalkProgress();
            return;
        }
        if (!state_.folders.insert({node->device, node->inode}).second) {
            if (pool_) {
                pool_->abandon(*node);
            }
            tools_.postWalkProgress();
            return;
        }
        Frame child;
        child.foreign = foreign;
        const Frame& parent = frames_.back();
        child.identity.push_back(FolderRegistry::remember(node->device, node->inode, foreign,
                                                          parent.identity[parent.dir], e.name));
        keepWalkedFolder(child.identity.back(), fd);
        chain_.push(std::move(fd), e.name, node->device, node->inode);
        child.dirs.push_back(std::move(node));
        child.pathLen = path_.size();
        frames_.push_back(std::move(child));
    }

    // The existence test: the entry's target can be read (links followed).
    bool exists(const std::string& name) {
        const int dirFd = chain_.fd();
        struct stat st {};
        return dirFd != -1 && ::fstatat(dirFd, name.c_str(), &st, 0) == 0;
    }

    // A package is one item; if its folder was taken or walked already under
    // another path it is not taken again.
    void takePackage(const ListedEntry& e, bool folder, std::uint32_t identity, bool foreign) {
        const int dirFd = chain_.fd();
        // A package that is a link: its contents are reached through it.
        if (e.type == DT_LNK && !foreign && !trust_.trustedEntry(dirFd, e.name)) {
            const FolderIdentity at = FolderRegistry::at(identity);
            FolderRegistry::Place place;
            FolderRegistry::placeOf(identity, place);
            identity = FolderRegistry::remember(at.device, at.inode, true, place.parent,
                                                std::move(place.name));
        }
        struct stat target {};
        if (folder && (::fstatat(dirFd, e.name.c_str(), &target, 0) != 0 ||
                       !state_.folders
                            .insert({static_cast<std::uint64_t>(target.st_dev),
                                     static_cast<std::uint64_t>(target.st_ino)})
                            .second)) {
            return;
        }
        struct stat own {};
        if (::fstatat(dirFd, e.name.c_str(), &own, AT_SYMLINK_NOFOLLOW) != 0) {
            return;
        }
        auto file = std::make_shared<File>(path_, identityFromStat(own), File::Seen{});
        file->folder = identity;
        file->size = tools_.packageSizeAt(dirFd, e.name, path_);
        if (file->size >= minimum_ && file->size <= maximum_) {
            tools_.fileList.push_back(std::move(file));
        }
    }

    void takeFile(ListedEntry& e, std::uint32_t identity) {
        if (!e.read) {
            readEntryAttrs(chain_.fd(), e, true);
        }
        if (e.attrs.error != 0) {
            // Listed, but it does not exist for a stat now (gone since, or in
            // a folder that can be listed but not searched): it fails the
            // existence test and is skipped silently.
            return;
        }
        if (!S_ISREG(e.attrs.mode)) {
            return; // replaced by something else since the listing
        }
        if (e.attrs.size < minimum_ || e.attrs.size > maximum_) {
            return;
        }
        if (e.attrs.links > 1 &&
            !state_.linkedFiles.insert({e.attrs.device, e.attrs.inode}).second) {
            // The same file under a second name: not a record, but linking
            // the file replaces this name too.
            const FileIdentity id = identityOf(e.attrs);
            OtherNames::note(id.device, id.inode, path_, identity);
            return;
        }
        auto file = std::make_shared<File>(path_, identityOf(e.attrs), File::Seen{});
        file->folder = identity;
        tools_.fileList.push_back(std::move(file));
    }

    FileTools& tools_;
    WalkState& state_;
    NameRules rules_;
    std::uint64_t minimum_;
    std::uint64_t maximum_;
    FolderChain chain_;
    LinkTrust trust_;
    std::vector<Frame> frames_;
    std::string path_; // the absolute path of the entry being examined
    std::unique_ptr<ListingPool> pool_;
    using Clock = std::chrono::steady_clock;
    std::int64_t waited_ = 0; // time the listings spent waiting, not computing
};

unsigned FileTools::defaultWalkThreads() {
    // Listing and stat calls mostly wait on the file system: more of them in
    // flight than there are cores keeps a cold disk busy.
    return std::max(2U, std::min(8U, 2 * std::thread::hardware_concurrency()));
}

void FileTools::scanFolders(const std::vector<std::string>& folders, bool ignorePackages,
                            const std::vector<std::string>& extensions, std::uint64_t minimum,
                            std::uint64_t maximum) {
    if (!walk_) {
        walk_ = std::make_unique<WalkState>();
        OtherNames::clear();
    }
    {
        Walk walk(*this, ignorePackages, extensions, minimum, maximum);
        walk.run(folders);
    }
    // The list grew by doubling; what it holds now stays until the end of
    // the search, so give back the unused half.
    fileList.shrink_to_fit();
    postWalkProgress();
}

} // namespace twinsweep
