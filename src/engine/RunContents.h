#pragma once

#include <cstddef>

#include "engine/File.h"

namespace twinsweep {

class AtomicFlag;

// Finds which files of one run of equal size (entries begin to end of a
// sorted list) have the same contents, reading as little as it can: files
// whose first bytes match no other file's are read no further, files that
// agree are compared side by side, a block at a time, and each set of
// identical files is digested once. Every file that has a copy in the run gets
// its MD5Hash (the digest of its contents); the others keep an empty one.
// Unreadable files count as empty, after their "Ooops! ..." line.
// Returns false when cancelled part way.
bool digestRunContents(const FileList& list, std::size_t begin, std::size_t end,
                       const AtomicFlag& cancel);

} // namespace twinsweep
