// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/OtherNames.h"

#include <map>
#include <mutex>
#include <utility>

namespace twinsweep {

namespace {

struct Table {
    std::mutex lock;
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::vector<OtherName>> names;
};

Table& table() {
    static Table t;
    return t;
}

} // namespace

void OtherNames::clear() {
    Table& t = table();
    std::lock_guard guard(t.lock);
    t.names.clear();
}

void OtherNames::note(std::uint64_t device, std::uint64_t inode, std::string path,
                      std::uint32_t folder) {
    Table& t = table();
    std::lock_guard guard(t.lock);
    t.names[{device, inode}].push_back({std::move(path), folder});
}

std::vector<OtherName> OtherNames::of(std::uint64_t device, std::uint64_t inode) {
    Table& t = table();
    std::lock_guard guard(t.lock);
    const auto at = t.names.find({device, inode});
    return at == t.names.end() ? std::vector<OtherName>{} : at->second;
}

} // namespace twinsweep
