// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/CopyRemoval.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/FolderRegistry.h"
#include "removal/AsideLeftovers.h"
#include "removal/Fd.h"
#include "removal/RemovalJournal.h"
#include "removal/SameContents.h"

namespace twinsweep {

namespace {

RemovalResult failure(std::string why) {
    RemovalResult r;
    r.ok = false;
    r.error = std::move(why);
    return r;
}

// A member reached through its open folder.
struct Opened {
    Fd folder;
    struct stat folderSt {};
    std::string name;
    struct stat st {};
};

bool sameDevIno(const struct stat& st, const FileIdentity& seen) {
    return static_cast<std::uint32_t>(st.st_dev) == seen.device &&
           static_cast<std::uint64_t>(st.st_ino) == seen.inode;
}

bool unchanged(const struct stat& st, const FileIdentity& seen) {
    return static_cast<std::uint64_t>(st.st_size) == seen.size &&
           st.st_mtim.tv_sec == seen.mtimeSec && st.st_mtim.tv_nsec == seen.mtimeNsec;
}

bool openAsSeen(const DuplicateFile& m, Opened& o, std::string& reason, SweptFolders* swept) {
    if (!m.seen.known) {
        reason = m.path + ": not seen by the search, not removed";
        return false;
    }
    const FolderIdentity walked = FolderRegistry::at(m.folder);
    if (!walked.known) {
        reason = m.path + ": its folder was not walked by the search, not removed";
        return false;
    }
    if (walked.foreignLink) {
        // Another user chose where that link leads.
        reason =
            m.path + ": reached through a symbolic link that belongs to another user, left alone";
        return false;
    }
    const std::string folder = parentOf(m.path);
    o.folder.reset(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat& fs = o.folderSt;
    if (!o.folder.ok() || ::fstat(o.folder.get(), &fs) != 0) {
        reason = m.path + ": " + std::strerror(errno);
        return false;
    }
    if (static_cast<std::uint64_t>(fs.st_dev) != walked.device ||
        static_cast<std::uint64_t>(fs.st_ino) != walked.inode) {
        reason = m.path + ": its folder was replaced since the search, not removed";
        return false;
    }
    if (swept != nullptr && swept->insert({walked.device, walked.inode}).second) {
        putBackLeftovers(o.folder.get(), folder);
    }
    o.name = lastComponent(m.path);
    if (::fstatat(o.folder.get(), o.name.c_str(), &o.st, AT_SYMLINK_NOFOLLOW) != 0) {
        reason = m.path + ": " + std::strerror(errno);
        return false;
    }
    if (!sameDevIno(o.st, m.seen)) {
        reason = m.path + ": replaced by another file since the search, not removed";
        return false;
    }
    if (!unchanged(o.st, m.seen)) {
        reason = m.path + ": changed since the search, not removed";
        return false;
    }
    return true;
}

// The kept copy, checked again once the marked copy waits aside: still in
// its folder, still the file compared, and the folder still where it was.
bool stillThere(const DuplicateFile& k, const Opened& o) {
    struct stat now {};
    if (::fstatat(o.folder.get(), o.name.c_str(), &now, AT_SYMLINK_NOFOLLOW) != 0 ||
        now.st_dev != o.st.st_dev || now.st_ino != o.st.st_ino || !unchanged(now, k.seen)) {
        return false;
    }
    const Fd again(::open(parentOf(k.path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat a {};
    struct stat b {};
    return again.ok() && ::fstat(again.get(), &a) == 0 && ::fstat(o.folder.get(), &b) == 0 &&
           a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// How the act treats the copy: set aside first (it may go), left at its name
// (the act removes nothing), or not acted on at all (a dry run).
enum class Mode { Aside, InPlace, DryRun };

RemovalResult onCopy(const File& group, const DuplicateFile& member, const CopyAction& act,
                     const SameFile& sameFile, SweptFolders* swept, Mode mode) {
    Opened mine;
    std::string reason;
    if (!openAsSeen(member, mine, reason, swept)) {
        return failure(reason);
    }
    RemovalTarget target;
    target.folderFd = mine.folder.get();
    target.entry = mine.name;
    target.name = mine.name;
    target.path = member.path;
    target.isFolder = S_ISDIR(mine.st.st_mode);
    target.size = group.size;
    target.device = static_cast<std::uint64_t>(mine.st.st_dev);
    target.inode = static_cast<std::uint64_t>(mine.st.st_ino);

    bool anyKept = false;
    for (const DuplicateFilePtr& k : group.duplicates) {
        anyKept = anyKept || (k->checkState != 1 && k->path != member.path);
    }
    if (!anyKept) {
        return act(target); // the user chose to remove the whole group
    }

    std::string journalled; // the aside entry's record, while it may exist
    const auto resolved = [&](RemovalResult r) {
        struct stat st {};
        if (!journalled.empty() &&
            ::fstatat(target.folderFd, target.entry.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
            journalForget(journalled);
        }
        return r;
    };
    const auto putBack = [&](RemovalResult r) {
        struct stat st {};
        if (!journalled.empty() &&
            ::fstatat(target.folderFd, target.entry.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 &&
            renameNoReplace(target.folderFd, target.entry, target.folderFd, target.name) != 0) {
            r.error += " (it waits under the name " + parentOf(member.path) + "/" + target.entry +
                       ": " + std::strerror(errno) + ")";
        }
        return resolved(std::move(r));
    };

    std::string keptWhy;   // why no kept copy could vouch
    std::string ownerWhy;  // a kept copy of another owner
    std::string differWhy; // a kept copy as seen, but with other bytes
    std::string actWhy;    // the act could not use a kept copy (tryOtherKept)
    for (const DuplicateFilePtr& k : group.duplicates) {
        if (k->checkState == 1 || k->path == member.path) {
            continue;
        }
        Opened kept;
        if (!openAsSeen(*k, kept, keptWhy, swept)) {
            continue;
        }
        // Another user's twin may go tomorrow, by that user's hand.
        if (kept.st.st_uid != mine.st.st_uid) {
            ownerWhy = member.path + ": kept copy belongs to another user, not removed";
            continue;
        }
        const SameFile::Verdict same = sameFile.check(member.path, {mine.st.st_dev, mine.st.st_ino},
                                                      k->path, {kept.st.st_dev, kept.st.st_ino});
        if (same != SameFile::Verdict::Different) {
            keptWhy =
                member.path + (same == SameFile::Verdict::Same
                                   ? ": the same file as " + k->path + " (one file seen twice)"
                                   : ": may be the same file as " + k->path +
                                         " (on a file system that can show another's "
                                         "files, not proven different)");
            continue;
        }
        if (!sameContents({target.folderFd, target.entry, member.path, &mine.st},
                          {kept.folder.get(), kept.name, k->path, &kept.st}, reason)) {
            differWhy = reason;
            continue;
        }
        if (journalled.empty() && mode == Mode::Aside) {
            const std::string name = asideName(mine.name);
            JournalRecord record = thisProcessRecord();
            record.folder = parentOf(member.path);
            record.device = static_cast<std::uint64_t>(mine.folderSt.st_dev);
            record.inode = static_cast<std::uint64_t>(mine.folderSt.st_ino);
            record.hidden = name;
            record.name = mine.name;
            record.copyInode = static_cast<std::uint64_t>(mine.st.st_ino);
            std::string why;
            journalled = journalNote(record, why);
            if (journalled.empty()) {
                return failure(member.path + ": " + why + ", not removed");
            }
            if (renameNoReplace(target.folderFd, mine.name, target.folderFd, name) != 0) {
                const int err = errno;
                journalForget(journalled);
                return failure(member.path + ": " + std::strerror(err) + ", not removed");
            }
            target.entry = name;
            struct stat now {};
            if (::fstatat(target.folderFd, name.c_str(), &now, AT_SYMLINK_NOFOLLOW) != 0 ||
                now.st_dev != mine.st.st_dev || now.st_ino != mine.st.st_ino ||
                !unchanged(now, member.seen)) {
                return putBack(failure(member.path + ": changed during the clean, not removed"));
            }
        }
        struct stat now {};
        if (mode != Mode::Aside &&
            (::fstatat(target.folderFd, target.entry.c_str(), &now, AT_SYMLINK_NOFOLLOW) != 0 ||
             now.st_dev != mine.st.st_dev || now.st_ino != mine.st.st_ino ||
             !unchanged(now, member.seen))) {
            // The check the clean makes on the copy once it is aside (an act
            // in place makes it here).
            return failure(member.path + ": changed during the clean, not removed");
        }
        if (!stillThere(*k, kept)) {
            keptWhy = k->path + ": changed or went away during the clean";
            continue;
        }
        // The kept file itself, held from here on: the act links this one.
        Fd keptFile;
        if (S_ISREG(kept.st.st_mode)) {
            keptFile.reset(::openat(kept.folder.get(), kept.name.c_str(),
                                    O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
            struct stat held {};
            if (!keptFile.ok() || ::fstat(keptFile.get(), &held) != 0 ||
                held.st_dev != kept.st.st_dev || held.st_ino != kept.st.st_ino ||
                !unchanged(held, k->seen)) {
                keptWhy = k->path + ": changed or went away during the clean";
                continue;
            }
        }
        target.keptFolderFd = kept.folder.get();
        target.keptEntry = kept.name;
        target.keptPath = k->path;
        target.keptFd = keptFile.get();
        target.keptProtected = k->isProtected;
        RemovalResult r = act(target);
        target.keptFd = -1;
        if (!r.ok && r.tryOtherKept) {
            actWhy = r.error;
            continue;
        }
        return r.ok ? resolved(std::move(r)) : putBack(std::move(r));
    }
    if (!actWhy.empty()) {
        return putBack(failure(actWhy));
    }
    if (!ownerWhy.empty()) {
        return putBack(failure(ownerWhy));
    }
    if (!differWhy.empty() && keptWhy.empty()) {
        return putBack(failure(differWhy + ", not removed"));
    }
    return putBack(failure(member.path + ": no kept copy is left to compare with (" +
                           (keptWhy.empty() ? differWhy : keptWhy) + "), not removed"));
}

} // namespace

RemovalResult actOnCopy(const File& group, const DuplicateFile& member, const CopyAction& act,
                        const SameFile& sameFile, SweptFolders* swept) {
    return onCopy(group, member, act, sameFile, swept, Mode::Aside);
}

RemovalResult actOnCopyInPlace(const File& group, const DuplicateFile& member,
                               const CopyAction& act, const SameFile& sameFile,
                               SweptFolders* swept) {
    return onCopy(group, member, act, sameFile, swept, Mode::InPlace);
}

RemovalResult checkCopy(const File& group, const DuplicateFile& member, const CopyAction& check,
                        const SameFile& sameFile) {
    return onCopy(group, member, check, sameFile, nullptr, Mode::DryRun);
}

} // namespace twinsweep
