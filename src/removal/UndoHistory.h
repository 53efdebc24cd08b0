// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "removal/TrashRestore.h"

namespace twinsweep {

// Both below are for the holder of the cleaning lock only: a clean running
// now is never mistaken for one that was stopped.

// Finishes what stopped cleans left in their records: a .trashinfo written
// for a move that never happened is removed, a move that happened but was
// not yet noted is noted. Returns one line for each, to report.
std::vector<std::string> tidyTrashRecords();

struct UndoReport {
    std::string error;              // nothing was done: why
    std::vector<std::string> notes; // from tidyTrashRecords
    std::int64_t time = 0;          // the clean undone: when it began
    std::size_t count = 0;          // and how many items it moved
    RestoreOutcome outcome;
};

// Puts back what the newest clean to the Trash moved there. What can be
// tried again stays in its record; a record emptied is removed.
UndoReport undoNewestClean();

// Whether there is a clean to undo (for a menu item).
bool hasCleanToUndo();

} // namespace twinsweep
