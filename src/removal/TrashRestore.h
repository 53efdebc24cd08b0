// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "removal/Fd.h"
#include "removal/Removal.h"

namespace twinsweep {

struct RestoreOutcome {
    std::vector<std::string> restored; // original paths, put back
    std::vector<std::string> problems; // one line each: path and why not
    // Not restored but still in the Trash unchanged: another try may work
    // (its path was taken, its folder or its drive was missing).
    std::vector<TrashedItem> left;
};

// Puts each moved item back, never replacing anything: reached through its
// Trash's files/ folder opened and checked to be the one of the clean, when
// the item is still the one moved there (device, inode, size, modification
// time, and the DeletionDate of its .trashinfo), into its original folder
// opened and checked to be the one it left. Removes its .trashinfo.
RestoreOutcome restoreFromTrash(const std::vector<TrashedItem>& items);

// A Trash folder opened and checked to be the one an item went to.
struct CheckedTrash {
    Fd dir;
    Fd files;
    Fd info;
    std::string why;    // when not: why, in words
    bool absent = true; // not: its drive is not mounted, another try may work
    bool ok() const { return info.ok(); }
};
CheckedTrash openTrashOf(const TrashedItem& item);

// Whether the .trashinfo of item, in info, is the one its clean wrote.
bool isOurTrashInfo(int infoFd, const TrashedItem& item);

} // namespace twinsweep
