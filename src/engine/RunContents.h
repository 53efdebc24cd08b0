#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/File.h"

namespace twinsweep {

class AtomicFlag;

// Finds which files of one run of equal size (entries begin to end of a
// sorted list) have the same contents, reading as little as it can: files
// whose first bytes match no other file's are read no further, files that
// agree are compared side by side to their real end. The walk's size only
// chose the run: a file that grew or shrank since is read as it is now.
// Unreadable files count as empty, after their "Ooops! ..." line, so they
// are copies of each other and of files that now read as empty.
//
// setOf[k] (k counted from begin) is 0 for a file with no copy in the run,
// else a number shared by exactly the files with the same contents. Files
// whose contents are empty get the empty digest in MD5Hash; no other digest
// is computed. Returns false when cancelled part way.
bool compareRunContents(const FileList& list, std::size_t begin, std::size_t end,
                        const AtomicFlag& cancel, std::vector<std::uint32_t>& setOf);

} // namespace twinsweep
