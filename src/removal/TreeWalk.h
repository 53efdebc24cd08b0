// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace twinsweep {

// Total size of the regular files in the folder entry of dirFd, at any depth,
// never following links nor entering another mounted file system.
std::uint64_t treeSizeAt(int dirFd, const std::string& entry);

struct TreeRemoval {
    bool complete = true;
    std::uint64_t bytesFreed = 0;       // sizes of the files really unlinked
    std::vector<std::string> remaining; // what is left, relative, with why
};

// Deletes the folder entry of dirFd and everything in it, depth first, links
// as links. A folder with another file system mounted on it is left alone
// with everything above it, and so is whatever can't be deleted.
TreeRemoval removeTreeAt(int dirFd, const std::string& entry);

} // namespace twinsweep
