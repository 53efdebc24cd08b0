// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/TrashRecord.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>

namespace twinsweep {

namespace {

const char* const kHeader = "twinsweep trash-record 2 ";
const std::string kSuffix = ".record";
constexpr off_t kMaxRecord = 256 * 1024 * 1024;

std::string encoded(const std::string& bytes) {
    static const char* const hex = "0123456789ABCDEF";
    std::string out;
    for (const char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
            c == '/' || c == '.' || c == '-' || c == '_' || c == '~' || c == ':') {
            out.push_back(ch);
        } else {
            out.push_back('%');
            out.push_back(hex[c >> 4]);
            out.push_back(hex[c & 15]);
        }
    }
    return out;
}

bool decoded(const std::string& text, std::string& out) {
    out.clear();
    for (std::size_t k = 0; k < text.size(); ++k) {
        if (text[k] != '%') {
            out.push_back(text[k]);
            continue;
        }
        if (k + 2 >= text.size() || !std::isxdigit(static_cast<unsigned char>(text[k + 1])) ||
            !std::isxdigit(static_cast<unsigned char>(text[k + 2]))) {
            return false;
        }
        out.push_back(static_cast<char>(std::strtol(text.substr(k + 1, 2).c_str(), nullptr, 16)));
        k += 2;
    }
    return true;
}

bool readLine(const std::string& line, TrashedItem& item) {
    std::istringstream fields(line);
    std::string state, original, files, info, date, extra;
    if (!(fields >> state >> item.device >> item.inode >> item.size >> item.mtimeSec >>
          item.mtimeNsec >> item.folderDevice >> item.folderInode >> item.filesDevice >>
          item.filesInode >> original >> files >> info >> date) ||
        (fields >> extra) || (state != "moved" && state != "pending")) {
        return false;
    }
    item.moved = state == "moved";
    return decoded(original, item.originalPath) && decoded(files, item.filesPath) &&
           decoded(info, item.infoPath) && decoded(date, item.deletionDate) &&
           item.originalPath.starts_with("/") && item.filesPath.starts_with("/");
}

// Seconds and nanoseconds, UTC, and the process: names that sort by time.
std::string newRecordName(std::int64_t& time) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    time = now.tv_sec;
    std::tm tm{};
    ::gmtime_r(&now.tv_sec, &tm);
    char buf[64];
    const std::size_t n = std::strftime(buf, sizeof buf, "%Y%m%dT%H%M%S", &tm);
    std::snprintf(buf + n, sizeof buf - n, ".%09ld-%d", static_cast<long>(now.tv_nsec),
                  static_cast<int>(::getpid()));
    return buf + kSuffix;
}

} // namespace

std::string trashRecordHeader(std::int64_t time) {
    return kHeader + std::to_string(time) + "\n";
}

std::string trashRecordLine(const TrashedItem& i) {
    return std::string(i.moved ? "moved " : "pending ") + std::to_string(i.device) + " " +
           std::to_string(i.inode) + " " + std::to_string(i.size) + " " +
           std::to_string(i.mtimeSec) + " " + std::to_string(i.mtimeNsec) + " " +
           std::to_string(i.folderDevice) + " " + std::to_string(i.folderInode) + " " +
           std::to_string(i.filesDevice) + " " + std::to_string(i.filesInode) + " " +
           encoded(i.originalPath) + " " + encoded(i.filesPath) + " " + encoded(i.infoPath) + " " +
           encoded(i.deletionDate) + "\n";
}

bool readTrashRecordText(const std::string& text, TrashRecordContents& out) {
    const std::size_t headerEnd = text.find('\n');
    const std::string header = text.substr(0, headerEnd);
    if (headerEnd == std::string::npos || !header.starts_with(kHeader)) {
        return false;
    }
    TrashRecordContents r;
    std::unordered_map<std::string, std::size_t> where; // item by its place in the Trash
    char* end = nullptr;
    const std::string stamp = header.substr(std::strlen(kHeader));
    r.time = std::strtoll(stamp.c_str(), &end, 10);
    if (stamp.empty() || *end != '\0') {
        return false;
    }
    std::size_t start = headerEnd + 1;
    while (start < text.size()) {
        const std::size_t nl = text.find('\n', start);
        if (nl == std::string::npos) {
            break; // cut short by a kill: that note never counted
        }
        TrashedItem item;
        if (!readLine(text.substr(start, nl - start), item)) {
            return false;
        }
        const auto [at, added] = where.emplace(item.filesPath, r.items.size());
        if (added) {
            r.items.push_back(std::move(item));
        } else {
            r.items[at->second] = std::move(item);
        }
        start = nl + 1;
    }
    out = std::move(r);
    return true;
}

