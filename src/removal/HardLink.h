#pragma once

#include "removal/Removal.h"

namespace twinsweep {

// Replaces a checked copy with a hard link to the kept copy that vouched for
// it, so its path keeps working and its bytes are stored once. Atomic: the
// link is made under a temporary name in the copy's folder, the copy is given
// its name back, and the link is swapped in over it (RENAME_EXCHANGE), so the
// path never shows anything but the copy or the link. Left alone, with a
// reason: a package (folder), a copy whose group keeps no copy, and a copy on
// another file system than the kept copy (tryOtherKept is then set, so the
// next kept copy can be tried).
RemovalResult replaceWithHardLink(const RemovalTarget& target);

} // namespace twinsweep
