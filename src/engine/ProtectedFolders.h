#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/File.h"

namespace twinsweep {

// Whether path is folder or lies inside it, by whole path components:
// /a/photos2 is not inside /a/photos. Both are absolute; a trailing "/" on
// folder is ignored.
bool isInsideFolder(std::string_view path, std::string_view folder);

// Decides which copies lie under a protected folder. A copy is protected when
// its path text is inside one of the folders, when the folder holding it is
// (after following links) inside one of them by identity, so a folder reached
// through a link or a bind mount is still recognised, or when it is a package
// that holds a protected folder.
class ProtectedFolders {
  public:
    explicit ProtectedFolders(std::vector<std::string> folders);

    bool empty() const { return folders_.empty(); }
    bool covers(const std::string& path);

  private:
    bool folderCovered(const std::string& folder);

    std::vector<std::string> folders_;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> identities_;
    std::unordered_map<std::string, bool> checkedFolders_;
};

// Sets DuplicateFile::isProtected on every member of groups that folders
// protect, and drops the groups left with no unprotected member: there is
// nothing in them the user could act on.
void applyProtection(FileList& groups, const std::vector<std::string>& folders);

// The last guard before a copy is removed: its flag, or its path inside one
// of folders by text (no file system access).
bool isProtectedCopy(const DuplicateFile& member, const std::vector<std::string>& folders);

// Whether every member of group is protected (true for an empty group).
bool onlyProtectedCopies(const File& group);

} // namespace twinsweep
