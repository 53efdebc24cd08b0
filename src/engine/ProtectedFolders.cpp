#include "engine/ProtectedFolders.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>
#include <sys/stat.h>

namespace twinsweep {

namespace {

std::string_view withoutTrailingSlashes(std::string_view folder) {
    while (folder.size() > 1 && folder.back() == '/') {
        folder.remove_suffix(1);
    }
    return folder;
}

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return {};
    }
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

bool identityOfFolder(const std::string& path, std::pair<std::uint64_t, std::uint64_t>& out) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
        return false;
    }
    out = {static_cast<std::uint64_t>(st.st_dev), static_cast<std::uint64_t>(st.st_ino)};
    return true;
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
        std::pair<std::uint64_t, std::uint64_t> id;
        if (identityOfFolder(f, id)) {
            identities_.push_back(id);
        }
    }
}

bool ProtectedFolders::covers(const std::string& path) {
    for (const std::string& f : folders_) {
        // The copy lies in a protected folder, or (a package) holds one.
        if (isInsideFolder(path, f) || isInsideFolder(f, path)) {
            return true;
        }
    }
    return !identities_.empty() && folderCovered(parentOf(path));
}

bool ProtectedFolders::folderCovered(const std::string& folder) {
    if (folder.empty()) {
        return false;
    }
    if (const auto it = checkedFolders_.find(folder); it != checkedFolders_.end()) {
        return it->second;
    }
    // The real path has no links left, so its text ancestors are its real
    // ancestors; each is compared by identity, which also sees bind mounts.
    bool covered = false;
    std::unique_ptr<char, decltype(&std::free)> real(::realpath(folder.c_str(), nullptr),
                                                     &std::free);
    if (real) {
        for (std::string a = real.get(); !a.empty() && !covered; a = parentOf(a)) {
            std::pair<std::uint64_t, std::uint64_t> id;
            covered = identityOfFolder(a, id) &&
                      std::find(identities_.begin(), identities_.end(), id) != identities_.end();
            if (a == "/") {
                break;
            }
        }
    }
    checkedFolders_.emplace(folder, covered);
    return covered;
}

void applyProtection(FileList& groups, const std::vector<std::string>& folders) {
    if (folders.empty()) {
        return;
    }
    ProtectedFolders protectedFolders(folders);
    for (const FilePtr& g : groups) {
        for (const DuplicateFilePtr& m : g->duplicates) {
            m->isProtected = protectedFolders.covers(m->path);
        }
    }
    std::erase_if(groups, [](const FilePtr& g) { return onlyProtectedCopies(*g); });
}

bool isProtectedCopy(const DuplicateFile& member, const std::vector<std::string>& folders) {
    return member.isProtected ||
           std::any_of(folders.begin(), folders.end(), [&](const std::string& f) {
               return isInsideFolder(member.path, f) || isInsideFolder(f, member.path);
           });
}

bool onlyProtectedCopies(const File& group) {
    return std::all_of(group.duplicates.begin(), group.duplicates.end(),
                       [](const DuplicateFilePtr& m) { return m->isProtected; });
}

} // namespace twinsweep
