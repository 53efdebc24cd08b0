// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/AsideLeftovers.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "engine/Diagnostics.h"
#include "removal/Fd.h"

namespace twinsweep {

namespace {

constexpr std::string_view kPrefix = ".twinsweep-aside-";
constexpr std::size_t kNameMax = 255;

// The pid and the name in ".twinsweep-aside-<pid>-<n>-<name>"; false for any
// other entry, and for one cut to fit (its own name is not known whole).
bool parse(std::string_view entry, pid_t& pid, std::string& name) {
    if (entry.substr(0, kPrefix.size()) != kPrefix || entry.size() >= kNameMax) {
        return false;
    }
    entry.remove_prefix(kPrefix.size());
    const char* end = entry.data() + entry.size();
    const auto [afterPid, err] = std::from_chars(entry.data(), end, pid);
    if (err != std::errc() || pid <= 0 || afterPid == end || *afterPid != '-') {
        return false;
    }
    const std::string_view rest(afterPid + 1, static_cast<std::size_t>(end - afterPid - 1));
    const std::size_t counterEnd = rest.find('-');
    if (counterEnd == 0 || counterEnd == std::string_view::npos || counterEnd + 1 >= rest.size()) {
        return false;
    }
    name.assign(rest.substr(counterEnd + 1));
    return true;
}

// A process we may not signal is still one that runs.
bool running(pid_t pid) {
    return pid == ::getpid() || ::kill(pid, 0) == 0 || errno == EPERM;
}

} // namespace

std::string asideName(const std::string& name) {
    static std::atomic<unsigned> counter{0};
    std::string aside = std::string(kPrefix) + std::to_string(::getpid()) + "-" +
                        std::to_string(counter.fetch_add(1)) + "-" + name;
    if (aside.size() > kNameMax) {
        aside.resize(kNameMax);
    }
    return aside;
}

void putBackLeftovers(int folderFd, const std::string& path) {
    const int listFd = ::openat(folderFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* dir = listFd >= 0 ? ::fdopendir(listFd) : nullptr;
    if (dir == nullptr) {
        if (listFd >= 0) {
            ::close(listFd);
        }
        return;
    }
    std::vector<std::pair<std::string, std::string>> found; // aside entry, own name
    while (const dirent* e = ::readdir(dir)) {
        pid_t pid = 0;
        std::string name;
        if (parse(e->d_name, pid, name) && !running(pid)) {
            found.emplace_back(e->d_name, std::move(name));
        }
    }
    ::closedir(dir);
    for (const auto& [aside, name] : found) {
        const std::string at = (path == "/" ? "" : path) + "/";
        if (renameNoReplace(folderFd, aside, folderFd, name) == 0) {
            printErrorLine("Note:   ",
                           at + name + ": put back, left aside by a clean that was stopped");
        } else {
            printErrorLine("Note:   ",
                           at + aside +
                               ": left aside by a clean that was stopped, not put back as " + name +
                               ": " + std::strerror(errno));
        }
    }
}

} // namespace twinsweep
