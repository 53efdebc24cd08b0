// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/File.h"

namespace twinsweep {

// Whether path is folder or lies inside it, by whole path components:
// /a/photos2 is not inside /a/photos. Both are absolute; a trailing "/" on
// folder is ignored.
bool isInsideFolder(std::string_view path, std::string_view folder);

// Decides which copies lie under a protected folder, by the identities of
// the folders the search walked, so that any way of reaching a protected
// folder (a link, a bind mount of it or of any folder inside it) is seen. A
// copy is protected when the folder it was found in is one of the folders
// inside a protected tree, when it is itself such a folder or one that holds
// a protected folder (a package), or when its path text lies inside one of
// them or holds one.
class ProtectedFolders {
  public:
    explicit ProtectedFolders(std::vector<std::string> folders);

    bool empty() const { return folders_.empty(); }
    const std::vector<std::string>& folders() const { return folders_; }
    bool covers(const DuplicateFile& member) const;

  private:
    using DevIno = std::pair<std::uint64_t, std::uint64_t>;
    void collectTree(int top);
    void collectHolders(int top);

    std::vector<std::string> folders_;
    std::set<DevIno> inside_;  // every folder inside a protected tree, hidden ones too
    std::set<DevIno> holders_; // every folder that holds a protected folder
};

// Sets DuplicateFile::isProtected on every member of groups that folders
// protect, and drops the groups left with no unprotected member: there is
// nothing in them the user could act on.
void applyProtection(FileList& groups, const std::vector<std::string>& folders);

// The last guard before a copy is removed: its flag, or what ProtectedFolders
// says of it now (the folders' identities are read once per set of folders,
// and again at each search).
bool isProtectedCopy(const DuplicateFile& member, const std::vector<std::string>& folders);

// Whether every member of group is protected (true for an empty group).
bool onlyProtectedCopies(const File& group);

} // namespace twinsweep
