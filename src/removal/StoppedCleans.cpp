// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/StoppedCleans.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/Diagnostics.h"
#include "removal/Fd.h"
#include "removal/RemovalJournal.h"

namespace twinsweep {

namespace {

bool stillRunning(const JournalRecord& r) {
    if (r.bootId != currentBootId() || r.pid <= 0) {
        return false;
    }
    std::uint64_t start = 0;
    return processStart(r.pid, start) && start == r.startTime;
}

bool inodeAt(int folderFd, const std::string& name, struct stat& st) {
    return ::fstatat(folderFd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0;
}

struct Resolver {
    Recovery& out;
    void note(const std::string& text) {
        printErrorLine("Note:   ", text);
        out.notes.push_back(text);
    }

    // True when the record is resolved (and may be forgotten).
    bool resolve(const JournalRecord& r) {
        if (r.name.empty()) {
            return true; // cut short before its entry was made
        }
        const std::string at = (r.folder == "/" ? "" : r.folder) + "/";
        const Fd folder(::open(r.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        struct stat fs {};
        if (!folder.ok() || ::fstat(folder.get(), &fs) != 0) {
            note(at + r.hidden +
                 ": left by a clean that was stopped; its folder can't be opened (" +
                 std::strerror(errno) + ")");
            return false;
        }
        if (static_cast<std::uint64_t>(fs.st_dev) != r.device ||
            static_cast<std::uint64_t>(fs.st_ino) != r.inode) {
            note(r.folder + ": a folder where a clean that was stopped left " + r.hidden +
                 " was replaced since; left alone");
            return true; // never again: the folder it named is gone
        }
        struct stat hidden {};
        if (!inodeAt(folder.get(), r.hidden, hidden)) {
            return true; // the clean got to resolve it, or it was never made
        }
        if (r.kind == JournalRecord::Kind::Link) {
            return resolveLink(r, folder.get(), hidden, at);
        }
        if (hidden.st_ino != r.copyInode) {
            note(at + r.hidden + ": not the copy a stopped clean left aside, left alone");
            return true;
        }
        return putBack(r, folder.get(), at);
    }

    bool putBack(const JournalRecord& r, int folderFd, const std::string& at) {
        if (renameNoReplace(folderFd, r.hidden, folderFd, r.name) == 0) {
            note(at + r.name + ": put back, left aside by a clean that was stopped");
            return true;
        }
        note(at + r.hidden + ": left aside by a clean that was stopped, not put back as " + r.name +
             ": " + std::strerror(errno));
        return false;
    }

    bool resolveLink(const JournalRecord& r, int folderFd, const struct stat& hidden,
                     const std::string& at) {
        struct stat visible {};
        const bool hasVisible = inodeAt(folderFd, r.name, visible);
        if (hidden.st_ino == r.keptInode && hidden.st_ino != r.copyInode) {
            // Made, never swapped in: the copy is still at its name.
            if (::unlinkat(folderFd, r.hidden.c_str(), 0) == 0) {
                note(at + r.name +
                     ": a link a stopped clean had not put in place was removed; "
                     "the copy is unchanged");
                return true;
            }
        } else if (hidden.st_ino == r.copyInode && hasVisible && visible.st_ino == r.keptInode) {
            // Swapped in: the name is the kept file's; the old copy, checked
            // byte for byte before, is freed.
            if (::unlinkat(folderFd, r.hidden.c_str(), 0) == 0) {
                note(at + r.name +
                     ": linked to the kept copy by a clean that was stopped; "
                     "its old copy was freed");
                return true;
            }
        } else if (hidden.st_ino == r.copyInode && !hasVisible) {
            return putBack(r, folderFd, at);
        } else {
            note(at + r.hidden +
                 ": left by a clean that was stopped, not as it left it; "
                 "left alone");
            return true;
        }
        note(at + r.hidden + ": left by a clean that was stopped: " + std::strerror(errno));
        return false;
    }
};

} // namespace

Recovery recoverStoppedCleans() {
    Recovery out;
    if (!openJournal(out.error)) {
        out.ok = false;
        return out;
    }
    Resolver resolver{out};
    for (const auto& [handle, record] : journalRecords()) {
        if (!stillRunning(record) && resolver.resolve(record)) {
            journalForget(handle);
        }
    }
    return out;
}

} // namespace twinsweep
