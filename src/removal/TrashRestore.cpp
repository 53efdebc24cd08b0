// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/TrashRestore.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "removal/Trash.h"

namespace twinsweep {

namespace {

std::string readSmallFile(int fd) {
    std::string text;
    readAll(fd, text, 1u << 20);
    return text;
}

bool sameItem(const struct stat& st, const TrashedItem& i) {
    return static_cast<std::uint64_t>(st.st_dev) == i.device &&
           static_cast<std::uint64_t>(st.st_ino) == i.inode &&
           static_cast<std::uint64_t>(st.st_size) == i.size && st.st_mtim.tv_sec == i.mtimeSec &&
           st.st_mtim.tv_nsec == i.mtimeNsec;
}

// A folder that can't be opened as recorded is on a drive that is not
// mounted when what stands at its place now is on another device.
bool driveAbsent(std::string path, std::uint64_t device) {
    struct stat st {};
    while (::stat(path.c_str(), &st) != 0 && path != "/") {
        path = parentOf(path);
    }
    return static_cast<std::uint64_t>(st.st_dev) != device;
}

// Opens path and checks it is still the folder (device, inode) recorded.
Fd openCheckedFolder(const std::string& path, std::uint64_t device, std::uint64_t inode) {
    Fd fd(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat st {};
    if (fd.ok() &&
        (::fstat(fd.get(), &st) != 0 || static_cast<std::uint64_t>(st.st_dev) != device ||
         static_cast<std::uint64_t>(st.st_ino) != inode)) {
        fd.reset();
    }
    return fd;
}

// Drops the line of a restored folder from the Trash's directorysizes.
void forgetFolderSize(int trashFd, const std::string& name) {
    const Fd in(::openat(trashFd, "directorysizes", O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!in.ok()) {
        return;
    }
    const std::string text = readSmallFile(in.get());
    const std::string suffix = std::string(" ").append(Trash::percentEncoded(name));
    std::string kept;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        end = end == std::string::npos ? text.size() : end + 1;
        const std::string line = text.substr(start, end - start);
        const std::string bare = line.back() == '\n' ? line.substr(0, line.size() - 1) : line;
        if (!bare.ends_with(suffix)) {
            kept += line;
        }
        start = end;
    }
    const std::string temp = "directorysizes." + std::to_string(::getpid()) + ".tmp";
    const Fd out(::openat(trashFd, temp.c_str(),
                          O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (out.ok() && writeFully(out.get(), kept)) {
        ::renameat(trashFd, temp.c_str(), trashFd, "directorysizes");
    } else {
        ::unlinkat(trashFd, temp.c_str(), 0);
    }
}

} // namespace

CheckedTrash openTrashOf(const TrashedItem& item) {
    CheckedTrash t;
    const std::string filesPath = parentOf(item.filesPath);
    t.dir.reset(::open(parentOf(filesPath).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (t.dir.ok()) {
        t.files.reset(::openat(t.dir.get(), "files", O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
    }
    struct stat st {};
    if (!t.files.ok() || ::fstat(t.files.get(), &st) != 0 ||
        static_cast<std::uint64_t>(st.st_dev) != item.filesDevice ||
        static_cast<std::uint64_t>(st.st_ino) != item.filesInode || st.st_uid != ::geteuid()) {
        t.files.reset();
        t.absent = driveAbsent(filesPath, item.filesDevice);
        t.why = t.absent ? "its drive is not mounted"
                         : "its Trash folder " + filesPath + " is not the one of the clean";
        return t;
    }
    t.info.reset(::openat(t.dir.get(), "info", O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
    if (!t.info.ok()) {
        t.absent = false;
        t.why = parentOf(item.infoPath) + ": " + std::strerror(errno);
    }
    return t;
}

bool isOurTrashInfo(int infoFd, const TrashedItem& item) {
    const Fd info(::openat(infoFd, lastComponent(item.infoPath).c_str(),
                           O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat st {};
    return info.ok() && ::fstat(info.get(), &st) == 0 && S_ISREG(st.st_mode) &&
           st.st_uid == ::geteuid() &&
           readSmallFile(info.get()).find("\nDeletionDate=" + item.deletionDate + "\n") !=
               std::string::npos;
}

RestoreOutcome restoreFromTrash(const std::vector<TrashedItem>& items) {
    RestoreOutcome outcome;
    for (const TrashedItem& i : items) {
        const std::string& original = i.originalPath;
        const auto problem = [&](const std::string& why, bool retry) {
            outcome.problems.push_back(original + ": " + why + ", not restored");
            if (retry) {
                outcome.left.push_back(i);
            }
        };
        const CheckedTrash trash = openTrashOf(i);
        if (!trash.ok()) {
            problem(trash.why, trash.absent);
            continue;
        }
        const std::string name = lastComponent(i.filesPath);
        struct stat st {};
        if (::fstatat(trash.files.get(), name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
            problem(errno == ENOENT ? "no longer in the Trash" : std::strerror(errno), false);
            continue;
        }
        // The Trash may have been emptied and the name reused since.
        if (!sameItem(st, i) || !isOurTrashInfo(trash.info.get(), i)) {
            problem("the item of that name in the Trash is not the one this clean moved there",
                    false);
            continue;
        }
        const std::string folderPath = parentOf(original);
        const Fd folder = openCheckedFolder(folderPath, i.folderDevice, i.folderInode);
        if (!folder.ok()) {
            struct stat now {};
            const bool gone = ::stat(folderPath.c_str(), &now) != 0;
            problem(!gone ? "its folder was replaced since the clean"
                    : driveAbsent(folderPath, i.folderDevice) ? "its drive is not mounted"
                                                              : "its folder is missing",
                    true);
            continue;
        }
        if (::renameat2(trash.files.get(), name.c_str(), folder.get(),
                        lastComponent(original).c_str(), RENAME_NOREPLACE) != 0) {
            problem(errno == EEXIST ? std::string("its path is taken by another file")
                                    : std::string(std::strerror(errno)),
                    true);
            continue;
        }
        ::unlinkat(trash.info.get(), lastComponent(i.infoPath).c_str(), 0);
        if (S_ISDIR(st.st_mode)) {
            forgetFolderSize(trash.dir.get(), name);
        }
        outcome.restored.push_back(original);
    }
    return outcome;
}

} // namespace twinsweep
