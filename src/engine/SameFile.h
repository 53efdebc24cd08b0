#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace twinsweep {

// Tells whether two names are one and the same file seen twice, so that it is
// never listed as its own copy and never vouches for itself: the same device
// and inode (hard links, and a file or folder bind-mounted onto a second name,
// whatever its link count), or an item and its view through an overlay mount
// (the overlay shows another device; its layers' entry at the same place is
// the item itself). Reads the overlay mounts once, when made.
class SameFile {
  public:
    SameFile();

    using DevIno = std::pair<std::uint64_t, std::uint64_t>;
    // path: where the item was found (its folder may go through links);
    // device, inode: what lstat says of it there.
    bool operator()(const std::string& pathA, DevIno a, const std::string& pathB, DevIno b) const;

  private:
    struct Overlay {
        std::uint64_t device;
        std::string mountPoint;
        std::vector<std::string> layers; // upper first, then the lower ones
    };
    // The identities the item has in the layers under an overlay view of it.
    std::vector<DevIno> underneath(const std::string& path, DevIno id) const;
    std::vector<Overlay> overlays_;
};

} // namespace twinsweep