PrivateFolder openUndoFolder() {
    const std::string state = stateFolderPath();
    if (state.empty()) {
        return openStateFolder(); // says why
    }
    return openPrivateFolder(state + "/undo");
}

std::string recordTimeText(std::int64_t time) {
    const auto t = static_cast<std::time_t>(time);
    std::tm tm{};
    ::localtime_r(&t, &tm);
    char buf[32];
    std::strftime(buf, sizeof buf, "%Y-%m-%d %H:%M:%S", &tm);
    return buf;
}

std::string UndoRecord::note(const TrashedItem& item) {
    if (!error_.empty()) {
        return error_;
    }
    if (!fd_.ok()) {
        const PrivateFolder folder = openUndoFolder();
        if (!folder.ok()) {
            error_ = folder.error;
            return error_;
        }
        std::int64_t time = 0;
        const std::string name = newRecordName(time);
        fd_.reset(::openat(folder.fd.get(), name.c_str(),
                           O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!fd_.ok() || ::flock(fd_.get(), LOCK_EX | LOCK_NB) != 0 ||
            !writeFully(fd_.get(), trashRecordHeader(time))) {
            error_ = folder.path + "/" + name + ": " + std::strerror(errno);
            if (fd_.ok()) {
                ::unlinkat(folder.fd.get(), name.c_str(), 0);
            }
            return error_;
        }
        path_ = folder.path + "/" + name;
    }
    // Each note is one write: a kill leaves at most one unfinished line, last.
    // A move is on disk once its note is: undo must survive a power cut too.
    if (!writeFully(fd_.get(), trashRecordLine(item)) ||
        (item.moved && ::fdatasync(fd_.get()) != 0)) {
        error_ = path_ + ": " + std::strerror(errno);
    }
    return error_;
}

UndoRecord::~UndoRecord() {
    if (fd_.ok()) {
        ::fsync(fd_.get());
    }
}

std::vector<std::string> recordNames(int undoFd) {
    std::vector<std::string> names;
    for (std::string& name : entryNames(undoFd)) {
        if (name.front() != '.' && name.ends_with(kSuffix)) {
            names.push_back(std::move(name));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string loadRecord(int undoFd, const std::string& name, StoredRecord& out) {
    Fd file(::openat(undoFd, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat st {};
    if (!file.ok() || ::fstat(file.get(), &st) != 0) {
        return name + ": " + std::strerror(errno);
    }
    if (!S_ISREG(st.st_mode) || st.st_uid != ::geteuid() || st.st_size > kMaxRecord) {
        return name + ": not a record of a clean";
    }
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        return name + ": a clean is still writing it";
    }
    std::string text;
    if (!readAll(file.get(), text)) {
        return name + ": " + std::strerror(errno);
    }
    if (!readTrashRecordText(text, out.contents)) {
        return name + ": not a record of a clean";
    }
    out.name = name;
    out.fd = std::move(file);
    return {};
}

std::string saveRecord(int undoFd, const StoredRecord& record,
                       const std::vector<TrashedItem>& items) {
    if (items.empty()) {
        if (::unlinkat(undoFd, record.name.c_str(), 0) != 0 && errno != ENOENT) {
            return record.name + ": " + std::strerror(errno);
        }
        return {};
    }
    std::string text = trashRecordHeader(record.contents.time);
    for (const TrashedItem& i : items) {
        text += trashRecordLine(i);
    }
    const std::string temp = "." + record.name + "." + std::to_string(::getpid()) + ".tmp";
    const Fd file(::openat(undoFd, temp.c_str(),
                           O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.ok()) {
        return record.name + ": " + std::strerror(errno);
    }
    if (!writeFully(file.get(), text) || ::fsync(file.get()) != 0 ||
        ::renameat(undoFd, temp.c_str(), undoFd, record.name.c_str()) != 0) {
        const std::string why = record.name + ": " + std::strerror(errno);
        ::unlinkat(undoFd, temp.c_str(), 0);
        return why;
    }
    return {};
}

} // namespace twinsweep
