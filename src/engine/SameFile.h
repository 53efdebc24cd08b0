// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace twinsweep {

// Tells whether two names may be one and the same file seen twice, so that
// it is never listed as its own copy and never vouches for itself.
//
// Known the same: the same device and inode (hard links, and a file or folder
// bind-mounted onto a second name, whatever its link count), or an item and
// its view through an overlay mount whose layers, as the mount options name
// them, hold the item at the same place.
//
// Not proven different: the two lie on different file systems and one of
// them may show another's files (an overlay, FUSE, a network file system:
// its layers or server may be the other). Layer names in mount options can
// be relative, renamed or hidden by a bind mount, so they never prove
// anything. The one proof taken: an overlay opens its real file when its
// view is opened, so while the view is held open, a write lease (which the
// kernel grants only on a file nobody else has open) on a plain file proves
// the plain file is not the view's real file.
//
// Reads the mount table once, when made.
class SameFile {
  public:
    SameFile();

    using DevIno = std::pair<std::uint64_t, std::uint64_t>;
    enum class Verdict { Different, Same, Unproven };

    // path: where the item was found (its folder may go through links);
    // device, inode: what lstat says of it there.
    // Whether one may be the other: true unless proven different. Removal
    // lets a kept copy vouch only when this is false.
    bool operator()(const std::string& pathA, DevIno a, const std::string& pathB, DevIno b) const {
        return check(pathA, a, pathB, b) != Verdict::Different;
    }
    Verdict check(const std::string& pathA, DevIno a, const std::string& pathB, DevIno b) const;
    // Known to be one file: the search lists it once.
    bool known(const std::string& pathA, DevIno a, const std::string& pathB, DevIno b) const;

    // Whether a file system of this type (as /proc/self/mountinfo names it)
    // may show files that live on another.
    static bool mayShowOthersFiles(const std::string& type);

  private:
    struct Overlay {
        std::uint64_t device;
        std::string mountPoint;
        std::vector<std::string> layers; // upper first, then the lower ones
    };
    enum class Kind { Plain, Overlay, Other }; // Other: may show others' files, no proof
    // The kind of file system the item at path (still a, checked) is on.
    Kind kindOf(const std::string& path, DevIno id) const;
    // The identities the item has in the layers under an overlay view of it.
    std::vector<DevIno> underneath(const std::string& path, DevIno id) const;
    std::vector<Overlay> overlays_;
    std::map<std::uint64_t, std::string> mountTypes_;  // by mount id
    std::map<std::uint64_t, std::string> deviceTypes_; // by device
};

} // namespace twinsweep
