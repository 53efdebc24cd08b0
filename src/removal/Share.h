// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "removal/Removal.h"

namespace twinsweep {

// Lets a checked copy share its storage with the kept copy that vouched for
// it (copy-on-write): the kernel compares the bytes of both under lock and
// shares only what is identical (FIDEDUPERANGE, from the kept file's open
// descriptor onto the copy's, in chunks). Nothing is renamed, removed or
// given another owner or mode; the copy stays its own file at its own path,
// and a later edit of either file touches that file alone.
// Ok with alreadyShared when every extent of the copy already lies in the
// kept file's, else with what was freed: the copy's extents that were shared
// with nothing before and that it no longer uses (FIEMAP before and after).
// Left alone, with a reason: a package (folder), a group with no kept copy,
// a file system that can't share, a file changed since it was compared (the
// kernel's answer); with tryOtherKept set, a kept copy on another file system
// or not a regular file.
RemovalResult shareWithKept(const RemovalTarget& target);

// Every check shareWithKept makes before it asks the kernel, with the same
// answer: a dry run asks this instead of sharing. Ok (with bytesFreed: the
// copy's extents shared with nothing), or alreadyShared, or the reason.
RemovalResult checkShare(const RemovalTarget& target);

// Whether the file system of the open file or folder can share storage
// between files: Btrfs, and XFS made with reflinks.
bool canShareStorage(int fd);

// Whether any of the folders is on such a file system.
bool anyCanShareStorage(const std::vector<std::string>& folders);

// What is said when none of the folders searched can share storage.
extern const char* const kNothingCanShare;

} // namespace twinsweep
