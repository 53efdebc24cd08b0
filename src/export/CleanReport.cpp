// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/CleanReport.h"

#include "export/Chunked.h"

namespace twinsweep {

CleanLog::CleanLog(const FileList& groups, bool dryRun, bool linking, bool sharing)
    : dryRun_(dryRun), linking_(linking), sharing_(sharing) {
    groups_.reserve(groups.size());
    for (const FilePtr& g : groups) {
        groups_.push_back({g->path, g->size, g->duplicates});
    }
}

void CleanLog::record(const DuplicateFile& member, const RemovalResult& result) {
    outcomes_[&member] = {result.ok, result.alreadyShared,
                          result.ok ? std::string() : result.error};
    if (result.ok && !result.alreadyShared) {
        done_.push_back(member.path);
    }
}

const char* CleanLog::doneWord() const {
    if (sharing_) {
        return dryRun_ ? "would share" : "shared";
    }
    if (linking_) {
        return dryRun_ ? "would link" : "linked";
    }
    return dryRun_ ? "would remove" : "removed";
}

const char* CleanLog::leftWord() const {
    return dryRun_ ? "would be left" : "left";
}

bool CleanLog::writeJson(std::uint64_t bytesFreed, std::int64_t failed,
                         const ExportSink& sink) const {
    Chunked out(sink);
    std::string& text = out.text();
    text += "{\"dryRun\":";
    text += dryRun_ ? "true" : "false";
    text += sharing_ ? ",\"shared\":[" : linking_ ? ",\"linked\":[" : ",\"removed\":[";
    for (std::size_t i = 0; i < done_.size(); ++i) {
        text += (i > 0 ? "," : "") + jsonString(done_[i]);
        if (!out.maybeFlush()) {
            return false;
        }
    }
    text += "],\"bytesFreed\":" + std::to_string(bytesFreed) +
            ",\"failed\":" + std::to_string(failed) + ",\"groups\":[";
    for (std::size_t g = 0; g < groups_.size(); ++g) {
        const Group& group = groups_[g];
        text += (g > 0 ? ",\n{\"path\":" : "\n{\"path\":") + jsonString(group.path) +
                ",\"size\":" + std::to_string(group.size) + ",\"members\":[";
        for (std::size_t i = 0; i < group.members.size(); ++i) {
            const DuplicateFile& m = *group.members[i];
            const auto found = outcomes_.find(&m);
            const bool marked = found != outcomes_.end() || m.checkState == 1;
            text += (i > 0 ? ",{\"path\":" : "{\"path\":") + jsonString(m.path) +
                    ",\"marked\":" + (marked ? "true" : "false") + ",\"outcome\":\"";
            if (found == outcomes_.end()) {
                text += marked ? "not reached\"" : "kept\"";
            } else if (found->second.ok) {
                text +=
                    std::string(found->second.alreadyShared ? "already shared" : doneWord()) + "\"";
            } else {
                text +=
                    std::string(leftWord()) + "\",\"reason\":" + jsonString(found->second.reason);
            }
            text += (m.isProtected ? ",\"protected\":true" : "") + jsonIdentity(m) + "}";
        }
        text += "]}";
        if (!out.maybeFlush()) {
            return false;
        }
    }
    text += "]}\n";
    return out.flush();
}

} // namespace twinsweep
