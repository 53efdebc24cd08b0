// The folder walk: lists folders, applies the location gate, hidden names,
// packages, the extension filter and the size range, and posts progress per
// entry. One open per folder, one stat per entry at most, relative to the
// folder's descriptor.
#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/Diagnostics.h"
#include "engine/FolderRegistry.h"
#include "engine/WalkState.h"

namespace twinsweep {

namespace {

const char* const kOoops = "Ooops! Something went wrong: ";

struct Entry {
    std::string name;
    unsigned char type;
    std::uint32_t folder; // index into the opened folders of this level
};

std::string joinPath(const std::string& folder, const std::string& name) {
    std::string p;
    p.reserve(folder.size() + 1 + name.size());
    p.append(folder);
    if (p.empty() || p.back() != '/') {
        p.push_back('/');
    }
    p.append(name);
    return p;
}

DevIno devIno(const struct stat& st) {
    return {static_cast<std::uint64_t>(st.st_dev), static_cast<std::uint64_t>(st.st_ino)};
}

FileIdentity identityFromStat(const struct stat& st) {
    FileIdentity id;
    id.device = static_cast<std::uint32_t>(st.st_dev);
    id.inode = static_cast<std::uint64_t>(st.st_ino);
    id.size = static_cast<std::uint64_t>(st.st_size);
#ifdef __APPLE__
    id.mtimeSec = st.st_mtimespec.tv_sec;
    id.mtimeNsec = static_cast<std::int32_t>(st.st_mtimespec.tv_nsec);
#else
    id.mtimeSec = st.st_mtim.tv_sec;
    id.mtimeNsec = static_cast<std::int32_t>(st.st_mtim.tv_nsec);
#endif
    id.known = true;
    return id;
}

// Opens the folder name relative to parentFd, following links.
DIR* openFolder(int parentFd, const std::string& name, struct stat& st) {
    const int fd = ::openat(parentFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return nullptr;
    }
    if (::fstat(fd, &st) != 0) {
        const int err = errno;
        ::close(fd);
        errno = err;
        return nullptr;
    }
    DIR* dir = ::fdopendir(fd);
    if (dir == nullptr) {
        const int err = errno;
        ::close(fd);
        errno = err;
    }
    return dir;
}

// Appends the entries of dir (without "." and ".."); false with errno on failure.
bool readEntries(DIR* dir, std::uint32_t folder, std::vector<Entry>& out) {
    errno = 0;
    while (const dirent* de = ::readdir(dir)) {
        const char* n = de->d_name;
        if (n[0] == '.' && (n[1] == '\0' || (n[1] == '.' && n[2] == '\0'))) {
            continue;
        }
        out.push_back({std::string(n), de->d_type, folder});
    }
    return errno == 0;
}

enum class Kind { Skip, Folder, Regular };

// What an entry is, following a link for the existence and folder tests. A
// link to anything but a folder is skipped: it is not a copy of its own, and
// its target is found where it lives. FIFOs, sockets and devices are skipped
// so nothing ever blocks on them.
Kind classify(int dirFd, const Entry& e, struct stat& st, bool& haveLstat) {
    haveLstat = false;
    unsigned char type = e.type;
    if (type == DT_UNKNOWN) {
        if (::fstatat(dirFd, e.name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
            return Kind::Skip;
        }
        if (S_ISDIR(st.st_mode)) {
            return Kind::Folder;
        }
        if (S_ISREG(st.st_mode)) {
            haveLstat = true;
            return Kind::Regular;
        }
        if (!S_ISLNK(st.st_mode)) {
            return Kind::Skip;
        }
        type = DT_LNK;
    }
    switch (type) {
    case DT_DIR:
        return Kind::Folder;
    case DT_REG:
        return Kind::Regular;
    case DT_LNK: {
        struct stat target {};
        if (::fstatat(dirFd, e.name.c_str(), &target, 0) != 0) {
            return Kind::Skip; // broken link
        }
        return S_ISDIR(target.st_mode) ? Kind::Folder : Kind::Skip;
    }
    default:
        return Kind::Skip;
    }
}

} // namespace

void FileTools::scanFolders(const std::vector<std::string>& folders, bool ignorePackages,
                            const std::vector<std::string>& extensions, std::uint64_t minimum,
                            std::uint64_t maximum) {
    if (!walk_) {
        walk_ = std::make_unique<WalkState>();
    }
    std::vector<Folder> list;
    list.reserve(folders.size());
    for (const std::string& f : folders) {
        list.push_back({f, AT_FDCWD, f});
    }
    const WalkFilter filter{ignorePackages, &extensions, minimum, maximum};
    walkFolders(list, filter);
    postWalkProgress();
}

void FileTools::walkFolders(const std::vector<Folder>& folders, const WalkFilter& filter) {
    if (canceled()) {
        return;
    }
    ++walk_->depth;
    struct Opened {
        DIR* dir;
        const Folder* folder;
        std::uint32_t identity; // FolderRegistry index
    };
    std::vector<Opened> opened;
    std::vector<Entry> work;
    auto closeAll = [&] {
        for (const Opened& o : opened) {
            ::closedir(o.dir);
        }
        --walk_->depth;
    };

    // Listing phase: every folder of this call is listed before any entry is
    // examined; one failure means nothing of this call is examined.
    for (std::size_t k = 0; k < folders.size(); ++k) {
        if (k > 0 && canceled()) {
            closeAll();
            return;
        }
        struct stat st {};
        DIR* dir = openFolder(folders[k].parentFd, folders[k].nameInParent, st);
        if (dir == nullptr) {
            const int err = errno;
            // A subfolder that vanished since its parent was listed is skipped
            // silently, like a vanished file; a missing top folder is reported.
            if (err != ENOENT || walk_->depth == 1) {
                printErrorLine(kOoops, folders[k].path, err);
            }
            closeAll();
            return;
        }
        if (!walk_->folders.insert(devIno(st)).second) {
            ::closedir(dir); // walked already under another path
            continue;
        }
        const std::size_t first = work.size();
        if (!readEntries(dir, static_cast<std::uint32_t>(opened.size()), work)) {
            printErrorLine(kOoops, folders[k].path, errno);
            ::closedir(dir);
            closeAll();
            return;
        }
        std::sort(work.begin() + static_cast<std::ptrdiff_t>(first), work.end(),
                  [](const Entry& a, const Entry& b) { return a.name < b.name; });
        opened.push_back(
            {dir, &folders[k], FolderRegistry::remember(devIno(st).first, devIno(st).second)});
    }

    // Entry phase.
    const auto& extensions = *filter.extensions;
    for (const Entry& e : work) {
        postWalkProgress();
        if (canceled()) {
            closeAll();
            return;
        }
        const Folder& parent = *opened[e.folder].folder;
        const int dirFd = ::dirfd(opened[e.folder].dir);
        std::string p = joinPath(parent.path, e.name);
        if (!locationGate.allows(p, e.name)) {
            continue;
        }
        if (e.name.front() == '.') {
            continue;
        }
        const std::string ext = extensionOf(e.name);
        const bool isPackageExt = packageSet_.contains(ext);
        if (filter.ignorePackages && isPackageExt) {
            continue;
        }
        struct stat st {};
        bool haveLstat = false;
        const Kind kind = classify(dirFd, e, st, haveLstat);
        if (kind == Kind::Skip) {
            continue;
        }
        if (canceled()) {
            closeAll();
            return;
        }
        const bool takeAsPackage = !filter.ignorePackages && isPackageExt;
        if (kind == Kind::Folder && !takeAsPackage) {
            walkFolders({Folder{std::move(p), dirFd, e.name}}, filter);
            postWalkProgress();
            continue;
        }
        if (!extensions.empty() &&
            std::find(extensions.begin(), extensions.end(), ext) == extensions.end()) {
            continue;
        }
        if (takeAsPackage) {
            // A package is one item; if its folder was taken or walked already
            // under another path it is not taken again.
            struct stat target {};
            if (kind == Kind::Folder) {
                if (::fstatat(dirFd, e.name.c_str(), &target, 0) != 0 ||
                    !walk_->folders.insert(devIno(target)).second) {
                    continue;
                }
            }
            struct stat own {};
            if (::fstatat(dirFd, e.name.c_str(), &own, AT_SYMLINK_NOFOLLOW) != 0) {
                continue;
            }
            auto file = std::make_shared<File>(std::move(p), identityFromStat(own), File::Seen{});
            file->folder = opened[e.folder].identity;
            file->size = packageSize(file->path);
            if (file->size >= filter.minimum && file->size <= filter.maximum) {
                fileList.push_back(std::move(file));
            }
            continue;
        }
        if (!haveLstat && ::fstatat(dirFd, e.name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
            continue; // vanished since the listing
        }
        if (!S_ISREG(st.st_mode)) {
            continue; // replaced by something else since the listing
        }
        const auto size = static_cast<std::uint64_t>(st.st_size);
        if (size < filter.minimum || size > filter.maximum) {
            continue;
        }
        if (st.st_nlink > 1 && !walk_->linkedFiles.insert(devIno(st)).second) {
            continue; // the same file under a second name
        }
        auto file = std::make_shared<File>(std::move(p), identityFromStat(st), File::Seen{});
        file->folder = opened[e.folder].identity;
        fileList.push_back(std::move(file));
    }
    closeAll();
}

std::uint64_t FileTools::packageSize(const std::string& path) {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> active;
    return packageSizeAt(AT_FDCWD, path, path, active);
}

std::uint64_t
FileTools::packageSizeAt(int parentFd, const std::string& name, const std::string& path,
                         std::vector<std::pair<std::uint64_t, std::uint64_t>>& active) {
    struct stat st {};
    DIR* dir = openFolder(parentFd, name, st);
    if (dir == nullptr) {
        printErrorLine(kOoops, path, errno);
        return 0;
    }
    const DevIno id = devIno(st);
    if (std::find(active.begin(), active.end(), id) != active.end()) {
        ::closedir(dir); // a link back to a folder being summed
        return 0;
    }
    std::vector<Entry> entries;
    if (!readEntries(dir, 0, entries)) {
        printErrorLine(kOoops, path, errno);
        ::closedir(dir);
        return 0;
    }
    active.push_back(id);
    const int dirFd = ::dirfd(dir);
    std::uint64_t total = 0;
    for (const Entry& e : entries) {
        if (canceled()) {
            break;
        }
        struct stat target {};
        if (::fstatat(dirFd, e.name.c_str(), &target, 0) != 0) {
            continue; // vanished, or a broken link
        }
        if (S_ISDIR(target.st_mode)) {
            total += packageSizeAt(dirFd, e.name, joinPath(path, e.name), active);
            continue;
        }
        struct stat own {};
        if (::fstatat(dirFd, e.name.c_str(), &own, AT_SYMLINK_NOFOLLOW) != 0) {
            printErrorLine("Error: ", joinPath(path, e.name), errno);
            continue;
        }
        total += static_cast<std::uint64_t>(own.st_size);
    }
    active.pop_back();
    ::closedir(dir);
    return total;
}

} // namespace twinsweep
