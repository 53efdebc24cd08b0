// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

#include "support/AccessWatch.h"
#include "support/Cli.h"
#include "support/TempTree.h"

namespace twinsweep::testing {

// Everything under root by relative path: a file's size and digest, a link's
// target (never followed), or the kind of anything else; then its owner
// ("uid:gid") and mode (a link: its owner).
using Snapshot = std::map<std::string, std::string>;
Snapshot snapshot(const std::string& root);

// How a snapshot shows a regular file holding bytes, with the owner and mode
// of what is at path now.
std::string fileEntry(const std::string& bytes, const std::string& path);

// Every item of before is unchanged in after, but those in gone, which are gone.
::testing::AssertionResult nothingLost(const Snapshot& before, const Snapshot& after,
                                       const std::set<std::string>& gone = {});

// Paths under root, relative to it.
std::string rel(const std::string& root, const std::string& path);
std::set<std::string> relSet(const std::string& root, const std::vector<std::string>& paths);

// Overwrites path with contents of the same length, keeping its inode.
void rewriteInPlace(const std::string& path, const std::string& contents);

// folder/a/x and folder/b/x, both holding bytes.
void twins(const TempTree& tree, const std::string& folder, const std::string& bytes);
// Gives path (not followed) to uid:uid; returns path.
std::string own(const std::string& path, uid_t uid);
std::string inodeOf(const std::string& path);
// Mounts a file system of type at at, or binds src there when type is null.
bool mountAt(const std::string& src, const std::string& at, const char* type,
             const std::string& data = {});

} // namespace twinsweep::testing
