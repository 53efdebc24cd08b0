#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/File.h"
#include "selection/AlertText.h"
#include "settings/SettingsManager.h"

namespace twinsweep {

// The alerts of the clean command, each a warning with an empty message text.
enum class CleaningAlert { NothingMarked, WholeGroups, PermanentDeletion, Done };

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

struct RemovalResult {
    bool ok = true;
    std::string error; // the platform's description when !ok
};

// Removes one item from disk, implemented by the platform layer.
class FileRemover {
  public:
    virtual ~FileRemover() = default;
    // Moves the item at path (a file, or a package folder) to the user's Trash.
    virtual RemovalResult moveToTrash(const std::string& path) = 0;
    // Deletes the item at path for good; a folder with everything in it.
    virtual RemovalResult removeForGood(const std::string& path) = 0;
};

enum class CleaningOutcome {
    NothingMarked, // the nothing-marked alert was shown; nothing changed
    Declined,      // "No" to a question; nothing changed
    Cleaned,       // removals were attempted and the lists pruned
};

struct CleaningReport {
    CleaningOutcome outcome = CleaningOutcome::NothingMarked;
    std::int64_t removed = 0;     // members removed from disk
    std::int64_t failed = 0;      // members whose removal failed or was refused
    std::uint64_t bytesFreed = 0; // group size of each removed member
};

// The clean command up to the update: checks that a listed group has a marked
// member, asks before whole groups go and before permanent deletion (as
// settings.moveToTrash says), then removes every marked member of the listed
// groups, in order. Just before each removal the file at the member's path
// must still be the one the search saw (DuplicateFile::seen), and, when the
// group keeps a copy, byte for byte the same as a kept copy that is itself
// still as seen (equal digests alone don't prove it); if not, it is left alone. A failed or refused
// removal writes "Error:  " and the reason to standard output, and cleaning goes on. Every
// attempted member leaves its group; a group left with fewer than two members leaves
// settings.duplicateFileList (the listed groups are rebuilt by the update that
// follows). Afterwards the caller runs a full results update, shows the Done
// alert and closes the results when settings.duplicateFileList is empty.
CleaningReport clean(const FileList& listed, SettingsManager& settings, CleaningPrompt& prompt,
                     FileRemover& remover);

// Whether member is byte for byte the same as a kept member of group (one
// that is not marked and is still as the search saw it). True when group
// keeps no member. When not, reason says why.
bool sameAsAKeptCopy(const File& group, const DuplicateFile& member, std::string& reason);

// Whether the file at member.path is still what the search saw. When not,
// reason says why, in the form of a platform error description.
bool stillAsSeen(const DuplicateFile& member, std::string& reason);

} // namespace twinsweep
