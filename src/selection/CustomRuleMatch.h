// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/File.h"
#include "engine/FileTools.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

// count units of 1 B, 1 KB, 1 MB or (any other unit) 1 GB in bytes. Never
// overflows: results beyond the signed 64-bit range stop at its ends.
std::int64_t sizeInBytes(std::int64_t count, std::int64_t unit);

// The member's creation or modification date reduced to its day: midnight
// local time. Absent when the item's attributes can't be read. Where the file
// system keeps no creation time, the modification time stands in for it.
std::optional<DateTime> fileDay(const DuplicateFile& member, DateKind which);

// The custom rule set of a SettingsManager, read once (texts put in canonical
// form) so that a whole group or list can be tested without re-reading it.
class CustomRules {
  public:
    explicit CustomRules(const SettingsManager& settings);

    // Whether member is to be marked for removal. size and ext are the group's.
    bool matches(const DuplicateFile& member, std::uint64_t size, const std::string& ext) const;

    // True when at least one of the six rules is on.
    bool anyRuleOn() const { return anyOn_; }

  private:
    struct DateRule {
        bool on;
        DateKind kind;
        bool earlier;
        DateTime date;
    };
    struct SizeRule {
        bool on;
        bool larger;
        std::uint64_t limit;
    };

    bool anyOn_ = false;
    DateRule dates_[2];
    SizeRule sizes_[2];
    bool negativeLimit_[2] = {false, false};
    bool typesOn_ = false;
    std::vector<std::string> extensions_; // canonical
    bool folderOn_ = false;
    std::string folder_; // canonical
    bool subfolders_ = true;
    bool dontMatch_ = false;
};

// One member tested against the rule set of settings.
bool matchCustomRules(const SettingsManager& settings, const DuplicateFile& member,
                      std::uint64_t size, const std::string& ext);

// The folder of path as a file address gives it back: the path without its last
// component, with no trailing "/" except for the root.
std::string parentFolderPath(const std::string& path);

} // namespace twinsweep
