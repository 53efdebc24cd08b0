// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <sys/stat.h>

namespace twinsweep {

// One side of a comparison: an entry of an open folder, the path it is shown
// by, and (optionally) what it must still be when opened.
struct EntryAt {
    int folderFd;
    const std::string& entry;
    const std::string& path;
    const struct stat* expected = nullptr; // device and inode to find there
};

// Whether a and b hold the same bytes: two regular files with equal contents,
// two folders (packages) with the same names inside and the same contents at
// every depth, or two symbolic links with the same target text. Everything is
// opened relative to the given folders and links are never followed. Two
// names of one and the same file are not "the same contents" here: removing
// one would remove the other. When the answer is no, reason says why.
bool sameContents(const EntryAt& a, const EntryAt& b, std::string& reason);

} // namespace twinsweep
