#pragma once

#include <cstdint>

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
class FolderRegistry {
  public:
    static std::uint32_t remember(std::uint64_t device, std::uint64_t inode,
                                  bool foreignLink = false);
    static FolderIdentity at(std::uint32_t index);
};

} // namespace twinsweep
