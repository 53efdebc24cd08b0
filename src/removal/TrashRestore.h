#pragma once

#include <string>
#include <vector>

#include "removal/TrashRecord.h"

namespace twinsweep {

struct RestoreOutcome {
    std::vector<std::string> restored; // original paths, put back
    std::vector<std::string> problems; // one line each: path and why not
    // Not restored but still in the Trash unchanged: another try may work
    // (its path was taken, its folder was missing).
    std::vector<TrashedCopy> left;
};

// Puts each copy back at its original path, when that path is free and the
// item in the Trash is still the file that was moved there (same device,
// inode, and for files size and modification time), and removes its trash
// record. Never replaces anything at the original path.
RestoreOutcome restoreFromTrash(const std::vector<TrashedCopy>& copies);

} // namespace twinsweep
