// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/File.h"
#include "export/ResultsExport.h"
#include "removal/Removal.h"

namespace twinsweep {

// What a clean (or a dry run) did with each member of the groups it was
// given, for its report: the groups as they were listed before the clean
// (which takes attempted members out of them), each member's mark, and the
// outcome of each marked one.
class CleanLog {
  public:
    CleanLog(const FileList& groups, bool dryRun, bool linking, bool sharing = false);

    // The outcome of one attempted member.
    void record(const DuplicateFile& member, const RemovalResult& result);

    // "removed", "linked", "shared", "would remove", "would link" or "would share".
    const char* doneWord() const;
    // "left" or "would be left".
    const char* leftWord() const;
    // The members removed, linked or shared (or that would be), in order;
    // not those whose storage was shared already.
    const std::vector<std::string>& done() const { return done_; }

    // {"dryRun":…,"removed"|"linked"|"shared":[paths],"bytesFreed":…,"failed":…,
    //  "groups":[{"path","size","members":[{"path","marked","outcome","reason",
    //  "protected","device","inode","mtime","mtimeNsec","folderDevice","folderInode"}]}]}
    // One group a line; "outcome" is doneWord(), leftWord() (with "reason"),
    // "already shared" for a copy whose storage was the kept copy's already,
    // "kept" for an unmarked member, "not reached" for a marked one the clean
    // stopped before. The identities as in writeJsonExport, so the report
    // of a dry run is a plan that twinsweep-cli --apply can act on.
    bool writeJson(std::uint64_t bytesFreed, std::int64_t failed, const ExportSink& sink) const;

  private:
    struct Outcome {
        bool ok = false;
        bool alreadyShared = false;
        std::string reason;
    };
    struct Group {
        std::string path;
        std::uint64_t size = 0;
        std::vector<DuplicateFilePtr> members;
    };
    bool dryRun_;
    bool linking_;
    bool sharing_;
    std::vector<Group> groups_;
    std::unordered_map<const DuplicateFile*, Outcome> outcomes_;
    std::vector<std::string> done_;
};

} // namespace twinsweep
