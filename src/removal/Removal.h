// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace twinsweep {

// One copy about to be acted on, reached through its open folder: that folder
// was checked to be the one the search walked, the entry to be the file the
// search saw and, when the group keeps a copy, byte for byte the same as the
// kept copy below. Nothing here is looked up by path again.
struct RemovalTarget {
    int folderFd = -1;
    std::string entry; // its name in the folder now (an aside name while it waits)
    std::string name;  // the name it had, and gets back when the act fails
    std::string path;  // the path the user knows it by
    bool isFolder = false;
    std::uint64_t size = 0; // what removing it whole frees
    // The entry as checked (an act that opens it again makes sure of it).
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    // The kept copy that vouched for it; keptFolderFd is -1 when the user
    // chose to remove the whole group.
    int keptFolderFd = -1;
    std::string keptEntry;
    std::string keptPath;
    // The kept file itself, open since it was checked again (a regular file;
    // -1 otherwise): a link is made from it, never from its name.
    int keptFd = -1;
    // The kept copy is protected: it may vouch, but never be linked to.
    bool keptProtected = false;
};

// Where a copy went in the Trash, so that it can be put back, and what undo
// checks first: the folder it left, the Trash's files/ folder, and the item
// as it lies there with the DeletionDate its .trashinfo was written with.
struct TrashedItem {
    std::string originalPath;
    std::string filesPath; // the item itself, inside the Trash's files/
    std::string infoPath;  // its .trashinfo record
    std::string deletionDate;
    std::uint64_t folderDevice = 0;
    std::uint64_t folderInode = 0;
    std::uint64_t filesDevice = 0;
    std::uint64_t filesInode = 0;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t mtimeSec = 0;
    std::int64_t mtimeNsec = 0;
    bool moved = false; // false: noted before the move, which may not have happened
};

struct RemovalResult {
    bool ok = true;
    std::string error; // why not, naming the path, when !ok
    // A folder removed only in part, or a copy replaced by a link that frees
    // less than its size: what was freed (nothing else counts).
    bool partial = false;
    std::uint64_t bytesFreed = 0;
    TrashedItem trashed; // filled when it went to the Trash
    // Failed only because the kept copy given can't serve (a hard link to a
    // file on another file system): the next kept copy may be tried.
    bool tryOtherKept = false;
    // Its storage was shared with the kept copy's already: nothing to do.
    bool alreadyShared = false;
};

// The final act on a checked copy. It must leave the entry where it is when it
// fails, so the copy can be renamed back.
using CopyAction = std::function<RemovalResult(const RemovalTarget&)>;

// Removal as the platform does it.
class FileRemover {
  public:
    virtual ~FileRemover() = default;
    // Moves the entry to the user's Trash, with a record to put it back.
    virtual RemovalResult moveToTrash(const RemovalTarget& target) = 0;
    // Deletes the entry for good; a folder with everything in it on the same
    // mounted file system.
    virtual RemovalResult removeForGood(const RemovalTarget& target) = 0;
    // Replaces the entry by a hard link to the kept copy (see HardLink.h);
    // a remover that can't link leaves every copy alone.
    virtual RemovalResult replaceWithLink(const RemovalTarget& target) {
        RemovalResult r;
        r.ok = false;
        r.error = target.path + ": hard links are not available here, left alone";
        return r;
    }
    // Lets the entry share its storage with the kept copy (see Share.h); a
    // remover that can't share leaves every copy alone.
    virtual RemovalResult shareStorage(const RemovalTarget& target) {
        RemovalResult r;
        r.ok = false;
        r.error = target.path + ": sharing storage is not available here, left as it was";
        return r;
    }
    // Why the record to undo its moves to the Trash could not be kept ("" when
    // it was, or when this remover keeps none).
    virtual std::string trashRecordError() const { return {}; }
};

} // namespace twinsweep
