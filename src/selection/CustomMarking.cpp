// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/CustomMarking.h"

#include "selection/CustomRuleMatch.h"
#include "selection/CustomSettingsText.h"
#include "selection/KeepOptions.h"

namespace twinsweep {

namespace {

// Marks the members of target by the rules, measured with group's size and
// extension. Returns whether every member was marked.
bool markByRules(File& target, const File& group, const CustomRules& rules) {
    target.keepOption = kKeepCustom;
    bool all = true;
    for (const DuplicateFilePtr& m : target.duplicates) {
        m->checkState = !m->isProtected && rules.matches(*m, group.size, group.ext) ? 1 : 0;
        all = all && m->checkState == 1;
    }
    return all;
}

void unmarkPath(File& target, const std::string& path) {
    for (const DuplicateFilePtr& m : target.duplicates) {
        if (m->path == path) {
            m->checkState = 0;
        }
    }
}

} // namespace

const AlertText& keepOneCopyQuestion() {
    static const AlertText question{
        "Do you want to keep at least one copy of each duplicate file?",
        {"Yes, keep the oldest file", "Yes, keep the newest file", "No"}};
    return question;
}

std::int64_t keepOneCopyAnswer(int buttonIndex) {
    return buttonIndex == 0 ? 1 : buttonIndex == 1 ? 2 : 3;
}

bool applyCustomRules(File& group, SettingsManager& settings) {
    if (settings.customSettingsOption != "OK") {
        return false;
    }
    const CustomRules rules(settings);
    group.customSettings = customSettingsText(settings);
    markByRules(group, group, rules);
    for (const FilePtr& other : settings.duplicateFileList) {
        if (other->path == group.path && other.get() != &group) {
            markByRules(*other, group, rules);
        }
    }
    return true;
}

bool applyCustomRulesToAll(const FileList& listed, SettingsManager& settings) {
    if (settings.customSettingsOption != "OK") {
        return false;
    }
    const CustomRules rules(settings);
    const RuleText text(customSettingsText(settings));
    for (const FilePtr& group : listed) {
        group->customSettings = text; // one shared buffer for every group
    }
    const SamePathIndex samePath(settings.duplicateFileList);
    const std::int64_t answer = settings.customMessageRespone;
    for (const FilePtr& group : listed) {
        bool all = markByRules(*group, *group, rules);
        const auto& others = samePath.groupsAt(group->path);
        for (File* other : others) {
            if (other != group.get()) {
                markByRules(*other, *group, rules);
            }
        }
        if (!all || group->duplicates.empty() || (answer != 1 && answer != 2)) {
            continue;
        }
        const KeepTimeBasis basis =
            settings.exactKeepTimes ? KeepTimeBasis::ExactTime : KeepTimeBasis::DateText;
        const std::string kept = answer == 1 ? oldestCopy(group->duplicates, basis)->path
                                             : newestCopy(group->duplicates, basis)->path;
        unmarkPath(*group, kept);
        for (File* other : others) {
            if (other != group.get()) {
                unmarkPath(*other, kept);
            }
        }
    }
    return true;
}

} // namespace twinsweep
