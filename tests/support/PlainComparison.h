// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "engine/FileTools.h"

namespace twinsweep::testing {

// A whole search whose comparison is the plain loop: every file of an
// equal-size run digested whole when the loop first needs it, every pair's
// digests compared. Slow and plainly right: the groups, their order and the
// messages the engine's reading ahead must give. The walk, the size order and
// the collection are the engine's own phases.
FileList plainSearch(FileTools& tools, SearchContext& context,
                     const std::vector<std::string>& folders, bool ignorePackages);

} // namespace twinsweep::testing
