// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace twinsweep {

// The identity of a folder the walk opened. Cleaning opens a copy's folder
// again and compares it with this, so a folder replaced since the search (by a
// link or anything else) is never acted in.
struct FolderIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool known = false;
    // Reached, from the folder the user gave, through a symbolic link that
    // belongs to neither root nor the user running the search: its copies are
    // listed but never acted on (another user chose where that link leads).
    bool foreignLink = false;

    bool operator==(const FolderIdentity&) const = default;
};

// Every folder the searches of this process walked, one entry per folder (not
// per file): a record keeps only a 32-bit index. Append-only, safe to use from
// several threads. Index 0 means "not known".
//
// Each entry also keeps where the folder was found (its parent's index and
// its name there; a top folder: no parent, its path as given), so that it
// can be opened again by names relative to open folders at any depth.
class FolderRegistry {
  public:
    static std::uint32_t remember(std::uint64_t device, std::uint64_t inode,
                                  bool foreignLink = false, std::uint32_t parent = 0,
                                  std::string name = {});
    static FolderIdentity at(std::uint32_t index);

    struct Place {
        std::uint32_t parent = 0; // 0: a top folder
        std::string name;         // in the parent, or the top folder's path
    };
    // Where the folder at index was found; false when the index is not known.
    static bool placeOf(std::uint32_t index, Place& place);
};

} // namespace twinsweep
