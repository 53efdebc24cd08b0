// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "engine/File.h"

namespace twinsweep {

// The keep options a group can carry in File::keepOption.
enum KeepOption : std::int64_t {
    kKeepAll = 0,    // nothing marked
    kKeepOldest = 1, // every member but the oldest marked
    kKeepNewest = 2, // every member but the newest marked
    kRemoveAll = 3,  // every member marked, the head's own entry included
    kKeepCustom = 4, // marked by the custom rules (CustomMarking.h)
};

// Keep option 0 and no marks for every group, as when the results open.
void resetKeepOptions(const FileList& groups);

// Number of members of group marked for removal (checkState 1).
std::int64_t markedCount(const File& group);

// Reads a member date text ("yy-MM-dd hh:mm:ss", 12-hour clock without a
// day half, local time) back into a time. Absent when the text is not one.
// The two-digit year is read as a date formatter reads it: the year within
// 80 years before and 20 years after now.
std::optional<std::time_t> parseMemberDate(const std::string& text);
std::optional<std::time_t> parseMemberDate(const std::string& text, std::time_t now);

// What keep oldest and keep newest compare. The displayed date text (one
// second, 12-hour clock without a day half) is the window's default; the
// exact creation time in nanoseconds (the modification time where the file
// system keeps none), read when the marking is made, is the command-line
// tool's and the window's when the user asks for it.
enum class KeepTimeBasis { DateText, ExactTime };

// The exact creation time of the item at path (not following a final link),
// nanoseconds since the epoch; the modification time where the file system
// keeps no creation time. Absent when the item can't be read.
std::optional<std::int64_t> exactCreationTime(const std::string& path);

// The member that the keep-oldest / keep-newest options keep. The list must not
// be empty. Only a strictly earlier (later) date replaces the pick, so the
// first member wins ties; a pick whose date can't be read is never replaced,
// and a member whose date can't be read is passed over.
const DuplicateFilePtr& oldestCopy(const std::vector<DuplicateFilePtr>& members,
                                   KeepTimeBasis basis = KeepTimeBasis::DateText);
const DuplicateFilePtr& newestCopy(const std::vector<DuplicateFilePtr>& members,
                                   KeepTimeBasis basis = KeepTimeBasis::DateText);

// Finds the groups of a list that share a path, so that marking every listed
// group does not scan the whole list once per group. Valid while the list's
// groups live and keep their paths.
class SamePathIndex {
  public:
    explicit SamePathIndex(const FileList& groups);
    // Every group of the list whose path equals path, in list order.
    const std::vector<File*>& groupsAt(const std::string& path) const;

  private:
    struct Impl;
    std::shared_ptr<const Impl> impl_;
};

// Applies keep option 0 to 3 to group and to every group of duplicateFileList
// with the same path (in practice the same object). Sets keepOption and every
// member's mark; other option values change nothing and return false.
// Protected copies are never marked; in a group that holds one, keep oldest
// and keep newest keep the protected copies and mark every other copy.
bool applyKeepOption(File& group, std::int64_t option, const FileList& duplicateFileList,
                     KeepTimeBasis basis = KeepTimeBasis::DateText);
bool applyKeepOption(File& group, std::int64_t option, const SamePathIndex& duplicateFileList,
                     KeepTimeBasis basis = KeepTimeBasis::DateText);

} // namespace twinsweep
