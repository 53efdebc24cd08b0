// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/Cleaning.h"

#include <algorithm>
#include <unordered_set>

#include "engine/Diagnostics.h"
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

CleaningReport clean(const FileList& listed, SettingsManager& settings, CleaningPrompt& prompt,
                     FileRemover& remover, const CleaningRun& run) {
    CleaningReport report;
    const bool anyMarked = std::any_of(listed.begin(), listed.end(),
                                       [](const FilePtr& g) { return markedCount(*g) >= 1; });
    if (!anyMarked) {
        prompt.ask(CleaningAlert::NothingMarked);
        return report;
    }
    const bool wholeGroup = std::any_of(listed.begin(), listed.end(), [](const FilePtr& g) {
        return markedCount(*g) == static_cast<std::int64_t>(g->duplicates.size());
    });
    const bool sharing = settings.shareStorage;
    const bool linking = settings.replaceWithHardLinks && !sharing;
    if (sharing && !anyCanShareStorage(settings.listFolderPaths)) {
        prompt.ask(CleaningAlert::CantShare);
        report.outcome = CleaningOutcome::CantShare;
        return report;
    }
    if (wholeGroup && !prompt.ask(sharing   ? CleaningAlert::WholeGroupsShared
                                  : linking ? CleaningAlert::WholeGroupsLinked
                                            : CleaningAlert::WholeGroups)) {
        report.outcome = CleaningOutcome::Declined;
        return report;
    }
    const bool toTrash = settings.moveToTrash;
    // Links and shared storage lose nothing: no permanent-deletion question.
    if (!toTrash && !linking && !sharing && !prompt.ask(CleaningAlert::PermanentDeletion)) {
        report.outcome = CleaningOutcome::Declined;
        return report;
    }

    report.outcome = CleaningOutcome::Cleaned;
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
            return toTrash ? remover.moveToTrash(target) : remover.removeForGood(target);
        };
    }
    const SameFile sameFile;
    SweptFolders swept;
    // Attempted members leave their group in one pass per group, and groups
    // left with fewer than two members leave the list in one pass at the
    // end, also when the clean stops early: linear in the listed members.
    std::unordered_set<std::string> finished; // group paths
    const auto leaveGroup = [&](File& group, std::unordered_set<const DuplicateFile*>& attempted) {
        if (attempted.empty()) {
            return;
        }
        std::erase_if(group.duplicates,
                      [&](const DuplicateFilePtr& d) { return attempted.count(d.get()) != 0; });
        attempted.clear();
        if (group.duplicates.size() < 2) {
            finished.insert(group.path);
        }
    };
    const auto prune = [&] {
        if (!finished.empty()) {
            std::erase_if(settings.duplicateFileList,
                          [&](const FilePtr& g) { return finished.count(g->path) != 0; });
        }
        return report;
    };
    // listed may be settings.duplicateFileList itself, which pruning edits.
    const FileList groups = listed;
    std::unordered_set<const DuplicateFile*> attempted;
    for (const FilePtr& group : groups) {
        const std::vector<DuplicateFilePtr> members = group->duplicates;
        for (const DuplicateFilePtr& m : members) {
            if (m->checkState != 1) {
                continue;
            }
            if (run.stop && run.stop()) {
                report.stopped = true;
                leaveGroup(*group, attempted);
                return prune();
            }
            RemovalResult result;
            if (isProtectedCopy(*m, settings.protectedFolders)) {
                result.ok = false;
                result.error = m->path + ": in a protected folder, not removed";
            } else if (run.dryRun) {
                result = checkCopy(*group, *m, act, sameFile);
            } else if (sharing) {
                result = actOnCopyInPlace(*group, *m, act, sameFile, &swept);
            } else {
                result = actOnCopy(*group, *m, act, sameFile, &swept);
            }
            if (result.ok) {
                ++report.removed;
                report.bytesFreed += result.partial ? result.bytesFreed : group->size;
            } else {
                ++report.failed;
                report.bytesFreed += result.bytesFreed;
                if (!run.dryRun) {
                    printErrorLine("Error:  ", result.error);
                }
            }
            // A copy that was not linked or shared is still a copy of its group.
            if (result.ok || (!linking && !sharing)) {
                attempted.insert(m.get());
            }
            if (run.done && !run.done(*m, result)) {
                report.stopped = true;
                leaveGroup(*group, attempted);
                return prune();
            }
        }
        leaveGroup(*group, attempted);
    }
    return prune();
}

} // namespace twinsweep
