// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/File.h"

namespace twinsweep {

// One member of a plan: what the export or the report of a clean recorded.
struct PlanMember {
    std::string path;
    std::string date;
    bool marked = false;
    bool isProtected = false;
    FileIdentity seen; // known == false when the plan has no "identity"
    bool folderKnown = false;
    std::uint64_t folderDevice = 0;
    std::uint64_t folderInode = 0;
};

struct PlanGroup {
    std::string path;
    std::uint64_t size = 0;
    std::vector<PlanMember> members;
};

// Reads the JSON that writeJsonExport (with marks) or CleanLog::writeJson
// writes: {"groups":[{"path","size","members":[{"path","marked",
// "device","inode","mtime","mtimeNsec","folderDevice","folderInode",…}]}]}.
// Strict: any other JSON shape, a duplicate key, a number that is not a whole
// number in range, a group of fewer than two members, a member without
// "marked" or a relative path is refused with the reason
// (returned; "" when the plan was read). Other keys are ignored. Strings take
// \udcXX back to the byte XX, as jsonString writes bytes that are not UTF-8.
std::string readPlan(std::string_view text, std::vector<PlanGroup>& groups);

} // namespace twinsweep
