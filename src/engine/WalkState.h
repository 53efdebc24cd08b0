// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <set>
#include <utility>

#include "engine/FileTools.h"

namespace twinsweep {

using DevIno = std::pair<std::uint64_t, std::uint64_t>;

// What the walks of one engine remember between folders.
struct FileTools::WalkState {
    // Folders (and packages taken as one item) already walked in this search:
    // a folder reached again, through a link or a bind mount, is skipped, which
    // also ends link loops.
    std::set<DevIno> folders;
    // Files with more than one hard link that were already taken.
    std::set<DevIno> linkedFiles;
    // The folders given, by identity: where root's walk may follow links to.
    std::set<DevIno> tops;
};

} // namespace twinsweep
