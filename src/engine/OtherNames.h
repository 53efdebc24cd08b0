// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace twinsweep {

// One more name of a file with several hard links: its path and the walked
// folder it is in (FolderRegistry).
struct OtherName {
    std::string path;
    std::uint32_t folder = 0;
};

// The walk takes a file with several hard links once, under the first name
// met; the names met after it in the same search are kept here, by device and
// inode, so that replacing the file by a hard link can replace every name of
// it in one clean. Rare, so a small table for the process; a new search
// starts it afresh. Safe to use from several threads.
class OtherNames {
  public:
    static void clear();
    static void note(std::uint64_t device, std::uint64_t inode, std::string path,
                     std::uint32_t folder);
    // The other names of the file, in the order the walk met them.
    static std::vector<OtherName> of(std::uint64_t device, std::uint64_t inode);
};

} // namespace twinsweep
