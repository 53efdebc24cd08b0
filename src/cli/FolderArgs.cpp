// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FolderArgs.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <vector>

#include "engine/LocationGate.h"

namespace twinsweep::cli {

std::string absoluteFolder(const std::string& given, const std::string& cwd) {
    std::string path = !given.empty() && given.front() == '/' ? given : cwd + "/" + given;
    // Lexical clean-up, for a location root that does not exist (yet).
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start < path.size()) {
        std::size_t slash = path.find('/', start);
        if (slash == std::string::npos) {
            slash = path.size();
        }
        const std::string part = path.substr(start, slash - start);
        if (part == "..") {
            if (!parts.empty()) {
                parts.pop_back();
            }
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        start = slash + 1;
    }
    std::string out;
    for (const std::string& p : parts) {
        out += "/" + p;
    }
    return out.empty() ? "/" : out;
}

std::optional<std::string> physicalFolder(const std::string& given, const std::string& cwd) {
    const std::string path = !given.empty() && given.front() == '/' ? given : cwd + "/" + given;
    char* resolved = ::realpath(path.c_str(), nullptr);
    if (resolved == nullptr) {
        return std::nullopt;
    }
    std::string out(resolved);
    std::free(resolved);
    return out;
}

std::string checkedFolder(const std::string& given, const std::string& cwd, std::string& folder) {
    // An unset variable in a script must not mean the folder it runs in.
    if (given.empty()) {
        return "an empty folder name is not a folder";
    }
    // As the kernel resolves it: "link/.." is the parent of the link's
    // target, as `ls link/..` shows, and the output shows that folder.
    const auto physical = physicalFolder(given, cwd);
    if (!physical) {
        return "cannot use folder '" + given + "': " + std::strerror(errno);
    }
    folder = *physical;
    struct stat st {};
    if (::stat(folder.c_str(), &st) != 0) {
        return "cannot use folder '" + given + "': " + std::strerror(errno);
    }
    if (!S_ISDIR(st.st_mode)) {
        return "not a folder: '" + given + "'";
    }
    return {};
}

std::string outsideLocationsError(const LocationGate& gate,
                                  const std::vector<std::string>& folders) {
    if (gate.open) {
        return {};
    }
    for (const std::string& folder : folders) {
        // What lies in the folder has a path beginning with folder + "/" (the
        // walk joins names that way): searched when the gate lets that pass,
        // or down to the roots the folder holds.
        const std::string inside = folder == "/" ? folder : folder + "/";
        bool holdsRoot = false;
        std::string roots;
        for (const auto* kind : {&gate.usersRoots, &gate.applicationsRoots, &gate.volumesRoots}) {
            for (const std::string& root : *kind) {
                roots += (roots.empty() ? "" : ", ") + root;
                holdsRoot = holdsRoot || root.starts_with(inside);
            }
        }
        if (holdsRoot || gate.allows(inside, {})) {
            continue;
        }
        return folder + " is outside the searched locations (" + roots +
               "); add --any-location to search it";
    }
    return {};
}

} // namespace twinsweep::cli
