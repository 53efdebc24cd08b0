// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/KeepOptions.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unordered_map>

namespace twinsweep {

void resetKeepOptions(const FileList& groups) {
    for (const FilePtr& g : groups) {
        g->keepOption = kKeepAll;
        for (const DuplicateFilePtr& m : g->duplicates) {
            m->checkState = 0;
        }
    }
}

std::int64_t markedCount(const File& group) {
    return std::count_if(group.duplicates.begin(), group.duplicates.end(),
                         [](const DuplicateFilePtr& m) { return m->checkState == 1; });
}

std::optional<std::time_t> parseMemberDate(const std::string& text) {
    return parseMemberDate(text, std::time(nullptr));
}

std::optional<std::time_t> parseMemberDate(const std::string& text, std::time_t now) {
    std::tm tm{};
    // %I reads 01..12 as the writer's %I wrote them: with no day half, 12 is
    // taken as 0, so 00:30 and 12:30 read alike, just as they were written.
    const char* end = ::strptime(text.c_str(), "%y-%m-%d %I:%M:%S", &tm);
    if (end == nullptr || *end != '\0') {
        return std::nullopt;
    }
    // strptime puts two-digit years in 1969..2068; a date formatter puts them
    // in the hundred years that start 80 years before now.
    std::tm start{};
    if (::localtime_r(&now, &start) == nullptr) {
        return std::nullopt;
    }
    start.tm_year -= 80;
    start.tm_isdst = -1;
    const std::time_t windowStart = std::mktime(&start);
    const int startYear = start.tm_year + 1900;
    const int twoDigits = (tm.tm_year + 1900) % 100;
    const std::tm fields = tm;
    for (const int year :
         {startYear - startYear % 100 + twoDigits, startYear - startYear % 100 + twoDigits + 100}) {
        tm = fields;
        tm.tm_year = year - 1900;
        tm.tm_isdst = -1;
        const std::time_t t = std::mktime(&tm);
        if (t == static_cast<std::time_t>(-1)) {
            return std::nullopt;
        }
        if (t >= windowStart) {
            return t;
        }
    }
    return std::nullopt;
}

namespace {

std::optional<std::int64_t> timeOf(const DuplicateFile& member, KeepTimeBasis basis) {
    if (basis == KeepTimeBasis::ExactTime) {
        return exactCreationTime(member.path);
    }
    const auto t = parseMemberDate(member.date);
    return t ? std::optional<std::int64_t>(static_cast<std::int64_t>(*t)) : std::nullopt;
}

template <typename Better>
const DuplicateFilePtr& pickCopy(const std::vector<DuplicateFilePtr>& members, KeepTimeBasis basis,
                                 Better better) {
    std::size_t pick = 0;
    std::optional<std::int64_t> pickTime = timeOf(*members[0], basis);
    for (std::size_t i = 1; i < members.size(); ++i) {
        if (!pickTime) {
            continue; // an unreadable pick stays the pick
        }
        const auto t = timeOf(*members[i], basis);
        if (t && better(*t, *pickTime)) {
            pick = i;
            pickTime = t;
        }
    }
    return members[pick];
}

// keptPath null: the group holds protected copies, which are kept in place of
// the oldest or newest one.
void markKeeping(File& group, std::int64_t option, const std::string* keptPath) {
    group.keepOption = option;
    for (const DuplicateFilePtr& m : group.duplicates) {
        if (option == kKeepAll || m->isProtected) {
            m->checkState = 0;
        } else if (option == kRemoveAll) {
            m->checkState = 1;
        } else {
            m->checkState = keptPath != nullptr && m->path == *keptPath ? 0 : 1;
        }
    }
}

template <typename SamePath>
bool applyTo(File& group, std::int64_t option, KeepTimeBasis basis, SamePath&& forEachSamePath) {
    if (option < kKeepAll || option > kRemoveAll) {
        return false;
    }
    std::string keptPath;
    if ((option == kKeepOldest || option == kKeepNewest) && !group.duplicates.empty()) {
        keptPath = option == kKeepOldest ? oldestCopy(group.duplicates, basis)->path
                                         : newestCopy(group.duplicates, basis)->path;
    }
    const bool holdsProtected =
        std::any_of(group.duplicates.begin(), group.duplicates.end(),
                    [](const DuplicateFilePtr& m) { return m->isProtected; });
    const std::string* kept = holdsProtected ? nullptr : &keptPath;
    markKeeping(group, option, kept);
    forEachSamePath([&](File& other) {
        if (&other != &group) {
            markKeeping(other, option, kept);
        }
    });
    return true;
}

} // namespace

std::optional<std::int64_t> exactCreationTime(const std::string& path) {
    constexpr std::int64_t kBillion = 1000000000;
    struct statx stx {};
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_MTIME, &stx) ==
        0) {
        const struct statx_timestamp& t =
            (stx.stx_mask & STATX_BTIME) != 0 ? stx.stx_btime : stx.stx_mtime;
        return static_cast<std::int64_t>(t.tv_sec) * kBillion + t.tv_nsec;
    }
    struct stat st {};
    if (errno != ENOSYS || ::lstat(path.c_str(), &st) != 0) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(st.st_mtim.tv_sec) * kBillion + st.st_mtim.tv_nsec;
}

const DuplicateFilePtr& oldestCopy(const std::vector<DuplicateFilePtr>& members,
                                   KeepTimeBasis basis) {
    return pickCopy(members, basis, [](std::int64_t a, std::int64_t b) { return a < b; });
}

const DuplicateFilePtr& newestCopy(const std::vector<DuplicateFilePtr>& members,
                                   KeepTimeBasis basis) {
    return pickCopy(members, basis, [](std::int64_t a, std::int64_t b) { return a > b; });
}

struct SamePathIndex::Impl {
    std::unordered_map<std::string_view, std::vector<File*>> byPath;
};

SamePathIndex::SamePathIndex(const FileList& groups) {
    auto impl = std::make_shared<Impl>();
    for (const FilePtr& g : groups) {
        impl->byPath[g->path].push_back(g.get());
    }
    impl_ = std::move(impl);
}

const std::vector<File*>& SamePathIndex::groupsAt(const std::string& path) const {
    static const std::vector<File*> none;
    const auto it = impl_->byPath.find(path);
    return it == impl_->byPath.end() ? none : it->second;
}

bool applyKeepOption(File& group, std::int64_t option, const FileList& duplicateFileList,
                     KeepTimeBasis basis) {
    return applyTo(group, option, basis, [&](auto&& mark) {
        for (const FilePtr& f : duplicateFileList) {
            if (f->path == group.path) {
                mark(*f);
            }
        }
    });
}

bool applyKeepOption(File& group, std::int64_t option, const SamePathIndex& duplicateFileList,
                     KeepTimeBasis basis) {
    return applyTo(group, option, basis, [&](auto&& mark) {
        for (File* f : duplicateFileList.groupsAt(group.path)) {
            mark(*f);
        }
    });
}

} // namespace twinsweep
