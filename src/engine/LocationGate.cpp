// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/LocationGate.h"

#include <mutex>
#include <unistd.h>

namespace twinsweep {

namespace {

bool startsWithAny(std::string_view path, const std::vector<std::string>& roots) {
    for (const std::string& root : roots) {
        if (path.starts_with(root)) {
            return true;
        }
    }
    return false;
}

std::string_view dropLastComponent(std::string_view path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string_view::npos) {
        return {};
    }
    return path.substr(0, slash);
}

std::mutex& defaultLock() {
    static std::mutex lock;
    return lock;
}

LocationGate& defaultGate() {
    static LocationGate gate = LocationGate::platformDefault();
    return gate;
}

} // namespace

bool LocationGate::allows(std::string_view path, std::string_view name) const {
    if (open) {
        return true;
    }
    if (startsWithAny(path, volumesRoots)) {
        return true;
    }
    if (!startsWithAny(path, usersRoots) && !startsWithAny(path, applicationsRoots)) {
        return false;
    }
    if (name == "Library") {
        const std::string_view grandParent = dropLastComponent(dropLastComponent(path));
        for (const std::string& root : usersRoots) {
            if (grandParent == root) {
                return false;
            }
        }
    }
    return true;
}

LocationGate LocationGate::platformDefault() {
#ifdef __APPLE__
    return macLayoutUnder("");
#else
    LocationGate gate;
    gate.usersRoots = {"/home"};
    gate.applicationsRoots = {"/opt"};
    // The desktop mounts removable disks under /run/media/USER and the
    // network shares the user opened under /run/user/UID/gvfs.
    gate.volumesRoots = {"/media", "/mnt", "/run/media",
                         "/run/user/" + std::to_string(::getuid()) + "/gvfs"};
    return gate;
#endif
}

LocationGate LocationGate::macLayoutUnder(const std::string& prefix) {
    std::string base = prefix;
    while (base.size() > 1 && base.back() == '/') {
        base.pop_back();
    }
    if (base == "/") {
        base.clear();
    }
    LocationGate gate;
    gate.usersRoots = {base + "/Users"};
    gate.applicationsRoots = {base + "/Applications"};
    gate.volumesRoots = {base + "/Volumes"};
    return gate;
}

LocationGate LocationGate::anywhere() {
    LocationGate gate;
    gate.open = true;
    return gate;
}

LocationGate LocationGate::processDefault() {
    std::lock_guard guard(defaultLock());
    return defaultGate();
}

void LocationGate::setProcessDefault(const LocationGate& gate) {
    std::lock_guard guard(defaultLock());
    defaultGate() = gate;
}

} // namespace twinsweep
