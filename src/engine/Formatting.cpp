// SPDX-License-Identifier: GPL-3.0-or-later
// Size and date texts shown by the windows and stored in member records.
#include <charconv>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>

#include "engine/FileTools.h"
#include "engine/WalkedFolders.h"

namespace twinsweep {

std::string FileTools::fileSizeText(std::uint64_t bytes) {
    constexpr std::uint64_t kKiB = 1024;
    constexpr std::uint64_t kMiB = kKiB * 1024;
    constexpr std::uint64_t kGiB = kMiB * 1024;
    constexpr std::uint64_t kTiB = kGiB * 1024;
    if (bytes < kKiB) {
        return std::to_string(bytes) + " B";
    }
    // 32-bit arithmetic on purpose: the texts must round exactly as the
    // original display did (1048575 shows as "1024.0 KB").
    const auto value = static_cast<float>(bytes);
    float shown = 0;
    const char* unit = nullptr;
    if (bytes < kMiB) {
        shown = value * (1.0F / 1024.0F);
        unit = " KB";
    } else if (bytes < kGiB) {
        shown = value * (1.0F / 1048576.0F);
        unit = " MB";
    } else if (bytes < kTiB) {
        shown = value * (1.0F / 1073741824.0F);
        unit = " GB";
    } else {
        shown = value * (1.0F / 1099511627776.0F);
        unit = " TB";
    }
    // "%.1f" in the C locale: one decimal, "." as the point, whatever the
    // process locale (the application takes it from LANG).
    char text[64];
    const auto written = std::to_chars(text, text + sizeof text, static_cast<double>(shown),
                                       std::chars_format::fixed, 1);
    return std::string(text, written.ptr) + unit;
}

namespace {

bool readTimes(PathArg path, std::uint32_t folder, DateKind which, std::int64_t& seconds) {
#if defined(__APPLE__)
    (void)folder;
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0) {
        return false;
    }
    seconds = which == DateKind::Creation ? st.st_birthtimespec.tv_sec : st.st_mtimespec.tv_sec;
    return true;
#elif defined(STATX_BTIME)
    struct statx stx {};
    const unsigned mask = which == DateKind::Creation ? (STATX_BTIME | STATX_MTIME) : STATX_MTIME;
    ItemAt at;
    if (!locateItem(folder, path, at) ||
        ::statx(at.dirFd, at.name, AT_SYMLINK_NOFOLLOW, mask, &stx) != 0) {
        return false;
    }
    // File systems that keep no birth time give the modification time instead.
    if (which == DateKind::Creation && (stx.stx_mask & STATX_BTIME) != 0) {
        seconds = stx.stx_btime.tv_sec;
    } else {
        seconds = stx.stx_mtime.tv_sec;
    }
    return true;
#else
    struct stat st {};
    ItemAt at;
    if (!locateItem(folder, path, at) ||
        ::fstatat(at.dirFd, at.name, &st, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    seconds = st.st_mtim.tv_sec;
    return true;
#endif
}

} // namespace

std::optional<std::string> FileTools::fileDateText(PathArg path, DateKind which,
                                                   std::uint32_t folder) {
    std::int64_t seconds = 0;
    if (!readTimes(path, folder, which, seconds)) {
        return std::nullopt;
    }
    const auto t = static_cast<std::time_t>(seconds);
    std::tm local{};
    if (::localtime_r(&t, &local) == nullptr) {
        return std::nullopt;
    }
    char text[64];
    // 12-hour clock with no AM/PM marker, as the stored member dates are written.
    const std::size_t n = std::strftime(text, sizeof text, "%y-%m-%d %I:%M:%S", &local);
    return std::string(text, n);
}

} // namespace twinsweep
