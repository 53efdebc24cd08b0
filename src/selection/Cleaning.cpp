#include "selection/Cleaning.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "engine/Diagnostics.h"
#include "engine/ProtectedFolders.h"
#include "selection/KeepOptions.h"
#include "selection/SameContents.h"

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
    static const AlertText done{"Duplicate files cleaned successfully. ", {"OK"}};
    switch (alert) {
    case CleaningAlert::NothingMarked:
        return nothingMarked;
    case CleaningAlert::WholeGroups:
        return wholeGroups;
    case CleaningAlert::PermanentDeletion:
        return permanent;
    case CleaningAlert::Done:
        break;
    }
    return done;
}

bool stillAsSeen(const DuplicateFile& member, std::string& reason) {
    if (!member.seen.known) {
        reason = member.path + ": not seen by the search, not removed";
        return false;
    }
    errno = 0;
    const FileIdentity now = identityOf(member.path);
    if (!now.known) {
        const int err = errno != 0 ? errno : ENOENT;
        reason = member.path + ": " + std::strerror(err);
        return false;
    }
    if (now.device != member.seen.device || now.inode != member.seen.inode) {
        reason = member.path + ": replaced by another file since the search, not removed";
        return false;
    }
    if (now.size != member.seen.size || now.mtimeSec != member.seen.mtimeSec ||
        now.mtimeNsec != member.seen.mtimeNsec) {
        reason = member.path + ": changed since the search, not removed";
        return false;
    }
    return true;
}

bool sameAsAKeptCopy(const File& group, const DuplicateFile& member, std::string& reason) {
    bool anyKept = false;
    std::string keptReason;
    for (const DuplicateFilePtr& k : group.duplicates) {
        if (k->checkState == 1 || k->path == member.path) {
            continue;
        }
        anyKept = true;
        // Only a kept copy that is still what the search saw vouches for it.
        if (!stillAsSeen(*k, keptReason)) {
            continue;
        }
        if (sameContents(member.path, k->path, reason)) {
            return true;
        }
        reason += ", not removed";
        return false;
    }
    if (!anyKept) {
        return true; // the user chose to remove the whole group
    }
    reason =
        member.path + ": no kept copy is left to compare with (" + keptReason + "), not removed";
    return false;
}

CleaningReport clean(const FileList& listed, SettingsManager& settings, CleaningPrompt& prompt,
                     FileRemover& remover) {
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
    if (wholeGroup && !prompt.ask(CleaningAlert::WholeGroups)) {
        report.outcome = CleaningOutcome::Declined;
        return report;
    }
    const bool toTrash = settings.moveToTrash;
    if (!toTrash && !prompt.ask(CleaningAlert::PermanentDeletion)) {
        report.outcome = CleaningOutcome::Declined;
        return report;
    }

    report.outcome = CleaningOutcome::Cleaned;
    // listed may be settings.duplicateFileList itself, which pruning edits.
    const FileList groups = listed;
    for (const FilePtr& group : groups) {
        const std::vector<DuplicateFilePtr> members = group->duplicates;
        for (const DuplicateFilePtr& m : members) {
            if (m->checkState != 1) {
                continue;
            }
            std::string reason;
            RemovalResult result;
            if (isProtectedCopy(*m, settings.protectedFolders)) {
                result = {false, m->path + ": in a protected folder, not removed"};
            } else if (!stillAsSeen(*m, reason) || !sameAsAKeptCopy(*group, *m, reason)) {
                result = {false, reason};
            } else {
                result = toTrash ? remover.moveToTrash(m->path) : remover.removeForGood(m->path);
            }
            if (result.ok) {
                ++report.removed;
                report.bytesFreed += group->size;
            } else {
                ++report.failed;
                printErrorLine("Error:  ", result.error);
            }
            std::erase_if(group->duplicates,
                          [&](const DuplicateFilePtr& d) { return d->path == m->path; });
        }
        if (group->duplicates.size() < 2) {
            const std::string path = group->path;
            std::erase_if(settings.duplicateFileList,
                          [&](const FilePtr& g) { return g->path == path; });
        }
    }
    return report;
}

} // namespace twinsweep
