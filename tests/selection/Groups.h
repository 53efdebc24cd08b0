// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "engine/File.h"
#include "engine/FolderRegistry.h"
#include "settings/SettingsManager.h"

namespace twinsweep::testing {

// A group made from real files: the head's record, then one member per path
// (the head's own entry first) with the given date texts and what the search
// would have seen of each.
inline FilePtr makeGroup(const std::vector<std::pair<std::string, std::string>>& pathsAndDates) {
    auto group = std::make_shared<File>(pathsAndDates.front().first);
    for (const auto& [path, date] : pathsAndDates) {
        auto member = std::make_shared<DuplicateFile>(path, date, 0);
        member->seen = identityOf(path);
        struct stat folder {};
        if (::stat(path.substr(0, path.find_last_of('/')).c_str(), &folder) == 0) {
            member->folder = FolderRegistry::remember(folder.st_dev, folder.st_ino);
        }
        group->duplicates.push_back(member);
    }
    return group;
}

// Local midnight of a dd/MM/yyyy text.
inline DateTime day(const char* text) {
    DateTime t = 0;
    EXPECT_TRUE(parseDayText(text, t)) << text;
    return t;
}

inline std::vector<std::int64_t> marks(const File& group) {
    std::vector<std::int64_t> out;
    for (const auto& m : group.duplicates) {
        out.push_back(m->checkState);
    }
    return out;
}

} // namespace twinsweep::testing
