// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "removal/Removal.h"

namespace twinsweep {

// Replaces a checked copy with a hard link to the kept copy that vouched for
// it, so its path keeps working and its bytes are stored once. The link is
// made from the kept file's open descriptor (the file compared and checked
// again), never from its path. Atomic: the link is made under a temporary
// name in the copy's folder (journalled first, RemovalJournal.h), the copy is
// given its name back, and the link is swapped in over it (RENAME_EXCHANGE),
// so the path never shows anything but the copy or the link. Left alone, with
// a reason: a package (folder) and a copy whose group keeps no copy; and,
// with tryOtherKept set so the next kept copy can be tried, a kept copy that
// is protected, on another file system, or of another owner, group, mode,
// ACL or security label (a link would give the copy's path all of these).
RemovalResult replaceWithHardLink(const RemovalTarget& target);

// Every check replaceWithHardLink makes before it changes anything, with the
// same answer (ok, with partial set when the copy has other names, or the
// reason and tryOtherKept): a dry run asks this instead of linking.
RemovalResult checkHardLink(const RemovalTarget& target);

} // namespace twinsweep
