// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/File.h"
#include "engine/SameFile.h"
#include "removal/AsideLeftovers.h"
#include "removal/Removal.h"

namespace twinsweep {

// Acts on one marked member of a group, the safe way:
//  1. opens the member's folder and checks it is the folder the search walked,
//     then checks the entry is still the file the search saw;
//  2. compares it byte for byte, through open folders, with a kept copy that
//     is itself still as seen and a different file (not the same file under
//     a second name);
//  3. renames it aside inside its folder, checks the aside entry is the one
//     compared, and checks the kept copy is still there and unchanged (when
//     it is not, the next kept copy is tried);
//  4. only then calls act; when act fails (or nothing vouches), the copy is
//     renamed back to its name.
// A group whose every member is marked has nothing to compare with: the user
// confirmed removing it whole, and steps 2 and 3 are skipped.
// With swept, each folder opened the first time has its leftovers of a
// stopped clean put back first (AsideLeftovers.h).
RemovalResult actOnCopy(const File& group, const DuplicateFile& member, const CopyAction& act,
                        const SameFile& sameFile, SweptFolders* swept = nullptr);

// actOnCopy for an act that removes nothing (sharing storage): every check of
// steps 1 and 2, then the copy, still at its name, is checked again to be the
// file compared, the kept copy to be still there and unchanged, and act is
// called; nothing is renamed aside or journalled, so a failed act leaves the
// copy as it was.
RemovalResult actOnCopyInPlace(const File& group, const DuplicateFile& member,
                               const CopyAction& act, const SameFile& sameFile,
                               SweptFolders* swept = nullptr);

// What actOnCopy would answer, changing nothing: the same checks, in the same
// order, against the same kept copies, but the copy is not renamed aside (nor
// journalled) and check, given the target as act would get it, stands for the
// act (for a link: checkHardLink, HardLink.h).
RemovalResult checkCopy(const File& group, const DuplicateFile& member, const CopyAction& check,
                        const SameFile& sameFile);

} // namespace twinsweep
