// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/File.h"
#include "removal/Removal.h"
#include "selection/AlertText.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

// The alerts of the clean command, each a warning with an empty message text.
// WholeGroupsLinked stands for WholeGroups when copies are replaced by hard
// links (nothing can be linked in a group with every copy marked), and
// NothingLinked for Done when no copy could be linked; the same for sharing
// storage, and CantShare when no folder searched is on a file system that
// can share (nothing starts).
enum class CleaningAlert {
    NothingMarked,
    WholeGroups,
    PermanentDeletion,
    Done,
    WholeGroupsLinked,
    NothingLinked,
    WholeGroupsShared,
    NothingShared,
    CantShare
};

// The exact informative text and button titles of an alert; the first button
// accepts.
const AlertText& alertText(CleaningAlert alert);

// Asks the user. The desktop layer shows a modal alert with alertText(alert);
// the command-line tool answers from its options.
class CleaningPrompt {
  public:
    virtual ~CleaningPrompt() = default;
    // Shows the alert; true when its first button ("Yes" or "OK") closed it.
    virtual bool ask(CleaningAlert alert) = 0;
};

enum class CleaningOutcome {
    NothingMarked, // the nothing-marked alert was shown; nothing changed
    Declined,      // "No" to a question; nothing changed
    Cleaned,       // removals were attempted and the lists pruned
    CantShare,     // sharing storage, but nothing searched can: nothing changed
};

struct CleaningReport {
    CleaningOutcome outcome = CleaningOutcome::NothingMarked;
    std::int64_t removed = 0;     // members removed from disk
    std::int64_t failed = 0;      // members whose removal failed or was refused
    std::uint64_t bytesFreed = 0; // group size of each removed member, and what
                                  // went of a folder removed only in part
    bool stopped = false;         // stopped before the end (see CleaningRun)
};

// How one clean runs, beyond what the user answered.
struct CleaningRun {
    // Nothing is touched: every check of the act runs (checkCopy, CopyRemoval.h)
    // and each member is reported as the clean would leave it; no "Error:  "
    // lines (done says what would be left).
    bool dryRun = false;
    // Asked before each removal; true stops the clean there.
    std::function<bool()> stop;
    // Told of each member just before it is checked (what a progress display
    // shows as the copy being checked).
    std::function<void(const File& group, const DuplicateFile&)> starting;
    // Told of each attempted member as soon as it is done; false stops the clean.
    std::function<bool(const DuplicateFile&, const RemovalResult&)> done;
    // The final act on a checked copy; by default the remover's Trash or
    // deletion for good, as settings.moveToTrash says (its link or shared
    // storage when settings ask for those).
    CopyAction action;
};

// What the questions decided: whether the removals go ahead (outcome
// Cleaned) and how each marked copy is acted on.
struct CleaningChoice {
    CleaningOutcome outcome = CleaningOutcome::NothingMarked;
    bool linking = false; // replaced by hard links
    bool sharing = false; // storage shared with a kept copy
    bool toTrash = true;  // else deleted for good (when neither of the above)
};

// The clean's questions, in order, before anything is touched: nothing
// marked among the listed groups, whole groups, permanent deletion (and, when
// sharing storage, whether a folder searched can share at all).
CleaningChoice askBeforeCleaning(const FileList& listed, const SettingsManager& settings,
                                 CleaningPrompt& prompt);

// One attempted member and what became of it.
struct CleanedCopy {
    FilePtr group;
    DuplicateFilePtr member;
    RemovalResult result;
    // Not acted on, and the file is still at its path (a check refused it, or
    // the act failed): not a vanished file.
    bool leftInPlace = false;
};

// The removals alone, for the choice made: every marked member of groups, in
// order, through actOnCopy (see clean below). Reads the groups and changes
// neither them nor any list, so it may run on another thread while the
// groups are only read elsewhere; each attempted member goes to attempted as
// it is done. With linking, the other names of a linked copy that the walk
// took once (OtherNames.h) are linked too, each checked like a marked copy.
CleaningReport removeMarked(const FileList& groups, const CleaningChoice& choice,
                            const std::vector<std::string>& protectedFolders, FileRemover& remover,
                            const CleaningRun& run, std::vector<CleanedCopy>& attempted);

// The lists after removeMarked: attempted members leave their groups (with
// hard links or shared storage, only a linked or shared one: a copy left
// alone is still a copy; with keepLeftInPlace, no copy left in place either:
// it stays listed and marked), and a group left with fewer than two members
// leaves settings.duplicateFileList.
void leaveLists(const std::vector<CleanedCopy>& attempted, const CleaningChoice& choice,
                SettingsManager& settings, bool keepLeftInPlace = false);

// leaveLists in two steps, so that the work can be done on another thread
// and only the change where the lists are read: planLeaving reads the groups
// and the list, changes nothing, and returns each changed group's members
// after the clean and the list after it; applyLeaving swaps them in (after
// it, plan holds what was there before, to be released anywhere).
struct LeavingPlan {
    std::vector<std::pair<FilePtr, std::vector<DuplicateFilePtr>>> members;
    FileList duplicateFileList;
};
LeavingPlan planLeaving(const std::vector<CleanedCopy>& attempted, const CleaningChoice& choice,
                        const FileList& duplicateFileList, bool keepLeftInPlace);
void applyLeaving(LeavingPlan& plan, SettingsManager& settings);

// The clean command up to the update: askBeforeCleaning, removeMarked, then
// leaveLists. It checks that a listed group has a marked
// member, asks before whole groups go and before permanent deletion (as
// settings.moveToTrash says), then removes every marked member of the listed
// groups, in order, each through actOnCopy (CopyRemoval.h; actOnCopyInPlace
// when sharing storage, which asks nothing and first makes sure a folder
// searched can share): only a copy that
// is still what the search saw, in the folder the search walked, and byte for
// byte the same as a kept copy that is still there goes. A failed or refused
// removal writes "Error:  " and the reason to standard output, and cleaning
// goes on. Every attempted member leaves its group (with hard links or shared
// storage, only a linked or shared one: a copy left alone is still a copy); a group left with fewer
// than two members leaves settings.duplicateFileList (the listed groups are
// rebuilt by the update that follows). Afterwards the caller runs a full
// results update, shows the Done alert (NothingLinked or NothingShared when
// links or sharing were asked for and no copy was) and closes the results when
// settings.duplicateFileList is empty.
CleaningReport clean(const FileList& listed, SettingsManager& settings, CleaningPrompt& prompt,
                     FileRemover& remover, const CleaningRun& run = {});

} // namespace twinsweep
