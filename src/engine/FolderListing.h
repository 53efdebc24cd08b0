// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_set>
#include <vector>

#include "engine/FolderChain.h"
#include "engine/LocationGate.h"

namespace twinsweep {

// What one stat said of an entry.
struct EntryAttrs {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t mtimeSec = 0;
    std::uint32_t mode = 0;
    std::uint32_t links = 0;
    std::int32_t mtimeNsec = 0;
    int error = 0; // errno when the stat failed
};

struct FolderListing;

// One entry of a folder listing. type starts as the listing's d_type; once
// the attributes are read (read == true) it is what they say (a DT_UNKNOWN
// entry becomes DT_DIR, DT_REG, DT_LNK, ...; it stays DT_UNKNOWN when it could
// not be read), and attrs hold the entry's own attributes, or its target's
// for a link.
struct ListedEntry {
    std::string name;
    unsigned char type = 0;
    bool read = false;
    EntryAttrs attrs;
    // A real subfolder that the walk will enter, when listings are gathered ahead.
    std::shared_ptr<FolderListing> child;
};

// The tests a walk applies to names and paths alone, so that whoever gathers
// a listing reads the attributes of exactly the entries the walk will use.
struct NameRules {
    const LocationGate* gate = nullptr;
    const std::unordered_set<std::string_view>* packages = nullptr;
    const std::vector<std::string>* extensions = nullptr;
    bool ignorePackages = true;

    struct Verdict {
        bool examined = false;  // passes the gate, the hidden-name and the package tests
        bool package = false;   // has a package extension
        bool extension = false; // passes the extension filter
    };
    Verdict judge(std::string_view path, std::string_view name) const;
};

// A folder's entries, sorted by name (byte order), with what was learned of them.
struct FolderListing {
    enum class State : unsigned char { Pending, Busy, Done };

    // How to open it while it waits in a pool: the parent's descriptor and
    // the folder's absolute path (the gate tests its entries' paths).
    std::string name;
    std::string path;
    FolderFdPtr parentFd;

    State state = State::Pending;
    bool counted = false;   // its entries count against the pool's budget
    bool abandoned = false; // nobody will use it: drop what it finds
    int error = 0;          // errno when it could not be opened or listed
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::weak_ptr<FolderFd> fd; // still open while its subfolders wait in a pool
    std::vector<ListedEntry> entries;
};

// Opens name relative to parentFd and lists it into out (sorted). With
// rules, also reads the attributes each examined entry needs and, with
// children, makes a child listing (to be gathered later) for each real
// subfolder the walk will enter. Returns the open folder, or null with
// out.error set.
FolderFdPtr gatherListing(FolderListing& out, int parentFd, const char* name,
                          const std::string& path, const NameRules* rules, bool children);

// Reads what the walk needs of e (relative to the open folder dirFd): the
// attributes of a link's target or of an entry of unknown type, and with
// regular the own attributes of a regular file.
void readEntryAttrs(int dirFd, ListedEntry& e, bool regular);

// Threads that gather the listings of subfolders ahead of a walk, first
// subfolder first, so that many listings and stats are in flight; the walk
// uses them in its own order. What is gathered and not yet used is bounded.
class ListingPool {
  public:
    ListingPool(unsigned threads, const NameRules& rules);
    ~ListingPool();
    ListingPool(const ListingPool&) = delete;
    ListingPool& operator=(const ListingPool&) = delete;

    // Queues the child listings of a gathered folder, whose descriptor is fd.
    void submit(FolderListing& parent, const FolderFdPtr& fd);
    // true when node was gathered by the pool (waits while it is being
    // gathered); false when it had not started: it is then the caller's to gather.
    bool take(FolderListing& node);
    // The caller has finished with a listing the pool gathered.
    void release(FolderListing& node);
    // Nobody will enter node: drops it and everything gathered under it.
    void abandon(FolderListing& node);

  private:
    void work();
    void releaseLocked(FolderListing& node);
    void abandonLocked(FolderListing& node);

    NameRules rules_;
    std::mutex lock_;
    std::condition_variable wake_;
    std::condition_variable done_;
    std::deque<std::shared_ptr<FolderListing>> queue_;
    std::size_t buffered_ = 0;
    bool stop_ = false;
    std::vector<std::thread> threads_;
};

} // namespace twinsweep
