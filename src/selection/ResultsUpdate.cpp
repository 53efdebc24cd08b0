// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/ResultsUpdate.h"

#include "selection/CustomMarking.h"
#include "selection/KeepOptions.h"

namespace twinsweep {

namespace {

std::int64_t rowWithin(std::int64_t row, const FileList& list) {
    return row >= 0 && static_cast<std::size_t>(row) < list.size() ? row : 0;
}

void applySegment(std::int64_t segment, bool applyForAll, const FileList& listed, std::int64_t row,
                  SettingsManager& settings) {
    if (segment == kKeepCustom) {
        if (applyForAll) {
            applyCustomRulesToAll(listed, settings);
        } else {
            applyCustomRules(*listed[static_cast<std::size_t>(row)], settings);
        }
        return;
    }
    const KeepTimeBasis basis =
        settings.exactKeepTimes ? KeepTimeBasis::ExactTime : KeepTimeBasis::DateText;
    if (!applyForAll) {
        applyKeepOption(*listed[static_cast<std::size_t>(row)], segment, settings.duplicateFileList,
                        basis);
        return;
    }
    const SamePathIndex samePath(settings.duplicateFileList);
    for (const FilePtr& group : listed) {
        applyKeepOption(*group, segment, samePath, basis);
    }
}

} // namespace

ComputedResults computeResults(const ResultsRequest& request, SettingsManager& settings) {
    const FileTools tools;
    ComputedResults out;
    out.lastSelectedRow = rowWithin(request.lastSelectedRow, request.listed);
    out.figures = request.firstUpdate ? categoryPercentages(tools, settings.duplicateFileList)
                                      : request.figures;
    if (request.firstUpdate || request.categoriesChanged) {
        out.listed = listedGroups(tools, settings.duplicateFileList, request.categoryShown);
        out.listedRebuilt = true;
        // A rebuilt list may be shorter than the old one.
        out.lastSelectedRow = rowWithin(out.lastSelectedRow, out.listed);
    } else {
        out.listed = request.listed;
    }
    if (!out.listed.empty() && !request.categoriesChanged) {
        applySegment(request.segment, request.applyForAll, out.listed, out.lastSelectedRow,
                     settings);
    }
    out.spaceSaved = spaceSaved(tools, out.listed);
    return out;
}

} // namespace twinsweep
