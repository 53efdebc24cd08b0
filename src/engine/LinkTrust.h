// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <set>
#include <string>
#include <sys/types.h>

#include "engine/WalkState.h"

namespace twinsweep {

// Whether a folder the walk reached through a symbolic link was chosen by
// someone the search may trust. A link that belongs to neither root nor the
// running user was planted by another user, who chose where it leads (the
// kernel's own protected_symlinks rule, for the walk). Root searching other
// users' trees also distrusts any link whose target lies outside the
// physical trees of the folders given: a root-owned link can be moved by the
// user owning its folder, and is judged again after it is followed.
class LinkTrust {
  public:
    // tops: the folders given, by identity.
    explicit LinkTrust(const std::set<DevIno>& tops);

    // What the link name (in the open folder dirFd) is, read before it is followed.
    struct Link {
        bool read = false;
        dev_t device = 0;
        ino_t inode = 0;
        uid_t owner = 0;
    };
    static Link read(int dirFd, const std::string& name);

    // Whether the folder open as target, reached through the link seen as
    // before, may be acted in: the link is still the one read, its owner is
    // trusted and (for root) target lies inside a folder given.
    bool trusted(const Link& before, int dirFd, const std::string& name, int target) const;

    // The same for the link name in dirFd, followed here.
    bool trustedEntry(int dirFd, const std::string& name) const;

  private:
    bool insideTops(int target) const;

    const std::set<DevIno>& tops_;
    uid_t user_;
};

} // namespace twinsweep
