// SPDX-License-Identifier: GPL-3.0-or-later
#include "removal/RemovalJournal.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

#include "removal/Fd.h"
#include "removal/StateFolder.h"

namespace twinsweep {

namespace {

constexpr char kMagic[] = "twinsweep-journal-1";
constexpr std::size_t kFields = 13;
constexpr std::size_t kMaxRecord = 64 * 1024;

std::mutex journalMutex;
int journalFd = -1; // kept for the life of the process
std::string journalPath;

std::string readSmallFile(int dirFd, const char* name) {
    const Fd fd(::openat(dirFd, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    std::string text;
    if (!fd.ok()) {
        return text;
    }
    readAll(fd.get(), text, kMaxRecord);
    return text;
}

template <typename T> bool number(const std::string& s, T& out) {
    const auto [end, err] = std::from_chars(s.data(), s.data() + s.size(), out);
    return err == std::errc() && end == s.data() + s.size();
}

// Names may hold any byte but NUL: fields are NUL-terminated.
std::string encode(const JournalRecord& r) {
    std::string out;
    for (const std::string& f :
         {std::string(kMagic), std::string(r.kind == JournalRecord::Kind::Link ? "link" : "aside"),
          r.bootId, std::to_string(r.pid), std::to_string(r.startTime), r.folder,
          std::to_string(r.device), std::to_string(r.inode), r.hidden, r.name,
          std::to_string(r.copyInode), std::to_string(r.keptInode), std::string("end")}) {
        out += f;
        out += '\0';
    }
    return out;
}

bool decode(const std::string& text, JournalRecord& r) {
    std::vector<std::string> f;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find('\0', start)) != std::string::npos; start = end + 1) {
        f.push_back(text.substr(start, end - start));
    }
    if (f.size() != kFields || f[0] != kMagic || f[12] != "end" ||
        (f[1] != "link" && f[1] != "aside") || f[5].empty() || f[5][0] != '/' || f[8].empty() ||
        f[9].empty()) {
        return false;
    }
    r.kind = f[1] == "link" ? JournalRecord::Kind::Link : JournalRecord::Kind::Aside;
    r.bootId = f[2];
    r.folder = f[5];
    r.hidden = f[8];
    r.name = f[9];
    return number(f[3], r.pid) && number(f[4], r.startTime) && number(f[6], r.device) &&
           number(f[7], r.inode) && number(f[10], r.copyInode) && number(f[11], r.keptInode);
}

} // namespace

std::string currentBootId() {
    static const std::string id = [] {
        std::string text = readSmallFile(AT_FDCWD, "/proc/sys/kernel/random/boot_id");
        while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
            text.pop_back();
        }
        return text;
    }();
    return id;
}

bool processStart(std::int64_t pid, std::uint64_t& startTime) {
    const std::string text =
        readSmallFile(AT_FDCWD, ("/proc/" + std::to_string(pid) + "/stat").c_str());
    // "pid (comm) state ppid …": the name may hold spaces and parentheses;
    // field 22, the start time, is the 20th after the last ")".
    std::size_t at = text.rfind(')');
    if (at == std::string::npos) {
        return false;
    }
    for (int field = 3; field <= 22; ++field) {
        at = text.find_first_not_of(' ', text.find(' ', at));
        if (at == std::string::npos) {
            return false;
        }
        if (field == 22) {
            const std::string value = text.substr(at, text.find(' ', at) - at);
            return number(value, startTime);
        }
    }
    return false;
}

JournalRecord thisProcessRecord() {
    static const std::uint64_t start = [] {
        std::uint64_t s = 0;
        processStart(::getpid(), s);
        return s;
    }();
    JournalRecord r;
    r.bootId = currentBootId();
    r.pid = ::getpid();
    r.startTime = start;
    return r;
}

bool openJournal(std::string& error) {
    const std::lock_guard<std::mutex> lock(journalMutex);
    if (journalFd >= 0) {
        return true;
    }
    const PrivateFolder state = openStateFolder();
    if (!state.ok()) {
        error = state.error;
        return false;
    }
    Fd journal(openOrMakeFolderAt(state.fd.get(), "journal"));
    struct stat st {};
    if (!journal.ok() || ::fstat(journal.get(), &st) != 0) {
        error = "cannot open the journal in " + state.path + ": " + std::strerror(errno);
        return false;
    }
    if (st.st_uid != ::geteuid() || (st.st_mode & 022) != 0) {
        error = state.path + "/journal may be changed by another user; it is not trusted";
        return false;
    }
    journalPath = state.path + "/journal";
    journalFd = journal.release();
    return true;
}

std::string journalNote(const JournalRecord& record, std::string& error) {
    if (!openJournal(error)) {
        return {};
    }
    static std::atomic<unsigned> counter{0};
    const std::string text = encode(record);
    for (int tries = 0; tries < 100; ++tries) {
        const std::string handle = std::to_string(record.pid) + "-" +
                                   std::to_string(record.startTime) + "-" +
                                   std::to_string(counter.fetch_add(1));
        Fd fd(::openat(journalFd, handle.c_str(),
                       O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!fd.ok() && errno == EEXIST) {
            continue;
        }
        if (fd.ok() && writeFully(fd.get(), text)) {
            return handle;
        }
        error = "cannot write to the journal in " + journalPath + ": " + std::strerror(errno);
        if (fd.ok()) {
            ::unlinkat(journalFd, handle.c_str(), 0);
        }
        return {};
    }
    error = "cannot name a record in the journal in " + journalPath;
    return {};
}

void journalForget(const std::string& handle) {
    if (!handle.empty() && journalFd >= 0) {
        ::unlinkat(journalFd, handle.c_str(), 0);
    }
}

std::vector<std::pair<std::string, JournalRecord>> journalRecords() {
    std::vector<std::pair<std::string, JournalRecord>> out;
    if (journalFd < 0) {
        return out;
    }
    for (const std::string& handle : entryNames(journalFd)) {
        JournalRecord r;
        if (handle.front() == '.') {
            continue;
        }
        if (decode(readSmallFile(journalFd, handle.c_str()), r)) {
            out.emplace_back(handle, std::move(r));
        } else {
            // A record cut short, its process killed before the entry it
            // names was made: the handle still names the process.
            JournalRecord cut;
            const std::size_t dash = handle.find('-');
            const std::size_t dash2 = handle.find('-', dash + 1);
            if (dash != std::string::npos && dash2 != std::string::npos &&
                number(handle.substr(0, dash), cut.pid) &&
                number(handle.substr(dash + 1, dash2 - dash - 1), cut.startTime)) {
                cut.bootId = currentBootId();
                out.emplace_back(handle, std::move(cut));
            }
        }
    }
    return out;
}

} // namespace twinsweep
