#include "engine/FolderRegistry.h"

#include <deque>
#include <mutex>

namespace twinsweep {

namespace {

struct Table {
    std::mutex lock;
    // A deque never moves its elements, and index 0 stays "not known".
    std::deque<FolderIdentity> folders{FolderIdentity{}};
};

Table& table() {
    static Table t;
    return t;
}

} // namespace

std::uint32_t FolderRegistry::remember(std::uint64_t device, std::uint64_t inode,
                                       bool foreignLink) {
    Table& t = table();
    std::lock_guard guard(t.lock);
    t.folders.push_back({device, inode, true, foreignLink});
    return static_cast<std::uint32_t>(t.folders.size() - 1);
}

FolderIdentity FolderRegistry::at(std::uint32_t index) {
    Table& t = table();
    std::lock_guard guard(t.lock);
    return index < t.folders.size() ? t.folders[index] : FolderIdentity{};
}

} // namespace twinsweep
