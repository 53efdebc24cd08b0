// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <ctime>
#include <string>

namespace twinsweep::testing {

// A file's creation date read straight from the file system, in local time
// on the twelve-hour clock ("yy-MM-dd hh:mm:ss"): the birth time where the
// file system keeps one, else the modification time. "" when unreadable.
inline std::string creationDateOf(const std::string& path) {
    struct statx sx {};
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_MTIME, &sx) != 0) {
        return {};
    }
    const std::time_t when =
        (sx.stx_mask & STATX_BTIME) != 0 ? sx.stx_btime.tv_sec : sx.stx_mtime.tv_sec;
    std::tm local{};
    ::localtime_r(&when, &local);
    char text[32];
    std::strftime(text, sizeof text, "%y-%m-%d %I:%M:%S", &local);
    return text;
}

} // namespace twinsweep::testing
