// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "removal/Removal.h"

namespace twinsweep {

// The user's freedesktop.org Trash (the public Trash standard, version 1.0). An item is only
// ever renamed into a Trash on its own file system, never copied: the home
// Trash ($XDG_DATA_HOME/Trash) when it is on the same file system, else the
// Trash at the top of the item's mount ($topdir/.Trash/$uid when .Trash is a
// real sticky folder, else $topdir/.Trash-$uid).
// Told of each move before its .trashinfo is written (item.moved false) and
// again once the item is in the Trash, so a .trashinfo left by a kill in
// between is known to be ours. A note that can't be kept stops the move.
class TrashJournal {
  public:
    virtual ~TrashJournal() = default;
    // "" or why the note could not be kept.
    virtual std::string note(const TrashedItem& item) = 0;
};

class Trash {
  public:
    // Moves entry of the open folder folderFd, known to the user as
    // originalPath (absolute), to the Trash. Its .trashinfo record is written
    // and synced first and removed again when the move fails; on failure
    // nothing has changed.
    static RemovalResult moveAt(int folderFd, const std::string& entry,
                                const std::string& originalPath, TrashJournal* journal = nullptr);

    // The home Trash folder ("" when no home can be found).
    static std::string homePath();

    // Path= text: every byte but unreserved ones and "/" as %XX.
    static std::string percentEncoded(const std::string& bytes);
};

} // namespace twinsweep
