// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Apply.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <set>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "engine/FolderRegistry.h"
#include "export/PlanReader.h"
#include "removal/Fd.h"

namespace twinsweep::cli {

namespace {

constexpr std::uint64_t kMaxPlan = std::uint64_t{4} << 30;

using DevIno = std::pair<std::uint64_t, std::uint64_t>;

std::string readPlanText(const std::string& path, std::string& text) {
    // Never blocks on a FIFO or a device: only a regular file is read.
    const Fd fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat st {};
    if (!fd.ok() || ::fstat(fd.get(), &st) != 0) {
        return "cannot read plan '" + path + "': " + std::strerror(errno);
    }
    if (!S_ISREG(st.st_mode)) {
        return "plan '" + path + "' is not a regular file";
    }
    if (static_cast<std::uint64_t>(st.st_size) > kMaxPlan) {
        return "plan '" + path + "' is larger than 4 GiB";
    }
    char buf[65536];
    ssize_t n = 0;
    while ((n = ::read(fd.get(), buf, sizeof buf)) > 0 && text.size() <= kMaxPlan) {
        text.append(buf, static_cast<std::size_t>(n));
    }
    if (n < 0) {
        return "cannot read plan '" + path + "': " + std::strerror(errno);
    }
    return {};
}

std::set<DevIno> folderIdentities(const std::vector<std::string>& folders) {
    std::set<DevIno> tops;
    for (const std::string& f : folders) {
        struct stat st {};
        if (::stat(f.c_str(), &st) == 0) {
            tops.insert({st.st_dev, st.st_ino});
        }
    }
    return tops;
}

// Whether the open folder fd is one of tops or lies inside one, by walking
// ".." up to the root (identities, never path text).
bool insideTops(int fd, const std::set<DevIno>& tops) {
    Fd at(::fcntl(fd, F_DUPFD_CLOEXEC, 0));
    for (int depth = 0; at.ok() && depth < 4096; ++depth) {
        struct stat st {};
        struct stat up {};
        if (::fstat(at.get(), &st) != 0) {
            return false;
        }
        if (tops.count({st.st_dev, st.st_ino}) != 0) {
            return true;
        }
        Fd parent(::openat(at.get(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!parent.ok() || ::fstat(parent.get(), &up) != 0) {
            return false;
        }
        if (up.st_dev == st.st_dev && up.st_ino == st.st_ino) {
            return false; // the root
        }
        at = std::move(parent);
    }
    return false;
}

// Whether a symbolic link on the way to folder belongs to another user. The
// folder's identity is compared after this, so a path changed since is
// refused by the clean, not trusted here.
bool throughForeignLink(const std::string& folder) {
    const uid_t me = ::geteuid();
    for (std::size_t end = folder.find('/', 1);; end = folder.find('/', end + 1)) {
        const std::string prefix = folder.substr(0, end);
        struct stat st {};
        if (::lstat(prefix.c_str(), &st) == 0 && S_ISLNK(st.st_mode) && st.st_uid != 0 &&
            st.st_uid != me) {
            return true;
        }
        if (end == std::string::npos) {
            return false;
        }
    }
}

// The registry index of a member's folder: the identity the plan recorded,
// or 0 (not walked) when the folder is outside the folders given.
std::uint32_t registerFolder(const PlanMember& m, const std::set<DevIno>& tops) {
    if (!m.folderKnown) {
        return 0;
    }
    const std::string folder = parentOf(m.path);
    const Fd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat st {};
    if (fd.ok() && ::fstat(fd.get(), &st) == 0 &&
        DevIno(st.st_dev, st.st_ino) == DevIno(m.folderDevice, m.folderInode) &&
        !insideTops(fd.get(), tops)) {
        return 0;
    }
    // A folder that is gone or another one now is registered as recorded: the
    // clean then says it was replaced.
    return FolderRegistry::remember(m.folderDevice, m.folderInode, throughForeignLink(folder), 0,
                                    folder);
}

} // namespace

std::string loadPlan(const Options& options, FileList& groups) {
    std::string text;
    if (std::string err = readPlanText(options.planFile, text); !err.empty()) {
        return err;
    }
    std::vector<PlanGroup> plan;
    if (std::string err = readPlan(text, plan); !err.empty()) {
        return "plan '" + options.planFile + "' can't be used: " + err;
    }
    const std::set<DevIno> tops = folderIdentities(options.folders);
    std::map<std::pair<std::string, DevIno>, std::uint32_t> folders;
    groups.clear();
    for (PlanGroup& g : plan) {
        auto head =
            std::make_shared<File>(g.members.front().path, g.members.front().seen, File::Seen{});
        head->size = g.size;
        head->wasFound = true;
        for (PlanMember& m : g.members) {
            auto member = std::make_shared<DuplicateFile>(m.path, m.date, m.marked ? 1 : 0);
            member->seen = m.seen;
            member->isProtected = m.isProtected;
            if (member->isProtected) {
                member->checkState = 0;
            }
            const auto key =
                std::make_pair(parentOf(m.path), DevIno(m.folderDevice, m.folderInode));
            const auto found = folders.find(key);
            member->folder =
                found != folders.end() ? found->second : (folders[key] = registerFolder(m, tops));
            head->duplicates.push_back(std::move(member));
        }
        head->folder = head->duplicates.front()->folder;
        groups.push_back(std::move(head));
    }
    return {};
}

} // namespace twinsweep::cli
