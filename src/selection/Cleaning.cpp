// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/Cleaning.h"

#include <algorithm>
#include <sys/stat.h>
#include <unordered_set>

#include "engine/Diagnostics.h"
#include "engine/OtherNames.h"
#include "engine/ProtectedFolders.h"
#include "engine/SameFile.h"
#include "removal/CopyRemoval.h"
#include "removal/HardLink.h"
#include "removal/Share.h"
#include "selection/KeepOptions.h"

namespace twinsweep {

const AlertText& alertText(CleaningAlert alert) {
    static const AlertText nothingMarked{"You did not select any duplicate files. Please select at "
                                         "least one duplicate file and try again.",
                                         {"OK"}};
    static const AlertText wholeGroups{"Some files have been selected to be removed completely. "
                                       "Are you sure you want to continue?",
                                       {"Yes", "No"}};
    static const AlertText permanent{
        "You are about to permanently remove the selected duplicate files. Continue?",
        {"Yes", "No"}};
    static const AlertText wholeGroupsLinked{
        "Some groups have every copy selected; with hard links, those groups are left as they "
        "are. Continue?",
        {"Yes", "No"}};
    static const AlertText wholeGroupsShared{
        "Some groups have every copy selected; when sharing storage, those groups are left as "
        "they are. Continue?",
        {"Yes", "No"}};
    static const AlertText nothingShared{
        "No selected copy could share its storage with a kept copy; every file was left as it "
        "was.",
        {"OK"}};
    static const AlertText cantShare{
        "None of the folders searched is on a file system that can share storage (Btrfs, or "
        "XFS made with reflinks). Nothing was changed.",
        {"OK"}};
    static const AlertText done{"Duplicate files cleaned successfully. ", {"OK"}};
    static const AlertText nothingLinked{
        "No selected copy could be replaced by a hard link; every file was left as it was.",
        {"OK"}};
    switch (alert) {
    case CleaningAlert::NothingMarked:
        return nothingMarked;
    case CleaningAlert::WholeGroups:
        return wholeGroups;
    case CleaningAlert::WholeGroupsLinked:
        return wholeGroupsLinked;
    case CleaningAlert::NothingLinked:
        return nothingLinked;
    case CleaningAlert::WholeGroupsShared:
        return wholeGroupsShared;
    case CleaningAlert::NothingShared:
        return nothingShared;
    case CleaningAlert::CantShare:
        return cantShare;
    case CleaningAlert::PermanentDeletion:
        return permanent;
    case CleaningAlert::Done:
        break;
    }
    return done;
}

CleaningChoice askBeforeCleaning(const FileList& listed, const SettingsManager& settings,
                                 CleaningPrompt& prompt) {
    CleaningChoice choice;
    const bool anyMarked = std::any_of(listed.begin(), listed.end(),
                                       [](const FilePtr& g) { return markedCount(*g) >= 1; });
    if (!anyMarked) {
        prompt.ask(CleaningAlert::NothingMarked);
        return choice;
    }
    const bool wholeGroup = std::any_of(listed.begin(), listed.end(), [](const FilePtr& g) {
        return markedCount(*g) == static_cast<std::int64_t>(g->duplicates.size());
    });
    choice.sharing = settings.shareStorage;
    choice.linking = settings.replaceWithHardLinks && !choice.sharing;
    choice.toTrash = settings.moveToTrash;
    if (choice.sharing && !anyCanShareStorage(settings.listFolderPaths)) {
        prompt.ask(CleaningAlert::CantShare);
        choice.outcome = CleaningOutcome::CantShare;
        return choice;
    }
    if (wholeGroup && !prompt.ask(choice.sharing   ? CleaningAlert::WholeGroupsShared
                                  : choice.linking ? CleaningAlert::WholeGroupsLinked
                                                   : CleaningAlert::WholeGroups)) {
        choice.outcome = CleaningOutcome::Declined;
        return choice;
    }
    // Links and shared storage lose nothing: no permanent-deletion question.
    if (!choice.toTrash && !choice.linking && !choice.sharing &&
        !prompt.ask(CleaningAlert::PermanentDeletion)) {
        choice.outcome = CleaningOutcome::Declined;
        return choice;
    }
    choice.outcome = CleaningOutcome::Cleaned;
    return choice;
}

CleaningReport removeMarked(const FileList& groups, const CleaningChoice& choice,
                            const std::vector<std::string>& protectedFolders, FileRemover& remover,
                            const CleaningRun& run, std::vector<CleanedCopy>& attempted) {
    CleaningReport report;
    report.outcome = CleaningOutcome::Cleaned;
    const bool sharing = choice.sharing;
    const bool linking = choice.linking;
    CopyAction act = run.action;
    if (run.dryRun) {
        // Every check of the act, none of its changes.
        act = [&](const RemovalTarget& target) {
            if (sharing) {
                return checkShare(target);
            }
            return linking ? checkHardLink(target) : RemovalResult{};
        };
    } else if (!act) {
        act = [&](const RemovalTarget& target) {
            if (sharing) {
                return remover.shareStorage(target);
            }
            if (linking) {
                return remover.replaceWithLink(target);
            }
            return choice.toTrash ? remover.moveToTrash(target) : remover.removeForGood(target);
        };
    }
    const SameFile sameFile;
    SweptFolders swept;
    // One member, checked and acted on; false when the clean stops after it.
    const auto attempt = [&](const FilePtr& group, const DuplicateFilePtr& m) {
        if (run.starting) {
            run.starting(*group, *m);
        }
        RemovalResult result;
        if (isProtectedCopy(*m, protectedFolders)) {
            result.ok = false;
            result.error = m->path + ": in a protected folder, not removed";
        } else if (run.dryRun) {
            result = checkCopy(*group, *m, act, sameFile);
        } else if (sharing) {
            result = actOnCopyInPlace(*group, *m, act, sameFile, &swept);
        } else {
            result = actOnCopy(*group, *m, act, sameFile, &swept);
        }
        CleanedCopy cleaned{group, m, result, false};
        if (result.ok) {
            ++report.removed;
            report.bytesFreed += result.partial ? result.bytesFreed : group->size;
        } else {
            ++report.failed;
            report.bytesFreed += result.bytesFreed;
            if (!run.dryRun) {
                printErrorLine("Error:  ", result.error);
                // Links and shared storage leave a whole group as it is, as
                // the user was told before: nothing to point out there.
                const bool wholeGroup =
                    markedCount(*group) == static_cast<std::int64_t>(group->duplicates.size());
                struct stat st {};
                cleaned.leftInPlace =
                    !((linking || sharing) && wholeGroup) && ::lstat(m->path.c_str(), &st) == 0;
            }
        }
        attempted.push_back(std::move(cleaned));
        return !run.done || run.done(*m, result);
    };
    for (const FilePtr& group : groups) {
        const std::vector<DuplicateFilePtr> members = group->duplicates;
        for (const DuplicateFilePtr& m : members) {
            if (m->checkState != 1) {
                continue;
            }
            if (run.stop && run.stop()) {
                report.stopped = true;
                return report;
            }
            const std::size_t before = attempted.size();
            if (!attempt(group, m)) {
                report.stopped = true;
                return report;
            }
            if (!linking || !attempted[before].result.ok) {
                continue;
            }
            // The walk listed the file once, under this name: its other names
            // still hold the old storage, and get the same link, each checked
            // like a marked copy (a protected one is left as it is).
            for (const OtherName& name : OtherNames::of(m->seen.device, m->seen.inode)) {
                auto other = std::make_shared<DuplicateFile>(name.path, m->date, 1);
                other->seen = m->seen;
                other->folder = name.folder;
                if (isProtectedCopy(*other, protectedFolders)) {
                    continue;
                }
                if ((run.stop && run.stop()) || !attempt(group, other)) {
                    report.stopped = true;
                    return report;
                }
            }
        }
    }
    return report;
}

LeavingPlan planLeaving(const std::vector<CleanedCopy>& attempted, const CleaningChoice& choice,
                        const FileList& duplicateFileList, bool keepLeftInPlace) {
    // Attempted members leave their group in one pass per group, and groups
    // left with fewer than two members leave the list in one pass at the
    // end: linear in the listed members.
    LeavingPlan plan;
    std::unordered_set<const DuplicateFile*> gone;
    for (const CleanedCopy& c : attempted) {
        // A copy that was not linked or shared is still a copy of its group.
        const bool leaves = c.result.ok || (!choice.linking && !choice.sharing);
        if (leaves && !(keepLeftInPlace && c.leftInPlace)) {
            gone.insert(c.member.get());
        }
    }
    std::unordered_set<std::string> finished; // group paths
    const File* last = nullptr;
    for (const CleanedCopy& c : attempted) {
        // A group's attempts come one after the other.
        if (c.group.get() == last || gone.count(c.member.get()) == 0) {
            continue;
        }
        last = c.group.get();
        std::vector<DuplicateFilePtr> kept;
        kept.reserve(c.group->duplicates.size());
        for (const DuplicateFilePtr& d : c.group->duplicates) {
            if (gone.count(d.get()) == 0) {
                kept.push_back(d);
            }
        }
        if (kept.size() < 2) {
            finished.insert(c.group->path);
        }
        plan.members.emplace_back(c.group, std::move(kept));
    }
    plan.duplicateFileList.reserve(duplicateFileList.size());
    for (const FilePtr& g : duplicateFileList) {
        if (finished.empty() || finished.count(g->path) == 0) {
            plan.duplicateFileList.push_back(g);
        }
    }
    return plan;
}

void applyLeaving(LeavingPlan& plan, SettingsManager& settings) {
    for (auto& [group, members] : plan.members) {
        group->duplicates.swap(members);
    }
    settings.duplicateFileList.swap(plan.duplicateFileList);
}

void leaveLists(const std::vector<CleanedCopy>& attempted, const CleaningChoice& choice,
                SettingsManager& settings, bool keepLeftInPlace) {
    LeavingPlan plan = planLeaving(attempted, choice, settings.duplicateFileList, keepLeftInPlace);
    applyLeaving(plan, settings);
}

CleaningReport clean(const FileList& listed, SettingsManager& settings, CleaningPrompt& prompt,
                     FileRemover& remover, const CleaningRun& run) {
    const CleaningChoice choice = askBeforeCleaning(listed, settings, prompt);
    if (choice.outcome != CleaningOutcome::Cleaned) {
        CleaningReport report;
        report.outcome = choice.outcome;
        return report;
    }
    // listed may be settings.duplicateFileList itself, which leaveLists edits.
    const FileList groups = listed;
    std::vector<CleanedCopy> attempted;
    const CleaningReport report =
        removeMarked(groups, choice, settings.protectedFolders, remover, run, attempted);
    leaveLists(attempted, choice, settings);
    return report;
}

} // namespace twinsweep
