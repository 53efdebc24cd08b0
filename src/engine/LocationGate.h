// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace twinsweep {

// The roots a search may look under. Tests are plain text prefixes (a path
// "/Users2/x" passes the "/Users" root), and the "Library" folder directly
// inside a home folder is skipped unless it lies on a volume.
struct LocationGate {
    std::vector<std::string> usersRoots;
    std::vector<std::string> applicationsRoots;
    std::vector<std::string> volumesRoots;
    bool open = false; // no gate at all

    // Whether the entry at path, whose last component is name, may be examined.
    bool allows(std::string_view path, std::string_view name) const;

    // Linux: /home, /opt, /media, /mnt, /run/media and the running user's
    // /run/user/UID/gvfs (the desktop's network shares). macOS: /Users, /Applications, /Volumes.
    static LocationGate platformDefault();
    // The macOS layout placed under prefix: prefix/Users, prefix/Applications, prefix/Volumes.
    static LocationGate macLayoutUnder(const std::string& prefix);
    // Everything passes.
    static LocationGate anywhere();

    // The gate that new engines start with; the platform default unless a
    // front end (tests, the command-line tool) sets another before a search.
    static LocationGate processDefault();
    static void setProcessDefault(const LocationGate& gate);
};

} // namespace twinsweep
