#pragma once

#include "selection/Cleaning.h"

namespace twinsweep {

// Removal as the platform does it: the user's Trash (the freedesktop Trash on
// Linux, with its .trashinfo record, so the file manager can put it back), or
// deletion for good. Works without an application object.
class PlatformRemover : public FileRemover {
  public:
    RemovalResult moveToTrash(const std::string& path) override;
    // A folder goes with everything in it; a symbolic link goes itself, never
    // what it points to.
    RemovalResult removeForGood(const std::string& path) override;
};

} // namespace twinsweep
