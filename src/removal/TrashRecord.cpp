#include "removal/TrashRecord.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

#include "removal/Fd.h"

namespace twinsweep {

namespace {

const char* const kHeader = "twinsweep last-trash 1";

std::string encoded(const std::string& bytes) {
    static const char* const hex = "0123456789ABCDEF";
    std::string out;
    for (const char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
            c == '/' || c == '.' || c == '-' || c == '_' || c == '~') {
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
        const long v = std::strtol(text.substr(k + 1, 2).c_str(), nullptr, 16);
        out.push_back(static_cast<char>(v));
        k += 2;
    }
    return true;
}

} // namespace

std::string trashRecordText(const std::vector<TrashedCopy>& copies) {
    std::string out = std::string(kHeader) + "\n";
    for (const TrashedCopy& c : copies) {
        out += std::to_string(c.seen.device) + " " + std::to_string(c.seen.inode) + " " +
               std::to_string(c.seen.size) + " " + std::to_string(c.seen.mtimeSec) + " " +
               std::to_string(static_cast<std::int32_t>(c.seen.mtimeNsec)) + " " +
               encoded(c.where.originalPath) + " " + encoded(c.where.filesPath) + " " +
               encoded(c.where.infoPath) + "\n";
    }
    return out;
}

bool readTrashRecordText(const std::string& text, std::vector<TrashedCopy>& out) {
    std::istringstream in(text);
    std::string line;
    if (!std::getline(in, line) || line != kHeader) {
        return false;
    }
    std::vector<TrashedCopy> copies;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::uint64_t device = 0;
        std::int64_t nsec = 0;
        TrashedCopy c;
        std::string original, files, info, extra;
        if (!(fields >> device >> c.seen.inode >> c.seen.size >> c.seen.mtimeSec >> nsec >>
              original >> files >> info) ||
            (fields >> extra) || !decoded(original, c.where.originalPath) ||
            !decoded(files, c.where.filesPath) || !decoded(info, c.where.infoPath) || nsec < 0 ||
            nsec > 999999999) {
            return false;
        }
        c.seen.device = static_cast<std::uint32_t>(device);
        c.seen.mtimeNsec = static_cast<std::int32_t>(nsec);
        c.seen.known = true;
        copies.push_back(std::move(c));
    }
    out = std::move(copies);
    return true;
}

std::string lastTrashRecordPath() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/') {
        return std::string(state) + "/twinsweep/last-trash";
    }
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] != '/') {
        return {};
    }
    return std::string(home) + "/.local/state/twinsweep/last-trash";
}

std::string saveTrashRecord(const std::string& path, const std::vector<TrashedCopy>& copies) {
    if (path.empty()) {
        return "no home folder to keep the record in";
    }
    if (copies.empty()) {
        if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
            return path + ": " + std::strerror(errno);
        }
        return {};
    }
    const Fd folder(openOrMakeFolder(parentOf(path)));
    if (!folder.ok()) {
        return parentOf(path) + ": " + std::strerror(errno);
    }
    const std::string name = lastComponent(path);
    const std::string temp = "." + name + "." + std::to_string(::getpid()) + ".tmp";
    const Fd file(::openat(folder.get(), temp.c_str(),
                           O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.ok()) {
        return path + ": " + std::strerror(errno);
    }
    if (!writeFully(file.get(), trashRecordText(copies)) || ::fsync(file.get()) != 0 ||
        ::renameat(folder.get(), temp.c_str(), folder.get(), name.c_str()) != 0) {
        const std::string why = path + ": " + std::strerror(errno);
        ::unlinkat(folder.get(), temp.c_str(), 0);
        return why;
    }
    return {};
}

std::string loadTrashRecord(const std::string& path, std::vector<TrashedCopy>& out) {
    const Fd file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat st {};
    if (!file.ok()) {
        return errno == ENOENT ? "there is no clean to the Trash to undo (" + path + " is missing)"
                               : path + ": " + std::strerror(errno);
    }
    if (::fstat(file.get(), &st) != 0 || !S_ISREG(st.st_mode) || st.st_size > 64 * 1024 * 1024) {
        return path + ": not a record of a clean";
    }
    std::string text;
    char buf[65536];
    ssize_t n = 0;
    while ((n = ::read(file.get(), buf, sizeof buf)) > 0) {
        text.append(buf, static_cast<std::size_t>(n));
    }
    if (n < 0) {
        return path + ": " + std::strerror(errno);
    }
    if (!readTrashRecordText(text, out)) {
        return path + ": not a record of a clean";
    }
    return {};
}

} // namespace twinsweep
