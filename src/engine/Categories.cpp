// SPDX-License-Identifier: GPL-3.0-or-later
// Categories of duplicate groups and the size measures over the shared results.
#include <algorithm>
#include <string_view>

#include "engine/FileTools.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

namespace {

bool listed(const std::vector<std::string>& list, std::string_view ext) {
    return std::find(list.begin(), list.end(), ext) != list.end();
}

} // namespace

int FileTools::categoryOf(const File& file) const {
    // The order matters: an extension in two lists takes the earlier code.
    const std::vector<std::string>* lists[] = {&pictureExtension, &musicExtension, &movieExtension,
                                               &archiveExtension, &documentExtension};
    for (int code = 1; code <= 5; ++code) {
        if (listed(*lists[code - 1], file.ext)) {
            return code;
        }
    }
    return 6;
}

std::uint64_t FileTools::categorySize(int code) const {
    std::uint64_t total = 0;
    for (const FilePtr& group : settingsManager->duplicateFileList) {
        if (categoryOf(*group) == code) {
            total += group->size * group->duplicates.size();
        }
    }
    return total;
}

std::uint64_t FileTools::listedSize() const {
    std::uint64_t total = 0;
    for (const FilePtr& group : settingsManager->duplicateFileList) {
        total += group->size * group->duplicates.size();
    }
    return total;
}

std::uint64_t FileTools::markedSize(const FileList& groups) const {
    std::uint64_t total = 0;
    for (const FilePtr& group : groups) {
        for (const DuplicateFilePtr& member : group->duplicates) {
            if (member->checkState == 1) {
                total += group->size;
            }
        }
    }
    return total;
}

} // namespace twinsweep
