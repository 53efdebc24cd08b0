// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/UndoHistory.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "removal/TrashRecord.h"

namespace twinsweep {

namespace {

// A pending note: the item was moved (it is in files/ as it was before the
// move: a folder by device and inode, its times may have moved), or its
// .trashinfo is an orphan to remove, or nothing happened at all.
enum class Pending { Moved, Orphan, Nothing, Unknown };

Pending settle(TrashedItem& i, std::string& why) {
    const CheckedTrash trash = openTrashOf(i);
    if (!trash.ok()) {
        why = trash.why;
        return trash.absent ? Pending::Unknown : Pending::Nothing;
    }
    const std::string name = lastComponent(i.filesPath);
    const bool ours = isOurTrashInfo(trash.info.get(), i);
    struct stat st {};
    if (::fstatat(trash.files.get(), name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0) {
        const bool same = static_cast<std::uint64_t>(st.st_dev) == i.device &&
                          static_cast<std::uint64_t>(st.st_ino) == i.inode &&
                          (S_ISDIR(st.st_mode) ||
                           (static_cast<std::uint64_t>(st.st_size) == i.size &&
                            st.st_mtim.tv_sec == i.mtimeSec && st.st_mtim.tv_nsec == i.mtimeNsec));
        if (!same || !ours) {
            return Pending::Nothing;
        }
        i.size = static_cast<std::uint64_t>(st.st_size);
        i.mtimeSec = st.st_mtim.tv_sec;
        i.mtimeNsec = st.st_mtim.tv_nsec;
        i.moved = true;
        return Pending::Moved;
    }
    if (errno == ENOENT && ours &&
        ::unlinkat(trash.info.get(), lastComponent(i.infoPath).c_str(), 0) == 0) {
        return Pending::Orphan;
    }
    return Pending::Nothing;
}

} // namespace

std::vector<std::string> tidyTrashRecords() {
    std::vector<std::string> notes;
    const PrivateFolder undo = openUndoFolder();
    if (!undo.ok()) {
        return notes;
    }
    for (const std::string& name : recordNames(undo.fd.get())) {
        StoredRecord record;
        if (!loadRecord(undo.fd.get(), name, record).empty()) {
            continue; // being written, or not ours to change
        }
        bool changed = false;
        std::vector<TrashedItem> kept;
        for (TrashedItem i : record.contents.items) {
            if (i.moved) {
                kept.push_back(std::move(i));
                continue;
            }
            std::string why;
            switch (settle(i, why)) {
            case Pending::Moved:
                notes.push_back(i.originalPath +
                                ": was moved to the Trash by a clean that was stopped; it is "
                                "now in that clean's record");
                kept.push_back(std::move(i));
                changed = true;
                break;
            case Pending::Orphan:
                notes.push_back(i.infoPath + ": removed: the Trash's note for " + i.originalPath +
                                ", whose move to the Trash never happened (the clean was stopped)");
                changed = true;
                break;
            case Pending::Nothing:
                changed = true;
                break;
            case Pending::Unknown:
                kept.push_back(std::move(i)); // its drive is away: look again later
                break;
            }
        }
        if (changed || kept.empty()) {
            if (const std::string err = saveRecord(undo.fd.get(), record, kept); !err.empty()) {
                notes.push_back(undo.path + "/" + err);
            }
        }
    }
    return notes;
}

UndoReport undoNewestClean() {
    UndoReport r;
    r.notes = tidyTrashRecords();
    const PrivateFolder undo = openUndoFolder();
    if (!undo.ok()) {
        r.error = undo.error;
        return r;
    }
    const std::vector<std::string> names = recordNames(undo.fd.get());
    if (names.empty()) {
        r.error = "there is no clean to the Trash to undo (" + undo.path + " holds no record)";
        return r;
    }
    StoredRecord record;
    if (const std::string err = loadRecord(undo.fd.get(), names.back(), record); !err.empty()) {
        r.error = undo.path + "/" + err + "; nothing was restored";
        return r;
    }
    std::vector<TrashedItem> moved;
    std::vector<TrashedItem> kept;
    for (const TrashedItem& i : record.contents.items) {
        (i.moved ? moved : kept).push_back(i);
    }
    r.time = record.contents.time;
    r.count = moved.size();
    r.outcome = restoreFromTrash(moved);
    kept.insert(kept.end(), r.outcome.left.begin(), r.outcome.left.end());
    if (const std::string err = saveRecord(undo.fd.get(), record, kept); !err.empty()) {
        r.outcome.problems.push_back(undo.path + "/" + err);
    }
    return r;
}

bool hasCleanToUndo() {
    const PrivateFolder undo = openUndoFolder();
    return undo.ok() && !recordNames(undo.fd.get()).empty();
}

} // namespace twinsweep
