// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "cli/Options.h"
#include "engine/File.h"

namespace twinsweep::cli {

// Reads the plan of --apply and rebuilds its groups as a search would have
// left them: each member with the identity the plan recorded, its mark, and
// its folder registered (FolderRegistry) with the identity the plan recorded,
// so the clean's checks compare what is there now with what the plan saw.
// A member's folder is registered as not walked (its copy is left, never
// vouches) when the folder it names is not, by identity, inside one of the
// folders given on the command line; as reached through another user's link
// when a symbolic link on its path belongs to neither root nor the running
// user. Returns the reason a plan can't be used ("" when groups were made).
std::string loadPlan(const Options& options, FileList& groups);

} // namespace twinsweep::cli
