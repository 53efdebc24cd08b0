// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SameFile.h"

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace twinsweep {

namespace {

// Mount texts escape blanks and backslashes as \ooo.
std::string unescaped(const std::string& s) {
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\\' && i + 3 < s.size() && s[i + 1] >= '0' && s[i + 1] <= '3') {
            out += static_cast<char>(std::strtol(s.substr(i + 1, 3).c_str(), nullptr, 8));
            i += 3;
        } else if (s[i] == '\\' && i + 1 < s.size()) {
            out += s[++i];
        } else {
            out += s[i];
        }
    }
    return out;
}

// Splits at sep, leaving separators escaped with a backslash alone.
std::vector<std::string> splitUnescaped(const std::string& s, char sep) {
    std::vector<std::string> parts(1);
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\\' && i + 1 < s.size()) {
            parts.back() += s.substr(i, 2);
            ++i;
        } else if (s[i] == sep) {
            parts.emplace_back();
        } else {
            parts.back() += s[i];
        }
    }
    return parts;
}

std::string realFolderPath(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return {};
    }
    const std::string folder = slash == 0 ? "/" : path.substr(0, slash);
    char* real = ::realpath(folder.c_str(), nullptr);
    if (real == nullptr) {
        return {};
    }
    std::string out = real;
    std::free(real);
    return (out == "/" ? "" : out) + path.substr(slash);
}

// Devices are compared as the search records them (32 bits).
std::uint64_t shortDevice(std::uint64_t device) {
    return static_cast<std::uint32_t>(device);
}

// An open regular file that is still the item id, or -1.
int openChecked(const std::string& path, SameFile::DevIno id) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    struct stat st {};
    if (fd >= 0 && (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) ||
                    shortDevice(st.st_dev) != id.first || st.st_ino != id.second)) {
        ::close(fd);
        return -1;
    }
    return fd;
}

// Whether the plain file is shown not to be the real file under the overlay
// view: with the view held open (the overlay opens its real file then, and
// reading a byte makes sure), the kernel grants a write lease only on a file
// that nobody else has open. Anyone else holding the plain file open, or no
// right to a lease on it, leaves it unproven.
bool leaseProvesDifferent(const std::string& viewPath, SameFile::DevIno view,
                          const std::string& plainPath, SameFile::DevIno plain) {
    const int held = openChecked(viewPath, view);
    if (held < 0) {
        return false;
    }
    char byte = 0;
    bool proven = ::pread(held, &byte, 1, 0) >= 0;
    const int probe = proven ? openChecked(plainPath, plain) : -1;
    proven = probe >= 0;
    // A lease broken by someone's open signals its holder; SIGIO would end
    // the process, SIGURG is ignored unless handled.
    if (proven &&
        (::fcntl(probe, F_SETSIG, SIGURG) != 0 || ::fcntl(probe, F_SETLEASE, F_WRLCK) != 0)) {
        proven = false;
    }
    if (probe >= 0) {
        ::fcntl(probe, F_SETLEASE, F_UNLCK);
        ::close(probe);
    }
    ::close(held);
    return proven;
}

} // namespace

SameFile::SameFile() {
    std::ifstream in("/proc/self/mountinfo");
    std::string line;
    while (std::getline(in, line)) {
        // id parent major:minor root mountpoint options [fields] - type source super
        const auto dash = line.find(" - ");
        if (dash == std::string::npos) {
            continue;
        }
        std::istringstream head(line.substr(0, dash));
        std::istringstream tail(line.substr(dash + 3));
        std::string id, parent, devText, root, mountPoint, type, source, super;
        head >> id >> parent >> devText >> root >> mountPoint;
        tail >> type >> source >> super;
        const auto colon = devText.find(':');
        if (colon == std::string::npos) {
            continue;
        }
        const std::uint64_t device = shortDevice(
            ::makedev(std::stoul(devText.substr(0, colon)), std::stoul(devText.substr(colon + 1))));
        mountTypes_[std::stoull(id)] = type;
        deviceTypes_[device] = type;
        if (type != "overlay") {
            continue;
        }
        Overlay o;
        o.device = device;
        o.mountPoint = unescaped(mountPoint);
        std::vector<std::string> lowers;
        for (const std::string& opt : splitUnescaped(super, ',')) {
            if (opt.rfind("upperdir=", 0) == 0) {
                o.layers.insert(o.layers.begin(), unescaped(opt.substr(9)));
            } else if (opt.rfind("lowerdir=", 0) == 0) {
                for (const std::string& l : splitUnescaped(opt.substr(9), ':')) {
                    lowers.push_back(unescaped(l));
                }
            } else if (opt.rfind("lowerdir+=", 0) == 0) {
                lowers.push_back(unescaped(opt.substr(10)));
            }
        }
        o.layers.insert(o.layers.end(), lowers.begin(), lowers.end());
        overlays_.push_back(std::move(o));
    }
}

