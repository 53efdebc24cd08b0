#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/FileTools.h"

namespace twinsweep {

using DevIno = std::pair<std::uint64_t, std::uint64_t>;

// State shared by every level of one top-level walk.
struct FileTools::WalkState {
    // Folders (and packages taken as one item) already walked in this search:
    // a folder reached again, through a link or a bind mount, is skipped, which
    // also ends link loops.
    std::set<DevIno> folders;
    // Files with more than one hard link that were already taken.
    std::set<DevIno> linkedFiles;
    int depth = 0;
};

// One folder to list: its absolute path and how to open it (relative to an
// open parent folder when there is one, so the kernel need not resolve the
// whole path again).
struct FileTools::Folder {
    std::string path;
    int parentFd;
    std::string nameInParent;
};

struct FileTools::WalkFilter {
    bool ignorePackages;
    const std::vector<std::string>* extensions;
    std::uint64_t minimum;
    std::uint64_t maximum;
};

} // namespace twinsweep
