#include "engine/SameFile.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>

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
        if (type != "overlay") {
            continue;
        }
        Overlay o;
        const auto colon = devText.find(':');
        o.device =
            ::makedev(std::stoul(devText.substr(0, colon)), std::stoul(devText.substr(colon + 1)));
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
        for (const std::string& layer : o.layers) {
            struct stat st {};
            if (::lstat((layer + rel).c_str(), &st) == 0) {
                out.emplace_back(static_cast<std::uint32_t>(st.st_dev), st.st_ino);
            }
        }
    }
    return out;
}

bool SameFile::operator()(const std::string& pathA, DevIno a, const std::string& pathB,
                          DevIno b) const {
    a.first = static_cast<std::uint32_t>(a.first);
    b.first = static_cast<std::uint32_t>(b.first);
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

} // namespace twinsweep