bool SameFile::mayShowOthersFiles(const std::string& type) {
    // Stacked (their files live on other file systems), FUSE (a process
    // serves them, from anywhere), and network file systems (the server may
    // be this machine, or the same export mounted twice).
    static const std::vector<std::string> kinds = {"overlay", "aufs", "unionfs", "nfs",  "nfs4",
                                                   "cifs",    "smb3", "smbfs",   "9p",   "virtiofs",
                                                   "ceph",    "afs",  "coda",    "davfs"};
    return type.rfind("fuse", 0) == 0 || std::find(kinds.begin(), kinds.end(), type) != kinds.end();
}

SameFile::Kind SameFile::kindOf(const std::string& path, DevIno id) const {
    struct statx sx {};
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_MNT_ID, &sx) != 0 ||
        shortDevice(::makedev(sx.stx_dev_major, sx.stx_dev_minor)) != id.first ||
        sx.stx_ino != id.second) {
        return Kind::Other; // not the item compared: nothing is known of it
    }
    // By the mount the name is on; by device on kernels without mount ids.
    const auto& table = (sx.stx_mask & STATX_MNT_ID) != 0 ? mountTypes_ : deviceTypes_;
    const auto it = table.find((sx.stx_mask & STATX_MNT_ID) != 0 ? sx.stx_mnt_id : id.first);
    if (it == table.end()) {
        return Kind::Other; // mounted since the table was read
    }
    if (it->second == "overlay") {
        return Kind::Overlay;
    }
    return mayShowOthersFiles(it->second) ? Kind::Other : Kind::Plain;
}

std::vector<SameFile::DevIno> SameFile::underneath(const std::string& path, DevIno id) const {
    std::vector<DevIno> out;
    std::string real;
    for (const Overlay& o : overlays_) {
        if (static_cast<std::uint32_t>(o.device) != static_cast<std::uint32_t>(id.first)) {
            continue;
        }
        if (real.empty()) {
            real = realFolderPath(path);
        }
        const std::string mp = o.mountPoint == "/" ? "" : o.mountPoint;
        if (real.size() <= mp.size() || real.compare(0, mp.size(), mp) != 0 ||
            real[mp.size()] != '/') {
            continue;
        }
        const std::string rel = real.substr(mp.size());
        // The view shows its topmost layer's entry: a lower one under a
        // file copied up is another file.
        for (const std::string& layer : o.layers) {
            struct stat st {};
            if (::lstat((layer + rel).c_str(), &st) == 0) {
                out.emplace_back(static_cast<std::uint32_t>(st.st_dev), st.st_ino);
                break;
            }
        }
    }
    return out;
}

bool SameFile::known(const std::string& pathA, DevIno a, const std::string& pathB, DevIno b) const {
    a.first = shortDevice(a.first);
    b.first = shortDevice(b.first);
    if (a == b) {
        return true;
    }
    if (overlays_.empty()) {
        return false;
    }
    std::vector<DevIno> underA = underneath(pathA, a);
    std::vector<DevIno> underB = underneath(pathB, b);
    underA.push_back(a);
    underB.push_back(b);
    for (const DevIno& x : underA) {
        if (std::find(underB.begin(), underB.end(), x) != underB.end()) {
            return true;
        }
    }
    return false;
}

SameFile::Verdict SameFile::check(const std::string& pathA, DevIno a, const std::string& pathB,
                                  DevIno b) const {
    a.first = shortDevice(a.first);
    b.first = shortDevice(b.first);
    if (known(pathA, a, pathB, b)) {
        return Verdict::Same;
    }
    if (a.first == b.first) {
        return Verdict::Different; // one file system: its inode numbers tell
    }
    const Kind ka = kindOf(pathA, a);
    const Kind kb = kindOf(pathB, b);
    if (ka == Kind::Plain && kb == Kind::Plain) {
        return Verdict::Different;
    }
    if (ka == Kind::Overlay && kb == Kind::Plain) {
        return leaseProvesDifferent(pathA, a, pathB, b) ? Verdict::Different : Verdict::Unproven;
    }
    if (kb == Kind::Overlay && ka == Kind::Plain) {
        return leaseProvesDifferent(pathB, b, pathA, a) ? Verdict::Different : Verdict::Unproven;
    }
    return Verdict::Unproven;
}

} // namespace twinsweep
