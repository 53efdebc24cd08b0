// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "engine/FolderChain.h"
#include "engine/PathText.h"

namespace twinsweep {

// Reaching an item the walk found, at any depth: through the folder it was
// found in (its FolderRegistry index), opened again by names relative to
// open folders, each checked to be the folder that was walked, and kept in
// a cache of open folders shared by all threads. Opening a file is then one
// name looked up in an open folder, never a whole path, and never through a
// folder that replaced the walked one since.
struct ItemAt {
    FolderFdPtr folder; // keeps dirFd open; null when dirFd is AT_FDCWD
    int dirFd = -1;
    const char* name = nullptr; // relative to dirFd; points into the path given
};

// Where the item at path, found in the walked folder index (0: not known),
// is reached; false with errno set when its folder can't be opened or is no
// longer the folder that was walked.
bool locateItem(std::uint32_t folder, PathArg path, ItemAt& at);

// The walked folder at index, opened; null with errno set.
FolderFdPtr openWalkedFolder(std::uint32_t index);

// While one lives, walked folders stay open in the cache (up to a budget of
// descriptors); when the last one ends, they are all let go, so that an idle
// window holds no folders open.
class WalkedFolderSession {
  public:
    WalkedFolderSession();
    ~WalkedFolderSession();
    WalkedFolderSession(const WalkedFolderSession&) = delete;
    WalkedFolderSession& operator=(const WalkedFolderSession&) = delete;
};

// The walk hands over a folder it has open and checked (index, as
// registered): kept while there is room, sparing the comparison an open.
void keepWalkedFolder(std::uint32_t index, const FolderFdPtr& fd);

} // namespace twinsweep
