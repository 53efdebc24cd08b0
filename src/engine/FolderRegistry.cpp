// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/FolderRegistry.h"

#include <deque>
#include <mutex>
#include <utility>

namespace twinsweep {

namespace {

struct Entry {
    FolderIdentity identity;
    FolderRegistry::Place place;
};

struct Table {
    std::mutex lock;
    // A deque never moves its elements, and index 0 stays "not known".
    std::deque<Entry> folders{Entry{}};
};

Table& table() {
    static Table t;
    return t;
}

} // namespace

std::uint32_t FolderRegistry::remember(std::uint64_t device, std::uint64_t inode, bool foreignLink,
                                       std::uint32_t parent, std::string name) {
    Table& t = table();
    std::lock_guard guard(t.lock);
    t.folders.push_back({{device, inode, true, foreignLink}, {parent, std::move(name)}});
    return static_cast<std::uint32_t>(t.folders.size() - 1);
}

FolderIdentity FolderRegistry::at(std::uint32_t index) {
    Table& t = table();
    std::lock_guard guard(t.lock);
    return index < t.folders.size() ? t.folders[index].identity : FolderIdentity{};
}

bool FolderRegistry::placeOf(std::uint32_t index, Place& place) {
    Table& t = table();
    std::lock_guard guard(t.lock);
    if (index == 0 || index >= t.folders.size()) {
        return false;
    }
    place = t.folders[index].place;
    return true;
}

} // namespace twinsweep
