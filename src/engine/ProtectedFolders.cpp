// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ProtectedFolders.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/FolderRegistry.h"

namespace twinsweep {

namespace {

// Identities as the search records them (32-bit devices).
std::pair<std::uint64_t, std::uint64_t> idOf(std::uint64_t device, std::uint64_t inode) {
    return {static_cast<std::uint32_t>(device), inode};
}

std::string_view withoutTrailingSlashes(std::string_view folder) {
    while (folder.size() > 1 && folder.back() == '/') {
        folder.remove_suffix(1);
    }
    return folder;
}

// The folders read for the last set of protected folders, shared by the
// search that flags copies and the clean's last guard.
struct Cache {
    std::mutex lock;
    std::shared_ptr<const ProtectedFolders> folders;
};

Cache& cache() {
    static Cache c;
    return c;
}

} // namespace

bool isInsideFolder(std::string_view path, std::string_view folder) {
    folder = withoutTrailingSlashes(folder);
    if (folder == "/") {
        return !path.empty() && path.front() == '/';
    }
    if (folder.empty() || !path.starts_with(folder)) {
        return false;
    }
    return path.size() == folder.size() || path[folder.size()] == '/';
}

ProtectedFolders::ProtectedFolders(std::vector<std::string> folders)
    : folders_(std::move(folders)) {
    for (const std::string& f : folders_) {
        const int fd = ::open(f.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd >= 0) {
            collectHolders(fd);
            collectTree(fd); // closes fd
        }
    }
}

void ProtectedFolders::collectTree(int top) {
    // Depth first, one open folder per level; links are never followed, so
    // a folder counts only where it really lies (or is mounted).
    std::vector<DIR*> stack;
    const auto enter = [&](int fd) {
        struct stat st {};
        DIR* dir = nullptr;
        if (::fstat(fd, &st) == 0 && inside_.insert(idOf(st.st_dev, st.st_ino)).second) {
            dir = ::fdopendir(fd);
        }
        if (dir == nullptr) {
            ::close(fd); // seen already (a bind mount inside the tree), or unreadable
            return;
        }
        stack.push_back(dir);
    };
    enter(top);
    while (!stack.empty()) {
        DIR* dir = stack.back();
        const dirent* de = ::readdir(dir);
        if (de == nullptr) {
            ::closedir(dir);
            stack.pop_back();
            continue;
        }
        const char* n = de->d_name;
        if ((n[0] == '.' && (n[1] == '\0' || (n[1] == '.' && n[2] == '\0'))) ||
            (de->d_type != DT_DIR && de->d_type != DT_UNKNOWN)) {
            continue;
        }
        const int fd = ::openat(::dirfd(dir), n, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd >= 0) {
            enter(fd);
        }
    }
}

void ProtectedFolders::collectHolders(int top) {
    // Up through "..", where the folder really lies, whatever path named it.
    int fd = ::dup(top);
    struct stat st {};
    while (fd >= 0 && ::fstat(fd, &st) == 0) {
        const int up = ::openat(fd, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(fd);
        fd = up;
        struct stat parent {};
        if (fd < 0 || ::fstat(fd, &parent) != 0 ||
            (parent.st_dev == st.st_dev && parent.st_ino == st.st_ino)) {
            break; // the root
        }
        holders_.insert(idOf(parent.st_dev, parent.st_ino));
    }
    if (fd >= 0) {
        ::close(fd);
    }
}

bool ProtectedFolders::covers(const DuplicateFile& member) const {
    for (const std::string& f : folders_) {
        // The copy lies in a protected folder, or (a package) holds one.
        if (isInsideFolder(member.path, f) || isInsideFolder(f, member.path)) {
            return true;
        }
    }
    const FolderIdentity walked = FolderRegistry::at(member.folder);
    if (walked.known && inside_.contains(idOf(walked.device, walked.inode))) {
        return true;
    }
    // A package: a folder that is, or holds, a protected one. Its name is
    // read to tell it from a file whose inode number came free and was
    // given to such a folder since.
    const DevIno own = idOf(member.seen.device, member.seen.inode);
    struct stat st {};
    return member.seen.known && (inside_.contains(own) || holders_.contains(own)) &&
           ::lstat(member.path.c_str(), &st) == 0 && S_ISDIR(st.st_mode) &&
           idOf(st.st_dev, st.st_ino) == own;
}

void applyProtection(FileList& groups, const std::vector<std::string>& folders) {
    if (folders.empty()) {
        return;
    }
    // Read again at each search: folders made or mounted since count.
    auto protectedFolders = std::make_shared<const ProtectedFolders>(folders);
    {
        std::lock_guard guard(cache().lock);
        cache().folders = protectedFolders;
    }
    for (const FilePtr& g : groups) {
        for (const DuplicateFilePtr& m : g->duplicates) {
            m->isProtected = protectedFolders->covers(*m);
        }
    }
    std::erase_if(groups, [](const FilePtr& g) { return onlyProtectedCopies(*g); });
}

bool isProtectedCopy(const DuplicateFile& member, const std::vector<std::string>& folders) {
    if (member.isProtected) {
        return true;
    }
    if (folders.empty()) {
        return false;
    }
    std::shared_ptr<const ProtectedFolders> known;
    {
        std::lock_guard guard(cache().lock);
        if (!cache().folders || cache().folders->folders() != folders) {
            cache().folders = std::make_shared<const ProtectedFolders>(folders);
        }
        known = cache().folders;
    }
    return known->covers(member);
}

bool onlyProtectedCopies(const File& group) {
    return std::all_of(group.duplicates.begin(), group.duplicates.end(),
                       [](const DuplicateFilePtr& m) { return m->isProtected; });
}

} // namespace twinsweep
