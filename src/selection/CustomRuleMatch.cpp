// SPDX-License-Identifier: GPL-3.0-or-later
#include "selection/CustomRuleMatch.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>

#include "selection/CanonicalText.h"
#include "selection/CustomSettingsText.h"

namespace twinsweep {

std::int64_t sizeInBytes(std::int64_t count, std::int64_t unit) {
    const std::int64_t factor = unit == 0 ? 1 : unit == 1 ? 1024 : unit == 2 ? 1048576 : 1073741824;
    std::int64_t bytes = 0;
    if (__builtin_mul_overflow(count, factor, &bytes)) {
        return count < 0 ? INT64_MIN : INT64_MAX;
    }
    return bytes;
}

namespace {

// Seconds of the creation time (the modification time where the file system
// keeps none) or of the modification time.
std::optional<std::time_t> dateOf(const std::string& path, DateKind which) {
    struct statx stx {};
    const unsigned mask = which == DateKind::Creation ? STATX_BTIME | STATX_MTIME : STATX_MTIME;
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, mask, &stx) == 0) {
        if (which == DateKind::Creation && (stx.stx_mask & STATX_BTIME) != 0) {
            return static_cast<std::time_t>(stx.stx_btime.tv_sec);
        }
        return static_cast<std::time_t>(stx.stx_mtime.tv_sec);
    }
    if (errno != ENOSYS) {
        return std::nullopt;
    }
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0) {
        return std::nullopt;
    }
    return static_cast<std::time_t>(st.st_mtim.tv_sec);
}

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.size() >= prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

} // namespace

std::optional<DateTime> fileDay(const DuplicateFile& member, DateKind which) {
    const auto when = dateOf(member.path, which);
    if (!when) {
        return std::nullopt;
    }
    // Written as a day and read back: midnight local time of that day.
    DateTime day = 0;
    if (!parseDayText(dayText(static_cast<DateTime>(*when)), day)) {
        return std::nullopt;
    }
    return day;
}

std::string parentFolderPath(const std::string& path) {
    std::string p = path;
    while (p.size() > 1 && p.back() == '/') {
        p.pop_back();
    }
    const auto slash = p.find_last_of('/');
    if (slash == std::string::npos) {
        return {};
    }
    p.erase(slash);
    while (p.size() > 1 && p.back() == '/') {
        p.pop_back();
    }
    return p.empty() ? "/" : p;
}

CustomRules::CustomRules(const SettingsManager& s) {
    dates_[0] = {s.firstDateState == 1,
                 s.firstDateSelectedItem == 0 ? DateKind::Creation : DateKind::Modification,
                 s.firstDateComparisonItem == 0, s.firstDate};
    dates_[1] = {s.secondDateState == 1,
                 s.secondDateSelectedItem == 0 ? DateKind::Creation : DateKind::Modification,
                 s.secondDateComparisonItem == 0, s.secondDate};
    // A negative limit (never offered by the window) stays negative: every
    // size is larger than it and none is smaller.
    auto limit = [](std::int64_t count, std::int64_t unit) {
        const std::int64_t bytes = sizeInBytes(count, unit);
        return bytes < 0 ? std::optional<std::uint64_t>() : static_cast<std::uint64_t>(bytes);
    };
    const auto firstLimit = limit(s.firstFileSize, s.firstFileSizeUnit);
    const auto secondLimit = limit(s.secondFileSize, s.secondFileSizeUnit);
    sizes_[0] = {s.firstFileSizeState == 1, s.firstFileSizeComparisonItem == 0,
                 firstLimit.value_or(0)};
    sizes_[1] = {s.secondFileSizeState == 1, s.secondFileSizeComparisonItem == 0,
                 secondLimit.value_or(0)};
    negativeLimit_[0] = !firstLimit;
    negativeLimit_[1] = !secondLimit;
    typesOn_ = s.customFileTypesState == 1;
    for (const std::string& ext : s.customFileExtensions) {
        extensions_.push_back(canonicalText(ext));
    }
    folderOn_ = s.customFilePathState == 1;
    folder_ = canonicalText(s.customFilePath);
    subfolders_ = s.subfoldersState == 1;
    dontMatch_ = s.matchState == 1;
    anyOn_ = dates_[0].on || dates_[1].on || sizes_[0].on || sizes_[1].on || typesOn_ || folderOn_;
}

bool CustomRules::matches(const DuplicateFile& member, std::uint64_t size,
                          const std::string& ext) const {
    if (!anyOn_) {
        return false;
    }
    bool r = true;
    for (const DateRule& rule : dates_) {
        if (!rule.on) {
            continue;
        }
        // A date that can't be read meets the rule.
        if (const auto day = fileDay(member, rule.kind)) {
            r = r && (rule.earlier ? *day <= rule.date : *day >= rule.date);
        }
    }
    for (int i = 0; i < 2; ++i) {
        const SizeRule& rule = sizes_[i];
        if (!rule.on) {
            continue;
        }
        if (negativeLimit_[i]) {
            r = r && rule.larger;
        } else {
            r = r && (rule.larger ? size >= rule.limit : size <= rule.limit);
        }
    }
    if (typesOn_ && !extensions_.empty()) {
        const std::string e = canonicalText(ext);
        r = r && std::find(extensions_.begin(), extensions_.end(), e) != extensions_.end();
    }
    if (folderOn_) {
        if (folder_.empty()) {
            r = false;
        } else if (subfolders_) {
            r = r && startsWith(canonicalText(member.path), folder_);
        } else {
            r = r && canonicalText(parentFolderPath(member.path)) == folder_;
        }
    }
    return dontMatch_ ? !r : r;
}

bool matchCustomRules(const SettingsManager& settings, const DuplicateFile& member,
                      std::uint64_t size, const std::string& ext) {
    return CustomRules(settings).matches(member, size, ext);
}

} // namespace twinsweep
