// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>

namespace twinsweep {

// A marked copy waits under a hidden name while its kept copy is checked
// again. A clean killed in that moment (SIGKILL, power loss) leaves it there.
// The name that hides it.
std::string asideName(const std::string& name);

// Folders of one clean already looked through, by device and inode.
using SweptFolders = std::set<std::pair<std::uint64_t, std::uint64_t>>;

// Puts every copy left aside in the open folder (path names it in messages)
// back under its own name, when that name is free and the clean that set it
// aside is no longer running. Each one put back, or kept aside, is reported
// on the diagnostics. Run with the cleaning lock held, once per folder.
void putBackLeftovers(int folderFd, const std::string& path);

} // namespace twinsweep
