// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/Breakdown.h"

#include <cstdio>

namespace twinsweep {

std::string percentText(double percent) {
    char buf[64];
    // printf rounds an exact tie to the even neighbour: 12.5 gives 12.
    std::snprintf(buf, sizeof buf, "%.0f%%", percent);
    return buf;
}

CategoryFigures categoryPercentages(const FileTools& tools, const FileList& duplicateFileList) {
    CategoryFigures figures;
    std::array<std::uint64_t, kCategoryCount> sizes{};
    std::uint64_t total = 0;
    for (const FilePtr& g : duplicateFileList) {
        const std::uint64_t bytes = g->size * g->duplicates.size();
        sizes[static_cast<std::size_t>(tools.categoryOf(*g) - 1)] += bytes;
        total += bytes;
    }
    if (total == 0) {
        return figures; // nothing to divide: 0 and 0% everywhere
    }
    for (std::size_t k = 0; k < sizes.size(); ++k) {
        figures.bars[k] = static_cast<double>(sizes[k]) / static_cast<double>(total) * 100.0;
        figures.texts[k] = percentText(figures.bars[k]);
    }
    return figures;
}

FileList removeCategory(const FileTools& tools, int code, const FileList& list) {
    FileList kept;
    kept.reserve(list.size());
    for (const FilePtr& g : list) {
        if (tools.categoryOf(*g) != code) {
            kept.push_back(g);
        }
    }
    return kept;
}

FileList listedGroups(const FileTools& tools, const FileList& duplicateFileList,
                      const CategoryFlags& shown) {
    // One pass gives what removing each hidden category in turn gives.
    FileList listed;
    listed.reserve(duplicateFileList.size());
    for (const FilePtr& g : duplicateFileList) {
        if (shown[static_cast<std::size_t>(tools.categoryOf(*g) - 1)]) {
            listed.push_back(g);
        }
    }
    return listed;
}

SpaceSaved spaceSaved(const FileTools& tools, const FileList& listed) {
    SpaceSaved saved;
    saved.bytes = tools.markedSize(listed);
    saved.text = FileTools::fileSizeText(saved.bytes);
    saved.colour = saved.bytes == 0 ? kPlainTextColour : kSavingTextColour;
    return saved;
}

} // namespace twinsweep
