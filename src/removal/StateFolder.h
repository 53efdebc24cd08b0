// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "removal/Fd.h"

namespace twinsweep {

// A folder where twinsweep keeps what it trusts later (undo records, the
// cleaning lock, the journal of entries set aside): only one that no other
// user can change. Every folder on the way from "/" must belong to root or to
// us, and one that others may write must be sticky with the next folder ours
// (as /tmp is); the folder itself must be ours and writable by us alone.
struct PrivateFolder {
    Fd fd;             // the checked folder, open; -1 when refused
    std::string path;  // its path, for messages
    std::string error; // why it was refused, a whole sentence naming the path
    bool ok() const { return fd.ok(); }
};

// Opens path (absolute), making the missing folders 0700, and checks it as
// above. Links on the way are followed only when root or we own them.
PrivateFolder openPrivateFolder(const std::string& path);

// The state folder: $XDG_STATE_HOME/twinsweep, by default
// ~/.local/state/twinsweep ("" when neither is set to an absolute path).
std::string stateFolderPath();

// openPrivateFolder(stateFolderPath()), with a message when no home is known.
PrivateFolder openStateFolder();

} // namespace twinsweep
