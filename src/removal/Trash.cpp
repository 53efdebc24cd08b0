// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/Trash.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <pwd.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "removal/Fd.h"
#include "removal/TreeWalk.h"

namespace twinsweep {

// The freedesktop Trash; macOS has the system's own (see PlatformRemover).
#ifndef __APPLE__
namespace {

// Enough other names for any real clash; never an endless search.
constexpr int kNameTries = 200;
constexpr std::size_t kMaxName = 255;
const std::string kInfoSuffix = ".trashinfo";

RemovalResult failure(const std::string& path, const std::string& why) {
    RemovalResult r;
    r.ok = false;
    r.error = path + ": " + why;
    return r;
}

std::string errorText(int err) {
    return std::strerror(err);
}

// A Trash folder opened with its files/ and info/ folders.
struct OpenTrash {
    std::string path;
    std::string topdir; // "" for the home Trash (Path= is absolute there)
    Fd dir;
    Fd files;
    Fd info;
};

// Opens trash (an already open, checked folder) and its two subfolders.
bool openParts(OpenTrash& t, std::string& why) {
    struct stat st {};
    if (::fstat(t.dir.get(), &st) != 0 || st.st_uid != ::geteuid()) {
        why = t.path + " does not belong to you";
        return false;
    }
    t.files.reset(openOrMakeFolderAt(t.dir.get(), "files"));
    if (!t.files.ok()) {
        why = t.path + "/files: " + errorText(errno);
        return false;
    }
    t.info.reset(openOrMakeFolderAt(t.dir.get(), "info"));
    if (!t.info.ok()) {
        why = t.path + "/info: " + errorText(errno);
        return false;
    }
    return true;
}

bool sameMount(int fdA, int fdB) {
    struct statx a {};
    struct statx b {};
    const unsigned mask = STATX_INO | STATX_MNT_ID;
    if (::statx(fdA, "", AT_EMPTY_PATH, mask, &a) != 0 ||
        ::statx(fdB, "", AT_EMPTY_PATH, mask, &b) != 0) {
        return false;
    }
    if (a.stx_dev_major != b.stx_dev_major || a.stx_dev_minor != b.stx_dev_minor) {
        return false;
    }
    // A rename across two mounts of one file system fails as well.
    return (a.stx_mask & b.stx_mask & STATX_MNT_ID) == 0 || a.stx_mnt_id == b.stx_mnt_id;
}

std::uint64_t mountOf(const std::string& path, bool& ok) {
    struct statx sx {};
    ok = ::statx(AT_FDCWD, path.c_str(), 0, STATX_MNT_ID, &sx) == 0;
    if (ok && (sx.stx_mask & STATX_MNT_ID) != 0) {
        return sx.stx_mnt_id;
    }
    return (static_cast<std::uint64_t>(sx.stx_dev_major) << 32) | sx.stx_dev_minor;
}

std::string realPathOf(int fd) {
    char buf[PATH_MAX];
    const std::string link = "/proc/self/fd/" + std::to_string(fd);
    const ssize_t n = ::readlink(link.c_str(), buf, sizeof buf);
    return n > 0 && buf[0] == '/' ? std::string(buf, static_cast<std::size_t>(n)) : std::string();
}

// The mount point above folder: its highest ancestor on the same mount.
std::string topdirOf(const std::string& folder) {
    bool ok = false;
    const std::uint64_t mount = mountOf(folder, ok);
    if (!ok) {
        return {};
    }
    std::string top = folder;
    while (top != "/") {
        const std::string up = parentOf(top);
        bool upOk = false;
        if (mountOf(up, upOk) != mount || !upOk) {
            break;
        }
        top = up;
    }
    return top;
}

// $topdir/.Trash/$uid when .Trash is a real folder with the sticky bit, else
// $topdir/.Trash-$uid.
bool openTopdirTrash(const std::string& topdir, OpenTrash& t, std::string& why) {
    const Fd top(::open(topdir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!top.ok()) {
        why = topdir + ": " + errorText(errno);
        return false;
    }
    const std::string uid = std::to_string(::geteuid());
    const std::string base = topdir == "/" ? "" : topdir;
    struct stat st {};
    if (::fstatat(top.get(), ".Trash", &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(st.st_mode) &&
        (st.st_mode & S_ISVTX) != 0) {
        const Fd shared(::openat(top.get(), ".Trash", O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
        if (shared.ok()) {
            t.dir.reset(openOrMakeFolderAt(shared.get(), uid));
            t.path = base + "/.Trash/" + uid;
            if (t.dir.ok() && openParts(t, why)) {
                return true;
            }
        }
    }
    t.dir.reset(openOrMakeFolderAt(top.get(), ".Trash-" + uid));
    t.path = base + "/.Trash-" + uid;
    if (!t.dir.ok()) {
        why = t.path + ": " + errorText(errno);
        return false;
    }
    return openParts(t, why);
}

// The Trash for an item of folderFd whose folder path is folder.
bool openTrashFor(int folderFd, const std::string& folder, OpenTrash& t, std::string& why) {
    const std::string home = Trash::homePath();
    if (!home.empty()) {
        t.dir.reset(openOrMakeFolder(home));
        t.path = home;
        if (t.dir.ok() && sameMount(t.dir.get(), folderFd)) {
            return openParts(t, why);
        }
        if (!t.dir.ok()) {
            why = home + ": " + errorText(errno);
        }
    }
    const std::string topdir = topdirOf(folder);
    std::string topWhy;
    OpenTrash other;
    if (!topdir.empty() && openTopdirTrash(topdir, other, topWhy) &&
        sameMount(other.dir.get(), folderFd)) {
        t = std::move(other);
        t.topdir = topdir;
        return true;
    }
    why = "it is on another file system than your Trash" +
          (why.empty() ? std::string() : " (" + why + ")") + ", and " +
          (topdir.empty() ? folder : topdir) + " has no Trash you can use" +
          (topWhy.empty() ? std::string() : " (" + topWhy + ")") +
          "; it would have to be copied, which is not done";
    return false;
}

std::string localTimeText() {
    const std::time_t now = std::time(nullptr);
    std::tm tm{};
    ::localtime_r(&now, &tm);
    char buf[32];
    std::strftime(buf, sizeof buf, "%Y-%m-%dT%H:%M:%S", &tm);
    return buf;
}

// The name to try in the Trash: the item's own name, then name_2, name_3,
// ..., shortened (at a character boundary) so the record's name fits.
std::string candidateName(const std::string& base, int attempt) {
    const std::string suffix =
        attempt == 0 ? std::string() : std::string("_").append(std::to_string(attempt + 1));
    std::string stem = base;
    const std::size_t room = kMaxName - kInfoSuffix.size() - suffix.size();
    if (stem.size() > room) {
        stem.resize(room);
        while (!stem.empty() && (static_cast<unsigned char>(stem.back()) & 0xC0) == 0x80) {
            stem.pop_back();
        }
        if (!stem.empty() && (static_cast<unsigned char>(stem.back()) & 0xC0) == 0xC0) {
            stem.pop_back();
        }
    }
    return stem + suffix;
}

// Adds "size mtime name" for a trashed folder; the file is replaced whole so
// a reader never sees half a line.
void noteFolderSize(const OpenTrash& t, const std::string& name, std::uint64_t size) {
    struct stat info {};
    if (::fstatat(t.info.get(), (name + kInfoSuffix).c_str(), &info, 0) != 0) {
        return;
    }
    std::string text;
    if (const Fd old(::openat(t.dir.get(), "directorysizes", O_RDONLY | O_CLOEXEC)); old.ok()) {
        char buf[65536];
        ssize_t n = 0;
        while ((n = ::read(old.get(), buf, sizeof buf)) > 0) {
            text.append(buf, static_cast<std::size_t>(n));
        }
    }
    text += std::to_string(size) + " " + std::to_string(info.st_mtim.tv_sec) + " " +
            Trash::percentEncoded(name) + "\n";
    const std::string temp = "directorysizes." + std::to_string(::getpid()) + ".tmp";
    const Fd out(::openat(t.dir.get(), temp.c_str(),
                          O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!out.ok()) {
        return;
    }
    if (writeFully(out.get(), text) && ::fsync(out.get()) == 0 &&
        ::renameat(t.dir.get(), temp.c_str(), t.dir.get(), "directorysizes") == 0) {
        return;
    }
    ::unlinkat(t.dir.get(), temp.c_str(), 0);
}

} // namespace
#endif

std::string Trash::homePath() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome != nullptr && dataHome[0] == '/') {
        return std::string(dataHome) + "/Trash";
    }
    const char* home = std::getenv("HOME");
    std::string h = home != nullptr ? home : "";
    if (h.empty() || h[0] != '/') {
        if (const passwd* pw = ::getpwuid(::geteuid()); pw != nullptr && pw->pw_dir != nullptr) {
            h = pw->pw_dir;
        }
    }
    // A relative home would put the Trash wherever the program happens to run.
    if (h.empty() || h[0] != '/') {
        return {};
    }
    return (h == "/" ? std::string() : h) + "/.local/share/Trash";
}

std::string Trash::percentEncoded(const std::string& bytes) {
    static const char* hex = "0123456789ABCDEF";
    std::string out;
    out.reserve(bytes.size());
    for (const char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        const bool keep = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                          (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_' || c == '~' ||
                          c == '/';
        if (keep) {
            out += ch;
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return out;
}

#ifndef __APPLE__
RemovalResult Trash::moveAt(int folderFd, const std::string& entry, const std::string& originalPath,
                            TrashJournal* journal) {
    struct stat st {};
    struct stat folderSt {};
    if (::fstatat(folderFd, entry.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0 ||
        ::fstat(folderFd, &folderSt) != 0) {
        return failure(originalPath, errorText(errno));
    }
    // The folder's own path, without links, is where its mount's top lies
    // and what a Trash on that mount records relative to its top.
    std::string folder = realPathOf(folderFd);
    if (folder.empty()) {
        folder = parentOf(originalPath);
    }
    OpenTrash t;
    std::string why;
    if (!openTrashFor(folderFd, folder, t, why)) {
        return failure(originalPath,
                       "can't be moved to the Trash: " + why + "; nothing was removed");
    }
    std::string recorded = originalPath;
    if (!t.topdir.empty()) {
        const std::string real = (folder == "/" ? "" : folder) + "/" + lastComponent(originalPath);
        const std::string top = t.topdir == "/" ? "" : t.topdir;
        if (real.compare(0, top.size() + 1, top + "/") == 0) {
            recorded = real.substr(top.size() + 1);
        }
    }
    const std::string date = localTimeText();
    const std::string record =
        "[Trash Info]\nPath=" + percentEncoded(recorded) + "\nDeletionDate=" + date + "\n";
    struct stat filesSt {};
    if (::fstat(t.files.get(), &filesSt) != 0) {
        return failure(originalPath, t.path + "/files: " + errorText(errno));
    }
    TrashedItem item;
    item.originalPath = originalPath;
    item.deletionDate = date;
    item.folderDevice = folderSt.st_dev;
    item.folderInode = folderSt.st_ino;
    item.filesDevice = filesSt.st_dev;
    item.filesInode = filesSt.st_ino;
    item.device = st.st_dev;
    item.inode = st.st_ino;
    item.size = static_cast<std::uint64_t>(st.st_size);
    item.mtimeSec = st.st_mtim.tv_sec;
    item.mtimeNsec = st.st_mtim.tv_nsec;
    const std::uint64_t folderSize = S_ISDIR(st.st_mode) ? treeSizeAt(folderFd, entry) : 0;
    const std::string base = lastComponent(originalPath);

    for (int attempt = 0; attempt < kNameTries; ++attempt) {
        const std::string name = candidateName(base, attempt);
        const std::string infoName = name + kInfoSuffix;
        item.filesPath = t.path + "/files/" + name;
        item.infoPath = t.path + "/info/" + infoName;
        struct stat taken {};
        if (::fstatat(t.info.get(), infoName.c_str(), &taken, AT_SYMLINK_NOFOLLOW) == 0) {
            continue; // another item's record: never noted as ours
        }
        if (journal != nullptr) {
            if (const std::string why = journal->note(item); !why.empty()) {
                return failure(originalPath, "can't keep the record to undo this (" + why +
                                                 "); nothing was removed");
            }
        }
        // The record is made first and exclusively: it claims the name.
        Fd info(::openat(t.info.get(), infoName.c_str(),
                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!info.ok()) {
            if (errno == EEXIST) {
                continue;
            }
            return failure(originalPath, "can't write its record in " + t.path + "/info (" +
                                             errorText(errno) + "); nothing was removed");
        }
        const bool written = writeFully(info.get(), record) && ::fsync(info.get()) == 0;
        const int writeErr = errno;
        const bool closed = ::close(info.release()) == 0;
        if (!written || !closed) {
            ::unlinkat(t.info.get(), infoName.c_str(), 0);
            return failure(originalPath, "can't write its record in " + t.path + "/info (" +
                                             errorText(written ? errno : writeErr) +
                                             "); nothing was removed");
        }
        if (renameNoReplace(folderFd, entry, t.files.get(), name) != 0) {
            const int err = errno;
            ::unlinkat(t.info.get(), infoName.c_str(), 0);
            if (err == EEXIST) {
                continue; // a leftover in files/ without a record
            }
            return failure(originalPath, "can't be moved to " + t.path + " (" + errorText(err) +
                                             "); nothing was removed");
        }
        ::fsync(t.files.get());
        if (S_ISDIR(st.st_mode)) {
            noteFolderSize(t, name, folderSize);
        }
        RemovalResult r;
        // As it lies in the Trash now: a folder's times may move with its parent.
        struct stat moved {};
        if (::fstatat(t.files.get(), name.c_str(), &moved, AT_SYMLINK_NOFOLLOW) == 0) {
            item.size = static_cast<std::uint64_t>(moved.st_size);
            item.mtimeSec = moved.st_mtim.tv_sec;
            item.mtimeNsec = moved.st_mtim.tv_nsec;
        }
        item.moved = true;
        if (journal != nullptr) {
            if (const std::string why = journal->note(item); !why.empty()) {
                r.error = originalPath +
                          ": moved to the Trash, but its record to undo this "
                          "could not be completed (" +
                          why + ")";
            }
        }
        r.trashed = item;
        return r;
    }
    return failure(originalPath,
                   "the Trash holds too many items of this name; nothing was removed");
}

#endif

} // namespace twinsweep
