// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "engine/FolderChain.h"

namespace twinsweep {

// Reaching an item the walk found, at any depth: through the folder it was
// found in (its FolderRegistry index), opened again by names relative to
// open folders, each checked to be the folder that was walked, and kept in
// a small cache of open folders shared by all threads.
//
// Paths the kernel takes whole are still looked up whole, as they always
// were; a longer one (a tree deeper than PATH_MAX) goes through its folder.
struct ItemAt {
    FolderFdPtr folder; // keeps dirFd open; null when dirFd is AT_FDCWD
    int dirFd = -1;
    const char* name = nullptr; // relative to dirFd; points into the path given
};

// Where the item at path, found in the walked folder index (0: not known),
// is reached; false with errno set when its folder can't be opened or is no
// longer the folder that was walked.
bool locateItem(std::uint32_t folder, const std::string& path, ItemAt& at);

// The walked folder at index, opened; null with errno set.
FolderFdPtr openWalkedFolder(std::uint32_t index);

} // namespace twinsweep
