// SPDX-License-Identifier: GPL-3.0-or-later
// A package's size: every regular file below it, as one item of the walk.
#include <fcntl.h>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/Diagnostics.h"
#include "engine/FolderChain.h"
#include "engine/FolderListing.h"
#include "engine/WalkState.h"

namespace twinsweep {

namespace {

void appendName(std::string& path, const std::string& name) {
    if (path.empty() || path.back() != '/') {
        path.push_back('/');
    }
    path.append(name);
}

} // namespace

std::uint64_t FileTools::packageSize(const std::string& path) {
    return packageSizeAt(AT_FDCWD, path, path);
}

std::uint64_t FileTools::packageSizeAt(int parentFd, const std::string& name,
                                       const std::string& path) {
    // The same kind of walk as above, without filters: every regular file
    // counts, hidden ones included. A link back to a folder being summed
    // counts nothing.
    struct Level {
        std::unique_ptr<FolderListing> node;
        std::size_t next = 0;
        std::size_t pathLen = 0;
    };
    FolderChain chain(parentFd == AT_FDCWD ? std::make_shared<FolderFd>(AT_FDCWD)
                                           : std::make_shared<FolderFd>(::dup(parentFd)));
    std::set<DevIno> active;
    std::vector<Level> levels;
    std::string p = path;
    // Enters the folder n (relative to the innermost level); false when it
    // can't be listed or is being summed already.
    auto enter = [&](const std::string& n) {
        auto node = std::make_unique<FolderListing>();
        const int at = chain.fd();
        FolderFdPtr fd =
            at == -1 ? nullptr : gatherListing(*node, at, n.c_str(), p, nullptr, false);
        if (!fd) {
            diagnostics().report("Ooops! Something went wrong: ", p,
                                 at == -1 ? errno : node->error);
            return;
        }
        if (!active.insert({node->device, node->inode}).second) {
            return;
        }
        chain.push(std::move(fd), n, node->device, node->inode);
        levels.push_back({std::move(node), 0, p.size()});
    };
    enter(name);
    std::uint64_t total = 0;
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.node->entries.size()) {
            active.erase({level.node->device, level.node->inode});
            levels.pop_back();
            chain.pop();
            continue;
        }
        if (canceled()) {
            break;
        }
        const std::string& n = level.node->entries[level.next++].name;
        p.resize(level.pathLen);
        appendName(p, n);
        const int dirFd = chain.fd();
        struct stat target {};
        if (::fstatat(dirFd, n.c_str(), &target, 0) != 0) {
            continue; // vanished, or a broken link
        }
        if (S_ISDIR(target.st_mode)) {
            enter(n);
            continue;
        }
        struct stat own {};
        if (::fstatat(dirFd, n.c_str(), &own, AT_SYMLINK_NOFOLLOW) != 0) {
            diagnostics().report("Error: ", p, errno);
            continue;
        }
        total += static_cast<std::uint64_t>(own.st_size);
    }
    return total;
}

} // namespace twinsweep
