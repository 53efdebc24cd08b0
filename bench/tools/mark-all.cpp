// SPDX-License-Identifier: GPL-3.0-or-later
// Marking every listed group: keep options and custom rules applied to many
// groups at once, as the results window's apply-to-all does, against the
// plain form that scans the whole result list once per group; and the first
// results update over as many groups.
// usage: mark-all [GROUPS] [MEMBERS]   (defaults 100000 and 3)
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "selection/CustomMarking.h"
#include "selection/KeepOptions.h"
#include "selection/ResultsUpdate.h"
#include "settings/SettingsManager.h"

using namespace twinsweep;
using Clock = std::chrono::steady_clock;

namespace {

FileList makeGroups(int groups, int members) {
    FileList list;
    list.reserve(static_cast<std::size_t>(groups));
    for (int g = 0; g < groups; ++g) {
        const std::string base =
            "/home/user/photos/" + std::to_string(g % 997) + "/img" + std::to_string(g) + ".jpg";
        FileIdentity id;
        id.size = 4096;
        id.known = true;
        auto group = std::make_shared<File>(base, id, File::Seen{});
        for (int m = 0; m < members; ++m) {
            const std::string date = std::to_string(10 + m % 10) + "-0" +
                                     std::to_string(1 + m % 9) + "-15 0" +
                                     std::to_string(1 + g % 9) + ":30:00";
            group->duplicates.push_back(std::make_shared<DuplicateFile>(
                m == 0 ? base : base + ".copy" + std::to_string(m), date, 0));
        }
        list.push_back(group);
    }
    return list;
}

double seconds(Clock::time_point since) {
    return std::chrono::duration<double>(Clock::now() - since).count();
}

} // namespace

int main(int argc, char** argv) {
    const int groups = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int members = argc > 2 ? std::atoi(argv[2]) : 3;
    SettingsManager settings;
    settings.duplicateFileList = makeGroups(groups, members);
    const FileList& listed = settings.duplicateFileList;

    auto t = Clock::now();
    const SamePathIndex index(listed);
    for (const FilePtr& g : listed) {
        applyKeepOption(*g, kKeepOldest, index);
    }
    const double indexed = seconds(t);

    // The plain form is quadratic; time it on a slice and scale up.
    const int slice = std::min(groups, 5000);
    t = Clock::now();
    for (int i = 0; i < slice; ++i) {
        applyKeepOption(*listed[static_cast<std::size_t>(i)], kKeepNewest, listed);
    }
    const double plain = seconds(t) * groups / slice;

    settings.customSettingsOption = "OK";
    settings.firstFileSizeState = 1; // at most 200 KB: every member passes
    settings.customMessageRespone = 1;
    t = Clock::now();
    applyCustomRulesToAll(listed, settings);
    const double custom = seconds(t);

    // The first update when the results open: percentages, listed groups,
    // option 0 on the first group, space saved.
    ResultsRequest opening;
    opening.firstUpdate = true;
    t = Clock::now();
    const ComputedResults first = computeResults(opening, settings);
    const double update = seconds(t);

    std::printf("groups %d, members %d\n", groups, members);
    std::printf("keep oldest, every group (one path index): %.3f s\n", indexed);
    std::printf("keep newest, every group (scan per group, estimated): %.3f s\n", plain);
    std::printf("ratio scan/index: %.0f\n", plain / indexed);
    std::printf("custom rules with keep-one, every group: %.3f s\n", custom);
    std::printf("first results update: %.3f s (%zu listed)\n", update, first.listed.size());
    return 0;
}
